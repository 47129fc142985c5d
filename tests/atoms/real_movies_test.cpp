#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>

#include "atoms/kind_tags.h"
#include "atoms/moov.h"
#include "support/media_tools.h"
#include "support/temp_folder.h"

namespace clipfix {
namespace {

using test::MakeMedia;
using test::Probe;
using test::ProbedFields;

const std::string kPicture = "-f lavfi -i testsrc=d=2:s=128x96:r=25 ";
const std::string kTone = "-f lavfi -i sine=d=2:r=48000 ";
const std::string kH264 = "-c:v libx264 -preset ultrafast -g 10 ";
const std::string kH265 = "-c:v libx265 -preset ultrafast -x265-params log-level=error ";
const std::string kAac = "-c:a aac -ac 2 ";

struct Shape {
    std::string name;  // of the test, and of the file below
    std::string extension;
    std::string arguments;
};

void PrintTo(const Shape& shape, std::ostream* out) {
    *out << shape.name;
}

// The `moov` of a file that ffmpeg makes, read into a tree.
struct RealMovie {
    test::TempFolder folder;
    std::filesystem::path path;
    ByteVector file;
    MovieRead read;
    std::unique_ptr<CMoov> tree;

    RealMovie(const std::string& name, const std::string& arguments) : path(folder / name) {
        std::string whole = arguments;
        const std::string subtitles = "SUBTITLES";
        if (const auto at = whole.find(subtitles); at != std::string::npos) {
            const std::string text = "1\n00:00:00,000 --> 00:00:01,500\nOne line.\n\n";
            test::WriteFile(folder / "lines.srt", ByteVector(text.begin(), text.end()));
            whole.replace(at, subtitles.size(), (folder / "lines.srt").string());
        }
        MakeMedia(path, whole);
        Load();
    }
    void Load() {
        file = test::ReadFile(path);
        tree = std::make_unique<CMoov>(test::TopLevelAtom(file, "moov"), read);
    }
};

std::uint64_t Number(const ProbedFields& fields, const std::string& name) {
    const auto found = fields.find(name);
    return found != fields.end() ? std::strtoull(found->second.c_str(), nullptr, 10) : 0;
}

// The denominator of a time base "1/N".
std::uint64_t Timescale(const ProbedFields& stream) {
    return std::strtoull(stream.at("time_base").c_str() + 2, nullptr, 10);
}

std::string_view FormatOfTag(const std::string& tag) {
    if (tag == "avc1") {
        return kAvc1VideoCoderFormat;
    }
    if (tag == "hvc1") {
        return kHvc1VideoCoderFormat;
    }
    if (tag == "mp4a") {
        return kMp4aAudioCoderFormat;
    }
    if (tag == "sowt") {
        return kSowtAudioCoderFormat;
    }
    return tag == "twos" ? kTwosAudioCoderFormat : "";
}

std::string_view TypeOfStream(const std::string& type) {
    if (type == "video") {
        return kVideoTrack;
    }
    return type == "audio" ? kAudioTrack : kUnknownTrack;
}

constexpr const char* kStreamEntries =
    "stream=codec_type,codec_tag_string,nb_frames,time_base,duration_ts,width,height,extradata_"
    "size";

class RealMovieShape : public testing::TestWithParam<Shape> {};

TEST_P(RealMovieShape, ReadsAsFfprobeSaysItIs) {
    const Shape& shape = GetParam();
    const RealMovie movie(shape.name + shape.extension, shape.arguments);
    const auto streams = Probe(movie.path, kStreamEntries);
    ASSERT_FALSE(streams.empty());
    ASSERT_EQ(movie.tree->tracks.size(), streams.size());
    ASSERT_NE(movie.tree->mvhd, nullptr);
    EXPECT_EQ(movie.read.g_nTrackCount, streams.size());
    for (std::size_t i = 0; i < streams.size(); ++i) {
        const CTrak& track = *movie.tree->tracks[i];
        const std::string& tag = streams[i].at("codec_tag_string");
        EXPECT_EQ(track.trackType, TypeOfStream(streams[i].at("codec_type"))) << tag;
        EXPECT_EQ(track.coderFormat, FormatOfTag(tag)) << tag;
        EXPECT_EQ(track.timescale, Timescale(streams[i])) << tag;
        EXPECT_EQ(track.sampleCount, Number(streams[i], "nb_frames")) << tag;
        ASSERT_NE(track.SampleDescription(), nullptr);
        if (track.trackType == kVideoTrack) {
            EXPECT_EQ(track.tkhd->trackWidth >> 16U, Number(streams[i], "width"));
            EXPECT_EQ(track.tkhd->trackHeight >> 16U, Number(streams[i], "height"));
        }
        if (track.trackType != kUnknownTrack && track.sampleCount != 0) {
            const double seconds = static_cast<double>(track.mediaDuration) / track.timescale;
            EXPECT_NEAR(seconds, 2.0, 0.2) << tag;
            EXPECT_NEAR(track.sampleRate, track.sampleCount / seconds, 1.0) << tag;
        }
    }
    if (const CTrak* video = movie.tree->GetTrack(kVideoTrack)) {
        const bool known = !video->coderFormat.empty();
        EXPECT_EQ(video->SampleDescription()->GetNALLengthSize(), known ? 4U : 0U);
        EXPECT_EQ(movie.tree->GetSPS().index() != 0, known);
        EXPECT_EQ(movie.tree->GetPPS().index() != 0, known);
        EXPECT_EQ(movie.tree->GetVPS() != nullptr, video->coderFormat == kHvc1VideoCoderFormat);
    }
    if (const CTrak* audio = movie.tree->GetTrack(kAudioTrack)) {
        const auto info = movie.tree->GetAudioSpecificInfo();
        EXPECT_EQ(info.has_value(), audio->coderFormat == kMp4aAudioCoderFormat);
        if (info) {
            ASSERT_NE(info->bytes, nullptr);
            EXPECT_GE(info->bytes->size(), 2U);
        }
    }
}

const std::string kBoth = kPicture + kTone + kH264;

INSTANTIATE_TEST_SUITE_P(
    Made, RealMovieShape,
    testing::Values(
        Shape{"Plain", ".mp4", kBoth + kAac},
        Shape{"FastStart", ".mp4", kBoth + kAac + "-movflags +faststart"},
        Shape{"QuickTimeWithMp4aInsideWave", ".mov", kBoth + kAac},
        Shape{"WithUserData", ".mp4", kBoth + kAac + "-metadata title=trak -metadata artist=mdia"},
        Shape{"WithMetaKeys", ".mp4",
              kBoth + kAac + "-metadata title=stbl -metadata any=mvhd -movflags use_metadata_tags"},
        Shape{"WithIods", ".mp4", kBoth + kAac + "-skip_iods 0"},
        Shape{"WithReorderedPicturesAndEditLists", ".mp4",
              kPicture + kTone + "-c:v libx264 -preset fast -bf 3 -g 10 " + kAac},
        Shape{"WithATimecodeTrack", ".mov", kBoth + kAac + "-timecode 01:00:00:00"},
        Shape{"WithASubtitleTrack", ".mp4",
              kPicture + kTone + "-i SUBTITLES -map 0 -map 1 -map 2 " + kH264 + kAac +
                  "-c:s mov_text"},
        Shape{"FragmentedWithEmptyTables", ".mp4",
              kBoth + kAac + "-movflags frag_keyframe+empty_moov"},
        Shape{"AudioFirst", ".mp4", kPicture + kTone + "-map 1 -map 0 " + kH264 + kAac},
        Shape{"WithTwoVideoTracks", ".mp4",
              kPicture + kPicture + kTone + "-map 0 -map 1 -map 2 " + kH264 + kAac},
        Shape{"VideoAlone", ".mp4", kPicture + kH264}, Shape{"SoundAlone", ".m4a", kTone + kAac},
        Shape{"Hvc1", ".mp4", kPicture + kTone + kH265 + "-tag:v hvc1 " + kAac},
        Shape{"Hev1", ".mp4", kPicture + kTone + kH265 + "-tag:v hev1 " + kAac},
        Shape{"Avc3", ".mp4", kBoth + "-tag:v avc3 " + kAac},
        Shape{"Sowt", ".mov", kBoth + "-c:a pcm_s16le"},
        Shape{"Twos", ".mov", kBoth + "-c:a pcm_s16be"},
        Shape{"In24", ".mov", kBoth + "-c:a pcm_s24be"},
        Shape{"Lpcm", ".mov", kTone + "-c:a pcm_f64le"},
        Shape{"Mpeg4Video", ".mov", kPicture + kTone + "-c:v mpeg4 " + kAac}),
    [](const testing::TestParamInfo<Shape>& shape) { return shape.param.name; });

TEST(RealMovie, WithHeadersOfVersionOneIsReadByTheOffsetsOfVersionZero) {
    const RealMovie movie("long.mp4",
                          "-f lavfi -i testsrc=d=6:s=128x96:r=1 " + kH264 +
                              "-movie_timescale 1000000000 -video_track_timescale 1000000000");
    ASSERT_EQ(movie.tree->tracks.size(), 1U);
    const CTrak& track = *movie.tree->tracks[0];
    EXPECT_EQ(movie.tree->mvhd->version_Flag >> 24U, 1U);
    EXPECT_EQ(track.tkhd->version_Flag >> 24U, 1U);
    EXPECT_EQ(track.mdia->mdhd.version_Flag >> 24U, 1U);
    // 64 bits of creation and of modification time stand where version 0 has its numbers.
    EXPECT_EQ(track.timescale, 0U);
    EXPECT_EQ(track.sampleCount, 6U);
    EXPECT_EQ(movie.tree->mvhd->size, 120U);
}

// A chunk of the damaged movie as an engine finds it.
struct FoundChunk {
    bool video = false;
    std::uint64_t from = 0;  // offset in bytes in the damaged file
    std::vector<std::uint32_t> sizes;
};

// All packets of the file, in file order, as chunks: neighbours of one stream form one.
std::vector<FoundChunk> FindChunks(const std::filesystem::path& path) {
    auto packets = Probe(path, "packet=codec_type,pos,size", {"-ignore_editlist", "1"});
    std::sort(packets.begin(), packets.end(), [](const auto& left, const auto& right) {
        return Number(left, "pos") < Number(right, "pos");
    });
    std::vector<FoundChunk> chunks;
    std::uint64_t end = 0;
    for (const ProbedFields& packet : packets) {
        const bool video = packet.at("codec_type") == "video";
        const std::uint64_t from = Number(packet, "pos");
        if (chunks.empty() || chunks.back().video != video || from != end) {
            chunks.push_back({video, from, {}});
        }
        chunks.back().sizes.push_back(static_cast<std::uint32_t>(Number(packet, "size")));
        end = from + chunks.back().sizes.back();
    }
    return chunks;
}

std::uint32_t BytesOf(const FoundChunk& chunk) {
    std::uint32_t bytes = 0;
    for (const std::uint32_t size : chunk.sizes) {
        bytes += size;
    }
    return bytes;
}

// The requests for those chunks, and the sample data behind a media data head of 16 bytes.
struct FoundMovie {
    CAtomCreationRequest video;
    CAtomCreationRequest audio;
    ByteVector output;

