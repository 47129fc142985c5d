#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

#include "atoms/moov.h"
#include "job/state/job_control.h"
#include "literal/atom_facts.h"
#include "literal/literal_atoms.h"
#include "literal/random_moov.h"
#include "literal/random_source.h"
#include "moviefile/movie_file.h"
#include "moviefile/structure_check.h"
#include "support/atom_builder.h"
#include "support/media_tools.h"
#include "support/memory_file.h"
#include "support/silent_front_end.h"
#include "support/temp_folder.h"

namespace clipfix::test {
namespace {

CAtomCreationRequest AsRequest(const LiteralRequest& literal) {
    CAtomCreationRequest request;
    request.stcoEntries = literal.stcoEntries;
    request.stszEntries = literal.stszEntries;
    if (!literal.stscEntries.empty() || literal.timescale % 2 == 0) {
        request.stscEntries = std::make_shared<std::vector<CSampleToChunkEntery>>();
        for (const auto& run : literal.stscEntries) {
            request.stscEntries->emplace_back(static_cast<std::uint32_t>(run[0]),
                                              static_cast<std::uint32_t>(run[1]),
                                              static_cast<std::uint32_t>(run[2]));
        }
    }
    request.timescale = literal.timescale;
    request.sampleRate = literal.sampleRate;
    request.requestType = literal.requestType;
    return request;
}

class CollectingSink final : public MoovSink {
  public:
    Result<void> Append(ByteView more) override {
        AppendBytes(bytes, more);
        return {};
    }
    Result<void> Flush() override { return {}; }
    ByteVector bytes;
};

// Which of the three ends a movie came to.
enum class AtomsOutcome { NoTracks, TooLong, Written };

// Makes the repaired movie by both trees.
AtomsOutcome CompareCreation(CMoov& program, LiteralMoov& model, RandomSource& random) {
    const LiteralRequest video = RandomRequest(true, program.GetVideoSampleRate(), random);
    const LiteralRequest audio = RandomRequest(false, program.GetAudioSampleRate(), random);
    std::optional<LiteralMoov> modelMade;
    try {
        modelMade = LiteralCreateMoov(model, video, audio);
    } catch (const LiteralTableTooLong&) {
        return AtomsOutcome::TooLong;
    }
    const auto programMade = program.CreateMoov(AsRequest(video), AsRequest(audio));
    EXPECT_EQ(programMade != nullptr, modelMade.has_value());
    if (programMade == nullptr || !modelMade) {
        return AtomsOutcome::NoTracks;
    }
    EXPECT_EQ(Differences(FactsOf(*programMade), FactsOf(*modelMade)), "");
    CollectingSink sink;
    EXPECT_TRUE(programMade->WriteMoov(sink));
    const ByteVector expected = LiteralWriteMoov(*modelMade);
    EXPECT_TRUE(sink.bytes == expected)
        << "sizes " << sink.bytes.size() << " and " << expected.size() << ", first difference at "
        << std::mismatch(sink.bytes.begin(), sink.bytes.end(), expected.begin(), expected.end())
                   .first -
               sink.bytes.begin();
    // What the two trees share shows in the reference as well.
    EXPECT_EQ(Differences(FactsOf(program), FactsOf(model)), "");
    return AtomsOutcome::Written;
}

AtomsOutcome CompareMoov(const ByteVector& bytes, RandomSource& random) {
    MovieRead read;
    CMoov program(bytes, read);
    LiteralGlobals globals;
    LiteralMoov model = LiteralReadMoov({bytes, static_cast<std::uint32_t>(bytes.size())}, globals);
    EXPECT_EQ(read.g_nTrackCount, globals.trackCount);
    EXPECT_EQ(read.g_nStblChildBytes, globals.stblChildBytes);
    EXPECT_EQ(read.g_strVideoCoderFormat, globals.videoCoder);
    EXPECT_EQ(read.g_strAudioCoderFormat, globals.audioCoder);
    const bool plays = globals.videoCoder == "HVC1_VIDEO_CODER_FORMAT" ||
                       globals.audioCoder == "MP4A_AUDIO_CODER_FORMAT";
    EXPECT_EQ(CMoov::PlayerArgsSuffix(read.g_strVideoCoderFormat, read.g_strAudioCoderFormat),
              plays ? "$$1" : "$$0");
    EXPECT_EQ(Differences(FactsOf(program), FactsOf(model)), "");
    return CompareCreation(program, model, random);
}

// Whole files, as muxers lay them out: coders, track counts, edit lists, composition offsets.
const std::vector<ByteVector>& MuxedMovies() {
    static const std::vector<ByteVector> kMovies = [] {
        const TempFolder folder;
        const std::string video = "-f lavfi -i testsrc2=size=64x48:rate=25:duration=1 ";
        const std::string sound = "-f lavfi -i sine=frequency=440:duration=1 ";
        const std::string both = video + sound + "-bitexact ";
        const std::vector<std::pair<std::string, std::string>> shapes{
            {"m.mp4", both + "-c:v libx264 -bf 2 -g 5 -c:a aac"},
            {"m.mov", both + "-c:v libx264 -bf 0 -g 5 -c:a pcm_s16le -chunk_duration 200000"},
            {"m.mov", both + "-c:v libx264 -g 1 -c:a pcm_s16be -chunk_duration 300000"},
            {"m.mov", both + "-c:v libx265 -x265-params log-level=none -tag:v hvc1 -c:a aac"},
            {"m.mp4", both + "-c:v libx265 -x265-params log-level=none -tag:v hev1 -c:a aac"},
            {"m.mp4", video + "-bitexact -c:v libx264 -an -use_editlist 0 -movflags faststart"},
            {"m.mov", sound + "-bitexact -c:a aac -metadata title=moovtrakmdia"},
            {"m.mov", both + "-map 0:v -map 1:a -map 1:a -map 0:v -c:v libx264 -c:a pcm_s16le "
                             "-timecode 01:00:00:00 -metadata comment=stblminf"},
            {"m.mov", both + "-map 1:a -map 0:v -c:v mjpeg -c:a pcm_s16be -ar 44100"},
            {"m.mov", both + "-c:v libx264 -x264-params slices=2 -c:a pcm_s24le"},
            {"m.mp4", both + "-c:v libx264 -c:a aac -movflags negative_cts_offsets"}};
        std::vector<ByteVector> movies;
        for (const auto& [name, arguments] : shapes) {
            MakeMedia(folder / name, arguments);
            movies.push_back(ReadFile(folder / name));
        }
        return movies;
    }();
    return kMovies;
}

const ByteVector& AnyMuxed(RandomSource& random) {
    return MuxedMovies()[random.Below(static_cast<std::uint32_t>(MuxedMovies().size()))];
}

// A `moov`: of a muxer or made up, as it is or changed.
ByteVector AnyMoov(RandomSource& random) {
    AtomNode tree =
        random.OneIn(2) ? RandomMoov(random) : TakeApart(TopLevelAtom(AnyMuxed(random), "moov"));
    if (random.OneIn(2)) {
        for (std::uint32_t i = 1 + random.Below(4); i > 0; --i) {
            ReshapeTree(tree, random);
        }
    }
    if (random.OneIn(12)) {  // where the scan just reaches
        tree.children.push_back({random.OneIn(2) ? "mvhd" : "trak", {}, {}});
    }
    ByteVector bytes = tree.Image();
    if (random.OneIn(3)) {
        for (std::uint32_t i = 1 + random.Below(3); i > 0; --i) {
            DamageBytes(bytes, random);
        }
    }
    return bytes;
}

TEST(MovieTree, DoesWhatTheLiteralModelDoesWithMoviesOfMuxers) {
    for (std::size_t i = 0; i < MuxedMovies().size(); ++i) {
        SCOPED_TRACE("movie " + std::to_string(i));
        const ByteVector moov = TopLevelAtom(MuxedMovies()[i], "moov");
        ASSERT_TRUE(TakeApart(moov).Image() == moov);
        for (std::uint64_t seed = 1; seed <= 10; ++seed) {
            RandomSource random(seed);
            EXPECT_EQ(CompareMoov(moov, random), AtomsOutcome::Written);
            ASSERT_FALSE(HasFailure());
        }
    }
}

TEST(MovieTree, DoesWhatTheLiteralModelDoesWithChangedAndRandomMovies) {
    const std::uint64_t first = NumberFromEnvironment("CLIPFIX_FIRST_SEED", 1);
    const std::uint64_t count = NumberFromEnvironment("CLIPFIX_SEEDS", 40) * 10;
    std::uint64_t written = 0;
    for (std::uint64_t seed = first; seed < first + count && !HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        RandomSource random(seed);
        written += CompareMoov(AnyMoov(random), random) == AtomsOutcome::Written ? 1U : 0U;
    }
    EXPECT_GT(written * 2, count);
    RecordProperty("written", std::to_string(written));
}

// A table by itself, read and written, under any length and count.
TEST(SampleTables, DoWhatTheLiteralModelDoesWithAnyBytes) {
    const std::uint64_t count = NumberFromEnvironment("CLIPFIX_SEEDS", 40) * 10;
    for (std::uint64_t seed = 1; seed <= count && !HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        RandomSource random(seed);
        ByteVector bytes = random.Bytes(random.Below(70));
        for (const std::size_t at : {12U, 16U}) {
            if (!random.OneIn(4)) {
                StoreBig32(bytes, at, random.Below(8));
            }
        }
        const AtomBlock block = AtomBlock::Of(bytes);
        const LiteralAtomBlock literal{bytes, static_cast<std::uint32_t>(bytes.size())};
        const auto compare = [&](const auto& table, const char* code) {
            SCOPED_TRACE(code);
            const LiteralTable model = LiteralReadTable(literal, code);
            EXPECT_EQ(Differences(FactsOf(table), FactsOf(model)), "");
            EXPECT_EQ(table.data, model.data);
            // Chunk offsets go out in their 64-bit form, whatever form was read.
            const bool offsets = code == std::string_view("stco");
            EXPECT_EQ(table.Serialize(), LiteralSerializeTable(model, offsets ? "co64" : code));
        };
        compare(CStts(block), "stts");
        compare(CStsc(block), "stsc");
        compare(CStsz(block), "stsz");
        compare(CStco(block, CStco::Form::Offsets32), "stco");
        compare(CStco(block, CStco::Form::Offsets64), "co64");
        compare(CStss(block), "stss");
        compare(CCtts(block), "ctts");
        EXPECT_EQ(CStsz(block).sampleSize, LiteralReadTable(literal, "stsz").sampleSize);
        CMvhd mvhd(block);
        LiteralHeader movieHeader = LiteralReadMvhd(literal);
        EXPECT_EQ(mvhd.Serialize(), movieHeader.Serialize(24));
        CTkhd tkhd(block);
        LiteralHeader trackHeader = LiteralReadTkhd(literal);
        tkhd.duration = trackHeader.duration = static_cast<std::uint32_t>(random.Next());
        EXPECT_EQ(tkhd.Serialize(), trackHeader.Serialize(28));
    }
}

constexpr std::array<const char*, 7> kFirstChildren{"mvhd", "uuid", "free", "udta",
                                                    "trak", "meta", "mdat"};

ByteVector AnyPayload(RandomSource& random) {
    return random.Bytes(random.Below(random.OneIn(4) ? 3000 : 60));
}

// Media data or a movie under a 64-bit head.
void AppendWideHead(ByteVector& file, RandomSource& random) {
    const bool media = random.OneIn(2);
    const ByteVector bytes = media ? AnyPayload(random) : TopLevelAtom(AnyMuxed(random), "moov");
    AppendBig32(file, 1);
    AppendText(file, media ? "mdat" : "moov");
    AppendBig64(file, (random.OneIn(4) ? 0 : bytes.size() + 16) +
                          (random.OneIn(3) ? random.Next() << 32U : 0));
    AppendBytes(file, ByteView(bytes).subspan(media ? 0 : 8));
}

// As few bytes as make a `moov`, many times.
void AppendTinyMoovs(ByteVector& file, RandomSource& random) {
    for (std::uint32_t i = random.Below(30); i > 0; --i) {
        AppendBig32(file, random.OneIn(4) ? 8 + random.Below(9) : 16);
        AppendText(file, "moov");
        AppendBig32(file, random.Below(40));
        AppendText(file, kFirstChildren[random.Below(7)]);
    }
}

// A first child that is, or is not, one that makes a `moov` believable.
void AppendMoovWithFirstChild(ByteVector& file, RandomSource& random) {
    ByteVector moov = AnyMoov(random);
    const ByteVector child =
        AtomOf(kFirstChildren[random.Below(7)], random.Bytes(random.OneIn(2) ? 0 : 12));
    if (moov.size() > 8) {
        moov.insert(moov.begin() + 8, child.begin(), child.end());
        StoreBig32(moov, 0, static_cast<std::uint32_t>(moov.size()));
    }
    AppendBytes(file, moov);
}

// A head whose size is anything.
void AppendLyingHead(ByteVector& file, RandomSource& random) {
    constexpr std::array<std::uint32_t, 12> kSizes{0,  1,  7,  8,          9,          16,
                                                   17, 24, 40, 0x7FFFFFFF, 0xFFFFFFFF, 0xFFFFFFF0};
    constexpr std::array<const char*, 5> kWords{"ftyp", "wide", "free", "mdat", "moov"};
    AppendBig32(file, random.OneIn(2) ? kSizes[random.Below(12)] : random.Below(5000));
    AppendText(file, kWords[random.Below(5)]);
    AppendBytes(file, random.Bytes(random.Below(20)));
}

// One stretch of a file: an atom, a head that lies, or rubbish.
void AppendStretch(ByteVector& file, RandomSource& random) {
    switch (random.Below(14)) {
        case 0:
        case 1:
            AppendBytes(file, AtomOf("ftyp", random.Bytes(random.Below(30))));
            break;
        case 2:
            AppendBytes(file, AtomOf(random.OneIn(2) ? "wide" : "free",
                                     random.OneIn(2) ? ByteVector{} : AnyPayload(random)));
            break;
        case 3:
        case 4:
            AppendBytes(file, AtomOf("mdat", AnyPayload(random)));
            break;
        case 5:
            AppendWideHead(file, random);
            break;
        case 6:
        case 7:
            AppendBytes(file,
                        random.OneIn(2) ? AnyPayload(random) : ByteVector(random.Below(9000)));
            break;
        case 8:
            AppendLyingHead(file, random);
            break;
        case 9:
            AppendTinyMoovs(file, random);
            break;
        case 10:
            AppendMoovWithFirstChild(file, random);
            break;
        case 11:
            AppendBytes(file, AtomOf("moov", AtomOf("mvhd", random.Bytes(100))));
            break;
        default:
            AppendBytes(file, AnyMoov(random));
            break;
    }
}

ByteVector AnyFile(RandomSource& random) {
    ByteVector file;
    if (random.OneIn(4)) {
        file = AnyMuxed(random);
        for (std::uint32_t i = random.Below(3); i > 0; --i) {
            DamageBytes(file, random);
        }
        return file;
    }
    for (std::uint32_t i = 1 + random.Below(8); i > 0; --i) {
        AppendStretch(file, random);
    }
    if (random.OneIn(8)) {  // where the scan of a round ends
        file.insert(file.begin(), 66020 - random.Below(40), 0);
    }
    if (random.OneIn(20)) {  // around the far jump
        file.insert(file.begin(), 10 * 66020 - 2000 + random.Below(4000), 0);
        if (random.OneIn(2)) {  // which there is none of behind media data
            const ByteVector media = AtomOf("mdat", random.Bytes(8));
            file.insert(file.begin(), media.begin(), media.end());
        }
        AppendStretch(file, random);
    }
    if (random.OneIn(6) && !file.empty()) {
        file.resize(random.Below(static_cast<std::uint32_t>(file.size())));
    }
    return file;
}

// Whether the file led to a movie.
bool CompareStructure(const ByteVector& file, RandomSource& random) {
    JobState state;
    JobControl control(state);
    SilentFrontEnd frontEnd;
    const JobContext job{state, control, frontEnd};
    GFile movie(job);
    StructureCheck(movie, job).RunOn(MemoryFile(file));
    LiteralStructure model = LiteralCheckStructure(file);

    EXPECT_EQ(state.g_ullCheckedSize, file.size());
    EXPECT_EQ(state.g_ullCheckedPos, model.position);
    EXPECT_EQ(state.g_strVideoCoderFormat, model.globals.videoCoder);
    EXPECT_EQ(state.g_strAudioCoderFormat, model.globals.audioCoder);
    EXPECT_EQ(state.g_bJobFailed, 0);
    EXPECT_EQ(movie.pFtyp.has_value(), model.ftyp.has_value());
    if (movie.pFtyp && model.ftyp) {
        EXPECT_EQ(movie.pFtyp->size, model.ftyp->size);
        EXPECT_EQ(movie.pFtyp->ftyptype, model.ftyp->type);
        EXPECT_EQ(movie.pFtyp->subtyp, model.ftyp->brand);
    }
    EXPECT_EQ(movie.pMdat.has_value(), model.mdat.has_value());
    if (movie.pMdat && model.mdat) {
        EXPECT_EQ(movie.pMdat->type, model.mdat->type);
        EXPECT_EQ(movie.pMdat->size, model.mdat->size);
        EXPECT_EQ(movie.pMdat->offset, model.mdat->offset);
    }
    EXPECT_EQ(movie.pMoov != nullptr, model.moov != nullptr);
    if (movie.pMoov == nullptr || model.moov == nullptr) {
        EXPECT_EQ(movie.GetTrackCount(), 0U);
        EXPECT_EQ(movie.GetNalLengthSize(), 0U);
        return false;
    }
    const LiteralTrak& first = *model.moov->tracks.front();
    const bool known = model.globals.videoCoder == "AVC1_VIDEO_CODER_FORMAT" ||
                       model.globals.videoCoder == "HVC1_VIDEO_CODER_FORMAT";
    EXPECT_EQ(movie.GetFirstVideoTrack(), known ? movie.pMoov->tracks.front().get() : nullptr);
    const auto stsd = first.mdia->minf->stbl->stsd;
    EXPECT_EQ(movie.GetNalLengthSize(), known && stsd != nullptr ? stsd->NalLengthSize() : 0U);
    EXPECT_EQ(movie.GetTrackCount(), model.moov->tracks.size());
    EXPECT_EQ(Differences(FactsOf(*movie.pMoov), FactsOf(*model.moov)), "");
    CompareCreation(*movie.pMoov, *model.moov, random);
    return true;
}

TEST(StructureCheck, DoesWhatTheLiteralModelDoesOnRandomFiles) {
    const std::uint64_t first = NumberFromEnvironment("CLIPFIX_FIRST_SEED", 1);
    const std::uint64_t count = NumberFromEnvironment("CLIPFIX_SEEDS", 40) * 4;
    std::uint64_t led = 0;
    for (std::uint64_t seed = first; seed < first + count && !HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        RandomSource random(seed);
        led += CompareStructure(AnyFile(random), random) ? 1U : 0U;
    }
    EXPECT_GT(led * 4, count);
    EXPECT_LT(led, count);
    RecordProperty("led", std::to_string(led));
}

// 72300 units of 127 bytes: the jump's 66044 * 65070 wraps to 2515784, inside the file.
TEST(StructureCheck, DoesWhatTheLiteralModelDoesWhereTheFarJumpWraps) {
    constexpr std::size_t kLanding = 2'515'784;
    const ByteVector moov = TopLevelAtom(MuxedMovies()[0], "moov");
    const auto put = [](ByteVector& file, std::size_t at, const ByteVector& bytes) {
        std::copy(bytes.begin(), bytes.end(), file.begin() + static_cast<std::ptrdiff_t>(at));
    };
    for (const bool reached : {true, false}) {
        ByteVector file(std::size_t{72300} * 127 + 5);
        put(file, reached ? kLanding + 9 : kLanding - moov.size() - 1, moov);
        // What follows is jumped over as media data.
        StoreBig32(file, kLanding + 20000,
                   static_cast<std::uint32_t>(file.size() - kLanding - 20500));
        put(file, kLanding + 20004, {'m', 'd', 'a', 't'});
        RandomSource random(1);
        EXPECT_EQ(CompareStructure(file, random), reached);
    }
}

}  // namespace
}  // namespace clipfix::test
