#include "repairmov/movie_writer.h"

#include <csignal>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include "small_movies.h"
#include "support/memory_file.h"
#include "support/random.h"

namespace clipfix::test {
namespace {

using Sizes = std::vector<std::uint32_t>;
using Offsets = std::vector<std::uint64_t>;

Chunk ChunkOf(std::initializer_list<CSample> samples) {
    Chunk chunk;
    chunk.samples = samples;
    chunk.recordCount = samples.size();
    return chunk;
}
CSample Video(std::uint64_t offset, std::uint64_t size, bool isSample = true) {
    return {offset, size, SampleName::Avc1, isSample};
}
CSample Aac(std::uint64_t offset, std::uint64_t size) {
    return {offset, size, SampleName::Aac, true};
}
CSample Sowt(std::uint64_t offset, std::uint64_t size) {
    return {offset, size, SampleName::Sowt, true};
}

TEST(CollectSampleSizes, FoldsWhatIsNoSampleIntoTheNextAcrossChunks) {
    const ChunkList chunks{ChunkOf({Video(0, 10), Video(10, 5, false)}),
                           ChunkOf({Aac(20, 6), Aac(26, 7)}), ChunkOf({Sowt(40, 400)}),
                           ChunkOf({Video(50, 20), Video(70, 3, false)})};
    Sizes video;
    Sizes audio;
    CollectSampleSizes(chunks, video, audio);
    EXPECT_EQ(video, (Sizes{10, 25}));
    EXPECT_EQ(audio, (Sizes{6, 7}));
}

// All sums are of 32 bits.
TEST(CollectSampleSizes, SumsWrap) {
    const ChunkList chunks{ChunkOf({Video(0, 0xFFFFFFFF, false), Video(10, 0x100000003)})};
    Sizes video;
    Sizes audio;
    CollectSampleSizes(chunks, video, audio);
    EXPECT_EQ(video, (Sizes{2}));
}

TEST(PreviewSizeText, IsInMebibytesAndFrom1024OfThemInGibibytes) {
    EXPECT_EQ(PreviewSizeText(0), "0.00 MB");
    EXPECT_EQ(PreviewSizeText(1048576), "1.00 MB");
    EXPECT_EQ(PreviewSizeText(5000000), "4.77 MB");
    EXPECT_EQ(PreviewSizeText(std::uint64_t{1023} << 20U), "1023.00 MB");
    EXPECT_EQ(PreviewSizeText(std::uint64_t{1} << 30U), "1.00 GB");
    EXPECT_EQ(PreviewSizeText(std::uint64_t{6442450944}), "6.00 GB");
    // As a 32-bit float the last bytes below a gibibyte round up to it.
    EXPECT_EQ(PreviewSizeText((std::uint64_t{1} << 30U) - 1), "1.00 GB");
}

struct Copied {
    MovJobWorld world;
    TempFolder folder;
    Offsets offsets;
    ByteVector output;
    bool isDone = false;

    Copied(const platform::ReadableFile& input, const ChunkList& chunks) {
        auto file = platform::File::Create(folder / "out.mov", platform::File::Existing::Replace);
        MovProgress progress(world.Context());
        DataForkWriter writer(world.Context(), progress, nullptr, input, file.Value());
        isDone = writer.CopyChunks(chunks);
        offsets = writer.Offsets();
        output = ReadFile(folder / "out.mov");
    }
};

TEST(DataForkWriter, CopiesTheRecordsOneBehindTheOther) {
    Random random(1);
    const ByteVector bytes = random.Bytes(3000);
    const ChunkList chunks{ChunkOf({Aac(2000, 6), Aac(2010, 6)}),
                           ChunkOf({Video(100, 300), Video(400, 50)}), ChunkOf({Sowt(700, 0)}),
                           ChunkOf({Video(2990, 20)})};
    const Copied copied(MemoryFile(bytes), chunks);
    EXPECT_TRUE(copied.isDone);
    EXPECT_EQ(copied.offsets, (Offsets{16, 28, 378, 378}));
    const ByteView all = bytes;
    EXPECT_EQ(copied.output, ByteBuilder()
                                 .Zeros(16)
                                 .Bytes(all.subspan(2000, 6))
                                 .Bytes(all.subspan(2010, 6))
                                 .Bytes(all.subspan(100, 350))
                                 .Bytes(all.subspan(2990, 10))
                                 .Zeros(10)
                                 .Take());
    EXPECT_EQ(copied.world.state.g_liOutputSize, 398);
    EXPECT_EQ(copied.world.state.writeFailed, 0);
}

TEST(DataForkWriter, CopiesARecordByTheLow32BitsOfItsSize) {
    const Copied copied(
        MemoryFile(ByteVector(100, 7)),
        {ChunkOf({Sowt(0, 0x100000000), Sowt(0, 0x100000005)}), ChunkOf({Video(0, 3)})});
    EXPECT_EQ(copied.offsets, (Offsets{16, 21}));
    EXPECT_EQ(copied.output.size(), 24U);
}

TEST(DataForkWriter, CopiesLargeRecordsWholly) {
    Random random(2);
    const ByteVector bytes = random.Bytes(10000000);
    const Copied copied(MemoryFile(bytes), {ChunkOf({Sowt(1, 9999990)}), ChunkOf({Video(0, 1)})});
    EXPECT_EQ(copied.offsets, (Offsets{16, 10000006}));
    const ByteView all = bytes;
    EXPECT_EQ(copied.output,
              ByteBuilder().Zeros(16).Bytes(all.subspan(1, 9999990)).U8(bytes[0]).Take());
}

TEST(DataForkWriter, WhatCannotBeReadIsZero) {
    MemoryFile file(ByteVector(2048, 9));
    file.BreakRange(700, 1);
    const Copied copied(file, {ChunkOf({Video(0, 2048)})});
    ByteVector expected(16 + 2048, 9);
    std::fill_n(expected.begin(), 16, 0);
    std::fill_n(expected.begin() + 16 + 512, 512, 0);
    EXPECT_EQ(copied.output, expected);
}

// Files of this process cannot grow beyond a limit while this lives.
class FileSizeLimit {
  public:
    explicit FileSizeLimit(rlim_t bytes) {
        getrlimit(RLIMIT_FSIZE, &before_);
        handler_ = std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }

