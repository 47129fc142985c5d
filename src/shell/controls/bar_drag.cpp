#include "shell/controls/bar_drag.h"

#include <QApplication>
#include <QMouseEvent>
#include <QWidget>
#include <QWindow>

namespace clipfix {

void BarDrag::Press(const QMouseEvent& event, bool onBar) {
    start_.reset();
    if (onBar && event.button() == Qt::LeftButton) {
        start_ = event.globalPosition().toPoint();
    }
}

void BarDrag::Move(const QMouseEvent& event, const QWidget& window) {
    if (!start_ || !event.buttons().testFlag(Qt::LeftButton)) {
        return;
    }
    const QPoint way = event.globalPosition().toPoint() - *start_;
    if (way.manhattanLength() >= QApplication::startDragDistance()) {
        start_.reset();
        if (window.windowHandle() != nullptr) {
            (void)window.windowHandle()->startSystemMove();
        }
    }
}

}  // namespace clipfix
