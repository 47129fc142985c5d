#pragma once

#include <QApplication>
#include <filesystem>
#include <memory>
#include <optional>

#include "job/state/job_state.h"
#include "platform/instance_lock.h"
#include "shell/clipfix_app.h"
#include "shell/first_instance.h"
#include "shell/main_frame.h"
#include "text/texts.h"

namespace clipfix {

// The start of the program on a desktop, and the owner of what lives as long as the process: the
// job's state, the texts, the instance lock, the main window.
class DesktopStartUp : public StartUpSteps {
  public:
    // `file` is opened with the window; empty when none was named.
    explicit DesktopStartUp(QApplication& application, std::filesystem::path file = {});

    void InstallCrashHandler() override;
    ClassOutcome RegisterWindowClass() override;
    void StartDrawing() override;
    LockOutcome TakeInstanceLock() override;
    void BringFirstInstanceForward() override;
    void ReadLanguageSettings() override;
    bool InitialiseFramework() override;
    void MakeManagers() override;
    void ReadSystemVersion() override;
    bool CreateMainFrame() override;
    void ShowMainFrame() override;
    QString Text(const char* key) override;
    void ShowBox(const QString& text, const QString& title, BoxIcon icon) override;

  private:
    QApplication* application_;
    std::filesystem::path programFolder_;
    std::filesystem::path runtimeFolder_;
    std::filesystem::path file_;
    JobState state_;
    Texts texts_;
    std::optional<platform::InstanceLock> lock_;
    std::unique_ptr<FirstInstance> firstInstance_;
    std::unique_ptr<CMainFrame> mainFrame_;
};

}  // namespace clipfix
