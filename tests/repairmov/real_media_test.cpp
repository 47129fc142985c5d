#include <cstdio>
#include <gtest/gtest.h>
#include <map>

#include "recovery.h"

namespace clipfix::test {
namespace {

// Recordings of four seconds at 30 pictures a second, with chunks of half a second as cameras make
// them, damaged in many ways. What the settled rules cost is stated as a number.

constexpr std::size_t kPictures = 120;

struct Recording {
    std::string name;
    std::string extension;
    std::string video;
    std::string audio;
    // Losses where no sample of the recording is damaged, at the most.
    std::size_t lostAudio = 0;    // packets
    bool hasEveryDamage = false;  // the others stand for their coders in the main ones only
};
void PrintTo(const Recording& recording, std::ostream* out) {
    *out << recording.name;
}

const std::string kX264 = "-c:v libx264 -preset veryfast ";
const std::string kX265 = "-c:v libx265 -preset ultrafast -tag:v hvc1 -x265-params log-level=0:";
const std::string kAacStereo = "-c:a aac -ac 2 -ar 48000";
// The head of the file is shown to the decoder ahead of the first sound; what it makes of it can
// cost that chunk, which holds up to 24 frames.
constexpr std::size_t kOneChunk = 24;

const std::vector<Recording>& Recordings() {
    static const std::vector<Recording> recordings{
        {"BaselineAac48", "mp4", kX264 + "-profile:v baseline -g 15", kAacStereo, kOneChunk, true},
        {"MainAac44", "mov", kX264 + "-profile:v main -bf 2 -g 30", "-c:a aac -ac 2 -ar 44100",
         kOneChunk},
        {"FourSlices", "mp4", kX264 + "-bf 0 -x264-params slices=4", kAacStereo, kOneChunk},
        {"Interlaced", "mp4", kX264 + "-flags +ilme+ildct -x264-params tff=1", kAacStereo,
         kOneChunk},
        {"LongGopAac51", "mp4", kX264 + "-g 600 -bf 2", "-c:a aac -ac 6 -ar 48000", kOneChunk},
        {"DelimitersAndSei", "mp4", kX264 + "-bf 2 -x264-params aud=1:pic-struct=1", kAacStereo,
         kOneChunk},
        {"HighSowt", "mov", kX264 + "-bf 2 -g 30", "-c:a pcm_s16le -ac 2 -ar 48000", 0, true},
        {"HighTwos", "mov", kX264 + "-bf 2 -g 30", "-c:a pcm_s16be -ac 2 -ar 48000"},
        // Sound of another kind is dropped.
        {"HighAlac", "mov", kX264 + "-bf 2 -g 30", "-c:a alac -ac 2 -ar 48000", SIZE_MAX},
        {"HighSilent", "mp4", kX264 + "-bf 3 -g 30", "-an"},
        {"HevcAac", "mp4", kX265 + "bframes=2", kAacStereo, kOneChunk, true},
        {"HevcDelimiters", "mov", kX265 + "aud=1:bframes=0", "-c:a pcm_s16le -ac 2 -ar 48000"},
        {"HevcSlices", "mp4", kX265 + "slices=3:bframes=0", "-c:a aac -ac 2 -ar 44100", kOneChunk},
    };
    return recordings;
}

std::string SourceOf(const std::string& picture) {
    return "-f lavfi -i " + picture +
           "=s=320x240:r=30 -f lavfi -i anoisesrc=a=0.2 -t 4 -pix_fmt yuv420p ";
}

void Make(const std::filesystem::path& path, const Recording& recording,
          const std::string& picture = "testsrc2") {
    MakeMedia(path, SourceOf(picture) + recording.video + " " + recording.audio +
                        " -chunk_duration 500000");
}

Recovery Row(const std::string& name, const char* damage, const std::filesystem::path& original,
             const ByteVector& damaged, const std::filesystem::path& reference) {
    const Recovery row = Recover(original, damaged, reference);
    std::printf(
        "%-18s %-12s video %3zu -> %3zu, %3zu identical; audio %3zu -> %3zu, %3zu "
        "identical; pictures %3zu, %3zu identical%s%s\n",
        name.c_str(), damage, row.originalVideo, row.video, row.identicalVideo, row.originalAudio,
        row.audio, row.identicalAudio, row.originalPictures, row.identicalPictures,
        row.isNothing ? "; nothing found" : "", row.isUnreadable ? "; cannot be played" : "");
    return row;
}

class RealRecording : public testing::TestWithParam<Recording> {};

INSTANTIATE_TEST_SUITE_P(All, RealRecording, testing::ValuesIn(Recordings()),
                         [](const auto& test) { return test.param.name; });

// Where the structure is lost and the samples are not, every picture comes back.
TEST_P(RealRecording, ComesBackWithoutItsStructure) {
    const TempFolder folder;
    const Recording& recording = GetParam();
    const auto path = folder / ("original." + recording.extension);
    Make(path, recording);
    const ByteVector file = ReadFile(path);
    std::map<const char*, ByteVector> ways{{"cut", CutBeforeMoov(file)}};
    if (recording.hasEveryDamage) {
        ways["intact"] = Intact(file);
        ways["moov wiped"] = WipeMoov(file);
    }
    for (const auto& [damage, damaged] : ways) {
        const Recovery row = Row(recording.name, damage, path, damaged, path);
        ASSERT_FALSE(row.isNothing || row.isUnreadable);
        EXPECT_EQ(row.originalPictures, kPictures);
        EXPECT_EQ(row.video, kPictures);
        EXPECT_EQ(row.identicalVideo, kPictures);
        EXPECT_EQ(row.identicalPictures, kPictures);
        EXPECT_EQ(row.decoderErrors.find("h264"), std::string::npos) << row.decoderErrors;
        EXPECT_EQ(row.decoderErrors.find("hevc"), std::string::npos) << row.decoderErrors;
        if (recording.lostAudio < row.originalAudio) {
            EXPECT_GE(row.identicalAudio, row.originalAudio - recording.lostAudio);
        } else {
            EXPECT_EQ(row.audio, 0U);
        }
    }
}

// A hole in the middle costs what stands in it and a few units around it.
TEST_P(RealRecording, LosesLittleBesideTheDamage) {
    const TempFolder folder;
    const Recording& recording = GetParam();
    const auto path = folder / ("original." + recording.extension);
    Make(path, recording);
    const ByteVector file = ReadFile(path);
    std::map<const char*, ByteVector> ways{{"noise", NoiseInMiddle(file)}};
    if (recording.hasEveryDamage) {
        ways["zeros"] = ZeroMiddle(file);
        ways["deleted"] = DeleteInMiddle(file);
        ways["inserted"] = InsertInMiddle(file);
    }
    for (const auto& [damage, damaged] : ways) {
        const Recovery row = Row(recording.name, damage, path, damaged, path);
        ASSERT_FALSE(row.isNothing || row.isUnreadable);
        EXPECT_GE(row.identicalVideo, kPictures - 15);
        if (recording.lostAudio < row.originalAudio) {
            EXPECT_GE(row.identicalAudio + recording.lostAudio + kOneChunk, row.originalAudio);
        }
    }
}

const Recording& Named(const std::string& name) {
    return *std::find_if(Recordings().begin(), Recordings().end(),
                         [&](const Recording& recording) { return recording.name == name; });
}

TEST(RealMedia, WithoutItsHeadARecordingLosesNothing) {
    for (const char* name : {"BaselineAac48", "HevcAac"}) {
        const TempFolder folder;
        const auto path = folder / "original.mp4";
        Make(path, Named(name));
        const Recovery row = Row(name, "head wiped", path, WipeHead(ReadFile(path)), path);
        EXPECT_EQ(row.identicalVideo, kPictures);
        EXPECT_EQ(row.identicalPictures, kPictures);
        EXPECT_GE(row.identicalAudio, row.originalAudio - kOneChunk);
    }
}

TEST(RealMedia, HalfARecordingComesBackUpToTheCut) {
    for (const char* name : {"MainAac44", "HighSowt", "HevcAac"}) {
        const TempFolder folder;
        const auto path = folder / "original.mov";
        Make(path, Named(name));
        const Recovery row = Row(name, "half", path, CutInHalf(ReadFile(path)), path);
        EXPECT_GE(row.identicalVideo, 40U);
        EXPECT_LT(row.video, kPictures);
        // The picture at the cut is padded with zeros.
        EXPECT_LE(row.video - row.identicalVideo, 1U);
    }
}

TEST(RealMedia, TwoJoinedRecordingsComeOutBehindOneAnother) {
    const TempFolder folder;
    const auto path = folder / "original.mp4";
    Make(path, Named("BaselineAac48"));
    const Recovery row = Row("BaselineAac48", "joined", path, JoinTwice(ReadFile(path)), path);
    EXPECT_EQ(row.video, 2 * kPictures);
    EXPECT_EQ(row.identicalPictures, kPictures);
}

// References.

TEST(RealMedia, AnotherRecordingOfTheSameSettingsServesAsWell) {
    for (const char* name : {"MainAac44", "HighSowt", "HevcAac"}) {
        const TempFolder folder;
        const auto path = folder / "original.mov";
        Make(path, Named(name));
        Make(folder / "reference.mov", Named(name), "mandelbrot");
        const Recovery row =
            Row(name, "other ref", path, CutBeforeMoov(ReadFile(path)), folder / "reference.mov");
        EXPECT_EQ(row.video, kPictures);
        EXPECT_EQ(row.identicalVideo, kPictures);
    }
}

TEST(RealMedia, AReferenceOfAnotherCodecFindsNothing) {
    const TempFolder folder;
    Make(folder / "avc.mp4", Named("BaselineAac48"));
    Make(folder / "hevc.mp4", Named("HevcAac"));
    const auto avc = CutBeforeMoov(ReadFile(folder / "avc.mp4"));
    const auto hevc = CutBeforeMoov(ReadFile(folder / "hevc.mp4"));
    const Recovery avcByHevc =
        Row("BaselineAac48", "by HEVC", folder / "avc.mp4", avc, folder / "hevc.mp4");
    EXPECT_LE(avcByHevc.identicalVideo, 2U);
    const Recovery hevcByAvc =
        Row("HevcAac", "by AVC", folder / "hevc.mp4", hevc, folder / "avc.mp4");
    EXPECT_LE(hevcByAvc.identicalVideo, 2U);
}

// What the settled rules cost, as numbers.

// Where sound and pictures alternate one by one, no three units stand together.
TEST(RealMedia, ARecordingThatAlternatesPictureByPictureIsLost) {
    const TempFolder folder;
    const auto path = folder / "original.mp4";
    const Recording& recording = Named("BaselineAac48");
    MakeMedia(path, SourceOf("testsrc2") + recording.video + " " + recording.audio);
    const Recovery row =
        Row("BaselineAac48", "alternating", path, CutBeforeMoov(ReadFile(path)), path);
    EXPECT_EQ(row.originalVideo, kPictures);
    EXPECT_LE(row.identicalVideo, 4U);
}

// Frames of one channel begin with a zero byte while they are not loud, and zero bytes are skipped.
TEST(RealMedia, OfQuietSoundOfOneChannelNearlyNothingComesBack) {
    const TempFolder folder;
    const auto path = folder / "original.mp4";
    MakeMedia(path, "-f lavfi -i testsrc2=s=320x240:r=30 -f lavfi -i sine=r=48000 -t 4 " + kX264 +
                        "-bf 2 -c:a aac -ac 1 -chunk_duration 500000");
    const Recovery row = Row("Mono", "cut", path, CutBeforeMoov(ReadFile(path)), path);
    EXPECT_EQ(row.identicalVideo, kPictures);
    EXPECT_GT(row.originalAudio, 180U);
    EXPECT_LE(row.identicalAudio, 40U);
}

// The new edit list starts one picture into the track. A player that heeds it shows one picture
// less; and where the reference has a single sync sample, so that each of the first half of the
// samples is called one, it starts at a picture that it cannot decode, and shows none at all.
TEST(RealMedia, AnEditListOnePictureInCostsTheFirstPictureOrAll) {
    for (const auto& [name, shown] :
         {std::pair{"BaselineAac48", kPictures - 1}, std::pair{"FourSlices", std::size_t{0}}}) {
        const TempFolder folder;
        const auto path = folder / "original.mp4";
        Make(path, Named(name));
        const EngineRun run(path, path, folder / "out.mov", 0);
        std::string errors;
        EXPECT_EQ(PictureHashes(path, errors, "0").size(), kPictures);
        EXPECT_EQ(PictureHashes(folder / "out.mov", errors, "1").size(), kPictures);
        EXPECT_EQ(PictureHashes(folder / "out.mov", errors, "0").size(), shown) << name;
    }
}

// A `twos` movie keeps the runs of its reference; where these name more chunks than there are,
// players refuse the movie.
TEST(RealMedia, ATwosRecordingWithFewerChunksThanItsReferenceCannotBePlayed) {
    const TempFolder folder;
    const auto path = folder / "original.mov";
    Make(path, Named("HighTwos"));
    const Recovery row = Row("HighTwos", "half", path, CutInHalf(ReadFile(path)), path);
    EXPECT_TRUE(row.isUnreadable);
}

}  // namespace
}  // namespace clipfix::test
