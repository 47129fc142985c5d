// `LIST strl`: repairs, the walk to its end, and what is taken over.

#include <gtest/gtest.h>

#include "repairavi/avi_job.h"
#include "support/byte_builder.h"

namespace clipfix {
namespace {

using namespace test;
using test::AviChunk;  // the builder, and not the record of the same name

constexpr std::size_t kFirstList = 88;
constexpr std::size_t kSecondList = 88 + 124;

// --- Fields of the two stream lists, one at a time.

struct Row {
    const char* name;
    std::size_t at;  // in the file
    std::uint32_t found;
    std::uint32_t expected;
};

class StreamListField : public testing::TestWithParam<Row> {};

TEST_P(StreamListField, IsRepairedOrKept) {
    const AviFile file = UsualFile();
    ByteVector bytes = file.Bytes();
    OverwriteLittle32(bytes, GetParam().at, GetParam().found);
    ByteVector expected = WithFreshCounts(file);
    OverwriteLittle32(expected, GetParam().at, GetParam().expected);
    EXPECT_EQ(Repaired(bytes), expected);
}

constexpr std::uint32_t kXvid = 0x44495658;
constexpr std::uint32_t kAbcd = 0x64636261;

INSTANTIATE_TEST_SUITE_P(
    Picture, StreamListField,
    testing::Values(
        Row{"ListSize", kFirstList + 4, 1, 116}, Row{"Strh", kFirstList + 12, 0, 0x68727473},
        Row{"StrhSize", kFirstList + 16, 48, 56},
        Row{"Flags", kFirstList + 28, 0xFFFFFFFF, 0xFFFFFFFF}, Row{"Rate", kFirstList + 44, 0, 0},
        Row{"LengthIsCounted", 140, 1234, 2}, Row{"SuggestedSize", kFirstList + 56, 0, 0},
        Row{"FormatSizeZero", kFirstList + 80, 0, 40},
        Row{"FormatSizeHuge", kFirstList + 80, 0xFFFFFFFE, 40},
        Row{"BiSize", kFirstList + 84, 41, 40}, Row{"BiSizeZero", kFirstList + 84, 0, 40},
        Row{"WidthSmaller", kFirstList + 88, 639, 640}, Row{"WidthZero", kFirstList + 88, 0, 640},
        Row{"WidthLarger", kFirstList + 88, 641, 641},
        Row{"WidthNegativeIsLarge", kFirstList + 88, 0xFFFFFFFF, 0xFFFFFFFF},
        Row{"HeightSmaller", kFirstList + 92, 479, 480},
        Row{"HeightNegativeIsLarge", kFirstList + 92, 0xFFFFFE20, 0xFFFFFE20},
        Row{"PlanesZero", kFirstList + 96, 24U << 16U, (24U << 16U) | 1},
        Row{"PlanesTwo", kFirstList + 96, (24U << 16U) | 2, (24U << 16U) | 2},
        Row{"BitCountZero", kFirstList + 96, 1, (24U << 16U) | 1},
        Row{"PlanesAndBitCountZero", kFirstList + 96, 0, (24U << 16U) | 1},
        Row{"BitCount256", kFirstList + 96, (256U << 16U) | 1, (256U << 16U) | 1},
        Row{"CompressionZero", kFirstList + 100, 0, kXvid},
        Row{"CompressionOther", kFirstList + 100, kAbcd, kAbcd},
        Row{"HandlerZeroWithCompression", kFirstList + 24, 0, 0}),
    [](const testing::TestParamInfo<Row>& row) { return row.param.name; });

INSTANTIATE_TEST_SUITE_P(Sound, StreamListField,
                         testing::Values(Row{"ListSize", kSecondList + 4, 0xFFFFFFFF, 92},
                                         Row{"Strh", kSecondList + 12, kAbcd, 0x68727473},
                                         Row{"StrhSize", kSecondList + 16, 0, 56},
                                         Row{"Handler", kSecondList + 24, kAbcd, kAbcd},
                                         Row{"LengthIsCounted", kSecondList + 52, 77, 1},
                                         Row{"FormatSizeZero", kSecondList + 80, 0, 16},
                                         Row{"FormatSize18", kSecondList + 80, 18, 16},
                                         Row{"FormatTag", kSecondList + 84, 0xFFFFFFFF,
                                             0xFFFFFFFF}),
                         [](const testing::TestParamInfo<Row>& row) { return row.param.name; });

// --- Handler and compression.

struct Codes {
    const char* name;
    std::string handler;
    std::string compression;
    std::string expected;  // compression in the output; empty where the job gives up
};

class HandlerAndCompression : public testing::TestWithParam<Codes> {};

TEST_P(HandlerAndCompression, DecideWhatIsWritten) {
    AviFile file = UsualFile();
    file.streamLists[0] =
        AviStreamList({.fccHandler = GetParam().handler},
                      AviPictureFormatBytes({.biCompression = GetParam().compression}));
    AviFile expected = file;
    const auto output = Repaired(file.Bytes());
    if (GetParam().expected.empty()) {
        EXPECT_EQ(output, std::nullopt);
        return;
    }
    expected.streamLists[0] =
        AviStreamList({.fccHandler = GetParam().handler},
                      AviPictureFormatBytes({.biCompression = GetParam().expected}));
    EXPECT_EQ(output, WithFreshCounts(expected));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, HandlerAndCompression,
    testing::Values(
        Codes{"BothZeroGivesUp", kNone, kNone, ""}, Codes{"HandlerZero", kNone, "H264", "H264"},
        Codes{"Mjpg", "mjpg", "XVID", "MJPG"}, Codes{"MjpgZero", "mjpg", kNone, "MJPG"},
        Codes{"MjpgLowerCase", "mjpg", "mjpg", "MJPG"}, Codes{"MjpgRight", "mjpg", "MJPG", "MJPG"},
        Codes{"MjpgUpperCaseHandler", "MJPG", kNone, "MJPG"},
        Codes{"MjpgUpperCaseHandlerOther", "MJPG", "abcd", "abcd"},
        Codes{"Msvc", "MSVC", kNone, kNone}, Codes{"MsvcLowerCase", "msvc", kNone, kNone},
        Codes{"Dib", "DIB ", kNone, kNone}, Codes{"DibOther", "DIB ", "abcd", "abcd"},
        Codes{"DibLowerCase", "dib ", kNone, "dib "}, Codes{"Msvd", "MSVD", kNone, "MSVD"}),
    [](const testing::TestParamInfo<Codes>& row) { return row.param.name; });

// --- Giving up.

TEST(AStreamList, OfSoundAheadOfAnyPictureListIsRefused) {
    AviFile file = UsualFile();
    std::swap(file.streamLists[0], file.streamLists[1]);
    EXPECT_EQ(Repaired(file.Bytes()), std::nullopt);
    file.streamLists.push_back(file.streamLists[0]);
    file.streamLists.erase(file.streamLists.begin());  // pictures, then sound: the control
    EXPECT_NE(Repaired(file.Bytes()), std::nullopt);
}

TEST(AStreamList, IsRefusedWithoutStrfAtItsPlace) {
    const AviFile file = UsualFile();
    for (const std::size_t list : {kFirstList, kSecondList}) {
        for (std::size_t i = 0; i < 4; ++i) {
            ByteVector bytes = file.Bytes();
            bytes[list + 76 + i] = 'X';
            EXPECT_EQ(Repaired(bytes), std::nullopt);
        }
    }
}

TEST(AStreamList, WithAStreamHeaderOf48BytesIsRefusedAlthoughThatHeaderIsSound) {
    AviFile file = UsualFile();
    ByteVector header = AviStreamHeaderBytes({});
    header.resize(48);
    const ByteVector list =
        AviList("strl", {AviChunk("strh", header), AviChunk("strf", AviPictureFormatBytes({}))});
    file.streamLists[0] = list;
    EXPECT_EQ(Repaired(file.Bytes()), std::nullopt);
}

// --- The end of the block.

TEST(AStreamList, KeepsALargerPictureFormatWithALetterBehindIt) {
    AviFile file = UsualFile();
    ByteVector format = AviPictureFormatBytes({});
    AppendBytes(format, ByteVector(27, 0x81));  // 67 bytes, with a pad byte
    // The next chunk is looked for at the odd size, where the pad byte stands: no letter. So an odd
    // size is not believed, and an even one is.
    file.streamLists[0] = AviStreamList({}, format);
    const auto cut = Repaired(file.Bytes());
    ASSERT_TRUE(cut);
    EXPECT_EQ(ReadLittle32(*cut, kFirstList + 80), 40U);

    format.push_back(0x82);
    file.streamLists[0] = AviStreamList({}, format);
    EXPECT_EQ(Repaired(file.Bytes()), WithFreshCounts(file));
}

TEST(AStreamList, CutsASoundFormatToSixteenBytes) {
    AviFile file = UsualFile();
    ByteVector format = AviSoundFormatBytes(0x55);
    AppendLittle16(format, 12);
    AppendBytes(format, ByteVector(12, 0x81));
    AviStreamHeader header{.fccType = "auds", .fccHandler = kNone};
    file.streamLists[1] = AviStreamList(header, format);
    AviFile expected = UsualFile();
    format.resize(16);
    expected.streamLists[1] = AviStreamList(header, format);
    EXPECT_EQ(Repaired(file.Bytes()), WithFreshCounts(expected));
}

TEST(AStreamList, TakesOverNamesAndOtherChunksBehindTheFormat) {
    AviFile file = UsualFile();
    file.streamLists[0] =
        AviStreamList({}, AviPictureFormatBytes({}),
                      {AviChunk("strn", ByteVector{'V', 'i', 'd', 0}),
                       AviChunk("strd", AviFrame(9)), AviChunk("vprp", AviFrame(20))});
    EXPECT_EQ(Repaired(file.Bytes()), WithFreshCounts(file));
}

TEST(AStreamList, EndsAtAJunkChunkAndLosesWhatStandsBehindIt) {
    AviFile file = UsualFile();
    const ByteVector name = AviChunk("strn", ByteVector{'V', 'i', 'd', 0});
    const ByteVector junk = AviChunk("JUNK", ByteVector(30));
    AviFile expected = file;
    expected.streamLists[0] = AviStreamList({}, AviPictureFormatBytes({}), {name});
    // With another chunk, or a list, or nothing known behind the `JUNK`.
    file.streamLists[0] = AviStreamList({}, AviPictureFormatBytes({}), {name, junk, name});
    EXPECT_EQ(Repaired(file.Bytes()), WithFreshCounts(expected));
    file.streamLists[0] = AviStreamList({}, AviPictureFormatBytes({}), {name, junk});
    EXPECT_EQ(Repaired(file.Bytes()), WithFreshCounts(expected));
    file.streamLists[0] =
        AviStreamList({}, AviPictureFormatBytes({}), {name, junk, ByteVector(10, 0x80)});
    EXPECT_EQ(Repaired(file.Bytes()), WithFreshCounts(expected));
}

// A data chunk right behind a list reads like one more chunk of it when a letter stands behind
// that: it becomes a part of the block, and is not counted.
TEST(AStreamList, SwallowsADataChunkWithALetterBehindIt) {
    AviFile file = UsualFile();
    file.streamLists[1] = Join({AviAudioList(), AviChunk("01wb", AviFrame(12, 5))});
    ByteVector bytes = WithFreshCounts(file);
    OverwriteLittle32(bytes, kSecondList + 4, 92 + 20);
    EXPECT_EQ(Repaired(file.Bytes()), bytes);
}

// What stands between the block's end and the next list ends the block ahead of the last chunk,
// unless that is the format.
TEST(AStreamList, LosesItsLastChunkWhenNoLetterStandsBehindIt) {
    AviFile file = UsualFile();
    const ByteVector name = AviChunk("strn", ByteVector{'V', 'i', 'd', 0});
    file.streamLists[0] =
        AviStreamList({}, AviPictureFormatBytes({}), {name, ByteVector(10, 0x80)});
    AviFile expected = UsualFile();
    EXPECT_EQ(Repaired(file.Bytes()), WithFreshCounts(expected));

    // The format itself is kept: its size is known.
    file.streamLists[0] = AviStreamList({}, AviPictureFormatBytes({}), {ByteVector(10, 0x80)});
    EXPECT_EQ(Repaired(file.Bytes()), WithFreshCounts(expected));
}

TEST(AStreamList, OfAnotherKindIsTakenOverAndCounted) {
    AviFile file = UsualFile();
    file.streamLists.push_back(
        AviStreamList({.fccType = "txts", .fccHandler = kNone}, ByteVector(8, 0x81)));
    EXPECT_EQ(Repaired(file.Bytes()), WithFreshCounts(file));
}

TEST(AStreamList, IsTakenOverAlsoAmongTheData) {
    AviFile file = UsualFile();
    file.chunks = {AviPicture(20, 1), AviPicture(31, 2)};
    file.withIndex = false;
    ByteVector bytes = file.Bytes();
    const std::size_t end = bytes.size();
    // The second chunk needs a follower; then a stream list, and two more chunks.
    AppendBytes(bytes, AviChunk("JUNK", ByteVector(2)));
    AppendBytes(bytes, AviAudioList());
    AppendBytes(bytes, ByteVector(40, 0x80));
    AppendBytes(bytes, AviChunk("01wb", AviFrame(12, 5)));
    AppendBytes(bytes, AviChunk("idx1", ByteVector(16)));

    const auto output = Repaired(bytes);
    ASSERT_TRUE(output);
    // The list stands in the output where it was met.
    ByteVector expected = bytes;
    expected.resize(end);
    AppendBytes(expected, AviAudioList());
    AppendBytes(expected, AviChunk("01wb", AviFrame(12, 5)));
    // The list is counted neither in the list's size nor in the offset of the chunk behind it.
    ByteBuilder records;
    records.Text("00dc").Little32(16).Little32(4).Little32(20);
    records.Text("00dc").Little32(16).Little32(4 + 28).Little32(31);
    records.Text("01wb").Little32(16).Little32(4 + 28 + 40).Little32(12);
    AppendBytes(expected, AviChunk("idx1", records.View()));
    OverwriteLittle32(expected, 4, static_cast<std::uint32_t>(expected.size() - 8));
    OverwriteLittle32(expected, 48, 2);
    OverwriteLittle32(expected, 56, 3);
    OverwriteLittle32(expected, 140, 2);
    OverwriteLittle32(expected, kSecondList + 52, 1);
    OverwriteLittle32(expected, 316, 4 + 28 + 40 + 20);
    EXPECT_EQ(*output, expected);
}

// --- Sizes near 2^32.

// The list's block may come out empty: here the format's size leads back to the list's own head,
// where a letter stands.
TEST(AStreamList, WhoseFormatLeadsBackToItselfGivesAnEmptyBlock) {
    AviFile file = UsualFile();
    ByteVector bytes = file.Bytes();
    OverwriteLittle32(bytes, kFirstList + 80, 0U - 84);
    AviJob job(bytes);
    ASSERT_EQ(job.Run(), 1);
    // The place moves on by almost 4 GiB, behind the file's end: no stream, no data.
    EXPECT_EQ(job.state.g_nAviVideoChunks, 0U);
}

// --- Walks that never end.

class AnEndlessWalk : public testing::TestWithParam<ByteVector> {};

TEST_P(AnEndlessWalk, StandsStillUntilTheCancelAndLeavesNoFile) {
    AviFile file = UsualFile();
    file.streamLists.push_back(GetParam());
    file.beforeMovie = {ByteVector(40, 0x80)};
    AviJob job(file.Bytes());
    int calls = 0;
    job.engine.OnStandstill([&] {
        ++calls;
        EXPECT_TRUE(job.engine.StandsStill());
        job.state.g_bAviContinue = 0;
        job.control.Wake();
    });
    EXPECT_EQ(job.Run(), 1);
    EXPECT_EQ(calls, 1);
    EXPECT_TRUE(job.engine.StandsStill());
    EXPECT_FALSE(job.engine.StandstillReason().empty());
    EXPECT_FALSE(job.Exists("Repaired.avi"));
    EXPECT_FALSE(job.Exists("index"));
    EXPECT_FALSE(job.Exists("$tmp$.bmp"));
}

ByteVector WithFormatSize(ByteVector list, std::uint32_t size) {
    OverwriteLittle32(list, 80, size);
    return list;
}

INSTANTIATE_TEST_SUITE_P(
    Lists, AnEndlessWalk,
    testing::Values(
        // A format with no letter behind it, in a stream that is neither picture nor sound.
        AviStreamList({.fccType = "txts", .fccHandler = kNone}, ByteVector(8, 0x81)),
        // A format whose size leads to its own id.
        WithFormatSize(AviStreamList({.fccType = "txts", .fccHandler = kNone}, ByteVector(8, 0x81)),
                       0U - 8),
        // Two chunks of which the second leads back to the first.
        AviStreamList({.fccType = "txts", .fccHandler = kNone}, ByteVector(8, 0x81),
                      {ByteBuilder().Text("abcd").Little32(0U - 24).Take()})));

TEST(AWalkThatEnds, DoesNotStandStill) {
    AviFile file = UsualFile();
    file.streamLists.push_back(
        AviStreamList({.fccType = "txts", .fccHandler = kNone}, ByteVector(8, 0x81)));
    AviJob job(file.Bytes());
    job.engine.OnStandstill([] { FAIL(); });
    EXPECT_EQ(job.Run(), 1);
    EXPECT_FALSE(job.engine.StandsStill());
}

}  // namespace
}  // namespace clipfix
