#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "atoms/sample_tables.h"
#include "repairmov/sample.h"

namespace clipfix {

// Puts what the scan found, handed over in the order of the scan, into the order of the output,
// and notes on the way how many samples the chunks of each track hold.
class ChunkOrder {
  public:
    using Runs = std::shared_ptr<std::vector<CSampleToChunkEntery>>;

    // A run of video; `sampleCount` as the walk counted them.
    void AddVideo(Chunk run, std::uint32_t sampleCount);
    // AAC frames of one gap; none make no chunk.
    void AddAac(std::vector<CSample> frames);
    // AAC frames from ahead of the first run. They go to the front of the output, and take the
    // next number of a sound chunk all the same.
    void AddAacHead(std::vector<CSample> frames);
    // A gap of `sowt` sound, also an empty one. Four bytes count as one sample, whatever the
    // reference says of channels and sample sizes.
    void AddSowt(std::uint64_t offset, std::uint64_t bytes);
    // A gap of `twos` sound. It gets no number and no entry in the table of runs: the repaired
    // track keeps the reference's. Settled.
    void AddTwos(std::uint64_t offset, std::uint64_t bytes);

    [[nodiscard]] ChunkList TakeChunks() { return std::move(chunks_); }
    [[nodiscard]] const Runs& VideoRuns() const { return video_.runs; }
    [[nodiscard]] const Runs& AudioRuns() const { return audio_.runs; }

  private:
    struct Track {
        Runs runs = std::make_shared<std::vector<CSampleToChunkEntery>>();
        std::uint64_t chunkNumber = 0;  // of the last chunk; the first is number 1

        // One chunk more, of `samples` samples.
        void Count(std::uint32_t samples);
    };

    ChunkList chunks_;
    Track video_;
    Track audio_;
};

}  // namespace clipfix
