#include "player/player_window.h"

#include <QAccessible>
#include <QApplication>
#include <QLocalSocket>
#include <QSignalSpy>
#include <QTest>
#include <clocale>
#include <cmath>
#include <sys/stat.h>
#include <thread>

#include "platform/player_link.h"
#include "player/control_bar.h"
#include "player/glyph_button.h"
#include "player/link_listener.h"
#include "player/look.h"
#include "player/notice_pane.h"
#include "player/player_media.h"
#include "player/track_slider.h"
#include "support/byte_builder.h"
#include "support/temp_folder.h"

namespace clipfix {

namespace {

constexpr int kPatience = 15000;  // milliseconds, for a slow and busy machine

PlayerArguments FileAt(const std::filesystem::path& path) {
    PlayerArguments file;
    file.path = path.string();
    file.name = path.filename().string();
    return file;
}

}  // namespace

class PlayerWindowTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void PlaysAndPausesBySpace();
    void SeeksByKeys();
    void SeeksByAClickOnTheBar();
    void SeeksAndChangesTheVolumeByAnAssistiveTool();
    void ShowsTheEndAndPlaysAgain();
    void ChangesTheVolumeByKeysAndWheel();
    void TurnsTheSoundOffAndOn();
    void GoesToTheFullScreenAndBack();
    void HidesTheBarOnTheFullScreenAfterAWhile();
    void LeavesKeysThatMeanNothingAlone();
    void SpaceOnAFocusedButtonPressesIt();
    void TellsWhyAFileCannotBePlayed_data();
    void TellsWhyAFileCannotBePlayed();
    void TellsThatNoPictureCanBeDecoded();
    void ShowsANoticeForSoundWithoutPicture();
    void PlaysAGoodFileAfterABadOne();
    void PassesOverARecordOfTheFileThatPlays();
    void PlaysTheFileOfAnotherRecord();
    void OpensNothingThatAFileNames();
    void NamesItsButtonsForAssistiveTools();
    void TakesHostileMessages_data();
    void TakesHostileMessages();
    void AnswersTheCloseMessageWhenItNoLongerListens();

  private:
    [[nodiscard]] bool IsPlaying() const {
        const Playback& playback = window_->CurrentPlayback();
        return playback.IsLoaded() && !playback.IsPaused() && !playback.IsAtEnd();
    }
    void OpenMovie() {
        window_->Open(FileAt(movie_));
        QTRY_VERIFY_WITH_TIMEOUT(IsPlaying(), kPatience);
        QTRY_VERIFY_WITH_TIMEOUT(window_->CurrentPlayback().Duration() > 0, kPatience);
    }
    void Press(int key, Qt::KeyboardModifiers with = Qt::NoModifier) {
        QTest::keyClick(window_.get(), static_cast<Qt::Key>(key), with);
    }
    GlyphButton* Button(Glyph glyph) {
        for (auto* button : window_->findChildren<GlyphButton*>()) {
            if (button->CurrentGlyph() == glyph) {
                return button;
            }
        }
        return nullptr;
    }
    TrackSlider* Slider(const char* name) {
        for (auto* slider : window_->findChildren<TrackSlider*>()) {
            if (slider->accessibleName() == QLatin1String(name)) {
                return slider;
            }
        }
        return nullptr;
    }

    test::TempFolder folder_;
    std::filesystem::path movie_ = folder_ / "film.mov";
    PlayerTexts texts_;
    std::unique_ptr<PlayerWindow> window_;
};

void PlayerWindowTest::initTestCase() {
    std::setlocale(LC_NUMERIC, "C");
    look::Apply(*qApp);
    QApplication::setQuitOnLastWindowClosed(false);
    test::MakeH264Movie(movie_, 60);
}

void PlayerWindowTest::init() {
    window_ = std::make_unique<PlayerWindow>(texts_, PlayerWindow::Drawing::Software);
    window_->show();
    QVERIFY(QTest::qWaitForWindowExposed(window_.get()));
}

void PlayerWindowTest::cleanup() {
    window_.reset();
}

void PlayerWindowTest::PlaysAndPausesBySpace() {
    OpenMovie();
    QCOMPARE(window_->windowTitle(), QStringLiteral("kc-mplayer"));
    QTRY_VERIFY_WITH_TIMEOUT(!window_->Notice().isVisible(), kPatience);
    QTRY_VERIFY_WITH_TIMEOUT(window_->CurrentPlayback().Position() > 0.3, kPatience);
    Press(Qt::Key_Space);
    QTRY_VERIFY_WITH_TIMEOUT(window_->CurrentPlayback().IsPaused(), kPatience);
    QVERIFY(Button(Glyph::Play) != nullptr);
    const double position = window_->CurrentPlayback().Position();
    QTest::qWait(300);
    QCOMPARE(window_->CurrentPlayback().Position(), position);
    Press(Qt::Key_Space);
    QTRY_VERIFY_WITH_TIMEOUT(window_->CurrentPlayback().Position() > position, kPatience);
    QVERIFY(Button(Glyph::Pause) != nullptr);
}

