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

    // Options of the toolkit are gone from the list by now; the one word that may be left is a
    // file.
    clipfix::DesktopStartUp steps(application, argc > 1 ? argv[1] : "");
    switch (clipfix::CKelvoClipfixApp(steps).InitInstance()) {
        case clipfix::CKelvoClipfixApp::Start::Run:
            return QApplication::exec();
        case clipfix::CKelvoClipfixApp::Start::Leave:
            return 0;
        default:
            return 1;
    }
}
