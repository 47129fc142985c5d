#include "shell/desktop_start_up.h"

#include <QMessageBox>
#include <iostream>
#include <system_error>
#include <utility>

#include "job/state/job_paths.h"
#include "platform/crash_file.h"
#include "platform/folders.h"
#include "shell/controls/accessible_controls.h"
#include "shell/interface_thread.h"
#include "shell/skin/fonts.h"
#include "shell/skin/pictures.h"

namespace clipfix {

namespace {

// Where an installed program's shared files lie, seen from the folder of its executable.
std::filesystem::path SharedFolder(const std::filesystem::path& programFolder) {
    return programFolder.parent_path() / "share" / "kelvo-clipfix";
}

// The work folder lies beside the executable where that can be written, else in the user's own
// folder for such things.
std::filesystem::path FindWorkFolder(const std::filesystem::path& programFolder) {
    if (platform::CanWriteInto(programFolder)) {
        return programFolder / kWorkFolderName;
    }
    const auto cache = platform::UserCacheFolder();
    std::error_code ignored;
    std::filesystem::create_directories(cache, ignored);
    return cache / kWorkFolderName;
}

}  // namespace

DesktopStartUp::DesktopStartUp(QApplication& application, std::filesystem::path file)
    : application_(&application),
      programFolder_(platform::ProgramPath().parent_path()),
      runtimeFolder_(platform::UserRuntimeFolder()),
      file_(std::move(file)),
      texts_(FindTextPaths(programFolder_, SharedFolder(programFolder_),
                           platform::UserConfigFolder())) {}

void DesktopStartUp::InstallCrashHandler() {
    platform::InstallCrashHandler(platform::CrashFilePath(), CLIPFIX_VERSION);
}

StartUpSteps::ClassOutcome DesktopStartUp::RegisterWindowClass() {
    // What a desktop calls a window class: the name under which it groups the program's windows.
    QGuiApplication::setDesktopFileName(QStringLiteral("kelvo-clipfix"));
    return ClassOutcome::Registered;
}

void DesktopStartUp::StartDrawing() {
    skin::LoadPictures();
    skin::ApplyLook(*application_);
    QGuiApplication::setWindowIcon(QIcon(skin::PictureFile(skin::kMark)));
}

StartUpSteps::LockOutcome DesktopStartUp::TakeInstanceLock() {
    auto taken = platform::InstanceLock::Take(runtimeFolder_, kInstanceName);
    if (!taken) {
        // The settled way is to leave without a box; a terminal may know why.
        std::cerr << "kelvo-clipfix: " << taken.Failure().text << '\n';
        return LockOutcome::Failed;
    }
    if (!taken.Value()) {
        return LockOutcome::AlreadyRunning;
    }
    lock_ = std::move(taken.Value());
    return LockOutcome::First;
}

void DesktopStartUp::BringFirstInstanceForward() {
    (void)KnockAtFirstInstance(runtimeFolder_);
}

void DesktopStartUp::ReadLanguageSettings() {
    texts_.ReadSettings(ReadSystemLanguage());
}

bool DesktopStartUp::InitialiseFramework() {
    InstallAccessibleControls();
    return true;
}

void DesktopStartUp::MakeManagers() {
    // Menus, keys and tooltips are the toolkit's own here.
}

void DesktopStartUp::ReadSystemVersion() {
    state_.g_bMajorVersion6 = 0;
}

bool DesktopStartUp::CreateMainFrame() {
    mainFrame_ = std::make_unique<CMainFrame>(
        state_, texts_,
        CMainFrame::Settings{.programFolder = programFolder_,
                             .sharedFolder = SharedFolder(programFolder_),
                             .workFolder = FindWorkFolder(programFolder_)});
    return mainFrame_->Create();
}

void DesktopStartUp::ShowMainFrame() {
    firstInstance_ =
        std::make_unique<FirstInstance>(runtimeFolder_, [this] { mainFrame_->BringForward(); });
    mainFrame_->CentreOnScreen();
    mainFrame_->show();
    if (!file_.empty()) {
        // Once the message loop runs, since a file that cannot be opened is told by a dialog.
        PostTo(*mainFrame_, [this] { mainFrame_->OpenFile(file_); });
    }
}

QString DesktopStartUp::Text(const char* key) {
    return QString::fromStdString(texts_.Text(key, kTitleTextSize));
}

void DesktopStartUp::ShowBox(const QString& text, const QString& title, BoxIcon icon) {
    QMessageBox box(icon == BoxIcon::Information ? QMessageBox::Information : QMessageBox::NoIcon,
                    title, text, QMessageBox::Ok);
    (void)box.exec();
}

}  // namespace clipfix
