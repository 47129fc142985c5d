// `LIST INFO`, `LIST odml`, `LIST rec `, `JUNK`, and the thumbnail.

#include <gtest/gtest.h>

#include "repairavi/avi_job.h"
#include "support/byte_builder.h"

namespace clipfix {
namespace {

using namespace test;
using test::AviChunk;  // the builder, and not the record of the same name

ByteVector Info(std::size_t size = 13) {
    return AviList("INFO", {AviChunk("ISFT", ByteVector(size, 'x'))});
}

TEST(AnInfoList, IsTakenOverWithAListOrJunkBehindIt) {
    AviFile file = UsualFile();
    file.beforeMovie = {Info()};
    EXPECT_EQ(Repaired(file.Bytes()), WithFreshCounts(file));

    AviFile withJunk = file;
    withJunk.beforeMovie.push_back(AviChunk("JUNK", ByteVector(20)));
    EXPECT_EQ(Repaired(withJunk.Bytes()), WithFreshCounts(file));
}

TEST(AnInfoList, IsNotBelievedWithAnythingElseBehindIt) {
    AviFile file = UsualFile();
    file.beforeMovie = {Info(), ByteVector(4, 0x80)};
    EXPECT_EQ(Repaired(file.Bytes()), WithFreshCounts(UsualFile()));
}

TEST(AnInfoList, ThatIsNotBelievedSpoilsTheNextOne) {
    AviFile file = UsualFile();
    file.beforeMovie = {Info(), ByteVector(4, 0x80), Info()};
    EXPECT_EQ(Repaired(file.Bytes()), WithFreshCounts(UsualFile()));
}

TEST(AnInfoList, IsTakenOverOnlyOnce) {
    AviFile file = UsualFile();
    file.beforeMovie = {Info(13), Info(15)};
    AviFile expected = UsualFile();
    expected.beforeMovie = {Info(13)};
    EXPECT_EQ(Repaired(file.Bytes()), WithFreshCounts(expected));
}

TEST(AnInfoList, BehindTheWordMoviIsSteppedInto) {
    AviFile file = UsualFile();
    file.behind = {Info(), AviChunk("JUNK", ByteVector(2))};
    EXPECT_EQ(Repaired(file.Bytes()), WithFreshCounts(UsualFile()));
}

TEST(AnInfoList, IsNotBelievedWhereItsSizeLeadsOutOfTheFileOrTheBuffer) {
    AviFile file = UsualFile();
    for (const std::uint32_t size : {0x7FFFFFFFU, 0xFFFFFFFFU, 0xFFFFFFF8U, 400'000U}) {
        ByteVector info = Info();
        OverwriteLittle32(info, 4, size);
        file.beforeMovie = {info};
        EXPECT_EQ(Repaired(file.Bytes()), WithFreshCounts(UsualFile())) << size;
    }
}

// A list that fits the file, but whose end lies behind the buffer's: what stands there counts as
// zero, and the list is not believed.
TEST(AnInfoList, IsNotBelievedWhereItReachesBeyondTheBuffer) {
    AviFile file = UsualFile();
    // The buffer begins eight bytes ahead of the list.
    for (const std::size_t size : {333'333U - 8 - 8 - 5, 333'333U - 8 - 8 - 3}) {
        ByteVector info = ByteBuilder()
                              .Text("LIST")
                              .Little32(static_cast<std::uint32_t>(size))
                              .Text("INFO")
                              .Fill(size - 4, 0x81)
                              .Take();
        file.beforeMovie = {info};
        AviFile expected = UsualFile();
        if (size == 333'333U - 21) {
            expected.beforeMovie = {info};
        }
        EXPECT_EQ(Repaired(file.Bytes()), WithFreshCounts(expected)) << size;
    }
}

TEST(AnInfoList, ForcesTheDefaultMainHeaderAheadOfIt) {
    ByteVector bytes = ByteBuilder().Text("RIFF1234AVI ").Take();
    AppendBytes(bytes, Info());
    AppendBytes(bytes, AviChunk("JUNK", ByteVector(80, 0x80)));
    AppendBytes(bytes, ByteVector(200, 0x80));
    const auto output = Repaired(bytes);
    ASSERT_TRUE(output);
    ASSERT_EQ(output->size(), 12U + 76 + Info().size() + 8);
    EXPECT_EQ(ReadLittle32(*output, 64), 1280U);
    EXPECT_EQ(FindText(*output, "LISTLIST"), output->size());
    EXPECT_EQ(FindText(*output, "INFO"), 96U);
}

TEST(AnOdmlList, IsNotTakenOver) {
    AviFile file = UsualFile();
    file.beforeMovie = {AviList("odml", {AviChunk("dmlh", ByteVector(248))})};
    EXPECT_EQ(Repaired(file.Bytes()), WithFreshCounts(UsualFile()));
}

TEST(ARecList, DisappearsAndItsChunksJoinTheOneMovieList) {
    const AviFile file = UsualFile();
    ByteVector movie = AviList("movi", {AviList("rec ", {AviChunk("00dc", AviFrame(20, 1)),
                                                         AviChunk("00dc", AviFrame(31, 2)),
                                                         AviChunk("01wb", AviFrame(8, 1003))})});
    AviFile heads = file;
    heads.chunks.clear();
    ByteVector bytes = heads.Bytes();
    bytes.resize(FindText(bytes, "movi") - 8);
    AppendBytes(bytes, movie);
    AppendBytes(bytes, AviChunk("idx1", ByteVector(16)));
    EXPECT_EQ(Repaired(bytes), WithFreshCounts(file));
}

// The last chunk of a group has "LIST" behind it, which no look-ahead knows: one is lost for each
// group but the last.
TEST(ARecList, LosesItsLastChunkWhenAnotherListFollows) {
    ByteVector bytes = UsualFile().Bytes();
    bytes.resize(FindText(bytes, "movi") - 8);
    std::vector<ByteVector> groups;
    AviFile expected = UsualFile();
    expected.chunks.clear();
    for (std::uint32_t i = 0; i < 4; ++i) {
        groups.push_back(AviList(
            "rec ", {AviChunk("00dc", AviFrame(20, i)), AviChunk("01wb", AviFrame(6, 100 + i))}));
        expected.chunks.push_back({"00dc", AviFrame(20, i)});
        if (i == 3) {
            expected.chunks.push_back({"01wb", AviFrame(6, 100 + i)});
        }
    }
    AppendBytes(bytes, AviList("movi", groups));
    AppendBytes(bytes, AviChunk("idx1", ByteVector(16)));
    EXPECT_EQ(Repaired(bytes), WithFreshCounts(expected));
}

TEST(AJunkChunk, IsLeftOutBetweenHeadsAndBetweenData) {
    AviFile file = UsualFile();
    ByteVector bytes = file.Bytes();
    const ByteVector junk = AviChunk("JUNK", Join({AviChunk("00dc", AviFrame(8)), AviVideoList()}));
    Insert(bytes, FindText(bytes, "01wb"), junk);
    Insert(bytes, FindText(bytes, "LIST", 220), junk);
    Insert(bytes, 12, junk);
    EXPECT_EQ(Repaired(bytes), WithFreshCounts(file));
}

// An odd size is not rounded, so the scan stands at the pad byte behind it.
TEST(AJunkChunk, OfOddSizeIsSkippedWithoutItsPadByte) {
    AviFile file = UsualFile();
    ByteVector bytes = file.Bytes();
    ByteVector junk = AviChunk("JUNK", ByteVector(21, 0x80));
    // With the pad byte being the first digit of a chunk the chunk is still met.
    junk.pop_back();
    Insert(bytes, FindText(bytes, "01wb"), junk);
    EXPECT_EQ(Repaired(bytes), WithFreshCounts(file));
}

// A `JUNK` whose size leads to the file's end or beyond is stepped into; one byte less and it is
// skipped with all that stands in it.
TEST(AJunkChunk, IsSteppedIntoWhenItsSizeReachesTheFilesEnd) {
    ByteVector bytes = UsualFile().Bytes();
    Insert(bytes, 12, ByteBuilder().Text("JUNK").Little32(0).View());
    const auto rest = static_cast<std::uint32_t>(bytes.size() - 12);
    OverwriteLittle32(bytes, 16, rest);
    EXPECT_EQ(Repaired(bytes), WithFreshCounts(UsualFile()));
    OverwriteLittle32(bytes, 16, rest - 1);
    EXPECT_EQ(Repaired(bytes),
              ByteBuilder().Text("RIFF").Zeros(4).Text("AVI idx1").Zeros(4).Take());
}

// --- The thumbnail: FF D8 FF to one byte behind FF D9.

ByteVector WithPicture(std::size_t start, std::size_t end) {
    ByteVector bytes(400'000, 0x80);
    OverwriteText(bytes, 0, "RIFF1234");
    Overwrite(bytes, start, ByteVector{0xFF, 0xD8, 0xFF});
    if (end != 0) {
        Overwrite(bytes, end, ByteVector{0xFF, 0xD9});
    }
    return bytes;
}

ByteVector ThumbnailOf(ByteView bytes, const std::string& name = "damaged.avi") {
    AviJob job(bytes, name);
    EXPECT_EQ(job.Run(), 1);
    return job.Thumbnail();
}

TEST(TheThumbnail, RunsOneByteBeyondItsEndMarker) {
    ByteVector expected{0xFF, 0xD8, 0xFF};
    expected.resize(100, 0x80);
    AppendBytes(expected, ByteVector{0xFF, 0xD9, 0x80});
    EXPECT_EQ(ThumbnailOf(WithPicture(1000, 1100)), expected);
}

TEST(TheThumbnail, IsEmptyWithoutAPicture) {
    EXPECT_TRUE(ThumbnailOf(WithPicture(333'333, 0)).empty());
    EXPECT_TRUE(ThumbnailOf(WithPicture(333'331, 0)).empty());  // cut by the buffer's end
    EXPECT_FALSE(ThumbnailOf(WithPicture(333'330, 0)).empty());
}

// Without an end the search runs to 333333 less the picture's start, as if that were the start of
// the buffer.
TEST(TheThumbnail, WithoutAnEndRunsToTheSearchsLimit) {
    EXPECT_EQ(ThumbnailOf(WithPicture(1000, 0)).size(), 333'333U - 1000 - 1000 + 3);
    EXPECT_EQ(ThumbnailOf(WithPicture(1000, 332'332)).size(), 332'332U - 1000 + 3);
    EXPECT_EQ(ThumbnailOf(WithPicture(1000, 332'333)).size(), 332'333U - 1000 + 3);
    EXPECT_EQ(ThumbnailOf(WithPicture(1000, 332'400)).size(), 332'333U - 1000 + 3);
    EXPECT_EQ(ThumbnailOf(WithPicture(8, 0)).size(), 333'333U - 8 - 8 + 3);
}

TEST(TheThumbnail, HasThreeBytesWhereTheLimitLiesBelowTheStart) {
    EXPECT_EQ(ThumbnailOf(WithPicture(200'000, 200'100)), (ByteVector{0xFF, 0xD8, 0xFF}));
}

// Behind junk in front the buffer begins at offset 1; both searches count from the word "RIFF".
TEST(TheThumbnail, OfAFileWithJunkInFrontIsSearchedFromTheRiffWordOn) {
    ByteVector bytes = WithPicture(1000, 1100);
    Insert(bytes, 0, ByteVector(500, 0x80));
    Overwrite(bytes, 10, ByteVector{0xFF, 0xD8, 0xFF, 0xD9});
    EXPECT_EQ(ThumbnailOf(bytes).size(), 103U);
    // The limit is 333333 less the place of the word, 499.
    bytes = WithPicture(332'500, 0);
    Insert(bytes, 0, ByteVector(500, 0x80));
    EXPECT_TRUE(ThumbnailOf(bytes).empty());
}

TEST(TheThumbnail, IsLookedForByTheLastLetterOfThePath) {
    for (const char* name : {"a.avi", "a.AVI", "noext-i", "a.avI"}) {
        EXPECT_EQ(ThumbnailOf(WithPicture(1000, 1100), name).size(), 103U) << name;
    }
    for (const char* name : {"a.divx", "a.xvid", "a", "i.av"}) {
        EXPECT_TRUE(ThumbnailOf(WithPicture(1000, 1100), name).empty()) << name;
    }
}

}  // namespace
}  // namespace clipfix
