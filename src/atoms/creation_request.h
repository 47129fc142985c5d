#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "atoms/sample_tables.h"

namespace clipfix {

// What a repair found out about one track of the new movie: all that the movie tree gets to know
// of it. The engine makes two, one for video and one for audio.
struct CAtomCreationRequest {
    // Offset in bytes, in the repaired file, of each chunk, in file order.
    std::vector<std::uint64_t> stcoEntries;
    // Size in bytes of each sample.
    std::vector<std::uint32_t> stszEntries;
    // The sample-to-chunk runs. The list belongs to the engine as well; null counts as empty.
    std::shared_ptr<std::vector<CSampleToChunkEntery>> stscEntries;
    // Ticks in one second of the reference track's media.
    std::uint32_t timescale = 0;
    // Samples in one second of the reference track.
    double sampleRate = 0.0;
    // "VIDEO_REQUEST" or "AUDIO_REQUEST".
    std::string requestType;
};

}  // namespace clipfix
