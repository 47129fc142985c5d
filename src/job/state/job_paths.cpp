#include "job/state/job_paths.h"

#include <vector>

namespace clipfix {

namespace {

// Where each character of a UTF-8 text begins, and how many UTF-16 units it takes.
struct Character {
    std::size_t start;
    std::size_t units;
};

std::size_t SequenceLength(std::string_view text, std::size_t at) {
    const auto lead = static_cast<unsigned char>(text[at]);
    std::size_t length = 1;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
    }
    if (length > text.size() - at) {
        return 1;
    }
    for (std::size_t i = 1; i < length; ++i) {
        if ((static_cast<unsigned char>(text[at + i]) & 0xC0U) != 0x80U) {
            return 1;
        }
    }
    return length;
}

std::vector<Character> Characters(std::string_view text) {
    std::vector<Character> characters;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t length = SequenceLength(text, at);
        characters.push_back({at, length == 4 ? std::size_t{2} : std::size_t{1}});
        at += length;
    }
    return characters;
}

// The last `units` units; a character that would be cut in two is left out.
std::string_view LastUnits(std::string_view text, std::size_t units) {
    const auto characters = Characters(text);
    std::size_t start = text.size();
    for (auto at = characters.rbegin(); at != characters.rend() && at->units <= units; ++at) {
        units -= at->units;
        start = at->start;
    }
    return text.substr(start);
}

}  // namespace

std::size_t CountUnits(std::string_view text) {
    std::size_t units = 0;
    for (const auto& character : Characters(text)) {
        units += character.units;
    }
    return units;
}

std::string FirstUnits(std::string_view text, std::size_t units) {
    for (const auto& character : Characters(text)) {
        if (character.units > units) {
            return std::string(text.substr(0, character.start));
        }
        units -= character.units;
    }
    return std::string(text);
}

std::string DisplayPath(std::string_view path, std::size_t limit) {
    constexpr std::size_t kKeptInFront = 30;
    constexpr std::size_t kKeptBehind = 25;
    if (CountUnits(path) < limit) {
        return std::string(path);
    }
    return FirstUnits(path, kKeptInFront) + "..." + std::string(LastUnits(path, kKeptBehind));
}

std::string CorruptedLabel(std::string_view path, bool movJob) {
    return (movJob ? "Corrupted File: " : "Path: ") + DisplayPath(path, kDisplayLimit);
}

std::string ReferenceLabel(std::string_view path) {
    return "Healthy File: " + DisplayPath(path, kReferenceDisplayLimit);
}

std::string FileName(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

std::string UpperExtension(const std::string& path) {
    const std::string name = FileName(path);
    const std::size_t dot = name.rfind('.');
    std::string extension = dot == std::string::npos ? std::string() : name.substr(dot + 1);
    for (char& letter : extension) {
        if (letter >= 'a' && letter <= 'z') {
            letter = static_cast<char>(letter - 'a' + 'A');
        }
    }
    return extension;
}

void ChooseCorruptFile(JobState& state, const std::string& path) {
    state.g_strCorruptPath = path;
    state.g_strCorruptExt = UpperExtension(path);
    state.g_strCorruptName = FileName(path);
    const bool movJob = state.g_strCorruptExt == "MOV" || state.g_strCorruptExt == "MP4";
    state.g_bMovJob = movJob ? 1 : 0;
    if (!movJob) {
        // Set at the choice and not at the start of a job: a second run on the same choice after
        // a cancel finds it 0, and leaves at once.
        state.g_bAviContinue = 1;
    }
    state.g_strCorruptLabel = CorruptedLabel(path, movJob);
    state.g_strCorruptCopy = path;
}

void ChooseReferenceFile(JobState& state, const std::string& path) {
    state.g_strReferencePath = path;
    state.g_strReferenceName = FileName(path);
    state.g_strReferenceLabel = ReferenceLabel(path);
    state.g_strCheckedPath = path;
}

}  // namespace clipfix
