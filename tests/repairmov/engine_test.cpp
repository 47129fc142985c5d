#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "chunk_offsets.h"
#include "small_movies.h"

namespace clipfix::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Sizes = std::vector<std::uint32_t>;

void ExpectNothingFound(const EngineRun& run) {
    EXPECT_EQ(run.world.state.g_bJobFailed, 1);
    EXPECT_EQ(run.world.state.g_nMessageKind, 4);
    EXPECT_THAT(run.world.frontEnd.messages,
                ElementsAre(ElementsAre("IDS_UNHEALTHY_1", "IDS_INFORMATION", "Yes", "No")));
    EXPECT_TRUE(run.output.empty());
    EXPECT_EQ(run.world.state.writeFailed, 0);
}

TEST(RepairMov, ARunComesOutAsOneChunkBehindAHeadOfSixteenBytes) {
    const EngineRun run = RepairBytes(
        ByteBuilder().Bytes(Noise()).Bytes(Run264()).Bytes(Noise()).Take(), VideoOnly264());
    EXPECT_EQ(run.world.state.g_bJobFailed, 0);
    EXPECT_THAT(run.world.frontEnd.messages, IsEmpty());
    const OutputMovie movie(run.output);
    EXPECT_EQ(ReadBig32(run.output, 0), 1U);
    EXPECT_TRUE(MatchesAt(run.output, 4, "mdat"));
    EXPECT_EQ(ReadBig64(run.output, 8), 16 + kRunBytes);
    EXPECT_EQ(movie.Data(), Run264());
    EXPECT_TRUE(MatchesAt(movie.moov, 4, "moov"));
    EXPECT_EQ(ReadBig32(movie.moov, 0), movie.moov.size());
    const OutputTrack video = movie.Track(0);
    EXPECT_EQ(video.chunkOffsets, (Offsets{16}));
    EXPECT_EQ(video.sizes, (Sizes{100, 101, 102}));
    EXPECT_THAT(video.runs, ElementsAre(ElementsAre(1, 3, 1)));
    EXPECT_EQ(run.world.state.g_liOutputSize, static_cast<std::int64_t>(run.output.size()));
    EXPECT_EQ(run.results.videoSamples, 3U);
    EXPECT_EQ(run.results.videoChunks, 1U);
    EXPECT_EQ(run.results.audioChunks, 0U);
    EXPECT_EQ(run.results.videoFormat, "avc1");
    EXPECT_EQ(run.results.audioFormat, "");
    EXPECT_EQ(run.results.bytesRead, kRunBytes + 80);
}

// A movie whose samples make 1000 bytes: the movie atom starts at 1016.
TEST(RepairMov, TheSizeOfTheMediaDataCountsTheirHead) {
    const EngineRun run = RepairBytes(
        ByteBuilder().Bytes(P264(0, 300)).Bytes(P264(1, 300)).Bytes(P264(2, 400)).Take(),
        VideoOnly264());
    EXPECT_EQ(ReadBig64(run.output, 8), 1016U);
    EXPECT_TRUE(MatchesAt(run.output, 1020, "moov"));
}

TEST(RepairMov, AnEmptyFileHasNothing) {
    const EngineRun run = RepairBytes({}, VideoOnly264());
    ExpectNothingFound(run);
    EXPECT_THAT(run.world.frontEnd.bars, IsEmpty());
}

TEST(RepairMov, TwoUnitsAreNoRun) {
    ExpectNothingFound(RepairBytes(
        ByteBuilder().Bytes(P264(0)).Bytes(P264(1)).Bytes(Noise(500)).Take(), VideoOnly264()));
}

TEST(RepairMov, AFileThatCannotBeOpenedHasNothing) {
    const TempFolder folder;
    WriteFile(folder / "reference.mov", VideoOnly264());
    ExpectNothingFound(EngineRun(folder / "missing.mov", folder / "reference.mov"));
}

