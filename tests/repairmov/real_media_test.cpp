#include <algorithm>
#include <cmath>
#include <cstdio>
#include <gtest/gtest.h>
#include <map>

#include "engine_run.h"
#include "repairmov/recordings.h"
#include "support/avi_builder.h"
#include "support/media_tools.h"

namespace clipfix::test {
namespace {

// Each row that these tests print is one of the table of recoveries: bench/recovery_table.
void PrintRow(const std::string& recording, const std::string& damage, const std::string& reference,
              const Film& original, const Recovery& got) {
    std::printf("| %s | %s | %s | %zu | %zu | %zu | %zu | %zu | %zu | %zu | %s |\n",
                recording.c_str(), damage.c_str(), reference.c_str(), original.video.size(),
                got.film.video.size(), got.identicalVideo, got.identicalPictures,
                original.audio.size(), got.film.audio.size(), got.identicalAudio,
                got.isNothing      ? "refused: nothing found"
                : got.isUnreadable ? "players refuse the result"
                                   : "");
}

bool IsAac(const Recording& recording) {
    return recording.audio.starts_with("-c:a aac");
}
bool IsPcm(const Recording& recording) {
    return recording.audio.starts_with("-c:a pcm");
}

// A recording before anything happened to it.
struct Original {
    ByteVector file;
    Film film;

    explicit Original(const std::filesystem::path& path)
        : file(ReadFile(path)), film(LookAt(path)) {}
};

// What the settled rules cost of the sound of a recording, where none of its samples is damaged.
struct SoundLoss {
    std::size_t certain = 0;
    std::size_t possible = 0;  // on top
};

SoundLoss SettledLoss(const Recording& recording, const Original& original) {
    SoundLoss loss;
    for (const MediaPacket& packet : original.film.audio) {
        const bool isBehindLastRun = packet.offset > original.film.video.back().offset;
        const bool isAheadOfFirstRun = packet.offset < original.film.video.front().offset;
        bool isLost =
            isBehindLastRun || (!IsAac(recording) && (!IsPcm(recording) || isAheadOfFirstRun));
        if (IsAac(recording)) {
            // A zero byte is never shown to the decoder, and no more than 1024 bytes are.
            isLost = isLost || ByteAt(original.file, packet.offset) == 0 || packet.size > 1024;
            // What the decoder makes of the file's head may keep it from the frames behind it.
            loss.possible += !isLost && isAheadOfFirstRun ? 1 : 0;
        }
        loss.certain += isLost ? 1 : 0;
    }
    return loss;
}

// A wound costs the packets that it touches; of the units beside it up to two on each side, as
// fewer than three are no run; and, as the length of a unit that lost its end points too far, what
// stands in as many bytes behind it as the largest packet has.
std::size_t VideoAtRisk(const Original& original, const Wound& wound) {
    constexpr std::size_t kBesideIt = 4;
    std::uint64_t largest = 0;
    for (const MediaPacket& packet : original.film.video) {
        largest = std::max(largest, packet.size);
    }
    const auto touched = [&](const MediaPacket& packet) {
        return packet.End() > wound.begin && packet.offset < wound.end + largest;
    };
    return kBesideIt + static_cast<std::size_t>(std::count_if(original.film.video.begin(),
                                                              original.film.video.end(), touched));
}

// The sound of a gap is lost when the bytes ahead of it in the gap set the decoder on a wrong
// track. So all sound is at risk between the last run that is whole and the next one: half a second
// of each chunk that the wound touches, and one chunk on each side. A run that falls apart adds a
// chunk; `twos` keeps the runs of its reference, and from there on all its chunks may be cut where
// they do not end.
std::size_t SoundAtRisk(const Recording& recording, const Original& original, const Wound& wound) {
    constexpr std::size_t kChunkBytes = 20000;
    const bool isTwos = recording.audio.starts_with("-c:a pcm_s16be");
    const auto touched = [&](const MediaPacket& packet) {
        return packet.End() + kChunkBytes > wound.begin &&
               (isTwos || packet.offset < wound.end + kChunkBytes);
    };
    return static_cast<std::size_t>(
        std::count_if(original.film.audio.begin(), original.film.audio.end(), touched));
}

// The pictures of all groups of which no packet is missing.
std::size_t PicturesOfWholeGroups(const Film& original, const Film& found) {
    std::map<std::string, int> left;
    for (const MediaPacket& packet : found.video) {
        ++left[packet.hash];
    }
    std::size_t whole = 0;
    for (std::size_t i = 0; i < original.video.size();) {
        std::size_t end = i;
        bool isWhole = true;
        do {
            isWhole = isWhole && left[original.video[end].hash]-- > 0;
            ++end;
        } while (end < original.video.size() && !original.video[end].isKey);
        whole += isWhole ? end - i : 0;
        i = end;
    }
    return whole;
}

class RealRecording : public testing::TestWithParam<Recording> {
  protected:
    void Check(const Trial& trial, const Original& original, const Recovery& got) const;

