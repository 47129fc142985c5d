#include <QApplication>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QScreen>
#include <QTest>
#include <algorithm>
#include <iostream>

#include "platform/player_link.h"
#include "player/player_media.h"
#include "support/temp_folder.h"

// Drives the built player from outside on a screen of its own, and looks at what it shows there.

namespace clipfix {

namespace {

constexpr int kPatience = 20000;  // milliseconds, for a slow and busy machine
constexpr int kSettling = 500;    // milliseconds in which a window takes its form
constexpr const char* kLeftFolder = "CLIPFIX_PICTURES";  // where the pictures are kept, if set

// A screen without a machine behind it, for as long as the object lives.
class OwnScreen {
  public:
    OwnScreen() {
        server_.setProgram(QStringLiteral("Xvfb"));
        server_.setArguments({QStringLiteral("-displayfd"), QStringLiteral("1"),
                              QStringLiteral("-screen"), QStringLiteral("0"),
                              QStringLiteral("1280x800x24"), QStringLiteral("-nolisten"),
                              QStringLiteral("tcp")});
        server_.setStandardErrorFile(QProcess::nullDevice());
        server_.start();
        while (server_.waitForReadyRead(kPatience) && !server_.canReadLine()) {
        }
        const QByteArray number = server_.readLine().trimmed();
        if (!number.isEmpty()) {
            qputenv("DISPLAY", ':' + number);
        }
    }
    OwnScreen(const OwnScreen&) = delete;
    OwnScreen& operator=(const OwnScreen&) = delete;
    ~OwnScreen() {
        server_.terminate();
        server_.waitForFinished();
    }
    [[nodiscard]] bool Stands() const { return server_.state() == QProcess::Running; }

  private:
    QProcess server_;
};

QImage Screen() {
    return QGuiApplication::primaryScreen()->grabWindow(0).toImage();
}

// The part of the screen in which the picture stands when the window lies at the top left.
QImage Picture() {
    return Screen().copy(0, 0, 480, 300);
}

// How many pixels of two pictures of one size differ clearly, in percent.
int DifferingPercent(const QImage& a, const QImage& b) {
    int differing = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QColor p = a.pixelColor(x, y);
            const QColor q = b.pixelColor(x, y);
            const int apart = std::abs(p.red() - q.red()) + std::abs(p.green() - q.green()) +
                              std::abs(p.blue() - q.blue());
            differing += apart > 60 ? 1 : 0;
        }
    }
    return 100 * differing / (a.width() * a.height());
}

int Colours(const QImage& picture) {
    QSet<QRgb> colours;
    for (int y = 0; y < picture.height(); y += 4) {
        for (int x = 0; x < picture.width(); x += 4) {
            colours.insert(picture.pixel(x, y) & 0x00F0F0F0U);
        }
    }
    return static_cast<int>(colours.size());
}

// How much of a picture is in strong colours, in percent: nearly all of the films here, and nothing
// of the player itself where they are shown.
int StrongColourPercent(const QImage& picture) {
    int strong = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QColor colour = picture.pixelColor(x, y);
            const auto [least, most] = std::minmax({colour.red(), colour.green(), colour.blue()});
            strong += most - least > 150 ? 1 : 0;
        }
    }
    return 100 * strong / (picture.width() * picture.height());
}

bool ShowsAFilm() {
    return StrongColourPercent(Picture()) > 50;
}

}  // namespace

class PlayerProgramTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void initTestCase();
    void cleanup();

    void ShowsAMovingPicture_data();
    void ShowsAMovingPicture();
    void ShowsAStillPictureAtTheEnd();
    void TellsThatAFileCannotBePlayed();
    void PlaysTheFileOfTheRecord();
    void EndsAtTheCloseMessage();
    void EndsWhileItOpensAFile();
    void LeavesTheSocketToALaterPlayer();
    void StandsRandomMessages();

  private:
    void Start(const QString& argument, const QString& drawing = {});
    void Keep(const QString& name) const;
    [[nodiscard]] static QString Argument(const std::filesystem::path& path) {
        return QString::fromStdString(path.string()) +
               QStringLiteral("$$holiday.mov$$12.50 MB$$$$1");
    }

    test::TempFolder folder_;
    std::filesystem::path socket_;
    std::unique_ptr<QProcess> player_;
    QImage black_;
};

