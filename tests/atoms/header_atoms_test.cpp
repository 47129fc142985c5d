#include "atoms/header_atoms.h"

#include <gtest/gtest.h>

#include "base/fourcc.h"
#include "support/atom_builder.h"

namespace clipfix {
namespace {

using test::ByteBuilder;

// Bytes whose value is their own position, so that every field shows where it was read.
ByteVector CountingBytes(std::size_t count) {
    ByteVector bytes(count);
    for (std::size_t i = 0; i < count; ++i) {
        bytes[i] = static_cast<std::uint8_t>(i);
    }
    return bytes;
}

TEST(CMvhd, ReadsEveryFieldAtItsPlace) {
    const ByteVector bytes = CountingBytes(108);
    const CMvhd mvhd(AtomBlock::Of(bytes));
    EXPECT_EQ(mvhd.size, 108U);
    EXPECT_EQ(mvhd.type, 0x04050607U);
    EXPECT_EQ(mvhd.version_Flag, 0x08090A0BU);
    EXPECT_EQ(mvhd.creationTime, 0x0C0D0E0FU);
    EXPECT_EQ(mvhd.modificationTime, 0x10111213U);
    EXPECT_EQ(mvhd.timescale, 0x14151617U);
    EXPECT_EQ(mvhd.duration, 0x18191A1BU);
    EXPECT_EQ(mvhd.prefferedRate, 0x1C1D1E1FU);
    EXPECT_EQ(mvhd.preferredVolume, 0x2021U);
    EXPECT_EQ(mvhd.reserved1, 0x2223U);
    EXPECT_EQ(mvhd.reserved2, 0x2425262728292A2BULL);
    EXPECT_EQ(mvhd.matrix_A, 0x2C2D2E2FU);
    EXPECT_EQ(mvhd.matrix_B, 0x30313233U);
    EXPECT_EQ(mvhd.matrix_U, 0x34353637U);
    EXPECT_EQ(mvhd.matrix_C, 0x38393A3BU);
    EXPECT_EQ(mvhd.matrix_D, 0x3C3D3E3FU);
    EXPECT_EQ(mvhd.matrix_V, 0x40414243U);
    EXPECT_EQ(mvhd.matrix_X, 0x44454647U);
    EXPECT_EQ(mvhd.matrix_Y, 0x48494A4BU);
    EXPECT_EQ(mvhd.matrix_W, 0x4C4D4E4FU);
    EXPECT_EQ(mvhd.previewTime, 0x50515253U);
    EXPECT_EQ(mvhd.previewDuration, 0x54555657U);
    EXPECT_EQ(mvhd.posterTime, 0x58595A5BU);
    EXPECT_EQ(mvhd.selectionTime, 0x5C5D5E5FU);
    EXPECT_EQ(mvhd.selectionDuration, 0x60616263U);
    EXPECT_EQ(mvhd.currentTime, 0x64656667U);
    EXPECT_EQ(mvhd.nextTrackID, 0x68696A6BU);
    EXPECT_TRUE(mvhd.data.empty());
}

TEST(CMvhd, WritesWhatItReadUnderTheLengthOfItsParent) {
    ByteVector bytes = CountingBytes(108);
    const CMvhd mvhd(AtomBlock::Of(bytes));
    StoreBig32(bytes, 0, 108);  // the field itself is not consulted
    EXPECT_EQ(mvhd.Serialize(), bytes);
}

TEST(CMvhd, KeepsTheSizeOfALongerAtomAndWrites108Bytes) {
    const ByteVector bytes = CountingBytes(120);
    const CMvhd mvhd(AtomBlock::Of(bytes));
    EXPECT_EQ(mvhd.size, 120U);
    const ByteVector image = mvhd.Serialize();
    EXPECT_EQ(image.size(), 108U);
    EXPECT_EQ(ReadBig32(image, 0), 120U);
}

TEST(CMvhd, ReadsAnAtomOfVersionOneByTheOffsetsOfVersionZero) {
    ByteVector bytes = ByteBuilder()
                           .Big32(120)
                           .Text("mvhd")
                           .Big32(0x01000000)
                           .Big64(0x1111111122222222ULL)
                           .Big64(0x3333333344444444ULL)
                           .Big32(600)
                           .Zeros(84)
                           .Take();
    const CMvhd mvhd(AtomBlock::Of(bytes));
    EXPECT_EQ(mvhd.version_Flag, 0x01000000U);
    EXPECT_EQ(mvhd.creationTime, 0x11111111U);
    EXPECT_EQ(mvhd.timescale, 0x33333333U);
    EXPECT_EQ(mvhd.duration, 0x44444444U);
    EXPECT_EQ(mvhd.prefferedRate, 600U);
    EXPECT_EQ(ReadBig32(mvhd.Serialize(), 8), 0x01000000U);
}

TEST(CMvhd, ReadsZerosBehindTheEndOfAShortAtom) {
    const ByteVector bytes = CountingBytes(22);
    const CMvhd mvhd(AtomBlock::Of(bytes));
    EXPECT_EQ(mvhd.modificationTime, 0x10111213U);
    EXPECT_EQ(mvhd.timescale, 0x14150000U);
    EXPECT_EQ(mvhd.nextTrackID, 0U);
    EXPECT_EQ(mvhd.Serialize().size(), 108U);
}

TEST(CTkhd, ReadsEveryFieldAtItsPlaceAndWritesItBack) {
    ByteVector bytes = CountingBytes(92);
    const CTkhd tkhd(AtomBlock::Of(bytes));
    EXPECT_EQ(tkhd.type, 0x04050607U);
    EXPECT_EQ(tkhd.version_Flag, 0x08090A0BU);
    EXPECT_EQ(tkhd.creationTime, 0x0C0D0E0FU);
    EXPECT_EQ(tkhd.modificationTime, 0x10111213U);
    EXPECT_EQ(tkhd.trackID, 0x14151617U);
    EXPECT_EQ(tkhd.reserved1, 0x18191A1BU);
    EXPECT_EQ(tkhd.duration, 0x1C1D1E1FU);
    EXPECT_EQ(tkhd.reserved2, 0x2021222324252627ULL);
    EXPECT_EQ(tkhd.layer, 0x2829U);
    EXPECT_EQ(tkhd.alternateGroup, 0x2A2BU);
    EXPECT_EQ(tkhd.volume, 0x2C2DU);
    EXPECT_EQ(tkhd.resreved3, 0x2E2FU);
    EXPECT_EQ(tkhd.matrix_A, 0x30313233U);
    EXPECT_EQ(tkhd.matrix_B, 0x34353637U);
    EXPECT_EQ(tkhd.matrix_U, 0x38393A3BU);
    EXPECT_EQ(tkhd.matrix_C, 0x3C3D3E3FU);
    EXPECT_EQ(tkhd.matrix_D, 0x40414243U);
    EXPECT_EQ(tkhd.matrix_V, 0x44454647U);
    EXPECT_EQ(tkhd.matrix_X, 0x48494A4BU);
    EXPECT_EQ(tkhd.matrix_Y, 0x4C4D4E4FU);
    EXPECT_EQ(tkhd.matrix_W, 0x50515253U);
    EXPECT_EQ(tkhd.trackWidth, 0x54555657U);
    EXPECT_EQ(tkhd.trackHeight, 0x58595A5BU);
    StoreBig32(bytes, 0, 92);
    EXPECT_EQ(tkhd.Serialize(), bytes);
}

TEST(CTkhd, KeepsTheSizeOfALongerAtomAndWrites92Bytes) {
    const ByteVector bytes = CountingBytes(104);
    const CTkhd tkhd(AtomBlock::Of(bytes));
    EXPECT_EQ(tkhd.size, 104U);
    EXPECT_EQ(tkhd.Serialize().size(), 92U);
    EXPECT_EQ(ReadBig32(tkhd.Serialize(), 0), 104U);
}

TEST(CMdhd, ReadsEveryFieldAtItsPlace) {
    const ByteVector bytes = CountingBytes(32);
    const CMdhd mdhd(AtomBlock::Of(bytes));
    EXPECT_EQ(mdhd.size, 32U);
    EXPECT_EQ(mdhd.creationTime, 0x0C0D0E0FU);
    EXPECT_EQ(mdhd.timescale, 0x14151617U);
    EXPECT_EQ(mdhd.duration, 0x18191A1BU);
    EXPECT_EQ(mdhd.language, 0x1C1DU);
    EXPECT_EQ(mdhd.quality, 0x1E1FU);
}

TEST(CMdhd, FillWritesDatesOfZero) {
    CMdhd mdhd;
    EXPECT_TRUE(mdhd.data.empty());
    mdhd.Fill(5000, 600, 0x55C4, 7);
    EXPECT_EQ(mdhd.data, ByteBuilder()
                             .Big32(32)
                             .Text("mdhd")
                             .Big32(0)
                             .Big32(0)  // created
                             .Big32(0)  // modified
                             .Big32(600)
                             .Big32(5000)
                             .Big16(0x55C4)
                             .Big16(7)
                             .Take());
    EXPECT_EQ(mdhd.size, 32U);
}

TEST(CHdlr, FillWrites34BytesWithoutAName) {
    CHdlr hdlr;
    hdlr.Fill(FourCC("mhlr"), FourCC("vide"), 0, "");
    EXPECT_EQ(hdlr.data, ByteBuilder()
                             .Big32(34)
                             .Text("hdlr")
                             .Big32(0)
                             .Text("mhlrvide")
                             .Big32(0)
                             .Big32(0)
                             .Big32(0)
                             .U8(0)
                             .U8(0)
                             .Take());
}

TEST(CHdlr, KeepsANameAsideAndWritesTheTwoBytesAlone) {
    CHdlr hdlr;
    hdlr.Fill(FourCC("mhlr"), FourCC("vide"), 5, "Video");
    EXPECT_EQ(hdlr.name, "Video");
    ASSERT_EQ(hdlr.data.size(), 34U);
    EXPECT_EQ(hdlr.data[32], 5);
    EXPECT_EQ(hdlr.data[33], 0);
    EXPECT_EQ(hdlr.size, 34U);
}

TEST(CHdlr, TakesTheLengthOfTheNameFromTheFirstByteOfTheAtom) {
    ByteVector bytes = test::Hdlr("soun");
    const CHdlr small(AtomBlock::Of(bytes));
    EXPECT_EQ(small.componentType, FourCC("mhlr"));
    EXPECT_EQ(small.componentSubtype, FourCC("soun"));
    EXPECT_EQ(small.stringSize, 0);  // byte 32 holds 4
    EXPECT_EQ(small.nameString, 0);

    bytes[0] = 9;  // as in an atom of 9 times 16 MiB
    const CHdlr large(AtomBlock::Of(bytes));
    EXPECT_EQ(large.stringSize, 9);
    EXPECT_EQ(large.nameString, 0);
}

TEST(CVmhd, DefaultIsTheOneOfARebuiltTrackWithFlagsOne) {
    const CVmhd vmhd;
    EXPECT_EQ(vmhd.data, ByteBuilder().Big32(20).Text("vmhd").Big32(1).Zeros(8).Take());
    EXPECT_EQ(vmhd.size, 20U);
}

TEST(CVmhd, ReadsItsColours) {
    const ByteVector bytes = test::Vmhd();
    const CVmhd vmhd(AtomBlock::Of(bytes));
    EXPECT_EQ(vmhd.versionFlag, 1U);
    EXPECT_EQ(vmhd.graphicsMode, 0x40);
    EXPECT_EQ(vmhd.opColor_R, 1);
    EXPECT_EQ(vmhd.opColor_G, 2);
    EXPECT_EQ(vmhd.opColor_B, 3);
    EXPECT_TRUE(vmhd.data.empty());
}

TEST(CSmhd, DefaultIsTheOneOfARebuiltTrackWithFlagsZero) {
    const CSmhd smhd;
    EXPECT_EQ(smhd.data, ByteBuilder().Big32(16).Text("smhd").Big32(0).Zeros(4).Take());
    EXPECT_EQ(smhd.size, 16U);
}

TEST(CSmhd, ReadsItsBalance) {
    const ByteVector bytes = test::Smhd();
    const CSmhd smhd(AtomBlock::Of(bytes));
    EXPECT_EQ(smhd.balance, 5);
    EXPECT_EQ(smhd.reserved, 6);
    EXPECT_TRUE(smhd.data.empty());
}

TEST(CGmin, ReadsItsSixNumbersAs16Bits) {
    const ByteVector bytes = CountingBytes(24);
    const CGmin gmin(AtomBlock::Of(bytes));
    EXPECT_EQ(gmin.type, 0x04050607U);
    EXPECT_EQ(gmin.versionFlag, 0x08090A0BU);
    EXPECT_EQ(gmin.Gmode, 0x0C0DU);
    EXPECT_EQ(gmin.opc_R, 0x0E0FU);
    EXPECT_EQ(gmin.opc_G, 0x1011U);
    EXPECT_EQ(gmin.opc_B, 0x1213U);
    EXPECT_EQ(gmin.blnc, 0x1415U);
    EXPECT_EQ(gmin.rsvd, 0x1617U);
}

TEST(CGmhd, KeepsItsSizeAndTypeAlone) {
    const ByteVector bytes = test::Atom("gmhd", {test::Atom("gmin")});
    const CGmhd gmhd(AtomBlock::Of(bytes));
    EXPECT_EQ(gmhd.size, 16U);
    EXPECT_EQ(gmhd.type, FourCC("gmhd"));
}

TEST(CMdat, KeepsTheLow32BitsOfA64BitSize) {
    const ByteVector head = ByteBuilder().Big32(1).Text("mdat").Big64(6442450944ULL).Take();
    const CMdat mdat(head, 77);
    EXPECT_EQ(mdat.type, FourCC("mdat"));
    EXPECT_EQ(mdat.size, 2147483648U);
    EXPECT_EQ(mdat.offset, 77U);
}

TEST(CMdat, TakesTheShortSizeWhereItIsNotOne) {
    const ByteVector head = ByteBuilder().Big32(5000).Text("mdat").Big64(9).Take();
    EXPECT_EQ(CMdat(head, 0).size, 5000U);
}

TEST(CMdat, HasNoTypeUnderAHeadOf15Bytes) {
    ByteVector head = ByteBuilder().Big32(5000).Text("mdat").Zeros(8).Take();
    EXPECT_EQ(CMdat(head, 0).type, FourCC("mdat"));
    head.pop_back();
    const CMdat mdat(head, 5);
    EXPECT_EQ(mdat.type, 0U);
    EXPECT_EQ(mdat.size, 0U);
    EXPECT_EQ(mdat.offset, 5U);
}

}  // namespace
}  // namespace clipfix