TEST(RepairMov, AReferenceOfAnotherKindOfVideoFindsNothing) {
    ExpectNothingFound(RepairBytes(Run264(), Moov({AacTrak()})));
    ExpectNothingFound(
        RepairBytes(Run264(), Moov({VideoTrackOf(Stsd({VideoEntry("mp4v", 64, 48)}))})));
}

TEST(RepairMov, AReferenceWithoutParameterSetsFindsNothing) {
    ExpectNothingFound(
        RepairBytes(Run264(), Moov({VideoTrackOf(Stsd({VideoEntry("avc1", 64, 48)}))})));
    ExpectNothingFound(
        RepairBytes(Run264(), Moov({VideoTrackOf(Stsd({VideoEntry("hvc1", 64, 48)}))})));
}

TEST(RepairMov, AReferenceOfTheOtherCodecFindsNothing) {
    ExpectNothingFound(RepairBytes(Run264(), Moov({Hevc()})));
}

// The length size is then 0, and the head is taken from the first byte of the length word.
TEST(RepairMov, AReferenceWhoseFirstTrackIsSoundFindsNothing) {
    const ByteVector damaged = ByteBuilder().Bytes(Run264()).Bytes(Noise()).Bytes(Run264(3)).Take();
    ExpectNothingFound(RepairBytes(damaged, Moov({AacTrak(), Avc()})));
    EXPECT_EQ(RepairBytes(damaged, Moov({Avc(), AacTrak()})).results.videoSamples, 6U);
}

TEST(RepairMov, SearchesOneByteFurtherUntilThreeUnitsChainUp) {
    // Two good units, then a broken one: the chain is dropped, and its bytes with it.
    ByteVector broken = Run264();
    StoreBig32(broken, 201, 0xFF000000);
    const ByteVector damaged = ByteBuilder().Bytes(broken).Fill(3, 0xFF).Bytes(Run264(5)).Take();
    const EngineRun run = RepairBytes(damaged, VideoOnly264());
    EXPECT_EQ(OutputMovie(run.output).Data(), Run264(5));
    ASSERT_EQ(run.chunks.size(), 1U);
    EXPECT_EQ(run.chunks[0].offset, 306U);
}

TEST(RepairMov, DamageInsideARunEndsItAndTheScanGoesOnBehind) {
    ByteVector broken = ByteBuilder().Bytes(Run264()).Bytes(Run264(3)).Bytes(Run264(6)).Take();
    StoreBig32(broken, kRunBytes, 0xFFFF0000);
    const EngineRun run = RepairBytes(broken, VideoOnly264());
    const OutputMovie movie(run.output);
    // The fourth unit is lost; the fifth and what follows are found.
    EXPECT_EQ(movie.mdat.size(), 16U + 9 * 101 - 100);
    EXPECT_EQ(movie.Track(0).chunkOffsets, (Offsets{16, 16 + kRunBytes}));
    EXPECT_THAT(movie.Track(0).runs, ElementsAre(ElementsAre(1, 3, 1), ElementsAre(2, 5, 1)));
}

TEST(RepairMov, ARecordThatEndsBehindTheFileIsPaddedWithZeros) {
    ByteVector damaged = Run264();
    damaged.resize(250);
    const EngineRun run = RepairBytes(damaged, VideoOnly264());
    const OutputMovie movie(run.output);
    ByteVector padded = damaged;
    padded.resize(kRunBytes);
    EXPECT_EQ(movie.Data(), padded);
    EXPECT_EQ(movie.Track(0).sizes, (Sizes{100, 101, 102}));
    EXPECT_EQ(run.results.bytesRead, 250U);
}

TEST(RepairMov, WithoutSoundInTheReferenceGapsAreDropped) {
    const EngineRun run = RepairBytes(
        ByteBuilder().Bytes(Run264()).Bytes(SilentFrames(3)).Bytes(Noise()).Bytes(Run264(3)).Take(),
        VideoOnly264());
    const OutputMovie movie(run.output);
    EXPECT_EQ(movie.Data(), ByteBuilder().Bytes(Run264()).Bytes(Run264(3)).Take());
    EXPECT_EQ(movie.Track(0).chunkOffsets, (Offsets{16, 16 + kRunBytes}));
    EXPECT_THAT(movie.Track(0).runs, ElementsAre(ElementsAre(1, 3, 1)));
    EXPECT_TRUE(ChildOf(movie.moov, "trak", 1).empty());
}

