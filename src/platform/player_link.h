#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "base/bytes.h"
#include "base/result.h"

// How the window speaks to the preview player. The player listens at a local socket that bears the
// title of its window. One connection carries one message, which ends where the sender stops
// writing, and its length tells what it is:
//
//     536 bytes   the record of the file to be played, see PlayerRecord
//     5 bytes     the letters "close": the player closes its window and ends
//     0 bytes     nothing; somebody asked whether a player runs
//
// Any other message is passed over. The player answers by closing the connection.

namespace clipfix::platform {

// The title of the player's window, and the name of its socket.
inline constexpr std::string_view kPlayerName = "kc-mplayer";

// Layout of the record, in bytes: the path as zero-ended UTF-16 (little-endian), a 64-bit value
// that is zero in this version, 4 reserved bytes, the low byte of the path's length, 3 reserved
// bytes. Reserved bytes are written as zero and not read.
inline constexpr std::size_t kPlayerRecordSize = 536;
inline constexpr std::size_t kPlayerPathField = 520;
inline constexpr std::size_t kPlayerPathUnits = kPlayerPathField / 2 - 1;  // without the zero
inline constexpr std::string_view kPlayerCloseMessage = "close";

using PlayerRecordBytes = std::array<std::uint8_t, kPlayerRecordSize>;

// What a record says.
struct PlayerRecord {
    std::string path;         // as the field holds it: a long path is cut
    std::uint64_t value = 0;  // zero in this version
    std::uint8_t length = 0;  // low byte of the whole path's length in UTF-16 units

    // Whether the record stands for `whole`: the same path, or one that was too long for the
    // field, agrees in the part that the field holds and in the low byte of its length.
    [[nodiscard]] bool StandsFor(std::string_view whole) const;
};

// The record of a path. A path of more than 259 UTF-16 units is cut there, or one unit earlier
// where that would cut a pair; the length byte tells of the whole. A byte that is not UTF-8 goes
// as the unit 0xDC00 plus the byte, so that every path of the system comes back as it was.
[[nodiscard]] PlayerRecordBytes BuildPlayerRecord(std::string_view path);

// Nothing for bytes that are no record: another size, an empty path, one without its closing zero
// or with a unit that stands for no character.
[[nodiscard]] std::optional<PlayerRecord> ParsePlayerRecord(ByteView bytes);

// Where the player of this user listens. Empty where the user has no folder for such things.
[[nodiscard]] std::filesystem::path PlayerSocketPath();

// Whether a player listens at `socket`.
[[nodiscard]] bool IsPlayerRunning(const std::filesystem::path& socket);

// Sends the record of `path`. False when no player took it.
bool SendFileToPlayer(const std::filesystem::path& socket, std::string_view path);

// Asks the player to end, and waits until it no longer listens, one second at most. True when it
// is gone; also when none was there.
bool ClosePlayer(const std::filesystem::path& socket);

// The player's ear. A player that is started later takes the socket over, as the window of the
// latest one would be found first. It goes with its owner, unless it was taken over.
class PlayerEar {
  public:
    static Result<PlayerEar> Open(const std::filesystem::path& socket);

    PlayerEar(PlayerEar&& other) noexcept;
    PlayerEar& operator=(PlayerEar&& other) noexcept;
    PlayerEar(const PlayerEar&) = delete;
    PlayerEar& operator=(const PlayerEar&) = delete;
    ~PlayerEar();

    // A descriptor that is readable when somebody knocks. It stays the ear's own.
    [[nodiscard]] int Handle() const { return handle_; }

    // The descriptor of the next connection, which the caller owns and which does not block;
    // nothing when nobody waits any more, or when it is another user.
    [[nodiscard]] std::optional<int> Accept() const;

  private:
    PlayerEar(int handle, std::filesystem::path socket);
    void Close() noexcept;

    int handle_ = -1;
    std::filesystem::path socket_;
    std::uint64_t device_ = 0;  // which file of the disk the socket is, so that only it is removed
    std::uint64_t inode_ = 0;
};

}  // namespace clipfix::platform
