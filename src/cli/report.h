#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/exit_status.h"

namespace clipfix::cli {

enum class Outcome {
    Repaired,
    Unhealthy,
    ReferenceNeeded,
    ReferenceUnusable,
    Failed,
    WrongUse,
    Cancelled,
};

// What one `repair` came to. Sizes are in bytes.
struct RepairReport {
    Outcome outcome = Outcome::Failed;
    std::string kind;  // "mov" or "avi"
    std::string damaged;
    std::string reference;              // empty: none was given
    std::optional<std::string> output;  // where the repaired file stands now
    std::uint64_t bytesRead = 0;
    std::uint64_t bytesUnreadable = 0;
    std::uint64_t outputSize = 0;
    std::uint64_t videoChunks = 0;
    std::uint64_t audioChunks = 0;
    std::uint64_t videoSamples = 0;
    std::uint64_t audioSamples = 0;
    std::string videoFormat;
    std::string audioFormat;
    std::optional<std::vector<int>> percents;
    double elapsedSeconds = 0;
    std::string message;  // one clear sentence
};

[[nodiscard]] ExitStatus StatusOf(Outcome outcome);

// Exactly one JSON object on one line. Bytes of a path that are no UTF-8 become U+FFFD.
[[nodiscard]] std::string ToJson(const RepairReport& report);

// The lines for a person; they end in a line feed.
[[nodiscard]] std::string ToText(const RepairReport& report);

// "12.3 MB" and the like, in units of 1000.
[[nodiscard]] std::string HumanSize(std::uint64_t bytes);

}  // namespace clipfix::cli
