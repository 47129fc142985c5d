#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "codec/nalu.h"
#include "job/state/job_state.h"
#include "moviefile/movie_file.h"

namespace clipfix {

// Why a movie file cannot serve as the healthy reference of a repair.
enum class ReferenceFault {
    NoMovie,          // no movie atom with tracks that can be read
    UnknownVideo,     // the video is neither H.264 nor H.265, as `avc1` or `hvc1`
    NoParameterSets,  // the description of the video lacks what the slices refer to
    VideoNotFirst,    // the first track is not the video, so that no unit has a known length word
};

// The first fault of a file after its structure check, by the order of the list above; none when
// it can serve. It changes nothing of what an engine does with the file.
[[nodiscard]] std::optional<ReferenceFault> FindReferenceFault(const GFile& movie,
                                                               const JobState& state);

// One sentence for a person, without a full stop.
[[nodiscard]] std::string_view SentenceOf(ReferenceFault fault);

// The parameter sets by which a damaged file is read; the pointers keep their sets alive. All that
// the codec of the job needs are there, or the structure is not made.
struct JobParameterSets {
    std::shared_ptr<const CSPS> sps;
    std::shared_ptr<const CPPS> pps;
    std::shared_ptr<const CVPS> vps;
    std::shared_ptr<const SPS_265> sps265;
    std::shared_ptr<const PPS_265> pps265;

    [[nodiscard]] ReferenceParameterSets View() const {
        return {sps.get(), pps.get(), vps.get(), sps265.get(), pps265.get()};
    }
};

// The parameter sets of the movie for the job's video coder; nothing when one is missing, or when
// they are of another codec than that coder.
[[nodiscard]] std::optional<JobParameterSets> FindParameterSets(const GFile& movie,
                                                                const JobState& state);

// One track as a person asks about it. What a kind of track does not have is 0.
struct TrackDescription {
    std::string kind;              // "video", "audio" or "other"
    std::string coder;             // four-character code of its first description, or empty
    std::uint32_t width = 0;       // pixels
    std::uint32_t height = 0;      // pixels
    std::uint32_t channels = 0;    // as the description says
    std::uint32_t sampleRate = 0;  // of sound, in samples in one second, as the description says
    std::uint32_t timescale = 0;   // ticks in one second
    std::uint32_t sampleCount = 0;
    std::uint32_t duration = 0;       // ticks of the track's time scale
    double samplesPerSecond = 0.0;    // 0 where it cannot be told
    std::uint32_t nalLengthSize = 0;  // of video: bytes of the length word, 0 when not known
};

struct MovieDescription {
    std::string brand;  // major brand; empty without a file type
    std::uint32_t timescale = 0;
    std::uint32_t duration = 0;  // ticks of the movie's time scale
    std::vector<TrackDescription> tracks;
};

// What a file holds, in the order of its tracks; without tracks when there is no movie.
[[nodiscard]] MovieDescription Describe(const GFile& movie);

}  // namespace clipfix
