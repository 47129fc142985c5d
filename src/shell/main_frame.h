#pragma once

#include <QTimer>
#include <QWidget>
#include <array>
#include <filesystem>
#include <vector>

#include "job/driver/job_driver.h"
#include "job/driver/real_engines.h"
#include "job/state/job_control.h"
#include "job/state/job_state.h"
#include "shell/controls/bar_drag.h"
#include "shell/controls/button_st.h"
#include "shell/desktop.h"
#include "shell/sections/x_bottom_section.h"
#include "shell/sections/x_container.h"
#include "shell/sections/x_top_section.h"
#include "shell/toolkit_texts.h"
#include "shell/window_front_end.h"
#include "text/texts.h"

class QAction;
class QMenu;

namespace clipfix {

// The main window: no caption bar of the system's, but a bar that it draws itself, and below it the
// three sections. It runs the one job at a time, and is left by the system's close command only,
// after a question. A file dropped on it does the same as the Add File or the Choose Reference
// button with it, whichever stands there.
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

    // Commands of the menus, beside the languages 40043 to 40047.
    static constexpr int kSocialMenu = 326;  // no control sends it
    static constexpr int kFirstPage = 22786;
    static constexpr int kSecondPage = 22796;
    static constexpr int kThirdPage = 22806;
    static constexpr int kHelp = 32779;
    static constexpr int kUpdate = 32780;
    static constexpr int kAbout = 32781;
    static constexpr int kSupport = 32786;

    enum class SystemCommand { Close, Minimise, Maximise, Restore };

    // Where things lie, and what tests put in the place of the real ones; a null is the real one.
    // What is pointed at outlives the window.
    struct Settings {
        std::filesystem::path programFolder = {};  // the player and the updater
        std::filesystem::path sharedFolder = {};   // an installed program's help
        std::filesystem::path workFolder = {};     // empty: "$tp" in the program folder
        Desktop* desktop = nullptr;
        JobEngines* engines = nullptr;
        JobClock* clock = nullptr;
        decltype(JobDriver::Settings::moveFile) moveFile = platform::MoveFileWithProgress;
    };

    // `state` and `texts` must outlive the window. When it goes, a job that still runs is left at
    // its next checkpoint and waited for.
    CMainFrame(JobState& state, Texts& texts, Settings settings);
    CMainFrame(const CMainFrame&) = delete;
    CMainFrame& operator=(const CMainFrame&) = delete;
    ~CMainFrame() override;

    // Builds what the window holds, starts the updater in the background and takes its size.
    // False when it cannot be made.
    bool Create();

    void OnSystemCommand(SystemCommand command);
    // A command of the bar's buttons and of the menus; an id without a handler does nothing.
    void OnCommand(int id);
    void OnHomePage();
    void CentreOnScreen();

    // Takes the file as if it had been picked by Add File. One that is none is told by a note.
    void OpenFile(const std::filesystem::path& file);

    [[nodiscard]] const WindowParts& Parts() const { return parts_; }
    [[nodiscard]] CXTopSection& Top() { return *top_; }
    [[nodiscard]] CXContainer& Container() { return *container_; }
    [[nodiscard]] CXBottomSection& Bottom() { return *bottom_; }
    [[nodiscard]] std::array<Section*, 3> Sections() { return {top_, container_, bottom_}; }
    // Destroys the sections and makes them anew.
    void RebuildSections();
    // Something was shown, hidden or enabled: the keyboard goes to the next step, once the page
    // stands.
    void PageChanged();
    // The page behind the help, in the language in use.
    [[nodiscard]] QUrl HelpPage() const;
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
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    enum class DropTarget { None, CorruptFile, Reference };

    void MakeSections();
    void DropSections();
    void PlaceSections();
    void FocusNextStep();
    void PopUpProgramMenu();
    void PopUpHelpMenu();
    void PopUpSocialMenu();
    QAction* AddCommand(QMenu& menu, const QString& label, int id);
    void OnLanguage(int id);
    [[nodiscard]] std::string LanguageInUse() const;
    void OnUpdate();
    void ShowPage(const QUrl& page);
    [[nodiscard]] DropTarget TargetOf(const QString& file) const;
    void MakeTitleBar();
    void NameBarButtons();
    void PlaceTitleBar();
    void OnBarButton(int id);
    void OnClose();

    JobState* state_;
    Texts* texts_;
    Settings settings_;
    SystemDesktop systemDesktop_;
    SystemClock systemClock_;
    RealEngines realEngines_;
    JobControl control_;
    WindowFrontEnd frontEnd_;
    JobDriver driver_;
    WindowParts parts_;
    ToolkitTexts toolkitTexts_;

    // The toolkit owns them, as children of the window.
    std::vector<CButtonST*> barButtons_;  // from left to right
    CXTopSection* top_ = nullptr;
    CXContainer* container_ = nullptr;
    CXBottomSection* bottom_ = nullptr;

    QTimer pageChanged_;
    QWidget* nextStep_ = nullptr;  // compared only; the control that had the keyboard last
    bool keyboardWasUsed_ = false;
    BarDrag drag_;
    bool maximised_ = false;
};

}  // namespace clipfix
