// The two routes to a data chunk, row by row.

#include <gtest/gtest.h>

#include "repairavi/avi_job.h"
#include "support/byte_builder.h"

namespace clipfix {
namespace {

using namespace test;
using test::AviChunk;  // the builder, and not the record of the same name

// All up to and with the word "movi", of two usual streams; `behind` follows the word.
ByteVector FileWithData(ByteView behind) {
    ByteVector bytes = SoundFile({}).Bytes();
    bytes.resize(kMovieList + 12);
    AppendBytes(bytes, behind);
    return bytes;
}

// What the output is to be when just these chunks are taken.
ByteVector Output(const std::vector<AviDataChunk>& chunks) {
    return WithFreshCounts(SoundFile(chunks));
}

// The old index that ends a file; "id" of its head is what the last chunk needs behind it.
ByteVector OldIndex() {
    return AviChunk("idx1", ByteVector(16, 0x80));
}

// Chunks one after another, with an index behind them.
ByteVector Data(const std::vector<AviDataChunk>& chunks, ByteView behind = {}) {
    ByteVector bytes;
    for (const auto& chunk : chunks) {
        AppendBytes(bytes, AviChunk(chunk.id, chunk.data));
    }
    AppendBytes(bytes, behind);
    return bytes;
}

// --- What a chunk needs behind it.

struct Follower {
    const char* name;
    std::string letters;  // four
    bool firstRoute;      // whether each route takes the chunk, in the buffer
    bool tagRoute;
    bool firstRouteBeyond;  // and with the follower beyond the buffer's end
};

class AFollower : public testing::TestWithParam<Follower> {};

// The chunk is the third, so that the tag route takes it; the letters follow, and no chunk at all.
TEST_P(AFollower, DecidesOnTheTagRoute) {
    for (const std::size_t size : {22U, 400'000U}) {
        ByteVector data = Data({AviPicture(20, 1), AviPicture(21, 2), AviPicture(size, 3)});
        AppendText(data, GetParam().letters);
        AppendBytes(data, ByteVector(20, 0x80));
        std::vector<AviDataChunk> kept = {AviPicture(20, 1), AviPicture(21, 2)};
        if (GetParam().tagRoute) {
            kept.push_back(AviPicture(size, 3));
        }
        EXPECT_EQ(Repaired(FileWithData(data)), Output(kept)) << size;
    }
}

// Whether the first-chunk route took the first chunk shows in the size of the `movi` list and the
// output: the chunk that it refuses is taken by its tag where that route knows the follower, and
// then the word "movi" is counted twice.
TEST_P(AFollower, DecidesOnTheFirstChunkRoute) {
    for (const std::size_t size : {22U, 400'000U}) {
        const bool byWord = size == 22 ? GetParam().firstRoute : GetParam().firstRouteBeyond;
        ByteVector data = Data({AviPicture(size, 3)});
        AppendText(data, GetParam().letters);
        AppendBytes(data, ByteVector(20, 0x80));
        std::vector<AviDataChunk> kept;
        if (byWord || GetParam().tagRoute) {
            kept.push_back(AviPicture(size, 3));
        }
        EXPECT_EQ(Repaired(FileWithData(data)), Output(kept)) << size;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Rows, AFollower,
    testing::Values(Follower{"Picture", "00dc", true, true, true},
                    Follower{"PictureWithoutDigits",
                             "\x81\x82"
                             "dc",
                             true, true, true},
                    Follower{"UncompressedPicture", "00db", true, true, true},
                    Follower{"Sound", "01wb", true, true, true},
                    Follower{"OtherPicture", "00xx", false, true, true},
                    Follower{"Index", "idx1", true, true, true},
                    Follower{"IndexLettersOnly", "id\x81\x82", true, true, true},
                    Follower{"StandardIndex", "ix00", true, true, true},
                    Follower{"Junk", "JUNK", false, true, false},
                    Follower{"JunkCut", "JUN\x81", false, false, false},
                    Follower{"List", "LIST", false, false, false},
                    Follower{"Riff", "RIFF", false, false, false},
                    Follower{"Palette", "00pc", false, false, false},
                    Follower{"Text", "00tx", false, false, false},
                    Follower{"Noise", "\x81\x82\x83\x84", false, false, false},
                    Follower{"TagTooEarly", "dc\x81\x82", false, false, false},
                    Follower{"Zeros", std::string(4, '\0'), false, false, false}),
    [](const testing::TestParamInfo<Follower>& row) { return row.param.name; });

// --- Tags and digits.

TEST(ATag, CountsAsPictureOrSound) {
    const std::vector<AviDataChunk> chunks = {{"00dc", AviFrame(20, 1)},
                                              {"00db", AviFrame(21, 2)},
                                              {"99xx", AviFrame(22, 3)},
                                              {"01wb", AviFrame(23, 4)},
                                              {"50dc", AviFrame(24, 5)}};
    AviJob job(FileWithData(Data(chunks, OldIndex())));
    ASSERT_EQ(job.Run(), 1);
    EXPECT_EQ(job.state.g_nAviVideoChunks, 4U);
    EXPECT_EQ(job.state.g_nAviAudioChunks, 1U);
    EXPECT_EQ(job.Output(), Output(chunks));
}

TEST(AnIdWithoutTwoDigits, IsSteppedOver) {
    for (const char* id : {"a0dc", "0adc", "  dc", "/0dc", "0:dc", "00pc", "00DC"}) {
        const ByteVector data =
            Join({Data({AviPicture(20, 1), AviPicture(24, 2)}), AviChunk(id, AviFrame(20, 3)),
                  Data({AviPicture(22, 4)}, OldIndex())});
        std::vector<AviDataChunk> kept = {AviPicture(20, 1)};
        if (std::string_view(id).substr(2) == "dc") {
            kept.push_back(AviPicture(24, 2));  // behind it a tag will do, whatever is ahead of it
        }
        kept.push_back(AviPicture(22, 4));
        EXPECT_EQ(Repaired(FileWithData(data)), Output(kept)) << id;
    }
}

TEST(ASoundChunkFirst, IsTakenInTheOrderOfTheFile) {
    const std::vector<AviDataChunk> chunks = {AviSound(30, 1), AviPicture(20, 2), AviSound(31, 3)};
    EXPECT_EQ(Repaired(FileWithData(Data(chunks, OldIndex()))), Output(chunks));
}

// --- What follows the word "movi", where it is no chunk to be taken.

struct FirstId {
    const char* name;
    std::string id;
};

class BehindTheWord : public testing::TestWithParam<FirstId> {};

// The word alone is written, and the scan goes on behind it.
TEST_P(BehindTheWord, AnythingElseOpensTheDataAlone) {
    const std::vector<AviDataChunk> chunks = {AviPicture(20, 1), AviSound(21, 2)};
    const ByteVector data =
        Join({AviChunk(GetParam().id, ByteVector(8, 0x80)), Data(chunks, OldIndex())});
    ByteVector expected = Output(chunks);
    // The tag route, which then takes the first chunk, finds the word written and writes no other.
    EXPECT_EQ(Repaired(FileWithData(data)), expected);
}

INSTANTIATE_TEST_SUITE_P(Rows, BehindTheWord,
                         testing::Values(FirstId{"StandardIndex", "ix00"}, FirstId{"Junk", "JUNK"},
                                         FirstId{"Noise", "\x80\x81\x82\x83"},
                                         FirstId{"OneDigit", "0adc"}, FirstId{"OtherTag", "00pc"},
                                         FirstId{"Text", "01tx"}),
                         [](const testing::TestParamInfo<FirstId>& row) { return row.param.name; });

// --- The size.

TEST(AChunkOfSizeZero, IsTakenAndCounts) {
    const std::vector<AviDataChunk> chunks = {AviPicture(0), AviPicture(0), AviSound(0),
                                              AviPicture(20, 1)};
    EXPECT_EQ(Repaired(FileWithData(Data(chunks, OldIndex()))), Output(chunks));
}

TEST(AChunkOfOddSize, IsCopiedWithItsPadByteWhateverThatIs) {
    ByteVector data = Data({AviPicture(20, 1), AviPicture(21, 2)}, OldIndex());
    const std::size_t pad = 28 + 8 + 21;
    ASSERT_EQ(data[pad], 0);
    data[pad] = 0x99;
    ByteVector expected = Output({AviPicture(20, 1), AviPicture(21, 2)});
    expected[kMovieList + 12 + pad] = 0x99;
    EXPECT_EQ(Repaired(FileWithData(data)), expected);
}

// A candidate of odd size that is refused leaves its mark: the next chunk taken gets a size one too
// small in its index record, although its own size is even.
TEST(ARefusedChunkOfOddSize, MakesTheNextRecordOneTooSmall) {
    const ByteVector refused = ByteBuilder().Text("00dc").Little32(0x7FFFFFFF).Take();
    const ByteVector data =
        Join({Data({AviPicture(20, 1)}), Data({AviPicture(24, 2)}), AviChunk("ix00", ByteVector(2)),
              refused, Data({AviPicture(22, 3), AviPicture(26, 4)}, OldIndex())});
    const std::vector<AviDataChunk> kept = {AviPicture(20, 1), AviPicture(24, 2), AviPicture(22, 3),
                                            AviPicture(26, 4)};
    ByteVector expected = Output(kept);
    const std::size_t records = FindText(expected, "idx1") + 8;
    OverwriteLittle32(expected, records + std::size_t{2} * 16 + 12, 21);
    EXPECT_EQ(Repaired(FileWithData(data)), expected);
}

// And an odd size right at a chunk that is taken is the size as found.
TEST(AChunkOfOddSizeBehindARefusedOne, HasItsSizeAsFound) {
    const ByteVector refused = ByteBuilder().Text("00dc").Little32(0x7FFFFFFF).Take();
    const ByteVector data =
        Join({Data({AviPicture(20, 1)}), AviChunk("ix00", ByteVector(2)), refused,
              Data({AviPicture(23, 3), AviPicture(26, 4)}, OldIndex())});
    EXPECT_EQ(Repaired(FileWithData(data)),
              Output({AviPicture(20, 1), AviPicture(23, 3), AviPicture(26, 4)}));
}

// --- Chunks of sixteen bytes that read like index records.

// B[18] counts from the tag on the tag route: the data's bytes 12 to 15.
AviDataChunk SixteenBytes(std::size_t at, std::uint32_t value) {
    AviDataChunk chunk = AviPicture(16, 9);
    OverwriteLittle32(chunk.data, at, value);
    return chunk;
}

TEST(AChunkOfSixteenBytes, IsSkippedOnTheTagRouteWhenItsLastFourHold16) {
    const std::vector<AviDataChunk> others = {AviPicture(20, 1), AviPicture(22, 2)};
    for (const std::uint32_t value : {15U, 16U, 17U, 0x10000010U}) {
        const AviDataChunk sixteen = SixteenBytes(12, value);
        const ByteVector data = Data({others[0], others[1], sixteen, AviSound(24, 3)}, OldIndex());
        std::vector<AviDataChunk> kept = others;
        if (value != 16) {
            kept.push_back(sixteen);
        }
        kept.push_back(AviSound(24, 3));
        EXPECT_EQ(Repaired(FileWithData(data)), Output(kept)) << value;
    }
}

TEST(AChunkOfSixteenBytes, IsNotSkippedRightBehindARefusedChunkOfOddSize) {
    const ByteVector refused = ByteBuilder().Text("00dc").Little32(0x7FFFFFFF).Take();
    const AviDataChunk sixteen = SixteenBytes(12, 16);
    const ByteVector data =
        Join({Data({AviPicture(20, 1), AviPicture(22, 2)}), AviChunk("ix00", ByteVector(2)),
              refused, Data({sixteen, AviSound(24, 3)}, OldIndex())});
    ByteVector expected = Output({AviPicture(20, 1), AviPicture(22, 2), sixteen, AviSound(24, 3)});
    OverwriteLittle32(expected, FindText(expected, "idx1") + 8 + std::size_t{2} * 16 + 12, 15);
    EXPECT_EQ(Repaired(FileWithData(data)), expected);
}

// On the first-chunk route B[18] counts from the word: the data's bytes 6 to 9. The scan then goes
// on sixteen bytes behind the word's first letter, inside the chunk.
TEST(AFirstChunkOfSixteenBytes, IsSkippedWhenItsBytesSixToNineHold16) {
    const AviDataChunk sixteen = SixteenBytes(6, 16);
    const ByteVector data = Data({sixteen, AviPicture(20, 1), AviPicture(22, 2)}, OldIndex());
    EXPECT_EQ(Repaired(FileWithData(data)), Output({AviPicture(20, 1), AviPicture(22, 2)}));

    // Where the last four hold 16 it is taken: here that place is not looked at.
    const AviDataChunk other = SixteenBytes(12, 16);
    const ByteVector otherData = Data({other, AviPicture(20, 1), AviPicture(22, 2)}, OldIndex());
    EXPECT_EQ(Repaired(FileWithData(otherData)),
              Output({other, AviPicture(20, 1), AviPicture(22, 2)}));
}

// An old index of key frames is crossed record by record; records of other frames, which have
// flags 0, read like chunks of size 0 whose follower fails.
TEST(AnOldIndexAmongTheData, GivesNoChunks) {
    for (const std::uint32_t flags : {0x10U, 0U}) {
        ByteBuilder records;
        for (std::uint32_t i = 0; i < 50; ++i) {
            records.Text(i % 2 == 0 ? "00dc" : "01wb")
                .Little32(flags)
                .Little32(i * 100)
                .Little32(92);
        }
        const ByteVector data =
            Data({AviPicture(20, 1), AviPicture(22, 2)}, AviChunk("idx1", records.View()));
        EXPECT_EQ(Repaired(FileWithData(data)), Output({AviPicture(20, 1), AviPicture(22, 2)}))
            << flags;
    }
}

// --- The file's end.

// The place is two bytes into the chunk, so a chunk must end three bytes ahead of the file's end.
TEST(AChunkAtTheFilesEnd, IsTakenOnlyWithThreeBytesBehindIt) {
    for (std::size_t behind = 0; behind <= 6; ++behind) {
        ByteVector data = Data({AviPicture(20, 1), AviPicture(22, 2)});
        AppendText(data, std::string_view("idx1xx").substr(0, behind));
        std::vector<AviDataChunk> kept = {AviPicture(20, 1)};
        if (behind >= 3) {
            kept.push_back(AviPicture(22, 2));
        }
        EXPECT_EQ(Repaired(FileWithData(data)), Output(kept)) << behind;
    }
}

// On the first-chunk route the place is the word, four bytes ahead of the chunk, so any chunk that
// ends inside the file passes; what ends the file must be known to the look-ahead, and two letters
// are.
TEST(AFirstChunkAtTheFilesEnd, NeedsTwoLettersBehindIt) {
    for (std::size_t behind = 0; behind <= 6; ++behind) {
        ByteVector data = Data({AviPicture(22, 2)});
        AppendText(data, std::string_view("idx1xx").substr(0, behind));
        std::vector<AviDataChunk> kept;
        if (behind >= 2) {
            kept.push_back(AviPicture(22, 2));
        }
        EXPECT_EQ(Repaired(FileWithData(data)), Output(kept)) << behind;
    }
}

TEST(AFileWithoutAnIndex, LosesItsLastChunk) {
    AviFile file = SoundFile(AviChunks(6));
    file.withIndex = false;
    AviFile expected = file;
    expected.chunks.pop_back();
    EXPECT_EQ(Repaired(file.Bytes()), WithFreshCounts(expected));
}

// --- Damage.

TEST(ADestroyedHead, LosesItsChunkAndTheOneBeforeIt) {
    const std::vector<AviDataChunk> chunks = AviChunks(8);  // 8 pictures and 4 sounds
    const AviFile file = SoundFile(chunks);
    std::size_t at = kMovieList + 12;
    for (std::size_t damaged = 1; damaged < chunks.size(); ++damaged) {
        const std::size_t sizeBefore = chunks[damaged - 1].data.size();
        at += 8 + sizeBefore + sizeBefore % 2;
        ByteVector bytes = file.Bytes();
        Overwrite(bytes, at, ByteVector(8, 0x80));
        AviFile kept = file;
        const auto lost = kept.chunks.begin() + static_cast<std::ptrdiff_t>(damaged) - 1;
        kept.chunks.erase(lost, lost + 2);
        ByteVector expected = WithFreshCounts(kept);
        // A refused chunk of odd size takes one from the size in the next record.
        if (sizeBefore % 2 == 1 && damaged + 1 < chunks.size() &&
            chunks[damaged + 1].data.size() % 2 == 0) {
            const std::size_t record = FindText(expected, "idx1") + 8 + (damaged - 1) * 16;
            OverwriteLittle32(expected, record + 12, ReadLittle32(expected, record + 12) - 1);
        }
        EXPECT_EQ(Repaired(bytes), expected) << damaged;
    }
}

TEST(ADestroyedSize, LosesTheChunkOnly) {
    const std::vector<AviDataChunk> chunks = AviChunks(8);
    const AviFile file = SoundFile(chunks);
    const std::size_t third =
        kMovieList + 12 + 16 + chunks[0].data.size() + chunks[1].data.size() + 1;
    for (const std::uint32_t size : {0xFFFFFFFEU, 0x80000000U, 2U, 50U}) {
        ByteVector bytes = file.Bytes();
        OverwriteLittle32(bytes, third + 4, size);
        AviFile expected = file;
        expected.chunks.erase(expected.chunks.begin() + 2);
        EXPECT_EQ(Repaired(bytes), WithFreshCounts(expected)) << size;
    }
}

TEST(DamagedContents, AreCopiedAsTheyAre) {
    ByteVector bytes = SoundFile(AviChunks(8)).Bytes();
    Overwrite(bytes, kMovieList + 12 + 20, ByteVector(40, 0));
    ByteVector expected = Output(AviChunks(8));
    Overwrite(expected, kMovieList + 12 + 20, ByteVector(40, 0));
    EXPECT_EQ(Repaired(bytes), expected);
}

// --- Without the word, or without the list.

TEST(ADestroyedMovieWord, IsWrittenByTheFirstChunkOfTheTagRoute) {
    const std::vector<AviDataChunk> chunks = AviChunks(6);
    ByteVector bytes = SoundFile(chunks).Bytes();
    // The type is what makes the list a `movi` list, so its head is made up as well: the main
    // list's size then does not count the eight bytes less.
    OverwriteText(bytes, kMovieList + 8, "\x81\x82\x83\x84");
    EXPECT_EQ(Repaired(bytes), Output(chunks));
}

TEST(ADestroyedMovieListHead, IsMadeUpAtTheWord) {
    const std::vector<AviDataChunk> chunks = AviChunks(6);
    ByteVector bytes = SoundFile(chunks).Bytes();
    Overwrite(bytes, kMovieList, ByteVector(8, 0x80));
    EXPECT_EQ(Repaired(bytes), Output(chunks));
}

TEST(ADestroyedMovieListAndWord, AreMadeUpByTheFirstChunk) {
    const std::vector<AviDataChunk> chunks = AviChunks(6);
    ByteVector bytes = SoundFile(chunks).Bytes();
    Overwrite(bytes, kMovieList, ByteVector(12, 0x80));
    EXPECT_EQ(Repaired(bytes), Output(chunks));
}

// The word behind a list's head is the list's type, so both are met or neither. But a list that is
// met in the buffer's old contents may end at a refill point, behind which the true bytes hold no
// such word: the first chunk then writes the word, and it is counted a second time.
TEST(AMovieListOfTheOldContents, LetsTheWordBeCountedTwice) {
    // The buffer begins at 304, eight bytes ahead of the last stream list's end. `JUNK` there leads
    // to 8 ahead of the refill point at 666667, where the bytes of 333326 are shown again.
    ByteVector bytes = SoundFile({}).Bytes();
    bytes.resize(kMovieList);
    AppendText(bytes, "JUNK");
    AppendLittle32(bytes, 666'659 - kMovieList - 8);
    bytes.resize(333'326, 0x80);
    AppendText(bytes, "LIST1234movi");
    bytes.resize(666'667, 0x80);
    const std::vector<AviDataChunk> chunks = {AviPicture(20, 1), AviSound(21, 2)};
    AppendBytes(bytes, Data(chunks, OldIndex()));

    ByteVector expected = Output(chunks);
    OverwriteLittle32(expected, kMovieList + 4, ReadLittle32(expected, kMovieList + 4) + 4);
    EXPECT_EQ(Repaired(bytes), expected);
}

// --- Extended parts.

TEST(AnAvixPart, IsSteppedIntoAndItsChunksJoinTheOthers) {
    const std::vector<AviDataChunk> chunks = AviChunks(6);
    ByteVector bytes = SoundFile(chunks).Bytes();
    const std::vector<AviDataChunk> more = {AviPicture(50, 60), AviSound(51, 61),
                                            AviPicture(52, 62)};
    AppendBytes(bytes, AviRiff("AVIX", {AviMovieList(more), AviChunk("idx1", ByteVector(16))}));
    std::vector<AviDataChunk> all = chunks;
    all.insert(all.end(), more.begin(), more.end());
    EXPECT_EQ(Repaired(bytes), Output(all));
}

TEST(StandardIndexChunks, AreLeftOut) {
    const std::vector<AviDataChunk> chunks = {AviPicture(20, 1), AviSound(21, 2),
                                              AviPicture(22, 3)};
    ByteVector data = Data(chunks);
    AppendBytes(data, AviChunk("ix00", ByteVector(40, 0x80)));
    AppendBytes(data, AviChunk("ix01", ByteVector(40, 0x80)));
    AppendBytes(data, OldIndex());
    EXPECT_EQ(Repaired(FileWithData(data)), Output(chunks));
}

}  // namespace
}  // namespace clipfix