void PlayerProgramTest::initTestCase() {
    const auto runtime = folder_ / "runtime";
    std::filesystem::create_directory(runtime);
    std::filesystem::permissions(runtime, std::filesystem::perms::owner_all);
    qputenv("XDG_RUNTIME_DIR", QByteArray::fromStdString(runtime.string()));
    qputenv("XDG_CONFIG_HOME", QByteArray::fromStdString(runtime.string()));
    qputenv("LANGUAGE", "en");
    socket_ = platform::PlayerSocketPath();
    QCOMPARE(socket_, runtime / "kc-mplayer");
    test::MakeH264Movie(folder_ / "h264.mov", 20);
    test::MakeH265Movie(folder_ / "h265.mov", 10);
    test::MakeAvi(folder_ / "film.avi", 20);
    for (const char* name : {"h264", "h265"}) {
        test::WriteFile(
            folder_ / (std::string(name) + "_first.mov"),
            test::WithMediaDataFirst(test::ReadFile(folder_ / (std::string(name) + ".mov"))));
    }
    black_ = Picture();
}

void PlayerProgramTest::Start(const QString& argument, const QString& drawing) {
    player_ = std::make_unique<QProcess>();
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    environment.insert(QStringLiteral("KC_MPLAYER_DRAWING"), drawing);
    if (!drawing.isEmpty()) {
        // The graphics driver leaves a little behind and is unloaded, so that it cannot be named.
        environment.insert(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("detect_leaks=0"));
    }
    player_->setProcessEnvironment(environment);
    player_->start(QStringLiteral(CLIPFIX_PLAYER_PROGRAM), {argument});
    QVERIFY(player_->waitForStarted());
    QTRY_VERIFY_WITH_TIMEOUT(platform::IsPlayerRunning(socket_), kPatience);
}

void PlayerProgramTest::cleanup() {
    if (player_ && player_->state() != QProcess::NotRunning) {
        (void)platform::ClosePlayer(socket_);
        if (!player_->waitForFinished(kPatience)) {
            player_->kill();
            player_->waitForFinished();
            QFAIL("the player did not end");
        }
    }
    if (player_) {
        const QByteArray complaints = player_->readAllStandardError();
        QCOMPARE(complaints, QByteArray());
        QCOMPARE(player_->exitStatus(), QProcess::NormalExit);
        QCOMPARE(player_->exitCode(), 0);
    }
    player_.reset();
    QTRY_VERIFY_WITH_TIMEOUT(DifferingPercent(Picture(), black_) == 0, kPatience);
}

void PlayerProgramTest::Keep(const QString& name) const {
    const QString folder = qEnvironmentVariable(kLeftFolder);
    if (!folder.isEmpty()) {
        QDir().mkpath(folder);
        Screen().save(folder + QLatin1Char('/') + name + QStringLiteral(".png"));
    }
}

void PlayerProgramTest::ShowsAMovingPicture_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("drawing");
    const QString any;
    QTest::newRow("media data first") << QStringLiteral("h264_first.mov") << any;
    QTest::newRow("H.265, media data first") << QStringLiteral("h265_first.mov") << any;
    QTest::newRow("an ordinary movie") << QStringLiteral("h264.mov") << any;
    QTest::newRow("AVI") << QStringLiteral("film.avi") << any;
    QTest::newRow("OpenGL") << QStringLiteral("h264_first.mov") << QStringLiteral("opengl");
}

void PlayerProgramTest::ShowsAMovingPicture() {
    QFETCH(QString, name);
    QFETCH(QString, drawing);
    Start(Argument(folder_ / name.toStdString()), drawing);
    QTRY_VERIFY_WITH_TIMEOUT(ShowsAFilm(), kPatience);
    QTest::qWait(kSettling);
    const QImage early = Picture();
    QTRY_VERIFY_WITH_TIMEOUT(DifferingPercent(early, Picture()) >= 2, kPatience);
    QVERIFY(ShowsAFilm());
    Keep(name + drawing);
}

void PlayerProgramTest::ShowsAStillPictureAtTheEnd() {
    test::MakeAvi(folder_ / "short.avi", 1);
    Start(Argument(folder_ / "short.avi"));
    QTRY_VERIFY_WITH_TIMEOUT(ShowsAFilm(), kPatience);
    const auto standsStill = [] {
        const QImage early = Picture();
        QTest::qWait(kSettling);
        return ShowsAFilm() && DifferingPercent(early, Picture()) == 0;
    };
    QTRY_VERIFY_WITH_TIMEOUT(standsStill(), kPatience);
}

