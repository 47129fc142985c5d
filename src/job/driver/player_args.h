#pragma once

#include <cstdint>
#include <string>

#include "job/state/job_state.h"

namespace clipfix {

// The argument text for the preview of an AVI job: the repaired file, the damaged file's name, the
// size and "$$0", each behind "$$".
[[nodiscard]] std::string AviPlayerArgs(const JobState& state);

// A size as "1.50 MB" (units of 1048576 bytes), or from 1073741824 bytes on as "1.00 GB". With a
// point in every language.
[[nodiscard]] std::string SizeText(std::uint64_t bytes);

}  // namespace clipfix
