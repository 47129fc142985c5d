#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "base/bytes.h"

namespace clipfix::test {

// What ffmpeg and ffprobe, which must be installed, say and make.

struct CommandResult {
    int status = -1;     // of the program; -1 when it could not be started
    std::string output;  // of both its streams
};

// Runs a program with its arguments, taken literally, and waits for it.
[[nodiscard]] CommandResult RunCommand(const std::vector<std::string>& words);

// Makes a media file from ffmpeg's arguments (one text, separated by spaces, no quoting). A failure
// ends the test program with ffmpeg's own words.
void MakeMedia(const std::filesystem::path& path, const std::string& arguments);

// The fields of one stream or packet as ffprobe names them.
using ProbedFields = std::map<std::string, std::string>;

// What `entries` (ffprobe's -show_entries) asks for, one map for each section. A failure ends the
// test program.
[[nodiscard]] std::vector<ProbedFields> Probe(const std::filesystem::path& path,
                                              const std::string& entries,
                                              const std::vector<std::string>& options = {});

// The bytes of the first top-level atom of that code, or none. For files below 4 GiB.
[[nodiscard]] ByteVector TopLevelAtom(ByteView file, std::string_view code);

}  // namespace clipfix::test
