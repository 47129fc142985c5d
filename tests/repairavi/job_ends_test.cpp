// How an AVI job ends: giving up, cancel, pause, failing disks; and what it leaves behind.

#include <atomic>
#include <csignal>
#include <ctime>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <thread>

#include "repairavi/avi_job.h"
#include "support/byte_builder.h"
#include "support/memory_file.h"

namespace clipfix {
namespace {

using namespace test;
using test::AviChunk;  // the builder, and not the record of the same name
using namespace std::chrono_literals;

ByteVector Padded(ByteVector bytes, std::size_t size = 1000) {
    bytes.resize(std::max(bytes.size(), size), 0x80);
    return bytes;
}

bool LeavesNoFile(const AviJob& job) {
    return !job.Exists("Repaired.avi") && !job.Exists("index") && !job.Exists("$tmp$.bmp");
}

// --- Giving up.

struct GiveUpRow {
    const char* name;
    ByteVector damaged;
    ByteVector control;  // nearly the same, and not given up
};

void PrintTo(const GiveUpRow& row, std::ostream* out) {
    *out << row.name;
}

class GivingUp : public testing::TestWithParam<GiveUpRow> {};

TEST_P(GivingUp, LeavesNoFileAndTheDamagedFileAsItWas) {
    AviJob job(GetParam().damaged);
    EXPECT_EQ(job.Run(), 0);
    EXPECT_TRUE(LeavesNoFile(job));
    EXPECT_EQ(ReadFile(job.folder / "damaged.avi"), GetParam().damaged);
    EXPECT_EQ(job.state.writeFailed, 0);
    EXPECT_THAT(job.frontEnd.percents, testing::Not(testing::Contains(100)));
}

TEST_P(GivingUp, DoesNotHappenToTheControl) {
    AviJob job(GetParam().control);
    EXPECT_EQ(job.Run(), 1);
}

AviFile FileOf(const std::vector<ByteVector>& streamLists) {
    AviFile file = UsualFile();
    file.streamLists = streamLists;
    return file;
}

ByteVector WithWrongStrf() {
    ByteVector bytes = UsualFile().Bytes();
    OverwriteText(bytes, 88 + 76, "strg");
    return bytes;
}

ByteVector PictureListOf(const std::string& handler, const std::string& compression) {
    return AviStreamList({.fccHandler = handler},
                         AviPictureFormatBytes({.biCompression = compression}));
}

// A main header, and what follows.
ByteVector MainHeaderAnd(const ByteVector& behind) {
    ByteVector bytes = UsualFile().Bytes();
    bytes.resize(88);
    AppendBytes(bytes, behind);
    return Padded(bytes);
}

ByteVector ChunksOf(const std::vector<AviDataChunk>& chunks) {
    return Join({AviMovieList(chunks), AviChunk("idx1", ByteVector(16))});
}

INSTANTIATE_TEST_SUITE_P(
    Rows, GivingUp,
    testing::Values(
        GiveUpRow{"Row2_OneHundredBytes", ByteVector(100, 0x80), ByteVector(101, 0x80)},
        GiveUpRow{"Row3_SoundAheadOfPictures", FileOf({AviAudioList(), AviVideoList()}).Bytes(),
                  FileOf({AviVideoList(), AviAudioList()}).Bytes()},
        GiveUpRow{"Row4_NoStrf", WithWrongStrf(), UsualFile().Bytes()},
        GiveUpRow{"Row5_NeitherHandlerNorCompression",
                  FileOf({PictureListOf(kNone, kNone), AviAudioList()}).Bytes(),
                  FileOf({PictureListOf("abcd", kNone), AviAudioList()}).Bytes()},
        GiveUpRow{"Row6_BareMoviWithNoStreamList", MainHeaderAnd({'m', 'o', 'v', 'i'}),
                  MainHeaderAnd(AviList("movi", {}))},
        // The first chunk goes by the word "movi", which does not ask; the second by its tag.
        GiveUpRow{"Row7_PicturesOfNoStream",
                  MainHeaderAnd(ChunksOf({AviPicture(20, 1), AviPicture(22, 2)})),
                  MainHeaderAnd(ChunksOf({AviPicture(20, 1)}))},
        GiveUpRow{"Row7_SoundOfNoStream", FileOf({AviVideoList()}).Bytes(),
                  FileOf({AviVideoList(), AviAudioList()}).Bytes()},
        GiveUpRow{"Row7_OnlyWithTwoDigits", MainHeaderAnd(ByteBuilder().Text("..00wb..").Take()),
                  MainHeaderAnd(ByteBuilder().Text("..0.wb...0dc..xx").Take())}),
    [](const testing::TestParamInfo<GiveUpRow>& row) { return row.param.name; });

TEST(AUndeclaredKind, SetsThePercentTo100AndDoesNotSendIt) {
    AviJob job(FileOf({AviVideoList()}).Bytes());
    ASSERT_EQ(job.Run(), 0);
    EXPECT_EQ(job.state.g_nAviPercent, 100);
    EXPECT_THAT(job.frontEnd.percents, testing::Not(testing::Contains(100)));
}

TEST(AMissingFile, MakesTheOthersAndDeletesThemAgain) {
    AviJob job(ByteVector(200, 0x80));
    job.state.g_strCorruptCopy = (job.folder / "absent.avi").string();
    EXPECT_EQ(job.Run(), 0);
    EXPECT_TRUE(LeavesNoFile(job));
    EXPECT_TRUE(std::filesystem::is_directory(job.folder / "$tp"));
}

TEST(AFolder, CannotBeOpened) {
    AviJob job(ByteVector(200, 0x80));
    job.state.g_strCorruptCopy = job.folder.Path().string();
    EXPECT_EQ(job.Run(), 0);
    EXPECT_TRUE(LeavesNoFile(job));
}

TEST(TheConstructor, SetsThePercentToZero) {
    JobState state;
    state.g_nAviPercent = 55;
    JobControl control(state);
    SilentFrontEnd frontEnd;
    const CRepairAVI engine({state, control, frontEnd}, "unused");
    EXPECT_EQ(state.g_nAviPercent, 0);
}

TEST(TheNextJob, StartsFromZeroInTheSameFolder) {
    AviJob job(UsualFile().Bytes());
    ASSERT_EQ(job.Run(), 1);
    const ByteVector first = job.Output();
    CRepairAVI next({job.state, job.control, job.frontEnd}, job.folder / "$tp");
    ASSERT_EQ(next.Repair(), 1);
    EXPECT_EQ(job.state.g_nAviVideoChunks, 2U);
    EXPECT_EQ(job.Output(), first);
}

TEST(TheDamagedFile, IsNotTouchedWhereItStandsUnderTheResultsName) {
    for (const char* name : {"Repaired.avi", "index", "$tmp$.bmp"}) {
        AviJob job(ByteVector(1));
        const ByteVector bytes = UsualFile().Bytes();
        std::filesystem::create_directory(job.folder / "$tp");
        WriteFile(job.folder / "$tp" / name, bytes);
        job.state.g_strCorruptCopy = (job.folder / "$tp" / name).string();
        EXPECT_EQ(job.Run(), 1) << name;
        EXPECT_EQ(job.state.writeFailed, 1) << name;
        job.engine.CloseWorkFiles();
        EXPECT_EQ(ReadFile(job.folder / "$tp" / name), bytes) << name;
    }
}

// --- Cancel.

TEST(ACancel, AtTheLoopHeadLeavesNoFileAndThePercent) {
    AviJob job(Padded(UsualFile().Bytes(), 100'000));
    job.frontEnd.onProgress = [&] {
        if (job.state.g_nAviPercent == 40) {
            job.state.g_bAviContinue = 0;
        }
    };
    EXPECT_EQ(job.Run(), 1);
    EXPECT_TRUE(LeavesNoFile(job));
    EXPECT_EQ(job.state.g_nAviPercent, 40);
    EXPECT_EQ(job.frontEnd.percents.back(), 40);
}

TEST(ACancel, AheadOfTheStartIsFoundBehindTheSetUp) {
    AviJob job(UsualFile().Bytes());
    job.state.g_bAviContinue = 0;
    EXPECT_EQ(job.Run(), 1);
    EXPECT_TRUE(LeavesNoFile(job));
    EXPECT_TRUE(std::filesystem::is_directory(job.folder / "$tp"));
    // The finishing steps count the empty index all the same.
    EXPECT_EQ(job.state.g_ullAviRiffBody, 8U);
}

TEST(ACancel, CountsTheIndexOfTheChunksTaken) {
    AviJob job(Padded(UsualFile().Bytes(), 100'000));
    job.frontEnd.onProgress = [&] { job.state.g_bAviContinue = 0; };
    EXPECT_EQ(job.Run(), 1);
    // All three chunks are taken before the first percent is due.
    const std::size_t data = 312 + 12 + 28 + 40;
    EXPECT_EQ(job.state.g_ullAviRiffBody, data + 16 - 8 + std::size_t{3} * 16 + 8);
}

TEST(ACancel, AtTheFilesEndComesTooLate) {
    // The last byte makes the value change: the file's size is a multiple of the divisor.
    const std::size_t size = 2100;  // (2100 + 2048) / 100 = 41; 41 * 51 = 2091
    AviJob job(ByteVector(size - 9, 0x80));
    const int last = static_cast<int>((size - 9) / ((size - 9 + 2048) / 100));
    job.frontEnd.onProgress = [&] {
        if (job.state.g_nAviPercent == last) {
            job.state.g_bAviContinue = 0;
        }
    };
    ASSERT_EQ((size - 9) % ((size - 9 + 2048) / 100), 0U);
    EXPECT_EQ(job.Run(), 1);
    EXPECT_TRUE(job.Exists("Repaired.avi"));
}

// A file whose reads can be listened to.
class WatchedFile final : public platform::ReadableFile {
  public:
    explicit WatchedFile(ByteVector bytes) : bytes_(std::move(bytes)) {}
    std::function<void(std::uint64_t offset)> onRead;

    [[nodiscard]] Result<std::size_t> ReadAt(std::uint64_t offset, ByteSpan out) const override {
        if (onRead) {
            onRead(offset);
        }
        const ByteView view = SubView(bytes_, offset, out.size());
        std::copy(view.begin(), view.end(), out.begin());
        return view.size();
    }
    [[nodiscard]] std::uint64_t Size() const override { return bytes_.size(); }

  private:
    ByteVector bytes_;
};

// The second place at which a cancel is found is ahead of a byte that is no marker: the percent
// then goes to 0. Here the cancel comes while the recogniser looks at that byte.
TEST(ACancel, DuringTheFirstLookSetsThePercentToZero) {
    WatchedFile file(ByteVector(2'000, 0x80));
    AviJob job(ByteVector(1));
    job.state.g_nAviPercent = 7;
    file.onRead = [&](std::uint64_t /*offset*/) { job.state.g_bAviContinue = 0; };
    EXPECT_EQ(job.engine.RepairFrom(&file), 1);
    EXPECT_EQ(job.state.g_nAviPercent, 0);
    EXPECT_TRUE(LeavesNoFile(job));
}

// --- Pause.

// Runs the job in a thread of its own, suspends it at `percent`, and tells how far it had come a
// while later, twice.
struct PausedJob {
    PausedJob(AviJob& aviJob, int percent) : job(aviJob) {
        job.frontEnd.onProgress = [this, percent] {
            if (job.state.g_nAviPercent >= percent && !reached) {
                job.control.Suspend(JobControl::Worker::Repair);
                reached = true;
            }
        };
        worker = std::thread([this] { result = job.Run(); });
        while (!reached) {
            std::this_thread::sleep_for(1ms);
        }
    }
    ~PausedJob() { worker.join(); }
    PausedJob(const PausedJob&) = delete;
    PausedJob& operator=(const PausedJob&) = delete;

    [[nodiscard]] bool Stands() const {
        std::this_thread::sleep_for(50ms);
        const std::uint64_t place = job.engine.BytesScanned();
        std::this_thread::sleep_for(100ms);
        return job.engine.BytesScanned() == place;
    }

    AviJob& job;
    std::atomic<bool> reached{false};
    std::atomic<int> result{-1};
    std::thread worker;
};

TEST(APause, TakesHoldAmongUnknownBytesAndEndsWithTheResume) {
    AviJob job(ByteVector(3'000'000, 0x80));
    {
        PausedJob paused(job, 30);
        EXPECT_TRUE(paused.Stands());
        EXPECT_LT(job.engine.BytesScanned(), 1'000'000U);
        EXPECT_EQ(paused.result, -1);
        job.control.Resume(JobControl::Worker::Repair);
    }
    EXPECT_EQ(job.engine.BytesScanned(), 3'000'000U);
    EXPECT_TRUE(job.Exists("Repaired.avi"));
}

TEST(APause, TakesHoldInsideALargeChunk) {
    const AviFile file = SoundFile({AviPicture(5'000'000, 1), AviPicture(20, 2)});
    AviJob job(file.Bytes());
    {
        PausedJob paused(job, 30);
        EXPECT_TRUE(paused.Stands());
        EXPECT_LT(job.engine.BytesScanned(), 2'100'000U);
        job.control.Resume(JobControl::Worker::Repair);
    }
    EXPECT_EQ(job.Output(), WithFreshCounts(file));
}

TEST(APause, CanEndInACancel) {
    AviJob job(ByteVector(3'000'000, 0x80));
    {
        PausedJob paused(job, 30);
        job.state.g_bAviContinue = 0;
        job.control.Resume(JobControl::Worker::Repair);
    }
    EXPECT_TRUE(LeavesNoFile(job));
    EXPECT_LT(job.engine.BytesScanned(), 1'000'000U);
}

TEST(APause, InsideALargeChunkCanEndInACancelThatNeedNotWaitForTheChunk) {
    AviJob job(SoundFile({AviPicture(5'000'000, 1), AviPicture(20, 2)}).Bytes());
    {
        PausedJob paused(job, 30);
        job.state.g_bAviContinue = 0;
        job.control.Resume(JobControl::Worker::Repair);
    }
    EXPECT_TRUE(LeavesNoFile(job));
    EXPECT_LT(job.engine.BytesScanned(), 2'500'000U);
}

TEST(AStandstill, UsesNoProcessor) {
    AviFile file = UsualFile();
    file.streamLists.push_back(
        AviStreamList({.fccType = "txts", .fccHandler = kNone}, ByteVector(8, 0x81)));
    file.beforeMovie = {ByteVector(40, 0x80)};
    AviJob job(file.Bytes());
    std::thread worker([&] { EXPECT_EQ(job.Run(), 1); });
    while (!job.engine.StandsStill()) {
        std::this_thread::sleep_for(1ms);
    }
    const std::clock_t before = std::clock();
    std::this_thread::sleep_for(200ms);
    EXPECT_LT(static_cast<double>(std::clock() - before) / CLOCKS_PER_SEC, 0.05);
    job.state.g_bAviContinue = 0;
    job.control.Wake();
    worker.join();
    EXPECT_TRUE(LeavesNoFile(job));
}

// --- Sectors that cannot be read.

TEST(AnUnreadableSector, InsideAChunkIsZeroInTheOutput) {
    const AviFile file = SoundFile({AviPicture(20, 1), AviPicture(5000, 2), AviPicture(22, 3)});
    MemoryFile memory(file.Bytes());
    memory.BreakRange(3000, 1);  // in the sector from 2560 to 3072
    AviJob job(ByteVector(1));
    ASSERT_EQ(job.engine.RepairFrom(&memory), 1);
    ByteVector expected = WithFreshCounts(file);
    std::fill_n(expected.begin() + 2560, 512, std::uint8_t{0});
    EXPECT_EQ(job.Output(), expected);
    EXPECT_EQ(job.state.bytesUnreadable, 512U);
}

TEST(AnUnreadableSector, OverAHeadCostsThatChunkAndTheOneBeforeIt) {
    AviFile file = SoundFile({AviPicture(20, 1), AviPicture(2000, 2), AviPicture(2000, 3),
                              AviPicture(2000, 4), AviPicture(2000, 5)});
    ByteVector bytes = file.Bytes();
    const std::size_t head = 324 + 28 + 2 * 2008;
    MemoryFile memory(bytes);
    memory.BreakRange(head, 8);
    AviJob job(ByteVector(1));
    ASSERT_EQ(job.engine.RepairFrom(&memory), 1);
    file.chunks.erase(file.chunks.begin() + 2, file.chunks.begin() + 4);
    ASSERT_EQ(head / 512, (head + 7) / 512);
    EXPECT_EQ(job.Output(), WithFreshCounts(file));
    EXPECT_EQ(job.state.bytesUnreadable, 512U);
}

TEST(AFileThatCannotBeReadAtAll, IsScannedAsZeros) {
    MemoryFile memory(UsualFile().Bytes());
    memory.BreakRange(0, 10'000);
    AviJob job(ByteVector(1));
    EXPECT_EQ(job.engine.RepairFrom(&memory), 1);
    EXPECT_EQ(job.Output(), ByteBuilder().Zeros(8).Text("idx1").Zeros(4).View());
    EXPECT_EQ(job.state.bytesUnreadable, UsualFile().Bytes().size());
}

// --- Files that cannot be made or written.

TEST(AWorkFolderThatCannotBeMade, LetsTheJobRunAndIsReported) {
    AviJob job(UsualFile().Bytes());
    WriteFile(job.folder / "plain", ByteVector(3));
    CRepairAVI engine({job.state, job.control, job.frontEnd}, job.folder / "plain");
    EXPECT_EQ(engine.Repair(), 1);
    EXPECT_EQ(job.state.writeFailed, 1);
    EXPECT_FALSE(job.state.writeFailure.empty());
    EXPECT_EQ(ReadFile(job.folder / "plain"), ByteVector(3));
    EXPECT_EQ(job.state.g_nAviVideoChunks, 2U);
}

// Makes files above a size unwritable for a while.
class FileSizeLimit {
  public:
    explicit FileSizeLimit(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before_);
        rlimit limit = before_;
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

  private:
    rlimit before_{};
    void (*handler_)(int);
};

TEST(AWriteThatFails, IsPassedOverAndReported) {
    const AviFile file = SoundFile(AviChunks(40, 20'000));
    AviJob job(file.Bytes());
    int result = 0;
    {
        const FileSizeLimit limit(400'000);
        result = job.Run();
    }
    EXPECT_EQ(result, 1);
    EXPECT_EQ(job.state.writeFailed, 1);
    EXPECT_FALSE(job.state.writeFailure.empty());
    EXPECT_EQ(job.state.g_nAviVideoChunks, 40U);
    EXPECT_EQ(ReadFile(job.folder / "damaged.avi"), file.Bytes());
}

// --- The work folder and its files.

TEST(TheWorkFolder, IsMadeWhereItDoesNotExistAndKeptWhereItDoes) {
    AviJob job(UsualFile().Bytes());
    ASSERT_FALSE(job.Exists(""));
    ASSERT_EQ(job.Run(), 1);
    WriteFile(job.folder / "$tp" / "other", ByteVector(3));
    CRepairAVI next({job.state, job.control, job.frontEnd}, job.folder / "$tp");
    ASSERT_EQ(next.Repair(), 1);
    EXPECT_TRUE(job.Exists("other"));
}

TEST(ThePathsOfTheWorkFiles, StandInTheJobsState) {
    AviJob job(UsualFile().Bytes());
    ASSERT_EQ(job.Run(), 1);
    EXPECT_EQ(job.state.g_strAviRepairedPath, (job.folder / "$tp" / "Repaired.avi").string());
    EXPECT_EQ(job.state.g_strAviIndexPath, (job.folder / "$tp" / "index").string());
    EXPECT_EQ(job.state.g_strAviThumbPath, (job.folder / "$tp" / "$tmp$.bmp").string());
}

}  // namespace
}  // namespace clipfix
