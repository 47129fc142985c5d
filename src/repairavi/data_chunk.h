#pragma once

#include <cstdint>

#include "repairavi/pass.h"

namespace clipfix {

// What the two routes to a data chunk share: the first-chunk route behind the word "movi"
// (movie_list.h) and the tag route (tag_route.h).

inline constexpr TwoLetters kIdLetters = {'i', 'd'};  // the first two of "idx1"
inline constexpr std::uint64_t kIndexRecordSize = 16;

// Whether one of the four tags of data chunks stands at `index` of the buffer.
[[nodiscard]] bool IsDataTag(Pass& pass, std::int64_t index);

// Reads the chunk's size at `index` into dwChunkSize. An odd size is rounded up and sets
// bOddChunk, which stays set when the chunk is then refused.
void TakeChunkSize(Pass& pass, std::int64_t index);

// Two neighbouring records of an `idx1` with the key-frame flag read like a chunk of 16 bytes: its
// "size" is the first record's flags, and B[18] the flags of the next. A real chunk of 16 bytes
// may look the same and is then skipped. On both routes it is B[18], although the id stands four
// bytes further on in the first-chunk route; that is meant.
[[nodiscard]] bool LooksLikeIndexRecord(Pass& pass);

// Looks for the head of the next chunk at buffer index `next`, beyond the buffer's end: the buffer
// is read there, asked with `isFollower` at its start, and read again at ullBufferBase.
[[nodiscard]] bool LookBeyondBuffer(Pass& pass, std::uint64_t next,
                                    bool (*isFollower)(Pass&, std::int64_t));

// Counts the chunk as video or audio by the last two letters of its id.
void CountChunk(Pass& pass, TwoLetters tag);

// Writes the chunk's index record, with dwRelOffset and the chunk's size as found. bOddChunk is
// what tells that size from the rounded one, and is cleared here and nowhere else: behind a
// refused chunk of odd size the next one's record has a size one too small. That is how it must
// stay.
// `ahead`: how far the id stands from the place of the pass, in bytes.
void AddIndexRecord(Pass& pass, const FourLetters& id, std::int64_t ahead);

// How the chunk at hand lies around the place of the pass.
struct ChunkPlace {
    std::uint32_t headBytes;   // from the place to the chunk's data
    std::uint32_t bytesAhead;  // bytes of the chunk that lie ahead of the place
};

// Copies the chunk at hand, with its pad byte, and moves the place behind it. A chunk that reaches
// beyond the buffer is copied with the percent stepped in each round, and leaves the buffer with
// the last piece that was read.
Next CopyChunk(Pass& pass, ChunkPlace place);

}  // namespace clipfix
