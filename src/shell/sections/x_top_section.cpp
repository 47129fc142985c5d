#include "shell/sections/x_top_section.h"

#include <QPainter>

#include "shell/child.h"
#include "shell/skin/fonts.h"

namespace clipfix {

namespace {

constexpr int kMargin = 54;
constexpr int kTitleHeight = 32;
constexpr int kSmallestTitle = 20;

}  // namespace

CXTopSection::CXTopSection(const WindowParts& parts, QWidget* parent)
    : Section(QStringLiteral("CXTopSection"), skin::kSectionTop, parent),
      title_(MakeChild<CXStatic>(kTitleText, this)) {
    Register(JobControlId::Title, title_);
    title_->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    title_->SetBackground(skin::kSectionTop);
    SetControlText(JobControlId::Title, WordOf(parts.texts, "IDS_SELECT_VIDEO"), {});
}

// All titles have one height, whatever the job asks for, so that they do not jump between pages.
void CXTopSection::SetControlText(JobControlId control, const QString& text,
                                  const TextStyle& style) {
    TextStyle titleStyle = style;
    titleStyle.height = kTitleHeight;
    Section::SetControlText(control, text, titleStyle);
}

void CXTopSection::Arrange() {
    title_->setGeometry(kMargin, 0, width() - 2 * kMargin, height() - 1);
    title_->setFont(skin::FontThatFits(title_->Face(), kTitleHeight, title_->text(),
                                       title_->width(), kSmallestTitle));
}

void CXTopSection::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(QRect(0, height() - 1, width(), 1), skin::Colour(skin::kSeparator));
}

}  // namespace clipfix
