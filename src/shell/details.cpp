#include "shell/details.h"

#include <charconv>
#include <cstdio>

#include "job/driver/player_args.h"
#include "job/state/job_paths.h"
#include "moviefile/movie_file.h"

namespace clipfix {

namespace {

constexpr std::size_t kNameUnits = 30;
constexpr std::size_t kCoderUnits = 4;
constexpr std::uint64_t kSecondsPerHour = 3600;
constexpr std::uint64_t kSecondsPerMinute = 60;

std::string Behind(const std::string& value) {
    return ": " + value;
}

// The file name as it is shown; above 30 characters cut.
std::string DisplayName(const std::string& name) {
    return CountUnits(name) > kNameUnits ? FirstUnits(name, kNameUnits) + "..." : name;
}

// "%.2u:%.2u:%.2u" of hours, minutes and seconds; another text when all are zero.
std::string DurationText(std::uint64_t seconds, const char* allZero) {
    if (seconds == 0) {
        return allZero;
    }
    char text[64];
    std::snprintf(text, sizeof text, "%.2llu:%.2llu:%.2llu",
                  static_cast<unsigned long long>(seconds / kSecondsPerHour),
                  static_cast<unsigned long long>(seconds / kSecondsPerMinute % kSecondsPerMinute),
                  static_cast<unsigned long long>(seconds % kSecondsPerMinute));
    return text;
}

// "%0.2f fps", with a point in every language: the toolkit sets the locale of numbers.
std::string RateText(double samplesPerSecond) {
    char digits[400];  // room for every double
    const auto end =
        std::to_chars(digits, digits + sizeof digits, samplesPerSecond, std::chars_format::fixed, 2)
            .ptr;
    return std::string(digits, end) + " fps";
}

// Seconds of the reference's movie, whose header the repaired movie shares.
std::uint64_t MovieSeconds(const GFile* movie) {
    if (movie == nullptr || movie->pMoov == nullptr || movie->pMoov->mvhd == nullptr ||
        movie->pMoov->mvhd->timescale == 0) {
        return 0;
    }
    return movie->pMoov->mvhd->duration / movie->pMoov->mvhd->timescale;
}

std::array<std::string, 5> MovValues(const JobState& state, const GFile* movie) {
    return {SizeText(static_cast<std::uint64_t>(state.g_liOutputSize.load())),
            std::to_string(movie == nullptr ? 0 : movie->GetTrackCount()),
            FirstUnits(state.g_strVideoCoderFormat, kCoderUnits),
            RateText(movie == nullptr ? 0 : movie->GetVideoSampleRate()),
            DurationText(MovieSeconds(movie), "00:00:00")};
}

std::array<std::string, 5> AviValues(const JobState& state) {
    const std::uint32_t milliseconds = state.g_dwAviMicroSecPerFrame / 1000;
    const int tracks =
        (state.g_nAviVideoChunks != 0 ? 1 : 0) + (state.g_nAviAudioChunks != 0 ? 1 : 0);
    return {SizeText(state.g_ullAviRiffBody), std::to_string(tracks),
            state.g_szAviCodec.substr(0, state.g_szAviCodec.find('\0')),
            std::to_string(milliseconds),
            DurationText(std::uint64_t{state.g_nAviVideoChunks} * milliseconds / 1000, "xx:xx:xx")};
}

}  // namespace

std::array<DetailRow, 6> MakeDetails(JobState& state, const GFile* movie) {
    const auto values = state.g_bMovJob == 1 ? MovValues(state, movie) : AviValues(state);
    state.g_strCorruptName = Behind(DisplayName(state.g_strCorruptName));
    return {{{"IDS_FILE_NAME", state.g_strCorruptName},
             {"IDS_SIZE", Behind(values[0])},
             {"IDS_TRACK", Behind(values[1])},
             {"IDS_CODEC", Behind(values[2])},
             {"IDS_US_PER_FRAME", Behind(values[3])},
             {"IDS_DURATION", Behind(values[4])}}};
}

}  // namespace clipfix
