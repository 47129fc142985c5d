#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "base/bytes.h"

namespace clipfix::test {

// What a viewer gets of a repaired movie, beside the one before the damage.

using Hashes = std::vector<std::string>;

// One packet of a movie, as a demultiplexer gives it.
struct MediaPacket {
    bool isVideo = false;
    bool isKey = false;
    std::uint64_t offset = 0;  // in the file
    std::uint64_t size = 0;
    std::string hash;

    [[nodiscard]] std::uint64_t End() const { return offset + size; }
};

// A movie that ffmpeg can read.
struct Film {
    bool canBePlayed = false;
    std::vector<MediaPacket> video;  // each in the order of its track
    std::vector<MediaPacket> audio;
    Hashes pictures;     // in the order of showing
    std::string errors;  // what the decoder complains of
};

// Edit lists are left aside: they hide packets and pictures that are there.
[[nodiscard]] Film LookAt(const std::filesystem::path& path);

// One hash for each picture that a player shows, with or without heeding the edit list.
[[nodiscard]] Hashes PictureHashes(const std::filesystem::path& path, bool heedsEditList);

// What a decoder complains of in the sound.
[[nodiscard]] std::string SoundErrors(const std::filesystem::path& path);

// How many of `found` stand in `original` too, in the same order.
[[nodiscard]] std::size_t CountInOrder(const Hashes& original, const Hashes& found);

// The first byte of the media data, and the one behind them: the movie atom stands last.
[[nodiscard]] std::size_t MediaStart(ByteView file);
[[nodiscard]] std::size_t MediaEnd(ByteView file);

// What a repair brought back of a film.
struct Recovery {
    bool isNothing = false;     // the engine said that nothing can be recovered
    bool isUnreadable = false;  // there is a movie, and players refuse it
    Film film;  // with the errors of its sound, where that holds nothing but the original's
    std::size_t identicalVideo = 0;  // packets of the original, in order
    std::size_t identicalAudio = 0;
    std::size_t identicalPictures = 0;
};

// Repairs `damaged` by the file at `reference` and holds what comes out beside `original`. An empty
// `reference` makes the damaged file its own.
[[nodiscard]] Recovery Recover(const Film& original, ByteView damaged,
                               const std::filesystem::path& reference);

}  // namespace clipfix::test
