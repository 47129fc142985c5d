#include "shell/controls/x_static.h"

#include <QFontMetrics>
#include <QPalette>

#include "shell/skin/fonts.h"

namespace clipfix {

CXStatic::CXStatic(int id, QWidget* parent)
    : QLabel(parent), face_(QString::fromLatin1(skin::kFace)) {
    setObjectName(QString::number(id));
    setTextFormat(Qt::PlainText);
    SetTextColour(skin::kText);
    UpdateFont();
}

void CXStatic::SetTextColour(skin::ColourValue colour) {
    colour_ = colour;
    QPalette changed = palette();
    changed.setColor(QPalette::WindowText, skin::Colour(colour));
    setPalette(changed);
}

void CXStatic::SetBackground(std::optional<skin::ColourValue> colour) {
    setAutoFillBackground(colour.has_value());
    if (colour) {
        QPalette changed = palette();
        changed.setColor(QPalette::Window, skin::Colour(*colour));
        setPalette(changed);
    }
}

void CXStatic::SetHeight(int height) {
    height_ = height;
    UpdateFont();
}

void CXStatic::SetFace(const QString& face) {
    face_ = face;
    UpdateFont();
}

int CXStatic::HeightOfText(int width) const {
    if (text().isEmpty()) {
        return 0;
    }
    constexpr int kAnyHeight = 10000;
    return QFontMetrics(font())
        .boundingRect(QRect(0, 0, width, kAnyHeight), Qt::TextWordWrap | Qt::AlignLeft, text())
        .height();
}

void CXStatic::UpdateFont() {
    setFont(skin::FontOfHeight(face_, height_));
}

}  // namespace clipfix
