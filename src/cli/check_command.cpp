#include <cstdio>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "cli/commands.h"
#include "cli/terminal_front_end.h"
#include "job/state/job_control.h"
#include "job/state/job_paths.h"
#include "moviefile/movie_file.h"
#include "moviefile/reference_check.h"
#include "platform/file.h"

namespace clipfix::cli {

namespace {

using Json = nlohmann::ordered_json;

std::string Seconds(std::uint64_t ticks, std::uint32_t timescale) {
    return timescale == 0 ? "unknown"
                          : fmt::format("{:.2f} s", static_cast<double>(ticks) / timescale);
}

Json ToJson(const TrackDescription& track) {
    Json object;
    object["kind"] = track.kind;
    object["coder"] = track.coder;
    object["width"] = track.width;
    object["height"] = track.height;
    object["channels"] = track.channels;
    object["sample_rate"] = track.sampleRate;
    object["timescale"] = track.timescale;
    object["samples"] = track.sampleCount;
    object["duration"] = track.duration;
    object["samples_per_second"] = track.samplesPerSecond;
    object["nal_length_size"] = track.nalLengthSize;
    return object;
}

void PrintJson(const std::string& file, const MovieDescription& movie, std::string_view why) {
    Json object;
    object["file"] = file;
    object["usable"] = why.empty();
    object["why"] = why.empty() ? Json(nullptr) : Json(why);
    object["brand"] = movie.brand.empty() ? Json(nullptr) : Json(movie.brand);
    object["timescale"] = movie.timescale;
    object["duration"] = movie.duration;
    object["tracks"] = Json::array();
    for (const auto& track : movie.tracks) {
        object["tracks"].push_back(ToJson(track));
    }
    fmt::print("{}\n", object.dump(-1, ' ', false, Json::error_handler_t::replace));
}

std::string Line(std::size_t number, const TrackDescription& track) {
    std::string line = fmt::format("  track {}: {}", number, track.kind);
    if (!track.coder.empty()) {
        line += " " + track.coder;
    }
    if (track.width != 0) {
        line += fmt::format(", {}x{}", track.width, track.height);
    }
    if (track.sampleRate != 0) {
        line += fmt::format(", {} Hz, {} channels", track.sampleRate, track.channels);
    }
    return line + fmt::format(", {} samples, {:.3f} a second, time scale {}, {}\n",
                              track.sampleCount, track.samplesPerSecond, track.timescale,
                              Seconds(track.duration, track.timescale));
}

void PrintText(const std::string& file, const MovieDescription& movie, std::string_view why) {
    if (why.empty()) {
        fmt::print("{} can serve as a reference\n", file);
    } else {
        fmt::print("{} cannot serve as a reference: {}\n", file, why);
    }
    for (std::size_t i = 0; i < movie.tracks.size(); ++i) {
        fmt::print("{}", Line(i + 1, movie.tracks[i]));
    }
}

}  // namespace

ExitStatus RunCheck(const CheckOptions& options) {
    if (const auto file = platform::File::OpenForReading(options.file); !file) {
        fmt::print(stderr, "clipfix: {}\n", file.Failure().text);
        return ExitStatus::FileOrDiskFailed;
    }
    JobState state;
    JobControl control(state);
    TerminalFrontEnd frontEnd(state, {});
    ChooseReferenceFile(state, options.file);
    GFile movie({state, control, frontEnd});
    movie.ReadStructure(options.file);
    const auto fault = FindReferenceFault(movie, state);
    const std::string_view why = fault ? SentenceOf(*fault) : std::string_view();
    const auto description = Describe(movie);
    if (options.json) {
        PrintJson(options.file, description, why);
    } else {
        PrintText(options.file, description, why);
    }
    return why.empty() ? ExitStatus::Repaired : ExitStatus::ReferenceUnusable;
}

}  // namespace clipfix::cli
