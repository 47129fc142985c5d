// What a screen reader is told on every page, in each language: every control has its number, a
// role and a name, and the names follow the language, also when it is changed on the way.

#include <QAccessible>
#include <QApplication>
#include <QRegularExpression>
#include <QTest>

#include "gui/gui_support.h"
#include "gui/page_walk.h"
#include "shell/about_dlg.h"
#include "shell/message_dlg.h"

namespace clipfix {
namespace {

QAccessible::Role AwaitedRole(const QWidget& widget) {
    if (qobject_cast<const ControlButton*>(&widget) != nullptr) {
        return QAccessible::Button;
    }
    if (qobject_cast<const CHyperLink*>(&widget) != nullptr) {
        return QAccessible::Link;
    }
    if (qobject_cast<const CXProgressBar*>(&widget) != nullptr) {
        return QAccessible::ProgressBar;
    }
    if (qobject_cast<const CPictureEx*>(&widget) != nullptr) {
        return QAccessible::Animation;
    }
    return QAccessible::StaticText;
}

// What stands in the window in every language: a value behind its colon, a number with its percent,
// a time, and the labels whose first words are settled.
bool IsNoText(const QString& name) {
    static const QRegularExpression kPattern(
        QStringLiteral("^(: .*|[0-9]+%| ?[0-9:]+|(Corrupted File|Path|Healthy File): .*)$"));
    return kPattern.match(name).hasMatch();
}

class Words {
  public:
    explicit Words(const QString& language) : words_(test::AllWords(language)), texts_(language) {}

    [[nodiscard]] bool Hold(const QString& name) const {
        return words_.contains(name) ||
               name.startsWith(texts_.Word("IDS_DESTINATION") + QStringLiteral(": /"));
    }

  private:
    QStringList words_;
    test::LanguageTexts texts_;
};

// Every fault of what a screen reader is told of `window`.
QStringList FaultsOf(const QWidget& window, const Words& words) {
    QStringList faults;
    for (auto* widget : window.findChildren<QWidget*>()) {
        if (!widget->isVisible() || !widget->findChildren<QWidget*>().isEmpty()) {
            continue;
        }
        auto* heard = QAccessible::queryAccessibleInterface(widget);
        const QString name = heard->text(QAccessible::Name);
        const QString told = widget->objectName() + QStringLiteral(" \"") + name + QLatin1Char('"');
        bool isNumber = false;
        (void)widget->objectName().toInt(&isNumber);
        if (!isNumber) {
            faults << told + QStringLiteral(" has no number");
        }
        if (heard->role() != AwaitedRole(*widget)) {
            faults << told + QStringLiteral(" has another role");
        }
        if (!IsNoText(name) && !words.Hold(name)) {
            faults << told + QStringLiteral(" is no word of the language");
        }
        if (!widget->toolTip().isEmpty() && !words.Hold(widget->toolTip())) {
            faults << told + QStringLiteral(" has a foreign tooltip: ") + widget->toolTip();
        }
    }
    return faults;
}

class AccessibilityTest : public QObject {
    Q_OBJECT

    static void Verify(const QStringList& faults, const QString& where) {
        QVERIFY2(faults.isEmpty(),
                 qPrintable(where + QStringLiteral(": ") + faults.join(QStringLiteral("; "))));
    }

  private Q_SLOTS:
    void EveryPage_data() { test::EachLanguage(); }
    void EveryPage() {
        QFETCH(QString, language);
        test::WindowRig rig(language);
        const Words words(language);
        test::WalkPages(
            rig, test::MakeWalkedFilms(rig, QStringLiteral("film")),
            [&](const char* page) { Verify(FaultsOf(*rig.frame, words), QLatin1String(page)); });
    }

    // From each language to each other one that the menu offers, wherever the job is.
    void EveryPageAfterAChangeOfLanguage() {
        const std::vector<std::pair<int, const char*>> menu{{40047, "Spanish"},
                                                            {40044, "French"},
                                                            {40046, "Italian"},
                                                            {40045, "German"},
                                                            {40043, "English"}};
        test::WindowRig rig;
        test::WalkPages(
            rig, test::MakeWalkedFilms(rig, QStringLiteral("film")), [&](const char* page) {
                for (const auto& [id, language] : menu) {
                    rig.frame->OnCommand(id);
                    Verify(FaultsOf(*rig.frame, Words(QLatin1String(language))),
                           QLatin1String(page) + QLatin1Char(' ') + QLatin1String(language));
                }
            });
    }

