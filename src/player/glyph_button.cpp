#include "player/glyph_button.h"

#include <QKeyEvent>
#include <QPainter>

#include "player/look.h"

namespace clipfix {

namespace {

constexpr int kPlainSize = 36;
constexpr int kDiscSize = 46;
constexpr qreal kGlyphPart = 0.6;  // of the button's side
constexpr qreal kCorner = 7;

}  // namespace

GlyphButton::GlyphButton(Glyph glyph, Style style, QWidget* parent)
    : QAbstractButton(parent), glyph_(glyph), style_(style) {
    setFocusPolicy(Qt::TabFocus);
    setFixedSize(sizeHint());
}

void GlyphButton::SetMeaning(Glyph glyph, const QString& name, const QString& key) {
    glyph_ = glyph;
    setAccessibleName(name);
    setToolTip(key.isEmpty() ? name : name + QStringLiteral(" (") + key + QLatin1Char(')'));
    update();
}

QSize GlyphButton::sizeHint() const {
    const int side = style_ == Style::Disc ? kDiscSize : kPlainSize;
    return {side, side};
}

void GlyphButton::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const QRectF area = QRectF(rect()).adjusted(1, 1, -1, -1);
    const bool hovered = isEnabled() && underMouse();
    QColor sign = isEnabled() ? look::kText : look::kDisabled;
    if (style_ == Style::Disc) {
        sign = Qt::white;
        painter.setBrush(!isEnabled() ? look::kTrough
                         : isDown()   ? look::kAccentPressed
                         : hovered    ? look::kAccentHover
                                      : look::kAccent);
        painter.drawEllipse(area);
    } else if (hovered || isDown()) {
        sign = look::kAccent;
        painter.setBrush(isDown() ? look::kPressed : look::kHover);
        painter.drawRoundedRect(area, kCorner, kCorner);
    }
    if (hasFocus()) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(style_ == Style::Disc ? QColor(Qt::white) : look::kFill, 2));
        const QRectF inner = area.adjusted(2, 2, -2, -2);
        if (style_ == Style::Disc) {
            painter.drawEllipse(inner);
        } else {
            painter.drawRoundedRect(inner, kCorner - 2, kCorner - 2);
        }
    }
    const qreal side = area.width() * kGlyphPart;
    QRectF place(0, 0, side, side);
    place.moveCenter(area.center());
    DrawGlyph(painter, glyph_, place, sign);
}

void GlyphButton::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            click();
            break;
        case Qt::Key_Space:
            QAbstractButton::keyPressEvent(event);
            break;
        default:
            event->ignore();
            break;
    }
}

void GlyphButton::enterEvent(QEnterEvent* event) {
    QAbstractButton::enterEvent(event);
    update();
}

void GlyphButton::leaveEvent(QEvent* event) {
    QAbstractButton::leaveEvent(event);
    update();
}

}  // namespace clipfix
