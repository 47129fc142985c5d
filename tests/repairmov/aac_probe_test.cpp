#include "repairmov/aac_probe.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include "repairmov/aac_decoder.h"
#include "repairmov/aac_mixtures.h"
#include "repairmov/plain_probe.h"
#include "repairmov/probe_pool.h"
#include "small_movies.h"
#include "support/media_tools.h"
#include "support/memory_file.h"
#include "support/random.h"

namespace clipfix::test {
namespace {

const ByteVector kStereo44100{0x12, 0x10};
constexpr auto kAlways = [] { return true; };

std::vector<CSample> ProbeBytes(ByteView bytes, std::uint64_t offset, std::uint64_t length,
                                ByteView start = kStereo44100) {
    const MemoryFile file(ByteVector(bytes.begin(), bytes.end()));
    platform::WindowReader reader(file);
    return AacProbe(start).ProbeAacFrames(reader, offset, length, kAlways);
}
std::vector<std::pair<std::uint64_t, std::uint64_t>> Places(const std::vector<CSample>& frames) {
    std::vector<std::pair<std::uint64_t, std::uint64_t>> places;
    for (const CSample& frame : frames) {
        places.emplace_back(frame.offset, frame.size);
    }
    return places;
}
using PlaceList = std::vector<std::pair<std::uint64_t, std::uint64_t>>;

TEST(AacProbe, TakesOneFrameBehindTheOther) {
    const auto frames = ProbeBytes(SilentFrames(3), 0, 18);
    EXPECT_EQ(Places(frames), (PlaceList{{0, 6}, {6, 6}, {12, 6}}));
    EXPECT_EQ(frames[0].name, SampleName::Aac);
    EXPECT_TRUE(frames[0].isOutputSample);
}

TEST(AacProbe, OffsetsAreThoseOfTheFile) {
    const ByteVector file = ByteBuilder().Fill(100, 0xFF).Bytes(SilentFrames(2)).Take();
    EXPECT_EQ(Places(ProbeBytes(file, 100, 12)), (PlaceList{{100, 6}, {106, 6}}));
}

TEST(AacProbe, DropsWhatIsNoFrameByteByByte) {
    const ByteVector gap = ByteBuilder()
                               .Fill(3, 0xFF)
                               .Bytes(SilentFrame())
                               .Bytes({0x05, 0x06, 0x07, 0x08, 0x09})
                               .Bytes(SilentFrame())
                               .Take();
    EXPECT_EQ(Places(ProbeBytes(gap, 0, gap.size())), (PlaceList{{3, 6}, {14, 6}}));
}

TEST(AacProbe, ARangeOfNoBytesHasNoFrame) {
    EXPECT_TRUE(ProbeBytes(SilentFrames(2), 0, 0).empty());
}

TEST(AacProbe, SeesOnlyTheRange) {
    // The second frame is cut by the end of the range; the decoder gets what there is.
    const auto frames = ProbeBytes(SilentFrames(2), 0, 9);
    ASSERT_FALSE(frames.empty());
    EXPECT_EQ(frames[0].offset, 0U);
    for (const CSample& frame : frames) {
        EXPECT_LT(frame.offset, 9U);
    }
    EXPECT_LT(frames.size(), 2U);
}

// A zero byte is never shown to the decoder as the first one. The frame of one channel begins with
// one, so that sound of one channel mostly comes out empty. Settled.
TEST(AacProbe, AFrameThatBeginsWithAZeroByteIsPassedOver) {
    const ByteVector mono{0x00, 0xC8, 0x00, 0x80, 0x23, 0x80};
    const ByteVector monoStart{0x12, 0x08};
    ASSERT_GT(AacDecoder::Start(std::span<const std::uint8_t, 2>(monoStart))
                  ->Decode(mono, mono.size())
                  .FrameBytes(),
              0U);
    for (const CSample& frame : ProbeBytes(mono, 0, mono.size(), monoStart)) {
        EXPECT_GT(frame.offset, 0U);
    }
}

TEST(AacProbe, ZerosCostNoDecodeAndFramesBehindThemAreFound) {
    const ByteVector file = ByteBuilder().Zeros(300000).Bytes(SilentFrames(2)).Zeros(5000).Take();
    const MemoryFile memory(file);
    platform::WindowReader reader(memory);
    int looks = 0;
    const auto frames = AacProbe(kStereo44100).ProbeAacFrames(reader, 0, file.size(), [&looks] {
        ++looks;
        return true;
    });
    EXPECT_EQ(Places(frames), (PlaceList{{300000, 6}, {300006, 6}}));
    EXPECT_LT(looks, 100);
}

// Only the low 32 bits of a length are read; what lies behind them counts as zero.
TEST(AacProbe, OfARangeOfFourGigabytesOnlyTheLow32BitsAreRead) {
    const ByteVector file = SilentFrames(5);
    constexpr std::uint64_t kFourGiB = std::uint64_t{1} << 32U;
    EXPECT_EQ(ProbeBytes(file, 0, kFourGiB).size(), 0U);
    EXPECT_EQ(Places(ProbeBytes(file, 0, kFourGiB + 12)), (PlaceList{{0, 6}, {6, 6}}));
    // Behind the end of the file there is nothing but zeros.
    EXPECT_EQ(ProbeBytes(file, 0, kFourGiB - 1).size(), 5U);
    EXPECT_EQ(ProbeBytes(file, 100, 1000).size(), 0U);
}

TEST(AacProbe, DecoderBytesThatAreAbsentOrRefusedFindNothing) {
    EXPECT_FALSE(AacProbe(ByteView{}).CanStart());
    EXPECT_TRUE(ProbeBytes(SilentFrames(2), 0, 12, ByteView{}).empty());
    const ByteVector bad{0xFF, 0xFF};
    EXPECT_FALSE(AacProbe(bad).CanStart());
    EXPECT_TRUE(ProbeBytes(SilentFrames(2), 0, 12, bad).empty());
}

// Always two bytes: of one byte a zero is the second, and of more the rest plays no part.
TEST(AacProbe, StartsTheDecoderWithTwoBytes) {
    const ByteVector one{0x12};
    const ByteVector two{0x12, 0x00};
    EXPECT_EQ(AacProbe(one).CanStart(), AacProbe(two).CanStart());
    EXPECT_EQ(Places(ProbeBytes(SilentFrames(4), 0, 24, one)),
              Places(ProbeBytes(SilentFrames(4), 0, 24, two)));
    EXPECT_EQ(Places(ProbeBytes(SilentFrames(4), 0, 24, ByteVector{0x12, 0x10, 0xFF, 0xFF})),
              Places(ProbeBytes(SilentFrames(4), 0, 24)));
}

TEST(AacProbe, StopsWhereItIsAskedTo) {
    const ByteVector file = SilentFrames(10);
    const MemoryFile memory(file);
    platform::WindowReader reader(memory);
    int looks = 0;
    const auto frames = AacProbe(kStereo44100).ProbeAacFrames(reader, 0, file.size(), [&looks] {
        return ++looks <= 3;
    });
    EXPECT_EQ(frames.size(), 3U);
}

TEST(AacProbe, ASectorThatCannotBeReadCountsAsZeros) {
    ByteVector bytes = ByteBuilder().Bytes(SilentFrames(2)).Take();
    bytes.resize(512);
    AppendBytes(bytes, SilentFrames(85));  // 510 bytes
    bytes.resize(1024);
    AppendBytes(bytes, SilentFrames(2));
    MemoryFile file(bytes);
    file.BreakRange(600, 1);
    platform::WindowReader reader(file);
    const auto frames = AacProbe(kStereo44100).ProbeAacFrames(reader, 0, bytes.size(), kAlways);
    EXPECT_EQ(Places(frames), (PlaceList{{0, 6}, {6, 6}, {1024, 6}, {1030, 6}}));
    EXPECT_EQ(reader.Unreadable().TotalBytes(), 512U);
}

// Frames that an encoder made, one behind the other, for a stereo stream at 48000 Hz.
ByteVector EncodedFrames() {
    const TempFolder folder;
    MakeMedia(folder / "sound.mp4", "-f lavfi -i anoisesrc=r=48000:a=0.4 -t 2 -ac 2 -c:a aac");
    const ByteVector file = ReadFile(folder / "sound.mp4");
    ByteVector mdat = TopLevelAtom(file, "mdat");
    mdat.erase(mdat.begin(), mdat.begin() + 8);
    return mdat;
}

TEST(AacProbe, NoiseWithFramesAndZerosGivesWhatThePlainWayGives) {
    Random random(7);
    const ByteVector encoded = EncodedFrames();
    std::size_t found = 0;
    for (int round = 0; round < 30; ++round) {
        ByteBuilder range;
        while (range.Size() < 4000) {
            switch (random.Below(5)) {
                case 0:
                    range.Bytes(SilentFrames(static_cast<int>(random.Below(20))));
                    break;
                case 1:
                    range.Zeros(random.Below(600));
                    break;
                case 2:
                    range.Text("TAG").Bytes(random.Bytes(random.Below(5)));
                    break;
                case 3:
                    range.Bytes(SubView(encoded, random.Below(40000), random.Below(2000)));
                    break;
                default:
                    range.Bytes(random.Bytes(random.Below(900)));
                    break;
            }
        }
        const ByteVector& start = AacStarts()[static_cast<std::size_t>(round) % AacStarts().size()];
        const auto frames = ProbeBytes(range.View(), 0, range.Size(), start);
        EXPECT_EQ(frames, PlainProbe(range.View(), start)) << round;
        found += frames.size();
    }
    EXPECT_GT(found, 100U);
}

// The long run of this is bench/aac_probe_soak.
TEST(AacProbe, EveryMixtureGivesWhatThePlainWayGives) {
    const std::vector<AacStream> streams = EncodedStreams(1);
    const ByteVector video = EncodedVideo(1);
    AacMixtures mixtures(streams, video, 17);
    std::size_t found = 0;
    for (const AacMixtures::Kind kind : AacMixtures::kKinds) {
        for (std::size_t i = 0; i < streams.size(); ++i) {
            const ByteVector range = mixtures.Make(kind, i, 1200);
            const ByteVector& start = i % 3 == 2 ? AacStarts()[i] : streams[i].start;
            const auto frames = ProbeBytes(range, 0, range.size(), start);
            EXPECT_EQ(frames, PlainProbe(range, start))
                << AacMixtures::NameOf(kind) << ", " << streams[i].name;
            found += frames.size();
        }
    }
    EXPECT_GT(found, 60U);
}

// The decoding library is not built by us: a page that cannot be touched right behind the bytes
// tells whether it ever reads past them.
TEST(AacDecoder, TheLibraryReadsNotPastItsBytes) {
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    void* pages =
        mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(pages, MAP_FAILED);
    auto* bytes = static_cast<std::uint8_t*>(pages);
    ASSERT_EQ(mprotect(bytes + page, page, PROT_NONE), 0);
    Random random(11);
    const auto decoder = AacDecoder::Start(std::span<const std::uint8_t, 2>(kStereo44100));
    for (int round = 0; round < 30000; ++round) {
        const std::size_t length = 1 + random.Below(1024);
        const ByteVector noise = random.Bytes(length);
        std::copy(noise.begin(), noise.end(), bytes + page - length);
        static_cast<void>(decoder->DecodeInPlace({bytes + page - length, length}));
    }
    munmap(pages, 2 * page);
}

TEST(ProbePool, AnswersInTheOrderOfTheQuestionsWithAnyNumberOfThreads) {
    Random random(3);
    ByteBuilder bytes;
    std::vector<std::pair<std::uint64_t, std::uint64_t>> ranges;
    for (int i = 0; i < 200; ++i) {
        const std::uint64_t start = bytes.Size();
        bytes.Bytes(random.OneIn(3) ? random.Bytes(random.Below(200)) : Noise(random.Below(50)))
            .Bytes(SilentFrames(static_cast<int>(random.Below(60))))
            .Zeros(random.Below(3000));
        ranges.emplace_back(start, bytes.Size() - start);
    }
    const MemoryFile file(bytes.View());
    const AacProbe probe(kStereo44100);
    std::vector<std::vector<CSample>> expected;
    for (const unsigned threads : {1U, 2U, 7U}) {
        ProbePool pool(probe, file, threads, kAlways);
        std::vector<std::vector<CSample>> answers;
        for (const auto& [offset, length] : ranges) {
            pool.Submit(offset, length);
        }
        EXPECT_EQ(pool.Outstanding(), ranges.size());
        while (pool.Outstanding() > 0) {
            answers.push_back(pool.TakeNext());
        }
        if (threads == 1) {
            expected = answers;
        }
        EXPECT_EQ(answers, expected) << threads;
    }
    std::size_t frames = 0;
    for (const auto& answer : expected) {
        frames += answer.size();
    }
    EXPECT_GT(frames, 2000U);
}

TEST(ProbePool, AnswersAreCutShortOnceItIsAskedToStop) {
    const MemoryFile file(SilentFrames(1000));
    const AacProbe probe(kStereo44100);
    std::atomic<bool> stopped{true};
    ProbePool pool(probe, file, 3, [&stopped] { return !stopped; });
    pool.Submit(0, 6000);
    pool.Submit(0, 6000);
    EXPECT_TRUE(pool.TakeNext().empty());
    EXPECT_TRUE(pool.TakeNext().empty());
    EXPECT_FALSE(pool.IsNextReady());
}

TEST(ProbePool, QuestionsThatNobodyTookAreDropped) {
    const MemoryFile file(SilentFrames(1000));
    const AacProbe probe(kStereo44100);
    ProbePool pool(probe, file, 2, kAlways);
    for (int i = 0; i < 100; ++i) {
        pool.Submit(0, 6000);
    }
}

}  // namespace
}  // namespace clipfix::test
