#pragma once

#include <QTimer>
#include <QWidget>
#include <filesystem>

#include "platform/player_link.h"
#include "player/playback.h"
#include "player/player_arguments.h"
#include "player/player_texts.h"
#include "player/video_surface.h"

namespace clipfix {

class ControlBar;
class NoticePane;

// The player's window: the picture, or a notice in its place, above the control bar; on a full
// screen the bar floats over the picture and goes while nobody moves the mouse.
//
// Keys: Space, K or P play and pause; Left and Right five seconds, with Shift one, Page Up and Page
// Down a minute; Home and End; 0 to 9 the tenths of the film; full stop and comma a picture forward
// and back; Up and Down the volume; M sound off and on; F, F11 or a double click full screen; Esc
// leaves it; Q, Ctrl+W or Ctrl+Q end.
class PlayerWindow : public QWidget {
    Q_OBJECT

  public:
    enum class Drawing { BestForMachine, Software, OpenGl };

    PlayerWindow(const PlayerTexts& texts, Drawing drawing, QWidget* parent = nullptr);
    ~PlayerWindow() override;

    // Plays a file from its start, as soon as the window can draw.
    void Open(const PlayerArguments& file);

    // The main window names a file: nothing happens when it is being played already.
    void TakeRecord(const platform::PlayerRecord& record);

    [[nodiscard]] const Playback& CurrentPlayback() const { return *playback_; }
    [[nodiscard]] const NoticePane& Notice() const { return *notice_; }
    [[nodiscard]] int Volume() const { return volume_; }
    [[nodiscard]] bool IsMuted() const { return muted_; }
    [[nodiscard]] bool IsBarShown() const;
    // What was opened last.
    [[nodiscard]] const PlayerArguments& File() const { return file_; }

  protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void MakeSurface(Drawing drawing);
    void UseSoftwareSurface();
    void TakeSurfaceReady();
    void ConnectBar();
    void ConnectPlayback();
    void LoadFile();
    void PlaceParts();
    void PlaceBarOnFullScreen();
    void FitToPicture(QSize picture);
    void ShowBarForAWhile();
    void HideBar();
    void ShowState();
    void ShowFailure(PlaybackFailure failure);
    void TogglePlay();
    void ToggleFullScreen();
    void ToggleMute();
    void ChangeVolume(int percent);
    bool TakeSeekKey(const QKeyEvent& event);
    bool TakeOtherKey(const QKeyEvent& event);

    const PlayerTexts* texts_;
    PlayerArguments file_;
    bool wanted_ = false;  // a file waits for the surface
    bool fitted_ = false;  // the window has taken the picture's form once
    int volume_ = 100;     // percent
    bool muted_ = false;
    VideoSurface* surface_ = nullptr;
    Playback* playback_ = nullptr;
    NoticePane* notice_ = nullptr;
    ControlBar* bar_ = nullptr;
    QTimer idle_;  // runs while the bar is shown over a full screen
};

}  // namespace clipfix
