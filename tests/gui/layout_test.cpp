// No text of the window is ever cut and nothing stands on anything else: every page of a job, every
// message and the About box, in each language, with names as long and as wide as they come. The
// scale of the screen comes from QT_SCALE_FACTOR.

#include <QApplication>
#include <QFontMetrics>
#include <QTest>

#include "gui/gui_support.h"
#include "gui/page_walk.h"
#include "shell/about_dlg.h"
#include "shell/message_dlg.h"

namespace clipfix {
namespace {

// What the program shows in the message window: text, kind.
struct Shown {
    const char* key;
    int kind;
};
constexpr std::array kShown{Shown{"IDS_CLOSE_DLG_MSG ", 1},    Shown{"IDS_CANCEL_DLG_MSG ", 2},
                            Shown{"IDS_REPAIR_ABORTED", 3},    Shown{"IDS_SAVE_ABORTED", 3},
                            Shown{"IDS_SAVE_ABORTED  ", 3},    Shown{"IDS_SAVE_COMPLETED", 3},
                            Shown{"IDS_REPAIR_PROCESSING", 4}, Shown{"IDS_SAVE_PROCESSING", 4},
                            Shown{"IDS_UNHEALTHY_1", 4},       Shown{"IDS_MOVERROR1", 4},
                            Shown{"IDS_MOVERROR2", 4},         Shown{"IDS_MOVERROR3", 4},
                            Shown{"IDS_MOVERROR4", 4},         Shown{"IDS_AVIERROR1", 4},
                            Shown{"IDS_AVIERROR2", 4},         Shown{"IDS_AVIERROR3", 4},
                            Shown{"IDS_AVIERROR5", 4},         Shown{"IDS_ERROR9", 5}};

bool Fits(const CXStatic& text) {
    const QFontMetrics metrics(text.font());
    if (!text.wordWrap()) {
        return metrics.horizontalAdvance(text.text()) <= text.width() &&
               metrics.height() <= text.height();
    }
    int widestWord = 0;
    for (const QString& word : text.text().split(QLatin1Char(' '))) {
        widestWord = std::max(widestWord, metrics.horizontalAdvance(word));
    }
    return widestWord <= text.width() && text.HeightOfText(text.width()) <= text.height();
}

bool Fits(const CXCmdBtn& button) {
    const QFontMetrics metrics(button.LabelFont());
    constexpr int kLeastPadding = 8;  // logical pixels at each side
    return metrics.horizontalAdvance(button.text()) <= button.width() - 2 * kLeastPadding &&
           metrics.height() <= button.height();
}

bool Fits(const CHyperLink& link) {
    return link.sizeHint().width() <= link.width() && link.sizeHint().height() <= link.height();
}

QString Told(const QWidget& widget, const QString& text, const char* fault) {
    const QRect at = widget.geometry();
    return QStringLiteral("%1 \"%2\" %3 in %4x%5 at %6,%7")
        .arg(widget.objectName(), text, QLatin1String(fault))
        .arg(at.width())
        .arg(at.height())
        .arg(at.x())
        .arg(at.y());
}

// Every fault of the layout of what stands in `window`; empty when there is none.
QStringList FaultsOf(const QWidget& window) {
    QStringList faults;
    QList<const QWidget*> standing;
    for (const auto* widget : window.findChildren<const QWidget*>()) {
        if (!widget->isVisible()) {
            continue;
        }
        const auto* text = qobject_cast<const CXStatic*>(widget);
        const auto* button = qobject_cast<const CXCmdBtn*>(widget);
        const auto* link = qobject_cast<const CHyperLink*>(widget);
        if (text != nullptr && !Fits(*text)) {
            faults << Told(*widget, text->text(), "is cut");
        }
        if (button != nullptr && !Fits(*button)) {
            faults << Told(*widget, button->text(), "is cut");
        }
        if (link != nullptr && !Fits(*link)) {
            faults << Told(*widget, link->text(), "is cut");
        }
        if (!widget->parentWidget()->rect().contains(widget->geometry())) {
            faults << Told(*widget, {}, "leaves its section");
        }
        const bool empty = text != nullptr && text->text().isEmpty();
        if (widget->children().isEmpty() && !empty) {
            standing << widget;
        }
    }
    for (int i = 0; i < standing.size(); ++i) {
        for (int k = i + 1; k < standing.size(); ++k) {
            const QWidget* one = standing[i];
            const QWidget* other = standing[k];
            if (one->parentWidget() == other->parentWidget() &&
                one->geometry().intersects(other->geometry())) {
                faults << Told(*one, other->objectName(), "stands on the other");
            }
        }
    }
    return faults;
}

class LayoutTest : public QObject {
    Q_OBJECT

