#include "player/player_window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QScreen>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

#include "player/control_bar.h"
#include "player/graphics_surface.h"
#include "player/look.h"
#include "player/notice_pane.h"

namespace clipfix {

namespace {

constexpr QSize kFirstPicture(960, 540);
constexpr QSize kSmallestWindow(480, 320);
constexpr double kPartOfScreen = 0.75;  // that the picture takes at most
constexpr int kIdleMilliseconds = 2500;
constexpr int kCardWidth = 880;  // of the bar over a full screen, at most
constexpr int kCardMargin = 24;

const PlayerText& ReasonOf(PlaybackFailure failure) {
    switch (failure) {
        case PlaybackFailure::NoFile:
            return player_text::kNoFile;
        case PlaybackFailure::NotFound:
            return player_text::kNotFound;
        case PlaybackFailure::NotAFile:
            return player_text::kNotAFile;
        case PlaybackFailure::NoAccess:
            return player_text::kNoAccess;
        case PlaybackFailure::Empty:
            return player_text::kEmpty;
        case PlaybackFailure::NoPicture:
            return player_text::kNoPicture;
        case PlaybackFailure::NoEngine:
            return player_text::kNoEngine;
        default:
            return player_text::kNotAVideo;
    }
}

QString ForDisplay(const std::string& text) {
    return QString::fromStdString(text);
}

}  // namespace

PlayerWindow::PlayerWindow(const PlayerTexts& texts, Drawing drawing, QWidget* parent)
    : QWidget(parent), texts_(&texts) {
    setWindowTitle(QString::fromLatin1(platform::kPlayerName.data()));
    setObjectName(QStringLiteral("PlayerWindow"));
    setMinimumSize(kSmallestWindow);
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    QPalette palette = this->palette();
    palette.setColor(QPalette::Window, look::kStage);
    setPalette(palette);

    bar_ = new ControlBar(texts, this);
    // The bar's parts keep the light palette, whatever stands behind the picture.
    bar_->setPalette(QApplication::palette());
    MakeSurface(drawing);
    notice_ = new NoticePane(this);
    notice_->setMouseTracking(true);
    bar_->raise();
    notice_->Show(Glyph::Film, texts_->Word(player_text::kOpening), {}, {});
    ConnectBar();

    idle_.setSingleShot(true);
    idle_.setInterval(kIdleMilliseconds);
    connect(&idle_, &QTimer::timeout, this, &PlayerWindow::HideBar);
    qApp->installEventFilter(this);
    resize(kFirstPicture + QSize(0, bar_->sizeHint().height()));
    setFocus();
}

PlayerWindow::~PlayerWindow() {
    // The drawing ends before the engine, which goes with the children.
    surface_->Disconnect();
}

void PlayerWindow::MakeSurface(Drawing drawing) {
    const bool useOpenGl =
        drawing == Drawing::OpenGl || (drawing == Drawing::BestForMachine && HasGraphicsCard());
    playback_ = new Playback(this);
    ConnectPlayback();
    if (!useOpenGl) {
        UseSoftwareSurface();
        return;
    }
    auto* surface = new GraphicsSurface([this] { TakeSurfaceReady(); }, this);
    surface->setMouseTracking(true);
    surface->Connect(playback_->Handle());
    surface_ = surface;
}

void PlayerWindow::UseSoftwareSurface() {
    auto* surface = new SoftwareSurface(this);
    surface->setMouseTracking(true);
    if (playback_->Handle() != nullptr) {
        surface->Connect(playback_->Handle());
    }
    surface_ = surface;
}

void PlayerWindow::TakeSurfaceReady() {
    if (!surface_->IsReady()) {
        // A driver may offer OpenGL and then refuse what the engine needs.
        surface_->Widget()->hide();
        UseSoftwareSurface();
        surface_->Widget()->show();
        surface_->Widget()->stackUnder(notice_);
        PlaceParts();
    }
    if (wanted_) {
        LoadFile();
    }
}

void PlayerWindow::ConnectBar() {
    connect(bar_, &ControlBar::PlayPressed, this, &PlayerWindow::TogglePlay);
    connect(bar_, &ControlBar::StepWanted, playback_, &Playback::SeekBy);
    connect(bar_, &ControlBar::PositionWanted, playback_, &Playback::SeekTo);
    connect(bar_, &ControlBar::VolumeWanted, this, &PlayerWindow::ChangeVolume);
    connect(bar_, &ControlBar::MutePressed, this, &PlayerWindow::ToggleMute);
    connect(bar_, &ControlBar::FullScreenPressed, this, &PlayerWindow::ToggleFullScreen);
}

void PlayerWindow::ConnectPlayback() {
    connect(playback_, &Playback::Loaded, this, [this](bool hasPicture) {
        if (!hasPicture) {
            notice_->Show(Glyph::Sound, texts_->Word(player_text::kSoundOnly), {}, {});
        }
    });
    connect(playback_, &Playback::Failed, this, &PlayerWindow::ShowFailure);
    connect(playback_, &Playback::PositionChanged, bar_, &ControlBar::ShowPosition);
    connect(playback_, &Playback::DurationChanged, bar_, &ControlBar::ShowDuration);
    connect(playback_, &Playback::StateChanged, this, &PlayerWindow::ShowState);
    connect(playback_, &Playback::PictureShown, this, [this](QSize size) {
        FitToPicture(size);
        notice_->hide();
    });
}

void PlayerWindow::Open(const PlayerArguments& file) {
    file_ = file;
    fitted_ = false;
    bar_->ShowFile(ForDisplay(file.name), ForDisplay(file.size));
    bar_->ShowPosition(0);
    notice_->Show(Glyph::Film, texts_->Word(player_text::kOpening), {}, {});
    wanted_ = true;
    if (surface_->IsReady() || playback_->Handle() == nullptr) {
        LoadFile();
    }
}

void PlayerWindow::LoadFile() {
    wanted_ = false;
    playback_->Load(file_.path);
}

void PlayerWindow::TakeRecord(const platform::PlayerRecord& record) {
    if (record.StandsFor(file_.path)) {
        return;
    }
    PlayerArguments file;
    file.path = record.path;
    file.name = std::filesystem::path(record.path).filename().string();
    Open(file);
}

bool PlayerWindow::IsBarShown() const {
    return bar_->isVisible();
}

void PlayerWindow::ShowState() {
    using State = ControlBar::State;
    const State state = !playback_->IsLoaded()  ? State::Unusable
                        : playback_->IsAtEnd()  ? State::AtEnd
                        : playback_->IsPaused() ? State::Paused
                                                : State::Playing;
    bar_->ShowState(state);
    if (isFullScreen()) {
        ShowBarForAWhile();
    }
}

void PlayerWindow::ShowFailure(PlaybackFailure failure) {
    notice_->Show(Glyph::Film, texts_->Word(player_text::kCannotPlay),
                  texts_->Word(ReasonOf(failure)), ForDisplay(file_.path));
    ShowState();
}

void PlayerWindow::TogglePlay() {
    if (!playback_->IsLoaded()) {
        return;
    }
    if (playback_->IsAtEnd()) {
        playback_->SeekTo(0);
        playback_->SetPaused(false);
    } else {
        playback_->SetPaused(!playback_->IsPaused());
    }
}

void PlayerWindow::ToggleMute() {
    if (!muted_ && volume_ == 0) {
        ChangeVolume(kVolumeStep);
        return;
    }
    muted_ = !muted_;
    playback_->SetMuted(muted_);
    bar_->ShowVolume(volume_, muted_);
}

void PlayerWindow::ChangeVolume(int percent) {
    volume_ = std::clamp(percent, 0, 100);
    muted_ = false;
    playback_->SetMuted(false);
    playback_->SetVolume(volume_);
    bar_->ShowVolume(volume_, false);
}

void PlayerWindow::FitToPicture(QSize picture) {
    if (fitted_ || isFullScreen() || isMaximized()) {
        return;
    }
    fitted_ = true;
    const QSize available = screen()->availableSize();
    const int barHeight = bar_->sizeHint().height();
    const QSize most(static_cast<int>(available.width() * kPartOfScreen),
                     static_cast<int>(available.height() * kPartOfScreen) - barHeight);
    QSize fitting = picture;
    if (fitting.width() > most.width() || fitting.height() > most.height()) {
        fitting.scale(most, Qt::KeepAspectRatio);
    } else {
        // A small picture is shown larger, as far as the first window goes.
        fitting.scale(kFirstPicture.expandedTo(picture).boundedTo(most), Qt::KeepAspectRatio);
    }
    resize(fitting + QSize(0, barHeight));
}

void PlayerWindow::PlaceParts() {
    const bool full = isFullScreen();
    const int barHeight = bar_->sizeHint().height();
    const QRect stage = full ? rect() : QRect(0, 0, width(), height() - barHeight);
    surface_->Widget()->setGeometry(stage);
    notice_->setGeometry(stage);
    if (full) {
        const int cardWidth = std::min(width() - 2 * kCardMargin, kCardWidth);
        bar_->setGeometry((width() - cardWidth) / 2, height() - barHeight - kCardMargin, cardWidth,
                          barHeight);
    } else {
        bar_->setGeometry(0, height() - barHeight, width(), barHeight);
    }
}

void PlayerWindow::ShowBarForAWhile() {
    bar_->show();
    unsetCursor();
    if (isFullScreen()) {
        idle_.start();
    } else {
        idle_.stop();
    }
}

void PlayerWindow::HideBar() {
    // The bar stays while it is in use, and while there is nothing else to look at.
    if (!isFullScreen() || notice_->isVisible() || bar_->underMouse()) {
        return;
    }
    if (bar_->isAncestorOf(QApplication::focusWidget())) {
        setFocus();
    }
    bar_->hide();
    setCursor(Qt::BlankCursor);
}

void PlayerWindow::ToggleFullScreen() {
    setWindowState(windowState() ^ Qt::WindowFullScreen);
}

void PlayerWindow::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange) {
        bar_->ShowFullScreen(isFullScreen());
        PlaceParts();
        ShowBarForAWhile();
    }
}

void PlayerWindow::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    PlaceParts();
}

void PlayerWindow::closeEvent(QCloseEvent* event) {
    event->accept();
    QApplication::quit();
}

bool PlayerWindow::eventFilter(QObject* watched, QEvent* event) {
    const bool isOurs = watched->isWidgetType() && isFullScreen();
    if (isOurs && event->type() == QEvent::MouseMove) {
        ShowBarForAWhile();
    }
    return QWidget::eventFilter(watched, event);
}

void PlayerWindow::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        ToggleFullScreen();
    }
}

void PlayerWindow::wheelEvent(QWheelEvent* event) {
    const int turn = event->angleDelta().y();
    if (turn != 0) {
        ChangeVolume(volume_ + (turn > 0 ? kVolumeStep : -kVolumeStep));
    }
    event->accept();
}

}  // namespace clipfix
