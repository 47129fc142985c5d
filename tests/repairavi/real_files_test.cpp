// AVIs that ffmpeg made, damaged as cards and broken transfers damage them. What survives is judged
// by ffprobe and ffmpeg: every chunk reported is a packet, and every picture outside the damage is
// the original's.

#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <set>
#include <sstream>

#include "repairavi/avi_job.h"
#include "support/byte_builder.h"
#include "support/media_tools.h"

namespace clipfix {
namespace {

using namespace test;
using test::AviChunk;  // the builder, and not the record of the same name

// A data chunk of a file, with its place.
struct Placed {
    std::string id;
    std::size_t start = 0;  // of the id
    std::size_t size = 0;   // of the data

    [[nodiscard]] std::size_t End() const { return start + 8 + size + size % 2; }
};

// The chunks of the first `movi` list, by its sizes.
std::vector<Placed> ChunksIn(ByteView bytes) {
    const std::size_t word = FindText(bytes, "movi");
    const std::size_t end = word + ReadLittle32(bytes, word - 4);
    std::vector<Placed> chunks;
    for (std::size_t at = word + 4; at + 8 <= std::min(end, bytes.size());) {
        const ByteView id = bytes.subspan(at, 4);
        Placed chunk{{id.begin(), id.end()}, at, ReadLittle32(bytes, at + 4)};
        if (IsAsciiDigit(id[0])) {  // and no `ix00`
            chunks.push_back(chunk);
        }
        at = chunk.End();
    }
    return chunks;
}

ByteVector DataOf(ByteView bytes, const Placed& chunk) {
    const ByteView data = SubView(bytes, chunk.start + 8, chunk.size);
    return {data.begin(), data.end()};
}

struct Media {
    const char* name;
    const char* arguments;
    bool withSound;
};

void PrintTo(const Media& media, std::ostream* out) {
    *out << media.name;
}

// One media file per row, made once, with its chunks and the checksums of its pictures.
struct Original {
    ByteVector bytes;
    std::vector<Placed> chunks;
    std::vector<std::string> pictures;  // checksum of each decoded picture
};

std::vector<std::string> PictureChecksums(const std::filesystem::path& path) {
    const auto result =
        RunCommand({"ffmpeg", "-v", "quiet", "-threads", "1", "-i", path.string(), "-map", "0:v:0",
                    "-vsync", "passthrough", "-f", "framemd5", "-"});
    std::vector<std::string> checksums;
    std::istringstream lines(result.output);
    for (std::string line; std::getline(lines, line);) {
        if (!line.empty() && line[0] != '#') {
            checksums.push_back(line.substr(line.rfind(' ') + 1));
        }
    }
    return checksums;
}

class RealAvi : public testing::TestWithParam<Media> {
  protected:
    static const Original& Made() {
        static std::map<std::string, Original> made;
        const Media& media = GetParam();
        Original& original = made[media.name];
        if (original.bytes.empty()) {
            const TempFolder folder;
            MakeMedia(folder / "made.avi", media.arguments);
            original.bytes = ReadFile(folder / "made.avi");
            original.chunks = ChunksIn(original.bytes);
            original.pictures = PictureChecksums(folder / "made.avi");
        }
        return original;
    }