TEST(RepairMov, SoundOfAnotherFormatIsDroppedAndItsTrackIsEmpty) {
    const ByteVector alaw = Atom(
        "stbl", {Stsd({AudioEntry("alaw", 0)}), Table("stts", 1, {10, 1}),
                 Table("stsc", 1, {1, 5, 1}), UniformStsz(10, 1), Table("stco", 2, {500, 520})});
    const EngineRun run =
        RepairBytes(ByteBuilder().Bytes(Run264()).Bytes(Noise()).Bytes(Run264(3)).Take(),
                    Moov({Avc(), AacTrak(alaw)}));
    const OutputMovie movie(run.output);
    EXPECT_EQ(movie.Data(), ByteBuilder().Bytes(Run264()).Bytes(Run264(3)).Take());
    EXPECT_EQ(movie.Track(1).sampleCount, 0U);
    EXPECT_THAT(movie.Track(1).chunkOffsets, IsEmpty());
}

// Pending bytes.

TEST(RepairMov, UnitsThatAreNoSamplesAddTheirBytesToTheNextSample) {
    const EngineRun run = RepairBytes(ByteBuilder()
                                          .Bytes(PpsUnit264(20))
                                          .Bytes(Sei264(21))
                                          .Bytes(Idr264(300))
                                          .Bytes(Aud264(6))
                                          .Bytes(P264(1, 100))
                                          .Take(),
                                      VideoOnly264());
    const OutputTrack video = OutputMovie(run.output).Track(0);
    EXPECT_EQ(video.sizes, (Sizes{341, 106}));
    EXPECT_THAT(video.runs, ElementsAre(ElementsAre(1, 2, 1)));
    EXPECT_EQ(run.chunks[0].records, 5U);
}

TEST(RepairMov, PendingBytesCarryOverToTheNextVideoChunk) {
    const EngineRun run = RepairBytes(ByteBuilder()
                                          .Bytes(Run264())
                                          .Bytes(Sei264(50))
                                          .Bytes(Noise(8))
                                          .Bytes(Run264(3))
                                          .Bytes(Aud264(6))
                                          .Take(),
                                      WithPcm264("sowt"));
    const OutputMovie movie(run.output);
    // The SEI counts for a sample that lies behind the sound; the delimiter at the end is in no
    // sample, and its bytes are in the media data all the same.
    EXPECT_EQ(movie.Track(0).sizes, (Sizes{100, 101, 102, 150, 101, 102}));
    EXPECT_EQ(movie.Track(0).chunkOffsets, (Offsets{16, 16 + 353 + 8}));
    EXPECT_EQ(movie.mdat.size(), 16U + 353 + 8 + 309);
}

TEST(RepairMov, ARunOfDelimitersIsAChunkWithoutSamples) {
    const EngineRun run = RepairBytes(ByteBuilder()
                                          .Bytes(Aud264())
                                          .Bytes(Aud264())
                                          .Bytes(Aud264())
                                          .Bytes(Noise())
                                          .Bytes(Run264())
                                          .Take(),
                                      VideoOnly264());
    const OutputTrack video = OutputMovie(run.output).Track(0);
    EXPECT_EQ(video.chunkOffsets, (Offsets{16, 34}));
    EXPECT_THAT(video.runs, ElementsAre(ElementsAre(1, 0, 1), ElementsAre(2, 3, 1)));
    EXPECT_EQ(video.sizes, (Sizes{118, 101, 102}));
}

// H.265.

