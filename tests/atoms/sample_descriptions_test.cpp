#include "atoms/sample_descriptions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "atoms/kind_tags.h"
#include "base/fourcc.h"
#include "support/atom_builder.h"

namespace clipfix {
namespace {

using test::Atom;
using test::AtomOf;
using test::AudioEntry;
using test::AvcC;
using test::ByteBuilder;
using test::Stsd;
using test::VideoEntry;
using test::WithSize;
using ::testing::ElementsAre;

const ByteVector kSps{0x67, 0x42, 0xC0, 0x1E, 0xD9, 0x00, 0xA0, 0x47, 0xFE, 0xC8};
const ByteVector kPps{0x68, 0xCE, 0x3C, 0x80};

// A record whose parameter sets are tiny: this library hands them out, and does not judge them.
ByteVector Avc(std::uint8_t lengthSizeByte = 0xFF) {
    return AvcC(lengthSizeByte, kSps, kPps);
}

// An `hvcC` of 40 bytes without any array.
ByteVector EmptyHvcC() {
    return AtomOf("hvcC", ByteVector(32));
}

CStsd Read(const ByteVector& bytes, MovieRead& read) {
    return {AtomBlock::Of(bytes), read};
}

CStsd Read(const ByteVector& bytes) {
    MovieRead read;
    return Read(bytes, read);
}

const CVideoSampleDescriptionEntery& Video(const CStsd& stsd) {
    return *std::get<std::shared_ptr<const CVideoSampleDescriptionEntery>>(stsd.GetFirstEntry());
}

const CAudioSampleDescriptionEntery& Audio(const CStsd& stsd) {
    return *std::get<std::shared_ptr<const CAudioSampleDescriptionEntery>>(stsd.GetFirstEntry());
}

bool IsNone(const AnySps& set) {
    return std::holds_alternative<std::monostate>(set);
}
bool IsNone(const AnyPps& set) {
    return std::holds_alternative<std::monostate>(set);
}

TEST(CStsd, KeepsTheWholeAtomAsItStands) {
    const ByteVector bytes = Stsd({VideoEntry("avc1", 1920, 1080, {Avc()})});
    const CStsd stsd = Read(bytes);
    EXPECT_EQ(stsd.data, bytes);
    EXPECT_EQ(stsd.size, bytes.size());
    EXPECT_EQ(stsd.type, FourCC("stsd"));
    EXPECT_EQ(stsd.numberOfEntries, 1U);
    EXPECT_EQ(stsd.RecognisedEntries(), 1U);
}

TEST(CStsd, FindsTheRecordBehindAColrAndGivesItsLengthSize) {
    const ByteVector bytes = Stsd(
        {VideoEntry("avc1", 64, 48, {AtomOf("colr", ByteVector(10)), Atom("pasp"), Avc(0xFD)})});
    const CStsd stsd = Read(bytes);
    EXPECT_EQ(stsd.coderFormat, kAvc1VideoCoderFormat);
    EXPECT_EQ(stsd.GetNALLengthSize(), 2U);
    EXPECT_TRUE(std::holds_alternative<std::shared_ptr<const CSPS>>(stsd.GetSPS()));
    EXPECT_TRUE(std::holds_alternative<std::shared_ptr<const CPPS>>(stsd.GetPPS()));
    EXPECT_EQ(stsd.GetVPS(), nullptr);
}

TEST(CStsd, GivesFourForHvc1WhateverItsRecordSays) {
    ByteVector record = EmptyHvcC();
    record[8 + 21] = 0xFD;  // lengthSizeMinusOne 1
    const CStsd stsd = Read(Stsd({VideoEntry("hvc1", 64, 48, {record})}));
    EXPECT_EQ(stsd.coderFormat, kHvc1VideoCoderFormat);
    EXPECT_EQ(stsd.GetNALLengthSize(), 4U);
    EXPECT_EQ(Read(Stsd({VideoEntry("hvc1", 64, 48)})).GetNALLengthSize(), 4U);
}

TEST(CStsd, GivesZeroForAvc1WithoutARecord) {
    const CStsd stsd = Read(Stsd({VideoEntry("avc1", 64, 48)}));
    EXPECT_EQ(stsd.GetNALLengthSize(), 0U);
    EXPECT_TRUE(IsNone(stsd.GetSPS()));
    EXPECT_TRUE(IsNone(stsd.GetPPS()));
}

TEST(CStsd, HasNoEntryAndNoFormatForHev1AndKeepsTheBytes) {
    MovieRead read;
    read.g_strVideoCoderFormat = "as it was";
    const ByteVector bytes = Stsd({VideoEntry("hev1", 64, 48, {EmptyHvcC()})});
    const CStsd stsd = Read(bytes, read);
    EXPECT_EQ(stsd.coderFormat, "");
    EXPECT_TRUE(std::holds_alternative<std::monostate>(stsd.GetFirstEntry()));
    EXPECT_EQ(stsd.GetNALLengthSize(), 0U);
    EXPECT_EQ(read.g_strVideoCoderFormat, "as it was");
    EXPECT_EQ(stsd.data, bytes);
}

TEST(CStsd, StaysAtAFormatItDoesNotKnow) {
    // The entry behind it is never reached, however many repeats remain.
    const CStsd stsd = Read(Stsd({VideoEntry("hev1", 64, 48), VideoEntry("avc1", 64, 48)}));
    EXPECT_EQ(stsd.coderFormat, "");
}

TEST(CStsd, TellsTheReadTheFormatOfEachKind) {
    MovieRead read;
    (void)Read(Stsd({VideoEntry("avc1", 64, 48, {Avc()})}), read);
    (void)Read(Stsd({AudioEntry("sowt", 0)}), read);
    EXPECT_EQ(read.g_strVideoCoderFormat, kAvc1VideoCoderFormat);
    EXPECT_EQ(read.g_strAudioCoderFormat, kSowtAudioCoderFormat);
    (void)Read(Stsd({AudioEntry("twos", 0)}), read);
    EXPECT_EQ(read.g_strAudioCoderFormat, kTwosAudioCoderFormat);
}

TEST(CStsd, AnswersNoParameterSetsWhereTheFirstEntryIsSound) {
    const CStsd stsd = Read(Stsd({AudioEntry("mp4a", 0), VideoEntry("hvc1", 64, 48)}));
    EXPECT_EQ(stsd.coderFormat, kHvc1VideoCoderFormat);
    EXPECT_NE(stsd.videoEntry, nullptr);
    EXPECT_NE(stsd.audioEntry, nullptr);
    EXPECT_EQ(stsd.GetNALLengthSize(), 0U);
    EXPECT_TRUE(IsNone(stsd.GetSPS()));
    const CStsd soundAlone = Read(Stsd({AudioEntry("mp4a", 0)}));
    EXPECT_TRUE(IsNone(soundAlone.GetSPS()));
}

TEST(CStsd, AnswersNoParameterSetsWhereTheLastEntryIsSound) {
    const CStsd control = Read(Stsd({VideoEntry("avc1", 64, 48, {Avc()})}));
    EXPECT_FALSE(IsNone(control.GetSPS()));
    const ByteVector first = VideoEntry("avc1", 64, 48, {Avc()});
    const ByteVector second = AudioEntry("sowt", 0);
    const CStsd stsd = Read(Stsd({first, second}));
    EXPECT_TRUE(IsNone(stsd.GetSPS()));
    EXPECT_EQ(stsd.coderFormat, kSowtAudioCoderFormat);
}

TEST(CStsd, LooksForTheOthersBehindAnAvc1InTheSameStepUnderTheOldLength) {
    // One entry is announced, and two are taken; the second is read for the length of the first.
    const ByteVector first = VideoEntry("avc1", 64, 48);
    ByteVector bytes = Stsd({first});
    AppendBytes(bytes, AudioEntry("sowt", 1, {ByteVector(16, 0x11)}));
    StoreBig32(bytes, 0, static_cast<std::uint32_t>(bytes.size()));
    ASSERT_EQ(first.size(), 86U);
    const CStsd stsd = Read(bytes);
    EXPECT_EQ(stsd.RecognisedEntries(), 2U);
    EXPECT_EQ(stsd.coderFormat, kSowtAudioCoderFormat);
    // The old length of 86 overruns the atom: no second test refuses it, and what is there is read.
    EXPECT_EQ(stsd.audioEntry->bpsample, 0x11111111U);
}

TEST(CStsd, LooksForAnAvc1BehindAnotherFormatOnlyInTheNextStep) {
    ByteVector bytes = Stsd({AudioEntry("sowt", 0)});
    AppendBytes(bytes, VideoEntry("avc1", 64, 48));
    EXPECT_EQ(Read(bytes).RecognisedEntries(), 1U);
    StoreBig32(bytes, 12, 2);
    EXPECT_EQ(Read(bytes).RecognisedEntries(), 2U);
}

TEST(CStsd, TakesAnEntryOfLengthZeroOnce) {
    ByteVector bytes = Stsd({WithSize(VideoEntry("avc1", 64, 48, {Avc()}), 0)});
    StoreBig32(bytes, 12, 0xFFFFFFFF);
    const CStsd stsd = Read(bytes);
    EXPECT_EQ(stsd.RecognisedEntries(), 1U);
    EXPECT_EQ(stsd.coderFormat, kAvc1VideoCoderFormat);
    EXPECT_EQ(stsd.GetNALLengthSize(), 0U);  // all fields of an entry without bytes are 0
}

TEST(CStsd, TakesNoEntryThatOverrunsTheAtom) {
    const ByteVector entry = VideoEntry("avc1", 64, 48);
    const auto size = static_cast<std::uint32_t>(entry.size());
    EXPECT_EQ(Read(Stsd({WithSize(entry, size)})).RecognisedEntries(), 1U);
    EXPECT_EQ(Read(Stsd({WithSize(entry, size + 1)})).RecognisedEntries(), 0U);
}

TEST(CStsd, GivesTheDecoderSpecificBytesOfAnEsds) {
    const CStsd stsd = Read(Stsd({AudioEntry("mp4a", 0, {test::Esds(ByteVector{0x12, 0x10})})}));
    const auto info = stsd.GetAudioSpecificInfo();
    ASSERT_TRUE(info.has_value());
    ASSERT_NE(info->bytes, nullptr);
    EXPECT_THAT(*info->bytes, ElementsAre(0x12, 0x10));
    EXPECT_EQ(Audio(stsd).MaximumBitrate(), 128000U);
    EXPECT_EQ(Audio(stsd).AverageBitrate(), 96000U);
}

TEST(CStsd, GivesAnEmptyHolderForMp4aWithoutAnEsds) {
    const auto info = Read(Stsd({AudioEntry("mp4a", 0)})).GetAudioSpecificInfo();
    ASSERT_TRUE(info.has_value());
    EXPECT_EQ(info->bytes, nullptr);
}

TEST(CStsd, GivesNoDecoderSpecificBytesForAnotherCoder) {
    const ByteVector esds = test::Esds(ByteVector{0x12, 0x10});
    EXPECT_FALSE(Read(Stsd({AudioEntry("sowt", 0, {esds})})).GetAudioSpecificInfo().has_value());
    EXPECT_FALSE(Read(Stsd({VideoEntry("avc1", 64, 48)})).GetAudioSpecificInfo().has_value());
}

TEST(VideoEntry, ReadsEveryFieldAtItsPlace) {
    ByteVector entry(86);
    for (std::size_t i = 0; i < entry.size(); ++i) {
        entry[i] = static_cast<std::uint8_t>(i);
    }
    StoreBig32(entry, 0, 86);
    StoreBig32(entry, 4, FourCC("avc1"));
    const CStsd stsd = Read(Stsd({entry}));
    const auto& video = Video(stsd);
    EXPECT_EQ(video.size, 86U);
    EXPECT_EQ(video.dformat, FourCC("avc1"));
    EXPECT_EQ(video.rsvd1, 0x08090A0BU);
    EXPECT_EQ(video.rsvd2, 0x0C0DU);
    EXPECT_EQ(video.drindex, 0x0E0FU);
    EXPECT_EQ(video.vrsn, 0x1011U);
    EXPECT_EQ(video.rlevel, 0x1213U);
    EXPECT_EQ(video.vdr, 0x14151617U);
    EXPECT_EQ(video.tquality, 0x18191A1BU);
    EXPECT_EQ(video.squality, 0x1C1D1E1FU);
    EXPECT_EQ(video.wt, 0x2021U);
    EXPECT_EQ(video.ht, 0x2223U);
    EXPECT_EQ(video.horres, 0x24252627U);
    EXPECT_EQ(video.verres, 0x28292A2BU);
    EXPECT_EQ(video.dasize, 0x2C2D2E2FU);
    EXPECT_EQ(video.fcount, 0x3031U);
    EXPECT_EQ(video.dpth, 0x5253U);
    EXPECT_EQ(video.ctable, 0x5455U);
}

TEST(VideoEntry, EndsItsScanAtARecordThatOverrunsIt) {
    const ByteVector record = Avc(0xFD);
    const auto size = static_cast<std::uint32_t>(record.size());
    // The control has both records; the last one stays.
    const CStsd both = Read(Stsd({VideoEntry("avc1", 64, 48, {Avc(0xFE), record})}));
    EXPECT_EQ(both.GetNALLengthSize(), 2U);
    const CStsd overrun =
        Read(Stsd({VideoEntry("avc1", 64, 48, {Avc(0xFE), WithSize(record, size + 1)})}));
    EXPECT_EQ(overrun.GetNALLengthSize(), 3U);
    const CStsd first = Read(Stsd({VideoEntry("avc1", 64, 48, {WithSize(record, 0), Avc(0xFE)})}));
    EXPECT_EQ(first.GetNALLengthSize(), 0U);
}

TEST(VideoEntry, StepsThroughAColrOfLengthZero) {
    const ByteVector colr = WithSize(Atom("colr"), 0);
    EXPECT_EQ(Read(Stsd({VideoEntry("avc1", 64, 48, {colr, Avc()})})).GetNALLengthSize(), 4U);
}

TEST(VideoEntry, SkipsAColrByItsLengthWithoutATestThatItFits) {
    const ByteVector colr = WithSize(Atom("colr"), 0xFFFFFFF0);
    EXPECT_EQ(Read(Stsd({VideoEntry("avc1", 64, 48, {colr, Avc()})})).GetNALLengthSize(), 0U);
}

TEST(VideoEntry, KeepsTheAvcRecordForTheLengthSizeWhenAnHvcCFollows) {
    const CStsd stsd = Read(Stsd({VideoEntry("avc1", 64, 48, {Avc(0xFD), EmptyHvcC()})}));
    EXPECT_EQ(stsd.GetNALLengthSize(), 2U);
    // The parameter sets come from the last record of either kind, and that one is empty.
    EXPECT_TRUE(IsNone(stsd.GetSPS()));
}

TEST(VideoEntry, StoresAnHvcCTooShortToBeRead) {
    const CStsd stsd = Read(Stsd({VideoEntry("hvc1", 64, 48, {Atom("hvcC")})}));
    EXPECT_TRUE(std::holds_alternative<std::shared_ptr<const HVCDecoderConfigurationRecord>>(
        Video(stsd).decoderConfig));
    EXPECT_TRUE(IsNone(stsd.GetSPS()));
    EXPECT_TRUE(IsNone(stsd.GetPPS()));
    EXPECT_EQ(stsd.GetVPS(), nullptr);
}

TEST(AudioEntry, ReadsEveryFieldAtItsPlace) {
    ByteVector entry(52);
    for (std::size_t i = 0; i < entry.size(); ++i) {
        entry[i] = static_cast<std::uint8_t>(i);
    }
    StoreBig32(entry, 0, 52);
    StoreBig32(entry, 4, FourCC("twos"));
    StoreBig16(entry, 16, 1);
    const CStsd stsd = Read(Stsd({entry}));
    const auto& audio = Audio(stsd);
    EXPECT_EQ(audio.ssize, 52U);
    EXPECT_EQ(audio.dformat, FourCC("twos"));
    EXPECT_EQ(audio.rsvd1, 0x08090A0BU);
    EXPECT_EQ(audio.rsvd2, 0x0C0DU);
    EXPECT_EQ(audio.drindex, 0x0E0FU);
    EXPECT_EQ(audio.vrsn, 1U);
    EXPECT_EQ(audio.rvrsn, 0x1213U);
    EXPECT_EQ(audio.vndr, 0x14151617U);
    EXPECT_EQ(audio.nchanel, 0x1819U);
    EXPECT_EQ(audio.smplsize, 0x1A1BU);
    EXPECT_EQ(audio.cid, 0x1C1DU);
    EXPECT_EQ(audio.psize, 0x1E1FU);
    EXPECT_EQ(audio.srate, 0x20212223U);
    EXPECT_EQ(audio.sppacket, 0x24252627U);
    EXPECT_EQ(audio.bppacket, 0x28292A2BU);
    EXPECT_EQ(audio.bpframe, 0x2C2D2E2FU);
    EXPECT_EQ(audio.bpsample, 0x30313233U);
}

TEST(AudioEntry, ReadsTheFourFieldsOfVersionOneFrom52BytesOn) {
    const ByteVector fields(16, 0x22);
    EXPECT_EQ(Audio(Read(Stsd({AudioEntry("twos", 1, {fields})}))).bpsample, 0x22222222U);
    const ByteVector fifteen(15, 0x22);
    EXPECT_EQ(Audio(Read(Stsd({AudioEntry("twos", 1, {fifteen})}))).sppacket, 0U);
    EXPECT_EQ(Audio(Read(Stsd({AudioEntry("twos", 0, {fields})}))).sppacket, 0U);
    EXPECT_EQ(Audio(Read(Stsd({AudioEntry("twos", 2, {fields})}))).sppacket, 0U);
}

TEST(AudioEntry, FindsAnEsdsInsideAWave) {
    const ByteVector wave = Atom("wave", {AtomOf("frma", ByteVector{'m', 'p', '4', 'a'}),
                                          test::Esds(ByteVector{0x11, 0x90})});
    const CStsd stsd = Read(Stsd({AudioEntry("mp4a", 1, {ByteVector(16), wave})}));
    ASSERT_NE(stsd.GetAudioSpecificInfo()->bytes, nullptr);
    EXPECT_THAT(*stsd.GetAudioSpecificInfo()->bytes, ElementsAre(0x11, 0x90));
}

TEST(AudioEntry, KeepsTheLastEsdsAndPassesOverOneThatOverruns) {
    const ByteVector one = test::Esds(ByteVector{0x11});
    const ByteVector two = test::Esds(ByteVector{0x22});
    const CStsd last = Read(Stsd({AudioEntry("mp4a", 0, {one, two})}));
    EXPECT_THAT(*last.GetAudioSpecificInfo()->bytes, ElementsAre(0x22));
    const auto size = static_cast<std::uint32_t>(two.size());
    const CStsd overrun = Read(Stsd({AudioEntry("mp4a", 0, {one, WithSize(two, size + 1)})}));
    EXPECT_THAT(*overrun.GetAudioSpecificInfo()->bytes, ElementsAre(0x11));
    const CStsd behind = Read(Stsd({AudioEntry("mp4a", 0, {WithSize(one, 0), two})}));
    EXPECT_THAT(*behind.GetAudioSpecificInfo()->bytes, ElementsAre(0x22));
}

TEST(AudioEntry, GivesNoBitrateForAnotherFormatOrWithoutAnEsds) {
    EXPECT_EQ(Audio(Read(Stsd({AudioEntry("mp4a", 0)}))).MaximumBitrate(), 0U);
    const ByteVector esds = test::Esds(ByteVector{0x11});
    EXPECT_EQ(Audio(Read(Stsd({AudioEntry("sowt", 0, {esds})}))).AverageBitrate(), 0U);
}

}  // namespace
}  // namespace clipfix
