#include "atoms/sample_tables.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/fourcc.h"
#include "support/atom_builder.h"

namespace clipfix {
namespace {

using test::ByteBuilder;
using test::Table;
using ::testing::ElementsAre;

std::vector<std::uint32_t> SyncSamples(std::uint32_t sampleCount, std::uint32_t sampleSync) {
    CStss stss;
    stss.Fill(sampleCount, sampleSync);
    EXPECT_EQ(stss.numberOfEntries, stss.entries.size());
    EXPECT_EQ(stss.size, stss.entries.size() * 4 + 16);
    EXPECT_EQ(stss.data.size(), stss.size);
    return stss.entries;
}

TEST(EveryTable, IsEmptyAndWithoutAnImageWhenOnlyMade) {
    EXPECT_EQ(CStts().size, 0U);
    EXPECT_TRUE(CStts().data.empty());
    EXPECT_EQ(CStsc().size, 0U);
    EXPECT_TRUE(CStsc().data.empty());
    EXPECT_EQ(CStsz().size, 0U);
    EXPECT_TRUE(CStsz().data.empty());
    EXPECT_EQ(CStco().size, 0U);
    EXPECT_TRUE(CStco().data.empty());
    EXPECT_EQ(CStss().size, 0U);
    EXPECT_TRUE(CStss().data.empty());
    EXPECT_EQ(CCtts().size, 0U);
    EXPECT_TRUE(CCtts().data.empty());
}

TEST(CStts, ReadsItsRuns) {
    const ByteVector bytes = Table("stts", 2, {10, 1001, 1, 500});
    const CStts stts(AtomBlock::Of(bytes));
    EXPECT_EQ(stts.size, 32U);
    EXPECT_EQ(stts.numberOfEntries, 2U);
    ASSERT_EQ(stts.entries.size(), 2U);
    EXPECT_EQ(stts.entries[1].sampleCount, 1U);
    EXPECT_EQ(stts.entries[1].sampleDuration, 500U);
    EXPECT_EQ(stts.GetFirstSampleDuration(), 1001U);
    EXPECT_TRUE(stts.data.empty());
}

TEST(CStts, KeepsTheStatedCountWhenFewerEntriesFit) {
    const ByteVector bytes = Table("stts", 0xFFFFFFFF, {10, 1001, 7});
    const CStts stts(AtomBlock::Of(bytes));
    EXPECT_EQ(stts.numberOfEntries, 0xFFFFFFFFU);
    EXPECT_EQ(stts.entries.size(), 1U);
}

TEST(CStts, AnswersZeroForTheDurationOfAnEmptyList) {
    const ByteVector bytes = Table("stts", 0, {});
    EXPECT_EQ(CStts(AtomBlock::Of(bytes)).GetFirstSampleDuration(), 0U);
}

TEST(CStts, FillMakesOneEntryOf24Bytes) {
    CStts stts;
    stts.Fill(300, 1001);
    EXPECT_EQ(stts.data,
              ByteBuilder().Big32(24).Text("stts").Big32(0).Big32(1).Big32(300).Big32(1001).Take());
    EXPECT_EQ(stts.size, 24U);
}

TEST(CStsc, ReadsItsRunsAndHasNoImage) {
    const ByteVector bytes = Table("stsc", 2, {1, 30, 1, 4, 7, 2});
    const CStsc stsc(AtomBlock::Of(bytes));
    ASSERT_FALSE(stsc.IsEmpty());
    ASSERT_EQ(stsc.entries->size(), 2U);
    EXPECT_EQ((*stsc.entries)[1].firstChunk, 4U);
    EXPECT_EQ((*stsc.entries)[1].samplesPerChunk, 7U);
    EXPECT_EQ((*stsc.entries)[1].sampleDescID, 2U);
    EXPECT_EQ(stsc.FirstSamplesPerChunk(), 30U);
    EXPECT_TRUE(stsc.data.empty());
}

TEST(CStsc, FillKeepsTheListOfItsCaller) {
    auto runs = std::make_shared<std::vector<CSampleToChunkEntery>>();
    runs->emplace_back(1U, 12U, 1U);
    CStsc stsc;
    stsc.Fill(runs);
    EXPECT_EQ(stsc.entries, runs);
    EXPECT_EQ(
        stsc.data,
        ByteBuilder().Big32(28).Text("stsc").Big32(0).Big32(1).Big32(1).Big32(12).Big32(1).Take());
}

TEST(CStsc, FillWithoutAListMakesATableOf16Bytes) {
    CStsc stsc;
    stsc.Fill(nullptr);
    EXPECT_EQ(stsc.data, ByteBuilder().Big32(16).Text("stsc").Big32(0).Big32(0).Take());
    EXPECT_EQ(stsc.FirstSamplesPerChunk(), 0U);
}

TEST(CStsc, RefreshWritesTheEntriesThatFittedUnderTheOldSizeAndCount) {
    const ByteVector bytes = Table("stsc", 2, {1, 30, 1, 4});
    CStsc stsc(AtomBlock::Of(bytes));
    stsc.Refresh();
    EXPECT_EQ(stsc.size, 32U);
    EXPECT_EQ(
        stsc.data,
        ByteBuilder().Big32(32).Text("stsc").Big32(0).Big32(2).Big32(1).Big32(30).Big32(1).Take());
}

TEST(CStsz, ReadsItsTableWhateverTheUniformSizeSays) {
    const ByteVector bytes = test::FullAtom(
        "stsz", ByteBuilder().Big32(4).Big32(3).Big32(100).Big32(200).Big32(300).Take());
    const CStsz stsz(AtomBlock::Of(bytes));
    EXPECT_EQ(stsz.sampleSize, 4U);
    EXPECT_EQ(stsz.numberOfEntries, 3U);
    EXPECT_THAT(stsz.entries, ElementsAre(100, 200, 300));
}

TEST(CStsz, KeepsAHugeCountWithoutATable) {
    const ByteVector bytes =
        test::FullAtom("stsz", ByteBuilder().Big32(1).Big32(0xFFFFFFFF).Take());
    const CStsz stsz(AtomBlock::Of(bytes));
    EXPECT_EQ(stsz.numberOfEntries, 0xFFFFFFFFU);
    EXPECT_TRUE(stsz.entries.empty());
}

TEST(CStsz, FillWritesOneSizeForEachSample) {
    CStsz stsz;
    stsz.Fill({7, 8});
    EXPECT_EQ(
        stsz.data,
        ByteBuilder().Big32(28).Text("stsz").Big32(0).Big32(0).Big32(2).Big32(7).Big32(8).Take());
}

TEST(CStsz, WritesNoTableUnderAUniformSize) {
    CStsz stsz;
    stsz.FillUniform(48000, 1);
    EXPECT_EQ(stsz.size, 20U);
    EXPECT_EQ(stsz.data,
              ByteBuilder().Big32(20).Text("stsz").Big32(0).Big32(1).Big32(48000).Take());
}

TEST(CStco, ReadsTheOffsetsOf32Bits) {
    const ByteVector bytes = Table("stco", 2, {0x80000000U, 9});
    const CStco stco(AtomBlock::Of(bytes), CStco::Form::Offsets32);
    EXPECT_THAT(stco.entries, ElementsAre(0x80000000ULL, 9ULL));
}

TEST(CStco, TakesTheHighHalfOfA64BitOffsetForTheWhole) {
    const ByteVector bytes = Table("co64", 2, {1, 2, 3, 4});
    const CStco stco(AtomBlock::Of(bytes), CStco::Form::Offsets64);
    EXPECT_EQ(stco.numberOfEntries, 2U);
    EXPECT_THAT(stco.entries, ElementsAre(1ULL, 3ULL));
}

TEST(CStco, FillAlwaysWritesOffsetsOf64Bits) {
    CStco stco;
    stco.Fill({16, 0x123456789AULL});
    EXPECT_EQ(stco.data, ByteBuilder()
                             .Big32(32)
                             .Text("co64")
                             .Big32(0)
                             .Big32(2)
                             .Big64(16)
                             .Big64(0x123456789AULL)
                             .Take());
}

TEST(CStss, ReadsItsNumbers) {
    const ByteVector bytes = Table("stss", 3, {1, 31});
    const CStss stss(AtomBlock::Of(bytes));
    EXPECT_EQ(stss.numberOfEntries, 3U);
    EXPECT_THAT(stss.entries, ElementsAre(1, 31));
    EXPECT_TRUE(stss.data.empty());
}

TEST(CStss, StepsByOneLessThanTheSecondSyncSample) {
    EXPECT_THAT(SyncSamples(124, 31), ElementsAre(1, 31, 61));
}

TEST(CStss, ListsHalfTheSamplesLessOneUnderTheFallbackOfTwo) {
    EXPECT_THAT(SyncSamples(10, 2), ElementsAre(1, 2, 3, 4));
}

TEST(CStss, NamesASamplePastTheEndOfAShortTrack) {
    EXPECT_THAT(SyncSamples(5, 30), ElementsAre(1, 30));
}

TEST(CStss, FallsToHalfTheSamplesWhereTheCountEqualsTheDistance) {
    const auto samples = SyncSamples(30, 30);
    EXPECT_EQ(samples.size(), 15U);
    EXPECT_EQ(samples[14], 1U + 14U * 29U);
}

TEST(CStss, RepeatsTheFirstSampleForADistanceOfOne) {
    EXPECT_THAT(SyncSamples(5, 1), ElementsAre(1, 1, 1, 1));
    EXPECT_THAT(SyncSamples(1, 1), ElementsAre(1));
    EXPECT_THAT(SyncSamples(0, 1), ElementsAre(1));
}

TEST(CStss, HasNoEntryWhereTheRulesGiveNone) {
    EXPECT_THAT(SyncSamples(0, 2), ElementsAre());
    EXPECT_THAT(SyncSamples(1, 2), ElementsAre());
    EXPECT_THAT(SyncSamples(3, 2), ElementsAre());    // 3 / 2 - 1
    EXPECT_THAT(SyncSamples(100, 0), ElementsAre());  // no distance at all
}

TEST(CStss, WritesNoTableThatNoMovieCanNeed) {
    EXPECT_THAT(SyncSamples(0xFFFFFFFF, 2), ElementsAre());
    EXPECT_EQ(SyncSamples(1U << 20U, 2).size(), (1U << 19U) - 1);
}

TEST(CStss, FillWritesItsTable) {
    CStss stss;
    stss.Fill(5, 30);
    EXPECT_EQ(stss.data,
              ByteBuilder().Big32(24).Text("stss").Big32(0).Big32(2).Big32(1).Big32(30).Take());
}

TEST(CCtts, IsReadyToBeWrittenAsSoonAsItIsRead) {
    const ByteVector bytes = Table("ctts", 2, {3, 2002, 1, 0xFFFFFFFF});
    const CCtts ctts(AtomBlock::Of(bytes));
    ASSERT_EQ(ctts.entries.size(), 2U);
    EXPECT_EQ(ctts.entries[0].sample, 3U);
    EXPECT_EQ(ctts.entries[0].comp, 2002U);
    EXPECT_EQ(ctts.data, bytes);
}

TEST(CCtts, WritesTheStatedCountAndTheEntriesThatFitted) {
    const ByteVector bytes = Table("ctts", 3, {3, 2002, 1});
    const CCtts ctts(AtomBlock::Of(bytes));
    EXPECT_EQ(ctts.size, 28U);
    EXPECT_EQ(ctts.data,
              ByteBuilder().Big32(28).Text("ctts").Big32(0).Big32(3).Big32(3).Big32(2002).Take());
}

}  // namespace
}  // namespace clipfix
