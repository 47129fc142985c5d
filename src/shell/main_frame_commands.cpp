#include <QAction>
#include <QApplication>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QIcon>
#include <QMenu>
#include <QMimeData>
#include <array>

#include "job/state/job_paths.h"
#include "shell/about_dlg.h"
#include "shell/help_pages.h"
#include "shell/main_frame.h"
#include "shell/sibling_programs.h"
#include "shell/skin/menu_look.h"
#include "shell/skin/pictures.h"
#include "text/help_page.h"
#include "text/profile_file.h"

// The commands of the main window: home, menus, languages, help, and files that come from outside.
namespace clipfix {

namespace {

struct LanguageEntry {
    int id;
    const char* name;  // as its file is named
    const char* label;
};

constexpr std::array kLanguages{LanguageEntry{40043, "English", "English"},
                                LanguageEntry{40044, "French",
                                              "Fran\xC3\xA7"
                                              "ais"},
                                LanguageEntry{40045, "German", "Deutsch"},
                                LanguageEntry{40046, "Italian", "Italiano"},
                                LanguageEntry{40047, "Spanish", "Espa\xC3\xB1ol"}};

// Every text that can stand in the window, apart from those that hold a path or a value.
constexpr std::array kWindowKeys{"IDS_SELECT_VIDEO",
                                 "IDS_SELECT_REFERNCE_HEADER",
                                 "IDS_REPAIRING_VIDEO",
                                 "IDS_REPAIRED_DETAILS",
                                 "IDS_SAVING_VIDEO",
                                 "IDS_ADD_FILE",
                                 "IDS_REPAIR",
                                 "IDS_CHOOSE_REFERENCE_MOV_FILE",
                                 "IDS_PAUSE",
                                 "IDS_RESUME",
                                 "IDS_CANCEL",
                                 "IDS_BACK",
                                 "IDS_HOME",
                                 "IDS_PREVIEW",
                                 "IDS_SAVE",
                                 "IDS_CLICK_ADD",
                                 "IDS_FILE_SELECTED",
                                 "IDS_SELECT_REFERENCE",
                                 "IDS_WHY_HEALTHY",
                                 "IDS_PLEASE_WAIT",
                                 "IDS_PLEASE_WAIT_ANALYSING",
                                 "IDS_PLEASE_WAIT_SAVING",
                                 "IDS_START_TIME",
                                 "IDS_ELAPSED_TIME",
                                 "IDS_FILE_NAME",
                                 "IDS_SIZE",
                                 "IDS_TRACK",
                                 "IDS_CODEC",
                                 "IDS_US_PER_FRAME",
                                 "IDS_DURATION",
                                 "IDS_PROGRESS",
                                 "IDS_BUSY"};

constexpr int kOpenFailed = 4;  // kind of message
constexpr QLatin1String kBehind(": ");

}  // namespace

void CMainFrame::OnHomePage() {
    driver_.OnHomePage();
}

void CMainFrame::OnCommand(int id) {
    switch (id) {
        case kHomeButton:
            OnHomePage();
            break;
        case kProgramMenuButton:
            PopUpProgramMenu();
            break;
        case kHelpMenuButton:
            PopUpHelpMenu();
            break;
        case kSocialMenu:
            PopUpSocialMenu();
            break;
        case kUpdate:
            OnUpdate();
            break;
        case kAbout:
            CAboutDlg(*texts_, this).exec();
            break;
        case kHelp:
        case kSupport:
        case kFirstPage:
        case kSecondPage:
        case kThirdPage:
            // The maker has no pages of its own yet: all of them lead to the help.
            ShowPage(FindPage(parts_, QString::fromStdString(HelpPageOf(LanguageInUse()))));
            break;
        default:
            if (id >= kFirstLanguageCommand && id <= kLastLanguageCommand) {
                OnLanguage(id);
            }
            break;
    }
}

QUrl CMainFrame::HelpPage() const {
    return FindPage(parts_, WordOf(*texts_, "IDS_WHY_HEALTHY_URL"));
}

void CMainFrame::ShowPage(const QUrl& page) {
    TellFailedStart(parts_, this, parts_.desktop.Open(page));
}

void CMainFrame::OnUpdate() {
    TellFailedStart(
        parts_, this,
        parts_.desktop.StartProgram(settings_.programFolder / kUpdaterProgram,
                                    {QStringLiteral("/NoUpdateSelf")}, settings_.programFolder));
}

QAction* CMainFrame::AddCommand(QMenu& menu, const QString& label, int id) {
    QAction* action = menu.addAction(label);
    action->setObjectName(QString::number(id));
    connect(action, &QAction::triggered, this, [this, id] { OnCommand(id); });
    return action;
}

// The menu of the languages offers those that have a command and whose file is here.
void CMainFrame::PopUpProgramMenu() {
    QMenu menu(this);
    skin::ApplyMenuLook(menu);
    QMenu* languages = menu.addMenu(WordOf(*texts_, "IDS_MENU_LANGUAGE"));
    const auto folder = texts_->LanguageFile().parent_path();
    for (const LanguageEntry& language : kLanguages) {
        if (ProfileFileOpens(folder / (std::string(language.name) + ".ini"))) {
            QAction* action =
                AddCommand(*languages, QString::fromUtf8(language.label), language.id);
            action->setCheckable(true);
            action->setChecked(LanguageInUse() == language.name);
        }
    }
    AddCommand(menu, WordOf(*texts_, "IDS_MENU_UPDATE"), kUpdate);
    const QWidget* button = findChild<QWidget*>(QString::number(kProgramMenuButton));
    menu.exec(button->mapToGlobal(QPoint(0, button->height())));
}

void CMainFrame::PopUpHelpMenu() {
    QMenu menu(this);
    skin::ApplyMenuLook(menu);
    AddCommand(menu, WordOf(*texts_, "IDS_HELP"), kHelp);
    AddCommand(menu, WordOf(*texts_, "IDS_SUPPORT"), kSupport);
    AddCommand(menu, WordOf(*texts_, "IDS_MENU_ABOUT"), kAbout);
    const QWidget* button = findChild<QWidget*>(QString::number(kHelpMenuButton));
    menu.exec(button->mapToGlobal(QPoint(0, button->height())));
}

void CMainFrame::PopUpSocialMenu() {
    QMenu menu(this);
    skin::ApplyMenuLook(menu);
    AddCommand(menu, QStringLiteral("Google+"), kFirstPage);
    AddCommand(menu, QStringLiteral("Twitter"), kSecondPage);
    AddCommand(menu, QStringLiteral("Facebook"), kThirdPage);
    for (QAction* action : menu.actions()) {
        action->setIcon(QIcon(skin::PictureFile(skin::kMark)));
    }
    menu.exec(mapToGlobal(QPoint(width() / 2, kTitleBarHeight)));
}

std::string CMainFrame::LanguageInUse() const {
    return texts_->LanguageFile().stem().string();
}

// What stands in the window takes the words of the new language at once.
void CMainFrame::OnLanguage(int id) {
    std::vector<QString> before;
    before.reserve(kWindowKeys.size());
    for (const char* key : kWindowKeys) {
        before.push_back(WordOf(*texts_, key));
    }
    const QString destination = WordOf(*texts_, "IDS_DESTINATION");
    if (!texts_->ChooseLanguage(id)) {
        return;
    }
    QHash<QString, QString> words;
    for (std::size_t i = 0; i < before.size(); ++i) {
        if (!before[i].isEmpty() && !words.contains(before[i])) {
            words.insert(before[i], WordOf(*texts_, kWindowKeys[i]));
        }
    }
    const auto translate = [&](const QString& text) {
        // The path of a save stands behind its caption.
        const bool hasCaption = !destination.isEmpty() && text.startsWith(destination + kBehind);
        return hasCaption ? WordOf(*texts_, "IDS_DESTINATION") + text.mid(destination.size())
                          : words.value(text, text);
    };
    for (Section* section : Sections()) {
        section->Translate(translate);
    }
    NameBarButtons();
    toolkitTexts_.Use(LanguageInUse());
}

CMainFrame::DropTarget CMainFrame::TargetOf(const QString& file) const {
    if (file.isEmpty() || QApplication::activeModalWidget() != nullptr) {
        return DropTarget::None;
    }
    const std::string kind = UpperExtension(QFile::encodeName(file).toStdString());
    const bool movie = kind == "MOV" || kind == "MP4";
    if (container_->Shows(JobControlId::ChooseReference)) {
        return movie ? DropTarget::Reference : DropTarget::None;
    }
    const bool video = movie || kind == "AVI" || kind == "DIVX" || kind == "XVID";
    const bool choosing = container_->Shows(JobControlId::AddFile) ||
                          (bottom_->Shows(JobControlId::Repair) && state_->g_bRepairRunning == 0);
    return video && choosing ? DropTarget::CorruptFile : DropTarget::None;
}

namespace {

// The one file that is dragged; empty when it is none, or several.
QString DraggedFile(const QMimeData& data) {
    const QList<QUrl> urls = data.urls();
    if (urls.size() != 1 || !urls.constFirst().isLocalFile()) {
        return {};
    }
    const QFileInfo file(urls.constFirst().toLocalFile());
    return file.isFile() ? file.absoluteFilePath() : QString();
}

}  // namespace

void CMainFrame::dragEnterEvent(QDragEnterEvent* event) {
    if (TargetOf(DraggedFile(*event->mimeData())) != DropTarget::None) {
        container_->ShowDropTarget(true);
        event->setDropAction(Qt::CopyAction);
        event->accept();
    }
}

void CMainFrame::dragLeaveEvent(QDragLeaveEvent* /*event*/) {
    container_->ShowDropTarget(false);
}

void CMainFrame::dropEvent(QDropEvent* event) {
    container_->ShowDropTarget(false);
    const QString file = DraggedFile(*event->mimeData());
    const std::string path = QFile::encodeName(file).toStdString();
    switch (TargetOf(file)) {
        case DropTarget::None:
            return;
        case DropTarget::CorruptFile:
            container_->TakeCorruptFile(path);
            break;
        case DropTarget::Reference:
            container_->TakeReference(path);
            break;
    }
    event->setDropAction(Qt::CopyAction);
    event->accept();
}

void CMainFrame::OpenFile(const std::filesystem::path& file) {
    std::error_code failure;
    const auto whole = std::filesystem::absolute(file, failure);
    if (failure || !std::filesystem::is_regular_file(whole, failure)) {
        state_->g_nMessageKind = kOpenFailed;
        frontEnd_.RunMessageDialog(frontEnd_.Text("IDS_MOVERROR4"),
                                   frontEnd_.Text("IDS_INFORMATION"), "", "Ok");
        return;
    }
    container_->TakeCorruptFile(whole.string());
}

}  // namespace clipfix
