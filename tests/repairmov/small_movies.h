#pragma once

#include <string_view>
#include <vector>

#include "atoms/reference_movie.h"
#include "engine_run.h"
#include "support/nal_stream.h"

namespace clipfix::test {

// Healthy references of a few atoms, without media data.

inline ByteVector VideoTrackOf(const ByteVector& stsd) {
    return VideoTrak(Atom("stbl", {stsd, Table("stts", 1, {6, 1000}), Table("stsc", 1, {1, 6, 1}),
                                   Stsz({60, 61, 62, 63, 64, 65}), Table("stco", 1, {48})}));
}
inline ByteVector Avc() {
    return VideoTrackOf(AvcStsd264());
}
inline ByteVector Hevc() {
    return VideoTrackOf(HvcStsd265());
}
inline ByteVector VideoOnly264() {
    return Moov({Avc()});
}
// Stereo AAC of low complexity at 44100 Hz: the decoder takes SilentFrame().
inline ByteVector WithAac264() {
    return Moov({Avc(), AacTrak()});
}
inline ByteVector WithPcm264(std::string_view format) {
    return Moov({Avc(), PcmTrak(format)});
}

// A frame of silent stereo AAC: an element of two channels that hold nothing.
inline ByteVector SilentFrame() {
    return {0x21, 0x10, 0x04, 0x60, 0x8C, 0x1C};
}
inline ByteVector SilentFrames(int count) {
    ByteBuilder frames;
    for (int i = 0; i < count; ++i) {
        frames.Bytes(SilentFrame());
    }
    return frames.Take();
}

// Three pictures of 100, 101 and 102 bytes; `frameNum` numbers the first one.
inline ByteVector Run264(std::uint32_t frameNum = 0) {
    return ByteBuilder()
        .Bytes(P264(frameNum % 16, 100))
        .Bytes(P264((frameNum + 1) % 16, 101))
        .Bytes(P264((frameNum + 2) % 16, 102))
        .Take();
}
constexpr std::size_t kRunBytes = 303;
// Ends a run wherever it stands: a length that no unit has. No AAC frame starts in it.
inline ByteVector Noise(std::size_t count = 40) {
    return ByteVector(count, 0xFF);
}

// A job on bytes.
inline EngineRun RepairBytes(ByteView damaged, ByteView reference, unsigned threads = 0) {
    const TempFolder folder;
    WriteFile(folder / "damaged.mov", damaged);
    WriteFile(folder / "reference.mov", reference);
    return EngineRun(folder / "damaged.mov", folder / "reference.mov", threads);
}

// What a repaired movie says of itself.
struct OutputTrack {
    std::vector<std::uint64_t> chunkOffsets;
    std::vector<std::uint32_t> sizes;
    std::uint32_t uniformSize = 0;
    std::uint32_t sampleCount = 0;
    // First chunk, samples per chunk, description.
    std::vector<std::vector<std::uint32_t>> runs;
};

inline ByteView ChildOf(ByteView atom, std::string_view code, int index = 0) {
    for (std::size_t at = 8; at + 8 <= atom.size();) {
        const std::size_t size = ReadBig32(atom, at);
        if (size < 8) {
            break;
        }
        if (MatchesAt(atom, at + 4, code) && index-- == 0) {
            return SubView(atom, at, size);
        }
        at += size;
    }
    return {};
}

struct OutputMovie {
    ByteView mdat;
    ByteView moov;

    explicit OutputMovie(ByteView file) {
        const std::uint64_t dataSize = ReadBig64(file, 8);
        mdat = SubView(file, 0, dataSize);
        moov = SubView(file, dataSize);
    }
    [[nodiscard]] OutputTrack Track(int index) const {
        const ByteView trak = ChildOf(moov, "trak", index);
        const ByteView stbl = ChildOf(ChildOf(ChildOf(trak, "mdia"), "minf"), "stbl");
        OutputTrack track;
        const ByteView co64 = ChildOf(stbl, "co64");
        for (std::size_t i = 0; i < ReadBig32(co64, 12); ++i) {
            track.chunkOffsets.push_back(ReadBig64(co64, 16 + 8 * i));
        }
        const ByteView stsz = ChildOf(stbl, "stsz");
        track.uniformSize = ReadBig32(stsz, 12);
        track.sampleCount = ReadBig32(stsz, 16);
        for (std::size_t at = 20; at < stsz.size(); at += 4) {
            track.sizes.push_back(ReadBig32(stsz, at));
        }
        const ByteView stsc = ChildOf(stbl, "stsc");
        for (std::size_t at = 16; at < stsc.size(); at += 12) {
            track.runs.push_back(
                {ReadBig32(stsc, at), ReadBig32(stsc, at + 4), ReadBig32(stsc, at + 8)});
        }
        return track;
    }
    // The sample data, behind the head.
    [[nodiscard]] ByteVector Data() const {
        const ByteView data = SubView(mdat, 16);
        return {data.begin(), data.end()};
    }
};

}  // namespace clipfix::test
