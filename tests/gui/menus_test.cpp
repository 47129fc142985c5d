// The menus of the title bar: their entries in each language, and where each entry leads.

#include <QApplication>
#include <QMenu>
#include <QTest>

#include "gui/window_rig.h"
#include "shell/about_dlg.h"

namespace clipfix {
namespace {

using test::WindowRig;

class MenusTest : public QObject {
    Q_OBJECT

    // The entries of a menu, "id label" for a command and "label >" for a menu below.
    static QStringList EntriesOf(const QMenu& menu) {
        QStringList entries;
        for (const QAction* action : menu.actions()) {
            entries << (action->menu() != nullptr
                            ? action->text() + QStringLiteral(" >")
                            : action->objectName() + QLatin1Char(' ') + action->text());
        }
        return entries;
    }
    // Opens the menu of a button, looks at it and closes it.
    static void Look(const WindowRig& rig, int button, const std::function<void(QMenu&)>& look) {
        bool seen = false;
        QTimer::singleShot(50, rig.frame.get(), [&] {
            auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            QVERIFY(menu != nullptr);
            look(*menu);
            seen = true;
            menu->close();
        });
        rig.frame->OnCommand(button);
        QVERIFY(seen);
    }
    static void Choose(const WindowRig& rig, int button, int entry) {
        Look(rig, button, [entry](QMenu& menu) {
            auto* action = menu.findChild<QAction*>(QString::number(entry));
            QVERIFY(action != nullptr);
            action->trigger();
        });
    }

  private Q_SLOTS:
    void TheProgramMenuHoldsLanguagesAndUpdate_data() { test::EachLanguage(); }
    void TheProgramMenuHoldsLanguagesAndUpdate() {
        QFETCH(QString, language);
        const WindowRig rig(language);
        Look(rig, 327, [&](QMenu& menu) {
            QCOMPARE(EntriesOf(menu),
                     QStringList({rig.Word("IDS_MENU_LANGUAGE") + QStringLiteral(" >"),
                                  QStringLiteral("32780 ") + rig.Word("IDS_MENU_UPDATE")}));
            // Each language calls itself by its own name, whatever the window speaks.
            QCOMPARE(EntriesOf(*menu.actions().constFirst()->menu()),
                     QStringList({QStringLiteral("40043 English"), QStringLiteral("40044 Français"),
                                  QStringLiteral("40045 Deutsch"), QStringLiteral("40046 Italiano"),
                                  QStringLiteral("40047 Español")}));
        });
    }

    void TheHelpMenuHoldsHelpSupportAndAbout_data() { test::EachLanguage(); }
    void TheHelpMenuHoldsHelpSupportAndAbout() {
        QFETCH(QString, language);
        const WindowRig rig(language);
        Look(rig, 325, [&](QMenu& menu) {
            QCOMPARE(EntriesOf(menu),
                     QStringList({QStringLiteral("32779 ") + rig.Word("IDS_HELP"),
                                  QStringLiteral("32786 ") + rig.Word("IDS_SUPPORT"),
                                  QStringLiteral("32781 ") + rig.Word("IDS_MENU_ABOUT")}));
        });
    }

    void TheEnglishEntriesHaveTheirSettledWords() {
        const WindowRig rig;
        QCOMPARE(rig.Word("IDS_MENU_LANGUAGE"), QStringLiteral("Language"));
        QCOMPARE(rig.Word("IDS_MENU_UPDATE"), QStringLiteral("Update"));
        QCOMPARE(rig.Word("IDS_HELP"), QStringLiteral("Help"));
        QCOMPARE(rig.Word("IDS_SUPPORT"), QStringLiteral("Support"));
        QCOMPARE(rig.Word("IDS_MENU_ABOUT"), QStringLiteral("About"));
    }

    // No control sends its command; the names are those of other houses.
    void TheSocialMenuHoldsThreePagesWithAPictureEach() {
        const WindowRig rig(QStringLiteral("German"));
        Look(rig, 326, [](QMenu& menu) {
            QCOMPARE(EntriesOf(menu),
                     QStringList({QStringLiteral("22786 Google+"), QStringLiteral("22796 Twitter"),
                                  QStringLiteral("22806 Facebook")}));
            for (const QAction* action : menu.actions()) {
                QVERIFY(!action->icon().isNull());
            }
        });
    }

    void UpdateStartsTheUpdaterAndTellsAFailedStart() {
        WindowRig rig;
        Choose(rig, 327, 32780);
        QCOMPARE(rig.desktop.started.size(), 1U);
        QCOMPARE(rig.desktop.started[0].path, rig.work.filePath("kcupdate").toStdString());
        QCOMPARE(rig.desktop.started[0].arguments, QStringList(QStringLiteral("/NoUpdateSelf")));
        QVERIFY(rig.desktop.boxes.isEmpty());
        rig.desktop.startCode = 3;
        rig.frame->OnCommand(32780);
        QCOMPARE(rig.desktop.boxes,
                 QStringList(rig.Word("IDS_RUNNING3") +
                             QStringLiteral("|The specified path was not found.")));
    }

    void HelpIsOpenedInTheLanguageOfTheWindow() {
        WindowRig rig(QStringLiteral("Portuguese"));
        Choose(rig, 325, 32779);
        QCOMPARE(rig.desktop.opened.size(), 1);
        QVERIFY(rig.desktop.opened[0].endsWith(QStringLiteral("/kc-clipfix.pt.html")));
        rig.Press(Qt::Key_F1);
        QCOMPARE(rig.desktop.opened.size(), 2);
        rig.desktop.startCode = 2;
        rig.frame->OnCommand(32786);
        QCOMPARE(rig.desktop.boxes.size(), 1);
    }

    void AboutIsModal() {
        const WindowRig rig;
        bool modal = false;
        QTimer::singleShot(50, rig.frame.get(), [&] {
            auto* about = qobject_cast<CAboutDlg*>(QApplication::activeModalWidget());
            QVERIFY(about != nullptr);
            modal = true;
            QTest::keyClick(about, Qt::Key_Escape);
        });
        rig.frame->OnCommand(32781);
        QVERIFY(modal);
    }

    void ALanguageIsChosenInTheMenu() {
        const WindowRig rig;
        Choose(rig, 327, 40046);
        QCOMPARE(rig.TextOf(JobControlId::AddFile), QStringLiteral("Aggiungi file"));
        Look(rig, 325, [](QMenu& menu) {
            QCOMPARE(menu.actions().constFirst()->text(), QStringLiteral("Guida"));
        });
        // The one in use bears the check mark.
        Look(rig, 327, [](QMenu& menu) {
            QStringList checked;
            for (const QAction* entry : menu.actions().constFirst()->menu()->actions()) {
                if (entry->isChecked()) {
                    checked << entry->text();
                }
            }
            QCOMPARE(checked, QStringList(QStringLiteral("Italiano")));
        });
    }
};

}  // namespace
}  // namespace clipfix

int main(int argc, char* argv[]) {
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    clipfix::test::PrepareLook(application);
    clipfix::MenusTest menus;
    return QTest::qExec(&menus, argc, argv);
}

#include "menus_test.moc"
