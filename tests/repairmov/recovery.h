#pragma once

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "engine_run.h"
#include "support/media_tools.h"
#include "support/random.h"

namespace clipfix::test {

// What a viewer gets of a repaired movie, beside the one before the damage.

using Hashes = std::vector<std::string>;

// One hash for each packet of a stream ("v:0", "a:0"), in the order of the file. Edit lists are
// left aside: they hide packets that are there.
inline Hashes PacketHashes(const std::filesystem::path& path, const std::string& stream) {
    Hashes hashes;
    for (const ProbedFields& packet :
         Probe(path, "packet=data_hash",
               {"-ignore_editlist", "1", "-select_streams", stream, "-show_data_hash", "MD5"})) {
        if (const auto at = packet.find("data_hash"); at != packet.end()) {
            hashes.push_back(at->second);
        }
    }
    return hashes;
}

// One hash for each picture that a player shows, in the order of showing. `errors` gets what the
// decoder complains of.
inline Hashes PictureHashes(const std::filesystem::path& path, std::string& errors,
                            const std::string& ignoreEditList = "1") {
    const CommandResult result = RunCommand({"ffmpeg", "-v", "error", "-ignore_editlist",
                                             ignoreEditList, "-i", path.string(), "-map", "0:v:0",
                                             "-fps_mode", "passthrough", "-f", "framemd5", "-"});
    Hashes hashes;
    std::istringstream lines(result.output);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("0,")) {
            hashes.push_back(line.substr(line.rfind(' ') + 1));
        } else if (!line.starts_with("#")) {
            errors += line + "\n";
        }
    }
    return hashes;
}

// How many of `found` stand in `original` too, in the same order.
inline std::size_t CountInOrder(const Hashes& original, const Hashes& found) {
    std::vector<std::size_t> row(original.size() + 1, 0);
    for (const std::string& hash : found) {
        std::size_t diagonal = 0;
        for (std::size_t i = 0; i < original.size(); ++i) {
            const std::size_t above = row[i + 1];
            row[i + 1] = hash == original[i] ? diagonal + 1 : std::max(row[i], above);
            diagonal = above;
        }
    }
    return row.back();
}

// Bytes [first, first + count) of the media data of a file, as places of the file.
struct Stretch {
    std::size_t first = 0;
    std::size_t count = 0;
};
inline std::size_t MoovAt(ByteView file) {
    for (std::size_t at = 0; at + 8 <= file.size();) {
        if (MatchesAt(file, at + 4, "moov")) {
            return at;
        }
        at += std::max<std::size_t>(ReadBig32(file, at), 8);
    }
    return file.size();
}

// The ways of damage; each takes a whole file.
inline ByteVector Intact(ByteVector file) {
    return file;
}
inline ByteVector CutBeforeMoov(ByteVector file) {
    file.resize(MoovAt(file));
    return file;
}
inline ByteVector WipeMoov(ByteVector file) {
    std::fill(file.begin() + static_cast<std::ptrdiff_t>(MoovAt(file)), file.end(),
              std::uint8_t{0});
    return file;
}
// The first 64 bytes hold the file type and the head of the media data.
inline ByteVector WipeHead(ByteVector file) {
    file = CutBeforeMoov(std::move(file));
    std::fill_n(file.begin(), 48, std::uint8_t{0});
    return file;
}
inline ByteVector ZeroMiddle(ByteVector file) {
    file = CutBeforeMoov(std::move(file));
    std::fill_n(file.begin() + static_cast<std::ptrdiff_t>(file.size() / 2), 5000, std::uint8_t{0});
    return file;
}
inline ByteVector NoiseInMiddle(ByteVector file) {
    file = CutBeforeMoov(std::move(file));
    const ByteVector noise = Random(9).Bytes(5000);
    std::copy(noise.begin(), noise.end(),
              file.begin() + static_cast<std::ptrdiff_t>(file.size() / 2));
    return file;
}
inline ByteVector DeleteInMiddle(ByteVector file) {
    file = CutBeforeMoov(std::move(file));
    const auto middle = file.begin() + static_cast<std::ptrdiff_t>(file.size() / 2);
    file.erase(middle, middle + 5000);
    return file;
}
inline ByteVector InsertInMiddle(ByteVector file) {
    file = CutBeforeMoov(std::move(file));
    const ByteVector noise = Random(10).Bytes(5000);
    file.insert(file.begin() + static_cast<std::ptrdiff_t>(file.size() / 2), noise.begin(),
                noise.end());
    return file;
}
inline ByteVector CutInHalf(ByteVector file) {
    file = CutBeforeMoov(std::move(file));
    file.resize(file.size() / 2);
    return file;
}
inline ByteVector JoinTwice(ByteVector file) {
    file = CutBeforeMoov(std::move(file));
    const ByteVector copy = file;
    AppendBytes(file, copy);
    return file;
}

struct Recovery {
    std::size_t originalVideo = 0;  // packets
    std::size_t originalAudio = 0;
    std::size_t video = 0;  // packets of the repaired movie
    std::size_t audio = 0;
    std::size_t identicalVideo = 0;  // of them, those of the original, in order
    std::size_t identicalAudio = 0;
    std::size_t originalPictures = 0;
    std::size_t identicalPictures = 0;
    std::string decoderErrors;
    bool isNothing = false;     // the engine said that nothing can be recovered
    bool isUnreadable = false;  // there is a movie, and ffprobe refuses it
};

// Repairs `damaged` by `reference`, and holds what comes out beside `original`.
inline Recovery Recover(const std::filesystem::path& original, const ByteVector& damaged,
                        const std::filesystem::path& reference) {
    const TempFolder folder;
    WriteFile(folder / "damaged.mov", damaged);
    const EngineRun run(folder / "damaged.mov", reference, folder / "out.mov", 0);
    Recovery recovery;
    const Hashes video = PacketHashes(original, "v:0");
    const Hashes audio = PacketHashes(original, "a:0");
    recovery.originalVideo = video.size();
    recovery.originalAudio = audio.size();
    if (run.world.state.g_bJobFailed != 0) {
        recovery.isNothing = true;
        return recovery;
    }
    if (RunCommand({"ffprobe", "-v", "error", (folder / "out.mov").string()}).status != 0) {
        recovery.isUnreadable = true;
        return recovery;
    }
    const Hashes foundVideo = PacketHashes(folder / "out.mov", "v:0");
    const Hashes foundAudio = PacketHashes(folder / "out.mov", "a:0");
    recovery.video = foundVideo.size();
    recovery.audio = foundAudio.size();
    recovery.identicalVideo = CountInOrder(video, foundVideo);
    recovery.identicalAudio = CountInOrder(audio, foundAudio);
    std::string ignored;
    const Hashes pictures = PictureHashes(original, ignored);
    recovery.originalPictures = pictures.size();
    recovery.identicalPictures =
        CountInOrder(pictures, PictureHashes(folder / "out.mov", recovery.decoderErrors));
    return recovery;
}

}  // namespace clipfix::test
