#pragma once

#include <QString>
#include <array>
#include <filesystem>
#include <string>
#include <string_view>

namespace clipfix {

// A text of the player: its key in the language files, and its English form.
struct PlayerText {
    const char* key;
    const char* english;
};

namespace player_text {
inline constexpr PlayerText kPlay{"IDS_PLAYER_PLAY", "Play"};
inline constexpr PlayerText kPause{"IDS_PLAYER_PAUSE", "Pause"};
inline constexpr PlayerText kPlayAgain{"IDS_PLAYER_PLAY_AGAIN", "Play again"};
inline constexpr PlayerText kBackward{"IDS_PLAYER_BACKWARD", "5 seconds back"};
inline constexpr PlayerText kForward{"IDS_PLAYER_FORWARD", "5 seconds forward"};
inline constexpr PlayerText kPosition{"IDS_PLAYER_POSITION", "Position"};
inline constexpr PlayerText kVolume{"IDS_PLAYER_VOLUME", "Volume"};
inline constexpr PlayerText kSoundOff{"IDS_PLAYER_SOUND_OFF", "Sound off"};
inline constexpr PlayerText kSoundOn{"IDS_PLAYER_SOUND_ON", "Sound on"};
inline constexpr PlayerText kFullScreen{"IDS_PLAYER_FULL_SCREEN", "Full screen"};
inline constexpr PlayerText kLeaveFullScreen{"IDS_PLAYER_LEAVE_FULL_SCREEN", "Leave full screen"};
inline constexpr PlayerText kOpening{"IDS_PLAYER_OPENING", "Opening the video…"};
inline constexpr PlayerText kSoundOnly{"IDS_PLAYER_SOUND_ONLY", "This video holds sound only."};
inline constexpr PlayerText kCannotPlay{"IDS_PLAYER_CANNOT_PLAY", "This video cannot be played"};
inline constexpr PlayerText kNoFile{"IDS_PLAYER_NO_FILE", "No video was given to the player."};
inline constexpr PlayerText kNotFound{"IDS_PLAYER_NOT_FOUND",
                                      "The file is not there any more. It may have been moved or "
                                      "deleted."};
inline constexpr PlayerText kNoAccess{"IDS_PLAYER_NO_ACCESS",
                                      "You do not have permission to read the file."};
inline constexpr PlayerText kNotAFile{"IDS_PLAYER_NOT_A_FILE", "This is not a file."};
inline constexpr PlayerText kEmpty{"IDS_PLAYER_EMPTY", "The file is empty."};
inline constexpr PlayerText kNotAVideo{"IDS_PLAYER_NOT_A_VIDEO",
                                       "The file holds neither picture nor sound that the player "
                                       "knows."};
inline constexpr PlayerText kNoPicture{"IDS_PLAYER_NO_PICTURE",
                                       "The picture of this video cannot be decoded."};
inline constexpr PlayerText kNoEngine{"IDS_PLAYER_NO_ENGINE",
                                      "The player could not be set up on this computer."};

inline constexpr std::array kAll{
    kPlay,      kPause,      kPlayAgain, kBackward,   kForward,         kPosition,
    kVolume,    kSoundOff,   kSoundOn,   kFullScreen, kLeaveFullScreen, kOpening,
    kSoundOnly, kCannotPlay, kNoFile,    kNotFound,   kNoAccess,        kNotAFile,
    kEmpty,     kNotAVideo,  kNoPicture, kNoEngine};
}  // namespace player_text

// The player's texts, in the language that the main program's settings name. The player only reads
// the settings: where there are none yet, the language is the system's, and where a language or a
// text is missing, it is English.
class PlayerTexts {
  public:
    // English only.
    PlayerTexts() = default;
    // `programFolder` holds the settings and the folder "Lang", or else `sharedFolder` the latter
    // and `userFolder` the former.
    PlayerTexts(const std::filesystem::path& programFolder,
                const std::filesystem::path& sharedFolder, const std::filesystem::path& userFolder);

    [[nodiscard]] QString Word(const PlayerText& text) const;

    // The language file in use; empty for English from the program itself.
    [[nodiscard]] const std::filesystem::path& LanguageFile() const { return languageFile_; }

  private:
    std::filesystem::path languageFile_;
};

}  // namespace clipfix
