#include <QApplication>

#include "shell/clipfix_app.h"
#include "shell/desktop_start_up.h"

int main(int argc, char* argv[]) {
    QApplication::setHighDpiScaleFactorRoundingPolicy(
        Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("kelvo-clipfix"));
    QApplication::setApplicationVersion(QStringLiteral(CLIPFIX_VERSION));
    QApplication::setQuitOnLastWindowClosed(false);

    clipfix::DesktopStartUp steps(application);
    switch (clipfix::CKelvoClipfixApp(steps).InitInstance()) {
        case clipfix::CKelvoClipfixApp::Start::Run:
            return QApplication::exec();
        case clipfix::CKelvoClipfixApp::Start::Leave:
            return 0;
        default:
            return 1;
    }
}
