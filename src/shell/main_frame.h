#pragma once

#include <QWidget>
#include <filesystem>
#include <vector>

#include "job/state/job_state.h"
#include "shell/controls/button_st.h"
#include "text/texts.h"

namespace clipfix {

// The main window: no caption bar of the system's, but a bar that it draws itself, and below it the
// three sections. It is left by the system's close command only, after a question.
class CMainFrame : public QWidget {
    Q_OBJECT

  public:
    static constexpr QSize kFirstSize{1025, 528};
    static constexpr QSize kNormalSize{1025, 585};
    static constexpr int kTitleBarHeight = 40;
    static constexpr int kFrameWidth = 1;

    // Ids of the bar's buttons.
    static constexpr int kCloseButton = 320;
    static constexpr int kMinimiseButton = 321;
    static constexpr int kMaximiseButton = 322;
    static constexpr int kHelpMenuButton = 325;
    static constexpr int kProgramMenuButton = 327;
    static constexpr int kHomeButton = 330;

    enum class SystemCommand { Close, Minimise, Maximise, Restore };

    // `state` and `texts` must outlive the window; the updater is looked for in `programFolder`.
    CMainFrame(JobState& state, const Texts& texts, std::filesystem::path programFolder);

    // Builds what the window holds, starts the updater in the background and takes its size.
    // False when it cannot be made.
    bool Create();

    void OnSystemCommand(SystemCommand command);
    void CentreOnScreen();
    // Restores and raises it, for a second start of the program.
    void BringForward();

    [[nodiscard]] bool IsMaximisedByUs() const { return maximised_; }

    // The place below the bar that the sections share, in logical pixels.
    [[nodiscard]] QRect SectionArea() const;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

  private:
    void MakeTitleBar();
    CButtonST* MakeBarButton(int id, int picture, const QString& name);
    void PlaceTitleBar();
    void OnClose();

    JobState* state_;
    const Texts* texts_;
    std::filesystem::path programFolder_;
    std::vector<CButtonST*> rightButtons_;  // from the right edge on
    CButtonST* maximiseButton_ = nullptr;
    CButtonST* homeButton_ = nullptr;
    bool maximised_ = false;
};

}  // namespace clipfix
