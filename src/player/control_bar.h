#pragma once

#include <QWidget>

class QLabel;

namespace clipfix {

class ElidedLabel;
class GlyphButton;
class PlayerTexts;
class TrackSlider;

// What one press of a button or a key moves.
inline constexpr double kStep = 5;     // seconds
inline constexpr int kVolumeStep = 5;  // percent

// All that the person works the player with: the seek bar with the times, the name of the video,
// the buttons, the volume. It knows nothing of the engine: it shows what it is told, and tells
// what is wanted.
class ControlBar : public QWidget {
    Q_OBJECT

  public:
    enum class State { Unusable, Playing, Paused, AtEnd };

    ControlBar(const PlayerTexts& texts, QWidget* parent);

    void ShowFile(const QString& name, const QString& size);
    void ShowState(State state);
    void ShowPosition(double seconds);
    void ShowDuration(double seconds);
    void ShowVolume(int percent, bool muted);
    void ShowFullScreen(bool isFullScreen);

  Q_SIGNALS:
    void PlayPressed();
    void StepWanted(double seconds);
    void PositionWanted(double seconds);
    void VolumeWanted(int percent);
    void MutePressed();
    void FullScreenPressed();

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    void MakeParts();
    void ConnectParts();
    void LayOut();
    void ShowTimes(double seconds);
    void ShowHoveredTime(int value, int x);

    const PlayerTexts* texts_;
    double duration_ = 0;
    State state_ = State::Unusable;
    bool isFullScreen_ = false;
    QLabel* passed_ = nullptr;
    QLabel* whole_ = nullptr;
    TrackSlider* seek_ = nullptr;
    ElidedLabel* name_ = nullptr;
    QLabel* size_ = nullptr;
    GlyphButton* backward_ = nullptr;
    GlyphButton* play_ = nullptr;
    GlyphButton* forward_ = nullptr;
    GlyphButton* mute_ = nullptr;
    TrackSlider* volume_ = nullptr;
    GlyphButton* fullScreen_ = nullptr;
};

}  // namespace clipfix
