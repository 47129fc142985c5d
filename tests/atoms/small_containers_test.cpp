#include "atoms/small_containers.h"

#include <gtest/gtest.h>

#include "base/fourcc.h"
#include "support/atom_builder.h"

namespace clipfix {
namespace {

using test::ByteBuilder;

TEST(CDinf, FillMakesOneSelfContainedReference) {
    CDinf dinf;
    dinf.Fill(FourCC("alis"));
    EXPECT_EQ(dinf.size, 36U);
    EXPECT_EQ(dinf.dref.size, 28U);
    EXPECT_EQ(dinf.data, ByteBuilder()
                             .Big32(36)
                             .Text("dinf")
                             .Big32(28)
                             .Text("dref")
                             .Big32(0)
                             .Big32(1)
                             .Big32(12)
                             .Text("alis")
                             .Big32(1)
                             .Take());
}

TEST(CDinf, ReadsItsFirstChildByPositionAndKeepsTheLastReference) {
    const ByteVector bytes = test::Atom(
        "dinf", {test::Table("dref", 2, {12, FourCC("alis"), 1, 12, FourCC("url "), 3})});
    const CDinf dinf(AtomBlock::Of(bytes));
    EXPECT_EQ(dinf.dref.numberOfEntries, 2U);
    ASSERT_TRUE(dinf.dref.lastEntry.has_value());
    EXPECT_EQ(dinf.dref.lastEntry->type, FourCC("url "));
    EXPECT_EQ(dinf.dref.lastEntry->versionFlag, 3U);
}

TEST(CDref, EndsAtAnEntryThatDoesNotFitOrIsEmpty) {
    const ByteVector tooLong =
        test::Table("dref", 0xFFFFFFFF, {12, FourCC("alis"), 1, 13, FourCC("url "), 3});
    EXPECT_EQ(CDref(AtomBlock::Of(tooLong)).lastEntry->type, FourCC("alis"));
    const ByteVector empty =
        test::Table("dref", 0xFFFFFFFF, {12, FourCC("alis"), 1, 0, FourCC("url "), 3});
    EXPECT_EQ(CDref(AtomBlock::Of(empty)).lastEntry->type, FourCC("alis"));
}

TEST(CEdts, FillMakesOneEditAtNormalRate) {
    CEdts edts;
    edts.Fill(3003, 1001);
    EXPECT_EQ(edts.size, 36U);
    EXPECT_EQ(edts.data, ByteBuilder()
                             .Big32(36)
                             .Text("edts")
                             .Big32(28)
                             .Text("elst")
                             .Big32(0)
                             .Big32(1)
                             .Big32(3003)
                             .Big32(1001)
                             .Big32(0x00010000)
                             .Take());
}

TEST(CElst, MakesEveryEntryFromTheFirstTwelveBytesOfTheAtom) {
    const ByteVector bytes = test::Table("elst", 2, {1, 2, 3, 4, 5, 6});
    const CElst elst(AtomBlock::Of(bytes));
    EXPECT_EQ(elst.numberOfEntries, 2U);
    ASSERT_TRUE(elst.lastEntry.has_value());
    // The atom's size is 40, its type `elst`, its version and flags 0; byte 4 is the letter e.
    EXPECT_EQ(elst.lastEntry->trackDuration, 0U | 'e');
    EXPECT_EQ(elst.lastEntry->mediaTime, FourCC("elst"));
    EXPECT_EQ(elst.lastEntry->mediaRate, 0U);
}

TEST(CElst, HasNoEntryWhereTwelveBytesDoNotFit) {
    const ByteVector whole = test::Table("elst", 1, {1, 2, 3});
    EXPECT_TRUE(CElst(AtomBlock::Of(whole)).lastEntry.has_value());
    const ByteVector cut(whole.begin(), whole.end() - 1);
    EXPECT_FALSE(CElst(AtomBlock::Of(cut)).lastEntry.has_value());
}

TEST(CEditListEntry, DividesTheRateBy65535AndTakesByteFourForTheLowByteOfTheDuration) {
    const ByteVector bytes =
        ByteBuilder().Big32(0x01020304).Big32(0xA5000000).Big32(0x0001FFFE).Take();
    const CEditListEntry entry(AtomBlock::Of(bytes));
    EXPECT_EQ(entry.trackDuration, 0x010203A5U);
    EXPECT_EQ(entry.mediaTime, 0xA5000000U);
    EXPECT_EQ(entry.mediaRate, 2U);
}

TEST(CUdta, KeepsNoContents) {
    const ByteVector bytes = test::Atom("udta", {test::Atom("name")});
    const CUdta udta(AtomBlock::Of(bytes));
    EXPECT_EQ(udta.size, 16U);
    EXPECT_EQ(udta.type, FourCC("udta"));
}

}  // namespace
}  // namespace clipfix
