// RIFF head, "AVI " and main header: what is taken over, what is repaired, what is made up.

#include <gtest/gtest.h>

#include "repairavi/avi_job.h"
#include "support/byte_builder.h"

namespace clipfix {
namespace {

using namespace test;
using test::AviChunk;  // the builder, and not the record of the same name

// Offsets in a file of the usual two streams.
constexpr std::size_t kMainHeader = 12;
constexpr std::size_t kFirstStreamList = 88;

// The 76 bytes that stand where no main header was found, but for the three fields that the end of
// the job fills in.
ByteVector DefaultMainHeader(std::uint32_t listSize, std::uint32_t frames, std::uint32_t streams) {
    return ByteBuilder()
        .Text("LIST")
        .Little32(listSize)
        .Text("hdrlavih")
        .Little32(56)
        .Little32(41666)
        .Little32(3241472)
        .Little32(0)
        .Little32(0x00010010)
        .Little32(frames)
        .Little32(0)
        .Little32(streams)
        .Little32(633600)
        .Little32(1280)
        .Little32(720)
        .Zeros(16)
        .Take();
}

TEST(AFileWithNoMarker, BecomesEightZerosAndAnEmptyIndex) {
    const ByteVector empty = ByteBuilder().Zeros(8).Text("idx1").Zeros(4).Take();
    for (const std::size_t size : {101U, 5000U, 400'000U}) {
        AviJob job(ByteVector(size, 0x80));
        EXPECT_EQ(job.Run(), 1) << size;
        EXPECT_EQ(job.Output(), empty) << size;
        EXPECT_EQ(job.state.g_ullAviRiffBody, 8U);
    }
}

TEST(AFileOfOneHundredBytes, IsRefusedAndOneOfOneHundredAndOneIsNot) {
    EXPECT_EQ(Repaired(ByteVector(0)), std::nullopt);
    EXPECT_EQ(Repaired(ByteVector(100)), std::nullopt);
    EXPECT_NE(Repaired(ByteVector(101)), std::nullopt);
}

// "RIFF" alone: eight bytes are written, the length does not count them, and the index lands at 8.
// The patches at 4 and then, for a `movi` list that is not there, at 4 again.
TEST(AFileWithRiffOnly, KeepsTheWord) {
    ByteVector bytes = ByteBuilder().Text("RIFF").Little32(0x11223344).Fill(200, 0x80).Take();
    EXPECT_EQ(Repaired(bytes), ByteBuilder().Text("RIFF").Zeros(4).Text("idx1").Zeros(4).Take());
}

TEST(AFileWithRiffAndAviOnly, KeepsBoth) {
    ByteVector bytes = ByteBuilder().Text("RIFF").Little32(7).Text("AVI ").Fill(200, 0x80).Take();
    // hdrl size 0 goes to 16, which is inside the index: the patches do not ask.
    EXPECT_EQ(Repaired(bytes),
              ByteBuilder().Text("RIFF").Zeros(4).Text("AVI idx1").Zeros(4).Take());
}

TEST(JunkInFront, DoesNotHideTheHead) {
    const AviFile file = UsualFile();
    for (const std::size_t junk : {1U, 3U, 700U, 333'330U, 333'334U, 1'000'000U}) {
        ByteVector bytes = file.Bytes();
        Insert(bytes, 0, ByteVector(junk, 0x80));
        if (junk == 333'330) {
            continue;  // "RIFF" would lie across the refill point
        }
        EXPECT_EQ(Repaired(bytes), WithFreshCounts(file)) << junk;
    }
}

TEST(ADestroyedRiffWord, IsMadeUpAtTheAviWord) {
    const AviFile file = UsualFile();
    ByteVector bytes = file.Bytes();
    Overwrite(bytes, 0, ByteVector(8, 0x80));
    EXPECT_EQ(Repaired(bytes), WithFreshCounts(file));
}

TEST(DestroyedRiffAndAviWords, AreMadeUpAtTheMainHeaderWhichIsKept) {
    const AviFile file = UsualFile();
    ByteVector bytes = file.Bytes();
    Overwrite(bytes, 0, ByteVector(12, 0x80));
    EXPECT_EQ(Repaired(bytes), WithFreshCounts(file));
}

TEST(AnyList, MakesUpTheHeadsThatAreMissing) {
    ByteVector bytes = ByteBuilder().Text("LIST").Little32(4).Text("rec ").Fill(200, 0x80).Take();
    EXPECT_EQ(Repaired(bytes),
              ByteBuilder().Text("RIFF").Zeros(4).Text("AVI idx1").Zeros(4).Take());
}

TEST(ADestroyedMainHeader, IsReplacedByTheDefaultAtTheStreamList) {
    const AviFile file = UsualFile();
    ByteVector bytes = file.Bytes();
    Overwrite(bytes, kMainHeader, ByteVector(76, 0x80));
    ByteVector expected = WithFreshCounts(file);
    Overwrite(expected, kMainHeader, DefaultMainHeader(kMovieList - 20, 2, 2));
    EXPECT_EQ(Repaired(bytes), expected);
}

// The default header has a size, but the pictures are not made to fit it.
TEST(ADestroyedMainHeader, LeavesThePictureSizeOfTheStreamAlone) {
    AviFile file = UsualFile();
    AviPictureFormat format;
    format.biWidth = 1;
    format.biHeight = 2;
    file.streamLists[0] = AviStreamList({}, AviPictureFormatBytes(format));
    ByteVector bytes = file.Bytes();
    Overwrite(bytes, kMainHeader, ByteVector(76, 0x80));
    const auto output = Repaired(bytes);
    ASSERT_TRUE(output);
    EXPECT_EQ(ReadLittle32(*output, kFirstStreamList + 88), 1U);
    EXPECT_EQ(ReadLittle32(*output, kFirstStreamList + 92), 2U);
}

TEST(ALateMainHeader, IsRefusedBehindTheDefaultOne) {
    AviFile file = UsualFile();
    ByteVector bytes = file.Bytes();
    Overwrite(bytes, kMainHeader, ByteVector(76, 0x80));
    // The real one behind the stream lists: it is stepped into, and not written.
    const ByteVector whole = file.Bytes();
    const ByteVector late(whole.begin() + 12, whole.begin() + 88);
    Insert(bytes, kMovieList, late);
    ByteVector expected = WithFreshCounts(file);
    Overwrite(expected, kMainHeader, DefaultMainHeader(kMovieList - 20, 2, 2));
    EXPECT_EQ(Repaired(bytes), expected);
}

TEST(ASecondMainHeader, IsNotTakenOver) {
    const AviFile file = UsualFile();
    ByteVector bytes = file.Bytes();
    const ByteVector first(bytes.begin() + 12, bytes.begin() + 88);
    Insert(bytes, kFirstStreamList, first);
    EXPECT_EQ(Repaired(bytes), WithFreshCounts(file));
}

TEST(TheFrameTime, IsTheOneFoundAndNotTheOneRepaired) {
    AviFile file = UsualFile();
    file.mainHeader.dwMicroSecPerFrame = 5;
    AviJob job(file.Bytes());
    ASSERT_EQ(job.Run(), 1);
    EXPECT_EQ(job.state.g_dwAviMicroSecPerFrame, 5U);
    EXPECT_EQ(ReadLittle32(job.Output(), 32), 41666U);
}

TEST(TheCodec, ComesFromItsPlaceInTheHeadWhereNoStreamListIsMet) {
    ByteVector bytes = ByteBuilder().Text("RIFF1234AVI ").Fill(100, 0x80).Text("abcd").Take();
    bytes.resize(200, 0x80);
    AviJob job(bytes);
    ASSERT_EQ(job.Run(), 1);
    EXPECT_EQ(job.state.g_szAviCodec, "abcd");
}

TEST(TheCodec, IsTheHandlerOfTheLastPictureStream) {
    AviFile file = UsualFile();
    file.streamLists.push_back(
        AviStreamList({.fccHandler = "abcd"}, AviPictureFormatBytes({.biCompression = "efgh"})));
    AviJob job(file.Bytes());
    ASSERT_EQ(job.Run(), 1);
    EXPECT_EQ(job.state.g_szAviCodec, "abcd");
}

// One field of the main header at a time.
struct MainHeaderRow {
    const char* name;
    std::size_t at;  // from the "LIST"
    std::uint32_t found;
    std::uint32_t expected;
};

class MainHeaderField : public testing::TestWithParam<MainHeaderRow> {};

TEST_P(MainHeaderField, IsRepairedOrKept) {
    const MainHeaderRow& row = GetParam();
    const AviFile file = UsualFile();
    ByteVector bytes = file.Bytes();
    OverwriteLittle32(bytes, kMainHeader + row.at, row.found);
    ByteVector expected = WithFreshCounts(file);
    OverwriteLittle32(expected, kMainHeader + row.at, row.expected);
    if (row.at == 52 || row.at == 56) {
        // The picture format is never smaller than the main header.
        const std::size_t inFormat = kFirstStreamList + (row.at == 52 ? 88 : 92);
        const std::uint32_t had = ReadLittle32(expected, inFormat);
        OverwriteLittle32(expected, inFormat, std::max(had, row.expected));
    }
    EXPECT_EQ(Repaired(bytes), expected);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, MainHeaderField,
    testing::Values(
        MainHeaderRow{"Avih", 12, 0x41414141, 0x68697661},
        MainHeaderRow{"AvihKept", 12, 0x68697661, 0x68697661}, MainHeaderRow{"Size57", 16, 57, 56},
        MainHeaderRow{"SizeZero", 16, 0, 56}, MainHeaderRow{"FrameTimeZero", 20, 0, 41666},
        MainHeaderRow{"FrameTime3000", 20, 3000, 41666},
        MainHeaderRow{"FrameTime3001", 20, 3001, 3001},
        MainHeaderRow{"FrameTimeHuge", 20, 0xFFFFFFFF, 0xFFFFFFFF},
        MainHeaderRow{"RateZeroBecomesTheSizeOfAvih", 24, 0, 56},
        MainHeaderRow{"RateOne", 24, 1, 1}, MainHeaderRow{"Padding", 28, 0x12345678, 0x12345678},
        MainHeaderRow{"FlagsLowestByteOnly", 32, 0x00000111, 0x00000110},
        MainHeaderRow{"FlagsZero", 32, 0, 0x10},
        MainHeaderRow{"FlagsUpperBytesStay", 32, 0xABCDEF10, 0xABCDEF10},
        MainHeaderRow{"FlagsAllSet", 32, 0xFFFFFFFF, 0xFFFFFF10},
        MainHeaderRow{"TotalFramesAreCounted", 36, 99, 2},
        MainHeaderRow{"InitialFramesOne", 40, 1, 0},
        MainHeaderRow{"InitialFramesHighByte", 40, 0x01000000, 0},
        MainHeaderRow{"StreamsAreCounted", 44, 9, 2}, MainHeaderRow{"SuggestedSizeZero", 48, 0, 0},
        MainHeaderRow{"WidthZero", 52, 0, 320}, MainHeaderRow{"WidthOne", 52, 1, 1},
        MainHeaderRow{"WidthLarger", 52, 1000, 1000}, MainHeaderRow{"HeightZero", 56, 0, 256},
        MainHeaderRow{"HeightOne", 56, 1, 1}, MainHeaderRow{"HeightLarger", 56, 1000, 1000},
        MainHeaderRow{"Reserved", 60, 0xCAFEBABE, 0xCAFEBABE},
        MainHeaderRow{"ReservedLast", 72, 0xCAFEBABE, 0xCAFEBABE},
        MainHeaderRow{"ListSizeIsPatched", 4, 12345, kMovieList - 20}),
    [](const testing::TestParamInfo<MainHeaderRow>& row) { return row.param.name; });

// A main header that the buffer's end cuts: what lies behind it is written as zero, and repairs of
// it are dropped. The buffer of a file that begins with "RIFF" ends at 333333.
TEST(AMainHeaderAtTheBuffersEnd, IsWrittenWithZerosForWhatLiesBehind) {
    for (const std::size_t inside : {12U, 15U, 22U, 33U, 54U, 75U, 76U}) {
        ByteVector bytes = ByteBuilder().Text("RIFF1234AVI ").Take();
        bytes.resize(333'333 - inside, 0x80);
        AviMainHeader header;
        header.dwMicroSecPerFrame = 0;
        header.dwWidth = 0;
        AppendBytes(bytes, ByteBuilder().Text("LIST1234hdrl").View());
        AppendBytes(bytes, AviChunk("avih", AviMainHeaderBytes(header)));
        bytes.resize(400'000, 0x80);

        header.dwMicroSecPerFrame = 41666;
        header.dwWidth = 320;
        header.dwFlags = 0x910;
        header.dwTotalFrames = 0;
        header.dwStreams = 0;
        ByteVector block = ByteBuilder().Text("LIST").Zeros(4).Text("hdrl").Take();
        AppendBytes(block, AviChunk("avih", AviMainHeaderBytes(header)));
        block.resize(inside);
        block.resize(76);
        const auto output = Repaired(bytes);
        ASSERT_TRUE(output);
        ASSERT_EQ(output->size(), 12U + 76 + 8);
        EXPECT_EQ(ByteVector(output->begin() + 12, output->begin() + 88), block) << inside;
    }
}

}  // namespace
}  // namespace clipfix
