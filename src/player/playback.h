#pragma once

#include <QObject>
#include <QSize>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>

struct mpv_handle;
struct mpv_event;
struct mpv_event_end_file;
struct mpv_event_property;

namespace clipfix {

// Why a file cannot be played.
enum class PlaybackFailure {
    NoFile,     // the player was given no path
    NotFound,   // nothing stands at the path
    NotAFile,   // a folder or a device stands there
    NoAccess,   // the system refuses to read it
    Empty,      // the file has no bytes
    NotAVideo,  // neither picture nor sound was recognised
    NoPicture,  // there is a picture track, and not one picture could be decoded
    NoEngine,   // the player itself could not be set up
};

// What can be told about a path before the engine opens it; nothing when it looks good.
[[nodiscard]] std::optional<PlaybackFailure> LookAtFile(const std::filesystem::path& path);

// One file being played, by libmpv. Times are in seconds. All of it belongs to the interface
// thread; what the engine tells from its threads arrives there as signals.
class Playback : public QObject {
    Q_OBJECT

  public:
    explicit Playback(QObject* parent);
    ~Playback() override;

    // Null when the engine could not be set up; every operation then does nothing.
    [[nodiscard]] mpv_handle* Handle() const { return engine_.get(); }

    // Leaves what is played and plays this file from its start. To be called when the surface for
    // the picture stands. Ends in Loaded or Failed.
    void Load(const std::filesystem::path& path);

    void SetPaused(bool paused);
    void SeekTo(double seconds);
    void SeekBy(double seconds);
    // One picture forward or back, and pause there.
    void StepPicture(bool forward);
    // 0 to 100, as loud as it sounds to the ear.
    void SetVolume(int percent);
    void SetMuted(bool muted);

    [[nodiscard]] bool IsLoaded() const { return loaded_; }
    [[nodiscard]] bool IsPaused() const { return paused_; }
    [[nodiscard]] bool IsAtEnd() const { return atEnd_; }
    [[nodiscard]] double Position() const { return position_; }
    [[nodiscard]] double Duration() const { return duration_; }  // 0: not known

  Q_SIGNALS:
    void Loaded(bool hasPicture);
    void Failed(clipfix::PlaybackFailure failure);
    void PositionChanged(double seconds);
    void DurationChanged(double seconds);
    // Playing, paused or at the end.
    void StateChanged();
    // A picture can be seen now; `size` is what it wants to be shown at, in pixels. May be told
    // more than once.
    void PictureShown(QSize size);

  private:
    struct EndEngine {
        void operator()(mpv_handle* engine) const;
    };

    void SetUp();
    void TakeEvents();
    void Take(const mpv_event& event);
    void TakeProperty(const mpv_event_property& property);
    void TakeLoaded();
    void TakeEndOfFile(const mpv_event_end_file& end);
    void TakePictureSize();
    void NoteEnd(bool atEnd);
    void Fail(PlaybackFailure failure);
    void SendSeek();
    void Command(std::uint64_t tag, std::initializer_list<const char*> words);

    std::unique_ptr<mpv_handle, EndEngine> engine_;
    bool loaded_ = false;
    bool hasPicture_ = false;
    bool paused_ = false;
    bool atEnd_ = false;
    double position_ = 0;
    double duration_ = 0;
    bool seeking_ = false;              // one seek is on its way
    std::optional<double> seekTarget_;  // the latest wish that has not been sent
    std::int64_t entry_ = -1;           // the engine's number for the file at hand
};

}  // namespace clipfix