  private:
    rlimit before_{};
    void (*handler_)(int) = nullptr;
};

// The record that does not fit leaves what did fit; each following record is tried where the file
// really ends, and the offsets say so.
TEST(DataForkWriter, GoesOnWhereTheFileReallyEndsAfterAWriteThatFailed) {
    const MemoryFile file(ByteVector(1000, 5));
    const ChunkList chunks{ChunkOf({Video(0, 300)}), ChunkOf({Video(300, 100), Video(400, 100)}),
                           ChunkOf({Video(500, 100)}), ChunkOf({Sowt(600, 0)})};
    const FileSizeLimit limit(16 + 300 + 150);
    const Copied copied(file, chunks);
    EXPECT_TRUE(copied.isDone);
    EXPECT_EQ(copied.offsets, (Offsets{16, 316, 466, 466}));
    EXPECT_EQ(copied.output.size(), 466U);
    EXPECT_EQ(copied.world.state.g_liOutputSize, 466);
    EXPECT_EQ(copied.world.state.writeFailed, 1);
    EXPECT_FALSE(copied.world.state.writeFailure.empty());
    EXPECT_EQ(copied.world.frontEnd.bars, (std::vector<int>{0, 25, 50, 75}));
}

TEST(RepairMov, ADiskThatIsFullIsNotedAndTheJobGoesOn) {
    const TempFolder folder;
    ByteBuilder damaged;
    for (std::uint32_t i = 0; i < 30; ++i) {
        damaged.Bytes(Run264(3 * i)).Bytes(Noise(5));
    }
    WriteFile(folder / "damaged.mov", damaged.View());
    WriteFile(folder / "reference.mov", VideoOnly264());
    const FileSizeLimit limit(5000);
    const EngineRun run(folder / "damaged.mov", folder / "reference.mov", folder / "out.mov", 0);
    EXPECT_EQ(run.world.state.g_bJobFailed, 0);
    EXPECT_EQ(run.world.state.writeFailed, 1);
    EXPECT_EQ(run.output.size(), 5000U);
    EXPECT_EQ(ReadBig64(run.output, 8), 5000U);
    EXPECT_TRUE(run.world.frontEnd.messages.empty());
}

TEST(RepairMov, AnOutputThatCannotBeMadeIsNoted) {
    const TempFolder folder;
    WriteFile(folder / "damaged.mov", Run264());
    WriteFile(folder / "reference.mov", VideoOnly264());
    MovJobWorld world;
    world.SetFiles(folder / "damaged.mov", folder / "reference.mov");
    GFile movie(world.Context());
    CRepairMOV engine(world.Context(), movie);
    movie.ReadStructure("");
    engine.FindSamples();
    engine.WriteRepairedFile("/nowhere/at/all.mov", world.state.g_strCorruptPath);
    EXPECT_EQ(world.state.writeFailed, 1);
    EXPECT_NE(world.state.writeFailure.find("/nowhere/at/all.mov"), std::string::npos);
    EXPECT_EQ(world.state.g_bJobFailed, 0);
    EXPECT_TRUE(engine.ListChunks().empty());
}

TEST(RepairMov, AnInputThatIsGoneAtTheWritingGivesZeros) {
    const TempFolder folder;
    WriteFile(folder / "damaged.mov", Run264());
    WriteFile(folder / "reference.mov", VideoOnly264());
    MovJobWorld world;
    world.SetFiles(folder / "damaged.mov", folder / "reference.mov");
    GFile movie(world.Context());
    CRepairMOV engine(world.Context(), movie);
    movie.ReadStructure("");
    engine.FindSamples();
    engine.WriteRepairedFile((folder / "out.mov").string(), (folder / "gone.mov").string());
    const ByteVector output = ReadFile(folder / "out.mov");
    EXPECT_EQ(OutputMovie(output).Data(), ByteVector(kRunBytes));
    EXPECT_NE(world.state.g_strPlayerArgs.find("$$0.00 MB$$"), std::string::npos);
}

}  // namespace
}  // namespace clipfix::test
