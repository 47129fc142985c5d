// What is done to the output when the pass is over.

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

#include "repairavi/avi_job.h"
#include "support/byte_builder.h"

namespace clipfix {
namespace {

using namespace test;
using test::AviChunk;  // the builder, and not the record of the same name

AviFile FileWithSuperIndexes() {
    AviFile file = SoundFile(AviChunks(4));
    file.streamLists[0] = AviStreamList(
        {}, AviPictureFormatBytes({}),
        {AviChunk("indx", ByteVector(40, 0x81)), AviChunk("strn", ByteVector{'V', 'i', 'd', 0})});
    return file;
}

TEST(ASuperIndex, OfAStreamListBecomesJunkOfTheSameSize) {
    const AviFile file = FileWithSuperIndexes();
    ByteVector expected = WithFreshCounts(file);
    const std::size_t at = FindText(expected, "indx");
    OverwriteText(expected, at, "JUNK");
    ASSERT_EQ(FindText(expected, "indx"), expected.size());
    EXPECT_EQ(Repaired(file.Bytes()), expected);
}

TEST(ASuperIndex, StaysBehindAnOdmlWordInTheOutput) {
    AviFile file = FileWithSuperIndexes();
    file.beforeMovie = {AviList(
        "INFO", {AviChunk("odml", ByteVector(4, 'x')), AviChunk("indx", ByteVector(6, 'x'))})};
    ByteVector expected = WithFreshCounts(file);
    // The one ahead of the word is neutralised, the one behind it is not.
    OverwriteText(expected, FindText(expected, "indx"), "JUNK");
    EXPECT_EQ(Repaired(file.Bytes()), expected);
}

// The search goes over the output's first bytes, whatever they are: pictures too.
TEST(ASuperIndex, IsSearchedInTheFirst333332BytesOfTheOutput) {
    for (std::size_t at = 333'324; at <= 333'334; ++at) {
        AviFile file = SoundFile({AviPicture(400'000, 1), AviSound(20, 2)});
        const std::size_t data = 312 + 12 + 8;
        OverwriteText(file.chunks[0].data, at - data, "indx");
        ByteVector expected = WithFreshCounts(file);
        if (at < 333'329) {
            OverwriteText(expected, at, "JUNK");
        }
        EXPECT_EQ(Repaired(file.Bytes()), expected) << at;
    }
}

TEST(TheAudioLength, IsPatchedInTheFirstSoundStreamOnly) {
    AviFile file = SoundFile(AviChunks(4));
    file.streamLists.push_back(AviAudioList());
    EXPECT_EQ(Repaired(file.Bytes()), WithFreshCounts(file));
    EXPECT_EQ(ReadLittle32(WithFreshCounts(file), 212 + 52), 2U);
    EXPECT_EQ(ReadLittle32(WithFreshCounts(file), 312 + 52), 99U);
}

TEST(TheAudioLength, IsNotPatchedWithoutASoundStream) {
    AviFile file = SoundFile({AviPicture(20, 1), AviPicture(22, 2)});
    file.streamLists.pop_back();
    EXPECT_EQ(Repaired(file.Bytes()), WithFreshCounts(file));
}

// Whatever the letters stand in: here in the pictures of a file without sound.
TEST(TheAudioLength, IsPatchedWhereverTheFirstAudsStands) {
    AviFile file = SoundFile({AviPicture(200, 1), AviPicture(22, 2)});
    file.streamLists.pop_back();
    OverwriteText(file.chunks[0].data, 40, "auds");
    ByteVector expected = WithFreshCounts(file);
    OverwriteLittle32(expected, FindText(expected, "auds") + 32, 0);
    EXPECT_EQ(Repaired(file.Bytes()), expected);
}

TEST(TheAudioLength, IsSearchedFrom176On) {
    // The letters in the picture stream, at 172 and at 176: its rectangle stands at 88 + 68.
    AviFile file = SoundFile({AviPicture(20, 1), AviPicture(22, 2), AviSound(24, 3)});
    for (const std::size_t at : {172U, 175U, 176U}) {
        ByteVector bytes = file.Bytes();
        ASSERT_EQ(FindText(bytes, "strf"), 164U);
        OverwriteText(bytes, at, "auds");
        ByteVector expected = WithFreshCounts(file);
        OverwriteText(expected, at, "auds");
        if (at == 176) {
            // Not the sound stream's, which stays, but the bytes 32 behind.
            OverwriteLittle32(expected, 212 + 52, 99);
            OverwriteLittle32(expected, 176 + 32, 1);
        }
        // biSize and biWidth are repaired where the letters made them too small; they did not.
        OverwriteLittle32(expected, 172, at == 172 ? 40 : ReadLittle32(expected, 172));
        if (at == 175) {
            OverwriteLittle32(expected, 172, 40);
        }
        EXPECT_EQ(Repaired(bytes), expected) << at;
    }
}

// The letters "auds" of the sound stream at each place around the search's end.
TEST(TheAudioLength, IsSearchedUpTo333323) {
    for (std::size_t at = 333'318; at <= 333'328; at += 2) {
        AviFile file = SoundFile({AviPicture(20, 1), AviPicture(22, 2), AviSound(24, 3)});
        // The sound list follows the picture list, whose last chunk is made as long as needed.
        const std::size_t size = at - 20 - 88 - 124 - 8;
        file.streamLists[0] = AviStreamList({}, AviPictureFormatBytes({}),
                                            {AviChunk("strd", ByteVector(size, 0x81))});
        ByteVector expected = WithFreshCounts(file);
        ASSERT_EQ(FindText(expected, "auds"), at);
        if (at >= 333'323) {
            OverwriteLittle32(expected, at + 32, 99);
        }
        EXPECT_EQ(Repaired(file.Bytes()), expected) << at;
    }
}

TEST(TheRiffSize, IsTheFilesLengthLessEightWhateverItWas) {
    AviFile file = SoundFile(AviChunks(4));
    ByteVector bytes = file.Bytes();
    OverwriteLittle32(bytes, 4, 0xDEADBEEF);
    OverwriteLittle32(bytes, 316, 0xDEADBEEF);
    EXPECT_EQ(Repaired(bytes), WithFreshCounts(file));
}

// An output that its own head says is longer than 4 GiB is cut at the low 32 bits of its length.
// Here a stream list leads back to the main header and so gives a block of almost 4 GiB, which is
// written whole: what the buffer holds of it, and then zeros.
struct FourGigabytes : public testing::Test {
    static constexpr std::uint64_t kBlock = 0x1'0000'0000 - 76;  // from 88 back to 12

    FourGigabytes() : job(Head()) {
        std::filesystem::resize_file(job.folder / "damaged.avi", 88 + kBlock - 8 + 1000);
    }
    static ByteVector Head() {
        AviFile file = SoundFile({});
        file.streamLists.pop_back();
        ByteVector bytes = file.Bytes();
        OverwriteLittle32(bytes, 88 + 80, static_cast<std::uint32_t>(12 - 88 - 84));
        return bytes;
    }
    void PutBehindTheBlock(ByteView bytes) {
        std::fstream out(job.folder / "damaged.avi", std::ios::in | std::ios::out);
        out.seekp(static_cast<std::streamoff>(88 + kBlock + 100));
        const std::string letters(bytes.begin(), bytes.end());
        out.write(letters.data(), static_cast<std::streamsize>(letters.size()));
    }
    AviJob job;
};

TEST_F(FourGigabytes, AreCutToTheLow32Bits) {
    ASSERT_EQ(job.Run(), 1);
    // 12 + 76 of heads, the block, and the empty index of 8.
    const std::uint64_t length = 88 + kBlock + 8;
    EXPECT_EQ(job.state.g_ullAviRiffBody, length - 8);
    ASSERT_EQ(length - 0x1'0000'0000, 20U);
    ByteBuilder expected;
    expected.Text("RIFF").Zeros(4).Text("AVI ").Text("LIST").Zeros(4);
    EXPECT_EQ(job.Output(), expected.View());
}

// Row 8 of the ways of giving up: the limit is tested at every tag of a known kind.
TEST_F(FourGigabytes, MakeTheNextTagGiveUp) {
    PutBehindTheBlock(ByteBuilder().Text("dc").View());
    EXPECT_EQ(job.Run(), 0);
    EXPECT_FALSE(job.Exists("Repaired.avi"));
    EXPECT_FALSE(job.Exists("index"));
    EXPECT_FALSE(job.Exists("$tmp$.bmp"));
}

TEST_F(FourGigabytes, DoNotMatterToATagOfAnUnknownKindWithoutDigits) {
    PutBehindTheBlock(ByteBuilder().Text("wb").View());
    EXPECT_EQ(job.Run(), 1);
}

// Places above 4 GiB in the damaged file.
TEST(AFileAboveFourGigabytes, GivesItsChunksFromBehindThem) {
    ByteVector bytes = SoundFile({AviPicture(20, 1), AviPicture(22, 2)}).Bytes();
    bytes.resize(FindText(bytes, "idx1"));
    const std::size_t junk = bytes.size();
    AppendText(bytes, "JUNK");
    AppendLittle32(bytes, 0xFFFFFFFE);
    AviJob job(bytes);
    const std::uint64_t far = junk + 8 + 0xFFFFFFFEU + 400'000;
    std::filesystem::resize_file(job.folder / "damaged.avi", far);
    std::ofstream out(job.folder / "damaged.avi", std::ios::binary | std::ios::app);
    const ByteVector behind =
        Join({AviChunk("00dc", AviFrame(24, 3)), AviChunk("01wb", AviFrame(26, 4)),
              AviChunk("idx1", ByteVector(16))});
    out << std::string(behind.begin(), behind.end());
    out.close();
    ASSERT_EQ(job.Run(), 1);
    EXPECT_EQ(job.Output(), WithFreshCounts(SoundFile({AviPicture(20, 1),
                                                       AviPicture(22, 2),
                                                       {"00dc", AviFrame(24, 3)},
                                                       {"01wb", AviFrame(26, 4)}})));
}

}  // namespace
}  // namespace clipfix
