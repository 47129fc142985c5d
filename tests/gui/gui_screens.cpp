// Draws every look of every control, every kind of the message window and every page of a job into
// picture files:
//     gui_screens FOLDER LANGUAGE
// The scale comes from QT_SCALE_FACTOR. tests/gui/contact_sheet puts the pictures together.

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QMenu>
#include <QMessageBox>
#include <QTest>
#include <cstdio>
#include <functional>
#include <vector>

#include "gui/gui_support.h"
#include "gui/page_walk.h"
#include "gui/window_rig.h"
#include "shell/about_dlg.h"
#include "shell/controls/button_st.h"
#include "shell/controls/hyper_link.h"
#include "shell/controls/picture_ex.h"
#include "shell/controls/x_cmd_btn.h"
#include "shell/controls/x_progress_bar.h"
#include "shell/controls/x_static.h"
#include "shell/main_frame.h"
#include "shell/message_dlg.h"
#include "shell/skin/pictures.h"

namespace clipfix {
namespace {

class Screens {
  public:
    Screens(QString folder, const QString& language)
        : folder_(std::move(folder)), language_(language), texts_(language) {}

    void DrawAll() {
        DrawCommandButtons();
        DrawPictureButtons();
        DrawTextsAndLinks();
        DrawBars();
        DrawAnimations();
        DrawDialogs();
        DrawPages();
    }

  private:
    // The four looks and the focus of one control, side by side on a white ground.
    template <typename Control>
    void DrawLooks(const QString& name, QSize size, const std::function<Control*(QWidget*)>& make) {
        constexpr int kGap = 14;
        QWidget ground;
        ground.setAutoFillBackground(true);
        QPalette white = ground.palette();
        white.setColor(QPalette::Window, Qt::white);
        ground.setPalette(white);
        std::vector<Control*> controls;
        for (int i = 0; i < 5; ++i) {
            controls.push_back(make(&ground));
            controls.back()->setGeometry(
                QRect(QPoint(kGap + i * (size.width() + kGap), kGap), size));
        }
        ground.resize(kGap + 5 * (size.width() + kGap), size.height() + 2 * kGap);
        ground.show();
        ground.activateWindow();
        (void)QTest::qWaitForWindowActive(&ground, 2000);
        test::Hover(*controls[1], true);
        test::Hover(*controls[2], true);
        controls[2]->setDown(true);
        controls[3]->setEnabled(false);
        controls[4]->setFocus(Qt::TabFocusReason);
        Save(ground, name);
    }

    void DrawCommandButtons() {
        const auto make = [this](const char* key) {
            return [this, key](QWidget* parent) {
                auto* button = new CXCmdBtn(333, parent);
                button->setText(texts_.Word(key));
                return button;
            };
        };
        DrawLooks<CXCmdBtn>(QStringLiteral("01-command"), {121, 35}, make("IDS_REPAIR"));
        DrawLooks<CXCmdBtn>(QStringLiteral("02-command-wide"), {200, 44}, make("IDS_ADD_FILE"));
        DrawLooks<CXCmdBtn>(QStringLiteral("03-quiet"), {121, 35}, [this](QWidget* parent) {
            auto* button = new CXCmdBtn(344, parent);
            button->setText(texts_.Word("IDS_NO"));
            button->SetFaces(skin::kQuietNormal, skin::kQuietHover, skin::kCommandPressed,
                             skin::kCommandDisabled);
            return button;
        });
    }

    void DrawPictureButtons() {
        int number = 10;
        for (const int picture : {skin::kClose, skin::kMinimise, skin::kMaximise, skin::kRestore,
                                  skin::kProgramMenu, skin::kHelpMenu, skin::kHome}) {
            DrawLooks<CButtonST>(QStringLiteral("%1-picture-%2").arg(number++).arg(picture),
                                 {26, 26}, [picture](QWidget* parent) {
                                     return new CButtonST(320, picture, QStringLiteral("x"),
                                                          parent);
                                 });
        }
        DrawLooks<CButtonST>(QStringLiteral("17-play"), {96, 96}, [](QWidget* parent) {
            return new CButtonST(339, skin::kPlay, QStringLiteral("x"), parent);
        });
    }