    static void WalkWithNames(const QString& language, const QString& name) {
        test::WindowRig rig(language);
        const test::WalkedFilms films = test::MakeWalkedFilms(rig, name);
        test::WalkPages(rig, films, [&](const char* page) {
            const QStringList faults = FaultsOf(*rig.frame);
            QVERIFY2(faults.isEmpty(), qPrintable(QLatin1String(page) + QStringLiteral(": ") +
                                                  faults.join(QStringLiteral("; "))));
        });
    }

  private Q_SLOTS:
    void ThePagesWithAnOrdinaryName_data() { test::EachLanguage(); }
    void ThePagesWithAnOrdinaryName() {
        QFETCH(QString, language);
        WalkWithNames(language, QStringLiteral("holiday"));
    }

    void ThePagesWithALongName_data() { test::EachLanguage(); }
    void ThePagesWithALongName() {
        QFETCH(QString, language);
        WalkWithNames(
            language,
            QStringLiteral("A long name of a film of the holidays at the sea ").repeated(4));
    }

    void ThePagesWithTheWidestName() {
        WalkWithNames(QStringLiteral("German"), QString(200, QLatin1Char('W')));
    }

    void Messages_data() { test::EachLanguage(); }
    void Messages() {
        QFETCH(QString, language);
        test::LanguageTexts texts(language);
        for (const Shown& shown : kShown) {
            JobState state;
            state.g_nMessageKind = shown.kind;
            const char* title = shown.kind < 3 ? "IDS_CONFIRMATION" : "IDS_INFORMATION";
            CMessageDlg dialog(state, texts.Get(), texts.Word(shown.key), texts.Word(title), {}, {},
                               nullptr);
            dialog.show();
            const QStringList faults = FaultsOf(dialog);
            QVERIFY2(faults.isEmpty(), qPrintable(QLatin1String(shown.key) + QStringLiteral(": ") +
                                                  faults.join(QStringLiteral("; "))));
            QVERIFY2(dialog.size() == QSize(530, 270), shown.key);
        }
    }

    void TheAboutBox_data() { test::EachLanguage(); }
    void TheAboutBox() {
        QFETCH(QString, language);
        test::LanguageTexts texts(language);
        CAboutDlg about(texts.Get(), nullptr);
        about.show();
        const QStringList faults = FaultsOf(about);
        QVERIFY2(faults.isEmpty(), qPrintable(faults.join(QStringLiteral("; "))));
    }

    // The check itself: what is too narrow, too low or covered is found.
    void FaultsAreFound() {
        QWidget window;
        window.resize(400, 200);
        CXStatic text(1, &window);
        text.setText(QStringLiteral("some words"));
        text.setGeometry(0, 0, 200, 30);
        CXCmdBtn button(2, &window);
        button.setText(QStringLiteral("Repair"));
        button.setGeometry(0, 60, 121, 35);
        window.show();
        QVERIFY(FaultsOf(window).isEmpty());
        text.resize(20, 30);
        QCOMPARE(FaultsOf(window).size(), 1);
        text.setGeometry(0, 0, 200, 10);
        QCOMPARE(FaultsOf(window).size(), 1);
        text.setGeometry(0, 50, 200, 30);
        QCOMPARE(FaultsOf(window).size(), 1);
        text.setGeometry(300, 0, 200, 30);
        QCOMPARE(FaultsOf(window).size(), 1);
        text.setGeometry(0, 0, 200, 30);
        button.setGeometry(0, 60, 24, 35);
        QCOMPARE(FaultsOf(window).size(), 1);
    }
};

}  // namespace
}  // namespace clipfix

int main(int argc, char* argv[]) {
    QApplication::setHighDpiScaleFactorRoundingPolicy(
        Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    clipfix::test::PrepareLook(application);
    clipfix::LayoutTest layout;
    return QTest::qExec(&layout, argc, argv);
}

#include "layout_test.moc"