TEST(RepairMov, FindsARunOfH265) {
    const EngineRun run = RepairBytes(ByteBuilder()
                                          .Bytes(Noise())
                                          .Bytes(VpsUnit265(30))
                                          .Bytes(SpsUnit265())
                                          .Bytes(PpsUnit265(31))
                                          .Bytes(Sei265(32))
                                          .Bytes(Slice265(true, 19, 200))
                                          .Bytes(Slice265(false, 19, 201))
                                          .Bytes(Slice265(true, 1, 90))
                                          .Bytes(Noise())
                                          .Take(),
                                      Moov({Hevc()}));
    const auto sps = static_cast<std::uint32_t>(SpsUnit265().size());
    const OutputTrack video = OutputMovie(run.output).Track(0);
    EXPECT_EQ(video.sizes, (Sizes{30 + sps, 31 + 32 + 401, 90}));
    EXPECT_THAT(video.runs, ElementsAre(ElementsAre(1, 3, 1)));
    EXPECT_EQ(run.results.videoFormat, "hvc1");
}

// A unit of type 36 has no name: the table of sizes has one sample more than the runs say.
TEST(RepairMov, InH265TheSizesCanBeMoreThanTheSamplesOfTheRuns) {
    const EngineRun run = RepairBytes(ByteBuilder()
                                          .Bytes(Slice265(true, 1, 90))
                                          .Bytes(Unit265(36, 9))
                                          .Bytes(Slice265(true, 1, 91))
                                          .Take(),
                                      Moov({Hevc()}));
    const OutputTrack video = OutputMovie(run.output).Track(0);
    EXPECT_EQ(video.sizes, (Sizes{90, 9, 91}));
    EXPECT_THAT(video.runs, ElementsAre(ElementsAre(1, 2, 1)));
}

// PCM gaps.

TEST(RepairMov, ASowtGapIsOneRecordAndFourBytesOfItAreASample) {
    const EngineRun run = RepairBytes(ByteBuilder()
                                          .Bytes(Noise(33))
                                          .Bytes(Run264())
                                          .Fill(43, 0x77)
                                          .Bytes(Run264(3))
                                          .Fill(40, 0x77)
                                          .Bytes(Run264(6))
                                          .Fill(48, 0x77)
                                          .Bytes(Run264(9))
                                          .Fill(100, 0x77)
                                          .Take(),
                                      WithPcm264("sowt"));
    const OutputMovie movie(run.output);
    const OutputTrack audio = movie.Track(1);
    // 43 / 4 and 40 / 4 are both 10: one entry; 48 / 4 makes the next. What lies ahead of the
    // first run and behind the last one is lost.
    EXPECT_EQ(audio.chunkOffsets, (Offsets{16 + 303, 16 + 649, 16 + 992}));
    EXPECT_THAT(audio.runs, ElementsAre(ElementsAre(1, 10, 1), ElementsAre(3, 12, 1)));
    // Chunks times the samples of the first run, each of one byte.
    EXPECT_EQ(audio.uniformSize, 1U);
    EXPECT_EQ(audio.sampleCount, 30U);
    EXPECT_EQ(movie.mdat.size(), 16U + 4 * 303 + 43 + 40 + 48);
    EXPECT_EQ(run.results.audioSamples, 30U);
    EXPECT_EQ(run.results.audioChunks, 3U);
    EXPECT_EQ(run.results.audioFormat, "sowt");
}

TEST(RepairMov, AUnitThatIsTooLargeForARunIsInTheGap) {
    const EngineRun run =
        RepairBytes(ByteBuilder().Bytes(Run264()).Bytes(P264(3, 2200000)).Bytes(Run264(4)).Take(),
                    WithPcm264("sowt"));
    const OutputTrack audio = OutputMovie(run.output).Track(1);
    ASSERT_EQ(audio.chunkOffsets.size(), 1U);
    EXPECT_THAT(audio.runs, ElementsAre(ElementsAre(1, 550000, 1)));
}

