#include "player/notice_pane.h"

#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>

#include "player/elided_label.h"
#include "player/look.h"

namespace clipfix {

namespace {

constexpr int kSignHeight = 64;
constexpr int kMargin = 32;

void SetColour(QLabel& label, const QColor& colour) {
    QPalette palette = label.palette();
    palette.setColor(QPalette::WindowText, colour);
    label.setPalette(palette);
}

QLabel* MakeLine(QLabel* label, const QFont& font, const QColor& colour) {
    label->setTextFormat(Qt::PlainText);
    label->setFont(font);
    label->setAlignment(Qt::AlignHCenter | Qt::AlignVCenter);
    SetColour(*label, colour);
    return label;
}

}  // namespace

NoticePane::NoticePane(QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    sign_ = new QWidget(this);
    sign_->setFixedHeight(kSignHeight);
    heading_ = MakeLine(new QLabel(this), look::Font(22, true), look::kNoticeText);
    heading_->setWordWrap(true);
    reason_ = MakeLine(new QLabel(this), look::Font(15), look::kQuietNoticeText);
    reason_->setWordWrap(true);
    path_ = MakeLine(new ElidedLabel(this), look::Font(13), look::kDisabled);
    auto* lines = new QVBoxLayout(this);
    lines->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    lines->setSpacing(10);
    lines->addStretch();
    lines->addWidget(sign_);
    lines->addWidget(heading_);
    lines->addWidget(reason_);
    lines->addWidget(path_);
    lines->addStretch();
}

void NoticePane::Show(Glyph glyph, const QString& heading, const QString& reason,
                      const QString& path) {
    glyph_ = glyph;
    heading_->setText(heading);
    reason_->setText(reason);
    reason_->setVisible(!reason.isEmpty());
    path_->setText(path);
    path_->setVisible(!path.isEmpty());
    setAccessibleName(heading);
    setAccessibleDescription(reason);
    show();
    update();
}

QString NoticePane::Heading() const {
    return heading_->text();
}

QString NoticePane::ReasonText() const {
    return reason_->text();
}

void NoticePane::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), look::kNoticeStage);
    DrawGlyph(painter, glyph_, sign_->geometry(), look::kQuietNoticeText);
}

}  // namespace clipfix
