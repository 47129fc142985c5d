#pragma once

#include <QObject>
#include <QTemporaryDir>
#include <QTimer>
#include <atomic>
#include <deque>
#include <memory>

#include "gui/gui_support.h"
#include "gui/held_engines.h"
#include "gui/scripted_desktop.h"
#include "shell/main_frame.h"

namespace clipfix::test {

// The main window with everything behind it real, but for the desktop, which is scripted, and the
// engines and the move of a save, which can be made to stand. The test clicks and types.
class WindowRig : public QObject {
    Q_OBJECT

  public:
    explicit WindowRig(const QString& language = QStringLiteral("English"));
    ~WindowRig() override;

    // Message windows are answered by a click on these buttons, in turn. What they said is noted
    // as "kind KEY", or with the text where it is that of no key.
    void AnswerNext(int button) { answers_.push_back(button); }
    [[nodiscard]] QStringList Told() const { return told_; }
    [[nodiscard]] bool AllAnswered() const { return answers_.empty(); }

    // A click of the left mouse button on the button with this id that stands in the window.
    void Click(int id);
    // A key to whatever has the keyboard.
    void Press(Qt::Key key) const;
    void AddFile(const QString& file);
    void ChooseReference(const QString& file);
    // Brings a file to Finished, by clicks.
    void Repair(const QString& file, const QString& reference = {});

    // What stands in the window besides its title, sorted: "Repair", "Repair (disabled)".
    [[nodiscard]] QStringList Standing() const;
    // Waits until it stands so.
    [[nodiscard]] bool ComesTo(QStringList standing) const;
    [[nodiscard]] QString TextOf(JobControlId control) const;
    [[nodiscard]] QString Word(const char* key) const { return texts.Word(key); }
    [[nodiscard]] QString WorkFile(const char* name) const;

    LanguageTexts texts;
    QTemporaryDir work;
    JobState state;
    ScriptedDesktop desktop;
    HeldEngines engines;
    std::atomic<bool> moveStands{false};
    std::unique_ptr<CMainFrame> frame;

  private:
    void AnswerDialog();

    QTimer watcher_;
    std::deque<int> answers_;
    QStringList told_;
};

// The states of the window, by what stands in each.
namespace page {
extern const QStringList kHome;
extern const QStringList kChosenMov;
extern const QStringList kChosenAvi;
extern const QStringList kNeedReference;
extern const QStringList kReferenceChosen;
extern const QStringList kRepairingMov;
extern const QStringList kRepairingWithReference;
extern const QStringList kRepairingAvi;
extern const QStringList kFinished;
extern const QStringList kSaving;
}  // namespace page

}  // namespace clipfix::test
