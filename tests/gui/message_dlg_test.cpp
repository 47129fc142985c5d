#include "shell/message_dlg.h"

#include <QAccessible>
#include <QApplication>
#include <QTest>
#include <QTimer>
#include <functional>
#include <memory>
#include <thread>

#include "gui/gui_support.h"
#include "shell/skin/pictures.h"

namespace clipfix {
namespace {

// Keys of the texts that bring the form with a link.
constexpr std::array kLinkForm{"IDS_UNHEALTHY_1", "IDS_MOVERROR1", "IDS_MOVERROR2",
                               "IDS_MOVERROR3",   "IDS_MOVERROR4", "IDS_AVIERROR1",
                               "IDS_AVIERROR2",   "IDS_AVIERROR3", "IDS_AVIERROR5"};
class MessageDlgTest : public QObject {
    Q_OBJECT

    using Dialog = std::unique_ptr<CMessageDlg>;

    Dialog Open(int kind, const QString& text, QWidget* parent = nullptr) {
        state_.g_nMessageKind = kind;
        auto dialog =
            std::make_unique<CMessageDlg>(state_, english_.Get(), text, QStringLiteral("Title"),
                                          QString(), QStringLiteral("Label"), parent);
        dialog->show();
        return dialog;
    }
    static CXCmdBtn* Button(const Dialog& dialog, int id) {
        for (auto* button : dialog->findChildren<CXCmdBtn*>(QString::number(id))) {
            if (!button->isHidden()) {
                return button;
            }
        }
        return nullptr;
    }
    static QString TextOf(const Dialog& dialog, int id) {
        auto* text = dialog->findChild<CXStatic*>(QString::number(id));
        return text != nullptr ? text->text() : QStringLiteral("(none)");
    }

    JobState state_;
    test::LanguageTexts english_{QStringLiteral("English")};

  private Q_SLOTS:
    void init() {
        state_.g_nMessageKind = 0;
        state_.g_bMessageYes = 0;
        state_.g_bMessageOpen = 0;
    }

    void AQuestionHasYesAndNoAtTheirPlaces() {
        for (const int kind : {1, 2}) {
            const Dialog dialog = Open(kind, QStringLiteral("Really?"));
            QCOMPARE(dialog->size(), QSize(530, 270));
            QCOMPARE(Button(dialog, 343)->text(), QStringLiteral("Yes"));
            QCOMPARE(Button(dialog, 343)->geometry(), QRect(228, 217, 121, 35));
            QCOMPARE(Button(dialog, 344)->text(), QStringLiteral("No"));
            QCOMPARE(Button(dialog, 344)->geometry(), QRect(372, 217, 121, 35));
            QVERIFY(Button(dialog, 345) == nullptr);
        }
    }

    void ANoteAnErrorAndNoSpaceHaveOk() {
        for (const int kind : {3, 4, 5}) {
            const Dialog dialog = Open(kind, QStringLiteral("Some note"));
            QCOMPARE(Button(dialog, 345)->text(), QStringLiteral("OK"));
            QCOMPARE(Button(dialog, 345)->geometry(), QRect(372, 217, 121, 35));
            QVERIFY(Button(dialog, 343) == nullptr);
            QVERIFY(!dialog->HasLinkForm());
            const bool second = TextOf(dialog, 61280) == english_.Word("IDS_ERROR10");
            QCOMPARE(second, kind == 5);
        }
    }

    void LabelsAreKeptAndDoNotDecideTheWords() {
        state_.g_nMessageKind = 4;
        CMessageDlg dialog(state_, english_.Get(), QStringLiteral("Text"), QStringLiteral("Title"),
                           QStringLiteral("First"), QStringLiteral("Second"), nullptr);
        QCOMPARE(dialog.FirstLabel(), QStringLiteral("First"));
        QCOMPARE(dialog.SecondLabel(), QStringLiteral("Second"));
        for (auto* button : dialog.findChildren<CXCmdBtn*>()) {
            QCOMPARE(button->text(), QStringLiteral("OK"));
        }
    }

    void WordsComeFromTheLanguageFileAtTheMoment() {
        test::OwnTexts own("IDS_OK=Fine\n");
        state_.g_nMessageKind = 3;
        CMessageDlg first(state_, own.Get(), QStringLiteral("x"), {}, {}, {}, nullptr);
        QCOMPARE(first.findChild<CXCmdBtn*>()->text(), QStringLiteral("Fine"));
        own.SetLines("IDS_OK=Better\n");
        state_.g_nMessageKind = 3;
        CMessageDlg second(state_, own.Get(), QStringLiteral("x"), {}, {}, {}, nullptr);
        QCOMPARE(second.findChild<CXCmdBtn*>()->text(), QStringLiteral("Better"));
    }

