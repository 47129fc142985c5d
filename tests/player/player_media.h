#pragma once

#include <filesystem>

#include "base/bytes.h"

namespace clipfix::test {

// Small films whose picture changes from frame to frame, with silent sound. They are made by
// ffmpeg; `seconds` is how long they are.
void MakeH264Movie(const std::filesystem::path& path, int seconds);
void MakeH265Movie(const std::filesystem::path& path, int seconds);
void MakeAvi(const std::filesystem::path& path, int seconds);
void MakeSoundOnly(const std::filesystem::path& path, int seconds);

// The same movie in the form that a repair writes: an `mdat` with a 16-byte header at the front,
// then the `moov` with its chunk offsets moved, and no `ftyp`.
[[nodiscard]] ByteVector WithMediaDataFirst(ByteView movie);

// The same movie with every byte of its media data set to zero: its tables are sound, and not one
// picture can be decoded.
[[nodiscard]] ByteVector WithoutMediaData(ByteView movie);

}  // namespace clipfix::test
