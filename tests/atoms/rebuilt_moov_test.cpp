#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "atoms/kind_tags.h"
#include "atoms/memory_sink.h"
#include "atoms/moov.h"
#include "atoms/reference_movie.h"
#include "base/fourcc.h"

namespace clipfix {
namespace {

using test::AacTrak;
using test::Atom;
using test::ByteBuilder;
using test::MemorySink;
using test::Moov;
using test::ReadMoov;
using test::Table;
using test::VideoTrak;

std::shared_ptr<std::vector<CSampleToChunkEntery>> Runs(
    std::initializer_list<CSampleToChunkEntery> runs) {
    return std::make_shared<std::vector<CSampleToChunkEntery>>(runs);
}

// 3 pictures in two chunks.
CAtomCreationRequest VideoRequest() {
    CAtomCreationRequest request;
    request.stcoEntries = {16, 816};
    request.stszEntries = {100, 200, 300};
    request.stscEntries = Runs({{1, 2, 1}, {2, 1, 1}});
    request.timescale = 30000;
    request.sampleRate = 30.0;
    request.requestType = kVideoRequest;
    return request;
}

// 2 frames in one chunk.
CAtomCreationRequest AudioRequest() {
    CAtomCreationRequest request;
    request.stcoEntries = {616};
    request.stszEntries = {50, 60};
    request.stscEntries = Runs({{1, 2, 1}});
    request.timescale = 48000;
    request.sampleRate = 46.875;
    request.requestType = kAudioRequest;
    return request;
}

ByteVector Written(CMoov& moov) {
    MemorySink sink;
    EXPECT_TRUE(moov.WriteMoov(sink));
    return sink.Bytes();
}

ByteVector RebuiltMoovBytes(const ByteVector& reference,
                            const CAtomCreationRequest& video = VideoRequest(),
                            const CAtomCreationRequest& audio = AudioRequest()) {
    const auto tree = ReadMoov(reference);
    const auto made = tree->CreateMoov(video, audio);
    return made != nullptr ? Written(*made) : ByteVector();
}

// The pieces that every rebuilt track has, as they are to be written.

void AppendHandler(ByteBuilder& image, std::string_view type, std::string_view subtype) {
    image.Big32(34).Text("hdlr").Big32(0).Text(type).Text(subtype).Zeros(12).Zeros(2);
}
void AppendNoTypeHandler(ByteBuilder& image) {
    image.Big32(34).Text("hdlr").Big32(0).Big32(0).Text("dhlr").Zeros(12).Zeros(2);
}
void AppendDataInformation(ByteBuilder& image) {
    image.Big32(36).Text("dinf");
    image.Big32(28).Text("dref").Big32(0).Big32(1).Big32(12).Text("alis").Big32(1);
}
void AppendEditList(ByteBuilder& image, std::uint32_t duration, std::uint32_t mediaTime) {
    image.Big32(36).Text("edts").Big32(28).Text("elst").Big32(0).Big32(1);
    image.Big32(duration).Big32(mediaTime).Big32(0x00010000);
}
void AppendMediaHeader(ByteBuilder& image, std::uint32_t timescale, std::uint32_t duration,
                       std::uint16_t language, std::uint16_t quality) {
    image.Big32(32).Text("mdhd").Big32(0).Big32(0).Big32(0);
    image.Big32(timescale).Big32(duration).Big16(language).Big16(quality);
}

// 579 bytes.
ByteVector ExpectedVideoTrak() {
    ByteBuilder image;
    image.Big32(579).Text("trak");
    image.Bytes(test::Tkhd(1, 100, 1920, 1080));  // 3 / 30 seconds, in 1/1000 second
    AppendEditList(image, 100, 1000);
    image.Big32(443).Text("mdia");
    AppendMediaHeader(image, 30000, 3000, 0x15C7, 3);
    AppendHandler(image, "mhlr", "vide");
    image.Big32(369).Text("minf");
    image.Big32(20).Text("vmhd").Big32(1).Zeros(8);
    AppendNoTypeHandler(image);
    AppendDataInformation(image);
    image.Big32(271).Text("stbl");
    image.Bytes(test::AvcStsd());  // 135 bytes
    image.Big32(24).Text("stts").Big32(0).Big32(1).Big32(3).Big32(1000);
    image.Big32(40).Text("stsc").Big32(0).Big32(2);
    image.Big32(1).Big32(2).Big32(1);
    image.Big32(2).Big32(1).Big32(1);
    image.Big32(32).Text("stsz").Big32(0).Big32(0).Big32(3).Big32(100).Big32(200).Big32(300);
    image.Big32(32).Text("co64").Big32(0).Big32(2).Big64(16).Big64(816);
    return image.Take();
}

// 468 bytes.
ByteVector ExpectedAacTrak() {
    ByteBuilder image;
    image.Big32(468).Text("trak");
    image.Bytes(test::Tkhd(2, 42));  // 2 / 46.875 seconds are 42.67 ticks
    image.Big32(368).Text("mdia");
    AppendMediaHeader(image, 48000, 2048, 0x55C4, 0);
    AppendHandler(image, "mhlr", "soun");
    image.Big32(294).Text("minf");
    image.Big32(16).Text("smhd").Big32(0).Zeros(4);
    AppendNoTypeHandler(image);
    AppendDataInformation(image);
    image.Big32(200).Text("stbl");
    image.Bytes(test::Mp4aStsd());  // 88 bytes
    image.Big32(24).Text("stts").Big32(0).Big32(1).Big32(2).Big32(1024);
    image.Big32(28).Text("stsc").Big32(0).Big32(1).Big32(1).Big32(2).Big32(1);
    image.Big32(28).Text("stsz").Big32(0).Big32(0).Big32(2).Big32(50).Big32(60);
    image.Big32(24).Text("co64").Big32(0).Big32(1).Big64(616);
    return image.Take();
}

TEST(RebuiltMoov, IsGoldenForVideoAndAac) {
    ByteBuilder expected;
    expected.Big32(1163).Text("moov");
    expected.Bytes(test::Mvhd(1000, 100));
    expected.Bytes(ExpectedVideoTrak());
    expected.Bytes(ExpectedAacTrak());
    EXPECT_EQ(RebuiltMoovBytes(Moov({VideoTrak(), AacTrak()})), expected.Take());
}

TEST(RebuiltMoov, KeepsTheOrderOfTheReferencesTracks) {
    ByteBuilder expected;
    expected.Big32(1163).Text("moov");
    expected.Bytes(test::Mvhd(1000, 100));
    expected.Bytes(ExpectedAacTrak());
    expected.Bytes(ExpectedVideoTrak());
    EXPECT_EQ(RebuiltMoovBytes(Moov({AacTrak(), test::TimecodeTrak(), VideoTrak()})),
              expected.Take());
}

TEST(RebuiltMoov, IsGoldenForVideoAndTwos) {
    auto audio = AudioRequest();
    audio.stcoEntries = {616, 700, 790};
    audio.stszEntries.clear();
    audio.stscEntries = nullptr;
    audio.sampleRate = 48000.0;
    // The description of 16 + 36 bytes; 3 chunks of 5 samples.
    // stbl 8 + 52 + 24 + 28 + 20 + 40 = 172, minf 8 + 16 + 34 + 36 + 172 = 266,
    // mdia 8 + 32 + 34 + 266 = 340, trak 8 + 92 + 340 = 440.
    ByteBuilder expected;
    expected.Big32(1135).Text("moov");
    expected.Bytes(test::Mvhd(1000, 100));
    expected.Bytes(ExpectedVideoTrak());
    expected.Big32(440).Text("trak");
    expected.Bytes(test::Tkhd(2, 0));  // 15 / 48000 seconds are 0.3 ticks
    expected.Big32(340).Text("mdia");
    AppendMediaHeader(expected, 48000, 15, 0x55C4, 0);
    AppendHandler(expected, "mhlr", "soun");
    expected.Big32(266).Text("minf");
    expected.Big32(16).Text("smhd").Big32(0).Zeros(4);
    AppendNoTypeHandler(expected);
    AppendDataInformation(expected);
    expected.Big32(172).Text("stbl");
    expected.Bytes(test::Stsd({test::AudioEntry("twos", 0)}));
    expected.Big32(24).Text("stts").Big32(0).Big32(1).Big32(15).Big32(1);
    expected.Big32(28).Text("stsc").Big32(0).Big32(1).Big32(1).Big32(5).Big32(1);
    expected.Big32(20).Text("stsz").Big32(0).Big32(1).Big32(15);
    expected.Big32(40).Text("co64").Big32(0).Big32(3).Big64(616).Big64(700).Big64(790);
    EXPECT_EQ(RebuiltMoovBytes(Moov({VideoTrak(), test::PcmTrak("twos")}), VideoRequest(), audio),
              expected.Take());
}

TEST(RebuiltMoov, IsGoldenForVideoWithSyncSamplesAndCompositionOffsets) {
    const ByteVector ctts = Table("ctts", 2, {1, 2000, 5, 1000});
    const ByteVector stbl =
        Atom("stbl",
             {test::AvcStsd(), Table("stts", 1, {6, 1000}), Table("stss", 2, {1, 2}), ctts,
              Table("stsc", 1, {1, 6, 1}), test::Stsz({1, 2, 3, 4, 5, 6}), Table("stco", 1, {48})});
    auto video = VideoRequest();
    video.stszEntries = {1, 2, 3, 4, 5, 6, 7};
    video.stscEntries = Runs({{1, 7, 1}});
    video.stcoEntries = {16};
    // 7 samples at a distance named 2: 7 / 2 - 1 = 2 entries, stss 24.
    // stbl 8 + 135 + 24 + 32 + 24 + 28 + 48 + 24 = 323, minf 98 + 323 = 421,
    // mdia 74 + 421 = 495, trak 8 + 92 + 36 + 495 = 631, moov 116 + 631 = 747.
    ByteBuilder expected;
    expected.Big32(747).Text("moov");
    expected.Bytes(test::Mvhd(1000, 233));  // 7 / 30 seconds are 233.3 ticks
    expected.Big32(631).Text("trak");
    expected.Bytes(test::Tkhd(1, 233, 1920, 1080));
    AppendEditList(expected, 233, 1000);
    expected.Big32(495).Text("mdia");
    AppendMediaHeader(expected, 30000, 7000, 0x15C7, 3);
    AppendHandler(expected, "mhlr", "vide");
    expected.Big32(421).Text("minf");
    expected.Big32(20).Text("vmhd").Big32(1).Zeros(8);
    AppendNoTypeHandler(expected);
    AppendDataInformation(expected);
    expected.Big32(323).Text("stbl");
    expected.Bytes(test::AvcStsd());
    expected.Big32(24).Text("stss").Big32(0).Big32(2).Big32(1).Big32(2);
    expected.Bytes(ctts);
    expected.Big32(24).Text("stts").Big32(0).Big32(1).Big32(7).Big32(1000);
    expected.Big32(28).Text("stsc").Big32(0).Big32(1).Big32(1).Big32(7).Big32(1);
    expected.Big32(48).Text("stsz").Big32(0).Big32(0).Big32(7);
    for (std::uint32_t size = 1; size <= 7; ++size) {
        expected.Big32(size);
    }
    expected.Big32(24).Text("co64").Big32(0).Big32(1).Big64(16);
    EXPECT_EQ(RebuiltMoovBytes(Moov({VideoTrak(stbl)}), video), expected.Take());
}

TEST(CreateMoov, GivesNullForATreeWithoutTracks) {
    const auto tree = ReadMoov(Moov({}));
    EXPECT_EQ(tree->CreateMoov(VideoRequest(), AudioRequest()), nullptr);
}

TEST(CreateMoov, LeavesTheMovieHeaderAloneWhereThereIsNoOtherTrackThanTimecode) {
    const ByteVector image = RebuiltMoovBytes(Moov({test::TimecodeTrak()}));
    EXPECT_EQ(image, ByteBuilder().Big32(116).Text("moov").Bytes(test::Mvhd(1000, 999)).Take());
}

TEST(CreateMoov, ChangesNothingOfTheHeadersButTheirDurations) {
    const auto tree = ReadMoov(Moov({VideoTrak(), AacTrak()}));
    const auto made = tree->CreateMoov(VideoRequest(), AudioRequest());
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->mvhd->Serialize(), test::Mvhd(1000, 100));
    EXPECT_EQ(made->tracks[0]->tkhd->Serialize(), test::Tkhd(1, 100, 1920, 1080));
    EXPECT_EQ(made->tracks[1]->tkhd->Serialize(), test::Tkhd(2, 42));
}

TEST(CreateMoov, ShowsTheNewDurationsInTheReferenceTreeToo) {
    const auto tree = ReadMoov(Moov({VideoTrak(), AacTrak()}));
    EXPECT_EQ(tree->mvhd->duration, 999U);
    const auto made = tree->CreateMoov(VideoRequest(), AudioRequest());
    EXPECT_EQ(tree->mvhd, made->mvhd);
    EXPECT_EQ(tree->mvhd->duration, 100U);
    EXPECT_EQ(tree->tracks[0]->tkhd, made->tracks[0]->tkhd);
    EXPECT_EQ(tree->tracks[0]->tkhd->duration, 100U);
    EXPECT_EQ(tree->tracks[0]->SampleDescription(), made->tracks[0]->SampleDescription());
    // All else of the reference stays, its own copies of the numbers included.
    EXPECT_EQ(tree->tracks[0]->trackDuration, 200U);
    EXPECT_EQ(tree->tracks[0]->mdia->mdhd.duration, 6000U);
}

TEST(CreateMoov, KeepsWhatTheRepairedTreeNeedsWhenTheReferenceGoesFirst) {
    auto tree = ReadMoov(Moov({VideoTrak(), AacTrak()}));
    const auto made = tree->CreateMoov(VideoRequest(), AudioRequest());
    tree = nullptr;
    EXPECT_EQ(Written(*made).size(), 1163U);
    EXPECT_TRUE(std::holds_alternative<std::shared_ptr<const CSPS>>(made->GetSPS()));
}

TEST(CreateMoov, GivesTheMovieTheDurationOfTheLastVideoTrack) {
    // The second track has the same pictures and another header of its own.
    const auto second = [] {
        return Atom("trak",
                    {test::Tkhd(5, 1), test::VideoMdia(test::VideoMinf(test::VideoStbl()))});
    };
    const auto tree = ReadMoov(Moov({VideoTrak(), second(), AacTrak()}));
    auto audio = AudioRequest();
    audio.stszEntries.assign(1000, 5);  // the sound is the longest by far
    const auto made = tree->CreateMoov(VideoRequest(), audio);
    EXPECT_EQ(made->mvhd->duration, 100U);
    ASSERT_EQ(made->tracks.size(), 3U);
    EXPECT_EQ(made->tracks[0]->sampleCount, made->tracks[1]->sampleCount);
    EXPECT_EQ(made->tracks[2]->trackDuration, 21333U);
}

TEST(CreateMoov, UsesTheRateOfTheFirstTrackOfAKindForASecondTrackToo) {
    // The second video track runs at 60 a second: 6 samples over 3000 ticks.
    const ByteVector fast =
        Atom("trak", {test::Tkhd(5, 1), Atom("mdia", {test::Mdhd(30000, 3000), test::Hdlr("vide"),
                                                      test::VideoMinf(test::VideoStbl())})});
    const auto tree = ReadMoov(Moov({VideoTrak(), fast}));
    const auto made = tree->CreateMoov(VideoRequest(), AudioRequest());
    EXPECT_EQ(made->tracks[1]->trackDuration, 100U);         // at 30 a second
    EXPECT_EQ(made->tracks[1]->mdia->mdhd.duration, 1500U);  // at its own 60
}

TEST(CreateMoov, MakesEmptyTablesWhereTheJobFoundNothingOfAKind) {
    CAtomCreationRequest nothing;
    nothing.requestType = kAudioRequest;
    const auto tree = ReadMoov(Moov({VideoTrak(), AacTrak()}));
    const auto made = tree->CreateMoov(VideoRequest(), nothing);
    ASSERT_EQ(made->tracks.size(), 2U);
    EXPECT_EQ(made->tracks[1]->sampleCount, 0U);
    EXPECT_EQ(made->tracks[1]->trackDuration, 0U);
    EXPECT_EQ(made->size, Written(*made).size());
}

TEST(CreateMoov, LetsTheMediaDurationWrapIn32BitsBeforeItIsDivided) {
    auto video = VideoRequest();
    video.stszEntries.assign(143166, 1);  // times 30000 is 4294980000, which is 2^32 + 12704
    const auto tree = ReadMoov(Moov({VideoTrak()}));
    const auto made = tree->CreateMoov(video, AudioRequest());
    EXPECT_EQ(made->tracks[0]->mdia->mdhd.duration, 423U);  // 12704 / 30
    EXPECT_EQ(made->tracks[0]->trackDuration, 4772200U);    // not wrapped
}

TEST(CreateMoov, DividesTheMediaDurationByARateThatIsNotCutForSowt) {
    // 10 samples over 7 ticks of 1/1000 second: 1428.57 a second for the media, 1428 for the track.
    const ByteVector sowt =
        Atom("trak", {test::Tkhd(2, 1), Atom("mdia", {test::Mdhd(1000, 7), test::Hdlr("soun"),
                                                      test::AudioMinf(test::PcmStbl("sowt"))})});
    auto audio = AudioRequest();
    audio.stcoEntries.assign(10, 16);
    audio.stscEntries = Runs({{1, 1000, 1}});
    const auto tree = ReadMoov(Moov({sowt}));
    EXPECT_EQ(tree->GetAudioSampleRate(), 1428.0);
    const auto made = tree->CreateMoov(VideoRequest(), audio);
    // 10000 * 1000 / 1428.5714285714287 is just below 7000, and is cut.
    EXPECT_EQ(made->tracks[0]->mdia->mdhd.duration, 6999U);
    EXPECT_EQ(made->tracks[0]->trackDuration, 7002U);  // 10000 / 1428 * 1000
}

TEST(CreateMoov, GivesSoundNoEditListEvenWhereTheReferenceHasOne) {
    const ByteVector edts = Atom("edts", {Table("elst", 1, {85, 2048, 0x10000})});
    const ByteVector sound =
        Atom("trak", {test::Tkhd(2, 85), edts, test::AacMdia(test::AudioMinf(test::AacStbl()))});
    const auto tree = ReadMoov(Moov({sound}));
    ASSERT_NE(tree->tracks[0]->edts, nullptr);
    const auto made = tree->CreateMoov(VideoRequest(), AudioRequest());
    EXPECT_EQ(made->tracks[0]->edts, nullptr);
    EXPECT_EQ(made->tracks[0]->data, ExpectedAacTrak());
}

TEST(CreateMoov, WritesTheSizesOfLongerHeadersOverShorterImages) {
    // A `tkhd` of 104 bytes and an `mvhd` of 120: the images are 92 and 108, the sums use the
    // sizes.
    ByteVector tkhd = test::Tkhd(1, 200);
    AppendZeros(tkhd, 12);
    ByteVector mvhd = test::Mvhd(1000, 999);
    AppendZeros(mvhd, 12);
    const ByteVector reference =
        Atom("moov", {test::WithSize(mvhd, 120),
                      Atom("trak", {test::WithSize(tkhd, 104),
                                    test::VideoMdia(test::VideoMinf(test::VideoStbl()))})});
    const ByteVector image = RebuiltMoovBytes(reference);
    EXPECT_EQ(ReadBig32(image, 0), image.size() + 24);
    EXPECT_EQ(ReadBig32(image, 8), 120U);
    EXPECT_EQ(ReadBig32(image, 116), image.size() - 116 + 12);
    EXPECT_EQ(ReadBig32(image, 124), 104U);
}

TEST(CreateMoov, WritesNothingForAMissingMovieHeader) {
    const auto tree = ReadMoov(Atom("moov", {VideoTrak()}));
    const auto made = tree->CreateMoov(VideoRequest(), AudioRequest());
    EXPECT_EQ(made->tracks[0]->trackDuration, 0U);
    const ByteVector image = Written(*made);
    EXPECT_EQ(image.size(), 8U + 579U);
    EXPECT_EQ(ReadBig32(image, 0), 587U);
    EXPECT_TRUE(MatchesAt(image, 12, "trak"));
}

TEST(CreateMoov, CutsADurationThatIsNoNumberToZero) {
    // No samples in no time: the rate is 0 / 0.
    const ByteVector still =
        Atom("trak", {test::Tkhd(1, 1), Atom("mdia", {test::Mdhd(30000, 0), test::Hdlr("vide"),
                                                      test::VideoMinf(Atom("stbl"))})});
    const auto tree = ReadMoov(Moov({still}));
    const auto made = tree->CreateMoov(VideoRequest(), AudioRequest());
    EXPECT_EQ(made->mvhd->duration, 0U);
    EXPECT_EQ(made->tracks[0]->mdia->mdhd.duration, 0U);
}

TEST(CreateMoov, RebuildsATrackWhoseKindOnlyItsMediaHeaderTells) {
    const ByteVector track = Atom(
        "trak",
        {test::Tkhd(1, 200, 1920, 1080),
         Atom("mdia", {test::Mdhd(30000, 6000, 0x15C7, 3), test::VideoMinf(test::VideoStbl())})});
    const auto tree = ReadMoov(Moov({track}));
    const auto made = tree->CreateMoov(VideoRequest(), AudioRequest());
    EXPECT_EQ(made->tracks[0]->data, ExpectedVideoTrak());
}

TEST(PlayerArguments, EndInOneForH265OrAacAndElseInZero) {
    EXPECT_EQ(CMoov::PlayerArgsSuffix(kHvc1VideoCoderFormat, kSowtAudioCoderFormat), "$$1");
    EXPECT_EQ(CMoov::PlayerArgsSuffix(kAvc1VideoCoderFormat, kMp4aAudioCoderFormat), "$$1");
    EXPECT_EQ(CMoov::PlayerArgsSuffix("hvc1_video_coder_format", ""), "$$1");
    EXPECT_EQ(CMoov::PlayerArgsSuffix(kAvc1VideoCoderFormat, kSowtAudioCoderFormat), "$$0");
    EXPECT_EQ(CMoov::PlayerArgsSuffix(kAvc1VideoCoderFormat, kTwosAudioCoderFormat), "$$0");
    EXPECT_EQ(CMoov::PlayerArgsSuffix("", ""), "$$0");
}

}  // namespace
}  // namespace clipfix