void PlayerWindowTest::SeeksByKeys() {
    OpenMovie();
    Press(Qt::Key_K);
    QTRY_VERIFY_WITH_TIMEOUT(window_->CurrentPlayback().IsPaused(), kPatience);
    const auto positionIs = [this](double seconds) {
        return std::abs(window_->CurrentPlayback().Position() - seconds) < 0.1;
    };
    Press(Qt::Key_5);
    QTRY_VERIFY_WITH_TIMEOUT(positionIs(30), kPatience);
    Press(Qt::Key_Right);
    QTRY_VERIFY_WITH_TIMEOUT(positionIs(35), kPatience);
    Press(Qt::Key_Left);
    Press(Qt::Key_Left);
    QTRY_VERIFY_WITH_TIMEOUT(positionIs(25), kPatience);
    Press(Qt::Key_Right, Qt::ShiftModifier);
    QTRY_VERIFY_WITH_TIMEOUT(positionIs(26), kPatience);
    Press(Qt::Key_PageUp);
    QTRY_VERIFY_WITH_TIMEOUT(positionIs(0), kPatience);
    Press(Qt::Key_Right);
    QTRY_VERIFY_WITH_TIMEOUT(positionIs(5), kPatience);
    Press(Qt::Key_Home);
    QTRY_VERIFY_WITH_TIMEOUT(positionIs(0), kPatience);
}

void PlayerWindowTest::SeeksByAClickOnTheBar() {
    OpenMovie();
    Press(Qt::Key_P);
    TrackSlider* bar = Slider("Position");
    QVERIFY(bar != nullptr);
    QTest::mouseClick(bar, Qt::LeftButton, {}, bar->rect().center());
    QTRY_VERIFY_WITH_TIMEOUT(std::abs(window_->CurrentPlayback().Position() - 30) < 0.5, kPatience);
    QTest::qWait(500);
    QVERIFY(std::abs(window_->CurrentPlayback().Position() - 30) < 0.5);
}

void PlayerWindowTest::SeeksAndChangesTheVolumeByAnAssistiveTool() {
    OpenMovie();
    Press(Qt::Key_P);
    const auto set = [this](const char* name, int value) {
        auto* slider = QAccessible::queryAccessibleInterface(Slider(name));
        QVERIFY(slider != nullptr && slider->valueInterface() != nullptr);
        slider->valueInterface()->setCurrentValue(value);
    };
    set("Position", 45000);
    QTRY_VERIFY_WITH_TIMEOUT(std::abs(window_->CurrentPlayback().Position() - 45) < 0.1, kPatience);
    set("Volume", 30);
    QCOMPARE(window_->Volume(), 30);
    // A shorter film cuts the bar, which is nobody's wish for another place.
    const auto other = folder_ / "shorter.avi";
    test::MakeAvi(other, 3);
    window_->Open(FileAt(other));
    QTRY_VERIFY_WITH_TIMEOUT(std::abs(window_->CurrentPlayback().Duration() - 3) < 0.2, kPatience);
    QTRY_VERIFY_WITH_TIMEOUT(window_->CurrentPlayback().Position() > 0.1, kPatience);
    QVERIFY(window_->CurrentPlayback().Position() < 2.9 || window_->CurrentPlayback().IsAtEnd());
}

void PlayerWindowTest::ShowsTheEndAndPlaysAgain() {
    OpenMovie();
    Press(Qt::Key_End);
    QTRY_VERIFY_WITH_TIMEOUT(window_->CurrentPlayback().IsAtEnd(), kPatience);
    QVERIFY(Button(Glyph::PlayAgain) != nullptr);
    QTRY_VERIFY_WITH_TIMEOUT(!window_->Notice().isVisible(), kPatience);
    Press(Qt::Key_Space);
    QTRY_VERIFY_WITH_TIMEOUT(IsPlaying() && window_->CurrentPlayback().Position() < 5, kPatience);
    QVERIFY(Button(Glyph::Pause) != nullptr);
}

