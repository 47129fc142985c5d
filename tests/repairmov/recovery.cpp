#include "repairmov/recovery.h"

#include <algorithm>
#include <sstream>

#include "engine_run.h"
#include "support/media_tools.h"

namespace clipfix::test {

namespace {

// The fields of one line of ffprobe's compact form.
ProbedFields FieldsOf(const std::string& line) {
    ProbedFields fields;
    std::istringstream parts(line);
    for (std::string part; std::getline(parts, part, '|');) {
        if (const std::size_t equals = part.find('='); equals != std::string::npos) {
            fields[part.substr(0, equals)] = part.substr(equals + 1);
        }
    }
    return fields;
}

void ReadPackets(const std::filesystem::path& path, Film& film) {
    const CommandResult result =
        RunCommand({"ffprobe", "-v", "error", "-ignore_editlist", "1", "-show_data_hash", "MD5",
                    "-show_entries", "packet=codec_type,pos,size,flags,data_hash", "-of",
                    "compact=p=0", path.string()});
    film.canBePlayed = result.status == 0;
    std::istringstream lines(result.output);
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with("codec_type=")) {
            continue;
        }
        ProbedFields fields = FieldsOf(line);
        MediaPacket packet;
        packet.isVideo = fields["codec_type"] == "video";
        packet.isKey = fields["flags"].starts_with("K");
        packet.offset = std::strtoull(fields["pos"].c_str(), nullptr, 10);
        packet.size = std::strtoull(fields["size"].c_str(), nullptr, 10);
        packet.hash = fields["data_hash"];
        (packet.isVideo ? film.video : film.audio).push_back(packet);
    }
}

// Decodes the pictures; gives their hashes. What is said of the sound is looked at elsewhere.
Hashes Decode(const std::filesystem::path& path, bool heedsEditList, std::string& errors) {
    const CommandResult result = RunCommand(
        {"ffmpeg", "-v", "error", "-threads", "1", "-ignore_editlist", heedsEditList ? "0" : "1",
         "-i", path.string(), "-map", "0:v:0", "-fps_mode", "passthrough", "-f", "framemd5", "-"});
    Hashes hashes;
    std::istringstream lines(result.output);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("0,")) {
            hashes.push_back(line.substr(line.rfind(' ') + 1));
        } else if (!line.starts_with("#") && !line.starts_with("[aac @")) {
            errors += line + "\n";
        }
    }
    return hashes;
}

Hashes HashesOf(const std::vector<MediaPacket>& packets) {
    Hashes hashes;
    std::transform(packets.begin(), packets.end(), std::back_inserter(hashes),
                   [](const MediaPacket& packet) { return packet.hash; });
    return hashes;
}

std::size_t TopLevelPlace(ByteView file, std::string_view code) {
    for (std::size_t at = 0; at + 8 <= file.size();) {
        if (MatchesAt(file, at + 4, code)) {
            return at;
        }
        at += std::max<std::size_t>(ReadBig32(file, at), 8);
    }
    return file.size();
}

}  // namespace

Film LookAt(const std::filesystem::path& path) {
    Film film;
    ReadPackets(path, film);
    if (film.canBePlayed) {
        film.pictures = Decode(path, false, film.errors);
    }
    return film;
}

Hashes PictureHashes(const std::filesystem::path& path, bool heedsEditList) {
    std::string ignored;
    return Decode(path, heedsEditList, ignored);
}

std::string SoundErrors(const std::filesystem::path& path) {
    return RunCommand(
               {"ffmpeg", "-v", "error", "-i", path.string(), "-map", "0:a?", "-f", "null", "-"})
        .output;
}

std::size_t CountInOrder(const Hashes& original, const Hashes& found) {
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

std::size_t MediaStart(ByteView file) {
    return TopLevelPlace(file, "mdat") + 8;
}

std::size_t MediaEnd(ByteView file) {
    return TopLevelPlace(file, "moov");
}

Recovery Recover(const Film& original, ByteView damaged, const std::filesystem::path& reference) {
    const TempFolder folder;
    const auto path = folder / "damaged.mov";
    WriteFile(path, damaged);
    const auto output = folder / "out.mov";
    const EngineRun run(path, reference.empty() ? path : reference, output, 0);
    Recovery recovery;
    recovery.isNothing = run.world.state.g_bJobFailed != 0;
    if (recovery.isNothing) {
        return recovery;
    }
    recovery.film = LookAt(output);
    recovery.isUnreadable = !recovery.film.canBePlayed;
    recovery.identicalVideo = CountInOrder(HashesOf(original.video), HashesOf(recovery.film.video));
    recovery.identicalAudio = CountInOrder(HashesOf(original.audio), HashesOf(recovery.film.audio));
    recovery.identicalPictures = CountInOrder(original.pictures, recovery.film.pictures);
    return recovery;
}

}  // namespace clipfix::test
