#include <QAccessible>
#include <QApplication>
#include <QFocusEvent>
#include <QSignalSpy>
#include <QTest>
#include <memory>

#include "gui/gui_support.h"
#include "shell/controls/button_st.h"
#include "shell/controls/hyper_link.h"
#include "shell/controls/picture_ex.h"
#include "shell/controls/x_cmd_btn.h"
#include "shell/controls/x_progress_bar.h"
#include "shell/controls/x_static.h"
#include "shell/skin/pictures.h"

namespace clipfix {
namespace {

using Look = ControlButton::Look;

QAccessible::Role RoleOf(QWidget& widget) {
    return QAccessible::queryAccessibleInterface(&widget)->role();
}
QString NameOf(QWidget& widget) {
    return QAccessible::queryAccessibleInterface(&widget)->text(QAccessible::Name);
}

class ControlsTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void AButtonHasItsIdItsNameAndItsRole() {
        CXCmdBtn button(335, nullptr);
        button.setText(QStringLiteral("Repair"));
        QCOMPARE(button.objectName(), QStringLiteral("335"));
        QCOMPARE(button.Id(), 335);
        QCOMPARE(RoleOf(button), QAccessible::Button);
        QCOMPARE(NameOf(button), QStringLiteral("Repair"));
        QCOMPARE(button.cursor().shape(), Qt::PointingHandCursor);

        CButtonST picture(320, skin::kClose, QStringLiteral("Close"), nullptr);
        QCOMPARE(picture.objectName(), QStringLiteral("320"));
        QCOMPARE(RoleOf(picture), QAccessible::Button);
        QCOMPARE(NameOf(picture), QStringLiteral("Close"));
    }

    void ACommandButtonShowsAFaceForEachLook() {
        CXCmdBtn button(335, nullptr);
        QCOMPARE(button.CurrentFace(), skin::kCommandNormal);
        test::Hover(button, true);
        QCOMPARE(button.CurrentLook(), Look::Hover);
        QCOMPARE(button.CurrentFace(), skin::kCommandHover);
        button.setDown(true);
        QCOMPARE(button.CurrentFace(), skin::kCommandPressed);
        button.setEnabled(false);
        QCOMPARE(button.CurrentFace(), skin::kCommandDisabled);
        button.setEnabled(true);
        button.setDown(false);
        test::Hover(button, false);
        QCOMPARE(button.CurrentFace(), skin::kCommandNormal);
    }

    void FacesAreSetOneByOne() {
        CXCmdBtn button(344, nullptr);
        button.SetFaces(skin::kQuietNormal, skin::kQuietHover, skin::kCommandPressed,
                        skin::kCommandDisabled);
        QCOMPARE(button.CurrentFace(), skin::kQuietNormal);
        test::Hover(button, true);
        QCOMPARE(button.CurrentFace(), skin::kQuietHover);
    }

    void EveryLookIsDrawnDifferently() {
        CXCmdBtn button(335, nullptr);
        button.setText(QStringLiteral("Repair"));
        button.resize(121, 35);
        QList<QImage> drawn{button.grab().toImage()};
        test::Hover(button, true);
        drawn << button.grab().toImage();
        button.setDown(true);
        drawn << button.grab().toImage();
        button.setEnabled(false);
        drawn << button.grab().toImage();
        for (int i = 0; i < drawn.size(); ++i) {
            for (int k = i + 1; k < drawn.size(); ++k) {
                QVERIFY(drawn[i] != drawn[k]);
            }
        }
    }

    void ALabelThatIsTooWideIsMadeSmallerAndStaysInside() {
        CXCmdBtn button(335, nullptr);
        button.resize(121, 35);
        button.setText(QStringLiteral("Wiederherstellung"));
        const QImage image = button.grab().toImage();
        const QColor face = image.pixelColor(4, image.height() / 2);
        for (int y = 8; y < image.height() - 8; ++y) {
            QCOMPARE(image.pixelColor(4, y), face);
            QCOMPARE(image.pixelColor(image.width() - 5, y), face);
        }
    }

