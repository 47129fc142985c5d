#pragma once

#include <cstdint>
#include <string>

namespace clipfix {

// What the atoms of one movie read leave behind besides the tree. Each read has its own, so that
// two movies may be read at the same time.
struct MovieRead {
    // Tracks taken into the list so far; 0 at the start of each read of a `moov`.
    std::uint32_t g_nTrackCount = 0;

    // The sizes of the children met in the `stbl` that is being read, summed in 32 bits; back to 0
    // once that `stbl` has been judged.
    std::uint32_t g_nStblChildBytes = 0;

    // The coder formats of the last sample descriptions that were recognised, as the tags of
    // kind_tags.h. A read that recognises none leaves them as the caller set them.
    std::string g_strVideoCoderFormat;
    std::string g_strAudioCoderFormat;
};

}  // namespace clipfix
