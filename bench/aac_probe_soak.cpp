// Compares the AAC probe with the plain one, which asks the decoder at every place, on millions of
// places of many kinds, and prints what both cost:
//     aac_probe_soak [PLACES [SEED]]
// PLACES is for each kind of bytes; the default is 1000000. Ends with status 1 at the first
// difference.
//
// Beside the frames, the sound is compared that a decoder makes of them when it is asked everywhere
// and when the certain refusals are left out: a trace that a question left in the decoder, or did
// not leave, is heard in the frames behind it long before it changes the length of one.

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <neaacdec.h>

#include "repairmov/aac_mixtures.h"
#include "repairmov/aac_refusals.h"
#include "repairmov/plain_probe.h"
#include "support/memory_file.h"

namespace clipfix::test {
namespace {

// A decoder that also tells its sound. The other decoder that the probe may take after error 21
// never comes to be with this library, so it plays no part here.
class SoundingDecoder {
  public:
    explicit SoundingDecoder(const ByteVector& start) : handle_(NeAACDecOpen()) {
        ByteVector bytes = start;
        bytes.resize(64);
        unsigned long rate = 0;
        unsigned char channels = 0;
        isStarted_ = NeAACDecInit2(handle_, bytes.data(), 2, &rate, &channels) == 0;
    }
    SoundingDecoder(const SoundingDecoder&) = delete;
    SoundingDecoder& operator=(const SoundingDecoder&) = delete;
    ~SoundingDecoder() { NeAACDecClose(handle_); }

    [[nodiscard]] bool IsStarted() const { return isStarted_; }

    AacDecoder::Answer Decode(ByteView shown) {
        std::uint8_t bytes[AacProbe::kProbeSize + 64] = {};
        std::copy(shown.begin(), shown.end(), bytes);
        NeAACDecFrameInfo info{};
        const void* result = NeAACDecDecode(handle_, &info, bytes, shown.size());
        if (result != nullptr && info.bytesconsumed > 0) {
            const auto* samples = static_cast<const std::int16_t*>(result);
            sound_.assign(samples, samples + info.samples);
        }
        return {result != nullptr, info.bytesconsumed, info.error, false};
    }
    // Of the last frame.
    [[nodiscard]] const std::vector<std::int16_t>& Sound() const { return sound_; }

  private:
    NeAACDecHandle handle_;
    bool isStarted_ = false;
    std::vector<std::int16_t> sound_;
};

struct Tally {
    std::uint64_t places = 0;
    std::uint64_t asked = 0;
    std::uint64_t frames = 0;
    std::uint64_t samples = 0;
    double probeSeconds = 0;
    double plainSeconds = 0;
};

// Of this thread alone: other work of the machine does not count.
double Now() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

// Whether both decoders say and sound the same.
bool SoundsTheSame(ByteView range, const ByteVector& start, Tally& tally) {
    SoundingDecoder everywhere(start);
    SoundingDecoder sparing(start);
    AacRefusals refusals(start);
    if (!everywhere.IsStarted()) {
        return true;
    }
    for (std::size_t place = 0; place < range.size();) {
        const ByteView shown = SubView(range, place, AacProbe::kProbeSize);
        if (shown[0] == 0) {
            ++place;
            continue;
        }
        const AacDecoder::Answer answer = everywhere.Decode(shown);
        if (refusals.IsCertain(shown)) {
            if (answer.FrameBytes() != 0) {
                return false;
            }
        } else {
            ++tally.asked;
            const AacDecoder::Answer other = sparing.Decode(shown);
            refusals.Note(shown, other);
            if (other.FrameBytes() != answer.FrameBytes() || other.error != answer.error) {
                return false;
            }
            if (answer.FrameBytes() > 0) {
                if (everywhere.Sound() != sparing.Sound()) {
                    return false;
                }
                tally.samples += everywhere.Sound().size();
            }
        }
        place += std::max<std::uint64_t>(answer.FrameBytes(), 1);
    }
    return true;
}

bool FindsTheSame(const ByteVector& range, const ByteVector& start, Tally& tally) {
    const MemoryFile file(range);
    platform::WindowReader reader(file);
    const double begin = Now();
    const auto frames =
        AacProbe(start).ProbeAacFrames(reader, 0, range.size(), [] { return true; });
    const double middle = Now();
    const auto plain = PlainProbe(range, start);
    tally.plainSeconds += Now() - middle;
    tally.probeSeconds += middle - begin;
    tally.places += range.size();
    tally.frames += frames.size();
    return frames == plain;
}

int Run(std::uint64_t placesEach, std::uint64_t seed) {
    const std::vector<AacStream> streams = EncodedStreams(10);
    const ByteVector video = EncodedVideo(20);
    AacMixtures mixtures(streams, video, seed);
    Random random(seed + 1);
    std::printf(
        "| bytes | places | asked about | frames | samples of sound | ns a byte, plain | "
        "ns a byte | gain |\n|---|---|---|---|---|---|---|---|\n");
    std::uint64_t all = 0;
    for (const AacMixtures::Kind kind : AacMixtures::kKinds) {
        Tally tally;
        for (std::uint32_t round = 0; tally.places < placesEach; ++round) {
            const std::size_t stream = round % streams.size();
            // Now and then a long range, in which traces can add up.
            const std::size_t size =
                random.OneIn(20) ? 200000 : 200 + random.Below(random.OneIn(2) ? 2000 : 30000);
            const ByteVector range = mixtures.Make(kind, stream, size);
            const auto& starts = AacStarts();
            const ByteVector& start =
                random.OneIn(4) ? starts[random.Below(static_cast<std::uint32_t>(starts.size()))]
                                : streams[stream].start;
            if (!FindsTheSame(range, start, tally) || !SoundsTheSame(range, start, tally)) {
                std::printf("a difference: %s, %s, seed %llu, round %u\n",
                            AacMixtures::NameOf(kind).c_str(), streams[stream].name.c_str(),
                            static_cast<unsigned long long>(seed), round);
                return 1;
            }
        }
        const auto places = static_cast<double>(tally.places);
        std::printf(
            "| %s | %llu | %.0f %% | %llu | %llu | %.0f | %.0f | %.2f |\n",
            AacMixtures::NameOf(kind).c_str(), static_cast<unsigned long long>(tally.places),
            100.0 * static_cast<double>(tally.asked) / places,
            static_cast<unsigned long long>(tally.frames),
            static_cast<unsigned long long>(tally.samples), tally.plainSeconds * 1e9 / places,
            tally.probeSeconds * 1e9 / places, tally.plainSeconds / tally.probeSeconds);
        std::fflush(stdout);
        all += tally.places;
    }
    std::printf("%llu places, no difference\n", static_cast<unsigned long long>(all));
    return 0;
}

}  // namespace
}  // namespace clipfix::test

int main(int argumentCount, char** arguments) {
    const auto number = [&](int at, std::uint64_t otherwise) {
        return argumentCount > at ? std::strtoull(arguments[at], nullptr, 10) : otherwise;
    };
    return clipfix::test::Run(number(1, 1000000), number(2, 1));
}
