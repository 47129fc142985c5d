#include "codec/mpeg4_descriptors.h"

#include <gtest/gtest.h>

#include "base/fourcc.h"
#include "support/byte_builder.h"
#include "support/random.h"

namespace clipfix {
namespace {

using test::ByteBuilder;

ByteBuilder Descriptor(std::uint8_t tag, std::initializer_list<std::uint8_t> length,
                       ByteView payload) {
    ByteBuilder bytes;
    bytes.U8(tag).Bytes(length).Bytes(payload);
    return bytes;
}

ByteBuilder Descriptor(std::uint8_t tag, ByteView payload) {
    return Descriptor(tag, {static_cast<std::uint8_t>(payload.size())}, payload);
}

// Tag 4's fixed bytes: AAC, audio stream, buffer 0x010203, 192000 at most, 128000 on average.
ByteBuilder ConfigHead() {
    ByteBuilder bytes;
    bytes.U8(0x40).U8(0x15).Bytes({0x01, 0x02, 0x03}).Big32(192000).Big32(128000);
    return bytes;
}

const ByteVector kAacStart{0x12, 0x10};

ByteVector Config() {
    return ConfigHead().Bytes(Descriptor(5, kAacStart).View()).Take();
}

// Tag 3's payload with the flags given and what they ask for.
ByteBuilder StreamHead(std::uint8_t flags, ByteView extra = {}) {
    ByteBuilder bytes;
    bytes.Big16(0x0102).U8(flags).Bytes(extra);
    return bytes;
}

ByteVector Stream() {
    const ByteVector slPayload{0x02};
    return StreamHead(0x1F)
        .Bytes(Descriptor(4, Config()).View())
        .Bytes(Descriptor(6, slPayload).View())
        .Take();
}

ByteBuilder AtomHead() {
    ByteBuilder bytes;
    bytes.Big32(0x33).Text("esds").Big32(0x01020304);
    return bytes;
}

ByteVector Atom() {
    return AtomHead().Bytes(Descriptor(3, Stream()).View()).Take();
}

TEST(CEsdsDecoder, ReadsTheNestedDescriptors) {
    const CEsdsDecoder esds(Atom());
    EXPECT_EQ(esds.ssize, 0x33U);
    EXPECT_EQ(esds.stype, FourCC("esds"));
    EXPECT_EQ(esds.vflag, 0x01020304U);
    ASSERT_TRUE(esds.objectDescriptor);
    const CObjectDescriptor& stream = *esds.objectDescriptor;
    EXPECT_EQ(stream.tag, 3);
    EXPECT_EQ(stream.length, Stream().size());
    EXPECT_EQ(stream.esid, 0x0102);
    EXPECT_EQ(stream.streamDependenceFlag, 0);
    EXPECT_EQ(stream.URL_Flag, 0);
    EXPECT_EQ(stream.OCRstreamFlag, 0);
    EXPECT_EQ(stream.streamPriority, 0x1F);
    ASSERT_TRUE(stream.decoderConfig);
    EXPECT_EQ(stream.decoderConfig->tag, 4);
    EXPECT_EQ(stream.decoderConfig->length, Config().size());
    EXPECT_EQ(stream.decoderConfig->objectTypeIndication, 0x40);
    EXPECT_EQ(stream.decoderConfig->streamType, 5);
    EXPECT_EQ(stream.decoderConfig->upStream, 0);
    EXPECT_EQ(stream.decoderConfig->reserved, 1);
    EXPECT_EQ(stream.decoderConfig->brate, 192000U);
    EXPECT_EQ(stream.decoderConfig->abrate, 128000U);
    ASSERT_TRUE(stream.decoderConfig->specificInfo);
    EXPECT_EQ(*stream.decoderConfig->specificInfo, kAacStart);
    ASSERT_TRUE(stream.slConfig);
    EXPECT_EQ(stream.slConfig->tag, 6);
    EXPECT_EQ(stream.slConfig->length, 1);
    EXPECT_EQ(stream.slConfig->bytes, ByteVector{0x02});
}

TEST(CEsdsDecoder, GivesTheThreeValues) {
    const CEsdsDecoder esds(Atom());
    EXPECT_EQ(esds.MaximumBitrate(), 192000U);
    EXPECT_EQ(esds.AverageBitrate(), 128000U);
    ASSERT_TRUE(esds.DecoderSpecificBytes());
    EXPECT_EQ(*esds.DecoderSpecificBytes(), kAacStart);
    const CEsdsDecoder none;
    EXPECT_EQ(none.MaximumBitrate(), 0U);
    EXPECT_EQ(none.AverageBitrate(), 0U);
    EXPECT_FALSE(none.DecoderSpecificBytes());
}

TEST(CEsdsDecoder, HasNoDescriptorBehindAnotherTag) {
    ByteVector atom = Atom();
    EXPECT_TRUE(CEsdsDecoder(atom).objectDescriptor);
    atom[12] = 2;
    const CEsdsDecoder esds(atom);
    EXPECT_FALSE(esds.objectDescriptor);
    EXPECT_EQ(esds.stype, FourCC("esds"));
    EXPECT_EQ(esds.MaximumBitrate(), 0U);
}

TEST(CDecoderConfigDescriptor, ReadsTheBufferSizeInTheOppositeByteOrder) {
    EXPECT_EQ(CDecoderConfigDescriptor(Config()).bufferSizeDB, 0x030201);
}

TEST(CDecoderConfigDescriptor, HasNullBytesWithoutTagFive) {
    EXPECT_TRUE(CDecoderConfigDescriptor(Config()).specificInfo);
    EXPECT_FALSE(CDecoderConfigDescriptor(ConfigHead().View()).specificInfo);
    EXPECT_FALSE(
        CDecoderConfigDescriptor(ConfigHead().Bytes(Descriptor(6, kAacStart).View()).View())
            .specificInfo);
}

TEST(CDecoderConfigDescriptor, KeepsEightBitsOfItsLengthAndLooksNoFurther) {
    // 260 bytes are 4, and byte 13 lies behind that.
    ByteVector payload = Config();
    payload.resize(260);
    const CDecoderConfigDescriptor cut(payload);
    EXPECT_EQ(cut.length, 4);
    EXPECT_EQ(cut.brate, 192000U);
    EXPECT_FALSE(cut.specificInfo);
    payload.resize(255);
    const CDecoderConfigDescriptor whole(payload);
    EXPECT_EQ(whole.length, 255);
    EXPECT_TRUE(whole.specificInfo);
}

TEST(CObjectDescriptor, KeepsEightBitsOfItsLength) {
    ByteVector payload = Stream();
    payload.resize(300);
    const CObjectDescriptor stream(payload);
    EXPECT_EQ(stream.length, 300 - 256);
    EXPECT_TRUE(stream.decoderConfig);  // 44 bytes hold it
    payload.resize(256);
    EXPECT_FALSE(CObjectDescriptor(payload).decoderConfig);  // 0 bytes hold nothing
}

TEST(CObjectDescriptor, PassesOverWhatItsFlagsAskFor) {
    const ByteVector config = Descriptor(4, Config()).Take();
    const ByteVector dependence{0x11, 0x12};
    const ByteVector url{3, 'a', 'b', 'c'};
    const ByteVector clock{0x21, 0x22};

    const CObjectDescriptor one(StreamHead(0x80, dependence).Bytes(config).View());
    EXPECT_EQ(one.streamDependenceFlag, 1);
    EXPECT_EQ(one.desid, 0x1112);
    EXPECT_TRUE(one.decoderConfig);

    const CObjectDescriptor two(StreamHead(0x40, url).Bytes(config).View());
    EXPECT_EQ(two.URL_Flag, 1);
    EXPECT_EQ(two.urlLength, 3);
    EXPECT_EQ(two.urlString, "");
    EXPECT_TRUE(two.decoderConfig);

    const CObjectDescriptor three(StreamHead(0x20, clock).Bytes(config).View());
    EXPECT_EQ(three.OCRstreamFlag, 1);
    EXPECT_EQ(three.ocresid, 0x2122);
    EXPECT_TRUE(three.decoderConfig);

    const CObjectDescriptor all(
        StreamHead(0xE5, dependence).Bytes(url).Bytes(clock).Bytes(config).View());
    EXPECT_EQ(all.desid, 0x1112);
    EXPECT_EQ(all.urlLength, 3);
    EXPECT_EQ(all.ocresid, 0x2122);
    EXPECT_EQ(all.streamPriority, 5);
    ASSERT_TRUE(all.decoderConfig);
    EXPECT_EQ(all.decoderConfig->abrate, 128000U);
}

TEST(CObjectDescriptor, HasNoChildrenBehindAUrlThatReachesPastTheEnd) {
    const CObjectDescriptor stream(
        StreamHead(0x40, ByteVector{200}).Bytes(Descriptor(4, Config()).View()).View());
    EXPECT_EQ(stream.urlLength, 200);
    EXPECT_FALSE(stream.decoderConfig);
    EXPECT_FALSE(stream.slConfig);
}

TEST(CObjectDescriptor, ReadsASlConfigWithoutADecoderConfig) {
    const ByteVector payload{0x02, 0x00};
    const CObjectDescriptor stream(StreamHead(0).Bytes(Descriptor(6, payload).View()).View());
    EXPECT_FALSE(stream.decoderConfig);
    ASSERT_TRUE(stream.slConfig);
    EXPECT_EQ(stream.slConfig->bytes, payload);
}

TEST(CObjectDescriptor, WantsMoreThanTwoBytesForASlConfig) {
    EXPECT_TRUE(CObjectDescriptor(StreamHead(0).Bytes({6, 1, 9}).View()).slConfig);
    EXPECT_FALSE(CObjectDescriptor(StreamHead(0).Bytes({6, 1}).View()).slConfig);
}

TEST(CObjectDescriptor, DoesNotHoldTheSlConfigAgainstTheBytesThatAreLeft) {
    const CObjectDescriptor stream(StreamHead(0).Bytes({6, 5, 9}).View());
    ASSERT_TRUE(stream.slConfig);
    EXPECT_EQ(stream.slConfig->length, 5);
    EXPECT_EQ(stream.slConfig->bytes, (ByteVector{9, 0, 0, 0, 0}));
}

// ---- The length rule, in each of the four places

const std::vector<std::pair<ByteVector, bool>>& Lengths() {
    static const std::vector<std::pair<ByteVector, bool>> kLengths{
        {{0x19}, true},                    // 25, the plain form
        {{0x80, 0x80, 0x80, 0x19}, true},  // padded
        {{0x80, 0x19}, true},
        {{0x81, 0x10}, false},  // reads as 0x81, which does not fit
        {{0x00}, false},
    };
    return kLengths;
}

ByteBuilder WithLength(std::uint8_t tag, const ByteVector& length, ByteView payload) {
    ByteBuilder bytes;
    bytes.U8(tag).Bytes(length).Bytes(payload);
    return bytes;
}

TEST(DescriptorLength, IsTheFirstByteThatIsNot80) {
    for (const auto& [length, fits] : Lengths()) {
        const ByteVector payload(25, 0x01);
        EXPECT_EQ(CEsdsDecoder(AtomHead().Bytes(WithLength(3, length, payload).View()).View())
                      .objectDescriptor.has_value(),
                  fits);
        EXPECT_EQ(
            CObjectDescriptor(StreamHead(0).Bytes(WithLength(4, length, payload).View()).View())
                .decoderConfig.has_value(),
            fits);
        EXPECT_EQ(CDecoderConfigDescriptor(
                      ConfigHead().Bytes(WithLength(5, length, payload).View()).View())
                          .specificInfo != nullptr,
                  fits);
    }
    const CObjectDescriptor padded(StreamHead(0).Bytes({6, 0x80, 0x80, 2, 7, 8}).View());
    EXPECT_EQ(padded.slConfig->bytes, (ByteVector{7, 8}));
    EXPECT_FALSE(CObjectDescriptor(StreamHead(0).Bytes({6, 0, 7, 8}).View()).slConfig);
}

TEST(DescriptorLength, OfTwoBytesReadsAsItsFirst) {
    // 81 10 would be 144; it reads as 129, and 0x10 is the first byte of the payload.
    const ByteVector payload(200, 0x22);
    const CDecoderConfigDescriptor config(
        ConfigHead().Bytes({5, 0x81, 0x10}).Bytes(payload).View());
    ASSERT_TRUE(config.specificInfo);
    EXPECT_EQ(config.specificInfo->size(), 0x81U);
    EXPECT_EQ(config.specificInfo->front(), 0x10);
}

TEST(DescriptorLength, OfNothingBut80MeansNoChild) {
    EXPECT_FALSE(CEsdsDecoder(AtomHead().Bytes({3, 0x80, 0x80, 0x80}).View()).objectDescriptor);
    EXPECT_FALSE(CEsdsDecoder(AtomHead().Bytes({3}).View()).objectDescriptor);
    EXPECT_FALSE(CObjectDescriptor(StreamHead(0).Bytes({6, 0x80, 0x80, 0x80}).View()).slConfig);
}

TEST(DescriptorLength, HasToFitTheBytes) {
    const ByteVector payload = Stream();
    const auto length = static_cast<std::uint8_t>(payload.size());
    EXPECT_TRUE(CEsdsDecoder(AtomHead().U8(3).U8(length).Bytes(payload).View()).objectDescriptor);
    const auto longer = static_cast<std::uint8_t>(payload.size() + 1);
    EXPECT_FALSE(CEsdsDecoder(AtomHead().U8(3).U8(longer).Bytes(payload).View()).objectDescriptor);
}

TEST(CEsdsDecoder, ReadsEveryCutOfAnAtom) {
    const ByteVector atom = Atom();
    for (std::size_t length = 0; length < atom.size(); ++length) {
        const CEsdsDecoder esds(SubView(atom, 0, length));
        EXPECT_FALSE(esds.objectDescriptor) << length;
    }
    EXPECT_TRUE(CEsdsDecoder(atom).objectDescriptor);
}

TEST(CEsdsDecoder, ReadsAnyBytes) {
    test::Random random(12);
    int found = 0;
    for (int i = 0; i < 20000; ++i) {
        ByteVector bytes = random.Bytes(12 + random.Below(80));
        for (std::size_t at = 12; at < bytes.size(); ++at) {
            if (random.OneIn(3)) {
                bytes[at] = static_cast<std::uint8_t>(3 + random.Below(4));
            } else if (random.OneIn(3)) {
                bytes[at] = random.OneIn(4) ? 0x80 : static_cast<std::uint8_t>(random.Below(40));
            }
        }
        const CEsdsDecoder esds(bytes);
        found += esds.objectDescriptor ? 1 : 0;
        if (const auto specific = esds.DecoderSpecificBytes()) {
            EXPECT_GT(specific->size(), 0U);
            EXPECT_LT(specific->size(), bytes.size());
        }
    }
    EXPECT_GT(found, 100);
}

}  // namespace
}  // namespace clipfix
