#include "shell/controls/hyper_link.h"

#include <QDesktopServices>
#include <QFocusEvent>
#include <QFontMetrics>
#include <QKeyEvent>
#include <QPainter>

#include "shell/controls/control_button.h"
#include "shell/skin/fonts.h"
#include "shell/skin/pictures.h"

namespace clipfix {

CHyperLink::CHyperLink(int id, QWidget* parent)
    : QAbstractButton(parent), id_(id), face_(QString::fromLatin1(skin::kFace)) {
    setObjectName(QString::number(id));
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::StrongFocus);
    UpdateFont();
    connect(this, &QAbstractButton::clicked, this, &CHyperLink::Follow);
}

void CHyperLink::SetColours(skin::ColourValue link, skin::ColourValue hover,
                            skin::ColourValue visited) {
    link_ = link;
    hover_ = hover;
    visitedColour_ = visited;
    update();
}

void CHyperLink::SetBackground(skin::ColourValue colour) {
    background_ = colour;
    update();
}

void CHyperLink::SetPadding(int padding) {
    padding_ = padding;
    updateGeometry();
    update();
}

void CHyperLink::SetHeight(int height) {
    height_ = height;
    UpdateFont();
}

void CHyperLink::SetFace(const QString& face) {
    face_ = face;
    UpdateFont();
}

skin::ColourValue CHyperLink::CurrentColour() const {
    if (hovered_) {
        return hover_;
    }
    return visited_ ? visitedColour_ : link_;
}

QSize CHyperLink::sizeHint() const {
    const QFontMetrics metrics(font());
    return {metrics.horizontalAdvance(text()) + 1 + 2 * padding_, metrics.height()};
}

void CHyperLink::UpdateFont() {
    QFont font = skin::FontOfHeight(face_, height_);
    font.setUnderline(true);
    setFont(font);
    updateGeometry();
}

void CHyperLink::Follow() {
    visited_ = true;
    if (!target_.isEmpty()) {
        (void)QDesktopServices::openUrl(target_);
    }
}

void CHyperLink::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), skin::Colour(background_));
    painter.setPen(skin::Colour(CurrentColour()));
    painter.drawText(rect().adjusted(padding_, 0, -padding_, 0),
                     Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, text());
    if (focusShown_ && hasFocus()) {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(skin::Colour(skin::kFocus), 1.5));
        painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 3, 3);
    }
}

void CHyperLink::enterEvent(QEnterEvent* event) {
    hovered_ = true;
    update();
    QAbstractButton::enterEvent(event);
}

void CHyperLink::leaveEvent(QEvent* event) {
    hovered_ = false;
    update();
    QAbstractButton::leaveEvent(event);
}

void CHyperLink::focusInEvent(QFocusEvent* event) {
    focusShown_ = ControlButton::ShowsFocusFor(event->reason(), focusShown_);
    QAbstractButton::focusInEvent(event);
}

void CHyperLink::keyPressEvent(QKeyEvent* event) {
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (enter && !event->isAutoRepeat()) {
        click();
        return;
    }
    if (enter || event->key() == Qt::Key_Escape) {
        event->accept();
        return;
    }
    QAbstractButton::keyPressEvent(event);
}

}  // namespace clipfix
