#include "player/track_slider.h"

#include <QMouseEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>

#include "player/look.h"

namespace clipfix {

namespace {

constexpr int kHeight = 24;
constexpr int kHandleRadius = 7;
constexpr qreal kGrooveHeight = 4;

}  // namespace

TrackSlider::TrackSlider(QWidget* parent) : QSlider(Qt::Horizontal, parent) {
    setFocusPolicy(Qt::TabFocus);
    setMouseTracking(true);
    setFixedHeight(kHeight);
    // By whatever way a person chooses: the mouse, the keys, an assistive tool.
    connect(this, &QSlider::valueChanged, this, [this](int value) {
        if (!following_) {
            Q_EMIT Chosen(value);
        }
    });
}

void TrackSlider::Follow(int value) {
    if (!isSliderDown()) {
        following_ = true;
        setValue(value);
        following_ = false;
    }
}

void TrackSlider::SetEnd(int end) {
    following_ = true;
    setRange(0, end);
    following_ = false;
}

QSize TrackSlider::sizeHint() const {
    return {160, kHeight};
}

QSize TrackSlider::minimumSizeHint() const {
    return {60, kHeight};
}

QRectF TrackSlider::Groove() const {
    return {static_cast<qreal>(kHandleRadius), (height() - kGrooveHeight) / 2,
            static_cast<qreal>(width() - 2 * kHandleRadius), kGrooveHeight};
}

qreal TrackSlider::PlaceOf(int value) const {
    const QRectF groove = Groove();
    const double range = static_cast<double>(maximum()) - minimum();
    const double part = range > 0 ? (static_cast<double>(value) - minimum()) / range : 0;
    return groove.left() + part * groove.width();
}

int TrackSlider::ValueAt(qreal x) const {
    const QRectF groove = Groove();
    const double part =
        groove.width() > 0 ? std::clamp((x - groove.left()) / groove.width(), 0.0, 1.0) : 0;
    const double range = static_cast<double>(maximum()) - minimum();
    return minimum() + static_cast<int>(std::lround(part * range));
}

void TrackSlider::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const QRectF groove = Groove();
    painter.setBrush(look::kTrough);
    painter.drawRoundedRect(groove, kGrooveHeight / 2, kGrooveHeight / 2);
    if (!isEnabled()) {
        return;
    }
    const qreal place = PlaceOf(sliderPosition());
    painter.setBrush(look::kFill);
    painter.drawRoundedRect(QRectF(groove.topLeft(), QPointF(place, groove.bottom())),
                            kGrooveHeight / 2, kGrooveHeight / 2);
    const bool isLarge = underMouse() || isSliderDown() || hasFocus();
    const qreal radius = isLarge ? kHandleRadius - 0.5 : kHandleRadius - 2.5;
    const QPointF middle(place, groove.center().y());
    painter.setBrush(isSliderDown() ? look::kAccentPressed : look::kAccent);
    painter.drawEllipse(middle, radius, radius);
    if (hasFocus()) {
        painter.setBrush(Qt::white);
        painter.drawEllipse(middle, radius - 3, radius - 3);
    }
}

void TrackSlider::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    setSliderDown(true);
    setSliderPosition(ValueAt(event->position().x()));
    update();
}

void TrackSlider::mouseMoveEvent(QMouseEvent* event) {
    const qreal x = std::clamp(event->position().x(), 0.0, static_cast<qreal>(width()));
    Q_EMIT Hovered(ValueAt(x), static_cast<int>(x));
    if (isSliderDown()) {
        setSliderPosition(ValueAt(x));
    }
}

void TrackSlider::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !isSliderDown()) {
        event->ignore();
        return;
    }
    setSliderDown(false);
    update();
}

void TrackSlider::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Left:
        case Qt::Key_Down:
            setValue(value() - singleStep());
            break;
        case Qt::Key_Right:
        case Qt::Key_Up:
            setValue(value() + singleStep());
            break;
        default:
            event->ignore();
            break;
    }
}

void TrackSlider::wheelEvent(QWheelEvent* event) {
    event->ignore();  // the window gives the wheel its one meaning
}

void TrackSlider::enterEvent(QEnterEvent* event) {
    QSlider::enterEvent(event);
    update();
}

void TrackSlider::leaveEvent(QEvent* event) {
    QSlider::leaveEvent(event);
    Q_EMIT Hovered(-1, 0);
    update();
}

}  // namespace clipfix
