#include "text/profile_file.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <optional>
#include <system_error>
#include <vector>

namespace clipfix {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
// Language and settings files hold a few kilobytes; what is larger is no such file.
constexpr std::uintmax_t kLargestFile = 4194304;  // bytes

bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r';
}

std::string_view Trim(std::string_view text) {
    while (!text.empty() && IsBlank(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && IsBlank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

char LowerAscii(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool EqualNames(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return LowerAscii(x) == LowerAscii(y); });
}

std::string_view Unquote(std::string_view value) {
    const bool quoted = value.size() >= 2 && value.front() == value.back() &&
                        (value.front() == '"' || value.front() == '\'');
    return quoted ? value.substr(1, value.size() - 2) : value;
}

// What one line of the file is. The views point into the line.
struct ProfileLine {
    enum class Kind { Other, Section, Key };
    Kind kind = Kind::Other;
    std::string_view name;   // of the section or the key, trimmed
    std::string_view value;  // of the key, trimmed, quotation marks still there
};

ProfileLine ParseLine(std::string_view line) {
    line = Trim(line);
    if (line.empty() || line.front() == ';') {
        return {};
    }
    if (line.front() == '[') {
        const std::size_t end = line.find(']');
        if (end == std::string_view::npos) {
            return {};
        }
        return {ProfileLine::Kind::Section, Trim(line.substr(1, end - 1)), {}};
    }
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos) {
        return {};
    }
    return {ProfileLine::Kind::Key, Trim(line.substr(0, equals)), Trim(line.substr(equals + 1))};
}

// The entry of the file's folder whose name differs in ASCII case only; the path itself where it
// exists or where there is no such entry.
fs::path FindIgnoringCase(const fs::path& file) {
    std::error_code error;
    if (fs::exists(file, error)) {
        return file;
    }
    const fs::path folder = file.has_parent_path() ? file.parent_path() : fs::path(".");
    const std::string wanted = file.filename().string();
    fs::directory_iterator entry(folder, fs::directory_options::skip_permission_denied, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        if (EqualNames(entry->path().filename().string(), wanted)) {
            return entry->path();
        }
    }
    return file;
}

// The whole file, or nothing where it cannot be read or is no plain file of sensible size.
std::optional<std::string> ReadWhole(const fs::path& file) {
    std::error_code error;
    if (!fs::is_regular_file(file, error)) {
        return std::nullopt;
    }
    const std::uintmax_t size = fs::file_size(file, error);
    if (error || size > kLargestFile) {
        return std::nullopt;
    }
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        return std::nullopt;
    }
    std::string text{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    if (stream.bad()) {
        return std::nullopt;
    }
    return text;
}

// The lines without their LF. A text that ends in LF has no empty line behind it.
std::vector<std::string_view> SplitLines(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        lines.push_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

// Where a key stands, or where a new one belongs.
struct KeyPlace {
    bool sectionFound = false;
    std::optional<std::size_t> keyLine;
    std::size_t newLine = 0;  // behind the last line of the section that is not empty
    std::string_view value;
};

KeyPlace FindKey(const std::vector<std::string_view>& lines, std::string_view section,
                 std::string_view key) {
    KeyPlace place;
    place.newLine = lines.size();
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const ProfileLine line = ParseLine(lines[i]);
        if (line.kind == ProfileLine::Kind::Section) {
            if (place.sectionFound) {
                break;
            }
            place.sectionFound = EqualNames(line.name, section);
        }
        if (!place.sectionFound) {
            continue;
        }
        if (line.kind == ProfileLine::Kind::Key && EqualNames(line.name, key)) {
            place.keyLine = i;
            place.value = line.value;
            break;
        }
        if (!Trim(lines[i]).empty()) {
            place.newLine = i + 1;
        }
    }
    return place;
}

std::string_view WithoutMark(std::string_view text) {
    if (text.substr(0, kByteOrderMark.size()) == kByteOrderMark) {
        text.remove_prefix(kByteOrderMark.size());
    }
    return text;
}

bool IsReadOnly(const fs::path& file) {
    std::error_code error;
    const fs::file_status status = fs::status(file, error);
    constexpr fs::perms kAnyWrite =
        fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
    return fs::exists(status) && (status.permissions() & kAnyWrite) == fs::perms::none;
}

// Length in bytes of the UTF-8 character that `text` begins with; 1 for a byte that begins none.
std::size_t CharacterLength(std::string_view text) {
    const auto lead = static_cast<unsigned char>(text.front());
    std::size_t length = 1;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
    }
    if (length > text.size()) {
        return 1;
    }
    for (std::size_t i = 1; i < length; ++i) {
        if ((static_cast<unsigned char>(text[i]) & 0xC0U) != 0x80U) {
            return 1;
        }
    }
    return length;
}

}  // namespace

std::string_view CutToUtf16Units(std::string_view text, std::size_t units) {
    std::size_t end = 0;
    while (end < text.size()) {
        const std::size_t length = CharacterLength(text.substr(end));
        const std::size_t needed = length == 4 ? 2 : 1;
        if (needed > units) {
            break;
        }
        units -= needed;
        end += length;
    }
    return text.substr(0, end);
}

std::string ReadProfileText(const std::filesystem::path& file, std::string_view section,
                            std::string_view key, std::size_t size) {
    const std::optional<std::string> text = ReadWhole(FindIgnoringCase(file));
    if (!text || size == 0) {
        return {};
    }
    const auto lines = SplitLines(WithoutMark(*text));
    const KeyPlace place = FindKey(lines, Trim(section), Trim(key));
    return std::string(CutToUtf16Units(Unquote(place.value), size - 1));
}

bool WriteProfileText(const std::filesystem::path& file, std::string_view section,
                      std::string_view key, std::string_view value) {
    const fs::path target = FindIgnoringCase(file);
    if (IsReadOnly(target)) {
        return false;
    }
    const std::optional<std::string> old = ReadWhole(target);
    std::error_code error;
    if (!old && fs::exists(target, error)) {
        return false;
    }
    const std::string_view text = old ? std::string_view(*old) : std::string_view();
    const std::string_view body = WithoutMark(text);
    const std::string_view lineEnd = body.find("\r\n") != std::string_view::npos ? "\r\n" : "\n";
    const auto lines = SplitLines(body);
    const KeyPlace place = FindKey(lines, Trim(section), Trim(key));

    std::string written(text.substr(0, text.size() - body.size()));
    const auto putEntry = [&] {
        written.append(Trim(key)).append("=").append(value).append(lineEnd);
    };
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (place.sectionFound && !place.keyLine && i == place.newLine) {
            putEntry();
        }
        if (place.keyLine == i) {
            putEntry();
            continue;
        }
        const bool unended = i + 1 == lines.size() && body.back() != '\n';
        written.append(lines[i]).append(unended ? lineEnd : "\n");
    }
    if (!place.sectionFound) {
        written.append("[").append(Trim(section)).append("]").append(lineEnd);
    }
    if (!place.keyLine && (!place.sectionFound || place.newLine >= lines.size())) {
        putEntry();
    }

    std::ofstream stream(target, std::ios::binary | std::ios::trunc);
    stream.write(written.data(), static_cast<std::streamsize>(written.size()));
    stream.close();
    return stream.good();
}

bool ProfileFileOpens(const std::filesystem::path& file) {
    const fs::path found = FindIgnoringCase(file);
    std::error_code error;
    return fs::is_regular_file(found, error) && std::ifstream(found, std::ios::binary).good();
}

}  // namespace clipfix
