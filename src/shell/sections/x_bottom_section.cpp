#include "shell/sections/x_bottom_section.h"

#include <QPainter>
#include <algorithm>

#include "shell/child.h"
#include "shell/skin/fonts.h"
#include "shell/skin/pictures.h"

namespace clipfix {

namespace {

constexpr int kSideMargin = 27;  // of the buttons, right and below
constexpr int kTextMargin = 54;
constexpr int kGap = 12;
constexpr int kButtonHeight = 38;
constexpr int kLeastButtonWidth = 132;
constexpr int kLine = 24;
constexpr int kSmallestText = 14;

}  // namespace

CXBottomSection::CXBottomSection(const WindowParts& parts, QWidget* parent)
    : Section(QStringLiteral("CXBottomSection"), skin::kSectionTop, parent), parts_(&parts) {
    // The texts, from top to bottom. The hint alone is shown at first.
    MakeText(JobControlId::Hint, kHint)->setText(WordOf(parts.texts, "IDS_CLICK_ADD"));
    auto* selected = MakeText(JobControlId::SelectedText, kSelectedText);
    selected->SetFace(QString::fromLatin1(skin::kEmphasisFace));
    selected->SetTextColour(skin::kSelectedText);
    selected->setText(WordOf(parts.texts, "IDS_FILE_SELECTED"));
    MakeText(JobControlId::CorruptedLabel, kCorruptedLabel);
    MakeText(JobControlId::ReferenceText, kReferenceLabel);
    MakeText(JobControlId::PathLabel, kPathLabel);

    // The buttons, from left to right; the next step stands at the right.
    MakeButton(JobControlId::Back, kBack, "IDS_BACK", true, &JobDriver::OnBack);
    MakeButton(JobControlId::Home, kHome, "IDS_HOME", true, &JobDriver::OnHome);
    connect(MakeButton(JobControlId::Preview, kPreview, "IDS_PREVIEW", true, nullptr),
            &CXCmdBtn::clicked, this, &CXBottomSection::PreviewAsked);
    MakeButton(JobControlId::Pause, kPause, "IDS_PAUSE", true, &JobDriver::OnPauseResume);
    MakeButton(JobControlId::Cancel, kCancel, "IDS_CANCEL", true, &JobDriver::OnCancelJob);
    MakeButton(JobControlId::Repair, kRepair, "IDS_REPAIR", false, &JobDriver::OnRepair);
    MakeButton(JobControlId::Save, kSave, "IDS_SAVE", false, &JobDriver::OnSave);
    Section::SetControlVisible(JobControlId::Hint, true);
}

CXStatic* CXBottomSection::MakeText(JobControlId control, int id) {
    auto* label = MakeChild<CXStatic>(id, this);
    label->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    label->hide();
    Register(control, label);
    labels_.push_back(label);
    return label;
}

CXCmdBtn* CXBottomSection::MakeButton(JobControlId control, int id, const char* key, bool quiet,
                                      void (JobDriver::*command)()) {
    auto* button = MakeChild<CXCmdBtn>(id, this);
    button->setText(WordOf(parts_->texts, key));
    if (quiet) {
        button->SetFaces(skin::kQuietNormal, skin::kQuietHover, skin::kCommandPressed,
                         skin::kCommandDisabled);
    }
    if (command != nullptr) {
        connect(button, &CXCmdBtn::clicked, this,
                [driver = &parts_->driver, command] { (driver->*command)(); });
    }
    button->hide();
    Register(control, button);
    buttons_.push_back(button);
    return button;
}

// The page that asks for a reference shows the damaged file's label and its own request; the text
// that calls for Repair has no place there.
void CXBottomSection::SetControlVisible(JobControlId control, bool visible) {
    Section::SetControlVisible(control, visible);
    if (control == JobControlId::ReferenceText && visible) {
        Section::SetControlVisible(JobControlId::SelectedText, false);
    }
}

void CXBottomSection::Arrange() {
    ArrangeTexts(ArrangeButtons() - kTextMargin - kGap);
}

int CXBottomSection::ArrangeButtons() {
    int left = width() - kSideMargin;
    for (auto button = buttons_.rbegin(); button != buttons_.rend(); ++button) {
        if ((*button)->isHidden()) {
            continue;
        }
        const int buttonWidth = std::max(kLeastButtonWidth, (*button)->sizeHint().width());
        (*button)->setGeometry(left - buttonWidth, height() - kSideMargin - kButtonHeight,
                               buttonWidth, kButtonHeight);
        left -= buttonWidth + kGap;
    }
    return left;
}

// The texts that are shown stand below one another, the whole block in the middle of the height. A
// text that is too long is made smaller, and broken into lines where that does not help.
void CXBottomSection::ArrangeTexts(int textWidth) {
    const auto shown = static_cast<int>(std::count_if(
        labels_.begin(), labels_.end(), [](const CXStatic* label) { return !label->isHidden(); }));
    const int room = shown == 0 ? 0 : (height() - 4) / shown;
    const int line = std::min(room, shown == 1 ? 3 * kLine : kLine + kLine / 4);
    int top = (height() - shown * line) / 2;
    for (CXStatic* label : labels_) {
        if (label->isHidden()) {
            continue;
        }
        label->setFont(skin::FontThatFits(label->Face(), skin::kTextHeight, label->text(),
                                          textWidth,
                                          shown == 1 ? skin::kTextHeight : kSmallestText));
        label->setWordWrap(shown == 1);
        label->setGeometry(kTextMargin, top, textWidth, line);
        top += line;
    }
}

void CXBottomSection::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(QRect(0, 0, width(), 1), skin::Colour(skin::kSeparator));
}

void CXBottomSection::StartTimer(int id, int milliseconds) {
    QTimer*& timer = timers_[id];
    if (timer == nullptr) {
        timer = MakeChild<QTimer>(this);
        connect(timer, &QTimer::timeout, this, [this, id] { OnTimer(id); });
    }
    timer->start(milliseconds);
}

void CXBottomSection::StopTimer(int id) {
    if (const auto timer = timers_.find(id); timer != timers_.end()) {
        timer->second->stop();
    }
}

void CXBottomSection::StopAllTimers() {
    for (const auto& [id, timer] : timers_) {
        timer->stop();
    }
}

void CXBottomSection::OnTimer(int id) {
    if (id == kSaveTimer) {
        parts_->driver.OnSaveTimer();
    } else {
        parts_->driver.OnTimer(id);
    }
}

}  // namespace clipfix
