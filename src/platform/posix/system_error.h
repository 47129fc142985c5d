#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "base/result.h"

// Only for the files of this folder: the system's error numbers as errors of the program.
namespace clipfix::platform::posix {

// The system's own words for an error number.
[[nodiscard]] std::string Reason(int errorNumber);

// "<what> '<path>': <reason>". The kind follows the number where it says something of its own, and
// is `otherwise` for all the rest.
[[nodiscard]] Error SystemError(ErrorKind otherwise, std::string_view what,
                                const std::filesystem::path& path, int errorNumber);

// A failed write at a file offset in bytes.
[[nodiscard]] Error WriteError(int errorNumber, std::uint64_t offset);

}  // namespace clipfix::platform::posix
