#include "repairavi/data_chunk.h"

namespace clipfix {

bool IsDataTag(Pass& pass, std::int64_t index) {
    const auto tag = pass.sBuffer.Bytes<2>(index);
    return tag == dc_AVI || tag == db_AVI || tag == xx_AVI || tag == wb_AVI;
}

void TakeChunkSize(Pass& pass, std::int64_t index) {
    pass.dwChunkSize = pass.sBuffer.Little32(index);
    if (pass.dwChunkSize % 2 != 0) {
        pass.dwChunkSize += 1;
        pass.bOddChunk = true;
    }
}

bool LooksLikeIndexRecord(Pass& pass) {
    constexpr std::uint32_t kKeyFrameFlags = 16;
    return pass.dwChunkSize == kIndexRecordSize && !pass.bOddChunk &&
           ScanBuffer::Holds(pass.B(18), 4) && pass.sBuffer.Little32(pass.B(18)) == kKeyFrameFlags;
}

bool LookBeyondBuffer(Pass& pass, std::uint64_t next, bool (*isFollower)(Pass&, std::int64_t)) {
    pass.sBuffer.Refill(pass.ullBufferBase + next);
    const bool found = isFollower(pass, 0);
    pass.sBuffer.Refill(pass.ullBufferBase);
    return found;
}

void CountChunk(Pass& pass, TwoLetters tag) {
    if (tag == wb_AVI) {
        pass.job.state.g_nAviAudioChunks += 1;
    } else {
        pass.job.state.g_nAviVideoChunks += 1;
    }
}

void AddIndexRecord(Pass& pass, const FourLetters& id, std::int64_t ahead) {
    const std::uint32_t size = pass.dwChunkSize - (pass.bOddChunk ? 1 : 0);
    if (pass.onChunk != nullptr) {
        (*pass.onChunk)({.id = std::string(id.begin(), id.end()),
                         .isVideo = TwoLetters{id[2], id[3]} != wb_AVI,
                         .offset = pass.ullOffset + static_cast<std::uint64_t>(ahead),
                         .size = size});
    }
    pass.index.AddRecord(id, pass.dwRelOffset, size);
    pass.bOddChunk = false;
}

namespace {

Next CopySpanningChunk(Pass& pass, ChunkPlace place) {
    ScanBuffer& buffer = pass.sBuffer;
    const std::uint32_t inBuffer = buffer.BytesRead() - pass.nBufferPos;
    buffer.AppendTo(pass.repaired, pass.B(-std::int64_t{place.bytesAhead}),
                    std::uint64_t{inBuffer} + place.bytesAhead);
    pass.ullOffset += inBuffer;

    const std::uint32_t whole = pass.dwChunkSize + pass.nBufferPos + place.headBytes;
    const std::uint32_t toCome = whole - ScanBuffer::kSize;
    std::uint64_t bytesRead = 0;
    std::uint32_t reads = 0;
    // When the chunk ends exactly with a read, one more is made and nothing of it written. That
    // read decides what the buffer holds afterwards, so it is meant to stay.
    while (bytesRead <= toCome) {
        pass.job.control.WaitWhileSuspended(JobControl::Worker::Repair);
        // From where the last read ended, also where the buffer showed old contents.
        buffer.ReadOn();
        if (buffer.BytesRead() == 0) {
            return Next::StandStill;
        }
        if (!pass.job.control.KeepGoing(JobControl::Work::AviEngine)) {
            return Next::GoOn;  // bytes are left, so the head of the scan finds the cancel as well
        }
        pass.ullBufferBase = pass.ullOffset;
        bytesRead += buffer.BytesRead();
        reads += 1;
        const std::uint32_t piece =
            bytesRead > toCome ? whole - reads * ScanBuffer::kSize : buffer.BytesRead();
        buffer.AppendTo(pass.repaired, 0, piece);
        pass.ullOffset += piece;
        pass.percent.Step(pass.ullOffset);
    }
    return Next::GoOn;
}

}  // namespace

Next CopyChunk(Pass& pass, ChunkPlace place) {
    const std::uint32_t length = pass.dwChunkSize + place.headBytes;
    if (length >= pass.BufferRest()) {
        return CopySpanningChunk(pass, place);
    }
    pass.sBuffer.AppendTo(pass.repaired, pass.B(-std::int64_t{place.bytesAhead}),
                          std::uint64_t{length} + place.bytesAhead);
    return pass.Advance(std::uint64_t{pass.dwChunkSize} + place.headBytes);
}

}  // namespace clipfix
