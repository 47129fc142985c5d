#include "repairmov/fork_locator.h"

#include <gtest/gtest.h>

#include "chunk_offsets.h"
#include "moviefile/structure_check.h"
#include "small_movies.h"
#include "support/memory_file.h"
#include "support/random.h"

namespace clipfix::test {
namespace {

// A scan of a file in memory.
struct Scanned {
    MovJobWorld world;
    GFile movie{world.Context()};
    ChunkList chunks;
    std::uint64_t unreadable = 0;
    int reads = 0;
    bool isWhole = false;

    Scanned(const MemoryFile& file, const ByteVector& reference, unsigned threads = 2) {
        StructureCheck(movie, world.Context()).RunOn(MemoryFile(reference));
        ScanSettings settings;
        settings.parameterSets = *FindParameterSets(movie, world.state);
        settings.nalLengthSize = movie.GetNalLengthSize();
        settings.audioCoderFormat = world.state.g_strAudioCoderFormat;
        if (const auto info = movie.GetAudioSpecificInfo(); info && info->bytes != nullptr) {
            settings.audioSpecificInfo = *info->bytes;
        }
        settings.probeThreads = threads;
        const int before = file.Reads();
        ForkLocator locator(world.Context(), file, settings);
        isWhole = locator.Run();
        chunks = locator.Found().TakeChunks();
        unreadable = locator.Unreadable().TotalBytes();
        reads = file.Reads() - before;
    }
};

// Large enough that the scan works through several windows; runs stand at every kind of place.
TEST(ForkLocator, FindsRunsWhereverTheyStand) {
    ByteVector bytes(5000000, 0xFF);
    Offsets expected;
    Random random(4);
    for (std::size_t at = 13; at + 400 < bytes.size(); at += 303 + random.Below(60000)) {
        const ByteVector run = Run264(static_cast<std::uint32_t>(at));
        std::copy(run.begin(), run.end(), bytes.begin() + static_cast<std::ptrdiff_t>(at));
        expected.push_back(at);
    }
    const Scanned scanned(MemoryFile(bytes), VideoOnly264());
    EXPECT_EQ(OffsetsOf(scanned.chunks), expected);
}

TEST(ForkLocator, FindsARunAtEachDistanceFromTheEndOfTheFile) {
    for (std::size_t behind = 0; behind < 60; ++behind) {
        const Scanned scanned(
            MemoryFile(ByteBuilder().Fill(20000, 0xFF).Bytes(Run264()).Fill(behind, 0xFF).Take()),
            VideoOnly264());
        EXPECT_EQ(OffsetsOf(scanned.chunks), (Offsets{20000})) << behind;
    }
}

// The last unit of the file may be so short that its head is all there is.
TEST(ForkLocator, FindsARunThatEndsInAUnitOfFewBytes) {
    const Scanned scanned(
        MemoryFile(
            ByteBuilder().Fill(9, 0xFF).Bytes(Aud264(6)).Bytes(Aud264(6)).Bytes(Aud264(6)).Take()),
        VideoOnly264());
    EXPECT_EQ(OffsetsOf(scanned.chunks), (Offsets{9}));
}

TEST(ForkLocator, InsideARunOnlyTheHeadsAreRead) {
    ByteBuilder bytes;
    for (std::uint32_t i = 0; i < 500; ++i) {
        bytes.Bytes(P264(i % 16, 40000));
    }
    const Scanned scanned(MemoryFile(bytes.View()), VideoOnly264());
    ASSERT_EQ(scanned.chunks.size(), 1U);
    EXPECT_EQ(scanned.chunks[0].samples.size(), 500U);
    EXPECT_LT(scanned.reads, 520);
}

TEST(ForkLocator, ASectorThatCannotBeReadCountsAsZerosAndIsCountedOnce) {
    ByteBuilder bytes;
    bytes.Bytes(Run264()).Bytes(SilentFrames(2)).Fill(2000, 0xFF).Bytes(Run264(3));
    const std::size_t second = bytes.Size() - kRunBytes;
    MemoryFile file(bytes.View());
    file.BreakRange(1100, 10);
    const Scanned scanned(file, WithAac264());
    EXPECT_TRUE(scanned.isWhole);
    EXPECT_EQ(OffsetsOf(scanned.chunks), (Offsets{0, kRunBytes, second}));
    // Scan and probe both met it.
    EXPECT_EQ(scanned.unreadable, 512U);
}

TEST(ForkLocator, AHeadThatCannotBeReadEndsTheRun) {
    ByteBuilder bytes;
    for (std::uint32_t i = 0; i < 9; ++i) {
        bytes.Bytes(P264(i, 2048));
    }
    MemoryFile file(bytes.View());
    file.BreakRange(4 * 2048 + 2, 1);
    const Scanned scanned(file, VideoOnly264());
    EXPECT_EQ(OffsetsOf(scanned.chunks), (Offsets{0, 5 * 2048}));
    EXPECT_EQ(scanned.chunks[0].samples.size(), 4U);
    EXPECT_EQ(scanned.unreadable, 512U);
}

// The literal scan: every position asked by itself, with the gaps probed on the spot.
ChunkList PlainScan(ByteView bytes, const ReferenceParameterSets& sets, bool hasAac) {
    ChunkOrder order;
    const MemoryFile file(ByteVector(bytes.begin(), bytes.end()));
    platform::WindowReader reader(file);
    const AacProbe probe(ByteVector{0x12, 0x10});
    const auto always = [] { return true; };
    const NalWalker walker(
        sets, 4, [&](std::uint64_t at) { return SubView(bytes, at, CNALU::kProbeLength); });
    std::optional<std::uint64_t> end;
    std::uint64_t first = 0;
    bool hasAudio = false;
    for (std::uint64_t position = 0; position < bytes.size();) {
        NalRun run = walker.WalkNalRun(position, always);
        if (run.UnitCount() <= 2) {
            ++position;
            continue;
        }
        if (end && hasAac) {
            if (!hasAudio) {
                auto head = probe.ProbeAacFrames(reader, 0, first, always);
                hasAudio = !head.empty();
                order.AddAacHead(std::move(head));
            }
            auto gap = probe.ProbeAacFrames(reader, *end, position - *end, always);
            hasAudio = hasAudio || !gap.empty();
            order.AddAac(std::move(gap));
        } else if (!end) {
            first = position;
        }
        end = run.End();
        position = run.End();
        const std::uint32_t count = run.SampleCount();
        order.AddVideo(run.TakeRecords(), count);
    }
    return order.TakeChunks();
}

TEST(ForkLocator, RandomMixturesGiveWhatThePlainWayGives) {
    Random random(8);
    for (int round = 0; round < 12; ++round) {
        ByteBuilder bytes;
        while (bytes.Size() < 12000) {
            switch (random.Below(6)) {
                case 0:
                    bytes.Bytes(SilentFrames(static_cast<int>(random.Below(8))));
                    break;
                case 1:
                    bytes.Bytes(random.Bytes(random.Below(300)));
                    break;
                case 2:
                    bytes.Zeros(random.Below(400));
                    break;
                case 3:
                    bytes.Bytes(Sei264(10 + random.Below(60))).Bytes(Aud264());
                    break;
                case 4:
                    bytes.Bytes(P264(random.Below(16), 30 + random.Below(2000)));
                    break;
                default:
                    bytes.Bytes(Run264(random.Below(16)));
                    break;
            }
        }
        const ByteVector damaged = bytes.Take();
        for (const unsigned threads : {1U, 3U}) {
            const Scanned scanned(MemoryFile(damaged), WithAac264(), threads);
            const auto sets = FindParameterSets(scanned.movie, scanned.world.state);
            const ChunkList plain = PlainScan(damaged, sets->View(), true);
            ASSERT_EQ(scanned.chunks.size(), plain.size());
            for (std::size_t i = 0; i < plain.size(); ++i) {
                EXPECT_EQ(scanned.chunks[i].samples, plain[i].samples);
            }
        }
    }
}

}  // namespace
}  // namespace clipfix::test