    const TempFolder folder_;
};

void RealRecording::Check(const Trial& trial, const Original& original, const Recovery& got) const {
    const Recording& recording = GetParam();
    ASSERT_FALSE(got.isNothing || got.isUnreadable);
    const SoundLoss loss = SettledLoss(recording, original);
    const Wound wound = WoundOf(trial.damage, original.file, original.film);
    const bool isWhole = wound.begin == MediaEnd(original.file);
    const std::size_t sound = original.film.audio.size() - loss.certain;
    if (isWhole) {
        EXPECT_EQ(got.film.video.size(), kPictures);
        EXPECT_EQ(got.identicalVideo, kPictures);
        EXPECT_EQ(got.identicalPictures, kPictures);
        EXPECT_EQ(got.film.errors, "");
        EXPECT_LE(got.identicalAudio, sound);
        EXPECT_GE(got.identicalAudio + loss.possible, sound);
        return;
    }
    if (trial.damage == Damage::SoundRandom) {
        EXPECT_EQ(got.identicalVideo, kPictures);
        EXPECT_LT(got.identicalAudio, sound);
    } else {
        EXPECT_LT(got.identicalVideo, kPictures);
    }
    EXPECT_GE(got.identicalVideo + VideoAtRisk(original, wound), kPictures);
    EXPECT_GE(got.identicalPictures, PicturesOfWholeGroups(original.film, got.film));
    EXPECT_GE(got.identicalAudio + loss.possible + SoundAtRisk(recording, original, wound), sound);
}

INSTANTIATE_TEST_SUITE_P(All, RealRecording, testing::ValuesIn(Recordings()),
                         [](const auto& test) { return test.param.name; });

TEST_P(RealRecording, ComesBackButForTheDamageAndWhatTheRulesCost) {
    const Recording& recording = GetParam();
    const auto path = folder_ / ("original." + recording.extension);
    const auto other = folder_ / ("other." + recording.extension);
    Record(recording, path);
    Record(recording, other, Scene::Second);
    const Original original(path);
    ASSERT_EQ(original.film.video.size(), kPictures);
    ASSERT_EQ(original.film.pictures.size(), kPictures);
    const std::map<Reference, std::filesystem::path> references{
        {Reference::None, {}}, {Reference::Original, path}, {Reference::SameSettings, other}};
    for (const Trial& trial : recording.trials) {
        SCOPED_TRACE(NameOf(trial.damage) + ", by " + NameOf(trial.reference));
        const ByteVector damaged =
            Apply(trial.damage, original.file, original.film, ReadFile(other));
        const Recovery got = Recover(original.film, damaged, references.at(trial.reference));
        PrintRow(recording.text, NameOf(trial.damage), NameOf(trial.reference), original.film, got);
        if (trial.damage == Damage::Joined) {
            EXPECT_EQ(got.film.video.size(), 2 * kPictures);
            EXPECT_EQ(got.identicalPictures, kPictures);
        } else {
            Check(trial, original, got);
        }
    }
}

// One recording, and the way to repair it by hand.
class RealMedia : public testing::Test {
  protected:
    // Makes a recording of these settings in the test's folder.
    std::filesystem::path Make(const std::string& file, const std::string& recording,
                               Scene scene = Scene::First,
                               const std::string& chunks = "-chunk_duration 500000") {
        Record(RecordingNamed(recording), folder_ / file, scene, chunks);
        return folder_ / file;
    }
    Recovery Repair(const std::string& text, const Original& original, Damage damage,
                    const std::string& reference, const std::filesystem::path& referencePath) {
        const Recovery got =
            Recover(original.film, Apply(damage, original.file, original.film), referencePath);
        PrintRow(text, NameOf(damage), reference, original.film, got);
        return got;
    }

