#include "shell/controls/x_progress_bar.h"

#include <QAccessible>
#include <QPainter>
#include <QPainterPath>

#include "shell/skin/palette.h"

namespace clipfix {

namespace {

constexpr int kHundred = 100;
constexpr qreal kBarCornerRadius = 4;

}  // namespace

CXProgressBar::CXProgressBar(int id, JobState& state, QWidget* parent)
    : QWidget(parent), state_(&state) {
    setObjectName(QString::number(id));
    timer_.setInterval(kTimerMilliseconds);
    connect(&timer_, &QTimer::timeout, this, &CXProgressBar::OnTimer);
}

void CXProgressBar::SetPosition(int percent) {
    position_ = percent;
    timer_.start();
    QAccessibleValueChangeEvent changed(this, percent);
    QAccessible::updateAccessibility(&changed);
}

void CXProgressBar::Reset() {
    position_ = 0;
    drawn_ = 0;
    drawnLength_ = 0;
    timer_.stop();
    update();
}

void CXProgressBar::OnTimer() {
    if (drawn_ == position_) {
        timer_.stop();
        return;
    }
    update();
}

int CXProgressBar::PercentOfTheJob() const {
    if (state_->g_bSaving == 1) {
        return state_->g_nSavePercent;
    }
    return state_->g_bMovJob == 1 ? state_->g_nMovPercent : state_->g_nAviPercent;
}

void CXProgressBar::paintEvent(QPaintEvent* /*event*/) {
    if (state_->g_bProgressFresh == 1) {
        state_->g_bProgressFresh = 0;
        drawn_ = 0;
        drawnLength_ = 0;
    } else {
        drawn_ = PercentOfTheJob();
        // A hundredth of the width is rounded up before it is multiplied, so that the fill reaches
        // the end before 100 percent and is cut there. It is meant so.
        const int hundredth = (width() + kHundred - 1) / kHundred;
        drawnLength_ = hundredth * drawn_;
    }

    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF client = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    QPainterPath outline;
    outline.addRoundedRect(client, kBarCornerRadius, kBarCornerRadius);
    painter.fillPath(outline, skin::Colour(skin::kBarTrough));
    painter.save();
    painter.setClipPath(outline);
    painter.fillRect(QRect(0, 0, drawnLength_, height()), skin::Colour(skin::kBarFill));
    painter.restore();
    painter.setPen(QPen(skin::Colour(skin::kBarEdge), 1));
    painter.drawPath(outline);
}

}  // namespace clipfix
