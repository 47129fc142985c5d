#include "repairmov/recordings.h"

#include <algorithm>

#include "support/media_tools.h"
#include "support/random.h"

namespace clipfix::test {

namespace {

const std::string kX264 = "-c:v libx264 -preset veryfast -threads 1 ";
const std::string kX265 =
    "-c:v libx265 -preset ultrafast -tag:v hvc1 -x265-params "
    "log-level=0:pools=1:frame-threads=1:open-gop=0:keyint=16:wpp=";
const std::string kStereo48 = "-c:a aac -ac 2 -ar 48000";

using enum Damage;

std::vector<Trial> EveryTrial() {
    return {{None, Reference::None},
            {None, Reference::Original},
            {MovieCut, Reference::Original},
            {MovieCut, Reference::SameSettings},
            {MovieWiped, Reference::Original},
            {HeadWiped, Reference::Original},
            {StretchZeroed, Reference::Original},
            {StretchRandom, Reference::Original},
            {StretchDeleted, Reference::Original},
            {StretchInserted, Reference::Original},
            {SoundRandom, Reference::Original},
            {CutInHalf, Reference::Original},
            {Joined, Reference::Original}};
}
std::vector<Trial> CutAnd(Damage damage) {
    return {{MovieCut, Reference::Original}, {damage, Reference::Original}};
}

}  // namespace

std::string NameOf(Damage damage) {
    switch (damage) {
        case None:
            return "none";
        case MovieCut:
            return "cut ahead of the `moov`";
        case MovieWiped:
            return "`moov` wiped";
        case HeadWiped:
            return "head wiped";
        case StretchZeroed:
            return "5000 bytes zeroed";
        case StretchRandom:
            return "5000 bytes random";
        case StretchDeleted:
            return "5000 bytes deleted";
        case StretchInserted:
            return "5000 bytes inserted";
        case SoundRandom:
            return "5000 bytes of sound random";
        case CutInHalf:
            return "cut in half";
        case Joined:
            return "two files joined";
    }
    return {};
}

std::string NameOf(Reference reference) {
    switch (reference) {
        case Reference::None:
            return "itself";
        case Reference::Original:
            return "before the damage";
        case Reference::SameSettings:
            return "another, same settings";
    }
    return {};
}

const std::vector<Recording>& Recordings() {
    static const std::vector<Recording> kRecordings{
        {"BaselineAacStereo48", "H.264 baseline, AAC stereo 48 kHz", "mp4",
         kX264 + "-profile:v baseline -g 16", kStereo48, EveryTrial()},
        {"MainAacStereo44",
         "H.264 main with B, AAC stereo 44.1 kHz",
         "mov",
         kX264 + "-profile:v main -bf 2 -g 16",
         "-c:a aac -ac 2 -ar 44100",
         {{MovieCut, Reference::Original},
          {MovieCut, Reference::SameSettings},
          {CutInHalf, Reference::Original}}},
        {"HighAacMono48", "H.264 high with B, AAC mono 48 kHz", "mp4",
         kX264 + "-profile:v high -bf 3 -g 16", "-c:a aac -ac 1 -ar 48000", CutAnd(HeadWiped)},
        {"SlicesAacMono44", "H.264 four slices, AAC mono 44.1 kHz", "mov",
         kX264 + "-bf 0 -g 16 -x264-params slices=4", "-c:a aac -ac 1 -ar 44100",
         CutAnd(StretchRandom)},
        {"InterlacedAac51At44", "H.264 interlaced, AAC 5.1 44.1 kHz", "mp4",
         kX264 + "-g 16 -flags +ilme+ildct -x264-params tff=1", "-c:a aac -ac 6 -ar 44100",
         CutAnd(StretchRandom)},
        {"LongGopAac51At48", "H.264 one GOP, AAC 5.1 48 kHz", "mp4", kX264 + "-g 600 -bf 2",
         "-c:a aac -ac 6 -ar 48000", CutAnd(StretchRandom)},
        {"DelimitersAac48", "H.264 AUD and SEI in every frame, AAC stereo 48 kHz", "mp4",
         kX264 + "-bf 2 -g 16 -x264-params aud=1:pic-struct=1", kStereo48, CutAnd(StretchZeroed)},
        {"HighSowt",
         "H.264 high with B, `sowt`",
         "mov",
         kX264 + "-bf 2 -g 16",
         "-c:a pcm_s16le -ac 2 -ar 48000",
         {{None, Reference::None},
          {MovieCut, Reference::SameSettings},
          {StretchZeroed, Reference::Original},
          {StretchDeleted, Reference::Original},
          {StretchInserted, Reference::Original},
          {SoundRandom, Reference::Original},
          {CutInHalf, Reference::Original},
          {Joined, Reference::Original}}},
        {"HighTwos", "H.264 high with B, `twos`", "mov", kX264 + "-bf 2 -g 16",
         "-c:a pcm_s16be -ac 2 -ar 44100 -af atrim=0:2.8", CutAnd(StretchRandom)},
        {"HighOtherSound", "H.264 high with B, other sound (ALAC)", "mov", kX264 + "-bf 2 -g 16",
         "-c:a alac -ac 2 -ar 48000", CutAnd(StretchRandom)},
        {"HighSilent", "H.264 high with B, no sound", "mp4", kX264 + "-bf 3 -g 16", "-an",
         CutAnd(StretchDeleted)},
        {"HevcAacStereo48",
         "H.265 with B, AAC stereo 48 kHz",
         "mp4",
         kX265 + "0:bframes=2",
         kStereo48,
         {{None, Reference::None},
          {MovieCut, Reference::Original},
          {MovieCut, Reference::SameSettings},
          {HeadWiped, Reference::Original},
          {StretchZeroed, Reference::Original},
          {StretchDeleted, Reference::Original},
          {StretchInserted, Reference::Original},
          {SoundRandom, Reference::Original},
          {CutInHalf, Reference::Original},
          {Joined, Reference::Original}}},
        {"HevcDelimitersSowt", "H.265 AUD and SEI in every frame, `sowt`", "mov",
         kX265 + "0:aud=1:hrd=1:vbv-maxrate=4000:vbv-bufsize=4000:bframes=0",
         "-c:a pcm_s16le -ac 2 -ar 48000", CutAnd(StretchInserted)},
        {"HevcSlicesAac44", "H.265 three slices, AAC stereo 44.1 kHz", "mp4",
         kX265 + "1:slices=3:bframes=0 -s 320x240", "-c:a aac -ac 2 -ar 44100",
         CutAnd(StretchRandom)},
    };
    return kRecordings;
}

const Recording& RecordingNamed(const std::string& name) {
    return *std::find_if(Recordings().begin(), Recordings().end(),
                         [&](const Recording& recording) { return recording.name == name; });
}

void Record(const Recording& recording, const std::filesystem::path& path, Scene scene,
            const std::string& chunks) {
    const std::string picture = scene == Scene::First ? "testsrc2" : "smptebars";
    const std::string seed = scene == Scene::First ? "1" : "2";
    MakeMedia(path, "-f lavfi -i " + picture + "=s=160x120:r=25,noise=alls=12:allf=t -f lavfi -i " +
                        "anoisesrc=a=0.2:seed=" + seed + " -t 3.2 -pix_fmt yuv420p " +
                        recording.video + " " + recording.audio + " " + chunks);
}

Wound WoundOf(Damage damage, ByteView file, const Film& film) {
    const std::size_t end = MediaEnd(file);
    const auto& hit = damage == SoundRandom ? film.audio : film.video;
    const MediaPacket& middle = hit[hit.size() / 2];
    const std::uint64_t begin = middle.offset + middle.size / 2;
    switch (damage) {
        case StretchZeroed:
        case StretchRandom:
        case StretchDeleted:
        case SoundRandom:
            return {begin, begin + kWoundBytes};
        case StretchInserted:
            return {begin, begin};
        case CutInHalf:
            return {begin, end};
        default:
            return {end, end};
    }
}

ByteVector Apply(Damage damage, ByteVector file, const Film& film, ByteView other) {
    const std::size_t start = MediaStart(file);
    const std::size_t end = MediaEnd(file);
    const Wound wound = WoundOf(damage, file, film);
    const auto at = [&file](std::uint64_t place) {
        return file.begin() + static_cast<std::ptrdiff_t>(place);
    };
    const ByteVector noise = Random(9).Bytes(kWoundBytes);
    switch (damage) {
        case None:
            return file;
        case MovieCut:
            break;
        case MovieWiped:
            std::fill(at(end), file.end(), std::uint8_t{0});
            return file;
        case HeadWiped:
            std::fill(file.begin(), at(start), std::uint8_t{0});
            break;
        case StretchZeroed:
            std::fill(at(wound.begin), at(wound.end), std::uint8_t{0});
            break;
        case StretchRandom:
        case SoundRandom:
            std::copy(noise.begin(), noise.end(), at(wound.begin));
            break;
        case StretchDeleted:
            file.erase(at(wound.begin), at(wound.end));
            file.resize(end - kWoundBytes);
            return file;
        case StretchInserted:
            file.insert(at(wound.begin), noise.begin(), noise.end());
            file.resize(end + kWoundBytes);
            return file;
        case CutInHalf:
            file.resize(static_cast<std::size_t>(wound.begin));
            return file;
        case Joined:
            file.resize(end);
            AppendBytes(file, SubView(other, 0, MediaEnd(other)));
            return file;
    }
    file.resize(end);
    return file;
}

}  // namespace clipfix::test
