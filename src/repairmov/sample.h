#pragma once

#include <cstdint>
#include <deque>
#include <string_view>
#include <vector>

namespace clipfix {

// What a record is called. A record of `twos` sound is called Sowt as well, and that is meant.
enum class SampleName : std::uint8_t { Avc1, Hvc1, Aac, Sowt };

// The name as text: "AVC1", "HVC1", "AAC", "SOWT".
[[nodiscard]] std::string_view TextOf(SampleName name);
[[nodiscard]] constexpr bool IsVideo(SampleName name) noexcept {
    return name == SampleName::Avc1 || name == SampleName::Hvc1;
}

// One record found in the damaged file.
//
// A job holds one for each sample of the output, so it is small: of the NAL unit that opened it
// only the one thing is kept that the tables ask for, and a record of video that is no sample by
// itself is folded into the one behind it at once (see SampleRun).
struct CSample {
    std::uint64_t offset = 0;  // in the damaged file, in bytes
    std::uint64_t size = 0;    // in bytes, length words included; may reach behind the file's end
    SampleName name = SampleName::Avc1;
    // False for video that is no sample of the output: its bytes belong to the next one.
    bool isOutputSample = true;

    // The length by which a record is copied: the low 32 bits of its size. Settled.
    [[nodiscard]] std::uint32_t CopiedBytes() const { return static_cast<std::uint32_t>(size); }

    friend bool operator==(const CSample&, const CSample&) = default;
};

// All records of one run of video, or all records of one stretch of sound; never both.
struct Chunk {
    std::vector<CSample> samples;
    // How many records were found, those included that were folded into a neighbour.
    std::uint64_t recordCount = 0;

    [[nodiscard]] SampleName Name() const { return samples.front().name; }
};

// Chunks in the order in which the output holds them.
using ChunkList = std::deque<Chunk>;

}  // namespace clipfix
