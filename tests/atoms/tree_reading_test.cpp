#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <thread>

#include "atoms/kind_tags.h"
#include "atoms/moov.h"
#include "atoms/reference_movie.h"
#include "base/fourcc.h"

namespace clipfix {
namespace {

using test::AacTrak;
using test::Atom;
using test::AtomOf;
using test::Hdlr;
using test::Mdhd;
using test::Moov;
using test::ReadMoov;
using test::Table;
using test::Tkhd;
using test::VideoMdia;
using test::VideoMinf;
using test::VideoStbl;
using test::VideoTrak;
using test::WithSize;

CMinf ReadMinf(const ByteVector& bytes) {
    MovieRead read;
    return {AtomBlock::Of(bytes), read};
}

CMdia ReadMdia(const ByteVector& bytes) {
    MovieRead read;
    return {AtomBlock::Of(bytes), read};
}

CTrak ReadTrak(const ByteVector& bytes) {
    MovieRead read;
    return {AtomBlock::Of(bytes), read};
}

// A track around an `mdia` made of these children.
ByteVector TrakOf(test::Atoms mdiaChildren) {
    return Atom("trak", {Tkhd(1, 200), Atom("mdia", mdiaChildren)});
}

TEST(CMoov, ReadsItsHeaderAndTracksInFileOrder) {
    MovieRead read;
    const ByteVector bytes = Moov({AacTrak(), test::TimecodeTrak(), VideoTrak()});
    const CMoov moov(bytes, read);
    EXPECT_EQ(moov.size, bytes.size());
    EXPECT_EQ(moov.type, FourCC("moov"));
    ASSERT_NE(moov.mvhd, nullptr);
    EXPECT_EQ(moov.mvhd->timescale, 1000U);
    ASSERT_EQ(moov.tracks.size(), 3U);
    EXPECT_EQ(moov.tracks[0]->trackType, kAudioTrack);
    EXPECT_EQ(moov.tracks[1]->trackType, kUnknownTrack);
    EXPECT_EQ(moov.tracks[2]->trackType, kVideoTrack);
    EXPECT_EQ(read.g_nTrackCount, 3U);
    EXPECT_EQ(read.g_nStblChildBytes, 0U);
    EXPECT_EQ(read.g_strVideoCoderFormat, kAvc1VideoCoderFormat);
    EXPECT_EQ(read.g_strAudioCoderFormat, kMp4aAudioCoderFormat);
}

TEST(CMoov, StartsTheCountOfTracksAnewForEachRead) {
    MovieRead read;
    const CMoov two(Moov({VideoTrak(), AacTrak()}), read);
    EXPECT_EQ(read.g_nTrackCount, 2U);
    const CMoov one(Moov({VideoTrak()}), read);
    EXPECT_EQ(read.g_nTrackCount, 1U);
}

TEST(CMoov, ReadsAHeaderBehindTheTracks) {
    const auto moov = ReadMoov(Atom("moov", {VideoTrak(), AacTrak(), test::Mvhd(600, 1)}));
    EXPECT_EQ(moov->tracks.size(), 2U);
    ASSERT_NE(moov->mvhd, nullptr);
    EXPECT_EQ(moov->mvhd->timescale, 600U);
}

TEST(CMoov, LetsASecondHeaderReplaceTheFirst) {
    const auto moov = ReadMoov(Atom("moov", {test::Mvhd(600, 1), VideoTrak(), test::Mvhd(700, 2)}));
    EXPECT_EQ(moov->mvhd->timescale, 700U);
}

TEST(CMoov, PassesOverChildrenItDoesNotKnow) {
    const auto moov =
        ReadMoov(Atom("moov", {AtomOf("udta", ByteVector(37, 0x55)), test::Mvhd(600, 1),
                               AtomOf("meta", ByteVector(5)), VideoTrak(),
                               AtomOf("iods", ByteVector(3)), AacTrak()}));
    EXPECT_EQ(moov->tracks.size(), 2U);
    EXPECT_NE(moov->mvhd, nullptr);
}

TEST(CMoov, EndsAtATrackWithoutAMdia) {
    const ByteVector empty = Atom("trak", {Tkhd(1, 200)});
    EXPECT_EQ(ReadMoov(Moov({VideoTrak(), empty, AacTrak()}))->tracks.size(), 1U);
    EXPECT_TRUE(ReadMoov(Moov({empty, VideoTrak(), AacTrak()}))->tracks.empty());
    EXPECT_EQ(ReadMoov(Moov({VideoTrak(), AacTrak()}))->tracks.size(), 2U);
}

TEST(CMoov, SlidesIntoATrackThatOverrunsIt) {
    ByteVector track = VideoTrak();
    const auto size = static_cast<std::uint32_t>(track.size());
    EXPECT_EQ(ReadMoov(Moov({WithSize(track, size)}))->tracks.size(), 1U);
    EXPECT_TRUE(ReadMoov(Moov({WithSize(track, size + 1)}))->tracks.empty());
    // A sound track behind it is found by sliding on.
    EXPECT_EQ(ReadMoov(Moov({WithSize(track, 0x7FFFFFFF), AacTrak()}))->tracks.size(), 1U);
}

TEST(CMoov, SlidesPastAHeaderOrTrackOfSizeZero) {
    const auto moov = ReadMoov(Atom("moov", {WithSize(Atom("mvhd"), 0), WithSize(Atom("trak"), 0),
                                             test::Mvhd(600, 1), VideoTrak()}));
    EXPECT_EQ(moov->tracks.size(), 1U);
    EXPECT_EQ(moov->mvhd->timescale, 600U);
}

TEST(CMoov, LooksAtAChildThatEndsWithIt) {
    // The scan of `moov` still looks at its last eight bytes: a track of eight bytes, without a
    // `mdia`, ends the read there as it would anywhere.
    EXPECT_EQ(ReadMoov(Moov({VideoTrak(), Atom("trak")}))->tracks.size(), 1U);
    const auto moov = ReadMoov(Atom("moov", {test::Mvhd(600, 1), Atom("mvhd")}));
    EXPECT_EQ(moov->mvhd->size, 8U);  // the second header, all fields 0
    EXPECT_EQ(moov->mvhd->timescale, 0U);
}

TEST(CMoov, DoesNotConsultItsOwnSizeField) {
    EXPECT_EQ(ReadMoov(WithSize(Moov({VideoTrak()}), 1))->tracks.size(), 1U);
}

TEST(CMoov, IsEmptyForABlockShorterThanAHead) {
    for (std::size_t size = 0; size < 16; ++size) {
        const auto moov = ReadMoov(ByteVector(size));
        EXPECT_TRUE(moov->tracks.empty());
        EXPECT_EQ(moov->mvhd, nullptr);
    }
}

TEST(CTrak, ReadsTheChildAtByteEightAsItsHeaderWhateverItsCode) {
    const CTrak trak = ReadTrak(Atom(
        "trak", {AtomOf("free", ByteVector(92)), Tkhd(9, 200), VideoMdia(VideoMinf(VideoStbl()))}));
    EXPECT_EQ(trak.tkhd->type, FourCC("free"));
    EXPECT_EQ(trak.tkhd->trackID, 0U);
    EXPECT_EQ(trak.tkhd->size, 100U);
    EXPECT_NE(trak.mdia, nullptr);
}

TEST(CTrak, LosesAMdiaThatStandsFirst) {
    const CTrak trak = ReadTrak(Atom("trak", {VideoMdia(VideoMinf(VideoStbl())), Tkhd(1, 200)}));
    EXPECT_EQ(trak.tkhd->type, FourCC("mdia"));
    EXPECT_EQ(trak.mdia, nullptr);
}

TEST(CTrak, HasNothingBehindAHeaderThatOverrunsIt) {
    const ByteVector mdia = VideoMdia(VideoMinf(VideoStbl()));
    for (const std::uint32_t size : {0x7FFFFFFFU, 0xFFFFFFF8U, 0xFFFFFFFFU}) {
        const CTrak trak = ReadTrak(Atom("trak", {WithSize(Tkhd(1, 200), size), mdia}));
        EXPECT_EQ(trak.tkhd->size, size);
        EXPECT_EQ(trak.tkhd->trackID, 1U);
        EXPECT_EQ(trak.mdia, nullptr);
    }
}

TEST(CTrak, LooksInsideItsHeaderWhenThatSaysZero) {
    const CTrak trak =
        ReadTrak(Atom("trak", {WithSize(Tkhd(1, 200), 0), VideoMdia(VideoMinf(VideoStbl()))}));
    EXPECT_EQ(trak.tkhd->trackID, 0U);  // no bytes of it were taken
    EXPECT_NE(trak.mdia, nullptr);
}

TEST(CTrak, PassesOverAnUnknownAtomBetweenHeaderAndMedia) {
    const CTrak trak = ReadTrak(Atom("trak", {Tkhd(1, 200), AtomOf("load", ByteVector(16, 1)),
                                              VideoMdia(VideoMinf(VideoStbl()))}));
    EXPECT_NE(trak.mdia, nullptr);
    EXPECT_EQ(trak.trackType, kVideoTrack);
}

TEST(CTrak, PassesOverAMdiaThatOverrunsIt) {
    const ByteVector mdia = VideoMdia(VideoMinf(VideoStbl()));
    const auto size = static_cast<std::uint32_t>(mdia.size());
    EXPECT_NE(ReadTrak(Atom("trak", {Tkhd(1, 200), WithSize(mdia, size)})).mdia, nullptr);
    EXPECT_EQ(ReadTrak(Atom("trak", {Tkhd(1, 200), WithSize(mdia, size + 1)})).mdia, nullptr);
}

TEST(CTrak, TakesLettersInsideAnUnknownAtomForAChild) {
    // Inside an atom that the scan does not know stands a whole `mdia` of sound; it comes later
    // than the video's, so it stays.
    const ByteVector sound = test::AacMdia(test::AudioMinf(test::AacStbl()));
    const CTrak trak =
        ReadTrak(Atom("trak", {Tkhd(1, 200), VideoMdia(VideoMinf(VideoStbl())),
                               Atom("meta", {AtomOf("name", ByteVector(3)), sound})}));
    EXPECT_EQ(trak.trackType, kAudioTrack);
}

TEST(CTrak, TakesLettersInsideUserDataForAChildOnlyWhereThatIsNotTakenWhole) {
    const ByteVector sound = test::AacMdia(test::AudioMinf(test::AacStbl()));
    const ByteVector video = VideoMdia(VideoMinf(VideoStbl()));
    const ByteVector userData = Atom("udta", {sound});
    EXPECT_EQ(ReadTrak(Atom("trak", {Tkhd(1, 200), video, userData})).trackType, kVideoTrack);
    const auto size = static_cast<std::uint32_t>(userData.size());
    const CTrak overrun =
        ReadTrak(Atom("trak", {Tkhd(1, 200), video, WithSize(userData, size + 1)}));
    EXPECT_EQ(overrun.trackType, kAudioTrack);
}

TEST(CTrak, LosesItsMediaToALaterOneThatIsUnsound) {
    const ByteVector video = VideoMdia(VideoMinf(VideoStbl()));
    EXPECT_NE(ReadTrak(Atom("trak", {Tkhd(1, 200), Atom("mdia"), video})).mdia, nullptr);
    const ByteVector padding(8);
    EXPECT_EQ(ReadTrak(Atom("trak", {Tkhd(1, 200), video, Atom("mdia"), padding})).mdia, nullptr);
}

TEST(CTrak, LooksAtTheNewPlaceInTheSameStep) {
    // The last eight bytes of a track are no place where a step begins. Behind an `edts` they are
    // looked at all the same, as the test for `mdia` follows in the same step.
    const ByteVector video = VideoMdia(VideoMinf(VideoStbl()));
    EXPECT_NE(ReadTrak(Atom("trak", {Tkhd(1, 200), video, Atom("mdia")})).mdia, nullptr);
    EXPECT_EQ(ReadTrak(Atom("trak", {Tkhd(1, 200), video, Atom("edts"), Atom("mdia")})).mdia,
              nullptr);
    // Behind a `udta` the step is over.
    EXPECT_NE(ReadTrak(Atom("trak", {Tkhd(1, 200), video, Atom("udta"), Atom("mdia")})).mdia,
              nullptr);
}

TEST(CTrak, ReadsItsEditListFromTheBytesOfItsHeader) {
    const ByteVector edts = Atom("edts", {Table("elst", 1, {200, 1000, 0x10000})});
    const CTrak trak =
        ReadTrak(Atom("trak", {Tkhd(1, 200), edts, VideoMdia(VideoMinf(VideoStbl()))}));
    ASSERT_NE(trak.edts, nullptr);
    EXPECT_EQ(trak.edts->size, 36U);
    EXPECT_EQ(trak.edts->type, FourCC("tkhd"));
    // Byte 8 of the header is its version and flags: 7.
    EXPECT_EQ(trak.edts->elst.size, 7U);
    EXPECT_NE(trak.mdia, nullptr);
}

TEST(CTrak, TakesItsNumbersFromTheAtomsBelow) {
    const CTrak trak = ReadTrak(VideoTrak());
    EXPECT_EQ(trak.timescale, 30000U);
    EXPECT_EQ(trak.mediaDuration, 6000U);
    EXPECT_EQ(trak.sampleCount, 6U);
    EXPECT_EQ(trak.sampleDuration, 1000U);
    EXPECT_EQ(trak.trackDuration, 200U);
    EXPECT_EQ(trak.sampleRate, 30.0);
    EXPECT_EQ(trak.coderFormat, kAvc1VideoCoderFormat);
    EXPECT_TRUE(std::holds_alternative<std::shared_ptr<const CVideoSampleDescriptionEntery>>(
        trak.sampleEntry));
    EXPECT_EQ(ReadTrak(AacTrak()).sampleRate, 46.875);
}

TEST(CTrak, CutsTheRateToAWholeNumberForSowtAlone) {
    // 10 samples over 7 ticks of 1/1000 second: 1428.57... a second.
    const auto rateOf = [](std::string_view format) {
        return ReadTrak(
                   TrakOf({Mdhd(1000, 7), Hdlr("soun"), test::AudioMinf(test::PcmStbl(format))}))
            .sampleRate;
    };
    EXPECT_EQ(rateOf("sowt"), 1428.0);
    EXPECT_EQ(rateOf("twos"), 1000.0 / 7.0 * 10.0);
    // The media keeps its own, which is not cut.
    const CTrak sowt =
        ReadTrak(TrakOf({Mdhd(1000, 7), Hdlr("soun"), test::AudioMinf(test::PcmStbl("sowt"))}));
    EXPECT_EQ(sowt.mdia->sampleRate, 1000.0 / 7.0 * 10.0);
}

TEST(CTrak, IsOfUnknownKindUnderAnyOtherHandler) {
    for (const char* subtype : {"tmcd", "text", "sbtl", "hint", "meta"}) {
        const CTrak trak =
            ReadTrak(TrakOf({Mdhd(30000, 6000), Hdlr(subtype), VideoMinf(VideoStbl())}));
        EXPECT_EQ(trak.trackType, kUnknownTrack) << subtype;
    }
}

TEST(CTrak, AsksTheMediaHeaderOnlyWhereThereIsNoHandler) {
    EXPECT_EQ(ReadTrak(TrakOf({Mdhd(30000, 6000), VideoMinf(VideoStbl())})).trackType, kVideoTrack);
    EXPECT_EQ(ReadTrak(TrakOf({Mdhd(30000, 6000), test::AudioMinf(VideoStbl())})).trackType,
              kAudioTrack);
    EXPECT_EQ(
        ReadTrak(TrakOf({Mdhd(30000, 6000), Atom("minf", {Atom("gmhd"), VideoStbl()})})).trackType,
        kUnknownTrack);
    EXPECT_EQ(ReadTrak(TrakOf({Mdhd(30000, 6000), Atom("minf", {VideoStbl()})})).trackType,
              kUnknownTrack);
    EXPECT_EQ(
        ReadTrak(TrakOf({Mdhd(30000, 6000), Hdlr("vide"), test::AudioMinf(VideoStbl())})).trackType,
        kVideoTrack);
}

TEST(CTrak, CountsAnAbsentTableAsEmpty) {
    const ByteVector stbl = Atom("stbl", {});
    const CTrak trak = ReadTrak(VideoTrak(stbl));
    ASSERT_NE(trak.mdia, nullptr);
    EXPECT_EQ(trak.trackType, kVideoTrack);
    EXPECT_EQ(trak.sampleCount, 0U);
    EXPECT_EQ(trak.sampleDuration, 0U);
    EXPECT_EQ(trak.coderFormat, "");
    EXPECT_EQ(trak.SampleDescription(), nullptr);
    EXPECT_EQ(trak.mdia->sampleRate, 0.0);
}

TEST(CTrak, IsItselfOnlyForItsOwnKind) {
    const CTrak trak = ReadTrak(VideoTrak());
    EXPECT_EQ(trak.HasTrackType("video_track"), &trak);
    EXPECT_EQ(trak.HasTrackType(kAudioTrack), nullptr);
}

TEST(CMdia, MisreadsAHandlerThatStandsFirstAsItsHeader) {
    const CMdia mdia =
        ReadMdia(Atom("mdia", {Hdlr("vide"), Mdhd(30000, 6000), VideoMinf(VideoStbl())}));
    EXPECT_EQ(mdia.mdhd.type, FourCC("hdlr"));
    EXPECT_EQ(mdia.hdlr, nullptr);
    EXPECT_EQ(mdia.mediaType, kUnknownMedia);
    EXPECT_NE(mdia.minf, nullptr);
}

TEST(CMdia, TellsTheMediaByTheHandlerAlone) {
    const ByteVector minf = VideoMinf(VideoStbl());
    EXPECT_EQ(ReadMdia(Atom("mdia", {Mdhd(1, 1), Hdlr("vide"), minf})).mediaType, kVideoMedia);
    EXPECT_EQ(ReadMdia(Atom("mdia", {Mdhd(1, 1), Hdlr("soun"), minf})).mediaType, kAudioMedia);
    EXPECT_EQ(ReadMdia(Atom("mdia", {Mdhd(1, 1), Hdlr("text"), minf})).mediaType, kUnknownMedia);
    EXPECT_EQ(ReadMdia(Atom("mdia", {Mdhd(1, 1), minf})).mediaType, kUnknownMedia);
}

TEST(CMdia, WorksOutSamplesPerSecond) {
    EXPECT_EQ(ReadMdia(VideoMdia(VideoMinf(VideoStbl()))).sampleRate, 30.0);
    const CMdia endless =
        ReadMdia(Atom("mdia", {Mdhd(30000, 0), Hdlr("vide"), VideoMinf(VideoStbl())}));
    EXPECT_EQ(endless.sampleRate, std::numeric_limits<double>::infinity());
    const CMdia nothing =
        ReadMdia(Atom("mdia", {Mdhd(0, 0), Hdlr("vide"), VideoMinf(VideoStbl())}));
    EXPECT_TRUE(std::isnan(nothing.sampleRate));
}

TEST(CMdia, LosesItsMinfToALaterOneThatIsUnsound) {
    const ByteVector good = VideoMinf(VideoStbl());
    const ByteVector bad = Atom("minf", {test::Vmhd()});
    EXPECT_NE(ReadMdia(Atom("mdia", {Mdhd(1, 1), bad, good})).minf, nullptr);
    EXPECT_EQ(ReadMdia(Atom("mdia", {Mdhd(1, 1), good, bad})).minf, nullptr);
    EXPECT_EQ(ReadMdia(Atom("mdia", {Mdhd(1, 1), bad})).minf, nullptr);
}

TEST(CMdia, DoesNotLookAtItsLastEightBytes) {
    const ByteVector good = VideoMinf(VideoStbl());
    EXPECT_NE(ReadMdia(Atom("mdia", {Mdhd(1, 1), good, Atom("minf")})).minf, nullptr);
    EXPECT_EQ(ReadMdia(Atom("mdia", {Mdhd(1, 1), good, Atom("minf"), ByteVector(1)})).minf,
              nullptr);
}

TEST(CMinf, TellsTheMediaByTheHeaderThatStandsFirst) {
    const ByteVector stbl = VideoStbl();
    EXPECT_EQ(ReadMinf(Atom("minf", {test::Vmhd(), stbl})).mediaType, kVideoMedia);
    EXPECT_EQ(ReadMinf(Atom("minf", {test::Smhd(), stbl})).mediaType, kAudioMedia);
    const CMinf base = ReadMinf(Atom("minf", {Atom("gmhd", {Atom("gmin")}), stbl}));
    EXPECT_EQ(base.mediaType, kUnknownMedia);
    EXPECT_NE(base.gmhd, nullptr);
    EXPECT_EQ(base.gmin, nullptr);  // inside `gmhd` it is not looked for
    EXPECT_NE(base.stbl, nullptr);
}

TEST(CMinf, HasNoMediaUnderAHandlerThatStandsFirstAndStillFindsItsTables) {
    const CMinf minf = ReadMinf(Atom("minf", {Hdlr("url "), test::Vmhd(), VideoStbl()}));
    EXPECT_EQ(minf.mediaType, "");
    EXPECT_EQ(minf.vmhd, nullptr);
    EXPECT_NE(minf.hdlr, nullptr);
    EXPECT_NE(minf.stbl, nullptr);
}

TEST(CMinf, HasNoMediaUnderAHeaderThatOverrunsIt) {
    const ByteVector vmhd = test::Vmhd();
    const CMinf whole = ReadMinf(Atom("minf", {vmhd}));
    EXPECT_EQ(whole.mediaType, kVideoMedia);
    const CMinf overrun = ReadMinf(Atom("minf", {WithSize(vmhd, 21)}));
    EXPECT_EQ(overrun.mediaType, "");
    const CMinf behind = ReadMinf(Atom("minf", {WithSize(vmhd, 0xFFFFFFFF), VideoStbl()}));
    EXPECT_EQ(behind.mediaType, "");
    EXPECT_NE(behind.stbl, nullptr);
}

TEST(CMinf, LooksForGminAtItsOwnLevel) {
    const CMinf minf =
        ReadMinf(Atom("minf", {Atom("gmhd"), AtomOf("gmin", ByteVector(16, 7)), VideoStbl()}));
    ASSERT_NE(minf.gmin, nullptr);
    EXPECT_EQ(minf.gmin->Gmode, 0x0707U);
}

TEST(CMinf, DropsATableWithAChildThatIsNotCounted) {
    const auto with = [](const ByteVector& extra) {
        return VideoMinf(
            Atom("stbl", {test::AvcStsd(), Table("stts", 1, {6, 1000}), Table("stsc", 1, {1, 6, 1}),
                          test::Stsz({1}), Table("stco", 1, {48}), extra}));
    };
    EXPECT_NE(ReadMinf(with(AtomOf("sgpd", ByteVector(9)))).stbl, nullptr);
    EXPECT_NE(ReadMinf(with(AtomOf("sdtp", ByteVector(9)))).stbl, nullptr);
    EXPECT_EQ(ReadMinf(with(AtomOf("stps", ByteVector(9)))).stbl, nullptr);
    EXPECT_NE(ReadMinf(with(AtomOf("free", ByteVector(9)))).stbl, nullptr);
    EXPECT_EQ(ReadMinf(with(WithSize(AtomOf("free", ByteVector(9)), 18))).stbl, nullptr);
}

TEST(CMinf, LosesItsTablesToALaterOneThatFailsTheTest) {
    const ByteVector bad = Atom("stbl", {Atom("stps")});
    EXPECT_NE(ReadMinf(Atom("minf", {test::Vmhd(), bad, VideoStbl()})).stbl, nullptr);
    EXPECT_EQ(ReadMinf(Atom("minf", {test::Vmhd(), VideoStbl(), bad})).stbl, nullptr);
}

TEST(Loss, ClimbsFromTheTablesToTheEndOfTheRead) {
    const ByteVector damaged =
        VideoTrak(Atom("stbl", {test::AvcStsd(), AtomOf("stps", ByteVector(9))}));
    EXPECT_EQ(ReadMoov(Moov({AacTrak(), damaged, VideoTrak()}))->tracks.size(), 1U);
    EXPECT_TRUE(ReadMoov(Moov({damaged, AacTrak(), VideoTrak()}))->tracks.empty());
}

TEST(Loss, LeavesTheCoderFormatOfADroppedTrack) {
    MovieRead read;
    const CMoov moov(Moov({VideoTrak(Atom("stbl", {test::AvcStsd(), Atom("stps")}))}), read);
    EXPECT_TRUE(moov.tracks.empty());
    EXPECT_EQ(read.g_nTrackCount, 0U);
    EXPECT_EQ(read.g_strVideoCoderFormat, kAvc1VideoCoderFormat);
}

TEST(Getters, AnswerForTheFirstTrackOfEachKind) {
    const auto moov = ReadMoov(Moov({AacTrak(), VideoTrak(), test::PcmTrak("sowt")}));
    EXPECT_EQ(moov->GetTrack(kVideoTrack), moov->tracks[1].get());
    EXPECT_EQ(moov->GetTrack("audio_track"), moov->tracks[0].get());
    EXPECT_EQ(moov->GetVideoSampleRate(), 30.0);
    EXPECT_EQ(moov->GetAudioSampleRate(), 46.875);
    EXPECT_EQ(moov->GetVideoTimescale(), 30000U);
    EXPECT_EQ(moov->GetAudioTimescale(), 48000U);
    EXPECT_TRUE(std::holds_alternative<std::shared_ptr<const CSPS>>(moov->GetSPS()));
    EXPECT_TRUE(std::holds_alternative<std::shared_ptr<const CPPS>>(moov->GetPPS()));
    EXPECT_EQ(moov->GetVPS(), nullptr);
    EXPECT_TRUE(moov->GetAudioSpecificInfo().has_value());
}

TEST(Getters, AnswerZeroWithoutATrackOfTheKind) {
    const auto moov = ReadMoov(Moov({test::TimecodeTrak()}));
    EXPECT_EQ(moov->GetVideoSampleRate(), 0.0);
    EXPECT_EQ(moov->GetAudioSampleRate(), 0.0);
    EXPECT_EQ(moov->GetVideoTimescale(), 0U);
    EXPECT_EQ(moov->GetAudioTimescale(), 0U);
    EXPECT_TRUE(std::holds_alternative<std::monostate>(moov->GetSPS()));
    EXPECT_TRUE(std::holds_alternative<std::monostate>(moov->GetPPS()));
    EXPECT_EQ(moov->GetVPS(), nullptr);
    EXPECT_FALSE(moov->GetAudioSpecificInfo().has_value());
    EXPECT_EQ(moov->GetTrack(kVideoTrack), nullptr);
    EXPECT_NE(moov->GetTrack(kUnknownTrack), nullptr);
}

TEST(Getters, GiveNoDecoderSpecificBytesForPcmSound) {
    EXPECT_FALSE(
        ReadMoov(Moov({test::PcmTrak("twos"), AacTrak()}))->GetAudioSpecificInfo().has_value());
}

TEST(TwoReads, RunAtTheSameTimeWithoutKnowingOfEachOther) {
    const ByteVector first = Moov({VideoTrak(), AacTrak()});
    const ByteVector second = Moov({test::PcmTrak("twos")});
    const auto readMany = [](const ByteVector& bytes, std::size_t tracks, MovieRead& read) {
        for (int i = 0; i < 300; ++i) {
            const CMoov moov(bytes, read);
            ASSERT_EQ(moov.tracks.size(), tracks);
        }
    };
    MovieRead firstRead;
    MovieRead secondRead;
    std::thread other([&] { readMany(first, 2, firstRead); });
    readMany(second, 1, secondRead);
    other.join();
    EXPECT_EQ(firstRead.g_strAudioCoderFormat, kMp4aAudioCoderFormat);
    EXPECT_EQ(secondRead.g_strAudioCoderFormat, kTwosAudioCoderFormat);
    EXPECT_EQ(secondRead.g_strVideoCoderFormat, "");
}

}  // namespace
}  // namespace clipfix
