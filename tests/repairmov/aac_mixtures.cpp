#include "repairmov/aac_mixtures.h"

#include "repairmov/aac_elements.h"
#include "support/bit_writer.h"
#include "support/media_tools.h"
#include "support/temp_folder.h"

namespace clipfix::test {

namespace {

constexpr unsigned kReplicationType = 13;

void AppendRandomBits(BitWriter& bits, Random& random, unsigned count) {
    for (unsigned i = 0; i < count; ++i) {
        bits.Bit(random.Below(2));
    }
}

}  // namespace

AacStream FromAdts(const std::string& name, ByteView file) {
    AacStream stream{name, {}, {}};
    for (std::size_t at = 0; at + 7 <= file.size();) {
        const std::size_t head = (file[at + 1] & 1U) != 0 ? 7 : 9;
        const std::size_t size = ((file[at + 3] & 3U) << 11U) |
                                 (static_cast<unsigned>(file[at + 4]) << 3U) |
                                 (static_cast<unsigned>(file[at + 5]) >> 5U);
        if (size <= head || size > file.size() - at) {
            break;
        }
        const unsigned objectType = (file[at + 2] >> 6U) + 1U;
        const unsigned rate = (file[at + 2] >> 2U) & 15U;
        const unsigned channels = ((file[at + 2] & 1U) << 2U) | (file[at + 3] >> 6U);
        stream.start =
            BitWriter().Bits(objectType, 5).Bits(rate, 4).Bits(channels, 4).Bits(0, 3).View();
        const ByteView frame = SubView(file, at + head, size - head);
        stream.frames.emplace_back(frame.begin(), frame.end());
        at += size;
    }
    return stream;
}

std::vector<AacStream> EncodedStreams(int seconds) {
    const std::vector<std::pair<std::string, std::string>> shapes{
        {"stereo 48000", "-ac 2 -ar 48000 -b:a 128k"},
        {"stereo 44100", "-ac 2 -ar 44100 -b:a 96k"},
        {"mono 44100", "-ac 1 -ar 44100 -b:a 64k"},
        {"mono 16000", "-ac 1 -ar 16000 -b:a 24k"},
        {"stereo 22050", "-ac 2 -ar 22050 -b:a 48k"},
        {"5.1 48000", "-ac 6 -ar 48000 -b:a 256k"},
        {"stereo 48000, main", "-ac 2 -ar 48000 -profile:a aac_main -b:a 128k"},
        {"stereo 96000", "-ac 2 -ar 96000 -b:a 160k"},
    };
    const TempFolder folder;
    std::vector<AacStream> streams;
    for (const auto& [name, shape] : shapes) {
        MakeMedia(folder / "sound.aac", "-f lavfi -i anoisesrc=c=pink:r=48000:a=0.5:seed=5 -t " +
                                            std::to_string(seconds) + " -c:a aac " + shape);
        streams.push_back(FromAdts(name, ReadFile(folder / "sound.aac")));
    }
    return streams;
}

ByteVector EncodedVideo(int seconds) {
    const TempFolder folder;
    MakeMedia(folder / "film.mp4", "-f lavfi -i testsrc2=s=320x240:r=25 -t " +
                                       std::to_string(seconds) +
                                       " -c:v libx264 -threads 1 -preset ultrafast");
    return TopLevelAtom(ReadFile(folder / "film.mp4"), "mdat");
}

const std::vector<ByteVector>& AacStarts() {
    static const std::vector<ByteVector> kStarts{
        {0x12, 0x10}, {0x12, 0x08}, {0x11, 0x90}, {0x12, 0x30}, {0x13, 0x90},
        {0x14, 0x08}, {0x0A, 0x10}, {0x22, 0x10}, {0x8A, 0x10}, {0x2B, 0x92}};
    return kStarts;
}

ByteVector WithReplication(ByteView frame, Random& random) {
    // The last bit that is set is the last one of the element that ends the frame.
    std::size_t end = frame.size() * 8;
    const auto bitAt = [frame](std::size_t at) -> unsigned {
        return (unsigned{frame[at / 8]} >> (7U - at % 8)) & 1U;
    };
    while (end > 0 && bitAt(end - 1) == 0) {
        --end;
    }
    if (end < 3) {
        return {frame.begin(), frame.end()};
    }
    BitWriter bits;
    for (std::size_t at = 0; at < end - 3; ++at) {
        bits.Bit(bitAt(at));
    }
    const unsigned bytes = 1 + random.Below(60);
    bits.Bits(kFilling, 3);
    if (bytes < 15) {
        bits.Bits(bytes, 4);
    } else {
        bits.Bits(15, 4).Bits(bytes - 14, 8);
    }
    bits.Bits(kReplicationType + random.Below(2), 4);
    // Mostly with a header of its own, without which nothing behind it is looked at.
    bits.Bit(random.OneIn(4) ? 0 : 1);
    AppendRandomBits(bits, random, bytes * 8 - 5);
    return bits.Bits(kEnd, 3).View();
}

std::string AacMixtures::NameOf(Kind kind) {
    switch (kind) {
        case Kind::Noise:
            return "noise";
        case Kind::FramesInNoise:
            return "frames in noise";
        case Kind::WoundedFrames:
            return "wounded frames";
        case Kind::CutFrames:
            return "cut frames";
        case Kind::Elements:
            return "elements";
        case Kind::Replication:
            return "replication";
        case Kind::Video:
            return "H.264 data";
        case Kind::ForeignFrames:
            return "foreign frames";
    }
    return {};
}

ByteVector AacMixtures::Make(Kind kind, std::size_t stream, std::size_t size) {
    ByteVector range;
    while (range.size() < size) {
        AppendBytes(range, Piece(kind, streams_[stream % streams_.size()]));
    }
    return range;
}

ByteVector AacMixtures::Piece(Kind kind, const AacStream& stream) {
    switch (kind) {
        case Kind::Noise:
            return random_.Bytes(500);
        case Kind::FramesInNoise:
            switch (random_.Below(5)) {
                case 0:
                    return random_.Bytes(random_.Below(600));
                case 1:
                    return Wounded(AnyFrame(stream));
                case 2:
                    return Cut(AnyFrame(stream));
                case 3:
                    return ByteVector(random_.Below(20), random_.OneIn(2) ? 0 : random_.Byte());
                default:
                    return AnyFrame(stream);
            }
        case Kind::WoundedFrames:
            return random_.OneIn(3) ? Wounded(AnyFrame(stream)) : AnyFrame(stream);
        case Kind::CutFrames:
            return Cut(AnyFrame(stream));
        case Kind::Elements:
            return Element(stream);
        case Kind::Replication: {
            ByteVector frame = WithReplication(AnyFrame(stream), random_);
            return random_.OneIn(4) ? Wounded(std::move(frame)) : frame;
        }
        case Kind::Video: {
            if (random_.OneIn(20)) {
                return AnyFrame(stream);
            }
            const ByteView piece =
                SubView(video_, random_.Below(static_cast<std::uint32_t>(video_.size())),
                        random_.Below(3000));
            return {piece.begin(), piece.end()};
        }
        case Kind::ForeignFrames: {
            const auto number = random_.Below(static_cast<std::uint32_t>(streams_.size()));
            ByteVector frame = AnyFrame(streams_[number]);
            return random_.OneIn(6) ? Wounded(std::move(frame)) : frame;
        }
    }
    return {};
}

const ByteVector& AacMixtures::AnyFrame(const AacStream& stream) {
    return stream.frames[random_.Below(static_cast<std::uint32_t>(stream.frames.size()))];
}

ByteVector AacMixtures::Wounded(ByteVector frame) {
    for (std::uint32_t i = 1 + random_.Below(3); i > 0; --i) {
        auto& byte = frame[random_.Below(static_cast<std::uint32_t>(frame.size()))];
        byte = random_.OneIn(3) ? random_.Byte()
                                : static_cast<std::uint8_t>(byte ^ (1U << random_.Below(8)));
    }
    return frame;
}

ByteVector AacMixtures::Cut(ByteVector frame) {
    const std::size_t at = random_.Below(static_cast<std::uint32_t>(frame.size()));
    const ByteView part = random_.OneIn(2) ? SubView(frame, at) : SubView(frame, 0, at);
    return {part.begin(), part.end()};
}

// One to four elements of a frame; what they hold is random, except that the sizes are small.
ByteVector AacMixtures::Element(const AacStream& stream) {
    BitWriter bits;
    for (std::uint32_t i = 1 + random_.Below(4); i > 0; --i) {
        const unsigned element = random_.Below(8);
        bits.Bits(element, 3);
        if (element == kData) {
            const unsigned bytes = random_.Below(6);
            bits.Bits(random_.Below(16), 4).Bit(random_.Below(2)).Bits(bytes, 8);
            AppendRandomBits(bits, random_, bytes * 8);
        } else if (element == kFilling) {
            const unsigned bytes = random_.Below(15);
            bits.Bits(bytes, 4);
            AppendRandomBits(bits, random_, bytes * 8);
        } else if (element == kConfiguration) {
            AppendRandomBits(bits, random_, 60 + random_.Below(60));
        } else if (element != kEnd) {
            AppendRandomBits(bits, random_, random_.Below(40));
        }
    }
    ByteVector made = bits.View();
    if (random_.OneIn(3)) {
        // A real frame shifted behind the elements, at whatever bit they end.
        for (const std::uint8_t byte : AnyFrame(stream)) {
            bits.Bits(byte, 8);
        }
        made = bits.View();
    } else if (random_.OneIn(8)) {
        AppendBytes(made, AnyFrame(stream));
    }
    return made;
}

}  // namespace clipfix::test
