#include <algorithm>
#include <array>
#include <bit>
#include <immintrin.h>
#include <utility>

#include "repairavi/marker_search.h"

namespace clipfix::marker_search {

namespace {

// The search with AVX2 looks at the letters of a marker by their half bytes: a table for each half
// of each letter tells in which of eight groups of markers that half occurs, and where all agree
// on a group a marker may stand. The fourth letter, and the digit ahead of a tag, are asked only
// where the first three letters agree. The groups are chosen so that words that are common in texts
// do not fall into one by the mixing of halves.
constexpr std::size_t kLetters = 4;
constexpr std::size_t kLettersFirst = 3;
constexpr std::size_t kTagLetters = 2;
constexpr std::size_t kGroups = 8;

struct Words {
    const char* letters[2];  // '?' for any letter; null where there is one word only
    Marker markers[2];
};
constexpr std::array<Words, kGroups> kWordsOfGroup = {{
    {{"RIFF", "LIST"}, {Marker::Riff, Marker::List}},
    {{"AVI ", "JUNK"}, {Marker::Avi, Marker::Junk}},
    {{"movi", nullptr}, {Marker::Movi, Marker::Movi}},
    {{"idx1", nullptr}, {Marker::Idx1, Marker::Idx1}},
    {{"vids", "auds"}, {Marker::Vids, Marker::Auds}},
    {{"dc??", "db??"}, {Marker::Tag, Marker::Tag}},
    {{"xx??", nullptr}, {Marker::Tag, Marker::Tag}},
    {{"wb??", nullptr}, {Marker::Tag, Marker::Tag}},
}};

struct HalfTables {
    // Sixteen entries, twice, as the shuffle of a 32-byte register wants them.
    alignas(32) std::array<std::array<std::uint8_t, 32>, kLetters> low{};
    alignas(32) std::array<std::array<std::uint8_t, 32>, kLetters> high{};
};

constexpr HalfTables MakeTables() {
    HalfTables tables;
    for (std::size_t group = 0; group < kGroups; ++group) {
        const auto bit = static_cast<std::uint8_t>(1U << group);
        for (const char* word : kWordsOfGroup[group].letters) {
            for (std::size_t i = 0; word != nullptr && i < kLetters; ++i) {
                for (std::size_t half = 0; half < 32; ++half) {
                    const auto letter = static_cast<std::uint8_t>(word[i]);
                    if (word[i] == '?' || (letter & 0x0FU) == half % 16) {
                        tables.low[i][half] = static_cast<std::uint8_t>(tables.low[i][half] | bit);
                    }
                    if (word[i] == '?' || (letter >> 4U) == half % 16) {
                        tables.high[i][half] =
                            static_cast<std::uint8_t>(tables.high[i][half] | bit);
                    }
                }
            }
        }
    }
    return tables;
}
constexpr HalfTables kTables = MakeTables();
constexpr std::uint8_t kTagGroups = 0xE0;  // the last three

constexpr std::size_t kVectorSize = 32;

__attribute__((target("avx2"))) __m256i LoadLane(const std::uint8_t* at) noexcept {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(at));
}

// What a search needs at every place, in registers.
struct Tables {
    __m256i low[kLetters];
    __m256i high[kLetters];
    __m256i half;                // 0x0F
    __m256i tags;                // the groups of tags
    __m256i asked;               // the groups that hold a marker which the search stops at
    __m256i askedWithoutDigits;  // those that need no digit ahead
};

// The groups that hold a marker which is in `stops`, and is no tag unless `alsoTags` is set.
std::uint8_t GroupsOf(MarkerStops stops, bool alsoTags) noexcept {
    std::uint8_t groups = 0;
    for (std::size_t group = 0; group < kGroups; ++group) {
        for (const Marker marker : kWordsOfGroup[group].markers) {
            if (stops.Has(marker) && (alsoTags || marker != Marker::Tag)) {
                groups = static_cast<std::uint8_t>(groups | (1U << group));
            }
        }
    }
    return groups;
}

__attribute__((target("avx2"))) __m256i Everywhere(std::uint8_t byte) noexcept {
    return _mm256_set1_epi8(static_cast<char>(byte));
}

__attribute__((target("avx2"))) Tables TablesFor(MarkerStops stops) noexcept {
    Tables tables;
    for (std::size_t i = 0; i < kLetters; ++i) {
        tables.low[i] = LoadLane(kTables.low[i].data());
        tables.high[i] = LoadLane(kTables.high[i].data());
    }
    tables.half = Everywhere(0x0F);
    tables.tags = Everywhere(kTagGroups);
    tables.asked = Everywhere(GroupsOf(stops, true));
    tables.askedWithoutDigits = Everywhere(GroupsOf(stops, !stops.TagsNeedDigits()));
    return tables;
}

// Which of `groups` may have the letter at `i` at each of the 32 places.
__attribute__((target("avx2"))) inline __m256i WithLetter(const Tables& tables, std::size_t i,
                                                          __m256i groups,
                                                          const std::uint8_t* at) noexcept {
    const __m256i letters = LoadLane(at + i);
    const __m256i highHalves = _mm256_and_si256(_mm256_srli_epi16(letters, 4), tables.half);
    // A shuffle gives 0 for bytes above 127, which no marker has; only a tag may have any byte
    // behind its two letters.
    __m256i byLow = _mm256_shuffle_epi8(tables.low[i], letters);
    if (i >= kTagLetters) {
        byLow = _mm256_or_si256(byLow, tables.tags);
    }
    groups = _mm256_and_si256(groups, byLow);
    return _mm256_and_si256(groups, _mm256_shuffle_epi8(tables.high[i], highHalves));
}

// The places, a bit for each, at which any group is left.
__attribute__((target("avx2"))) inline std::uint32_t PlacesOf(__m256i groups) noexcept {
    const __m256i none = _mm256_cmpeq_epi8(groups, _mm256_setzero_si256());
    return ~static_cast<std::uint32_t>(_mm256_movemask_epi8(none));
}

// The groups that the byte ahead of each of the 32 places allows.
__attribute__((target("avx2"))) inline __m256i AllowedByDigit(const Tables& tables,
                                                              const std::uint8_t* at) noexcept {
    const __m256i aboveZero = _mm256_sub_epi8(LoadLane(at - 1), Everywhere('0'));
    const __m256i isDigit = _mm256_cmpeq_epi8(_mm256_min_epu8(aboveZero, Everywhere(9)), aboveZero);
    return _mm256_or_si256(isDigit, tables.askedWithoutDigits);
}

// The groups of which the first three letters may stand at each of the 32 places.
__attribute__((target("avx2"))) inline __m256i GroupsAt(const Tables& tables,
                                                        const std::uint8_t* at) noexcept {
    __m256i groups = tables.asked;
    for (std::size_t i = 0; i < kLettersFirst; ++i) {
        groups = WithLetter(tables, i, groups, at);
    }
    return groups;
}

// The first of the 32 places from `at` on at which the search stops, or `at` + 32.
__attribute__((target("avx2"))) std::size_t StopAmong(const Tables& tables, ByteView bytes,
                                                      std::size_t at, __m256i groups,
                                                      MarkerStops stops) noexcept {
    groups = _mm256_and_si256(groups, AllowedByDigit(tables, bytes.data() + at));
    auto places = PlacesOf(WithLetter(tables, kLettersFirst, groups, bytes.data() + at));
    for (; places != 0; places &= places - 1) {
        const std::size_t place = at + static_cast<std::size_t>(std::countr_zero(places));
        if (StopsAt(bytes, place, stops)) {
            return place;
        }
    }
    return at + kVectorSize;
}

__attribute__((target("avx2"))) std::size_t FindByThirtyTwo(ByteView bytes,
                                                            MarkerStops stops) noexcept {
    const Tables tables = TablesFor(stops);
    // Two registers in a round, for one test of both.
    constexpr std::size_t kRound = 2 * kVectorSize;
    constexpr std::size_t kLookedAt = kRound + kLetters - 1;
    // The digits of a tag at the first two places stand ahead of the view.
    constexpr std::size_t kFirstPlaces = 2;
    const std::size_t found = FindPlainly(SubView(bytes, 0, kFirstPlaces + kLetters), 0, stops);
    if (found < kFirstPlaces) {
        return found;
    }
    std::size_t at = std::min(kFirstPlaces, bytes.size());
    for (; bytes.size() - at >= kLookedAt; at += kRound) {
        const __m256i first = GroupsAt(tables, bytes.data() + at);
        const __m256i second = GroupsAt(tables, bytes.data() + at + kVectorSize);
        const __m256i either = _mm256_or_si256(first, second);
        if (_mm256_testz_si256(either, either) != 0) {
            continue;
        }
        for (const auto& [start, groups] :
             {std::pair{at, first}, std::pair{at + kVectorSize, second}}) {
            const std::size_t place = StopAmong(tables, bytes, start, groups, stops);
            if (place < start + kVectorSize) {
                return place;
            }
        }
    }
    return FindPlainly(bytes, at, stops);
}

}  // namespace

std::size_t FindWidely(ByteView bytes, MarkerStops stops) noexcept {
    static const bool hasAvx2 = __builtin_cpu_supports("avx2") != 0;
    return hasAvx2 ? FindByThirtyTwo(bytes, stops) : FindBySixteen(bytes, stops);
}

}  // namespace clipfix::marker_search