void PlayerWindowTest::ChangesTheVolumeByKeysAndWheel() {
    OpenMovie();
    QCOMPARE(window_->Volume(), 100);
    Press(Qt::Key_Down);
    QCOMPARE(window_->Volume(), 95);
    Press(Qt::Key_Up);
    Press(Qt::Key_Up);
    QCOMPARE(window_->Volume(), 100);
    const QPointF place(100, 100);
    QWheelEvent turn(place, window_->mapToGlobal(place), {}, QPoint(0, -120), Qt::NoButton, {},
                     Qt::NoScrollPhase, false);
    QApplication::sendEvent(window_.get(), &turn);
    QCOMPARE(window_->Volume(), 95);
    QCOMPARE(Slider("Volume")->value(), 95);
    for (int i = 0; i < 30; ++i) {
        Press(Qt::Key_Minus);
    }
    QCOMPARE(window_->Volume(), 0);
    QVERIFY(Button(Glyph::SoundOff) != nullptr);
}

void PlayerWindowTest::TurnsTheSoundOffAndOn() {
    OpenMovie();
    Press(Qt::Key_M);
    QVERIFY(window_->IsMuted());
    QCOMPARE(window_->Volume(), 100);
    QCOMPARE(Slider("Volume")->value(), 0);
    QTest::mouseClick(Button(Glyph::SoundOff), Qt::LeftButton);
    QVERIFY(!window_->IsMuted());
    QCOMPARE(Slider("Volume")->value(), 100);
    Press(Qt::Key_M);
    Press(Qt::Key_Down);
    QVERIFY(!window_->IsMuted());
}

void PlayerWindowTest::GoesToTheFullScreenAndBack() {
    OpenMovie();
    const QSize before = window_->size();
    Press(Qt::Key_F);
    QTRY_VERIFY(window_->isFullScreen());
    QTRY_COMPARE(window_->size(), window_->screen()->size());
    QVERIFY(Button(Glyph::LeaveFullScreen) != nullptr);
    Press(Qt::Key_Escape);
    QTRY_VERIFY(!window_->isFullScreen());
    QTRY_COMPARE(window_->size(), before);
    Press(Qt::Key_Escape);
    QVERIFY(!window_->isFullScreen());
    QVERIFY(window_->isVisible());
    QTest::mouseDClick(window_.get(), Qt::LeftButton, {}, QPoint(50, 50));
    QTest::mouseRelease(window_.get(), Qt::LeftButton, {}, QPoint(50, 50));
    QTRY_VERIFY(window_->isFullScreen());
    Press(Qt::Key_F11);
    QTRY_VERIFY(!window_->isFullScreen());
}

void PlayerWindowTest::HidesTheBarOnTheFullScreenAfterAWhile() {
    OpenMovie();
    Press(Qt::Key_F);
    QTRY_VERIFY(window_->isFullScreen());
    QVERIFY(window_->IsBarShown());
    QTRY_VERIFY_WITH_TIMEOUT(!window_->IsBarShown(), kPatience);
    QCOMPARE(window_->cursor().shape(), Qt::BlankCursor);
    QTest::mouseMove(window_.get(), QPoint(60, 60));
    QTest::mouseMove(window_.get(), QPoint(80, 80));
    QTRY_VERIFY(window_->IsBarShown());
    QCOMPARE(window_->cursor().shape(), Qt::ArrowCursor);
    QTRY_VERIFY_WITH_TIMEOUT(!window_->IsBarShown(), kPatience);
    Press(Qt::Key_F);
    QTRY_VERIFY(!window_->isFullScreen());
    QVERIFY(window_->IsBarShown());
}

void PlayerWindowTest::LeavesKeysThatMeanNothingAlone() {
    OpenMovie();
    Press(Qt::Key_M, Qt::AltModifier);
    Press(Qt::Key_F, Qt::ControlModifier);
    Press(Qt::Key_Z);
    QVERIFY(!window_->IsMuted());
    QVERIFY(!window_->isFullScreen());
    QVERIFY(IsPlaying());
}

void PlayerWindowTest::SpaceOnAFocusedButtonPressesIt() {
    OpenMovie();
    window_->activateWindow();
    Button(Glyph::SoundOn)->setFocus();
    QTest::keyClick(Button(Glyph::SoundOn), Qt::Key_Space);
    QVERIFY(window_->IsMuted());
    QVERIFY(IsPlaying());
    // Every other key goes on to the window.
    QTest::keyClick(Button(Glyph::SoundOff), Qt::Key_M);
    QVERIFY(!window_->IsMuted());
}

