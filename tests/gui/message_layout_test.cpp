#include "shell/message_layout.h"

#include <QTest>

namespace clipfix {
namespace {

// A rectangle as left, top, right, bottom, the last two just outside it.
QList<int> Edges(const QRect& rect) {
    return {rect.left(), rect.top(), rect.left() + rect.width(), rect.top() + rect.height()};
}

class MessageLayoutTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void AShortNoteStandsAtTheSettledPlaces() {
        MessageLayout::Needs needs;
        needs.text = 20;
        const MessageLayout at = MessageLayout::Of(needs);
        QCOMPARE(at.window, QSize(530, 270));
        QCOMPARE(Edges(at.closeBox), (QList<int>{494, 8, 518, 32}));
        QCOMPARE(Edges(at.title), (QList<int>{125, 80, 515, 115}));
        QCOMPARE(Edges(at.text), (QList<int>{125, 117, 520, 157}));
        QCOMPARE(at.picture, QRect(30, 89, 70, 62));
        QCOMPARE(Edges(at.leftButton), (QList<int>{228, 217, 349, 252}));
        QCOMPARE(Edges(at.rightButton), (QList<int>{372, 217, 493, 252}));
        QVERIFY(at.bottomBand.contains(at.leftButton));
        QVERIFY(at.topBand.contains(at.closeBox));
    }

    void TheSecondLineStandsAtItsPlaceBelowOneLine() {
        MessageLayout::Needs needs;
        needs.text = 20;
        needs.secondText = 20;
        const MessageLayout at = MessageLayout::Of(needs);
        QCOMPARE(Edges(at.secondText), (QList<int>{125, 138, 520, 159}));
        QVERIFY(!at.text.intersects(at.secondText));
        QCOMPARE(at.window, QSize(530, 270));
    }

    void TheSecondLineMovesDownBelowALongerText() {
        MessageLayout::Needs needs;
        needs.text = 60;
        needs.secondText = 40;
        const MessageLayout at = MessageLayout::Of(needs);
        QCOMPARE(at.secondText.top(), 177);
        QVERIFY(at.text.height() >= 60);
        QVERIFY(at.secondText.height() >= 40);
        QVERIFY(!at.text.intersects(at.secondText));
    }

    void TheLinkFormStandsUnderTheMeasuredText() {
        MessageLayout::Needs needs;
        needs.linkForm = true;
        needs.text = 20;
        needs.linkWidth = 60;
        needs.linkLine = 20;
        needs.belowLink = 20;
        const MessageLayout low = MessageLayout::Of(needs);
        QCOMPARE(low.link.left(), 125);
        QCOMPARE(low.besideLink.left(), 190);
        QCOMPARE(low.besideLink.left() + low.besideLink.width(), 520);
        QCOMPARE(low.besideLink.top(), low.link.top());
        QCOMPARE(Edges(low.belowLink).at(0), 125);
        QCOMPARE(Edges(low.belowLink).at(2), 520);
        QCOMPARE(low.belowLink.top(), low.link.top() + 20);
        needs.text = 40;
        const MessageLayout lower = MessageLayout::Of(needs);
        QCOMPARE(lower.link.top(), low.link.top() + 20);
    }

    void ALinkThatIsWiderThanItsColumnPushesTheTextBesideIt() {
        QCOMPARE(MessageLayout::BesideLinkWidth(65), 326);
        QCOMPARE(MessageLayout::BesideLinkWidth(61), 330);
        QCOMPARE(MessageLayout::BesideLinkWidth(100), 395 - 100 - 4);
    }

    void NoTextIsEverCutHoweverLong() {
        for (int lines = 1; lines < 50; ++lines) {
            MessageLayout::Needs needs;
            needs.text = lines * 20;
            MessageLayout at = MessageLayout::Of(needs);
            QVERIFY(at.text.height() >= needs.text);
            QVERIFY(!at.text.intersects(at.rightButton));
            QVERIFY(at.text.bottom() < at.bottomBand.top());
            QVERIFY(QRect(QPoint(), at.window).contains(at.bottomBand));
            QVERIFY(at.bottomBand.contains(at.rightButton));

            needs.linkForm = true;
            needs.linkWidth = 80;
            needs.linkLine = 40;
            needs.belowLink = 40;
            at = MessageLayout::Of(needs);
            QVERIFY(at.text.bottom() < at.link.top());
            QVERIFY(at.belowLink.bottom() < at.bottomBand.top());
            QVERIFY(at.bottomBand.contains(at.leftButton));
        }
    }
};

}  // namespace
}  // namespace clipfix

QTEST_APPLESS_MAIN(clipfix::MessageLayoutTest)

#include "message_layout_test.moc"
