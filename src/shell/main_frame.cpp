#include "shell/main_frame.h"

#include <QApplication>
#include <QCloseEvent>
#include <QIcon>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>
#include <QWindow>
#include <utility>

#include "shell/child.h"
#include "shell/message_dlg.h"
#include "shell/sibling_programs.h"
#include "shell/skin/fonts.h"
#include "shell/skin/palette.h"
#include "shell/skin/pictures.h"

namespace clipfix {

namespace {

constexpr int kBarButton = 26;
constexpr int kBarGap = 6;
constexpr int kBarMargin = 12;
constexpr int kMarkSize = 22;
constexpr int kQuitQuestion = 1;
// Heights of the top and the bottom section; the centre takes the rest.
constexpr int kTopSection = 88;
constexpr int kBottomSection = 92;

}  // namespace

CMainFrame::CMainFrame(JobState& state, const Texts& texts, std::filesystem::path programFolder)
    : QWidget(nullptr, Qt::Window | Qt::FramelessWindowHint),
      state_(&state),
      texts_(&texts),
      programFolder_(std::move(programFolder)) {
    setObjectName(QStringLiteral("CMainFrame"));
}

bool CMainFrame::Create() {
    setWindowTitle(QStringLiteral("Kelvo Clipfix"));
    setWindowIcon(QIcon(skin::PictureFile(skin::kMark)));
    resize(kFirstSize);
    MakeTitleBar();
    // The updater looks for news by itself; whether it could be started does not matter here.
    (void)StartSibling(programFolder_, QString::fromLatin1(kUpdaterProgram),
                       SilentUpdaterArguments());
    resize(kNormalSize);
    return true;
}

CButtonST* CMainFrame::MakeBarButton(int id, int picture, const QString& name) {
    auto* button = MakeChild<CButtonST>(id, picture, name, this);
    button->resize(kBarButton, kBarButton);
    return button;
}

void CMainFrame::MakeTitleBar() {
    homeButton_ = MakeBarButton(kHomeButton, skin::kHome,
                                QString::fromStdString(texts_->Text("IDS_HOME", kTitleTextSize)));
    CButtonST* help = MakeBarButton(kHelpMenuButton, skin::kHelpMenu, QStringLiteral("Help"));
    CButtonST* menu = MakeBarButton(kProgramMenuButton, skin::kProgramMenu, QStringLiteral("Menu"));
    CButtonST* minimise =
        MakeBarButton(kMinimiseButton, skin::kMinimise, QStringLiteral("Minimize"));
    maximiseButton_ = MakeBarButton(kMaximiseButton, skin::kMaximise, QStringLiteral("Maximize"));
    CButtonST* close = MakeBarButton(kCloseButton, skin::kClose, QStringLiteral("Close"));
    rightButtons_ = {close, maximiseButton_, minimise, menu, help, homeButton_};
    connect(close, &CButtonST::clicked, this, [this] { OnSystemCommand(SystemCommand::Close); });
    connect(minimise, &CButtonST::clicked, this,
            [this] { OnSystemCommand(SystemCommand::Minimise); });
    connect(maximiseButton_, &CButtonST::clicked, this, [this] {
        OnSystemCommand(maximised_ ? SystemCommand::Restore : SystemCommand::Maximise);
    });
    PlaceTitleBar();
}

void CMainFrame::PlaceTitleBar() {
    int right = width() - kBarMargin;
    const int top = (kTitleBarHeight - kBarButton) / 2;
    for (CButtonST* button : rightButtons_) {
        button->move(right - kBarButton, top);
        right -= kBarButton + kBarGap;
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
            maximiseButton_->SetPicture(skin::kRestore);
            maximiseButton_->SetName(QStringLiteral("Restore"));
            setGeometry(screen()->availableGeometry());
            break;
        case SystemCommand::Restore:
            maximised_ = false;
            maximiseButton_->SetPicture(skin::kMaximise);
            maximiseButton_->SetName(QStringLiteral("Maximize"));
            resize(kNormalSize);
            CentreOnScreen();
            break;
    }
}

void CMainFrame::OnClose() {
    state_->g_nMessageKind = kQuitQuestion;
    const auto text = [this](const char* key, std::size_t size) {
        return QString::fromStdString(texts_->Text(key, size));
    };
    CMessageDlg::Run(*state_, *texts_, text("IDS_CLOSE_DLG_MSG ", kMessageTextSize),
                     text("IDS_CONFIRMATION", kTitleTextSize), QStringLiteral("Yes"),
                     QStringLiteral("No"), this);
    if (state_->g_bMessageYes == 1) {
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
    const QRect area = SectionArea();
    painter.fillRect(rect(), skin::Colour(skin::kBand));
    painter.fillRect(area, skin::Colour(skin::kSectionCentre));
    painter.fillRect(QRect(area.topLeft(), QSize(area.width(), kTopSection)),
                     skin::Colour(skin::kSectionTop));
    const QRect bottom(area.left(), area.bottom() - kBottomSection + 1, area.width(),
                       kBottomSection);
    painter.fillRect(bottom, skin::Colour(skin::kSectionTop));
    painter.fillRect(QRect(bottom.left(), bottom.top(), bottom.width(), 1),
                     skin::Colour(skin::kSeparator));
    painter.fillRect(QRect(area.left(), area.top() + kTopSection, area.width(), 1),
                     skin::Colour(skin::kSeparator));

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
}

void CMainFrame::closeEvent(QCloseEvent* event) {
    event->ignore();
    OnSystemCommand(SystemCommand::Close);
}

void CMainFrame::mousePressEvent(QMouseEvent* event) {
    const bool onBar = event->position().y() < kTitleBarHeight;
    if (event->button() == Qt::LeftButton && onBar && !maximised_ && windowHandle() != nullptr) {
        (void)windowHandle()->startSystemMove();
    }
}

void CMainFrame::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && event->position().y() < kTitleBarHeight) {
        OnSystemCommand(maximised_ ? SystemCommand::Restore : SystemCommand::Maximise);
    }
}

}  // namespace clipfix
