#pragma once

#include <cstdint>
#include <optional>

#include "repairavi/pass.h"

namespace clipfix {

inline constexpr FourLetters kStrf = {'s', 't', 'r', 'f'};
inline constexpr std::uint32_t kPictureFormatSize = 40;  // BITMAPINFOHEADER, in bytes
inline constexpr std::uint32_t kSoundFormatSize = 16;    // PCMWAVEFORMAT, in bytes

// Walks over the chunks of the `LIST strl` at the place of the pass, and mends the sizes of `strf`
// chunks that lead nowhere. Gives the position, from the "LIST", of the size field at which the
// walk ended: the block to take over ends four bytes ahead of it. Nothing when the walk would
// never end, which the rules allow: the position of a `strf` with nothing behind it in a stream
// that is neither picture nor sound does not move, and sizes near 2^32 can lead in a ring.
[[nodiscard]] std::optional<std::uint32_t> WalkStreamList(Pass& pass);

}  // namespace clipfix
