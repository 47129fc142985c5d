#include "shell/controls/x_cmd_btn.h"

#include <QFontMetrics>
#include <QPainter>

#include "shell/skin/fonts.h"
#include "shell/skin/pictures.h"

namespace clipfix {

namespace {

constexpr int kSidePadding = 10;  // logical pixels between label and edge
constexpr int kSmallestText = 13;
constexpr qreal kCornerRadius = 6;

skin::ColourValue TextColourOnFace(int face) {
    switch (face) {
        case skin::kCommandDisabled:
            return skin::kDisabledText;
        case skin::kQuietNormal:
            return skin::kText;
        case skin::kQuietHover:
            return skin::kLink;
        default:
            return skin::kFaceText;
    }
}

}  // namespace

CXCmdBtn::CXCmdBtn(int id, QWidget* parent)
    : ControlButton(id, parent),
      normal_(skin::kCommandNormal),
      hover_(skin::kCommandHover),
      pressed_(skin::kCommandPressed),
      disabled_(skin::kCommandDisabled) {}

void CXCmdBtn::SetFaces(int normal, int hover, int pressed, int disabled) {
    normal_ = normal;
    hover_ = hover;
    pressed_ = pressed;
    disabled_ = disabled;
    update();
}

int CXCmdBtn::CurrentFace() const {
    switch (CurrentLook()) {
        case Look::Hover:
            return hover_;
        case Look::Pressed:
            return pressed_;
        case Look::Disabled:
            return disabled_;
        default:
            return normal_;
    }
}

void CXCmdBtn::SetTextHeight(int height) {
    textHeight_ = height;
    updateGeometry();
    update();
}

QSize CXCmdBtn::sizeHint() const {
    const QFont font = skin::FontOfHeight(QString::fromLatin1(skin::kEmphasisFace), textHeight_);
    const int width = QFontMetrics(font).horizontalAdvance(text()) + 4 * kSidePadding;
    return {std::max(width, 121), std::max(35, textHeight_ + 15)};
}

QFont CXCmdBtn::LabelFont() const {
    return skin::FontThatFits(QString::fromLatin1(skin::kEmphasisFace), textHeight_, text(),
                              width() - 2 * kSidePadding, kSmallestText);
}

void CXCmdBtn::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const int face = CurrentFace();
    skin::DrawFace(painter, rect(), face);
    painter.setFont(LabelFont());
    painter.setPen(skin::Colour(TextColourOnFace(face)));
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextSingleLine, text());
    if (ShowsFocus()) {
        skin::DrawFocusMark(painter, rect(), kCornerRadius);
    }
}

}  // namespace clipfix
