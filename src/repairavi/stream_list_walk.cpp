#include "repairavi/stream_list_walk.h"

namespace clipfix {

namespace {

// The counters of the walk. They wrap at 2^32, and so do all sums with them.
struct Walk {
    std::uint32_t a = 80;    // position from the "LIST" of the size field of the chunk at hand
    std::uint32_t n = 80;    // a bound only
    bool junkAhead = false;  // the chunk at hand is `JUNK`
    friend bool operator==(const Walk&, const Walk&) = default;
};

// Tells when the walk comes back to a state in which it was before, with the buffer unchanged
// since: from there it can only go the same way again. One earlier state is kept, and replaced
// after 1, 2, 4, 8... steps, so that every ring is found and no list of states is held.
class RingDetector {
  public:
    bool Meets(const Walk& walk, std::uint64_t changes) {
        if (kept_ == walk && keptChanges_ == changes) {
            return true;
        }
        if (--stepsLeft_ == 0) {
            kept_ = walk;
            keptChanges_ = changes;
            distance_ *= 2;
            stepsLeft_ = distance_;
        }
        return false;
    }

  private:
    std::optional<Walk> kept_;
    std::uint64_t keptChanges_ = 0;
    std::uint64_t distance_ = 1;
    std::uint64_t stepsLeft_ = 1;
};

enum class Step { GoRound, End };

// No letter stands where the next chunk should begin. Only a `strf` leads on from here, by its
// size as found, and is given the usual size of its kind; in a stream of another kind nothing
// moves, and that stays so.
Step PassUnfollowedChunk(Pass& pass, Walk& walk) {
    if (!pass.sBuffer.Matches(std::uint32_t{pass.nBufferPos + walk.a - 4}, kStrf)) {
        return Step::End;
    }
    if (!pass.bThisVideo && !pass.bThisAudio) {
        return Step::GoRound;
    }
    const std::uint32_t sizeAt = pass.nBufferPos + walk.a;
    const std::uint32_t size = pass.sBuffer.Little32(sizeAt);
    const std::uint32_t usual = pass.bThisVideo ? kPictureFormatSize : kSoundFormatSize;
    if (size != usual) {
        pass.sBuffer.StoreLittle32(sizeAt, usual);
    }
    walk.a += size + 8;
    walk.n += size + 8;
    return Step::GoRound;
}

Step PassChunk(Pass& pass, Walk& walk) {
    if (pass.sBuffer.Matches(std::uint32_t{pass.nBufferPos + walk.a - 4}, JUNK_AVI)) {
        walk.junkAhead = true;
    }
    std::uint32_t size = pass.sBuffer.Little32(std::uint32_t{pass.nBufferPos + walk.a}) + 4;
    size += size % 2;
    const std::uint32_t next = pass.nBufferPos + walk.a + size;
    if (next >= ScanBuffer::kSize) {
        // From here on only the bound grows, and it runs out with the position unchanged.
        return Step::End;
    }
    if (!IsAsciiLetter(pass.sBuffer.Byte(next))) {
        return PassUnfollowedChunk(pass, walk);
    }
    const bool listFollows = pass.sBuffer.Matches(next, LIST_AVI);
    if (walk.junkAhead) {
        // A `JUNK` chunk ends the block whatever follows it, and is not copied: the position stays
        // at it while the bound runs out in steps of its size. A step of 0 never gets there.
        const bool runsOut = size + 4 != 0;
        return listFollows || runsOut ? Step::End : Step::GoRound;
    }
    walk.a += size + 4;
    if (listFollows) {
        return Step::End;
    }
    walk.n += size + 4;
    return Step::GoRound;
}

}  // namespace

std::optional<std::uint32_t> WalkStreamList(Pass& pass) {
    Walk walk;
    RingDetector ring;
    while (walk.n < ScanBuffer::kSize) {
        if (ring.Meets(walk, pass.sBuffer.Changes())) {
            return std::nullopt;
        }
        if (PassChunk(pass, walk) == Step::End) {
            break;
        }
    }
    return walk.a;
}

}  // namespace clipfix
