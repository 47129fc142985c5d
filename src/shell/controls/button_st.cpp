#include "shell/controls/button_st.h"

#include <QPainter>

#include "shell/skin/pictures.h"

namespace clipfix {

namespace {

constexpr qreal kDisabledOpacity = 0.35;

// Lays a thin shadow over what the picture covers.
void Darken(QPixmap& picture) {
    constexpr int kShadow = 32;  // of 255
    QPainter painter(&picture);
    painter.setCompositionMode(QPainter::CompositionMode_SourceAtop);
    painter.fillRect(picture.rect(), QColor(0, 0, 0, kShadow));
}

}  // namespace

CButtonST::CButtonST(int id, int picture, const QString& name, QWidget* parent)
    : ControlButton(id, parent), picture_(picture) {
    SetName(name);
}

void CButtonST::SetPicture(int picture) {
    picture_ = picture;
    update();
}

int CButtonST::CurrentPicture() const {
    const Look look = CurrentLook();
    return look == Look::Hover || look == Look::Pressed ? picture_ + 1 : picture_;
}

void CButtonST::SetName(const QString& name) {
    setAccessibleName(name);
    setToolTip(name);
}

void CButtonST::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const Look look = CurrentLook();
    QPixmap picture = skin::Picture(CurrentPicture(), size(), devicePixelRatioF());
    if (look == Look::Pressed) {
        Darken(picture);
    } else if (look == Look::Disabled) {
        painter.setOpacity(kDisabledOpacity);
    }
    painter.drawPixmap(0, 0, picture);
    if (ShowsFocus()) {
        painter.setOpacity(1);
        constexpr int kLargeButton = 48;
        const qreal radius = height() >= kLargeButton ? height() / 2.0 : 5.0;
        skin::DrawFocusMark(painter, rect(), radius);
    }
}

}  // namespace clipfix