    void TitleTextAndCloseBoxStandAtTheirPlaces() {
        const Dialog dialog = Open(3, QStringLiteral("Some note"));
        QCOMPARE(TextOf(dialog, 61265), QStringLiteral("Title"));
        QCOMPARE(TextOf(dialog, 61266), QStringLiteral("Some note"));
        auto* title = dialog->findChild<CXStatic*>(QStringLiteral("61265"));
        QCOMPARE(title->geometry(), QRect(125, 80, 390, 35));
        QCOMPARE(title->Height(), 35);
        QCOMPARE(title->TextColour(), 0x4B4B4BU);
        auto* text = dialog->findChild<CXStatic*>(QStringLiteral("61266"));
        QCOMPARE(text->geometry(), QRect(125, 117, 395, 40));
        QCOMPARE(text->Height(), 20);
        auto* close = dialog->findChild<CButtonST*>(QStringLiteral("342"));
        QCOMPARE(close->geometry(), QRect(494, 8, 24, 24));
    }

    void FrameBandsAndPictureAreDrawn() {
        const Dialog question = Open(1, QStringLiteral("Really?"));
        const QImage asked = question->grab().toImage();
        const Dialog note = Open(3, QStringLiteral("Really?"));
        const QImage told = note->grab().toImage();
        const QColor frame(0xAC, 0xAC, 0xAC);
        const QColor band(0xEB, 0xEB, 0xEB);
        for (const QImage& image : {asked, told}) {
            for (const int at : {0, 3}) {
                QCOMPARE(image.pixelColor(at, at), frame);
                QCOMPARE(image.pixelColor(529 - at, 269 - at), frame);
                QCOMPARE(image.pixelColor(at, 130), frame);
            }
            QCOMPARE(image.pixelColor(5, 5), band);
            QCOMPARE(image.pixelColor(20, 230), band);
            QCOMPARE(image.pixelColor(20, 100), QColor(Qt::white));
        }
        const QRect picture(30, 89, 70, 62);
        QVERIFY(asked.copy(picture) != told.copy(picture));
        QCOMPARE(told.copy(picture), [&] {
            const Dialog error = Open(4, QStringLiteral("x"));
            return error->grab().toImage().copy(picture);
        }());
    }

    void ButtonsLeaveTheirAnswerAndClearTheKind() {
        struct Row {
            int id;
            int before;
            int after;
        };
        for (const Row& row : {Row{342, 1, 0}, Row{343, 0, 1}, Row{344, 1, 0}, Row{345, 1, 0},
                               Row{8, 1, 1}, Row{8, 0, 0}}) {
            const Dialog dialog = Open(1, QStringLiteral("Really?"));
            (void)dialog->grab();
            QCOMPARE(state_.g_bMessageOpen.load(), 1);
            QCOMPARE(state_.g_nMessageKind.load(), 1);
            state_.g_bMessageYes = row.before;
            dialog->OnCommand(row.id);
            QVERIFY(!dialog->isVisible());
            QCOMPARE(state_.g_bMessageYes.load(), row.after);
            QCOMPARE(state_.g_bMessageOpen.load(), 0);
            QCOMPARE(state_.g_nMessageKind.load(), 0);
        }
    }

    void EveryButtonSendsItsCommand() {
        for (const int id : {343, 344}) {
            const Dialog dialog = Open(2, QStringLiteral("Really?"));
            QTest::mouseClick(Button(dialog, id), Qt::LeftButton);
            QVERIFY(!dialog->isVisible());
            QCOMPARE(state_.g_bMessageYes.load(), id == 343 ? 1 : 0);
        }
        const Dialog note = Open(3, QStringLiteral("Note"));
        QTest::mouseClick(note->findChild<CButtonST*>(QStringLiteral("342")), Qt::LeftButton);
        QVERIFY(!note->isVisible());
    }

    void TheAnswerStaysUntilTheNextOk() {
        Dialog question = Open(1, QStringLiteral("Really?"));
        question->OnCommand(343);
        question.reset();
        QCOMPARE(state_.g_bMessageYes.load(), 1);
        const Dialog note = Open(3, QStringLiteral("Note"));
        QCOMPARE(state_.g_bMessageYes.load(), 1);
        note->OnCommand(345);
        QCOMPARE(state_.g_bMessageYes.load(), 0);
    }