void PlayerWindowTest::TellsWhyAFileCannotBePlayed_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("reason");
    QTest::newRow("none") << QString() << QStringLiteral("No video was given to the player.");
    QTest::newRow("missing") << QStringLiteral("missing.mov")
                             << QStringLiteral(
                                    "The file is not there any more. It may have been "
                                    "moved or deleted.");
    QTest::newRow("a folder") << QStringLiteral(".") << QStringLiteral("This is not a file.");
    QTest::newRow("a pipe") << QStringLiteral("pipe") << QStringLiteral("This is not a file.");
    QTest::newRow("empty") << QStringLiteral("empty.mov") << QStringLiteral("The file is empty.");
    const QString unknown =
        QStringLiteral("The file holds neither picture nor sound that the player knows.");
    QTest::newRow("zeros") << QStringLiteral("zeros.mov") << unknown;
    QTest::newRow("text") << QStringLiteral("text.avi") << unknown;
    QTest::newRow("head only") << QStringLiteral("head.mov") << unknown;
}

void PlayerWindowTest::TellsWhyAFileCannotBePlayed() {
    using test::ByteBuilder;
    test::WriteFile(folder_ / "empty.mov", {});
    test::WriteFile(folder_ / "zeros.mov", ByteBuilder().Zeros(100000).Take());
    test::WriteFile(folder_ / "text.avi", ByteBuilder().Text("not a film at all\n").Take());
    test::WriteFile(folder_ / "head.mov",
                    ByteBuilder().Big32(1).Text("mdat").Big64(5000).Zeros(4984).Take());
    const auto pipe = folder_ / "pipe";
    if (!std::filesystem::exists(pipe)) {
        QCOMPARE(::mkfifo(pipe.c_str(), 0600), 0);
    }
    QFETCH(QString, name);
    QFETCH(QString, reason);
    window_->Open(name.isEmpty() ? PlayerArguments() : FileAt(folder_ / name.toStdString()));
    QTRY_COMPARE_WITH_TIMEOUT(window_->Notice().ReasonText(), reason, kPatience);
    QCOMPARE(window_->Notice().Heading(), QStringLiteral("This video cannot be played"));
    QVERIFY(window_->Notice().isVisible());
    QVERIFY(!Button(Glyph::Play)->isEnabled());
    QVERIFY(Button(Glyph::FullScreen)->isEnabled());
    Press(Qt::Key_Space);
    Press(Qt::Key_Right);
    Press(Qt::Key_Period);
    QVERIFY(window_->Notice().isVisible());
}

void PlayerWindowTest::TellsThatNoPictureCanBeDecoded() {
    const auto broken = folder_ / "broken.mov";
    const auto good = folder_ / "short.mov";
    test::MakeH264Movie(good, 1);
    test::WriteFile(broken, test::WithoutMediaData(test::ReadFile(good)));
    window_->Open(FileAt(broken));
    QTRY_COMPARE_WITH_TIMEOUT(window_->Notice().ReasonText(),
                              QStringLiteral("The picture of this video cannot be decoded."),
                              kPatience);
    QVERIFY(window_->Notice().isVisible());
    // The untouched film plays.
    window_->Open(FileAt(good));
    QTRY_VERIFY_WITH_TIMEOUT(window_->CurrentPlayback().IsAtEnd(), kPatience);
    QTRY_VERIFY_WITH_TIMEOUT(!window_->Notice().isVisible(), kPatience);
}

void PlayerWindowTest::ShowsANoticeForSoundWithoutPicture() {
    const auto sound = folder_ / "sound.mov";
    test::MakeSoundOnly(sound, 5);
    window_->Open(FileAt(sound));
    QTRY_COMPARE_WITH_TIMEOUT(window_->Notice().Heading(),
                              QStringLiteral("This video holds sound only."), kPatience);
    QTRY_VERIFY_WITH_TIMEOUT(window_->CurrentPlayback().Position() > 0, kPatience);
    QVERIFY(Button(Glyph::Pause)->isEnabled());
}

void PlayerWindowTest::PlaysAGoodFileAfterABadOne() {
    window_->Open(FileAt(folder_ / "missing.mov"));
    QTRY_VERIFY(window_->Notice().isVisible());
    OpenMovie();
    QTRY_VERIFY_WITH_TIMEOUT(!window_->Notice().isVisible(), kPatience);
    window_->Open(FileAt(folder_ / "missing.mov"));
    QTRY_VERIFY(window_->Notice().isVisible());
    QVERIFY(!window_->CurrentPlayback().IsLoaded());
    QTest::qWait(300);
    QVERIFY(window_->Notice().isVisible());
}

