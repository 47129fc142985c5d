#pragma once

#include <array>
#include <string>

#include "job/state/job_state.h"

namespace clipfix {

class GFile;

// One line of the details of a repaired file: the key of its caption, and its value behind ": ".
struct DetailRow {
    const char* captionKey;
    std::string value;
};

// The details of the finished job. `movie` is the reference's movie of a MOV job, or null.
// g_strCorruptName is overwritten by its display form, with ": " before it, and stays so for the
// rest of the job. That is meant.
[[nodiscard]] std::array<DetailRow, 6> MakeDetails(JobState& state, const GFile* movie);

}  // namespace clipfix
