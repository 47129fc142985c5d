#include "shell/sections/x_container.h"

#include <QPainter>
#include <algorithm>

#include "shell/child.h"
#include "shell/skin/fonts.h"
#include "shell/skin/pictures.h"

// What stands in the centre section, and where. What its commands do stands in
// x_container_commands.cpp.
namespace clipfix {

namespace {

constexpr int kChoiceButtonHeight = 56;
constexpr int kLeastChoiceWidth = 260;
constexpr int kChoiceTextHeight = 24;
constexpr int kLinkGap = 20;
constexpr int kLinkPadding = 6;
constexpr int kMarkSide = 96;
constexpr int kMarkGap = 22;  // between the mark and the button
constexpr int kDropWidth = 640;
constexpr int kDropMargin = 26;  // above and below the place of the drop
constexpr qreal kDropCorner = 14;

constexpr int kAnimationSide = 120;
constexpr int kBarWidth = 600;
constexpr int kBarHeight = 14;
constexpr int kPercentGap = 14;
constexpr int kProgressGap = 18;
constexpr int kTextLine = 24;
constexpr int kTimesGap = 48;  // between the start and the elapsed time

constexpr int kPlaySide = 128;
constexpr int kDetailsGap = 64;  // between the play picture and the grid
constexpr int kDetailLine = 38;
constexpr int kCaptionGap = 12;
constexpr int kLeastValueWidth = 160;

}  // namespace

CXContainer::CXContainer(const WindowParts& parts, QWidget* parent)
    : Section(QStringLiteral("CXContainer"), skin::kSectionCentre, parent), parts_(&parts) {
    MakeChoice();
    MakeProgress();
    MakeDetailsGrid();
    playerStarts_.setSingleShot(true);
    connect(&playerStarts_, &QTimer::timeout, this, [this] {
        if (parts_->state.g_bPlayerOpen == 1) {
            parts_->desktop.SendFileToPlayer(fileForPlayer_);
        }
    });
}

void CXContainer::MakeChoice() {
    addFile_ = MakeChild<CXCmdBtn>(kAddFile, this);
    addFile_->setText(WordOf(parts_->texts, "IDS_ADD_FILE"));
    chooseReference_ = MakeChild<CXCmdBtn>(kChooseReference, this);
    chooseReference_->setText(WordOf(parts_->texts, "IDS_CHOOSE_REFERENCE_MOV_FILE"));
    link_ = MakeChild<CHyperLink>(kWhyHealthy, this);
    link_->SetColours(skin::kLink, skin::kLinkHover, skin::kLink);
    link_->SetPadding(kLinkPadding);
    link_->setText(WordOf(parts_->texts, "IDS_WHY_HEALTHY"));
    for (CXCmdBtn* button : {addFile_, chooseReference_}) {
        button->SetTextHeight(kChoiceTextHeight);
    }
    chooseReference_->hide();
    link_->hide();
    connect(addFile_, &CXCmdBtn::clicked, this, &CXContainer::OnAddFile);
    connect(chooseReference_, &CXCmdBtn::clicked, this, &CXContainer::OnChooseReference);
    connect(link_, &CHyperLink::clicked, this, &CXContainer::OnWhyHealthy);
    Register(JobControlId::AddFile, addFile_);
    Register(JobControlId::ChooseReference, chooseReference_);
    Register(JobControlId::WhyHealthyLink, link_);
}

CXStatic* CXContainer::MakeText(JobControlId control, int id, const char* key) {
    auto* label = MakeChild<CXStatic>(id, this);
    if (key != nullptr) {
        label->setText(WordOf(parts_->texts, key));
    }
    label->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    label->hide();
    Register(control, label);
    return label;
}

void CXContainer::MakeProgress() {
    status_ = MakeText(JobControlId::StatusText, kStatusText, nullptr);
    status_->setAlignment(Qt::AlignHCenter | Qt::AlignVCenter);
    bar_ = MakeChild<CXProgressBar>(kProgressBar, parts_->state, this);
    bar_->setAccessibleName(WordOf(parts_->texts, "IDS_PROGRESS"));
    bar_->hide();
    Register(JobControlId::ProgressBar, bar_);
    percent_ = MakeText(JobControlId::PercentText, kPercentText, nullptr);
    times_ = {MakeText(JobControlId::StartTimeCaption, kStartTimeCaption, "IDS_START_TIME"),
              MakeText(JobControlId::StartTimeValue, kStartTimeValue, nullptr),
              MakeText(JobControlId::ElapsedTimeCaption, kElapsedCaption, "IDS_ELAPSED_TIME"),
              MakeText(JobControlId::ElapsedTimeValue, kElapsedValue, nullptr)};
}

void CXContainer::MakeDetailsGrid() {
    grid_ = MakeChild<QWidget>(this);
    grid_->setObjectName(QStringLiteral("DetailsGrid"));
    int id = kFirstDetail;
    for (CXStatic*& label : details_) {
        label = MakeChild<CXStatic>(id++, grid_);
        label->SetFace(QString::fromLatin1(skin::kEmphasisFace));
        label->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    }
    grid_->hide();
    Register(JobControlId::DetailsGrid, grid_);
    play_ =
        MakeChild<CButtonST>(kPlayPicture, skin::kPlay, WordOf(parts_->texts, "IDS_PREVIEW"), this);
    play_->hide();
    connect(play_, &CButtonST::clicked, this, &CXContainer::OnPreview);
    Register(JobControlId::PlayPicture, play_);
}

void CXContainer::SetControlVisible(JobControlId control, bool visible) {
    if (control == JobControlId::BusyAnimation) {
        if (busy_ != nullptr) {
            busy_->setVisible(visible);
        }
        return;
    }
    Section::SetControlVisible(control, visible);
    update();
    if (control == JobControlId::ChooseReference && !visible) {
        SetReferenceIsNextStep(true);
    }
    // The animation is a part of the progress view and goes with its bar.
    if (control == JobControlId::ProgressBar && !visible && busy_ != nullptr) {
        busy_->hide();
    }
}

void CXContainer::Arrange() {
    ArrangeChoice();
    ArrangeProgress();
    ArrangeDetails();
}

// The mark, the button and the link, as many of them as stand there, in the middle.
void CXContainer::ArrangeChoice() {
    const int middle = width() / 2;
    const QSize link = link_->sizeHint();
    const int belowButton = link_->isHidden() ? 0 : kLinkGap + link.height();
    const int all = kMarkSide + kMarkGap + kChoiceButtonHeight + belowButton;
    const int top = (height() - all) / 2 + kMarkSide + kMarkGap;
    for (CXCmdBtn* button : {addFile_, chooseReference_}) {
        const int buttonWidth = std::max(kLeastChoiceWidth, button->sizeHint().width() + 40);
        button->setGeometry(middle - buttonWidth / 2, top, buttonWidth, kChoiceButtonHeight);
    }
    link_->setGeometry(QRect(
        QPoint(middle - link.width() / 2, chooseReference_->geometry().bottom() + kLinkGap), link));
}

// Below one another in the middle: the animation, the status text, the bar with the percent at its
// right, and the times.
void CXContainer::ArrangeProgress() {
    const int all = kAnimationSide + kProgressGap + kTextLine + kProgressGap + kBarHeight +
                    kProgressGap + kTextLine;
    int top = (height() - all) / 2;
    for (CPictureEx* busy : {busyRepair_, busySave_}) {
        if (busy != nullptr) {
            busy->setGeometry((width() - kAnimationSide) / 2, top, kAnimationSide, kAnimationSide);
        }
    }
    top += kAnimationSide + kProgressGap;
    status_->setGeometry(kProgressGap, top, width() - 2 * kProgressGap, kTextLine);
    top += kTextLine + kProgressGap;
    const int left = (width() - kBarWidth) / 2;
    bar_->setGeometry(left, top, kBarWidth, kBarHeight);
    percent_->setGeometry(left + kBarWidth + kPercentGap, top + (kBarHeight - kTextLine) / 2, 80,
                          kTextLine);
    top += kBarHeight + kProgressGap;

    int timesWidth = kTimesGap;
    for (const CXStatic* label : times_) {
        timesWidth += label->sizeHint().width();
    }
    int x = (width() - timesWidth) / 2;
    for (CXStatic* label : times_) {
        const int labelWidth = label->sizeHint().width();
        label->setGeometry(x, top, labelWidth, kTextLine);
        x += labelWidth + (label == times_[1] ? kTimesGap : 0);
    }
}

// The play picture, and at its right the grid, whose columns follow the longest caption and value.
void CXContainer::ArrangeDetails() {
    int captions = 0;
    int values = kLeastValueWidth;
    for (std::size_t i = 0; i < details_.size(); ++i) {
        int& column = i % 2 == 0 ? captions : values;
        column = std::max(column, details_[i]->sizeHint().width());
    }
    const int all = kPlaySide + kDetailsGap + captions + kCaptionGap + values;
    const int left = std::max(0, (width() - all) / 2);
    const int gridHeight = static_cast<int>(kDetailRows) * kDetailLine;
    play_->setGeometry(left, (height() - kPlaySide) / 2, kPlaySide, kPlaySide);
    grid_->setGeometry(left + kPlaySide + kDetailsGap, (height() - gridHeight) / 2,
                       captions + kCaptionGap + values, gridHeight);
    for (std::size_t row = 0; row < kDetailRows; ++row) {
        const int top = static_cast<int>(row) * kDetailLine;
        details_[2 * row]->setGeometry(0, top, captions, kDetailLine);
        details_[2 * row + 1]->setGeometry(captions + kCaptionGap, top, values, kDetailLine);
    }
}

// A page has one filled button: once a reference is there, that is Repair.
void CXContainer::SetReferenceIsNextStep(bool next) {
    if (next) {
        chooseReference_->SetFaces(skin::kCommandNormal, skin::kCommandHover, skin::kCommandPressed,
                                   skin::kCommandDisabled);
    } else {
        chooseReference_->SetFaces(skin::kQuietNormal, skin::kQuietHover, skin::kCommandPressed,
                                   skin::kCommandDisabled);
    }
}

void CXContainer::ShowDropTarget(bool shown) {
    dropTargetShown_ = shown;
    update();
}

// On the pages of the choice a picture stands above the button, or alone. Around it the place is
// marked on which a file may be dropped.
void CXContainer::paintEvent(QPaintEvent* /*event*/) {
    if (!bar_->isHidden() || !grid_->isHidden()) {
        return;
    }
    QPainter painter(this);
    const bool withButton = !addFile_->isHidden() || !chooseReference_->isHidden();
    if (withButton || dropTargetShown_) {
        DrawDropTarget(painter);
    }
    const int top =
        withButton ? addFile_->geometry().top() - kMarkGap - kMarkSide : (height() - kMarkSide) / 2;
    const int picture = chooseReference_->isHidden() ? skin::kMark : skin::kHealthyFilm;
    painter.drawPixmap((width() - kMarkSide) / 2, top,
                       skin::Picture(picture, QSize(kMarkSide, kMarkSide), devicePixelRatioF()));
}

void CXContainer::DrawDropTarget(QPainter& painter) const {
    const QRectF place(width() / 2.0 - kDropWidth / 2.0, kDropMargin, kDropWidth,
                       height() - 2 * kDropMargin);
    QPen edge(skin::Colour(dropTargetShown_ ? skin::kDropEdgeActive : skin::kDropEdge), 1.5);
    edge.setDashPattern({5, 4});
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(edge);
    painter.setBrush(skin::Colour(dropTargetShown_ ? skin::kDropFillActive : skin::kDropFill));
    painter.drawRoundedRect(place, kDropCorner, kDropCorner);
}

}  // namespace clipfix
