#include "repairmov/chunk_order.h"

#include <utility>

namespace clipfix {

namespace {

Chunk OnePcmRecord(std::uint64_t offset, std::uint64_t bytes) {
    Chunk chunk;
    chunk.samples.push_back({offset, bytes, SampleName::Sowt, true});
    chunk.recordCount = 1;
    return chunk;
}

Chunk OfFrames(std::vector<CSample> frames) {
    Chunk chunk;
    chunk.recordCount = frames.size();
    chunk.samples = std::move(frames);
    return chunk;
}

}  // namespace

// An entry stands for all chunks up to the next one, so one is made only where the count changes.
void ChunkOrder::Track::Count(std::uint32_t samples) {
    ++chunkNumber;
    if (runs->empty() || runs->back().samplesPerChunk != samples) {
        runs->emplace_back(static_cast<std::uint32_t>(chunkNumber), samples, 1U);
    }
}

void ChunkOrder::AddVideo(Chunk run, std::uint32_t sampleCount) {
    video_.Count(sampleCount);
    chunks_.push_back(std::move(run));
}

void ChunkOrder::AddAac(std::vector<CSample> frames) {
    if (frames.empty()) {
        return;
    }
    audio_.Count(static_cast<std::uint32_t>(frames.size()));
    chunks_.push_back(OfFrames(std::move(frames)));
}

void ChunkOrder::AddAacHead(std::vector<CSample> frames) {
    if (frames.empty()) {
        return;
    }
    audio_.Count(static_cast<std::uint32_t>(frames.size()));
    chunks_.push_front(OfFrames(std::move(frames)));
}

void ChunkOrder::AddSowt(std::uint64_t offset, std::uint64_t bytes) {
    constexpr std::uint64_t kBytesPerSample = 4;
    audio_.Count(static_cast<std::uint32_t>(bytes / kBytesPerSample));
    chunks_.push_back(OnePcmRecord(offset, bytes));
}

void ChunkOrder::AddTwos(std::uint64_t offset, std::uint64_t bytes) {
    chunks_.push_back(OnePcmRecord(offset, bytes));
}

}  // namespace clipfix
