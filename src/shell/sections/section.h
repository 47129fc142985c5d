#pragma once

#include <QHash>
#include <QString>
#include <QWidget>
#include <functional>
#include <map>

#include "job/driver/job_driver.h"
#include "job/state/job_front_end.h"
#include "shell/desktop.h"
#include "shell/skin/palette.h"
#include "text/texts.h"

namespace clipfix {

// What the sections of the main window work with. All of it outlives them.
struct WindowParts {
    JobState& state;
    Texts& texts;
    JobFrontEnd& frontEnd;
    JobDriver& driver;
    Desktop& desktop;
    std::filesystem::path programFolder;
    std::filesystem::path sharedFolder;  // where an installed program's help lies
};

// One of the three sections. There are no page objects: a page is the set of controls that the job
// shows here. A section finds a control by its role, and puts what is shown at its place.
class Section : public QWidget {
    Q_OBJECT

  public:
    Section(const QString& name, skin::ColourValue fill, QWidget* parent);

    // Null when the control stands in another section.
    [[nodiscard]] virtual QWidget* Find(JobControlId control) const;
    [[nodiscard]] bool Shows(JobControlId control) const;

    virtual void SetControlVisible(JobControlId control, bool visible);
    void SetControlEnabled(JobControlId control, bool enabled);
    virtual void SetControlText(JobControlId control, const QString& text, const TextStyle& style);

    // Gives every text that is shown, and every name, its words in another language.
    virtual void Translate(const std::function<QString(const QString&)>& translate);

  protected:
    void Register(JobControlId control, QWidget* widget) { controls_[control] = widget; }
    // Puts everything at its place; called after each change of size, text or visibility.
    virtual void Arrange() = 0;
    void resizeEvent(QResizeEvent* event) override;

  private:
    std::map<JobControlId, QWidget*> controls_;
};

// The text of `key`, as the toolkit's.
[[nodiscard]] QString WordOf(const Texts& texts, const char* key);

// Tells by a box that another program or page could not be started; nothing for a code that says
// that it was.
void TellFailedStart(const WindowParts& parts, QWidget* parent, int code);

}  // namespace clipfix
