#include <gtest/gtest.h>

#include "codec/avc_configuration_record.h"
#include "codec/hevc_configuration_record.h"
#include "codec/mpeg4_descriptors.h"
#include "literal/codec_comparison.h"
#include "literal/literal_codec.h"

namespace clipfix::test {
namespace {

// Configuration records.

void CompareAvcC(const ByteVector& box, Tally& sets) {
    const CAVCDecoderConfigurationRecord real(box);
    const LiteralAvcRecord model = LiteralAvcC(box);
    ASSERT_EQ(real.size, model.size);
    ASSERT_EQ(real.type, model.type);
    ASSERT_EQ(real.numOfSequenceParameterSets, model.numOfSequenceParameterSets);
    ASSERT_EQ(real.configurationVersion, model.configurationVersion);
    ASSERT_EQ(real.AVCProfileIndication, model.AVCProfileIndication);
    ASSERT_EQ(real.profile_compatibility, model.profile_compatibility);
    ASSERT_EQ(real.AVCLevelIndication, model.AVCLevelIndication);
    ASSERT_EQ(real.lengthSizeMinusOne, model.lengthSizeMinusOne);
    ASSERT_EQ(real.numOfPictureParameterSets, model.numOfPictureParameterSets);
    ASSERT_EQ(real.ppsLength, model.ppsLength);
    ASSERT_EQ(real.spsLength, model.spsLength);
    ASSERT_EQ(real.spsBytes, model.spsBytes);
    ASSERT_EQ(real.ppsBytes, model.ppsBytes);
    ASSERT_TRUE(SameSet(real.sps, model.sps));
    ASSERT_TRUE(SameSet(real.pps, model.pps));
    sets.Note(model.sps && model.pps);
}

void CompareHvcC(const ByteVector& box, PictureSize expected, Tally& sets) {
    HVCDecoderConfigurationRecord real;
    real.Parse(box, Signed(expected.width), Signed(expected.height));
    const LiteralHevcRecord model =
        LiteralHvcC(box, Signed(expected.width), Signed(expected.height));
    ASSERT_EQ(real.size, model.size);
    ASSERT_EQ(real.type, model.type);
    ASSERT_EQ(real.vpsLength, model.vpsLength);
    ASSERT_EQ(real.spsLength, model.spsLength);
    ASSERT_EQ(real.ppsLength, model.ppsLength);
    ASSERT_EQ(real.numVps, model.numVps);
    ASSERT_EQ(real.numSps, model.numSps);
    ASSERT_EQ(real.numPps, model.numPps);
    ASSERT_TRUE(SameSet(real.vps, model.vps));
    ASSERT_TRUE(SameSet(real.sps, model.sps));
    ASSERT_TRUE(SameSet(real.pps, model.pps));
    sets.Note(model.vps && model.sps && model.pps);
}

TEST(Codec, ReadsConfigurationRecordsAsTheLiteralModelDoes) {
    Tally avc;
    Tally hevc;
    ForEachSeed(8000, [&](RandomSource& random) {
        const ByteVector avcC = Varied(RandomAvcC(random), random);
        CompareAvcC(avcC, avc);
        const PictureSize size = RandomPictureSize(random);
        const ByteVector hvcC = Varied(RandomHvcC(random, size), random);
        CompareHvcC(hvcC, ExpectedSize(random, size), hevc);
        if (::testing::Test::HasFailure()) {
            ADD_FAILURE() << Hex(avcC) << '\n' << Hex(hvcC);
        }
    });
    Record("avcC", avc);
    Record("hvcC", hevc);
}

// Descriptors.

void CompareDecoder(const CDecoderConfigDescriptor& real, const LiteralDecoderConfig& model) {
    ASSERT_EQ(real.tag, 4);
    ASSERT_EQ(real.length, model.length);
    ASSERT_EQ(real.objectTypeIndication, model.objectTypeIndication);
    ASSERT_EQ(real.brate, model.brate);
    ASSERT_EQ(real.abrate, model.abrate);
    ASSERT_EQ(real.streamType, model.streamType);
    ASSERT_EQ(real.upStream, model.upStream);
    ASSERT_EQ(real.reserved, model.reserved);
    ASSERT_EQ(real.bufferSizeDB, model.bufferSizeDB);
    ASSERT_EQ(real.specificInfo != nullptr, model.specificInfo.has_value());
    if (real.specificInfo) {
        ASSERT_EQ(*real.specificInfo, *model.specificInfo);
    }
}

void CompareObject(const CObjectDescriptor& real, const LiteralObjectDescriptor& model) {
    ASSERT_EQ(real.tag, 3);
    ASSERT_EQ(real.length, model.length);
    ASSERT_EQ(real.urlLength, model.urlLength);
    ASSERT_EQ(real.esid, model.esid);
    ASSERT_EQ(real.desid, model.desid);
    ASSERT_EQ(real.ocresid, model.ocresid);
    ASSERT_EQ(real.streamDependenceFlag, model.streamDependenceFlag);
    ASSERT_EQ(real.URL_Flag, model.URL_Flag);
    ASSERT_EQ(real.OCRstreamFlag, model.OCRstreamFlag);
    ASSERT_EQ(real.streamPriority, model.streamPriority);
    ASSERT_EQ(real.urlString, "");
    ASSERT_EQ(real.decoderConfig.has_value(), model.decoderConfig.has_value());
    if (real.decoderConfig) {
        CompareDecoder(*real.decoderConfig, *model.decoderConfig);
    }
    ASSERT_EQ(real.slConfig.has_value(), model.slConfig.has_value());
    if (real.slConfig) {
        ASSERT_EQ(real.slConfig->tag, 6);
        ASSERT_EQ(real.slConfig->length, model.slConfig->length);
        ASSERT_EQ(real.slConfig->bytes, model.slConfig->bytes);
    }
}

void CompareEsds(const ByteVector& atom, Tally& decoders) {
    const CEsdsDecoder real(atom);
    const LiteralEsds model = LiteralEsdsAtom(atom);
    ASSERT_EQ(real.ssize, model.ssize);
    ASSERT_EQ(real.stype, model.stype);
    ASSERT_EQ(real.vflag, model.vflag);
    ASSERT_EQ(real.objectDescriptor.has_value(), model.objectDescriptor.has_value());
    const LiteralDecoderConfig* config = nullptr;
    if (real.objectDescriptor) {
        CompareObject(*real.objectDescriptor, *model.objectDescriptor);
        if (model.objectDescriptor->decoderConfig) {
            config = &*model.objectDescriptor->decoderConfig;
        }
    }
    ASSERT_EQ(real.MaximumBitrate(), config != nullptr ? config->brate : 0);
    ASSERT_EQ(real.AverageBitrate(), config != nullptr ? config->abrate : 0);
    const auto bytes = real.DecoderSpecificBytes();
    const bool hasBytes = config != nullptr && config->specificInfo.has_value();
    ASSERT_EQ(bytes != nullptr, hasBytes);
    if (hasBytes) {
        ASSERT_EQ(*bytes, *config->specificInfo);
    }
    decoders.Note(hasBytes);
}

TEST(Codec, ReadsDescriptorsAsTheLiteralModelDoes) {
    Tally decoders;
    ForEachSeed(12000, [&](RandomSource& random) {
        const ByteVector atom = Varied(RandomEsds(random), random);
        CompareEsds(atom, decoders);
        // By itself a descriptor may have more bytes than its length can count.
        ByteVector payload = Varied(RandomObjectDescriptor(random), random);
        if (random.OneIn(4)) {
            AppendBytes(payload, random.Bytes(random.Below(400)));
        }
        CompareObject(CObjectDescriptor(payload), LiteralObject(payload));
        ByteVector config = random.Bytes(13);
        AppendBytes(config, ByteVector{5, static_cast<std::uint8_t>(random.Below(256))});
        config.resize(random.OneIn(3) ? random.Below(20) : random.Below(600), 0x80);
        CompareDecoder(CDecoderConfigDescriptor(config), LiteralDecoder(config));
        if (::testing::Test::HasFailure()) {
            ADD_FAILURE() << Hex(atom) << '\n' << Hex(payload) << '\n' << Hex(config);
        }
    });
    Record("decoders", decoders);
}

}  // namespace
}  // namespace clipfix::test