    void DrawTextsAndLinks() {
        DrawLooks<CHyperLink>(QStringLiteral("20-link"), {310, 24}, [this](QWidget* parent) {
            auto* link = new CHyperLink(346, parent);
            link->setText(texts_.Word("IDS_WHY_HEALTHY"));
            return link;
        });
        QWidget ground;
        ground.resize(520, 150);
        const auto put = [&](int id, const char* key, int top, int height, const char* face,
                             skin::ColourValue colour) {
            auto* text = new CXStatic(id, &ground);
            text->setText(texts_.Word(key));
            text->SetFace(QString::fromLatin1(face));
            text->SetHeight(height);
            text->SetTextColour(colour);
            text->setGeometry(14, top, 500, height + 2);
        };
        put(61255, "IDS_SELECT_REFERNCE_HEADER", 10, 25, "Segoe UI", skin::kText);
        put(61279, "IDS_FILE_SELECTED", 50, 20, "Segoe UI Semibold", skin::kSelectedText);
        put(61257, "IDS_SELECT_REFERENCE", 80, 20, "Segoe UI", skin::kWarningText);
        put(61260, "IDS_PLEASE_WAIT_SAVING", 110, 20, "Segoe UI", skin::kText);
        ground.show();
        Save(ground, QStringLiteral("21-texts"));
    }

    void DrawBars() {
        for (const int percent : {0, 1, 37, 96, 100}) {
            JobState state;
            state.g_bMovJob = 1;
            state.g_nMovPercent = percent;
            QWidget ground;
            QPalette white = ground.palette();
            white.setColor(QPalette::Window, Qt::white);
            ground.setPalette(white);
            CXProgressBar bar(0, state, &ground);
            bar.setGeometry(14, 14, 450, 14);
            ground.resize(478, 42);
            ground.show();
            Save(ground, QStringLiteral("30-bar-%1").arg(percent, 3, 10, QLatin1Char('0')));
        }
    }

    void DrawAnimations() {
        for (const int picture : {skin::kBusyRepair, skin::kBusySave}) {
            CPictureEx animation(341, nullptr);
            animation.resize(animation.sizeHint());
            (void)animation.Load(picture);
            animation.show();
            (void)QTest::qWaitFor([&] { return animation.IsLoaded(); }, 10000);
            for (const int frame : {0, 7, 20}) {
                while (animation.CurrentFrame() != frame) {
                    animation.OnTimer();
                }
                Save(animation, QStringLiteral("40-busy-%1-%2").arg(picture).arg(frame));
            }
        }
    }

    void DrawDialogs() {
        struct Case {
            const char* name;
            int kind;
            const char* key;
            const char* titleKey;
        };
        for (const Case& shown :
             {Case{"50-kind1-quit", 1, "IDS_CLOSE_DLG_MSG ", "IDS_CONFIRMATION"},
              Case{"51-kind2-cancel", 2, "IDS_CANCEL_DLG_MSG ", "IDS_CONFIRMATION"},
              Case{"52-kind3-note", 3, "IDS_REPAIR_ABORTED", "IDS_INFORMATION"},
              Case{"53-kind3-saved", 3, "IDS_SAVE_COMPLETED", "IDS_INFORMATION"},
              Case{"54-kind4-refused", 4, "IDS_SAVE_PROCESSING", "IDS_INFORMATION"},
              Case{"55-kind4-link", 4, "IDS_UNHEALTHY_1", "IDS_INFORMATION"},
              Case{"56-kind4-link-short", 4, "IDS_MOVERROR2", "IDS_INFORMATION"},
              Case{"57-kind4-link-long", 4, "IDS_MOVERROR4", "IDS_INFORMATION"},
              Case{"58-kind5-space", 5, "IDS_ERROR9", "IDS_INFORMATION"}}) {
            JobState state;
            state.g_nMessageKind = shown.kind;
            CMessageDlg dialog(state, texts_.Get(), texts_.Word(shown.key),
                               texts_.Word(shown.titleKey), {}, QStringLiteral("Ok"), nullptr);
            dialog.show();
            dialog.activateWindow();
            (void)QTest::qWaitForWindowActive(&dialog, 2000);
            Save(dialog, QString::fromLatin1(shown.name));
        }
    }

