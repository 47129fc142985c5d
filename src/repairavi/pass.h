#pragma once

#include <cstdint>
#include <optional>

#include "job/state/job_control.h"
#include "job/state/job_front_end.h"
#include "platform/file.h"
#include "repairavi/avi_chunk.h"
#include "repairavi/index_file.h"
#include "repairavi/pass_state.h"
#include "repairavi/percent_meter.h"
#include "repairavi/repaired_file.h"
#include "repairavi/scan_buffer.h"

namespace clipfix {

// All that a step of the pass works with: its state, what it sees, and where it writes. The
// actions on what was recognised are functions over this record, one family to a file.
struct Pass : PassState {
    Pass(const JobContext& context, std::uint64_t sizeOfDamaged, ScanBuffer& buffer,
         RepairedFile& repairedFile, IndexFile& indexFile,
         std::optional<platform::File>& thumbnailFile, PercentMeter& percentMeter)
        : job(context),
          fileSize(sizeOfDamaged),
          sBuffer(buffer),
          repaired(repairedFile),
          index(indexFile),
          thumbnail(thumbnailFile),
          percent(percentMeter) {}

    JobContext job;
    std::uint64_t fileSize;  // of the damaged file, in bytes
    ScanBuffer& sBuffer;
    RepairedFile& repaired;
    IndexFile& index;
    std::optional<platform::File>& thumbnail;
    PercentMeter& percent;
    const AviChunkListener* onChunk = nullptr;  // null: nobody wants to know

    // The index into the buffer of the byte `n` places behind the one that the pass stands at.
    [[nodiscard]] std::int64_t B(std::int64_t n) const {
        return static_cast<std::int64_t>(nBufferPos) + n;
    }

    // Bytes of the buffer from the place of the pass to the buffer's end.
    [[nodiscard]] std::uint32_t BufferRest() const { return ScanBuffer::kSize - nBufferPos; }

    Next Advance(std::uint64_t bytes) {
        ullOffset += bytes;
        return Next::GoOn;
    }

    // The output's end moves on by `bytes`.
    void GrowRiff(std::uint64_t bytes) { job.state.g_ullAviRiffBody += bytes; }

    // The buffer from the place of the pass on.
    void RefillHere() {
        ullBufferBase = ullOffset;
        sBuffer.Refill(ullBufferBase);
    }
};

}  // namespace clipfix