void PlayerProgramTest::TellsThatAFileCannotBePlayed() {
    Start(Argument(folder_ / "missing.mov"));
    // The notice: a dark stage with few colours, and light letters on it.
    const QColor stage(0x1B, 0x20, 0x25);
    QTRY_VERIFY_WITH_TIMEOUT(Picture().pixelColor(40, 40) == stage, kPatience);
    QTRY_VERIFY_WITH_TIMEOUT(Colours(Screen().copy(300, 200, 360, 160)) > 3, kPatience);
    Keep(QStringLiteral("missing"));
    QTest::qWait(300);
    QCOMPARE(Picture().pixelColor(40, 40), stage);
}

void PlayerProgramTest::PlaysTheFileOfTheRecord() {
    Start(Argument(folder_ / "missing.mov"));
    QTRY_VERIFY_WITH_TIMEOUT(Picture().pixelColor(40, 40) == QColor(0x1B, 0x20, 0x25), kPatience);
    QVERIFY(platform::SendFileToPlayer(socket_, (folder_ / "film.avi").string()));
    QTRY_VERIFY_WITH_TIMEOUT(ShowsAFilm(), kPatience);
    QTest::qWait(kSettling);
    const QImage early = Picture();
    QTRY_VERIFY_WITH_TIMEOUT(DifferingPercent(early, Picture()) >= 2, kPatience);
    QVERIFY(ShowsAFilm());
}

void PlayerProgramTest::EndsAtTheCloseMessage() {
    Start(Argument(folder_ / "h264_first.mov"));
    QTRY_VERIFY_WITH_TIMEOUT(ShowsAFilm(), kPatience);
    QVERIFY(platform::ClosePlayer(socket_));
    QVERIFY(!platform::IsPlayerRunning(socket_));
    QVERIFY(player_->waitForFinished(kPatience));
    QVERIFY(!std::filesystem::exists(socket_));
}

void PlayerProgramTest::EndsWhileItOpensAFile() {
    Start(Argument(folder_ / "h265_first.mov"));
    QVERIFY(platform::ClosePlayer(socket_));
    QVERIFY(player_->waitForFinished(kPatience));
}

void PlayerProgramTest::LeavesTheSocketToALaterPlayer() {
    Start(Argument(folder_ / "missing.mov"));
    std::unique_ptr<QProcess> first = std::move(player_);
    const auto made = std::filesystem::last_write_time(socket_);
    QTest::qWait(50);
    Start(Argument(folder_ / "missing.mov"));
    QTRY_VERIFY_WITH_TIMEOUT(
        std::filesystem::exists(socket_) && std::filesystem::last_write_time(socket_) != made,
        kPatience);
    first->terminate();
    QVERIFY(first->waitForFinished(kPatience));
    QVERIFY(platform::IsPlayerRunning(socket_));
}

void PlayerProgramTest::StandsRandomMessages() {
    Start(Argument(folder_ / "film.avi"));
    QTRY_VERIFY_WITH_TIMEOUT(ShowsAFilm(), kPatience);
    for (int round = 0; round < 200; ++round) {
        // A path that no file can have, and letters of all kinds.
        const std::string path(static_cast<std::size_t>(1 + round * 7), static_cast<char>(round));
        if (round % 2 == 1) {
            QVERIFY(platform::SendFileToPlayer(socket_, "/" + path));
        } else {
            QVERIFY(platform::IsPlayerRunning(socket_));
        }
    }
    QVERIFY(platform::SendFileToPlayer(socket_, (folder_ / "film.avi").string()));
    QTRY_VERIFY_WITH_TIMEOUT(ShowsAFilm(), kPatience);
}

}  // namespace clipfix

int main(int argc, char* argv[]) {
    const clipfix::OwnScreen screen;
    if (!screen.Stands()) {
        std::cerr << "Xvfb could not be started\n";
        return 1;
    }
    // The environment says "offscreen" for the tests that need no screen; this one does.
    qputenv("QT_QPA_PLATFORM", "xcb");
    QApplication application(argc, argv);
    clipfix::PlayerProgramTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "player_program_test.moc"
