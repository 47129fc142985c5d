#pragma once

#include <QString>

namespace clipfix {

// What the start of the program asks of its surroundings, one operation for a step. The desktop's
// own stands in DesktopStartUp; tests record the order.
class StartUpSteps {
  public:
    enum class ClassOutcome { Registered, ReadFailed, RegisterFailed };
    enum class LockOutcome { First, AlreadyRunning, Failed };
    enum class BoxIcon { None, Information };

    virtual ~StartUpSteps() = default;

    virtual void InstallCrashHandler() = 0;
    virtual ClassOutcome RegisterWindowClass() = 0;
    virtual void StartDrawing() = 0;
    virtual LockOutcome TakeInstanceLock() = 0;
    virtual void BringFirstInstanceForward() = 0;
    virtual void ReadLanguageSettings() = 0;
    virtual bool InitialiseFramework() = 0;
    virtual void MakeManagers() = 0;
    virtual void ReadSystemVersion() = 0;
    virtual bool CreateMainFrame() = 0;
    virtual void ShowMainFrame() = 0;

    // A text by key; empty before the language settings were read.
    virtual QString Text(const char* key) = 0;
    // The system's plain box with an OK button.
    virtual void ShowBox(const QString& text, const QString& title, BoxIcon icon) = 0;
};

// The application: prepares the process, lets one instance run, and shows the main window.
class CKelvoClipfixApp {
  public:
    enum class Start {
        Run,     // the message loop may begin
        Leave,   // another instance runs: the process ends with code 0
        Failed,  // told by a box; no retry
    };

    explicit CKelvoClipfixApp(StartUpSteps& steps) : steps_(&steps) {}

    [[nodiscard]] Start InitInstance();

  private:
    Start Refuse(const QString& text, const QString& title,
                 StartUpSteps::BoxIcon icon = StartUpSteps::BoxIcon::None);

    StartUpSteps* steps_;
};

}  // namespace clipfix
