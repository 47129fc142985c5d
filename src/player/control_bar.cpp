#include "player/control_bar.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QToolTip>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>
#include <limits>

#include "player/elided_label.h"
#include "player/glyph_button.h"
#include "player/look.h"
#include "player/player_texts.h"
#include "player/time_text.h"
#include "player/track_slider.h"

namespace clipfix {

namespace {

constexpr double kTicks = 1000;  // the seek bar counts thousandths of a second
constexpr int kStepTicks = 5000;
constexpr int kVolumeWidth = 96;
constexpr int kNarrow = 560;       // below this the volume's slider gives up its place
constexpr int kLowVolume = 50;     // percent
constexpr qreal kCardCorner = 12;  // of the bar that floats over a full screen

QLabel* MakeTime(Qt::Alignment alignment, QWidget* parent) {
    auto* label = new QLabel(QStringLiteral("0:00"), parent);
    label->setFont(look::Font(13));
    label->setAlignment(alignment | Qt::AlignVCenter);
    return label;
}

int Ticks(double seconds) {
    constexpr double kMost = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(std::round(seconds * kTicks), 0.0, kMost));
}

}  // namespace

ControlBar::ControlBar(const PlayerTexts& texts, QWidget* parent)
    : QWidget(parent), texts_(&texts) {
    setAttribute(Qt::WA_NoSystemBackground);
    MakeParts();
    ConnectParts();
    LayOut();
    ShowState(State::Unusable);
    ShowVolume(100, false);
    ShowFullScreen(false);
}

void ControlBar::MakeParts() {
    using Style = GlyphButton::Style;
    passed_ = MakeTime(Qt::AlignRight, this);
    seek_ = new TrackSlider(this);
    seek_->setSingleStep(kStepTicks);
    seek_->setAccessibleName(texts_->Word(player_text::kPosition));
    whole_ = MakeTime(Qt::AlignLeft, this);

    name_ = new ElidedLabel(this);
    name_->setFont(look::Font(14, true));
    size_ = new QLabel(this);
    size_->setTextFormat(Qt::PlainText);
    size_->setFont(look::Font(12));
    QPalette quiet = size_->palette();
    quiet.setColor(QPalette::WindowText, look::kQuietText);
    size_->setPalette(quiet);

    backward_ = new GlyphButton(Glyph::Backward, Style::Plain, this);
    backward_->SetMeaning(Glyph::Backward, texts_->Word(player_text::kBackward));
    play_ = new GlyphButton(Glyph::Play, Style::Disc, this);
    forward_ = new GlyphButton(Glyph::Forward, Style::Plain, this);
    forward_->SetMeaning(Glyph::Forward, texts_->Word(player_text::kForward));

    mute_ = new GlyphButton(Glyph::SoundOn, Style::Plain, this);
    volume_ = new TrackSlider(this);
    volume_->SetEnd(100);
    volume_->setSingleStep(kVolumeStep);
    volume_->setFixedWidth(kVolumeWidth);
    volume_->setAccessibleName(texts_->Word(player_text::kVolume));
    fullScreen_ = new GlyphButton(Glyph::FullScreen, Style::Plain, this);
}

void ControlBar::ConnectParts() {
    connect(play_, &GlyphButton::clicked, this, &ControlBar::PlayPressed);
    connect(backward_, &GlyphButton::clicked, this, [this] { Q_EMIT StepWanted(-kStep); });
    connect(forward_, &GlyphButton::clicked, this, [this] { Q_EMIT StepWanted(kStep); });
    connect(mute_, &GlyphButton::clicked, this, &ControlBar::MutePressed);
    connect(fullScreen_, &GlyphButton::clicked, this, &ControlBar::FullScreenPressed);
    connect(volume_, &TrackSlider::Chosen, this, &ControlBar::VolumeWanted);
    connect(seek_, &TrackSlider::Chosen, this, [this](int value) {
        ShowTimes(value / kTicks);
        Q_EMIT PositionWanted(value / kTicks);
    });
    connect(seek_, &TrackSlider::Hovered, this, &ControlBar::ShowHoveredTime);
}