    void TheMaximisedWindow() {
        test::WindowRig rig(QStringLiteral("German"));
        rig.frame->OnSystemCommand(CMainFrame::SystemCommand::Maximise);
        Verify(FaultsOf(*rig.frame, Words(QStringLiteral("German"))), QStringLiteral("maximised"));
        auto* button = rig.frame->findChild<CButtonST*>(QStringLiteral("322"));
        QCOMPARE(button->accessibleName(), rig.Word("IDS_RESTORE"));
        rig.frame->OnCommand(40044);
        QCOMPARE(button->accessibleName(), QStringLiteral("Restaurer"));
        rig.frame->OnSystemCommand(CMainFrame::SystemCommand::Restore);
        QCOMPARE(button->accessibleName(), QStringLiteral("Agrandir"));
    }

    void EveryMessage_data() { test::EachLanguage(); }
    void EveryMessage() {
        QFETCH(QString, language);
        test::LanguageTexts texts(language);
        const Words words(language);
        for (const auto& [key, kind] :
             std::vector<std::pair<const char*, int>>{{"IDS_CLOSE_DLG_MSG ", 1},
                                                      {"IDS_CANCEL_DLG_MSG ", 2},
                                                      {"IDS_SAVE_COMPLETED", 3},
                                                      {"IDS_UNHEALTHY_1", 4},
                                                      {"IDS_ERROR9", 5}}) {
            JobState state;
            state.g_nMessageKind = kind;
            CMessageDlg dialog(state, texts.Get(), texts.Word(key), texts.Word("IDS_INFORMATION"),
                               {}, {}, nullptr);
            dialog.show();
            Verify(FaultsOf(dialog, words), QLatin1String(key));
            auto* heard = QAccessible::queryAccessibleInterface(&dialog);
            QCOMPARE(heard->role(), QAccessible::Dialog);
            QCOMPARE(heard->text(QAccessible::Name), texts.Word("IDS_INFORMATION"));
            QCOMPARE(heard->text(QAccessible::Description), texts.Word(key));
        }
    }

    void TheAboutBox_data() { test::EachLanguage(); }
    void TheAboutBox() {
        QFETCH(QString, language);
        test::LanguageTexts texts(language);
        CAboutDlg about(texts.Get(), nullptr);
        about.show();
        auto* heard = QAccessible::queryAccessibleInterface(&about);
        QCOMPARE(heard->role(), QAccessible::Dialog);
        QCOMPARE(heard->text(QAccessible::Name), texts.Word("IDS_ABOUT"));
        QStringList names;
        for (auto* widget : about.findChildren<QWidget*>()) {
            names << QAccessible::queryAccessibleInterface(widget)->text(QAccessible::Name);
            QVERIFY(widget->objectName().toInt() > 0);
        }
        for (const char* key :
             {"IDS_ABOUT_PURPOSE", "IDS_ABOUT_LICENCE", "IDS_ABOUT_COMPONENTS", "IDS_OK"}) {
            QVERIFY2(names.contains(texts.Word(key)), key);
        }
        QVERIFY(
            names.contains(texts.Word("IDS_VERSION_TEXT") + QStringLiteral(" " CLIPFIX_VERSION)));
        for (const char* component : {"Kelvo Clipfix", "Qt 6", "libmpv, FFmpeg", "FAAD2", "Boost",
                                      "{fmt}", "JSON for Modern C++", "CLI11", "Open Sans"}) {
            QVERIFY2(names.contains(QLatin1String(component)), component);
        }
    }
};

}  // namespace
}  // namespace clipfix

int main(int argc, char* argv[]) {
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    clipfix::test::PrepareLook(application);
    clipfix::AccessibilityTest accessibility;
    return QTest::qExec(&accessibility, argc, argv);
}

#include "accessibility_test.moc"
