#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "base/bytes.h"
#include "repairmov/recovery.h"

namespace clipfix::test {

// Recordings by ffmpeg that stand for what cameras make, and what happens to them.

constexpr std::size_t kPictures = 80;  // 3.2 seconds

// What happened to a recording.
enum class Damage {
    None,
    MovieCut,       // the file ends ahead of the movie atom
    MovieWiped,     // zeros in the place of the movie atom
    HeadWiped,      // zeros up to the first byte of the media data, and the movie atom cut
    StretchZeroed,  // among the pictures, and the movie atom cut; so the next three
    StretchRandom,
    StretchDeleted,
    StretchInserted,
    SoundRandom,  // the same among the sound
    CutInHalf,
    Joined,  // another recording of the same settings stands behind it; no movie atoms
};
[[nodiscard]] std::string NameOf(Damage damage);

// By what it is repaired.
enum class Reference {
    None,          // the damaged file itself
    Original,      // the file before the damage
    SameSettings,  // another recording of the same settings
};
[[nodiscard]] std::string NameOf(Reference reference);

struct Trial {
    Damage damage = Damage::None;
    Reference reference = Reference::Original;
};

struct Recording {
    std::string name;  // of a test
    std::string text;  // of a row of the table
    std::string extension;
    std::string video;  // ffmpeg's arguments
    std::string audio;
    std::vector<Trial> trials;
};
[[nodiscard]] const std::vector<Recording>& Recordings();
[[nodiscard]] const Recording& RecordingNamed(const std::string& name);

// Makes the recording of one scene; scenes differ in picture and sound. `chunks` are ffmpeg's
// arguments for the interleaving: chunks of half a second, as cameras make them.
enum class Scene { First, Second };
void Record(const Recording& recording, const std::filesystem::path& path,
            Scene scene = Scene::First, const std::string& chunks = "-chunk_duration 500000");

// Which bytes of the original are not what they were, or stand no longer where the ones before them
// think they do. Nowhere: behind the last one.
struct Wound {
    std::uint64_t begin = 0;
    std::uint64_t end = 0;
};
constexpr std::size_t kWoundBytes = 5000;

// A wound begins in the middle of the picture, or of the packet of sound, that stands in the
// middle.
[[nodiscard]] Wound WoundOf(Damage damage, ByteView file, const Film& film);
// The damaged file; `other` is what is joined to it.
[[nodiscard]] ByteVector Apply(Damage damage, ByteVector file, const Film& film,
                               ByteView other = {});

}  // namespace clipfix::test
