#include "moviefile/structure_check.h"

#include <gtest/gtest.h>
#include <thread>

#include "atoms/reference_movie.h"
#include "base/fourcc.h"
#include "moviefile/movie_file.h"
#include "support/memory_file.h"
#include "support/mov_job.h"
#include "support/temp_folder.h"

namespace clipfix::test {
namespace {

// A structure check of bytes in memory.
struct Checked {
    MovJobWorld world;
    GFile movie{world.Context()};

    explicit Checked(ByteVector bytes) { Check(MemoryFile(std::move(bytes))); }
    explicit Checked(const MemoryFile& file) { Check(file); }

  private:
    void Check(const platform::ReadableFile& file) {
        StructureCheck(movie, world.Context()).RunOn(file);
    }
};

ByteVector SmallMoov() {
    return Moov({VideoTrak()});
}
ByteVector EmptyMoov() {
    return Moov({});
}
ByteVector Mdat(std::size_t payload) {
    return AtomOf("mdat", ByteVector(payload, 0x11));
}

constexpr std::size_t kSpan = 66020;

TEST(StructureCheck, FindsTheThreeAtomsOfAMovie) {
    const Checked checked(ByteBuilder()
                              .Bytes(AtomOf("ftyp", ByteBuilder().Text("qt  ").Big32(1).View()))
                              .Bytes(Mdat(500))
                              .Bytes(SmallMoov())
                              .Take());
    ASSERT_NE(checked.movie.pMoov, nullptr);
    EXPECT_EQ(checked.movie.GetTrackCount(), 1U);
    ASSERT_TRUE(checked.movie.pFtyp);
    EXPECT_EQ(checked.movie.pFtyp->size, 16U);
    EXPECT_EQ(checked.movie.pFtyp->ftyptype, FourCC("ftyp"));
    EXPECT_EQ(checked.movie.pFtyp->subtyp, FourCC("qt  "));
    ASSERT_TRUE(checked.movie.pMdat);
    EXPECT_EQ(checked.movie.pMdat->size, 508U);
    EXPECT_EQ(checked.world.state.g_strVideoCoderFormat, "AVC1_VIDEO_CODER_FORMAT");
    EXPECT_EQ(checked.world.state.g_lJobAlive, 1);
}

TEST(StructureCheck, FindsAMovieBehindRubbish) {
    const Checked checked(ByteBuilder().Fill(12345, 0xEE).Bytes(SmallMoov()).Take());
    EXPECT_NE(checked.movie.pMoov, nullptr);
}

// Eleven spans: 5718 rounds, so the jump is to 57 * 90 * 66044, far behind the end.
TEST(StructureCheck, JumpsFarWhereTenSpansShowNoMediaData) {
    ByteBuilder file;
    file.Zeros(10 * kSpan + 100).Bytes(SmallMoov()).Zeros(kSpan);
    const Checked checked(file.View());
    EXPECT_EQ(checked.movie.pMoov, nullptr);
    EXPECT_GT(checked.world.state.g_ullCheckedPos, file.Size());
}

TEST(StructureCheck, DoesNotJumpWhereMediaDataWasFound) {
    ByteBuilder file;
    file.Bytes(Mdat(8)).Zeros(10 * kSpan + 100).Bytes(SmallMoov()).Zeros(kSpan);
    EXPECT_NE(Checked(file.View()).movie.pMoov, nullptr);
}

TEST(StructureCheck, DoesNotJumpWithinTheFirstTenSpans) {
    ByteBuilder file;
    file.Zeros(10 * kSpan - 100).Bytes(SmallMoov()).Zeros(2 * kSpan);
    EXPECT_NE(Checked(file.View()).movie.pMoov, nullptr);
}

// 9183000 bytes are 72308 rounds (with one for the remainder); 723 * 90 * 66044 is 2515784 more
// than 2 to the power of 32.
TEST(StructureCheck, AJumpThatOverflowsLandsInsideTheFile) {
    ByteVector file(9183000);
    const ByteVector moov = SmallMoov();
    const auto place = [&](ByteVector into, std::size_t at) {
        std::copy(moov.begin(), moov.end(), into.begin() + static_cast<std::ptrdiff_t>(at));
        return into;
    };
    EXPECT_EQ(Checked(place(file, 2515784 - 1)).movie.pMoov, nullptr);
    EXPECT_NE(Checked(place(file, 2515784)).movie.pMoov, nullptr);
    EXPECT_NE(Checked(place(file, 9100000)).movie.pMoov, nullptr);
}

TEST(StructureCheck, AFileOfAHundredRoundsIsReadWhole) {
    ByteBuilder file;
    const ByteVector moov = SmallMoov();
    file.Zeros(12700 - moov.size()).Bytes(moov);
    EXPECT_NE(Checked(file.View()).movie.pMoov, nullptr);
}

// 1000 / 100 * 30 is 300; of 1099 bytes as well, because the division comes first.
TEST(StructureCheck, AFileTypeOfMoreThanThirtyPercentIsNotTaken) {
    for (const std::size_t fileSize : {1000U, 1099U}) {
        for (const std::uint32_t size : {300U, 301U}) {
            ByteVector file = ByteBuilder().Big32(size).Text("ftypisom").Take();
            file.resize(fileSize);
            const Checked checked(file);
            EXPECT_EQ(checked.movie.pFtyp.has_value(), size == 300) << fileSize;
        }
    }
}

TEST(StructureCheck, AFileTypeThatIsNotTakenIsNotJumpedOver) {
    ByteVector file = ByteBuilder().Big32(0x7FFFFFFF).Text("ftypisom").Bytes(SmallMoov()).Take();
    file.resize(3000);
    EXPECT_NE(Checked(file).movie.pMoov, nullptr);
}

TEST(StructureCheck, AFileTypeThatIsTakenIsJumpedOver) {
    const ByteVector inside = SmallMoov();
    ByteVector file =
        ByteBuilder().Bytes(AtomOf("ftyp", ByteBuilder().Text("isom").Bytes(inside).View())).Take();
    file.resize(100000);
    EXPECT_EQ(Checked(file).movie.pMoov, nullptr);
}

TEST(StructureCheck, OfAFileTypeThatReachesBehindTheBufferTakesWhatThereIs) {
    ByteVector file(kSpan - 10);
    AppendBytes(file, ByteBuilder().Big32(20000).Text("ftypqt  ").View());
    file.resize(400000);
    const Checked checked(file);
    ASSERT_TRUE(checked.movie.pFtyp);
    EXPECT_EQ(checked.movie.pFtyp->size, 20000U);
    EXPECT_EQ(checked.movie.pFtyp->subtyp, FourCC("qt  "));
}

TEST(StructureCheck, StepsIntoAWideAtomAndFindsTheMediaDataBehindIt) {
    const Checked checked(
        ByteBuilder().Bytes(AtomOf("wide", {})).Bytes(Mdat(100)).Bytes(SmallMoov()).Take());
    ASSERT_TRUE(checked.movie.pMdat);
    EXPECT_EQ(checked.movie.pMdat->size, 108U);
    EXPECT_NE(checked.movie.pMoov, nullptr);
}

TEST(StructureCheck, AFreeAtomIsJumpedOverWithWhatItHolds) {
    for (const char* code : {"free", "wide"}) {
        ByteVector file = AtomOf(code, SmallMoov());
        file.resize(100000);
        EXPECT_EQ(Checked(file).movie.pMoov, nullptr) << code;
        file = AtomOf("skip", SmallMoov());
        file.resize(100000);
        EXPECT_NE(Checked(file).movie.pMoov, nullptr);
    }
}

TEST(StructureCheck, MediaDataThatEndBehindTheFileAreLookedInto) {
    ByteVector file = ByteBuilder().Big32(2000).Text("mdat").Bytes(SmallMoov()).Take();
    file.resize(1999);
    const Checked refused(file);
    EXPECT_FALSE(refused.movie.pMdat);
    EXPECT_NE(refused.movie.pMoov, nullptr);
    file.resize(2000);
    const Checked taken(file);
    EXPECT_TRUE(taken.movie.pMdat);
    EXPECT_EQ(taken.movie.pMoov, nullptr);
}

TEST(StructureCheck, MediaDataOfSizeZeroAreRefused) {
    EXPECT_FALSE(Checked(ByteBuilder().Big32(0).Text("mdat").Zeros(100).Take()).movie.pMdat);
}

TEST(StructureCheck, OfALongSizeTheLow32BitsAreJumpedOver) {
    const ByteVector moov = SmallMoov();
    ByteBuilder file;
    file.Big32(1).Text("mdat").Big64(0x500000000 + 16 + moov.size());
    file.Bytes(moov).Bytes(EmptyMoov());
    const Checked checked(file.View());
    ASSERT_TRUE(checked.movie.pMdat);
    EXPECT_EQ(checked.movie.pMdat->size, 16 + moov.size());
    EXPECT_EQ(checked.movie.pMoov, nullptr) << "the tree inside the media data was jumped over";
}

TEST(StructureCheck, ALongSizeWhoseLow32BitsAreZeroMovesOneByteOn) {
    const Checked checked(
        ByteBuilder().Big32(1).Text("mdat").Big64(0x500000000).Bytes(SmallMoov()).Take());
    ASSERT_TRUE(checked.movie.pMdat);
    EXPECT_EQ(checked.movie.pMdat->size, 0U);
    EXPECT_NE(checked.movie.pMoov, nullptr);
}

TEST(StructureCheck, MediaDataGetThePlaceOfTheBufferAndNotTheirOwn) {
    ByteBuilder file;
    file.Zeros(kSpan + 500).Bytes(Mdat(100)).Bytes(SmallMoov());
    const Checked checked(file.View());
    ASSERT_TRUE(checked.movie.pMdat);
    EXPECT_EQ(checked.movie.pMdat->offset, kSpan);
}

TEST(StructureCheck, FindsAMovieAtEachPlaceAroundTheEndOfASpan) {
    for (std::size_t at = kSpan - 12; at <= kSpan + 12; ++at) {
        EXPECT_NE(Checked(ByteBuilder().Zeros(at).Bytes(SmallMoov()).Take()).movie.pMoov, nullptr)
            << at;
    }
}

TEST(StructureCheck, AMovieThatEndsBehindTheFileIsRefused) {
    ByteVector file = SmallMoov();
    EXPECT_NE(Checked(file).movie.pMoov, nullptr);
    file.pop_back();
    EXPECT_EQ(Checked(file).movie.pMoov, nullptr);
}

TEST(StructureCheck, TheWordMoovWithoutAKnownChildIsPassedOver) {
    ByteVector file = SmallMoov();
    std::copy_n("abcd", 4, file.begin() + 12);
    EXPECT_EQ(Checked(file).movie.pMoov, nullptr);
    for (const char* child : {"mvhd", "uuid", "free", "udta"}) {
        std::copy_n(child, 4, file.begin() + 12);
        EXPECT_NE(Checked(file).movie.pMoov, nullptr) << child;
    }
    EXPECT_NE(Checked(AtomOf("moov", VideoTrak())).movie.pMoov, nullptr);
}

TEST(StructureCheck, AKnownChildMayStandBehindSixteenBytes) {
    const ByteVector moov = AtomOf(
        "moov", ByteBuilder().Big32(8).Text("abcd").Bytes(Mvhd(1000, 1)).Bytes(VideoTrak()).View());
    EXPECT_NE(Checked(moov).movie.pMoov, nullptr);
}

TEST(StructureCheck, TheLastMovieStands) {
    const Checked two(
        ByteBuilder().Bytes(Moov({VideoTrak()})).Bytes(Moov({VideoTrak(), AacTrak()})).Take());
    EXPECT_EQ(two.movie.GetTrackCount(), 2U);
    const Checked cleared(ByteBuilder().Bytes(SmallMoov()).Bytes(EmptyMoov()).Take());
    EXPECT_EQ(cleared.movie.pMoov, nullptr);
}

// The walk goes on at the last byte of the atom, so that a word which begins there is seen.
TEST(StructureCheck, GoesOnAtTheLastByteOfAMovie) {
    ByteVector first = SmallMoov();
    // The last byte of the first atom becomes the first one of a size: 0x00 of 0x00000074.
    ByteVector second = EmptyMoov();
    ASSERT_EQ(second[0], 0);
    AppendZeros(first, 1);
    StoreBig32(first, 0, static_cast<std::uint32_t>(first.size()));
    first.insert(first.end(), second.begin() + 1, second.end());
    EXPECT_EQ(Checked(first).movie.pMoov, nullptr);
}

TEST(StructureCheck, TheRoundEndsWithAMovie) {
    // Both are in the first buffer; the media data behind get the second round's place.
    const ByteVector moov = SmallMoov();
    const Checked checked(ByteBuilder().Bytes(moov).Bytes(Mdat(50)).Take());
    ASSERT_TRUE(checked.movie.pMdat);
    EXPECT_EQ(checked.movie.pMdat->offset, moov.size() - 1);
}

TEST(StructureCheck, AMovieLargerThanABufferIsReadFromTheFile) {
    const ByteVector trak = VideoTrak();
    ByteBuilder payload;
    payload.Bytes(Mvhd(1000, 1)).Bytes(AtomOf("udta", ByteVector(200000, 1))).Bytes(trak);
    const Checked checked(ByteBuilder().Zeros(777).Bytes(AtomOf("moov", payload.View())).Take());
    EXPECT_NE(checked.movie.pMoov, nullptr);
}

TEST(StructureCheck, AnEmptyFileHasNoMovie) {
    const Checked checked(ByteVector{});
    EXPECT_EQ(checked.movie.pMoov, nullptr);
    EXPECT_EQ(checked.world.state.g_bJobFailed, 0);
}

TEST(StructureCheck, ReadsAShorterBufferWhereTheLongOneFails) {
    // The last kilobyte of the first buffer cannot be read; what stands behind it is found in the
    // second one.
    MemoryFile file(ByteBuilder().Bytes(SmallMoov()).Zeros(70000).Bytes(Mdat(10)).Take());
    file.BreakRange(65600, 100);
    const Checked checked(file);
    EXPECT_NE(checked.movie.pMoov, nullptr);
}

TEST(StructureCheck, ABufferThatCannotBeReadAtAllEndsTheWalk) {
    MemoryFile file(ByteBuilder().Zeros(200).Bytes(SmallMoov()).Zeros(2000).Take());
    file.BreakRange(100, 1);
    EXPECT_EQ(Checked(file).movie.pMoov, nullptr);
    EXPECT_LT(file.Reads(), 20);
}

// All rounds up to the tenth fail at the start; the far jump (723 * 90 * 66044, less 2 to the power
// of 32) lands behind the bad place.
TEST(StructureCheck, TheFarJumpLeadsOutOfAPlaceThatCannotBeRead) {
    ByteVector bytes(9183000);
    const ByteVector moov = SmallMoov();
    std::copy(moov.begin(), moov.end(), bytes.begin() + 3000000);
    MemoryFile file(bytes);
    file.BreakRange(100, 1);
    EXPECT_NE(Checked(file).movie.pMoov, nullptr);
}

TEST(ReadStructure, OpensTheCheckedPathAndNoOther) {
    const TempFolder folder;
    WriteFile(folder / "checked.mov", SmallMoov());
    WriteFile(folder / "other.mov", Moov({VideoTrak(), AacTrak()}));
    MovJobWorld world;
    world.state.g_strCheckedPath = (folder / "checked.mov").string();
    GFile movie(world.Context());
    movie.ReadStructure((folder / "other.mov").string());
    EXPECT_EQ(movie.GetTrackCount(), 1U);
    EXPECT_TRUE(movie.strPath.empty());
    EXPECT_EQ(world.state.g_ullCheckedSize, SmallMoov().size());
}

TEST(ReadStructure, AFileThatCannotBeOpenedFailsTheJobWithoutADialog) {
    MovJobWorld world;
    world.state.g_strCheckedPath = "/nowhere/at/all.mov";
    GFile movie(world.Context());
    movie.ReadStructure("");
    EXPECT_EQ(world.state.g_bJobFailed, 1);
    EXPECT_EQ(world.state.g_nMessageKind, 4);
    EXPECT_EQ(world.state.g_lJobAlive, 1);
    EXPECT_TRUE(world.frontEnd.messages.empty());
    EXPECT_EQ(world.frontEnd.textKeys,
              (std::vector<std::string>{"IDS_MOVERROR1", "IDS_INFORMATION"}));
    EXPECT_EQ(movie.pMoov, nullptr);
}

TEST(ReadStructure, ASecondCheckForgetsTheFirst) {
    const TempFolder folder;
    WriteFile(folder / "a.mov", ByteBuilder().Bytes(Mdat(10)).Bytes(SmallMoov()).Take());
    WriteFile(folder / "b.mov", ByteVector(100));
    MovJobWorld world;
    GFile movie(world.Context());
    world.state.g_strCheckedPath = (folder / "a.mov").string();
    movie.ReadStructure("");
    EXPECT_NE(movie.pMoov, nullptr);
    world.state.g_strCheckedPath = (folder / "b.mov").string();
    movie.ReadStructure("");
    EXPECT_EQ(movie.pMoov, nullptr);
    EXPECT_FALSE(movie.pMdat);
}

TEST(ReadStructure, ACancelEndsTheCheckAndASuspensionHoldsIt) {
    const TempFolder folder;
    WriteFile(folder / "a.mov", SmallMoov());
    MovJobWorld world;
    world.state.g_strCheckedPath = (folder / "a.mov").string();
    GFile movie(world.Context());
    world.control.Suspend(JobControl::Worker::Repair);
    std::thread worker([&] { movie.ReadStructure(""); });
    while (world.state.g_lJobAlive == 0) {
        std::this_thread::yield();
    }
    world.state.g_lJobAlive = 0;
    world.control.Resume(JobControl::Worker::Repair);
    worker.join();
    EXPECT_EQ(movie.pMoov, nullptr);
}

}  // namespace
}  // namespace clipfix::test