    void TheSystemsCloseCommandIsSwallowed() {
        const Dialog dialog = Open(1, QStringLiteral("Really?"));
        state_.g_bMessageYes = 1;
        QVERIFY(!dialog->close());
        QVERIFY(dialog->isVisible());
        QCOMPARE(state_.g_nMessageKind.load(), 1);
        QCOMPARE(state_.g_bMessageYes.load(), 1);
    }

    void EnterAndEscapeAreNoDialogCommands() {
        const Dialog dialog = Open(1, QStringLiteral("Really?"));
        for (const auto key : {Qt::Key_Escape, Qt::Key_Return, Qt::Key_Enter}) {
            QTest::keyClick(dialog.get(), key);
            QVERIFY(dialog->isVisible());
        }
        for (auto* button : dialog->findChildren<ControlButton*>()) {
            QTest::keyClick(button, Qt::Key_Escape);
            QVERIFY(dialog->isVisible());
        }
        // Enter goes to the control that has the keyboard: here No, though Yes comes first.
        Button(dialog, 344)->setFocus();
        QTest::keyClick(Button(dialog, 344), Qt::Key_Return);
        QVERIFY(!dialog->isVisible());
        QCOMPARE(state_.g_bMessageYes.load(), 0);
    }

    void TheListedTextsBringTheLinkForm() {
        for (const char* key : kLinkForm) {
            for (const int kind : {3, 4, 5}) {
                const Dialog dialog = Open(kind, english_.Word(key).toUpper());
                QVERIFY2(dialog->HasLinkForm(), key);
                auto* link = dialog->findChild<CHyperLink*>(QStringLiteral("350000"));
                QCOMPARE(link->text(), english_.Word("IDS_CLICK_HERE"));
                QCOMPARE(link->CurrentColour(), 0xAD6F0CU);
                QCOMPARE(TextOf(dialog, 61280), english_.Word("IDS_CLICK_HERE_1"));
                QCOMPARE(TextOf(dialog, 61281), english_.Word("IDS_CLICK_HERE_2"));
                QCOMPARE(Button(dialog, 345)->text(), english_.Word("IDS_CANCEL"));
                QCOMPARE(Button(dialog, 345)->x(), 228);
                QCOMPARE(Button(dialog, 348)->text(), english_.Word("IDS_SHARE"));
                QCOMPARE(Button(dialog, 348)->x(), 372);
                const auto all = dialog->findChildren<CXCmdBtn*>(QStringLiteral("345"));
                QCOMPARE(all.size(), 2);
                QCOMPARE(all.at(1)->text(), english_.Word("IDS_OK"));
                QVERIFY(all.at(1)->isHidden());
            }
            QVERIFY(!Open(1, english_.Word(key))->HasLinkForm());
            QVERIFY(!Open(2, english_.Word(key))->HasLinkForm());
        }
        QVERIFY(!Open(4, english_.Word("IDS_AVIERROR7"))->HasLinkForm());
        QVERIFY(!Open(4, english_.Word("IDS_REPAIR_PROCESSING"))->HasLinkForm());
    }

    void ANoteWithTheWordsOfAListedTextGetsTheLinkFormToo() {
        test::OwnTexts own("IDS_MOVERROR2=Same words\nIDS_SAVE_COMPLETED=same WORDS\n");
        state_.g_nMessageKind = 3;
        CMessageDlg same(state_, own.Get(), QStringLiteral("same WORDS"), {}, {}, {}, nullptr);
        QVERIFY(same.HasLinkForm());
        own.SetLines("IDS_MOVERROR2=Same words\nIDS_SAVE_COMPLETED=other words\n");
        state_.g_nMessageKind = 3;
        CMessageDlg other(state_, own.Get(), QStringLiteral("other words"), {}, {}, {}, nullptr);
        QVERIFY(!other.HasLinkForm());
    }

    void ShareAndTheLinkDoNothingInTheDialog() {
        const Dialog dialog = Open(4, english_.Word("IDS_UNHEALTHY_1"));
        state_.g_bMessageYes = 1;
        QTest::mouseClick(Button(dialog, 348), Qt::LeftButton);
        QVERIFY(dialog->isVisible());
        dialog->findChild<CHyperLink*>()->click();
        QVERIFY(dialog->isVisible());
        QCOMPARE(state_.g_nMessageKind.load(), 4);
        QCOMPARE(state_.g_bMessageYes.load(), 1);
        QVERIFY(dialog->findChild<CHyperLink*>()->Target().isEmpty());
    }

