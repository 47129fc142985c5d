#include "repairavi/tag_route.h"

#include "repairavi/data_chunk.h"

namespace clipfix {

namespace {

// The output may not reach this; a job that would fails as a whole, and nothing is cut short.
constexpr std::uint64_t kLargestRiffBody = 4294963296;  // 2^32 - 4000
// From the tag to the chunk's data, and the two digits ahead of the tag.
constexpr std::uint32_t kTagHeadBytes = 6;
constexpr std::uint32_t kDigits = 2;

bool HasDigitsAhead(Pass& pass) {
    return pass.sBuffer.IsDigit(pass.B(-2)) && pass.sBuffer.IsDigit(pass.B(-1));
}

// What the output still lacks ahead of its first data chunk, where the word "movi" was not met or
// its chunk not believed. False when there is no head to put a chunk behind.
bool OpenMovieList(Pass& pass) {
    if (!pass.bRiffSeen || !pass.bAviSeen || !pass.bHdrlSeen) {
        return false;
    }
    if (!pass.bMoviListSeen) {
        pass.dwHdrlBody = static_cast<std::uint32_t>(pass.job.state.g_ullAviRiffBody - 12);
        pass.bMoviListSeen = true;
        pass.repaired.Append(LIST_AVI);
        pass.repaired.Append(FourLetters{});
        pass.GrowRiff(8);
        pass.ullMoviListPos = pass.job.state.g_ullAviRiffBody;
    }
    if (!pass.bInMovi) {
        pass.bInMovi = true;
        pass.repaired.Append(movi_AVI);
        pass.dwRelOffset = 4;
        pass.GrowRiff(4);
        // Counted here also behind a `LIST movi` whose head has counted the word already: meant.
        pass.dwMoviBody += 4;
    }
    return true;
}

bool IsFollower(Pass& pass, std::int64_t at) {
    ScanBuffer& buffer = pass.sBuffer;
    return buffer.Matches(at, ix_AVI) || buffer.Matches(at, kIdLetters) ||
           buffer.Matches(at + 2, wb_AVI) || buffer.Matches(at + 2, db_AVI) ||
           buffer.Matches(at + 2, dc_AVI) || buffer.Matches(at + 2, xx_AVI) ||
           buffer.Matches(at, JUNK_AVI);
}

Next TakeChunk(Pass& pass) {
    const auto id = pass.sBuffer.Bytes<4>(pass.B(-2));
    pass.bNextChecked = false;
    CountChunk(pass, {id[2], id[3]});
    AddIndexRecord(pass, id, -std::int64_t{kDigits});
    pass.dwRelOffset += pass.dwChunkSize + 8;
    pass.GrowRiff(std::uint64_t{pass.dwChunkSize} + 8);
    pass.dwMoviBody += pass.dwChunkSize + 8;
    const Next next = CopyChunk(pass, {.headBytes = kTagHeadBytes, .bytesAhead = kDigits});
    pass.RefillHere();
    pass.percent.Step(pass.ullOffset);
    return next;
}

Next TryChunk(Pass& pass) {
    TakeChunkSize(pass, pass.B(2));
    if (LooksLikeIndexRecord(pass)) {
        return pass.Advance(kIndexRecordSize);
    }
    // The place is two bytes into the chunk, so a chunk that ends less than three bytes ahead of
    // the file's end is refused. That is meant.
    if (pass.ullOffset + pass.dwChunkSize + 8 >= pass.fileSize) {
        return pass.Advance(1);
    }
    if (!pass.bNextChecked) {
        const std::uint32_t reach = pass.dwChunkSize + 10;
        const std::uint64_t next =
            std::uint64_t{pass.nBufferPos} + pass.dwChunkSize + kTagHeadBytes;
        if (reach < pass.BufferRest()) {
            if (!IsFollower(pass, static_cast<std::int64_t>(next))) {
                return pass.Advance(1);
            }
        } else if (LookBeyondBuffer(pass, next, IsFollower)) {
            pass.bNextChecked = true;
            return Next::GoOn;
        } else {
            return pass.Advance(1);
        }
    }
    return TakeChunk(pass);
}

}  // namespace

Next OnTag(Pass& pass) {
    JobState& state = pass.job.state;
    pass.bThisAudio = pass.sBuffer.Matches(pass.B(0), wb_AVI);
    pass.bThisVideo = !pass.bThisAudio;
    if ((pass.bThisVideo && !pass.bHasVideo) || (pass.bThisAudio && !pass.bHasAudio)) {
        if (!HasDigitsAhead(pass)) {
            return pass.Advance(1);
        }
        state.g_nAviPercent = 100;  // set and not sent
        return Next::GiveUp;
    }
    if (!MayPassTagWithoutDigits(pass)) {
        return Next::GiveUp;
    }
    if (!HasDigitsAhead(pass)) {
        return pass.Advance(1);
    }
    if (state.g_nAviVideoChunks == 0 && state.g_nAviAudioChunks == 0 && !OpenMovieList(pass)) {
        return Next::GiveUp;
    }
    return TryChunk(pass);
}

bool MayPassTagWithoutDigits(const Pass& pass) {
    return pass.job.state.g_ullAviRiffBody < kLargestRiffBody;
}

}  // namespace clipfix