    const TempFolder folder_;
};

// References.

TEST_F(RealMedia, AReferenceOfAnotherCodecIsRefused) {
    const auto avc = Make("avc.mp4", "BaselineAacStereo48");
    const auto hevc = Make("hevc.mp4", "HevcAacStereo48");
    EXPECT_TRUE(
        Repair("H.264 baseline, AAC stereo 48 kHz", Original(avc), Damage::MovieCut, "H.265", hevc)
            .isNothing);
    EXPECT_TRUE(
        Repair("H.265 with B, AAC stereo 48 kHz", Original(hevc), Damage::MovieCut, "H.264", avc)
            .isNothing);
}

// Of the configuration record the last two bits of the fifth byte say how long a length word is.
TEST_F(RealMedia, AReferenceOfAnotherLengthSizeIsRefused) {
    const auto path = Make("original.mp4", "BaselineAacStereo48");
    const Original original(path);
    ByteVector reference = original.file;
    const std::size_t record = FindText(reference, "avcC") + 4;
    ASSERT_EQ(reference[record + 4] & 3U, 3U);
    reference[record + 4] &= 0xFDU;
    WriteFile(folder_ / "reference.mp4", reference);
    EXPECT_TRUE(Repair("H.264 baseline, AAC stereo 48 kHz", original, Damage::MovieCut,
                       "length words of 2 bytes", folder_ / "reference.mp4")
                    .isNothing);
}

// Of H.264 slices the scan asks no more than that they could be slices, so that a recording of
// other settings serves as well. The samples are all there; but the new movie carries the
// reference's parameter sets, by which no picture of the original can be shown.
TEST_F(RealMedia, AReferenceOfOtherSettingsFindsTheSamplesAndSpoilsThePictures) {
    const Original original(Make("original.mp4", "BaselineAacStereo48"));
    const Recovery got = Repair("H.264 baseline, AAC stereo 48 kHz", original, Damage::MovieCut,
                                "high and interlaced", Make("other.mp4", "InterlacedAac51At44"));
    EXPECT_EQ(got.identicalVideo, kPictures);
    EXPECT_EQ(got.identicalPictures, 0U);
    EXPECT_NE(got.film.errors, "");
}

// What the settled rules cost, as numbers.

// Where sound and pictures alternate one by one, no three units stand together.
TEST_F(RealMedia, ARecordingThatAlternatesPictureByPictureIsRefused) {
    for (const auto* name : {"BaselineAacStereo48", "HevcAacStereo48"}) {
        const auto path = Make("original.mp4", name, Scene::First, "");
        EXPECT_TRUE(Repair(RecordingNamed(name).text + ", interleaved picture by picture",
                           Original(path), Damage::MovieCut, "before the damage", path)
                        .isNothing);
    }
}

// Frames of one channel begin with a zero byte while they are not loud, and zero bytes are skipped.
TEST_F(RealMedia, OfQuietSoundOfOneChannelNearlyNothingComesBack) {
    const auto path = folder_ / "original.mp4";
    MakeMedia(path,
              "-f lavfi -i testsrc2=s=160x120:r=25 -f lavfi -i sine=r=48000 -t 3.2 -c:v libx264 "
              "-preset veryfast -threads 1 -bf 0 -c:a aac -ac 1 -chunk_duration 500000");
    const Original original(path);
    const Recovery got = Repair("H.264 high, quiet AAC mono 48 kHz", original, Damage::MovieCut,
                                "before the damage", path);
    EXPECT_EQ(got.identicalVideo, kPictures);
    const auto quiet = std::count_if(
        original.film.audio.begin(), original.film.audio.end(),
        [&](const MediaPacket& packet) { return ByteAt(original.file, packet.offset) == 0; });
    EXPECT_GT(quiet, 140);
    EXPECT_LE(got.identicalAudio, original.film.audio.size() - static_cast<std::size_t>(quiet));
}

// With a picture in hand for the sake of B pictures, ffmpeg ends 75 pictures in a chunk of two. Two
// units are no run: they are lost, and with them the sound between them and the run before.
TEST_F(RealMedia, ALastChunkOfTwoPicturesIsLost) {
    const auto path = folder_ / "original.mov";
    const Recording& recording = RecordingNamed("HighSowt");
    MakeMedia(path, "-f lavfi -i testsrc2=s=160x120:r=25 -f lavfi -i anoisesrc -t 3 " +
                        recording.video + " " + recording.audio + " -chunk_duration 500000");
    const Original original(path);
    const auto& video = original.film.video;
    ASSERT_EQ(video.size(), 75U);
    ASSERT_EQ(video[74].offset, video[73].End());
    ASSERT_NE(video[73].offset, video[72].End());
    const Recovery got = Repair(recording.text + ", a last chunk of two pictures", original,
                                Damage::MovieCut, "before the damage", path);
    EXPECT_EQ(got.identicalVideo, 73U);
    const auto lost =
        std::count_if(original.film.audio.begin(), original.film.audio.end(),
                      [&](const MediaPacket& packet) { return packet.offset > video[72].offset; });
    EXPECT_EQ(got.identicalAudio + static_cast<std::size_t>(lost), original.film.audio.size());
}

// The lengths of some fields of H.265 slice headers are taken by the natural logarithm, so that
// what stands behind them is misread. In a small picture with wavefronts the number of entry points
// comes out too large in every slice, and the slice is refused.
TEST_F(RealMedia, ASmallH265PictureWithWavefrontsIsRefused) {
    const auto path = folder_ / "original.mp4";
    MakeMedia(path,
              "-f lavfi -i testsrc2=s=160x120:r=25,noise=alls=12:allf=t -t 3.2 -pix_fmt yuv420p "
              "-c:v libx265 -preset ultrafast -tag:v hvc1 -x265-params "
              "log-level=0:pools=1:frame-threads=1:keyint=16:wpp=1:bframes=0");
    EXPECT_TRUE(Repair("H.265 160x120 with wavefronts, no sound", Original(path), Damage::MovieCut,
                       "before the damage", path)
                    .isNothing);
}

// The new edit list starts one picture into the track. A player that heeds it shows one picture
// less; and where the reference has a single sync sample, so that each of the first half of the
// samples is called one, it starts at a picture that it cannot decode, and shows none at all.
TEST_F(RealMedia, AnEditListOnePictureInCostsTheFirstPictureOrAll) {
    for (const auto& [group, shown] :
         {std::pair{"16", kPictures - 1}, std::pair{"600", std::size_t{0}}}) {
        const auto path = folder_ / "original.mp4";
        MakeMedia(path,
                  std::string("-f lavfi -i testsrc2=s=160x120:r=25 -t 3.2 -c:v libx264 -preset "
                              "veryfast -threads 1 -bf 0 -sc_threshold 0 -g ") +
                      group);
        const EngineRun run(path, path, folder_ / "out.mov", 0);
        EXPECT_EQ(PictureHashes(path, true).size(), kPictures);
        EXPECT_EQ(PictureHashes(folder_ / "out.mov", false).size(), kPictures);
        EXPECT_EQ(PictureHashes(folder_ / "out.mov", true).size(), shown) << group;
    }
}

// A `twos` movie keeps the runs of its reference; where these name more chunks than there are,
// players refuse the movie.
TEST_F(RealMedia, ATwosRecordingWithFewerChunksThanItsReferenceCannotBePlayed) {
    const auto path = Make("original.mov", "HighTwos");
    EXPECT_TRUE(Repair(RecordingNamed("HighTwos").text, Original(path), Damage::CutInHalf,
                       "before the damage", path)
                    .isUnreadable);
}

// When each picture is shown is carried over from the reference, sample by sample. So a reference
// with other B pictures shows the pictures in the right order and at the wrong times.
TEST_F(RealMedia, TimesOfShowingAreThoseOfTheReference) {
    const auto offsets = [](const std::filesystem::path& path) {
        std::vector<double> values;
        for (ProbedFields& packet : Probe(path, "packet=pts_time,dts_time",
                                          {"-select_streams", "v:0", "-ignore_editlist", "1"})) {
            values.push_back(std::stod(packet["pts_time"]) - std::stod(packet["dts_time"]));
        }
        return values;
    };
    const auto path = Make("original.mp4", "MainAacStereo44");
    const auto other = Make("other.mp4", "MainAacStereo44", Scene::Second);
    const auto before = offsets(path);
    const auto borrowed = offsets(other);
    const Original original(path);
    WriteFile(folder_ / "damaged.mp4", Apply(Damage::MovieCut, original.file, original.film));
    const EngineRun run(folder_ / "damaged.mp4", other, folder_ / "out.mov", 0);
    const auto after = offsets(folder_ / "out.mov");
    ASSERT_EQ(after.size(), kPictures);
    std::size_t atAnotherTime = 0;
    for (std::size_t i = 0; i < kPictures; ++i) {
        EXPECT_NEAR(after[i], borrowed[i], 0.001) << i;
        atAnotherTime += std::abs(before[i] - borrowed[i]) > 0.01 ? 1U : 0U;
    }
    EXPECT_GT(atAnotherTime, 0U);
}

}  // namespace
}  // namespace clipfix::test