TEST(RepairMov, ATwosGapHasAChunkAndNeitherRunNorSizes) {
    const EngineRun run = RepairBytes(ByteBuilder()
                                          .Bytes(Run264())
                                          .Fill(43, 0x77)
                                          .Bytes(Run264(3))
                                          .Fill(48, 0x77)
                                          .Bytes(Run264(6))
                                          .Take(),
                                      WithPcm264("twos"));
    const OutputMovie movie(run.output);
    const OutputTrack audio = movie.Track(1);
    EXPECT_EQ(audio.chunkOffsets, (Offsets{16 + 303, 16 + 649}));
    // The reference's own runs: five samples in each chunk.
    EXPECT_THAT(audio.runs, ElementsAre(ElementsAre(1, 5, 1)));
    EXPECT_EQ(audio.uniformSize, 1U);
    EXPECT_EQ(audio.sampleCount, 10U);
    EXPECT_EQ(movie.mdat.size(), 16U + 3 * 303 + 43 + 48);
    EXPECT_EQ(run.chunks[1].name, SampleName::Sowt);
}

// AAC gaps.

TEST(RepairMov, AacFramesOfAGapAreOneChunkWithoutTheDamageBetweenThem) {
    const ByteVector gap = ByteBuilder()
                               .Bytes(SilentFrame())
                               .Bytes({0x05, 0x06, 0x07, 0x08, 0x09})
                               .Bytes(SilentFrame())
                               .Take();
    const EngineRun run = RepairBytes(
        ByteBuilder().Bytes(Run264()).Bytes(gap).Bytes(Noise(20)).Bytes(Run264(3)).Take(),
        WithAac264());
    const OutputMovie movie(run.output);
    EXPECT_EQ(movie.Data(),
              ByteBuilder().Bytes(Run264()).Bytes(SilentFrames(2)).Bytes(Run264(3)).Take());
    const OutputTrack audio = movie.Track(1);
    EXPECT_EQ(audio.chunkOffsets, (Offsets{16 + 303}));
    EXPECT_EQ(audio.sizes, (Sizes{6, 6}));
    EXPECT_THAT(audio.runs, ElementsAre(ElementsAre(1, 2, 1)));
    EXPECT_EQ(run.results.audioSamples, 2U);
    EXPECT_EQ(run.results.audioFormat, "mp4a");
}

TEST(RepairMov, AacAheadOfTheFirstRunGoesToTheFrontAndIsTheFirstSoundChunk) {
    const EngineRun run = RepairBytes(ByteBuilder()
                                          .Bytes(Noise(12))
                                          .Bytes(SilentFrames(4))
                                          .Bytes(Run264())
                                          .Bytes(SilentFrames(2))
                                          .Bytes(Run264(3))
                                          .Bytes(SilentFrames(2))
                                          .Bytes(Run264(6))
                                          .Bytes(SilentFrames(9))
                                          .Take(),
                                      WithAac264());
    const OutputMovie movie(run.output);
    EXPECT_EQ(movie.Data(), ByteBuilder()
                                .Bytes(SilentFrames(4))
                                .Bytes(Run264())
                                .Bytes(SilentFrames(2))
                                .Bytes(Run264(3))
                                .Bytes(SilentFrames(2))
                                .Bytes(Run264(6))
                                .Take());
    const OutputTrack audio = movie.Track(1);
    EXPECT_EQ(audio.chunkOffsets, (Offsets{16, 16 + 24 + 303, 16 + 24 + 303 + 12 + 303}));
    EXPECT_THAT(audio.runs, ElementsAre(ElementsAre(1, 4, 1), ElementsAre(2, 2, 1)));
    EXPECT_EQ(movie.Track(0).chunkOffsets[0], 40U);
}

TEST(RepairMov, WithOneRunTheHeadIsNeverLookedAt) {
    const EngineRun run =
        RepairBytes(ByteBuilder().Bytes(SilentFrames(4)).Bytes(Run264()).Take(), WithAac264());
    EXPECT_EQ(run.results.audioSamples, 0U);
    EXPECT_EQ(OutputMovie(run.output).Data(), Run264());
}