    FoundMovie(const RealMovie& movie, const std::vector<FoundChunk>& chunks) : output(16) {
        video.requestType = kVideoRequest;
        video.timescale = movie.tree->GetVideoTimescale();
        video.sampleRate = movie.tree->GetVideoSampleRate();
        video.stscEntries = std::make_shared<std::vector<CSampleToChunkEntery>>();
        audio.requestType = kAudioRequest;
        audio.timescale = movie.tree->GetAudioTimescale();
        audio.sampleRate = movie.tree->GetAudioSampleRate();
        audio.stscEntries = std::make_shared<std::vector<CSampleToChunkEntery>>();
        const bool pcm = movie.read.g_strAudioCoderFormat == kSowtAudioCoderFormat ||
                         movie.read.g_strAudioCoderFormat == kTwosAudioCoderFormat;
        for (const FoundChunk& chunk : chunks) {
            Add(chunk.video ? video : audio, chunk, pcm && !chunk.video);
            AppendBytes(output,
                        SubView(movie.file, static_cast<std::size_t>(chunk.from), BytesOf(chunk)));
        }
        StoreBig32(output, 0, 1);
        StoreBig32(output, 4, 0x6D646174);  // mdat
        StoreBig64(output, 8, output.size());
    }

  private:
    void Add(CAtomCreationRequest& request, const FoundChunk& chunk, bool pcm) {
        request.stcoEntries.push_back(output.size());
        const std::uint32_t samples =
            pcm ? BytesOf(chunk) / 2 : static_cast<std::uint32_t>(chunk.sizes.size());
        if (!pcm) {
            request.stszEntries.insert(request.stszEntries.end(), chunk.sizes.begin(),
                                       chunk.sizes.end());
        }
        auto& runs = *request.stscEntries;
        if (runs.empty() || runs.back().samplesPerChunk != samples) {
            runs.emplace_back(static_cast<std::uint32_t>(request.stcoEntries.size()), samples, 1U);
        }
    }
};

// Writes the repaired movie; gives its path.
std::filesystem::path WriteRepaired(const RealMovie& movie, const FoundMovie& found) {
    auto path = movie.folder / "Repaired.mov";
    auto file = platform::File::Create(path, platform::File::Existing::Refuse);
    EXPECT_TRUE(file);
    EXPECT_TRUE(file.Value().WriteAt(0, found.output));
    const auto made = movie.tree->CreateMoov(found.video, found.audio);
    FileMoovSink sink(file.Value());
    EXPECT_TRUE(made->WriteMoov(sink));
    EXPECT_EQ(file.Value().CurrentSize().Value(), found.output.size() + made->size);
    return path;
}

// A sum over everything that one kind of stream ("v" or "a") decodes to.
std::string DecodedSum(const std::filesystem::path& path, const std::string& kind) {
    const auto result =
        test::RunCommand({"ffmpeg", "-v", "error", "-ignore_editlist", "1", "-i", path.string(),
                          "-map", "0:" + kind, "-fps_mode", "passthrough", "-f", "md5", "-"});
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_EQ(result.output.substr(0, 4), "MD5=");
    return result.output;
}

class RepairedMovie : public testing::TestWithParam<Shape> {};

TEST_P(RepairedMovie, HasEveryPacketAtItsPlaceAndPlays) {
    const Shape& shape = GetParam();
    const RealMovie movie(shape.name + shape.extension, shape.arguments);
    const auto chunks = FindChunks(movie.path);
    ASSERT_FALSE(chunks.empty());
    const FoundMovie found(movie, chunks);
    const auto repaired = WriteRepaired(movie, found);

    // Every packet of the repaired movie, in file order, with its size.
    auto packets = Probe(repaired, "packet=codec_type,pos,size", {"-ignore_editlist", "1"});
    std::sort(packets.begin(), packets.end(), [](const auto& left, const auto& right) {
        return Number(left, "pos") < Number(right, "pos");
    });
    std::uint64_t at = 16;
    std::size_t next = 0;
    for (const FoundChunk& chunk : chunks) {
        for (const std::uint32_t size : chunk.sizes) {
            ASSERT_LT(next, packets.size());
            EXPECT_EQ(packets[next].at("codec_type"), chunk.video ? "video" : "audio");
            EXPECT_EQ(Number(packets[next], "pos"), at);
            EXPECT_EQ(Number(packets[next], "size"), size);
            at += size;
            ++next;
        }
    }
    EXPECT_EQ(next, packets.size());

    EXPECT_EQ(DecodedSum(repaired, "v"), DecodedSum(movie.path, "v"));
    if (movie.tree->GetTrack(kAudioTrack) != nullptr) {
        EXPECT_EQ(DecodedSum(repaired, "a"), DecodedSum(movie.path, "a"));
    }
    const auto watched =
        test::RunCommand({"ffmpeg", "-v", "error", "-i", repaired.string(), "-f", "null", "-"});
    EXPECT_EQ(watched.status, 0) << watched.output;

    // The streams keep their description, and the tables say how many samples there are.
    const auto before = Probe(movie.path, "stream=codec_name,codec_type,nb_frames,width,height");
    const auto after = Probe(repaired, "stream=codec_name,codec_type,nb_frames,width,height");
    EXPECT_EQ(after, before);
}

INSTANTIATE_TEST_SUITE_P(
    Made, RepairedMovie,
    testing::Values(Shape{"Plain", ".mp4", kBoth + kAac}, Shape{"QuickTime", ".mov", kBoth + kAac},
                    Shape{"ReorderedPictures", ".mp4",
                          kPicture + kTone + "-c:v libx264 -preset fast -bf 3 -g 10 " + kAac},
                    Shape{"SoundFirst", ".mp4", kPicture + kTone + "-map 1 -map 0 " + kH264 + kAac},
                    Shape{"VideoAlone", ".mp4", kPicture + kH264},
                    Shape{"Hvc1", ".mp4", kPicture + kTone + kH265 + "-tag:v hvc1 " + kAac},
                    Shape{"Hev1", ".mp4", kPicture + kTone + kH265 + "-tag:v hev1 " + kAac}),
    [](const testing::TestParamInfo<Shape>& shape) { return shape.param.name; });

// A repaired movie has 64-bit offsets, in whatever file it is read again.
TEST(RepairedMovieAgain, ServesAsAReference) {
    RealMovie movie("plain.mp4", kBoth + kAac);
    const auto repaired = WriteRepaired(movie, FoundMovie(movie, FindChunks(movie.path)));
    MovieRead read;
    const CMoov tree(test::TopLevelAtom(test::ReadFile(repaired), "moov"), read);
    ASSERT_EQ(tree.tracks.size(), 2U);
    EXPECT_EQ(tree.GetVideoSampleRate(), movie.tree->GetVideoSampleRate());
    EXPECT_EQ(tree.tracks[0]->sampleCount, movie.tree->tracks[0]->sampleCount);
    EXPECT_EQ(tree.tracks[1]->sampleCount, movie.tree->tracks[1]->sampleCount);
    EXPECT_EQ(tree.GetTrack(kVideoTrack)->mdia->minf->stbl->stco->entries.front(), 0U);
}

// The samples of PCM sound have the size 1 in the tables, whatever they are, so that its packets
// cannot be compared one by one. What is decoded can.
TEST(RepairedMovieOfPcm, KeepsItsSoundForSowt) {
    const RealMovie movie("sowt.mov", kBoth + "-c:a pcm_s16le");
    const auto repaired = WriteRepaired(movie, FoundMovie(movie, FindChunks(movie.path)));
    EXPECT_EQ(DecodedSum(repaired, "v"), DecodedSum(movie.path, "v"));
    EXPECT_EQ(DecodedSum(repaired, "a"), DecodedSum(movie.path, "a"));
}

TEST(RepairedMovieOfPcm, KeepsItsSoundForTwosInTheReferencesOwnChunks) {
    const RealMovie movie("twos.mov", kBoth + "-c:a pcm_s16be");
    const auto repaired = WriteRepaired(movie, FoundMovie(movie, FindChunks(movie.path)));
    EXPECT_EQ(DecodedSum(repaired, "v"), DecodedSum(movie.path, "v"));
    EXPECT_EQ(DecodedSum(repaired, "a"), DecodedSum(movie.path, "a"));
}

}  // namespace
}  // namespace clipfix
