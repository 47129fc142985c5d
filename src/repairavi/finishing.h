#pragma once

#include "repairavi/pass.h"

namespace clipfix {

// The steps that make a playable file of what the pass wrote: neutralises old super-indexes,
// appends the new index, patches sizes and counts of the head, and cuts the file to its length.
void FinishRepairedFile(Pass& pass);

// The index chunk's body: 16 bytes for each chunk taken.
[[nodiscard]] std::uint32_t IndexBodySize(const JobState& state);

}  // namespace clipfix
