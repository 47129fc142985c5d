#pragma once

#include <QTimer>
#include <vector>

#include "shell/controls/x_cmd_btn.h"
#include "shell/controls/x_static.h"
#include "shell/sections/section.h"

namespace clipfix {

// The bottom section: the commands of the job, and texts that tell what was chosen. It owns the
// timers of the job.
class CXBottomSection : public Section {
    Q_OBJECT

  public:
    // Ids of the controls, and of the commands of the buttons.
    static constexpr int kCancel = 334;
    static constexpr int kRepair = 335;
    static constexpr int kPause = 337;
    static constexpr int kHome = 338;
    static constexpr int kPreview = 339;
    static constexpr int kSave = 340;
    static constexpr int kBack = 347;
    static constexpr int kCorruptedLabel = 61256;
    static constexpr int kReferenceLabel = 61257;
    static constexpr int kHint = 61258;
    static constexpr int kPathLabel = 61259;
    static constexpr int kSelectedText = 61279;

    CXBottomSection(const WindowParts& parts, QWidget* parent);

    void SetControlVisible(JobControlId control, bool visible) override;

    void StartTimer(int id, int milliseconds);
    void StopTimer(int id);
    void StopAllTimers();

  Q_SIGNALS:
    // The Preview button, whose command belongs to the centre section.
    void PreviewAsked();

  protected:
    void Arrange() override;
    void paintEvent(QPaintEvent* event) override;

  private:
    CXCmdBtn* MakeButton(JobControlId control, int id, const char* key, bool quiet,
                         void (JobDriver::*command)());
    CXStatic* MakeText(JobControlId control, int id);
    void OnTimer(int id);
    // The left edge of the buttons that are shown, which stand in a row at the right.
    int ArrangeButtons();
    void ArrangeTexts(int width);

    const WindowParts* parts_;
    std::vector<CXCmdBtn*> buttons_;  // as they stand, from left to right
    std::vector<CXStatic*> labels_;   // as they stand, from top to bottom
    std::map<int, QTimer*> timers_;
};

}  // namespace clipfix
