#include "shell/main_frame.h"

#include <QApplication>
#include <QCloseEvent>
#include <QIcon>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>
#include <array>
#include <utility>

#include "job/state/job_paths.h"
#include "shell/child.h"
#include "shell/sibling_programs.h"
#include "shell/skin/fonts.h"
#include "shell/skin/palette.h"
#include "shell/skin/pictures.h"

namespace clipfix {

namespace {

constexpr int kBarButton = 26;
constexpr int kBarGap = 6;
constexpr int kGroupGap = 16;  // between the program's own buttons and those of every window
constexpr int kBarMargin = 12;
constexpr int kMarkSize = 22;

struct BarButton {
    int id;
    int picture;
    const char* key;  // of its name
};

// From left to right.
constexpr std::array kBarButtons{
    BarButton{CMainFrame::kHomeButton, skin::kHome, "IDS_HOME"},
    BarButton{CMainFrame::kHelpMenuButton, skin::kHelpMenu, "IDS_HELP"},
    BarButton{CMainFrame::kProgramMenuButton, skin::kProgramMenu, "IDS_MENU"},
    BarButton{CMainFrame::kMinimiseButton, skin::kMinimise, "IDS_MINIMIZE"},
    BarButton{CMainFrame::kMaximiseButton, skin::kMaximise, "IDS_MAXIMIZE"},
    BarButton{CMainFrame::kCloseButton, skin::kClose, "IDS_CLOSE"}};

CMainFrame::Settings WithWorkFolder(CMainFrame::Settings settings) {
    if (settings.workFolder.empty()) {
        settings.workFolder = settings.programFolder / kWorkFolderName;
    }
    return settings;
}

}  // namespace

CMainFrame::CMainFrame(JobState& state, Texts& texts, Settings settings)
    : QWidget(nullptr, Qt::Window | Qt::FramelessWindowHint),
      state_(&state),
      texts_(&texts),
      settings_(WithWorkFolder(std::move(settings))),
      realEngines_(settings_.workFolder),
      control_(state),
      frontEnd_(state, texts, *this),
      driver_({state, control_, frontEnd_},
              settings_.engines != nullptr ? *settings_.engines : realEngines_,
              settings_.clock != nullptr ? *settings_.clock : systemClock_,
              {.workFolder = settings_.workFolder, .moveFile = settings_.moveFile}),
      parts_{.state = state,
             .texts = texts,
             .frontEnd = frontEnd_,
             .driver = driver_,
             .desktop = settings_.desktop != nullptr ? *settings_.desktop : systemDesktop_,
             .programFolder = settings_.programFolder,
             .sharedFolder = settings_.sharedFolder} {
    setObjectName(QStringLiteral("CMainFrame"));
    setAcceptDrops(true);
    pageChanged_.setSingleShot(true);
    connect(&pageChanged_, &QTimer::timeout, this, &CMainFrame::FocusNextStep);
    qApp->installEventFilter(this);
}

// First nobody waits for this thread any more; then the driver may wait for the workers.
CMainFrame::~CMainFrame() {
    frontEnd_.Leave();
    if (bottom_ != nullptr) {
        bottom_->StopAllTimers();
    }
}

bool CMainFrame::Create() {
    setWindowTitle(QStringLiteral("Kelvo Clipfix"));
    setWindowIcon(QIcon(skin::PictureFile(skin::kMark)));
    resize(kFirstSize);
    toolkitTexts_.Use(LanguageInUse());
    MakeTitleBar();
    MakeSections();
    // The updater looks for news by itself; whether it could be started does not matter here.
    (void)StartSibling(settings_.programFolder, QString::fromLatin1(kUpdaterProgram),
                       SilentUpdaterArguments());
    resize(kNormalSize);
    return true;
}

void CMainFrame::MakeTitleBar() {
    for (const BarButton& made : kBarButtons) {
        auto* button = MakeChild<CButtonST>(made.id, made.picture, QString(), this);
        button->resize(kBarButton, kBarButton);
        connect(button, &CButtonST::clicked, this, [this, id = made.id] { OnBarButton(id); });
        barButtons_.push_back(button);
    }
    NameBarButtons();
    PlaceTitleBar();
}

void CMainFrame::NameBarButtons() {
    for (std::size_t i = 0; i < kBarButtons.size(); ++i) {
        const bool restores = kBarButtons[i].id == kMaximiseButton && maximised_;
        barButtons_[i]->SetName(WordOf(*texts_, restores ? "IDS_RESTORE" : kBarButtons[i].key));
        if (kBarButtons[i].id == kMaximiseButton) {
            barButtons_[i]->SetPicture(restores ? skin::kRestore : skin::kMaximise);
        }
    }
}

void CMainFrame::OnBarButton(int id) {
    switch (id) {
        case kCloseButton:
            OnSystemCommand(SystemCommand::Close);
            break;
        case kMinimiseButton:
            OnSystemCommand(SystemCommand::Minimise);
            break;
        case kMaximiseButton:
            OnSystemCommand(maximised_ ? SystemCommand::Restore : SystemCommand::Maximise);
            break;
        default:
            OnCommand(id);
            break;
    }
}

void CMainFrame::PlaceTitleBar() {
    int right = width() - kBarMargin;
    const int top = (kTitleBarHeight - kBarButton) / 2;
    for (auto button = barButtons_.rbegin(); button != barButtons_.rend(); ++button) {
        (*button)->move(right - kBarButton, top);
        const bool endsGroup = (*button)->Id() == kMinimiseButton;
        right -= kBarButton + (endsGroup ? kGroupGap : kBarGap);
    }
}

QRect CMainFrame::SectionArea() const {
    return rect().adjusted(kFrameWidth, kTitleBarHeight, -kFrameWidth, -kFrameWidth);
}

void CMainFrame::OnSystemCommand(SystemCommand command) {
    switch (command) {
        case SystemCommand::Close:
            OnClose();
            break;
        case SystemCommand::Minimise:
            showMinimized();
            break;
        case SystemCommand::Maximise:
            maximised_ = true;
            NameBarButtons();
            setGeometry(screen()->availableGeometry());
            break;
        case SystemCommand::Restore:
            maximised_ = false;
            NameBarButtons();
            resize(kNormalSize);
            CentreOnScreen();
            break;
    }
}

void CMainFrame::OnClose() {
    // A window that waits for a dialog is not closed behind it.
    if (QApplication::activeModalWidget() == nullptr && driver_.OnCloseFrame()) {
        hide();
        QCoreApplication::exit(0);
    }
}

void CMainFrame::CentreOnScreen() {
    const QRect area = screen()->availableGeometry();
    move(area.center() - rect().center());
}

void CMainFrame::BringForward() {
    if (isMinimized()) {
        showNormal();
    }
    raise();
    activateWindow();
    // Not above the dialog that it waits for.
    if (QWidget* dialog = QApplication::activeModalWidget()) {
        dialog->raise();
        dialog->activateWindow();
    }
}

void CMainFrame::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), skin::Colour(skin::kBand));
    painter.drawPixmap(
        kBarMargin, (kTitleBarHeight - kMarkSize) / 2,
        skin::Picture(skin::kMark, QSize(kMarkSize, kMarkSize), devicePixelRatioF()));
    painter.setFont(skin::FontOfHeight(QString::fromLatin1(skin::kEmphasisFace), 20));
    painter.setPen(skin::Colour(skin::kText));
    painter.drawText(QRect(kBarMargin + kMarkSize + kBarGap + 2, 0, width(), kTitleBarHeight),
                     Qt::AlignLeft | Qt::AlignVCenter, windowTitle());

    painter.setPen(QPen(skin::Colour(skin::kFrame), kFrameWidth));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5));
}

void CMainFrame::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    PlaceTitleBar();
    PlaceSections();
}

void CMainFrame::closeEvent(QCloseEvent* event) {
    event->ignore();
    OnSystemCommand(SystemCommand::Close);
}

void CMainFrame::mousePressEvent(QMouseEvent* event) {
    drag_.Press(*event, event->position().y() < kTitleBarHeight && !maximised_);
}

void CMainFrame::mouseMoveEvent(QMouseEvent* event) {
    drag_.Move(*event, *this);
}

void CMainFrame::mouseReleaseEvent(QMouseEvent* /*event*/) {
    drag_.Release();
}

void CMainFrame::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && event->position().y() < kTitleBarHeight) {
        OnSystemCommand(maximised_ ? SystemCommand::Restore : SystemCommand::Maximise);
    }
}

}  // namespace clipfix
