#include "support/media_tools.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <sstream>
#include <sys/wait.h>

namespace clipfix::test {

namespace {

std::string Quoted(const std::string& word) {
    std::string quoted = "'";
    for (const char letter : word) {
        quoted += letter == '\'' ? std::string("'\\''") : std::string(1, letter);
    }
    return quoted + "'";
}

void EndUnlessGood(const CommandResult& result, const std::vector<std::string>& words) {
    if (result.status == 0) {
        return;
    }
    for (const std::string& word : words) {
        std::fprintf(stderr, "%s ", word.c_str());
    }
    std::fprintf(stderr, "\n%s\nended with status %d\n", result.output.c_str(), result.status);
    std::abort();
}

}  // namespace

CommandResult RunCommand(const std::vector<std::string>& words) {
    std::string line;
    for (const std::string& word : words) {
        line += Quoted(word) + " ";
    }
    line += "2>&1 </dev/null";
    CommandResult result;
    std::FILE* pipe = popen(line.c_str(), "r");
    if (pipe == nullptr) {
        return result;
    }
    std::array<char, 65536> piece{};
    while (const std::size_t got = std::fread(piece.data(), 1, piece.size(), pipe)) {
        result.output.append(piece.data(), got);
    }
    const int status = pclose(pipe);
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return result;
}

void MakeMedia(const std::filesystem::path& path, const std::string& arguments) {
    std::vector<std::string> words{"ffmpeg", "-v", "error", "-y"};
    std::istringstream stream(arguments);
    for (std::string word; stream >> word;) {
        words.push_back(word);
    }
    words.push_back(path.string());
    EndUnlessGood(RunCommand(words), words);
}

std::vector<ProbedFields> Probe(const std::filesystem::path& path, const std::string& entries,
                                const std::vector<std::string>& options) {
    std::vector<std::string> words{"ffprobe", "-v", "error"};
    words.insert(words.end(), options.begin(), options.end());
    for (const std::string& word : {std::string("-show_entries"), entries, std::string("-of"),
                                    std::string("compact=p=0"), path.string()}) {
        words.push_back(word);
    }
    const CommandResult result = RunCommand(words);
    EndUnlessGood(result, words);

    std::vector<ProbedFields> sections;
    std::istringstream lines(result.output);
    for (std::string line; std::getline(lines, line);) {
        ProbedFields fields;
        std::istringstream parts(line);
        for (std::string part; std::getline(parts, part, '|');) {
            const std::size_t equals = part.find('=');
            if (equals != std::string::npos) {
                fields[part.substr(0, equals)] = part.substr(equals + 1);
            }
        }
        if (!fields.empty()) {
            sections.push_back(fields);
        }
    }
    return sections;
}

ByteVector TopLevelAtom(ByteView file, std::string_view code) {
    std::size_t at = 0;
    while (at + 8 <= file.size()) {
        const std::uint32_t shortSize = ReadBig32(file, at);
        const std::uint64_t size = shortSize == 1   ? ReadBig64(file, at + 8)
                                   : shortSize == 0 ? file.size() - at
                                                    : shortSize;
        if (size < 8 || size > file.size() - at) {
            break;
        }
        if (MatchesAt(file, at + 4, code)) {
            const ByteView atom = file.subspan(at, static_cast<std::size_t>(size));
            return {atom.begin(), atom.end()};
        }
        at += static_cast<std::size_t>(size);
    }
    return {};
}

}  // namespace clipfix::test
