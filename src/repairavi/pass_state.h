#pragma once

#include <cstdint>

namespace clipfix {

// What the pass over a damaged AVI knows at one moment, beside the shared variables of JobState
// (g_ullAviRiffBody, g_nAviVideoChunks, g_nAviAudioChunks, g_dwAviMicroSecPerFrame, g_szAviCodec).
// All is zero at the start. The flags only rise, except bThisVideo, bThisAudio, bOddChunk and
// bNextChecked. Arithmetic on the 32-bit numbers wraps, and that is meant.
struct PassState {
    std::uint64_t ullOffset = 0;      // file offset in the damaged file that the pass stands at
    std::uint64_t ullBufferBase = 0;  // file offset that the pass takes the buffer's start for
    std::uint32_t nBufferPos = 0;     // index into the buffer of ullOffset

    std::uint32_t dwHdrlBody = 0;      // value for the size field of the `hdrl` list
    std::uint64_t ullMoviListPos = 0;  // position in the output of the "LIST" that opens `movi`
    std::uint32_t dwMoviBody = 0;      // value for the size field of the `movi` list
    std::uint32_t dwRelOffset = 0;     // offset of the next data chunk from the word "movi"
    std::uint32_t nStreams = 0;        // `strl` lists taken over
    std::uint32_t dwAvihWidth = 0;     // picture size of `avih` after repair; 0 with the default
    std::uint32_t dwAvihHeight = 0;
    std::uint32_t dwHandler = 0;    // `fccHandler` of the stream header at hand
    std::uint32_t dwChunkSize = 0;  // size of the chunk at hand, rounded up to even

    bool bRiffSeen = false;      // the RIFF head is in the output
    bool bAviSeen = false;       // the word "AVI " is in the output
    bool bHdrlSeen = false;      // the 76-byte main header block is in the output
    bool bStrlSeen = false;      // a `strl` list, or a `LIST movi`, was taken over
    bool bInfoSeen = false;      // a `LIST INFO` was met; no other is tried
    bool bMoviListSeen = false;  // the `movi` list head is in the output
    bool bInMovi = false;        // the word "movi" is in the output; data chunks may come
    bool bHasVideo = false;      // a `vids` stream header was taken over
    bool bHasAudio = false;      // an `auds` stream header was taken over
    bool bThisVideo = false;     // what the stream or chunk at hand is
    bool bThisAudio = false;
    bool bOddChunk = false;     // dwChunkSize was rounded up; see TakeIndexRecord
    bool bNextChecked = false;  // the look-ahead across the buffer's end was passed
};

// What a step of the pass asks for.
enum class Next {
    GoOn,        // to the loop head
    GiveUp,      // the job cannot be done: clean up, result 0
    StandStill,  // the state can never change again: wait for the cancel
};

}  // namespace clipfix