TEST(RepairMov, SoundBehindTheLastRunIsLost) {
    const EngineRun run = RepairBytes(ByteBuilder()
                                          .Bytes(Run264())
                                          .Bytes(SilentFrames(1))
                                          .Bytes(Run264(3))
                                          .Bytes(SilentFrames(5))
                                          .Take(),
                                      WithAac264());
    EXPECT_EQ(run.results.audioSamples, 1U);
}

TEST(RepairMov, AGapWithoutAFrameMakesNoChunk) {
    const EngineRun run = RepairBytes(ByteBuilder()
                                          .Bytes(Run264())
                                          .Bytes(Noise(50))
                                          .Bytes(Run264(3))
                                          .Zeros(64)
                                          .Bytes(Run264(6))
                                          .Take(),
                                      WithAac264());
    EXPECT_EQ(run.results.audioChunks, 0U);
    EXPECT_EQ(run.results.videoChunks, 3U);
    EXPECT_EQ(OutputMovie(run.output).Track(1).sampleCount, 0U);
}

// A decoder that refuses the reference's bytes finds no sound at all.
TEST(RepairMov, AReferenceWithoutDecoderBytesHasNoSound) {
    const ByteVector damaged =
        ByteBuilder().Bytes(Run264()).Bytes(SilentFrames(2)).Bytes(Run264(3)).Take();
    const auto soundOf = [&](const ByteVector& entryRest) {
        const ByteVector stbl = Atom(
            "stbl", {Stsd({AudioEntry("mp4a", 0, {entryRest})}), Table("stts", 1, {4, 1024}),
                     Table("stsc", 1, {1, 4, 1}), Stsz({20, 21, 22, 23}), Table("stco", 1, {500})});
        return RepairBytes(damaged, Moov({Avc(), AacTrak(stbl)})).results.audioSamples;
    };
    EXPECT_EQ(soundOf(Esds(ByteVector{0x12, 0x10})), 2U);
    EXPECT_EQ(soundOf(Esds(ByteVector{0x12, 0x10, 0x56, 0xE5, 0x00})), 2U) << "two are used";
    EXPECT_EQ(soundOf(Esds(ByteVector{})), 0U);
    EXPECT_EQ(soundOf(ByteVector{}), 0U);
    EXPECT_EQ(soundOf(Esds(ByteVector{0xFF, 0xFF})), 0U);
}

// Display.

TEST(RepairMov, ShowsEveryPercentOfBothPhases) {
    // 1000 bytes: the run reaches from 100 to 403, so that 11 to 40 are never seen at its start.
    ByteVector damaged = ByteBuilder().Bytes(Noise(100)).Bytes(Run264()).Bytes(Noise(597)).Take();
    ASSERT_EQ(damaged.size(), 1000U);
    const EngineRun run = RepairBytes(damaged, VideoOnly264());
    std::vector<int> expected;
    for (int percent = 0; percent <= 10; ++percent) {
        expected.push_back(percent);
    }
    for (int percent = 40; percent <= 99; ++percent) {
        expected.push_back(percent);
    }
    expected.push_back(0);  // the writing: one chunk
    EXPECT_EQ(run.world.frontEnd.bars, expected);
    EXPECT_EQ(run.world.frontEnd.barResets, 1);
    EXPECT_EQ(run.world.state.g_nMovPercent, 0);
}

// Of 7 bytes a position is 14 percent.
TEST(RepairMov, ShowsTheJumpsOfAShortFile) {
    const EngineRun run = RepairBytes(Noise(7), VideoOnly264());
    EXPECT_EQ(run.world.frontEnd.bars, (std::vector<int>{0, 14, 28, 42, 57, 71, 85}));
}