    void DrawPages() {
        test::WindowRig rig(language_);
        const test::WalkedFilms films =
            test::MakeWalkedFilms(rig, QStringLiteral("A rather long name of a holiday film 2026"));
        test::WalkPages(rig, films, [&](const char* page) {
            QTest::qWait(400);  // the animation's frames are made meanwhile
            Save(*rig.frame, QString::fromLatin1(page));
        });
        rig.frame->Container().ShowDropTarget(true);
        Save(*rig.frame, QStringLiteral("69-drop"));
        rig.frame->Container().ShowDropTarget(false);
        DrawMenusAndAbout(rig);
    }

    void DrawMenusAndAbout(test::WindowRig& rig) {
        for (const int button : {CMainFrame::kProgramMenuButton, CMainFrame::kHelpMenuButton}) {
            QTimer::singleShot(200, &rig, [&] {
                auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
                Save(*menu, QStringLiteral("7%1-menu").arg(button));
                if (QMenu* languages = menu->actions().constFirst()->menu()) {
                    languages->setActiveAction(languages->actions().constLast());
                    Save(*languages, QStringLiteral("7%1-languages").arg(button));
                }
                menu->close();
            });
            rig.frame->OnCommand(button);
        }
        DrawToolkitWindows(rig);
        CAboutDlg about(texts_.Get(), rig.frame.get());
        about.show();
        QTest::qWait(100);
        Save(about, QStringLiteral("79-about"));
    }

    // The toolkit's own windows, as a desktop without windows of that kind shows them.
    void DrawToolkitWindows(test::WindowRig& rig) {
        QFileDialog files(rig.frame.get(), texts_.Word("IDS_SELECT_VIDEO"), rig.work.path(),
                          ToolkitFilter(QString::fromLatin1(kVideoFilter)));
        files.setOption(QFileDialog::DontUseNativeDialog);
        MakeRoom(files);
        files.show();
        QTest::qWait(300);
        Save(files, QStringLiteral("77-file-dialog"));
        QMessageBox box(QMessageBox::Critical, texts_.Word("IDS_RUNNING3"), FailedStartText(2),
                        QMessageBox::Ok, rig.frame.get());
        box.show();
        QTest::qWait(100);
        Save(box, QStringLiteral("78-box"));
    }

    void Save(QWidget& widget, const QString& name) {
        QCoreApplication::processEvents();
        const QString file = folder_ + QLatin1Char('/') + name + QStringLiteral(".png");
        if (!widget.grab().save(file)) {
            std::fprintf(stderr, "cannot write %s\n", qPrintable(file));
            std::exit(1);
        }
    }

    QString folder_;
    QString language_;
    test::LanguageTexts texts_;
};

}  // namespace
}  // namespace clipfix

int main(int argc, char* argv[]) {
    QApplication::setHighDpiScaleFactorRoundingPolicy(
        Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
    QApplication application(argc, argv);
    if (argc != 3 || !QDir().mkpath(QString::fromLocal8Bit(argv[1]))) {
        std::fprintf(stderr, "gui_screens FOLDER LANGUAGE\n");
        return 2;
    }
    clipfix::test::PrepareLook(application);
    clipfix::Screens(QString::fromLocal8Bit(argv[1]), QString::fromLocal8Bit(argv[2])).DrawAll();
    return 0;
}
