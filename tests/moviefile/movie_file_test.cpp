#include "moviefile/movie_file.h"

#include <gtest/gtest.h>

#include "atoms/reference_movie.h"
#include "moviefile/reference_check.h"
#include "moviefile/structure_check.h"
#include "support/memory_file.h"
#include "support/mov_job.h"
#include "support/nal_stream.h"

namespace clipfix::test {
namespace {

struct Read {
    MovJobWorld world;
    GFile movie{world.Context()};

    explicit Read(const ByteVector& bytes) {
        StructureCheck(movie, world.Context()).RunOn(MemoryFile(bytes));
    }
    [[nodiscard]] std::optional<ReferenceFault> Fault() {
        return FindReferenceFault(movie, world.state);
    }
};

ByteVector VideoStblOf(const ByteVector& stsd) {
    return Atom("stbl", {stsd, Table("stts", 1, {6, 1000}), Table("stsc", 1, {1, 6, 1}),
                         Stsz({60, 61, 62, 63, 64, 65}), Table("stco", 1, {48})});
}
ByteVector VideoTrakOf(const ByteVector& stsd) {
    return VideoTrak(VideoStblOf(stsd));
}

TEST(GFile, AnswersNothingWithoutATree) {
    MovJobWorld world;
    world.state.g_strVideoCoderFormat = "AVC1_VIDEO_CODER_FORMAT";
    GFile movie(world.Context());
    EXPECT_EQ(movie.GetTrackCount(), 0U);
    EXPECT_EQ(movie.GetSPS().index(), 0U);
    EXPECT_EQ(movie.GetPPS().index(), 0U);
    EXPECT_EQ(movie.GetVPS(), nullptr);
    EXPECT_EQ(movie.CreateMoov({}, {}), nullptr);
    EXPECT_EQ(movie.GetVideoSampleRate(), 0.0);
    EXPECT_EQ(movie.GetAudioSampleRate(), 0.0);
    EXPECT_EQ(movie.GetVideoTimescale(), 0U);
    EXPECT_EQ(movie.GetAudioTimescale(), 0U);
    EXPECT_FALSE(movie.GetAudioSpecificInfo());
    EXPECT_EQ(movie.GetFirstVideoTrack(), nullptr);
    EXPECT_EQ(movie.GetNalLengthSize(), 0U);
    EXPECT_TRUE(movie.strPath.empty());
}

TEST(GFile, ForwardsToItsTree) {
    Read read(Moov({VideoTrakOf(AvcStsd264()), AacTrak()}));
    const GFile& movie = read.movie;
    EXPECT_EQ(movie.GetTrackCount(), 2U);
    EXPECT_EQ(movie.GetVideoTimescale(), 30000U);
    EXPECT_EQ(movie.GetVideoSampleRate(), 30.0);
    EXPECT_EQ(movie.GetAudioTimescale(), 48000U);
    EXPECT_EQ(movie.GetAudioSampleRate(), 46.875);
    EXPECT_EQ(movie.GetSPS().index(), 1U);
    EXPECT_EQ(movie.GetPPS().index(), 1U);
    EXPECT_TRUE(movie.GetAudioSpecificInfo());
    EXPECT_EQ(movie.GetNalLengthSize(), 4U);
    EXPECT_EQ(movie.GetFirstVideoTrack(), movie.pMoov->tracks[0].get());
}

TEST(GFile, TheFirstVideoTrackIsTheFirstTrackOfWhateverKind) {
    Read read(Moov({AacTrak(), VideoTrakOf(AvcStsd264())}));
    ASSERT_NE(read.movie.GetFirstVideoTrack(), nullptr);
    EXPECT_EQ(read.movie.GetFirstVideoTrack()->trackType, "AUDIO_TRACK");
    EXPECT_EQ(read.movie.GetNalLengthSize(), 0U);
}

TEST(GFile, ThereIsNoFirstVideoTrackWithoutAKnownVideoCoder) {
    Read read(Moov({AacTrak()}));
    EXPECT_EQ(read.movie.GetTrackCount(), 1U);
    EXPECT_EQ(read.movie.GetFirstVideoTrack(), nullptr);
}

TEST(GFile, TheLengthSizeIsThatOfTheRecordAndAlwaysFourInH265) {
    EXPECT_EQ(Read(Moov({VideoTrakOf(AvcStsd264(0xFD))})).movie.GetNalLengthSize(), 2U);
    EXPECT_EQ(Read(Moov({VideoTrakOf(HvcStsd265())})).movie.GetNalLengthSize(), 4U);
}

TEST(FindReferenceFault, FindsNoneInWhatCanServe) {
    EXPECT_FALSE(Read(Moov({VideoTrakOf(AvcStsd264())})).Fault());
    EXPECT_FALSE(Read(Moov({VideoTrakOf(HvcStsd265()), AacTrak()})).Fault());
}

TEST(FindReferenceFault, NamesWhatIsMissing) {
    EXPECT_EQ(Read(ByteVector(100)).Fault(), ReferenceFault::NoMovie);
    EXPECT_EQ(Read(Moov({AacTrak()})).Fault(), ReferenceFault::UnknownVideo);
    const ByteVector hev1 = Stsd({VideoEntry("hev1", 64, 48, {HvcC265()})});
    EXPECT_EQ(Read(Moov({VideoTrakOf(hev1)})).Fault(), ReferenceFault::UnknownVideo);
    const ByteVector bare = Stsd({VideoEntry("avc1", 64, 48)});
    EXPECT_EQ(Read(Moov({VideoTrakOf(bare)})).Fault(), ReferenceFault::NoParameterSets);
    const ByteVector bare265 = Stsd({VideoEntry("hvc1", 64, 48)});
    EXPECT_EQ(Read(Moov({VideoTrakOf(bare265)})).Fault(), ReferenceFault::NoParameterSets);
    EXPECT_EQ(Read(Moov({AacTrak(), VideoTrakOf(AvcStsd264())})).Fault(),
              ReferenceFault::VideoNotFirst);
}

TEST(FindReferenceFault, EveryFaultHasASentence) {
    for (const auto fault : {ReferenceFault::NoMovie, ReferenceFault::UnknownVideo,
                             ReferenceFault::NoParameterSets, ReferenceFault::VideoNotFirst}) {
        EXPECT_FALSE(SentenceOf(fault).empty());
    }
}

// The last description of a movie names the coder of the job, and the first video track gives the
// sets: where these are of two codecs there is nothing to read the damaged file by.
TEST(FindParameterSets, TwoCodecsInOneMovieGiveNone) {
    Read read(Moov({VideoTrakOf(HvcStsd265()), VideoTrakOf(AvcStsd264())}));
    EXPECT_EQ(read.world.state.g_strVideoCoderFormat, "AVC1_VIDEO_CODER_FORMAT");
    EXPECT_FALSE(FindParameterSets(read.movie, read.world.state));
    Read turned(Moov({VideoTrakOf(AvcStsd264()), VideoTrakOf(HvcStsd265())}));
    EXPECT_FALSE(FindParameterSets(turned.movie, turned.world.state));
}

TEST(FindParameterSets, GivesThoseOfTheCodec) {
    Read avc(Moov({VideoTrakOf(AvcStsd264())}));
    const auto sets = FindParameterSets(avc.movie, avc.world.state);
    ASSERT_TRUE(sets);
    EXPECT_NE(sets->View().sps, nullptr);
    EXPECT_NE(sets->View().pps, nullptr);
    EXPECT_FALSE(sets->View().IsH265());
    Read hevc(Moov({VideoTrakOf(HvcStsd265())}));
    const auto sets265 = FindParameterSets(hevc.movie, hevc.world.state);
    ASSERT_TRUE(sets265);
    EXPECT_TRUE(sets265->View().IsH265());
    EXPECT_NE(sets265->View().sps265, nullptr);
    EXPECT_NE(sets265->View().pps265, nullptr);
}

TEST(Describe, TellsTheTracksOfAMovie) {
    Read read(
        ByteBuilder()
            .Bytes(AtomOf("ftyp", ByteBuilder().Text("isom").Zeros(4).View()))
            .Bytes(Moov({VideoTrakOf(AvcStsd264()), AacTrak(), PcmTrak("sowt"), TimecodeTrak()}))
            .Take());
    const MovieDescription movie = Describe(read.movie);
    EXPECT_EQ(movie.brand, "isom");
    EXPECT_EQ(movie.timescale, 1000U);
    EXPECT_EQ(movie.duration, 999U);
    ASSERT_EQ(movie.tracks.size(), 4U);
    EXPECT_EQ(movie.tracks[0].kind, "video");
    EXPECT_EQ(movie.tracks[0].coder, "avc1");
    EXPECT_EQ(movie.tracks[0].width, 64U);
    EXPECT_EQ(movie.tracks[0].height, 48U);
    EXPECT_EQ(movie.tracks[0].timescale, 30000U);
    EXPECT_EQ(movie.tracks[0].sampleCount, 6U);
    EXPECT_EQ(movie.tracks[0].duration, 6000U);
    EXPECT_EQ(movie.tracks[0].samplesPerSecond, 30.0);
    EXPECT_EQ(movie.tracks[0].nalLengthSize, 4U);
    EXPECT_EQ(movie.tracks[1].kind, "audio");
    EXPECT_EQ(movie.tracks[1].coder, "mp4a");
    EXPECT_EQ(movie.tracks[1].sampleRate, 48000U);
    EXPECT_EQ(movie.tracks[1].channels, 2U);
    EXPECT_EQ(movie.tracks[2].coder, "sowt");
    EXPECT_EQ(movie.tracks[3].kind, "other");
    EXPECT_EQ(movie.tracks[3].coder, "tmcd");
}

TEST(Describe, AFileWithoutAMovieHasNoTracks) {
    const MovieDescription movie = Describe(Read(ByteVector(50)).movie);
    EXPECT_TRUE(movie.brand.empty());
    EXPECT_TRUE(movie.tracks.empty());
}

}  // namespace
}  // namespace clipfix::test
