#include "job/driver/player_args.h"

#include <charconv>

namespace clipfix {

namespace {

// Both in bytes.
constexpr double kMiB = 1048576.0;
constexpr double kGiB = 1073741824.0;

std::string TwoDecimals(double value) {
    char digits[400];  // room for every double
    const auto end =
        std::to_chars(digits, digits + sizeof digits, value, std::chars_format::fixed, 2).ptr;
    return {digits, end};
}

}  // namespace

std::string AviPlayerArgs(const JobState& state) {
    return state.g_strAviRepairedPath + "$$" + state.g_strCorruptName + "$$" +
           SizeText(state.g_ullAviRiffBody) + "$$" + "$$0";
}

std::string SizeText(std::uint64_t bytes) {
    const auto size = static_cast<double>(bytes);
    return size >= kGiB ? TwoDecimals(size / kGiB) + " GB" : TwoDecimals(size / kMiB) + " MB";
}

}  // namespace clipfix
