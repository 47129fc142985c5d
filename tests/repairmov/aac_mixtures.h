#pragma once

#include <string>
#include <vector>

#include "base/bytes.h"
#include "support/random.h"

namespace clipfix::test {

// Raw frames that an encoder made, and the two bytes that start a decoder for them.
struct AacStream {
    std::string name;
    ByteVector start;
    std::vector<ByteVector> frames;
};

// The frames of a file of ADTS frames (ISO/IEC 13818-7, 6.2), without their heads.
[[nodiscard]] AacStream FromAdts(const std::string& name, ByteView file);

// Streams of many kinds, made by ffmpeg: mono, stereo and 5.1, main and low complexity, rates from
// 8 to 96 kHz. `seconds` of each.
[[nodiscard]] std::vector<AacStream> EncodedStreams(int seconds);

// H.264 data, made by ffmpeg, as a gap holds it where the walk lost a run.
[[nodiscard]] ByteVector EncodedVideo(int seconds);

// Decoder-specific bytes of every kind: objects 1, 2 and 4 in mono, stereo and more, low rates that
// mean spectral band replication, and objects with error resilience and with replication.
[[nodiscard]] const std::vector<ByteVector>& AacStarts();

// Puts band replication data (ISO/IEC 14496-3, 4.4.2.8) of random content behind the channels of a
// frame: no encoder for them is at hand.
[[nodiscard]] ByteVector WithReplication(ByteView frame, Random& random);

// Makes ranges of bytes as a probe may meet them.
class AacMixtures {
  public:
    enum class Kind {
        Noise,
        FramesInNoise,  // whole ones, cut ones and wounded ones, in any order, between noise
        WoundedFrames,  // one behind the other, with a bit or a byte changed here and there
        CutFrames,      // pieces of frames, one behind the other
        Elements,       // random syntax elements: data, filling, configurations, channels
        Replication,    // frames with band replication data, some of them wounded
        Video,          // H.264 data, with frames here and there
        ForeignFrames,  // frames of all streams, mixed
    };
    static constexpr Kind kKinds[] = {Kind::Noise,     Kind::FramesInNoise, Kind::WoundedFrames,
                                      Kind::CutFrames, Kind::Elements,      Kind::Replication,
                                      Kind::Video,     Kind::ForeignFrames};
    [[nodiscard]] static std::string NameOf(Kind kind);

    // What is handed over must outlive the object.
    AacMixtures(const std::vector<AacStream>& streams, ByteView video, std::uint64_t seed)
        : streams_(streams), video_(video), random_(seed) {}

    // At least `size` bytes, mostly made of the frames of stream number `stream`.
    [[nodiscard]] ByteVector Make(Kind kind, std::size_t stream, std::size_t size);

  private:
    [[nodiscard]] ByteVector Piece(Kind kind, const AacStream& stream);
    [[nodiscard]] const ByteVector& AnyFrame(const AacStream& stream);
    [[nodiscard]] ByteVector Wounded(ByteVector frame);
    [[nodiscard]] ByteVector Cut(ByteVector frame);
    [[nodiscard]] ByteVector Element(const AacStream& stream);

    const std::vector<AacStream>& streams_;
    ByteView video_;
    Random random_;
};

}  // namespace clipfix::test