    // Repairs `damaged` and expects that just the original's chunks at the places in `lost` are
    // missing, and that all others are whole, are packets to ffprobe, and decode to the original's
    // pictures. `touched` are chunks whose contents the damage has changed.
    static void ExpectLost(ByteView damaged, const std::set<std::size_t>& lost,
                           const std::set<std::size_t>& touched = {}) {
        const Original& original = Made();
        AviJob job(damaged);
        ASSERT_EQ(job.Run(), 1);
        const ByteVector output = job.Output();
        const std::vector<Placed> chunks = ChunksIn(output);

        std::vector<std::string> pictures;
        std::size_t next = 0;
        std::size_t picture = 0;
        bool lastTouched = false;
        for (std::size_t i = 0; i < original.chunks.size(); ++i) {
            const Placed& chunk = original.chunks[i];
            // An empty chunk, with which a muxer fills a gap, counts as a frame and shows nothing.
            const bool isPicture = chunk.id.substr(2) != "wb" && chunk.size > 0;
            if (lost.count(i) == 0) {
                ASSERT_LT(next, chunks.size()) << i;
                ASSERT_EQ(chunks[next].id, chunk.id) << i;
                if (touched.count(i) == 0) {
                    ASSERT_EQ(DataOf(output, chunks[next]), DataOf(original.bytes, chunk)) << i;
                }
                ++next;
                if (isPicture) {
                    // A decoder may carry a damaged picture on into the next one.
                    const bool judged = touched.count(i) == 0 && !lastTouched;
                    pictures.push_back(judged ? original.pictures.at(picture) : "");
                    lastTouched = touched.count(i) != 0;
                }
            }
            picture += isPicture ? 1U : 0U;
        }
        EXPECT_EQ(next, chunks.size());
        EXPECT_EQ(job.state.g_nAviVideoChunks + job.state.g_nAviAudioChunks, chunks.size());
        const auto empty = std::count_if(chunks.begin(), chunks.end(),
                                         [](const Placed& chunk) { return chunk.size == 0; });
        EXPECT_EQ(job.state.g_nAviVideoChunks, pictures.size() + static_cast<std::size_t>(empty));
        ExpectPlays(job.state.g_strAviRepairedPath, pictures);
    }

    static void ExpectPlays(const std::string& path, const std::vector<std::string>& pictures) {
        const auto packets = Probe(path, "packet=size", {"-select_streams", "v:0"});
        EXPECT_EQ(packets.size(), pictures.size());
        const std::vector<std::string> decoded = PictureChecksums(path);
        ASSERT_EQ(decoded.size(), pictures.size());
        for (std::size_t i = 0; i < decoded.size(); ++i) {
            if (!pictures[i].empty()) {
                EXPECT_EQ(decoded[i], pictures[i]) << i;
            }
        }
        if (GetParam().withSound) {
            EXPECT_FALSE(Probe(path, "packet=size", {"-select_streams", "a:0"}).empty());
        }
    }

    static std::set<std::size_t> AcrossRefills(std::size_t shift = 0) {
        std::set<std::size_t> lost;
        for (std::size_t i = 1; i < Made().chunks.size(); ++i) {
            if (HeadLiesAcrossARefill(Made().chunks[i].start + shift)) {
                lost.insert(i);
            }
        }
        return lost;
    }