TEST(RepairMov, ShowsStatusAndPercentInTheirStyles) {
    const EngineRun run = RepairBytes(Run264(), VideoOnly264());
    const auto& shown = run.world.frontEnd.shown;
    ASSERT_EQ(shown.size(), 4U);
    EXPECT_EQ(shown[0].control, JobControlId::StatusText);
    EXPECT_EQ(shown[0].text, "Locating audio / video data forks..");
    EXPECT_EQ(shown[0].style, (TextStyle{20, 0x4B4B4B, "Segoe UI", 0xFFFFFF}));
    EXPECT_EQ(shown[1].control, JobControlId::PercentText);
    EXPECT_EQ(shown[1].text, "0%");
    EXPECT_EQ(shown[1].style, (TextStyle{20, 0x4B4B4B, "Segoe UI", {}}));
    EXPECT_EQ(shown[2].text, "Writing audio / video data forks..");
    EXPECT_EQ(shown[3].text, "0%");
}

TEST(RepairMov, WritingCountsChunks) {
    ByteBuilder damaged;
    for (std::uint32_t i = 0; i < 8; ++i) {
        damaged.Bytes(Run264(3 * i)).Bytes(Noise(5));
    }
    const EngineRun run = RepairBytes(damaged.View(), VideoOnly264());
    const std::vector<int> bars = run.world.frontEnd.bars;
    EXPECT_EQ(std::vector<int>(bars.end() - 8, bars.end()),
              (std::vector<int>{0, 12, 25, 37, 50, 62, 75, 87}));
}

TEST(RepairMov, ThePlayerArgumentsNameTheOutputTheDamagedFileAndItsSize) {
    const EngineRun plain =
        RepairBytes(ByteBuilder().Bytes(Run264()).Zeros(10485760).Take(), VideoOnly264());
    EXPECT_EQ(plain.world.state.g_strPlayerArgs,
              plain.world.state.g_strOutputPath + "$$damaged.mov$$10.00 MB$$$$0");
    const EngineRun run = RepairBytes(Run264(), WithAac264());
    EXPECT_EQ(run.world.state.g_strPlayerArgs,
              run.world.state.g_strOutputPath + "$$damaged.mov$$0.00 MB$$$$1");
}

TEST(RepairMov, TheEngineClearsWhatAnEarlierJobLeft) {
    MovJobWorld world;
    world.state.g_bJobFailed = 1;
    world.state.g_nMovPercent = 77;
    world.state.g_strVideoCoderFormat = "HVC1_VIDEO_CODER_FORMAT";
    world.state.g_strAudioCoderFormat = "SOWT_AUDIO_CODER_FORMAT";
    world.state.g_strCorruptPath = "kept";
    GFile movie(world.Context());
    const CRepairMOV engine(world.Context(), movie);
    EXPECT_EQ(world.state.g_bJobFailed, 0);
    EXPECT_EQ(world.state.g_nMovPercent, 0);
    EXPECT_EQ(world.state.g_strVideoCoderFormat, "");
    EXPECT_EQ(world.state.g_strAudioCoderFormat, "");
    EXPECT_EQ(world.state.g_strCorruptPath, "kept");
}

TEST(RepairMov, ListsTheChunksThatItFound) {
    const EngineRun run = RepairBytes(ByteBuilder()
                                          .Bytes(Noise(10))
                                          .Bytes(Aud264(6))
                                          .Bytes(Run264())
                                          .Bytes(SilentFrames(3))
                                          .Bytes(Run264(3))
                                          .Take(),
                                      WithAac264());
    ASSERT_EQ(run.chunks.size(), 3U);
    EXPECT_EQ(run.chunks[0].name, SampleName::Avc1);
    EXPECT_EQ(run.chunks[0].offset, 10U);
    EXPECT_EQ(run.chunks[0].bytes, 309U);
    EXPECT_EQ(run.chunks[0].records, 4U);
    EXPECT_EQ(run.chunks[0].samples, 3U);
    EXPECT_EQ(run.chunks[1].name, SampleName::Aac);
    EXPECT_EQ(run.chunks[1].offset, 319U);
    EXPECT_EQ(run.chunks[1].bytes, 18U);
    EXPECT_EQ(run.chunks[1].samples, 3U);
}

}  // namespace
}  // namespace clipfix::test
