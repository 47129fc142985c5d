#include <QApplication>
#include <QIcon>
#include <clocale>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "platform/folders.h"
#include "player/link_listener.h"
#include "player/look.h"
#include "player/player_arguments.h"
#include "player/player_texts.h"
#include "player/player_window.h"

namespace {

// For a machine whose driver misbehaves: "software" or "opengl"; anything else lets the player
// choose.
constexpr const char* kDrawingVariable = "KC_MPLAYER_DRAWING";

clipfix::PlayerWindow::Drawing WantedDrawing() {
    using Drawing = clipfix::PlayerWindow::Drawing;
    const QByteArray wanted = qgetenv(kDrawingVariable);
    return wanted == "software" ? Drawing::Software
           : wanted == "opengl" ? Drawing::OpenGl
                                : Drawing::BestForMachine;
}

clipfix::PlayerTexts TextsOfProgram() {
    const std::filesystem::path folder = clipfix::platform::ProgramPath().parent_path();
    return {folder, folder.parent_path() / "share" / "kelvo-clipfix",
            clipfix::platform::UserConfigFolder()};
}

}  // namespace

int main(int argc, char* argv[]) {
    QApplication::setHighDpiScaleFactorRoundingPolicy(
        Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
    QApplication application(argc, argv);
    // The toolkit has taken over the user's locale; the engine reads numbers with a point.
    std::setlocale(LC_NUMERIC, "C");
    QApplication::setApplicationName(QStringLiteral("kc-mplayer"));
    QApplication::setApplicationVersion(QStringLiteral(CLIPFIX_VERSION));
    QGuiApplication::setDesktopFileName(QStringLiteral("kelvo-clipfix"));
    QGuiApplication::setWindowIcon(QIcon(QStringLiteral(":/icons/kelvo-clipfix.svg")));
    clipfix::look::Apply(application);

    // The bytes as they came: a path need not be text in any encoding.
    const auto file =
        clipfix::ParsePlayerArguments(argc > 1 ? argv[1] : "", [](std::string_view p) {
            std::error_code ignored;
            return std::filesystem::is_regular_file(p, ignored);
        });
    const clipfix::PlayerTexts texts = TextsOfProgram();
    clipfix::PlayerWindow window(texts, WantedDrawing());
    const clipfix::LinkListener link(clipfix::platform::PlayerSocketPath(), nullptr);
    QObject::connect(&link, &clipfix::LinkListener::FileNamed, &window,
                     &clipfix::PlayerWindow::TakeRecord);
    QObject::connect(&link, &clipfix::LinkListener::CloseAsked, &window, &QWidget::close);
    window.show();
    window.Open(file);
    return QApplication::exec();
}
