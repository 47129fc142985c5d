#include "repairavi/movie_list.h"

#include "repairavi/data_chunk.h"
#include "repairavi/file_heads.h"

namespace clipfix {

namespace {

// The first chunk's id stands behind the four letters of the word "movi".
constexpr std::int64_t kIdAt = 4;
// From the word's first letter to the chunk's data.
constexpr std::uint32_t kListHeadBytes = 12;

void MakeSureOfMovieListHead(Pass& pass) {
    if (!pass.bMoviListSeen) {
        pass.dwHdrlBody = static_cast<std::uint32_t>(pass.job.state.g_ullAviRiffBody - 12);
        pass.bMoviListSeen = true;
        pass.bHdrlSeen = true;
        pass.bStrlSeen = true;
        pass.repaired.Append(LIST_AVI);
        pass.repaired.Append(FourLetters{});
        pass.GrowRiff(8);
        pass.dwMoviBody += 4;
        pass.ullMoviListPos = pass.job.state.g_ullAviRiffBody;
    }
}

// Writes the word and goes on `advance` bytes further, without the chunk.
Next OpenTheData(Pass& pass, std::uint64_t advance) {
    pass.bInMovi = true;
    pass.repaired.Append(movi_AVI);
    pass.dwRelOffset = 4;
    pass.GrowRiff(4);
    return pass.Advance(advance);
}

// What may follow the first chunk: in the buffer neither "xx" nor `JUNK` is known, beyond its end
// "xx" is. The difference is meant.
bool IsFollowerInBuffer(Pass& pass, std::int64_t at) {
    ScanBuffer& buffer = pass.sBuffer;
    return buffer.Matches(at + 2, db_AVI) || buffer.Matches(at + 2, wb_AVI) ||
           buffer.Matches(at + 2, dc_AVI) || buffer.Matches(at, kIdLetters) ||
           buffer.Matches(at, ix_AVI);
}

bool IsFollowerBeyondBuffer(Pass& pass, std::int64_t at) {
    return IsFollowerInBuffer(pass, at) || pass.sBuffer.Matches(at + 2, xx_AVI);
}

Next TakeFirstChunk(Pass& pass) {
    const auto id = pass.sBuffer.Bytes<4>(pass.B(kIdAt));
    pass.bNextChecked = false;
    CountChunk(pass, {id[2], id[3]});
    pass.bInMovi = true;
    pass.dwRelOffset = 4;
    AddIndexRecord(pass, id, kIdAt);
    pass.dwRelOffset += pass.dwChunkSize + 8;
    pass.GrowRiff(std::uint64_t{pass.dwChunkSize} + kListHeadBytes);
    pass.dwMoviBody += pass.dwChunkSize + 8;
    // The word "movi" goes with the chunk. No refill behind it: the scan goes on in the buffer
    // that it has.
    const Next next = CopyChunk(pass, {.headBytes = kListHeadBytes, .bytesAhead = 0});
    pass.percent.Step(pass.ullOffset);
    return next;
}

Next TryFirstChunk(Pass& pass) {
    ScanBuffer& buffer = pass.sBuffer;
    if (buffer.Matches(pass.B(kIdAt), ix_AVI)) {
        return OpenTheData(pass, 4);
    }
    if (!buffer.IsDigit(pass.B(kIdAt)) || !buffer.IsDigit(pass.B(kIdAt + 1))) {
        return OpenTheData(pass, 1);
    }
    if (!IsDataTag(pass, pass.B(kIdAt + 2))) {
        return OpenTheData(pass, 4);
    }
    TakeChunkSize(pass, pass.B(kIdAt + 4));
    if (LooksLikeIndexRecord(pass)) {
        return OpenTheData(pass, kIndexRecordSize);
    }
    if (pass.ullOffset + pass.dwChunkSize + 8 >= pass.fileSize) {
        return OpenTheData(pass, 1);
    }
    if (!pass.bNextChecked) {
        const std::uint32_t reach = pass.dwChunkSize + 14;
        const std::uint64_t next =
            std::uint64_t{pass.nBufferPos} + pass.dwChunkSize + kListHeadBytes;
        if (reach < pass.BufferRest()) {
            if (!IsFollowerInBuffer(pass, static_cast<std::int64_t>(next))) {
                return OpenTheData(pass, 1);
            }
        } else if (LookBeyondBuffer(pass, next, IsFollowerBeyondBuffer)) {
            pass.bNextChecked = true;
            return Next::GoOn;
        } else {
            return OpenTheData(pass, 1);
        }
    }
    return TakeFirstChunk(pass);
}

}  // namespace

Next OnMoviList(Pass& pass) {
    if (pass.bMoviListSeen) {
        return pass.Advance(1);
    }
    MakeSureOfMainHeader(pass);
    pass.dwHdrlBody = static_cast<std::uint32_t>(pass.job.state.g_ullAviRiffBody - 12);
    pass.bMoviListSeen = true;
    pass.bStrlSeen = true;
    pass.bHdrlSeen = true;
    pass.ullMoviListPos = pass.job.state.g_ullAviRiffBody + 8;
    pass.GrowRiff(8);
    pass.dwMoviBody += 4;  // the word "movi" that follows
    pass.sBuffer.AppendTo(pass.repaired, pass.B(0), 8);
    return pass.Advance(8);
}

Next OnMoviWord(Pass& pass) {
    if (pass.bInMovi) {
        return pass.Advance(1);
    }
    if (!pass.bStrlSeen) {
        return Next::GiveUp;
    }
    pass.dwRelOffset = 0;
    MakeSureOfRiffHead(pass);
    MakeSureOfAviWord(pass);
    MakeSureOfMainHeader(pass);
    MakeSureOfMovieListHead(pass);
    return TryFirstChunk(pass);
}

}  // namespace clipfix
