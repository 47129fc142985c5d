#include "shell/clipfix_app.h"

namespace clipfix {

// The texts of this file stand in the program, in English; they do not go through the language
// file.
CKelvoClipfixApp::Start CKelvoClipfixApp::InitInstance() {
    const QString title = QStringLiteral("Kelvo Clipfix");
    steps_->InstallCrashHandler();
    switch (steps_->RegisterWindowClass()) {
        case StartUpSteps::ClassOutcome::ReadFailed:
            return Refuse(QStringLiteral("GetClassInfoEx failed"), title);
        case StartUpSteps::ClassOutcome::RegisterFailed:
            return Refuse(QStringLiteral("Window Registration failed"), title);
        case StartUpSteps::ClassOutcome::Registered:
            break;
    }
    steps_->StartDrawing();
    switch (steps_->TakeInstanceLock()) {
        case StartUpSteps::LockOutcome::AlreadyRunning:
            // This process has not read its language yet, so the title is empty. It is meant so.
            steps_->ShowBox(QStringLiteral("Kelvo Clipfix is already running in another instance"),
                            steps_->Text("IDS_ERROR"), StartUpSteps::BoxIcon::None);
            steps_->BringFirstInstanceForward();
            return Start::Leave;
        case StartUpSteps::LockOutcome::Failed:
            return Start::Leave;
        case StartUpSteps::LockOutcome::First:
            break;
    }
    steps_->ReadLanguageSettings();
    if (!steps_->InitialiseFramework()) {
        return Refuse(QStringLiteral("OLE initialization failed.  Make sure that the OLE libraries "
                                     "are the correct version."),
                      title);
    }
    steps_->MakeManagers();
    steps_->ReadSystemVersion();
    if (!steps_->CreateMainFrame()) {
        return Refuse(QStringLiteral("Window Creation fails"),
                      QStringLiteral("Kelvo Clipfix Windows"), StartUpSteps::BoxIcon::Information);
    }
    steps_->ShowMainFrame();
    return Start::Run;
}

CKelvoClipfixApp::Start CKelvoClipfixApp::Refuse(const QString& text, const QString& title,
                                                 StartUpSteps::BoxIcon icon) {
    steps_->ShowBox(text, title, icon);
    return Start::Failed;
}

}  // namespace clipfix