void ControlBar::LayOut() {
    auto* top = new QHBoxLayout;
    top->setSpacing(10);
    top->addWidget(passed_);
    top->addWidget(seek_, 1);
    top->addWidget(whole_);

    auto* file = new QVBoxLayout;
    file->setSpacing(0);
    file->addStretch();
    file->addWidget(name_);
    file->addWidget(size_);
    file->addStretch();

    auto* middle = new QHBoxLayout;
    middle->setSpacing(8);
    middle->addWidget(backward_, 0, Qt::AlignVCenter);
    middle->addWidget(play_);
    middle->addWidget(forward_, 0, Qt::AlignVCenter);

    auto* right = new QHBoxLayout;
    right->setSpacing(4);
    right->addStretch();
    right->addWidget(mute_);
    right->addWidget(volume_);
    right->addSpacing(4);
    right->addWidget(fullScreen_);

    auto* bottom = new QGridLayout;
    bottom->setHorizontalSpacing(16);
    bottom->addLayout(file, 0, 0);
    bottom->addLayout(middle, 0, 1);
    bottom->addLayout(right, 0, 2);
    bottom->setColumnStretch(0, 1);
    bottom->setColumnStretch(2, 1);

    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(18, 10, 18, 12);
    all->setSpacing(4);
    all->addLayout(top);
    all->addLayout(bottom);
}

void ControlBar::ShowFile(const QString& name, const QString& size) {
    name_->setText(name);
    size_->setText(size);
    size_->setVisible(!size.isEmpty());
}

void ControlBar::ShowState(State state) {
    state_ = state;
    const bool usable = state != State::Unusable;
    for (QWidget* part :
         std::initializer_list<QWidget*>{seek_, backward_, play_, forward_, mute_, volume_}) {
        part->setEnabled(usable);
    }
    for (QLabel* time : {passed_, whole_}) {
        time->setVisible(usable);
    }
    if (state == State::Playing) {
        play_->SetMeaning(Glyph::Pause, texts_->Word(player_text::kPause));
    } else if (state == State::AtEnd) {
        play_->SetMeaning(Glyph::PlayAgain, texts_->Word(player_text::kPlayAgain));
    } else {
        play_->SetMeaning(Glyph::Play, texts_->Word(player_text::kPlay));
    }
}

void ControlBar::ShowPosition(double seconds) {
    if (!seek_->isSliderDown()) {
        seek_->Follow(Ticks(seconds));
        ShowTimes(seconds);
    }
}

void ControlBar::ShowDuration(double seconds) {
    duration_ = seconds;
    seek_->SetEnd(Ticks(seconds));
    whole_->setText(TimeText(seconds, seconds));
    // Room for the longest time, so that nothing moves while it plays.
    const QString widest = TimeText(seconds, seconds).replace(QLatin1Char('1'), QLatin1Char('0'));
    passed_->setMinimumWidth(passed_->fontMetrics().horizontalAdvance(widest) + 2);
}

void ControlBar::ShowTimes(double seconds) {
    passed_->setText(TimeText(seconds, duration_));
}

void ControlBar::ShowHoveredTime(int value, int x) {
    if (value < 0 || duration_ <= 0) {
        QToolTip::hideText();
        return;
    }
    const QPoint place = seek_->mapToGlobal(QPoint(x - 16, -seek_->height() - 26));
    QToolTip::showText(place, TimeText(value / kTicks, duration_), seek_);
}

void ControlBar::ShowVolume(int percent, bool muted) {
    volume_->Follow(muted ? 0 : percent);
    const bool silent = muted || percent == 0;
    const Glyph glyph = silent                  ? Glyph::SoundOff
                        : percent <= kLowVolume ? Glyph::SoundLow
                                                : Glyph::SoundOn;
    const PlayerText& name = silent ? player_text::kSoundOn : player_text::kSoundOff;
    mute_->SetMeaning(glyph, texts_->Word(name), QStringLiteral("M"));
}

void ControlBar::ShowFullScreen(bool isFullScreen) {
    isFullScreen_ = isFullScreen;
    fullScreen_->SetMeaning(
        isFullScreen ? Glyph::LeaveFullScreen : Glyph::FullScreen,
        texts_->Word(isFullScreen ? player_text::kLeaveFullScreen : player_text::kFullScreen),
        QStringLiteral("F"));
    update();
}

void ControlBar::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    if (!isFullScreen_) {
        painter.fillRect(rect(), look::kPanel);
        painter.fillRect(QRect(0, 0, width(), 1), look::kSeparator);
        return;
    }
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    QColor card = look::kPanel;
    card.setAlphaF(0.94F);
    painter.setBrush(card);
    painter.drawRoundedRect(rect(), kCardCorner, kCardCorner);
}

void ControlBar::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    volume_->setVisible(width() >= kNarrow);
}

}  // namespace clipfix