    // The losses that a stretch of destroyed bytes brings: each chunk whose head it touches, and
    // the chunk before each of them. The others that it touches are copied as they are.
    static void ExpectStretchCosts(ByteVector damaged, std::size_t from, std::size_t length) {
        std::set<std::size_t> lost = AcrossRefills();
        std::set<std::size_t> touched;
        const auto& chunks = Made().chunks;
        for (std::size_t i = 0; i < chunks.size(); ++i) {
            if (chunks[i].start < from + length && from < chunks[i].start + 8) {
                lost.insert(i);
                if (i > 0) {
                    lost.insert(i - 1);
                }
            } else if (chunks[i].start < from + length && from < chunks[i].End()) {
                touched.insert(i);
            }
        }
        ASSERT_FALSE(lost.empty());
        ExpectLost(damaged, lost, touched);
    }
};

TEST_P(RealAvi, IntactLosesNothing) {
    ExpectLost(Made().bytes, AcrossRefills());
}

TEST_P(RealAvi, WithoutItsIndexLosesItsLastChunk) {
    ByteVector bytes = Made().bytes;
    bytes.resize(FindText(bytes, "idx1", Made().chunks.back().End()));
    std::set<std::size_t> lost = AcrossRefills();
    lost.insert(Made().chunks.size() - 1);
    ExpectLost(bytes, lost);
}

TEST_P(RealAvi, CutInTheMiddleLosesTheChunkThatIsCut) {
    const std::size_t middle = Made().chunks.size() / 2;
    ByteVector bytes = Made().bytes;
    bytes.resize(Made().chunks[middle].start + 8 + Made().chunks[middle].size / 2);
    std::set<std::size_t> lost = AcrossRefills();
    for (std::size_t i = middle; i < Made().chunks.size(); ++i) {
        lost.insert(i);
    }
    ExpectLost(bytes, lost);
}

TEST_P(RealAvi, WithAZeroedStretchLosesTheHeadsInItAndTheChunkBefore) {
    const std::size_t from = Made().chunks[Made().chunks.size() / 3].start - 3;
    ByteVector bytes = Made().bytes;
    Overwrite(bytes, from, ByteVector(40'000));
    ExpectStretchCosts(bytes, from, 40'000);
}

TEST_P(RealAvi, WithARandomStretchLosesTheHeadsInItAndTheChunkBefore) {
    const std::size_t from = Made().chunks[Made().chunks.size() / 3].start - 3;
    ByteVector bytes = Made().bytes;
    Overwrite(bytes, from, Random(5).Bytes(40'000));
    ExpectStretchCosts(bytes, from, 40'000);
}

TEST_P(RealAvi, WithAStretchOfZeroedSectorsInsideOneChunkLosesNoChunk) {
    const auto& chunks = Made().chunks;
    const auto largest = std::max_element(
        chunks.begin(), chunks.end(),
        [](const Placed& left, const Placed& right) { return left.size < right.size; });
    ByteVector bytes = Made().bytes;
    Overwrite(bytes, largest->start + 8 + largest->size / 2, ByteVector(64));
    ExpectLost(bytes, AcrossRefills(),
               {static_cast<std::size_t>(std::distance(chunks.begin(), largest))});
}

TEST_P(RealAvi, WithARangeDeletedLosesTheChunksThatItTouches) {
    const auto& chunks = Made().chunks;
    const std::size_t first = chunks.size() / 3;
    const std::size_t last = first + 4;
    const std::size_t from = chunks[first].start + 8 + chunks[first].size / 2;
    // Less by three, so that the halves of two chunks of one size do not make a whole one.
    const std::size_t length = chunks[last].start + 8 + chunks[last].size / 2 - 3 - from;
    ByteVector bytes = Made().bytes;
    Erase(bytes, from, length);
    std::set<std::size_t> lost;
    for (std::size_t i = 1; i < chunks.size(); ++i) {
        const std::size_t start = i <= last ? chunks[i].start : chunks[i].start - length;
        if ((i >= first && i <= last) || HeadLiesAcrossARefill(start)) {
            lost.insert(i);
        }
    }
    ExpectLost(bytes, lost);
}

TEST_P(RealAvi, WithJunkInFrontLosesNothing) {
    ByteVector bytes = Made().bytes;
    Insert(bytes, 0, Random(9).Bytes(777));
    ExpectLost(bytes, AcrossRefills(777));
}

TEST_P(RealAvi, WithWipedRiffHeadLosesNothing) {
    ByteVector bytes = Made().bytes;
    Overwrite(bytes, 0, ByteVector(12));
    ExpectLost(bytes, AcrossRefills());
}

TEST_P(RealAvi, WithWipedMainHeaderLosesNothing) {
    ByteVector bytes = Made().bytes;
    Overwrite(bytes, 12, ByteVector(76));
    ExpectLost(bytes, AcrossRefills());
}

TEST_P(RealAvi, WithWipedMovieListHeadLosesNothing) {
    ByteVector bytes = Made().bytes;
    Overwrite(bytes, FindText(bytes, "movi") - 8, ByteVector(12));
    ExpectLost(bytes, AcrossRefills());
}

// Without its stream list a kind cannot be taken: the job gives up at its first chunk, or at a
// sound list that comes ahead of any picture list.
TEST_P(RealAvi, WithWipedStreamListsGivesUp) {
    ByteVector bytes = Made().bytes;
    const std::size_t list = FindText(bytes, "strl") - 8;
    Overwrite(bytes, list, ByteVector(ReadLittle32(bytes, list + 4) + 8));
    EXPECT_EQ(Repaired(bytes), std::nullopt);
    if (GetParam().withSound) {
        bytes = Made().bytes;
        const std::size_t second = FindText(bytes, "strl", list + 12) - 8;
        Overwrite(bytes, second, ByteVector(ReadLittle32(bytes, second + 4) + 8));
        EXPECT_EQ(Repaired(bytes), std::nullopt);
    }
}

// The same chunks in three RIFF parts, as a recorder of large files writes them.
ByteVector InThreeParts(const Original& original, bool withStandardIndexes) {
    ByteVector bytes = original.bytes;
    bytes.resize(FindText(bytes, "movi") - 8);
    const std::size_t third = original.chunks.size() / 3;
    for (std::size_t part = 0; part < 3; ++part) {
        const std::size_t end = part == 2 ? original.chunks.size() : (part + 1) * third;
        std::vector<ByteVector> pieces;
        for (std::size_t i = part * third; i < end; ++i) {
            const Placed& chunk = original.chunks[i];
            pieces.push_back(AviChunk(chunk.id, DataOf(original.bytes, chunk)));
        }
        if (withStandardIndexes) {
            pieces.push_back(AviChunk("ix00", ByteVector(32, 0x80)));
        }
        const ByteVector movie = AviList("movi", pieces);
        AppendBytes(bytes, part == 0 ? movie : AviRiff("AVIX", {movie}));
        if (part == 0 && !withStandardIndexes) {
            AppendBytes(bytes, AviChunk("idx1", ByteVector(16, 0x80)));
        }
    }
    return bytes;
}

TEST_P(RealAvi, InThreePartsBecomesOne) {
    ExpectLost(InThreeParts(Made(), true), {});
}

// Behind the last chunk of the second part stands "RIFF"... nothing, of the third: one is lost of
// each.
TEST_P(RealAvi, InThreePartsWithoutStandardIndexesLosesTheLastOfTheSecondAndOfTheThird) {
    const std::size_t count = Made().chunks.size();
    const std::size_t lastOfSecond = count / 3 * 2 - 1;
    ExpectLost(InThreeParts(Made(), false), {lastOfSecond, count - 1});
}

constexpr const char* kPictures = "-f lavfi -i testsrc2=s=320x240:r=25:d=2 ";
const std::string kSound = "-f lavfi -i sine=r=44100:d=2 ";

// Every picture stands alone (-g 1), so each one outside the damage must come out as it was.
const std::string kMpeg4Mp3 = kPictures + kSound + "-c:v mpeg4 -g 1 -q:v 2 -c:a libmp3lame";
const std::string kXvidMp3 = kPictures + kSound + "-c:v libxvid -g 1 -q:v 3 -c:a libmp3lame";
const std::string kMjpegPcm = kPictures + kSound + "-c:v mjpeg -q:v 3 -c:a pcm_s16le";
const std::string kH264Ac3 =
    kPictures + kSound + "-c:v libx264 -preset ultrafast -g 1 -qp 20 -pix_fmt yuv420p -c:a ac3";
const std::string kRawPcm = std::string("-f lavfi -i testsrc2=s=160x120:r=25:d=2 ") + kSound +
                            "-c:v rawvideo -pix_fmt yuv420p -c:a pcm_s16le";
const std::string kMjpegSilent = std::string(kPictures) + "-c:v mjpeg -q:v 3";

INSTANTIATE_TEST_SUITE_P(Files, RealAvi,
                         testing::Values(Media{"Mpeg4AndMp3", kMpeg4Mp3.c_str(), true},
                                         Media{"XvidAndMp3", kXvidMp3.c_str(), true},
                                         Media{"MjpegAndPcm", kMjpegPcm.c_str(), true},
                                         Media{"H264AndAc3", kH264Ac3.c_str(), true},
                                         Media{"RawVideoAndPcm", kRawPcm.c_str(), true},
                                         Media{"MjpegWithoutSound", kMjpegSilent.c_str(), false}),
                         [](const testing::TestParamInfo<Media>& row) { return row.param.name; });

}  // namespace
}  // namespace clipfix
