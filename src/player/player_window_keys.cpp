#include <QKeyEvent>

#include "player/control_bar.h"
#include "player/player_window.h"

namespace clipfix {

namespace {

constexpr double kSmallStep = 1;   // with Shift
constexpr double kLargeStep = 60;  // Page Up, Page Down
constexpr double kTenths = 10;

}  // namespace

bool PlayerWindow::TakeSeekKey(const QKeyEvent& event) {
    const double step = event.modifiers().testFlag(Qt::ShiftModifier) ? kSmallStep : kStep;
    const int key = event.key();
    if (key >= Qt::Key_0 && key <= Qt::Key_9) {
        playback_->SeekTo(playback_->Duration() * (key - Qt::Key_0) / kTenths);
        return true;
    }
    switch (key) {
        case Qt::Key_Left:
            playback_->SeekBy(-step);
            return true;
        case Qt::Key_Right:
            playback_->SeekBy(step);
            return true;
        case Qt::Key_PageUp:
            playback_->SeekBy(-kLargeStep);
            return true;
        case Qt::Key_PageDown:
            playback_->SeekBy(kLargeStep);
            return true;
        case Qt::Key_Home:
            playback_->SeekTo(0);
            return true;
        case Qt::Key_End:
            playback_->SeekTo(playback_->Duration());
            return true;
        case Qt::Key_Period:
        case Qt::Key_Comma:
            playback_->StepPicture(key == Qt::Key_Period);
            return true;
        default:
            return false;
    }
}

bool PlayerWindow::TakeOtherKey(const QKeyEvent& event) {
    switch (event.key()) {
        case Qt::Key_Space:
        case Qt::Key_K:
        case Qt::Key_P:
        case Qt::Key_MediaPlay:
        case Qt::Key_MediaPause:
        case Qt::Key_MediaTogglePlayPause:
            TogglePlay();
            return true;
        case Qt::Key_Up:
        case Qt::Key_Plus:
            ChangeVolume(volume_ + kVolumeStep);
            return true;
        case Qt::Key_Down:
        case Qt::Key_Minus:
            ChangeVolume(volume_ - kVolumeStep);
            return true;
        case Qt::Key_M:
            ToggleMute();
            return true;
        case Qt::Key_F:
        case Qt::Key_F11:
            ToggleFullScreen();
            return true;
        case Qt::Key_Escape:
            if (isFullScreen()) {
                ToggleFullScreen();
            }
            return true;
        case Qt::Key_Q:
            close();
            return true;
        default:
            return false;
    }
}

void PlayerWindow::keyPressEvent(QKeyEvent* event) {
    const bool withControl = event->modifiers().testFlag(Qt::ControlModifier);
    if (withControl && (event->key() == Qt::Key_W || event->key() == Qt::Key_Q)) {
        close();
        return;
    }
    const auto others = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
    if ((event->modifiers() & others) != 0 || (!TakeSeekKey(*event) && !TakeOtherKey(*event))) {
        event->ignore();
    }
}

}  // namespace clipfix
