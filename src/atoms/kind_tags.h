#pragma once

#include <cstddef>
#include <string_view>

namespace clipfix {

// The tags by which the movie tree tells kinds of things. They are compared without regard to the
// case of their letters.

inline constexpr std::string_view kVideoRequest = "VIDEO_REQUEST";
inline constexpr std::string_view kAudioRequest = "AUDIO_REQUEST";

inline constexpr std::string_view kVideoTrack = "VIDEO_TRACK";
inline constexpr std::string_view kAudioTrack = "AUDIO_TRACK";
inline constexpr std::string_view kUnknownTrack = "UNKNOWN_TRACK";

inline constexpr std::string_view kVideoMedia = "VIDEO_MEDIA";
inline constexpr std::string_view kAudioMedia = "AUDIO_MEDIA";
inline constexpr std::string_view kUnknownMedia = "UNKNOWN_MEDIA";

inline constexpr std::string_view kAvc1VideoCoderFormat = "AVC1_VIDEO_CODER_FORMAT";
inline constexpr std::string_view kHvc1VideoCoderFormat = "HVC1_VIDEO_CODER_FORMAT";
inline constexpr std::string_view kMp4aAudioCoderFormat = "MP4A_AUDIO_CODER_FORMAT";
inline constexpr std::string_view kSowtAudioCoderFormat = "SOWT_AUDIO_CODER_FORMAT";
inline constexpr std::string_view kTwosAudioCoderFormat = "TWOS_AUDIO_CODER_FORMAT";

// Whether two tags are the same, upper and lower case of A to Z counting as one.
[[nodiscard]] constexpr bool SameTag(std::string_view left, std::string_view right) noexcept {
    constexpr auto kLower = [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    };
    if (left.size() != right.size()) {
        return false;
    }
    for (std::size_t i = 0; i < left.size(); ++i) {
        if (kLower(left[i]) != kLower(right[i])) {
            return false;
        }
    }
    return true;
}

}  // namespace clipfix