    void ALongTextMakesTheWindowGrow() {
        const QString lengthy = QStringLiteral("Many words to be read. ").repeated(40).trimmed();
        const Dialog dialog = Open(3, lengthy);
        auto* text = dialog->findChild<CXStatic*>(QStringLiteral("61266"));
        QVERIFY(dialog->height() > 270);
        QVERIFY(text->HeightOfText(text->width()) <= text->height());
        QVERIFY(text->geometry().bottom() < Button(dialog, 345)->geometry().top());
    }

    void TheTabKeyGoesThroughAllControls() {
        const Dialog dialog = Open(4, english_.Word("IDS_UNHEALTHY_1"));
        dialog->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(dialog.get()));
        QStringList visited;
        for (int i = 0; i < 4; ++i) {
            visited << dialog->focusWidget()->objectName();
            QTest::keyClick(dialog->focusWidget(), Qt::Key_Tab);
        }
        QCOMPARE(visited, (QStringList{QStringLiteral("345"), QStringLiteral("348"),
                                       QStringLiteral("342"), QStringLiteral("350000")}));
    }

    void AScreenReaderHearsTitleTextAndButtons() {
        const Dialog dialog = Open(2, QStringLiteral("Really?"));
        auto* heard = QAccessible::queryAccessibleInterface(dialog.get());
        QCOMPARE(heard->role(), QAccessible::Dialog);
        QCOMPARE(heard->text(QAccessible::Name), QStringLiteral("Title"));
        QCOMPARE(heard->text(QAccessible::Description), QStringLiteral("Really?"));
        for (auto* control : dialog->findChildren<QWidget*>()) {
            auto* part = QAccessible::queryAccessibleInterface(control);
            QVERIFY(!part->text(QAccessible::Name).isEmpty());
            QVERIFY(part->role() == QAccessible::Button || part->role() == QAccessible::StaticText);
            QVERIFY(control->objectName().toInt() > 0);
        }
    }

    void ItRunsForAWorkerWhoWaitsForTheAnswer() {
        state_.g_nMessageKind = 2;
        std::atomic<int> answer{-1};
        std::thread worker([&] {
            CMessageDlg::Run(state_, english_.Get(), QStringLiteral("Really?"), {}, {}, {},
                             nullptr);
            answer = state_.g_bMessageYes.load();
        });
        // The window runs in a loop of its own below this one; only a timer gets a word in.
        QTimer poll;
        bool seenRight = false;
        connect(&poll, &QTimer::timeout, this, [&] {
            if (auto* dialog = qobject_cast<CMessageDlg*>(QApplication::activeModalWidget())) {
                seenRight = answer == -1 && dialog->thread() == QThread::currentThread();
                dialog->OnCommand(343);
            }
        });
        poll.start(20);
        QTRY_COMPARE(answer.load(), 1);
        worker.join();
        QVERIFY(seenRight);
        QVERIFY(QApplication::activeModalWidget() == nullptr);
    }

    void TwoThreadsMayShowANoteAtTheSameTime() {
        std::thread worker;
        QTimer::singleShot(0, this, [&] {
            auto* first = qobject_cast<CMessageDlg*>(QApplication::activeModalWidget());
            QVERIFY(first != nullptr);
            state_.g_nMessageKind = 3;
            worker = std::thread([&] {
                CMessageDlg::Run(state_, english_.Get(), QStringLiteral("Second"), {}, {}, {},
                                 nullptr);
            });
            QTimer::singleShot(200, this, [first] {
                auto* second = qobject_cast<CMessageDlg*>(QApplication::activeModalWidget());
                QVERIFY(second != first);
                second->OnCommand(345);
                QVERIFY(first->isVisible());
                QCOMPARE(first->Kind(), 2);
                QTimer::singleShot(0, first, [first] { first->OnCommand(344); });
            });
        });
        state_.g_nMessageKind = 2;
        CMessageDlg::Run(state_, english_.Get(), QStringLiteral("First"), {}, {}, {}, nullptr);
        worker.join();
        QCOMPARE(state_.g_nMessageKind.load(), 0);
    }

    void ItStandsInTheMiddleOfItsParent() {
        QWidget parent;
        parent.setGeometry(40, 30, 700, 500);
        parent.show();
        const Dialog dialog = Open(3, QStringLiteral("Note"), &parent);
        const QPoint apart = dialog->frameGeometry().center() - parent.frameGeometry().center();
        QVERIFY(apart.manhattanLength() <= 2);
    }
};

}  // namespace
}  // namespace clipfix

int main(int argc, char* argv[]) {
    QApplication application(argc, argv);
    clipfix::test::PrepareLook(application);
    clipfix::MessageDlgTest dialogs;
    return QTest::qExec(&dialogs, argc, argv);
}

#include "message_dlg_test.moc"
