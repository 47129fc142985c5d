#include "shell/controls/control_button.h"

#include <QFocusEvent>
#include <QKeyEvent>

namespace clipfix {

ControlButton::ControlButton(int id, QWidget* parent) : QPushButton(parent), id_(id) {
    setObjectName(QString::number(id));
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::StrongFocus);
    // Enter belongs to the control that has the keyboard, never to a default button.
    setAutoDefault(false);
    setFlat(true);
}

ControlButton::Look ControlButton::CurrentLook() const {
    if (!isEnabled()) {
        return Look::Disabled;
    }
    if (isDown()) {
        return Look::Pressed;
    }
    return hovered_ ? Look::Hover : Look::Normal;
}

bool ControlButton::ShowsFocusFor(Qt::FocusReason reason, bool before) {
    const bool givenBack = reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason;
    return givenBack ? before : reason != Qt::MouseFocusReason;
}

void ControlButton::enterEvent(QEnterEvent* event) {
    hovered_ = true;
    update();
    QPushButton::enterEvent(event);
}

void ControlButton::leaveEvent(QEvent* event) {
    hovered_ = false;
    update();
    QPushButton::leaveEvent(event);
}

void ControlButton::hideEvent(QHideEvent* event) {
    // A button that is hidden under the mouse gets no leave event on every platform.
    hovered_ = false;
    QPushButton::hideEvent(event);
}

void ControlButton::focusInEvent(QFocusEvent* event) {
    focusShown_ = ShowsFocusFor(event->reason(), focusShown_);
    QPushButton::focusInEvent(event);
}

void ControlButton::keyPressEvent(QKeyEvent* event) {
    focusShown_ = true;
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (enter && !event->isAutoRepeat()) {
        click();
        return;
    }
    if (enter || event->key() == Qt::Key_Escape) {
        event->accept();
        return;
    }
    QPushButton::keyPressEvent(event);
}

void ControlButton::mousePressEvent(QMouseEvent* event) {
    focusShown_ = false;
    QPushButton::mousePressEvent(event);
}

}  // namespace clipfix