    void SpaceAndEnterPressTheButtonThatHasTheKeyboard() {
        QWidget window;
        CXCmdBtn first(343, &window);
        CXCmdBtn second(344, &window);
        QSignalSpy firstPressed(&first, &CXCmdBtn::clicked);
        QSignalSpy secondPressed(&second, &CXCmdBtn::clicked);
        window.show();
        window.activateWindow();
        second.setFocus(Qt::TabFocusReason);
        QTest::keyClick(&second, Qt::Key_Space);
        QTest::keyClick(&second, Qt::Key_Return);
        QTest::keyClick(&second, Qt::Key_Enter);
        QCOMPARE(secondPressed.count(), 3);
        QCOMPARE(firstPressed.count(), 0);
        QTest::keyClick(&second, Qt::Key_Escape);
        QCOMPARE(secondPressed.count(), 3);
        second.setEnabled(false);
        QTest::keyClick(&second, Qt::Key_Return);
        QCOMPARE(secondPressed.count(), 3);
    }

    void FocusIsVisibleUnlessItCameFromTheMouse() {
        QWidget window;
        CXCmdBtn first(343, &window);
        CButtonST second(342, skin::kClose, QStringLiteral("Close"), &window);
        first.setGeometry(0, 0, 121, 35);
        second.setGeometry(150, 0, 24, 24);
        window.show();
        window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        QTest::mouseClick(&first, Qt::LeftButton);
        QVERIFY(first.hasFocus());
        QVERIFY(!first.ShowsFocus());
        const QImage bare = second.grab().toImage();
        QTest::keyClick(&first, Qt::Key_Tab);
        QVERIFY(second.hasFocus());
        QVERIFY(second.ShowsFocus());
        QVERIFY(second.grab().toImage() != bare);
        QTest::keyClick(&second, Qt::Key_Backtab);
        QVERIFY(first.ShowsFocus());
    }

