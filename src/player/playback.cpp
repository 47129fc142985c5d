#include "player/playback.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <mpv/client.h>
#include <string>

#include "platform/file.h"
#include "platform/sound_output.h"

namespace clipfix {

namespace {

// Tags of what the engine is asked for, which come back with its answers.
constexpr std::uint64_t kNoTag = 0;
constexpr std::uint64_t kLoad = 1;
constexpr std::uint64_t kSeek = 2;

struct Option {
    const char* name;
    const char* value;
};

// The engine alone with the one file: no settings, scripts, keys or screen texts of its own, and
// nothing opened beside the file that was named, whatever its bytes ask for.
constexpr std::array kOptions{
    Option{"config", "no"},
    Option{"terminal", "no"},
    Option{"load-scripts", "no"},
    Option{"ytdl", "no"},
    Option{"osc", "no"},
    Option{"osd-level", "0"},
    Option{"input-default-bindings", "no"},
    Option{"input-vo-keyboard", "no"},
    Option{"input-media-keys", "no"},
    Option{"access-references", "no"},
    Option{"autoload-files", "no"},
    Option{"demuxer", "lavf"},
    Option{"resume-playback", "no"},
    Option{"vo", "libmpv"},
    Option{"idle", "yes"},
    Option{"keep-open", "yes"},  // the last picture stays
    Option{"hr-seek", "yes"},
    Option{"audio-client-name", "Kelvo Clipfix"},
    // A decoder in hardware gives up on streams of which one in software still shows a part, and
    // what has been repaired may hold such.
    Option{"hwdec", "no"},
    Option{"gpu-hwdec-interop", "no"},
    Option{"sws-fast", "yes"},
    Option{"zimg-fast", "yes"},
    // Without a sound device the picture still runs at its speed.
    Option{"audio-fallback-to-null", "yes"},
};

constexpr std::array kSilentOptions{Option{"ao", "null"}};
template <std::size_t kCount>
bool SetOptions(mpv_handle* engine, const std::array<Option, kCount>& options) {
    // An option that this version of the engine does not have is one that it need not be told.
    return std::all_of(options.begin(), options.end(), [&](const Option& option) {
        const int outcome = mpv_set_option_string(engine, option.name, option.value);
        return outcome >= 0 || outcome == MPV_ERROR_OPTION_NOT_FOUND;
    });
}

std::int64_t Number(mpv_handle* engine, const char* property) {
    std::int64_t value = 0;
    mpv_get_property(engine, property, MPV_FORMAT_INT64, &value);
    return value;
}

bool Flag(mpv_handle* engine, const char* property) {
    int value = 0;
    mpv_get_property(engine, property, MPV_FORMAT_FLAG, &value);
    return value != 0;
}

}  // namespace

std::optional<PlaybackFailure> LookAtFile(const std::filesystem::path& path) {
    if (path.empty()) {
        return PlaybackFailure::NoFile;
    }
    const auto file = platform::File::OpenForReading(path);
    if (file) {
        return file.Value().Size() == 0 ? std::optional(PlaybackFailure::Empty) : std::nullopt;
    }
    switch (file.Failure().kind) {
        case ErrorKind::NotFound:
            return PlaybackFailure::NotFound;
        case ErrorKind::NotAFile:
            return PlaybackFailure::NotAFile;
        default:
            return PlaybackFailure::NoAccess;
    }
}

void Playback::EndEngine::operator()(mpv_handle* engine) const {
    mpv_terminate_destroy(engine);
}

Playback::Playback(QObject* parent) : QObject(parent) {
    SetUp();
}

Playback::~Playback() {
    if (engine_) {
        mpv_set_wakeup_callback(engine_.get(), nullptr, nullptr);
    }
}

void Playback::SetUp() {
    std::unique_ptr<mpv_handle, EndEngine> engine(mpv_create());
    if (!engine || !SetOptions(engine.get(), kOptions)) {
        return;
    }
    if (!platform::HasSoundOutput() && !SetOptions(engine.get(), kSilentOptions)) {
        return;
    }
    if (mpv_initialize(engine.get()) < 0) {
        return;
    }
    mpv_observe_property(engine.get(), kNoTag, "time-pos", MPV_FORMAT_DOUBLE);
    mpv_observe_property(engine.get(), kNoTag, "duration", MPV_FORMAT_DOUBLE);
    mpv_observe_property(engine.get(), kNoTag, "pause", MPV_FORMAT_FLAG);
    mpv_observe_property(engine.get(), kNoTag, "eof-reached", MPV_FORMAT_FLAG);
    engine_ = std::move(engine);
    mpv_set_wakeup_callback(
        engine_.get(),
        [](void* self) {
            auto* playback = static_cast<Playback*>(self);
            QMetaObject::invokeMethod(
                playback, [playback] { playback->TakeEvents(); }, Qt::QueuedConnection);
        },
        this);
}

void Playback::Command(std::uint64_t tag, std::initializer_list<const char*> words) {
    if (!engine_) {
        return;
    }
    std::vector<const char*> command(words);
    command.push_back(nullptr);
    mpv_command_async(engine_.get(), tag, command.data());
}

void Playback::Load(const std::filesystem::path& path) {
    loaded_ = false;
    hasPicture_ = false;
    seeking_ = false;
    seekTarget_.reset();
    position_ = 0;
    duration_ = 0;
    NoteEnd(false);
    Command(kNoTag, {"stop"});
    if (!engine_) {
        Fail(PlaybackFailure::NoEngine);
        return;
    }
    if (const auto failure = LookAtFile(path)) {
        Fail(*failure);
        return;
    }
    SetPaused(false);
    // An absolute path is never taken for an address or an option.
    std::error_code error;
    const std::filesystem::path whole = std::filesystem::absolute(path, error);
    Command(kLoad, {"loadfile", error ? path.c_str() : whole.c_str()});
}

void Playback::SetPaused(bool paused) {
    if (!engine_) {
        return;
    }
    int flag = paused ? 1 : 0;
    mpv_set_property_async(engine_.get(), kNoTag, "pause", MPV_FORMAT_FLAG, &flag);
}

void Playback::SeekTo(double seconds) {
    if (!loaded_) {
        return;
    }
    const double last = duration_ > 0 ? duration_ : seconds;
    seekTarget_ = std::clamp(seconds, 0.0, std::max(last, 0.0));
    position_ = *seekTarget_;
    Q_EMIT PositionChanged(position_);
    if (!seeking_) {
        SendSeek();
    }
}

void Playback::SeekBy(double seconds) {
    SeekTo(position_ + seconds);
}

void Playback::SendSeek() {
    // One seek at a time: while the handle is dragged, only the latest wish counts.
    seeking_ = true;
    const std::string target = std::to_string(*seekTarget_);
    seekTarget_.reset();
    NoteEnd(false);
    Command(kSeek, {"seek", target.c_str(), "absolute+exact"});
}

void Playback::StepPicture(bool forward) {
    if (loaded_) {
        Command(kNoTag, {forward ? "frame-step" : "frame-back-step"});
    }
}

void Playback::SetVolume(int percent) {
    if (engine_) {
        auto value = static_cast<double>(std::clamp(percent, 0, 100));
        mpv_set_property_async(engine_.get(), kNoTag, "volume", MPV_FORMAT_DOUBLE, &value);
    }
}

void Playback::SetMuted(bool muted) {
    if (engine_) {
        int flag = muted ? 1 : 0;
        mpv_set_property_async(engine_.get(), kNoTag, "mute", MPV_FORMAT_FLAG, &flag);
    }
}

void Playback::TakeEvents() {
    while (engine_) {
        const mpv_event* event = mpv_wait_event(engine_.get(), 0);
        if (event->event_id == MPV_EVENT_NONE) {
            return;
        }
        Take(*event);
    }
}

void Playback::Take(const mpv_event& event) {
    switch (event.event_id) {
        case MPV_EVENT_START_FILE:
            entry_ = static_cast<const mpv_event_start_file*>(event.data)->playlist_entry_id;
            break;
        case MPV_EVENT_FILE_LOADED:
            TakeLoaded();
            break;
        case MPV_EVENT_VIDEO_RECONFIG:
            TakePictureSize();
            break;
        case MPV_EVENT_PLAYBACK_RESTART:
            TakePictureSize();
            seeking_ = false;
            if (seekTarget_) {
                SendSeek();
            }
            break;
        case MPV_EVENT_COMMAND_REPLY:
            if (event.error < 0 && event.reply_userdata == kLoad) {
                Fail(PlaybackFailure::NotAVideo);
            } else if (event.error < 0 && event.reply_userdata == kSeek) {
                seeking_ = false;
            }
            break;
        case MPV_EVENT_PROPERTY_CHANGE:
            TakeProperty(*static_cast<const mpv_event_property*>(event.data));
            break;
        case MPV_EVENT_END_FILE:
            TakeEndOfFile(*static_cast<const mpv_event_end_file*>(event.data));
            break;
        default:
            break;
    }
}

void Playback::TakeProperty(const mpv_event_property& property) {
    if (property.format == MPV_FORMAT_NONE) {
        return;  // not known at the moment
    }
    const std::string_view name = property.name;
    if (name == "time-pos") {
        // While a seek is on its way the place that the person chose is shown.
        if (!seeking_ && !seekTarget_) {
            position_ = std::max(*static_cast<const double*>(property.data), 0.0);
            Q_EMIT PositionChanged(position_);
        }
    } else if (name == "duration") {
        const double value = *static_cast<const double*>(property.data);
        duration_ = std::isfinite(value) ? std::max(value, 0.0) : 0.0;
        Q_EMIT DurationChanged(duration_);
    } else if (name == "pause") {
        paused_ = *static_cast<const int*>(property.data) != 0;
        Q_EMIT StateChanged();
    } else if (name == "eof-reached") {
        NoteEnd(*static_cast<const int*>(property.data) != 0);
    }
}

void Playback::NoteEnd(bool atEnd) {
    if (atEnd_ == atEnd) {
        return;
    }
    atEnd_ = atEnd;
    const bool neverShown = atEnd && hasPicture_ && !Flag(engine_.get(), "vo-configured");
    if (neverShown) {
        Fail(PlaybackFailure::NoPicture);
    }
    Q_EMIT StateChanged();
}

void Playback::TakeLoaded() {
    loaded_ = true;
    hasPicture_ = Number(engine_.get(), "current-tracks/video/id") > 0;
    Q_EMIT Loaded(hasPicture_);
    Q_EMIT StateChanged();
}

void Playback::TakePictureSize() {
    const QSize size(static_cast<int>(Number(engine_.get(), "dwidth")),
                     static_cast<int>(Number(engine_.get(), "dheight")));
    if (loaded_ && hasPicture_ && !size.isEmpty()) {
        Q_EMIT PictureShown(size);
    }
}

void Playback::TakeEndOfFile(const mpv_event_end_file& end) {
    // The end of an earlier file may be told after the next one has been asked for.
    if (end.reason == MPV_END_FILE_REASON_ERROR && end.playlist_entry_id == entry_) {
        Fail(loaded_ ? PlaybackFailure::NoPicture : PlaybackFailure::NotAVideo);
    }
}

void Playback::Fail(PlaybackFailure failure) {
    loaded_ = false;
    Q_EMIT Failed(failure);
    Q_EMIT StateChanged();
}

}  // namespace clipfix
