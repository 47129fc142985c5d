#include <array>
#include <bit>
#include <immintrin.h>

#include "repairavi/avi_markers.h"
#include "repairavi/marker_search.h"

namespace clipfix::marker_search {

namespace {

// The search with AVX2 looks at the first three letters of a marker by their half bytes: a table
// for each half of each letter tells in which of eight groups of markers that half occurs, and
// where all six agree on a group a marker may stand. The groups are chosen so that words that are
// common in texts do not fall into one by the mixing of halves.
constexpr std::size_t kLetters = 3;
constexpr std::size_t kGroups = 8;

struct Words {
    const char* letters[2];  // the first three letters, '?' for any; null where there is one only
};
constexpr std::array<Words, kGroups> kWordsOfGroup = {{
    {{"RIF", "LIS"}},
    {{"AVI", "JUN"}},
    {{"mov", nullptr}},
    {{"idx", nullptr}},
    {{"vid", "aud"}},
    {{"dc?", "db?"}},
    {{"xx?", nullptr}},
    {{"wb?", nullptr}},
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

constexpr std::size_t kLaneSize = 32;

__attribute__((target("avx2"))) __m256i LoadLane(const std::uint8_t* at) noexcept {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(at));
}

struct Tables {
    __m256i low[kLetters];
    __m256i high[kLetters];
    __m256i half;
};

// The groups of which the first three letters may stand at each of the 32 places.
__attribute__((target("avx2"))) __m256i GroupsAt(const Tables& tables,
                                                 const std::uint8_t* at) noexcept {
    __m256i groups = _mm256_set1_epi8(-1);
    for (std::size_t i = 0; i < kLetters; ++i) {
        const __m256i letters = LoadLane(at + i);
        const __m256i highHalves = _mm256_and_si256(_mm256_srli_epi16(letters, 4), tables.half);
        // A letter's own low half picks the entry; the mask keeps bytes above 127, for which the
        // shuffle would give 0, in the game for the third letter of a tag.
        const __m256i lowHalves = _mm256_and_si256(letters, tables.half);
        groups = _mm256_and_si256(groups, _mm256_shuffle_epi8(tables.low[i], lowHalves));
        groups = _mm256_and_si256(groups, _mm256_shuffle_epi8(tables.high[i], highHalves));
    }
    return groups;
}

__attribute__((target("avx2"))) std::size_t FindByThirtyTwo(ByteView bytes) noexcept {
    Tables tables;
    for (std::size_t i = 0; i < kLetters; ++i) {
        tables.low[i] = LoadLane(kTables.low[i].data());
        tables.high[i] = LoadLane(kTables.high[i].data());
    }
    tables.half = _mm256_set1_epi8(0x0F);
    constexpr std::size_t kLookedAt = kLaneSize + kLetters - 1;
    std::size_t at = 0;
    for (; bytes.size() - at >= kLookedAt; at += kLaneSize) {
        const __m256i none =
            _mm256_cmpeq_epi8(GroupsAt(tables, bytes.data() + at), _mm256_setzero_si256());
        auto places = ~static_cast<std::uint32_t>(_mm256_movemask_epi8(none));
        for (; places != 0; places &= places - 1) {
            const std::size_t place = at + static_cast<std::size_t>(std::countr_zero(places));
            if (RecogniseMarker(bytes.subspan(place)) != Marker::None) {
                return place;
            }
        }
    }
    return FindPlainly(bytes, at);
}

}  // namespace

std::size_t FindWidely(ByteView bytes) noexcept {
    static const bool hasAvx2 = __builtin_cpu_supports("avx2") != 0;
    return hasAvx2 ? FindByThirtyTwo(bytes) : FindBySixteen(bytes);
}

}  // namespace clipfix::marker_search