    // A window that comes to the front shows the mark only where it stood before, so that it does
    // not open with one.
    void FocusThatTheWindowGivesBackIsShownAsBefore() {
        CXCmdBtn button(333, nullptr);
        const auto give = [&](Qt::FocusReason reason) {
            QFocusEvent focus(QEvent::FocusIn, reason);
            QApplication::sendEvent(&button, &focus);
        };
        for (const bool before : {false, true}) {
            QVERIFY(ControlButton::ShowsFocusFor(Qt::ActiveWindowFocusReason, before) == before);
            QVERIFY(ControlButton::ShowsFocusFor(Qt::PopupFocusReason, before) == before);
            QVERIFY(ControlButton::ShowsFocusFor(Qt::TabFocusReason, before));
            QVERIFY(ControlButton::ShowsFocusFor(Qt::OtherFocusReason, before));
            QVERIFY(!ControlButton::ShowsFocusFor(Qt::MouseFocusReason, before));
        }
        button.resize(121, 35);
        button.show();
        button.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&button));
        button.setFocus(Qt::MouseFocusReason);
        give(Qt::ActiveWindowFocusReason);
        QVERIFY(!button.ShowsFocus());
        give(Qt::TabFocusReason);
        give(Qt::ActiveWindowFocusReason);
        QVERIFY(button.ShowsFocus());
    }

    void APictureButtonTakesTheNextPictureUnderTheMouse() {
        CButtonST button(322, skin::kMaximise, QStringLiteral("Maximize"), nullptr);
        QCOMPARE(button.CurrentPicture(), skin::kMaximise);
        test::Hover(button, true);
        QCOMPARE(button.CurrentPicture(), skin::kMaximise + 1);
        button.SetPicture(skin::kRestore);
        QCOMPARE(button.CurrentPicture(), skin::kRestore + 1);
        button.setEnabled(false);
        QCOMPARE(button.CurrentPicture(), skin::kRestore);
    }

    void AHiddenButtonForgetsTheMouse() {
        QWidget window;
        CXCmdBtn button(333, &window);
        window.show();
        test::Hover(button, true);
        button.hide();
        button.show();
        QCOMPARE(button.CurrentLook(), Look::Normal);
    }

    void ALinkHasItsColourInAllItsStates() {
        CHyperLink link(350000, nullptr);
        link.SetColours(skin::kLink, 0x010203, 0x040506);
        link.setText(QStringLiteral("Click here"));
        QCOMPARE(link.objectName(), QStringLiteral("350000"));
        QCOMPARE(link.CurrentColour(), skin::kLink);
        test::Hover(link, true);
        QCOMPARE(link.CurrentColour(), 0x010203U);
        test::Hover(link, false);
        link.click();
        QVERIFY(link.IsVisited());
        QCOMPARE(link.CurrentColour(), 0x040506U);
        QCOMPARE(RoleOf(link), QAccessible::Link);
        QCOMPARE(NameOf(link), QStringLiteral("Click here"));
        QVERIFY(link.font().underline());
        QCOMPARE(link.cursor().shape(), Qt::PointingHandCursor);
    }

    void ALinkIsFollowedByKeysAndByAScreenReader() {
        CHyperLink link(346, nullptr);
        QSignalSpy followed(&link, &CHyperLink::clicked);
        link.show();
        QTest::keyClick(&link, Qt::Key_Return);
        QTest::keyClick(&link, Qt::Key_Space);
        QAccessible::queryAccessibleInterface(&link)->actionInterface()->doAction(
            QAccessibleActionInterface::pressAction());
        QCOMPARE(followed.count(), 3);
        QTest::keyClick(&link, Qt::Key_Escape);
        QCOMPARE(followed.count(), 3);
        QVERIFY(link.Target().isEmpty());
    }

    void ATextTakesColourBackgroundHeightAndFace() {
        CXStatic text(61260, nullptr);
        text.setText(QStringLiteral("<b>not markup</b>"));
        QCOMPARE(text.objectName(), QStringLiteral("61260"));
        QCOMPARE(RoleOf(text), QAccessible::StaticText);
        QCOMPARE(NameOf(text), QStringLiteral("<b>not markup</b>"));
        QCOMPARE(text.textFormat(), Qt::PlainText);
        QCOMPARE(text.TextColour(), 0x4B4B4BU);
        QCOMPARE(text.Height(), 20);
        QCOMPARE(text.Face(), QStringLiteral("Segoe UI"));
        text.SetTextColour(0x0000FF);
        QCOMPARE(text.palette().color(QPalette::WindowText), QColor(255, 0, 0));
        text.SetBackground(0xF7F7F7);
        QVERIFY(text.autoFillBackground());
        QCOMPARE(text.palette().color(QPalette::Window), QColor(0xF7, 0xF7, 0xF7));
        text.SetBackground(std::nullopt);
        QVERIFY(!text.autoFillBackground());
        const int small = text.font().pixelSize();
        text.SetHeight(35);
        QVERIFY(text.font().pixelSize() > small);
    }

    void ATextIsMeasuredInTheLinesOfItsWidth() {
        CXStatic text(61266, nullptr);
        QCOMPARE(text.HeightOfText(395), 0);
        text.setText(QStringLiteral("one line"));
        const int line = text.HeightOfText(395);
        QVERIFY(line > 0 && line <= 20);
        text.setText(QStringLiteral("word ").repeated(40));
        QVERIFY(text.HeightOfText(395) >= 3 * line);
    }

    void TheBarDrawsTheJobsPercentAndNotItsPosition() {
        JobState state;
        CXProgressBar bar(0, state, nullptr);
        bar.resize(450, 14);
        state.g_bMovJob = 1;
        state.g_nMovPercent = 30;
        state.g_nAviPercent = 50;
        state.g_nSavePercent = 70;
        bar.SetPosition(10);
        (void)bar.grab();
        QCOMPARE(bar.DrawnPercent(), 30);
        state.g_bMovJob = 0;
        (void)bar.grab();
        QCOMPARE(bar.DrawnPercent(), 50);
        state.g_bSaving = 1;
        (void)bar.grab();
        QCOMPARE(bar.DrawnPercent(), 70);
        QCOMPARE(bar.Position(), 10);
    }

    void TheBarRoundsAHundredthOfItsWidthUpAndOverrunsItsEnd() {
        JobState state;
        CXProgressBar bar(0, state, nullptr);
        bar.resize(450, 14);  // a hundredth is 4.5, rounded up 5
        state.g_nAviPercent = 1;
        (void)bar.grab();
        QCOMPARE(bar.DrawnLength(), 5);
        state.g_nAviPercent = 89;
        (void)bar.grab();
        QCOMPARE(bar.DrawnLength(), 445);
        state.g_nAviPercent = 100;
        (void)bar.grab();
        QCOMPARE(bar.DrawnLength(), 500);
        bar.resize(400, 14);  // a whole number stays
        (void)bar.grab();
        QCOMPARE(bar.DrawnLength(), 400);
    }

    void TheBarHasItsFillAndTroughColours() {
        JobState state;
        CXProgressBar bar(0, state, nullptr);
        bar.resize(400, 14);
        state.g_nAviPercent = 50;
        const QImage image = bar.grab().toImage();
        QCOMPARE(image.pixelColor(100, 7), QColor(0x00, 0x87, 0xEF));
        QCOMPARE(image.pixelColor(199, 7), QColor(0x00, 0x87, 0xEF));
        QCOMPARE(image.pixelColor(200, 7), QColor(0xF7, 0xF7, 0xF7));
        QCOMPARE(image.pixelColor(300, 7), QColor(0xF7, 0xF7, 0xF7));
    }

    void AFreshJobDrawsAnEmptyBarOnceAndClearsTheFlag() {
        JobState state;
        CXProgressBar bar(0, state, nullptr);
        bar.resize(400, 14);
        state.g_nAviPercent = 40;
        state.g_bProgressFresh = 1;
        (void)bar.grab();
        QCOMPARE(bar.DrawnPercent(), 0);
        QCOMPARE(state.g_bProgressFresh.load(), 0);
        (void)bar.grab();
        QCOMPARE(bar.DrawnPercent(), 40);
    }

    void TheBarsTimerRunsUntilTheDrawnPercentIsThePosition() {
        JobState state;
        CXProgressBar bar(0, state, nullptr);
        bar.resize(400, 14);
        QCOMPARE(CXProgressBar::kTimerMilliseconds, 20);
        state.g_nAviPercent = 5;
        bar.SetPosition(10);
        (void)bar.grab();
        bar.OnTimer();
        QVERIFY(bar.IsTimerRunning());
        state.g_nAviPercent = 10;
        bar.OnTimer();
        QVERIFY(bar.IsTimerRunning());
        (void)bar.grab();
        bar.OnTimer();
        QVERIFY(!bar.IsTimerRunning());
        bar.SetPosition(50);
        bar.Reset();
        QVERIFY(!bar.IsTimerRunning());
        QCOMPARE(bar.Position(), 0);
    }

    void AScreenReaderHearsTheBarsValue() {
        JobState state;
        CXProgressBar bar(0, state, nullptr);
        bar.SetPosition(42);
        QCOMPARE(RoleOf(bar), QAccessible::ProgressBar);
        auto* value = QAccessible::queryAccessibleInterface(&bar)->valueInterface();
        QVERIFY(value != nullptr);
        QCOMPARE(value->currentValue().toInt(), 42);
        QCOMPARE(value->maximumValue().toInt(), 100);
    }

    void AnAnimatedPictureMakesItsFramesOnAThreadOfItsOwn() {
        CPictureEx picture(341, nullptr);
        picture.resize(120, 120);
        QVERIFY(picture.Load(skin::kBusyRepair));
        QVERIFY(!picture.IsLoaded());
        picture.show();
        QTRY_VERIFY_WITH_TIMEOUT(picture.IsLoaded(), 20000);
        const QImage first = picture.grab().toImage();
        picture.OnTimer();
        QCOMPARE(picture.CurrentFrame(), 1);
        QVERIFY(picture.grab().toImage() != first);
        for (int i = 1; i < CPictureEx::kFrames; ++i) {
            picture.OnTimer();
        }
        QCOMPARE(picture.CurrentFrame(), 0);
        QVERIFY(picture.grab().toImage() == first);
    }

    void AStoppedPictureKeepsItsFrame() {
        CPictureEx picture(341, nullptr);
        QVERIFY(picture.Load(skin::kBusySave));
        picture.Start();
        QVERIFY(picture.IsRunning());
        picture.OnTimer();
        picture.Stop();
        QVERIFY(!picture.IsRunning());
        const int frame = picture.CurrentFrame();
        picture.Start();
        QCOMPARE(picture.CurrentFrame(), frame);
        QCOMPARE(RoleOf(picture), QAccessible::Animation);
    }

    void AnUnknownPictureIsNotLoaded() {
        CPictureEx picture(341, nullptr);
        QVERIFY(!picture.Load(12345));
        QVERIFY(!picture.IsLoaded());
    }

    void APictureMayGoWhileItsFramesAreMade() {
        for (int i = 0; i < 20; ++i) {
            auto picture = std::make_unique<CPictureEx>(341, nullptr);
            picture->resize(400, 400);
            picture->show();
            QVERIFY(picture->Load(i % 2 == 0 ? skin::kBusyRepair : skin::kBusySave));
            picture.reset();
            QCoreApplication::processEvents();
        }
    }
};

}  // namespace
}  // namespace clipfix

int main(int argc, char* argv[]) {
    QApplication application(argc, argv);
    clipfix::test::PrepareLook(application);
    clipfix::ControlsTest controls;
    return QTest::qExec(&controls, argc, argv);
}

#include "controls_test.moc"