void PlayerWindowTest::PassesOverARecordOfTheFileThatPlays() {
    OpenMovie();
    QTRY_VERIFY_WITH_TIMEOUT(window_->CurrentPlayback().Position() > 0.5, kPatience);
    const auto record = platform::ParsePlayerRecord(platform::BuildPlayerRecord(movie_.string()));
    window_->TakeRecord(*record);
    QTest::qWait(200);
    QVERIFY(window_->CurrentPlayback().Position() > 0.5);
}

void PlayerWindowTest::PlaysTheFileOfAnotherRecord() {
    OpenMovie();
    const auto other = folder_ / "other.avi";
    test::MakeAvi(other, 3);
    window_->TakeRecord(*platform::ParsePlayerRecord(platform::BuildPlayerRecord(other.string())));
    QCOMPARE(QString::fromStdString(window_->File().path), QString::fromStdString(other.string()));
    QTRY_VERIFY_WITH_TIMEOUT(
        IsPlaying() && std::abs(window_->CurrentPlayback().Duration() - 3) < 0.2, kPatience);
}

void PlayerWindowTest::OpensNothingThatAFileNames() {
    // A list of other files is no film, whatever its lines say.
    const auto list = folder_ / "list.m3u";
    const std::string lines = "#EXTM3U\n" + movie_.string() + "\n";
    test::WriteFile(list, test::ByteBuilder().Text(lines).Take());
    window_->Open(FileAt(list));
    QTRY_COMPARE_WITH_TIMEOUT(window_->Notice().Heading(),
                              QStringLiteral("This video cannot be played"), kPatience);
    QTest::qWait(500);
    QVERIFY(!window_->CurrentPlayback().IsLoaded());
}

void PlayerWindowTest::NamesItsButtonsForAssistiveTools() {
    for (const auto* button : window_->findChildren<GlyphButton*>()) {
        QVERIFY(!button->accessibleName().isEmpty());
        QVERIFY(button->focusPolicy() == Qt::TabFocus);
    }
    QVERIFY(Slider("Position") != nullptr);
    QVERIFY(Slider("Volume") != nullptr);
}

void PlayerWindowTest::TakesHostileMessages_data() {
    QTest::addColumn<QByteArray>("message");
    QTest::addColumn<int>("records");
    const auto sound = platform::BuildPlayerRecord("/a.mov");
    const QByteArray good(reinterpret_cast<const char*>(sound.data()), 536);
    QTest::newRow("sound") << good << 1;
    QTest::newRow("nothing") << QByteArray() << 0;
    QTest::newRow("short") << good.left(535) << 0;
    QTest::newRow("long") << good + 'x' << 0;
    QTest::newRow("very long") << QByteArray(1000000, 'x') << 0;
    QTest::newRow("no zero") << QByteArray(536, 'x') << 0;
    QTest::newRow("other letters") << QByteArray("clOse") << 0;
    QTest::newRow("longer than close") << QByteArray("close!") << 0;
}

void PlayerWindowTest::TakesHostileMessages() {
    const auto socket = folder_ / "kc-mplayer";
    LinkListener listener(socket, nullptr);
    QVERIFY(listener.IsListening());
    int heard = 0;
    QSignalSpy closed(&listener, &LinkListener::CloseAsked);
    connect(&listener, &LinkListener::FileNamed, this, [&] { ++heard; });
    QFETCH(QByteArray, message);
    QFETCH(int, records);
    QLocalSocket sender;
    sender.connectToServer(QString::fromStdString(socket.string()));
    QVERIFY(sender.waitForConnected());
    sender.write(message);
    sender.disconnectFromServer();
    QTRY_COMPARE(sender.state(), QLocalSocket::UnconnectedState);
    QTest::qWait(150);
    QCOMPARE(heard, records);
    QCOMPARE(closed.count(), 0);
    QVERIFY(listener.IsListening());
}

void PlayerWindowTest::AnswersTheCloseMessageWhenItNoLongerListens() {
    const auto socket = folder_ / "kc-mplayer";
    LinkListener listener(socket, nullptr);
    QSignalSpy closed(&listener, &LinkListener::CloseAsked);
    bool isGone = false;
    bool runsStill = true;
    std::thread window([&] {
        isGone = platform::ClosePlayer(socket);
        runsStill = platform::IsPlayerRunning(socket);
    });
    QTRY_COMPARE_WITH_TIMEOUT(closed.count(), 1, kPatience);
    window.join();
    QVERIFY(isGone);
    QVERIFY(!runsStill);
    QVERIFY(!listener.IsListening());
    QVERIFY(!std::filesystem::exists(socket));
}

}  // namespace clipfix

QTEST_MAIN(clipfix::PlayerWindowTest)
#include "player_window_test.moc"
