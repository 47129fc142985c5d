#include <vector>

#include "platform/player_link.h"

namespace clipfix::platform {

namespace {

constexpr std::size_t kValueOffset = 520;
constexpr std::size_t kLengthOffset = 532;

constexpr char32_t kHighFirst = 0xD800;
constexpr char32_t kLowFirst = 0xDC00;
constexpr char32_t kSurrogateEnd = 0xE000;
constexpr char32_t kSupplementary = 0x10000;
constexpr char32_t kCodePointEnd = 0x110000;

struct Decoded {
    char32_t character = 0;
    std::size_t bytes = 0;  // 0: no UTF-8 stands here
};

// The smallest code point that a sequence of this many bytes may hold. RFC 3629, 3.
constexpr std::array<char32_t, 5> kSmallest{0, 0, 0x80, 0x800, 0x10000};

Decoded DecodeUtf8(std::string_view text) {
    const auto byte = [&](std::size_t i) { return static_cast<std::uint8_t>(text[i]); };
    const std::uint8_t first = byte(0);
    if (first < 0x80) {
        return {first, 1};
    }
    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4 || text.size() < length) {
        return {};
    }
    char32_t value = first & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0U) != 0x80U) {
            return {};
        }
        value = (value << 6U) | (byte(i) & 0x3FU);
    }
    const bool isSurrogate = value >= kHighFirst && value < kSurrogateEnd;
    if (value < kSmallest[length] || value >= kCodePointEnd || isSurrogate) {
        return {};
    }
    return {value, length};
}

void AppendUtf8(std::string& text, char32_t value) {
    const auto tail = [&](unsigned shift) {
        text.push_back(static_cast<char>(0x80U | ((value >> shift) & 0x3FU)));
    };
    if (value < 0x80) {
        text.push_back(static_cast<char>(value));
    } else if (value < 0x800) {
        text.push_back(static_cast<char>(0xC0U | (value >> 6U)));
        tail(0);
    } else if (value < kSupplementary) {
        text.push_back(static_cast<char>(0xE0U | (value >> 12U)));
        tail(6);
        tail(0);
    } else {
        text.push_back(static_cast<char>(0xF0U | (value >> 18U)));
        tail(12);
        tail(6);
        tail(0);
    }
}

std::vector<std::uint16_t> UnitsOf(std::string_view text) {
    std::vector<std::uint16_t> units;
    units.reserve(text.size());
    while (!text.empty()) {
        const Decoded next = DecodeUtf8(text);
        if (next.bytes == 0) {
            units.push_back(
                static_cast<std::uint16_t>(kLowFirst + static_cast<std::uint8_t>(text[0])));
            text.remove_prefix(1);
            continue;
        }
        if (next.character >= kSupplementary) {
            const char32_t rest = next.character - kSupplementary;
            units.push_back(static_cast<std::uint16_t>(kHighFirst + (rest >> 10U)));
            units.push_back(static_cast<std::uint16_t>(kLowFirst + (rest & 0x3FFU)));
        } else {
            units.push_back(static_cast<std::uint16_t>(next.character));
        }
        text.remove_prefix(next.bytes);
    }
    return units;
}

constexpr bool IsHigh(char32_t unit) {
    return unit >= kHighFirst && unit < kLowFirst;
}
constexpr bool IsLow(char32_t unit) {
    return unit >= kLowFirst && unit < kSurrogateEnd;
}

// How many of the units the field takes: all, or as many as fit without cutting a pair.
std::size_t UnitsThatFit(const std::vector<std::uint16_t>& units) {
    if (units.size() <= kPlayerPathUnits) {
        return units.size();
    }
    const bool cutsPair = IsHigh(units[kPlayerPathUnits - 1]) && IsLow(units[kPlayerPathUnits]);
    return cutsPair ? kPlayerPathUnits - 1 : kPlayerPathUnits;
}

// Appends the character at `at`, and gives how many units it took; 0 for one that is none.
std::size_t AppendCharacter(std::string& text, ByteView field, std::size_t at) {
    const char32_t unit = ReadLittle16(field, at);
    if (IsHigh(unit)) {
        const char32_t low = ReadLittle16(field, at + 2);
        if (!IsLow(low)) {
            return 0;
        }
        AppendUtf8(text, kSupplementary + ((unit - kHighFirst) << 10U) + (low - kLowFirst));
        return 2;
    }
    if (IsLow(unit)) {
        const char32_t byte = unit - kLowFirst;
        if (byte < 0x80 || byte > 0xFF) {
            return 0;
        }
        text.push_back(static_cast<char>(byte));
        return 1;
    }
    AppendUtf8(text, unit);
    return 1;
}

}  // namespace

PlayerRecordBytes BuildPlayerRecord(std::string_view path) {
    PlayerRecordBytes record{};
    const std::vector<std::uint16_t> units = UnitsOf(path);
    for (std::size_t i = 0; i < UnitsThatFit(units); ++i) {
        StoreLittle16(record, 2 * i, units[i]);
    }
    record[kLengthOffset] = static_cast<std::uint8_t>(units.size() & 0xFFU);
    return record;
}

std::optional<PlayerRecord> ParsePlayerRecord(ByteView bytes) {
    if (bytes.size() != kPlayerRecordSize) {
        return std::nullopt;
    }
    const ByteView field = SubView(bytes, 0, kPlayerPathField);
    PlayerRecord record;
    std::size_t at = 0;
    while (at < field.size() && ReadLittle16(field, at) != 0) {
        const std::size_t units = AppendCharacter(record.path, field, at);
        if (units == 0) {
            return std::nullopt;
        }
        at += 2 * units;
    }
    if (at >= field.size() || record.path.empty()) {
        return std::nullopt;
    }
    record.value = detail::ReadLittle<8>(bytes, kValueOffset);
    record.length = bytes[kLengthOffset];
    return record;
}

bool PlayerRecord::StandsFor(std::string_view whole) const {
    if (path == whole) {
        return true;
    }
    const std::vector<std::uint16_t> units = UnitsOf(whole);
    return units.size() > kPlayerPathUnits && (units.size() & 0xFFU) == length &&
           whole.starts_with(path) && UnitsOf(path).size() == UnitsThatFit(units);
}

}  // namespace clipfix::platform
