#pragma once

#include <QTimer>
#include <array>
#include <string>

#include "shell/controls/button_st.h"
#include "shell/controls/hyper_link.h"
#include "shell/controls/picture_ex.h"
#include "shell/controls/x_cmd_btn.h"
#include "shell/controls/x_progress_bar.h"
#include "shell/controls/x_static.h"
#include "shell/sections/section.h"

namespace clipfix {

// Filters of the two file dialogs. The missing dot in "*divx" is meant.
inline constexpr const char* kVideoFilter =
    "Video Files(*.avi;*divx;*.xvid;*.mov;*.mp4)|*.avi;*divx;*.xvid;*.mov;*.mp4|";
inline constexpr const char* kReferenceFilter = "Mov Files (*.mov;*.mp4)|*.mov;*.mp4|";

// The centre section: the choice of the files, the progress of a job, the details of the repaired
// file and the start of its preview.
class CXContainer : public Section {
    Q_OBJECT

  public:
    // Ids of the controls, and of the commands of the buttons.
    static constexpr int kProgressBar = 0;
    static constexpr int kAddFile = 333;
    static constexpr int kChooseReference = 336;
    static constexpr int kPlayPicture = 339;
    static constexpr int kBusyAnimation = 341;
    static constexpr int kWhyHealthy = 346;
    static constexpr int kStatusText = 61260;
    static constexpr int kStartTimeCaption = 61261;
    static constexpr int kStartTimeValue = 61262;
    static constexpr int kElapsedCaption = 61263;
    static constexpr int kElapsedValue = 61264;
    // Caption and value in turn. The last value and the percent text share one id; it is meant.
    static constexpr int kFirstDetail = 61267;
    static constexpr std::size_t kDetailRows = 6;
    static constexpr int kPercentText = 61278;

    CXContainer(const WindowParts& parts, QWidget* parent);

    void OnAddFile();          // command 333
    void OnChooseReference();  // command 336
    void OnWhyHealthy();       // command 346
    void OnPreview();          // command 339

    // What the two dialogs do with the file that was picked. An empty reference is that of a
    // dialog that was cancelled.
    void TakeCorruptFile(const std::string& path);
    void TakeReference(const std::string& path);

    void ShowDetails();
    void ShowBusyAnimation(bool ofSave);
    void StopBusyAnimation();
    [[nodiscard]] CXProgressBar& Bar() { return *bar_; }

    // While a file is dragged over the window that it would take.
    void ShowDropTarget(bool shown);
    [[nodiscard]] bool ShowsDropTarget() const { return dropTargetShown_; }

    void SetControlVisible(JobControlId control, bool visible) override;

  protected:
    void Arrange() override;
    void paintEvent(QPaintEvent* event) override;

  private:
    CXStatic* MakeText(JobControlId control, int id, const char* key);
    void MakeChoice();
    void MakeProgress();
    void MakeDetailsGrid();
    void ArrangeChoice();
    void ArrangeProgress();
    void ArrangeDetails();
    void SetReferenceIsNextStep(bool next);
    void DrawDropTarget(QPainter& painter) const;
    [[nodiscard]] QWidget* Animation() const;

    const WindowParts* parts_;
    CXCmdBtn* addFile_ = nullptr;
    CXCmdBtn* chooseReference_ = nullptr;
    CHyperLink* link_ = nullptr;
    CXStatic* status_ = nullptr;
    CXProgressBar* bar_ = nullptr;
    CXStatic* percent_ = nullptr;
    std::array<CXStatic*, 4> times_{};  // caption and value of the start, and of what has elapsed
    QWidget* grid_ = nullptr;
    std::array<CXStatic*, 2 * kDetailRows> details_{};
    CButtonST* play_ = nullptr;
    CPictureEx* busyRepair_ = nullptr;  // each made on first use
    CPictureEx* busySave_ = nullptr;
    bool dropTargetShown_ = false;
    QTimer playerStarts_;  // until the player may be sent its file
    std::string fileForPlayer_;
    CPictureEx* busy_ = nullptr;  // the one that was started last
};

}  // namespace clipfix
