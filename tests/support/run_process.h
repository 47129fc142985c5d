#pragma once

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace clipfix::test {

// What a program left behind. `status` is its exit status, or 128 and the number of the signal
// that ended it, as a shell tells it.
struct ProcessResult {
    int status = -1;
    std::string out;
    std::string err;
};

struct ProcessOptions {
    // A signal sent once so much time has passed.
    std::optional<std::pair<int, std::chrono::milliseconds>> signal = {};
    std::filesystem::path folder = {};          // to start in; empty: the test's own
    std::vector<std::string> environment = {};  // "NAME=value", on top of the test's own
};

// Runs a program to its end with nothing on standard input. The first argument is its path, or its
// name to be looked up.
[[nodiscard]] ProcessResult RunProcess(const std::vector<std::string>& arguments,
                                       const ProcessOptions& options = {});

}  // namespace clipfix::test
