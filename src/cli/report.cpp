#include "cli/report.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace clipfix::cli {

namespace {

std::string_view NameOf(Outcome outcome) {
    switch (outcome) {
        case Outcome::Repaired:
            return "repaired";
        case Outcome::Unhealthy:
            return "unhealthy";
        case Outcome::ReferenceNeeded:
            return "reference-needed";
        case Outcome::ReferenceUnusable:
            return "reference-unusable";
        case Outcome::Cancelled:
            return "cancelled";
        case Outcome::Failed:
        case Outcome::WrongUse:
            break;
    }
    return "failed";
}

nlohmann::ordered_json TextOrNull(const std::string& text) {
    return text.empty() ? nlohmann::ordered_json(nullptr) : nlohmann::ordered_json(text);
}

}  // namespace

ExitStatus StatusOf(Outcome outcome) {
    switch (outcome) {
        case Outcome::Repaired:
            return ExitStatus::Repaired;
        case Outcome::Unhealthy:
            return ExitStatus::NothingRecovered;
        case Outcome::ReferenceNeeded:
            return ExitStatus::ReferenceNeeded;
        case Outcome::ReferenceUnusable:
            return ExitStatus::ReferenceUnusable;
        case Outcome::Cancelled:
            return ExitStatus::Cancelled;
        case Outcome::WrongUse:
            return ExitStatus::WrongUse;
        case Outcome::Failed:
            break;
    }
    return ExitStatus::FileOrDiskFailed;
}

std::string ToJson(const RepairReport& report) {
    nlohmann::ordered_json object;
    object["outcome"] = NameOf(report.outcome);
    object["kind"] = report.kind;
    object["damaged"] = report.damaged;
    object["reference"] = TextOrNull(report.reference);
    object["output"] =
        report.output ? nlohmann::ordered_json(*report.output) : nlohmann::ordered_json(nullptr);
    object["bytes_read"] = report.bytesRead;
    object["bytes_unreadable"] = report.bytesUnreadable;
    object["output_size"] = report.outputSize;
    object["video_chunks"] = report.videoChunks;
    object["audio_chunks"] = report.audioChunks;
    object["video_samples"] = report.videoSamples;
    object["audio_samples"] = report.audioSamples;
    object["video_format"] = TextOrNull(report.videoFormat);
    object["audio_format"] = TextOrNull(report.audioFormat);
    if (report.percents) {
        object["percents"] = *report.percents;
    }
    object["elapsed_seconds"] = report.elapsedSeconds;
    object["message"] = report.message;
    return object.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
}

std::string ToText(const RepairReport& report) {
    std::string text = report.message + "\n";
    if (report.outcome == Outcome::Repaired) {
        text += fmt::format("  video: {} pictures in {} chunks{}\n", report.videoSamples,
                            report.videoChunks,
                            report.videoFormat.empty() ? "" : " (" + report.videoFormat + ")");
        text += fmt::format("  audio: {} chunks{}\n", report.audioChunks,
                            report.audioFormat.empty() ? "" : " (" + report.audioFormat + ")");
        text += fmt::format("  size:  {} from {} read in {:.1f} s\n", HumanSize(report.outputSize),
                            HumanSize(report.bytesRead), report.elapsedSeconds);
    }
    if (report.bytesUnreadable > 0) {
        text += fmt::format("  {} bytes of the damaged file could not be read\n",
                            report.bytesUnreadable);
    }
    return text;
}

std::string HumanSize(std::uint64_t bytes) {
    const auto value = static_cast<double>(bytes);
    if (bytes < 1000) {
        return fmt::format("{} bytes", bytes);
    }
    if (bytes < 1'000'000) {
        return fmt::format("{:.1f} kB", value / 1e3);
    }
    if (bytes < 1'000'000'000) {
        return fmt::format("{:.1f} MB", value / 1e6);
    }
    return fmt::format("{:.2f} GB", value / 1e9);
}

}  // namespace clipfix::cli
