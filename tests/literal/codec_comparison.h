#pragma once

#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>

#include "codec/nalu.h"
#include "literal/codec_fields.h"
#include "literal/random_codec.h"

namespace clipfix::test {

// What the comparisons of the codec with its literal models share: equality field by field, counts
// of what was accepted, and the loop over the seeds.

template <typename Object, std::size_t kCount>
::testing::AssertionResult SameFields(const NamedField<Object> (&fields)[kCount],
                                      const Object& real, const Object& model) {
    for (const auto& [name, field] : fields) {
        if (real.*field != model.*field) {
            return ::testing::AssertionFailure()
                   << name << " is " << real.*field << ", the model has " << model.*field;
        }
    }
    return ::testing::AssertionSuccess();
}

inline ::testing::AssertionResult Same(const CSPS& real, const CSPS& model) {
    return SameFields(kSps264Fields, real, model);
}
inline ::testing::AssertionResult Same(const CPPS& real, const CPPS& model) {
    return SameFields(kPps264Fields, real, model);
}
inline ::testing::AssertionResult Same(const CSliceHeader& real, const CSliceHeader& model) {
    return SameFields(kSlice264Fields, real, model);
}
inline ::testing::AssertionResult Same(const SPS_265& real, const SPS_265& model) {
    return SameFields(kSps265Fields, real, model);
}
inline ::testing::AssertionResult Same(const PPS_265& real, const PPS_265& model) {
    return SameFields(kPps265Fields, real, model);
}
inline ::testing::AssertionResult Same(const SliceHeader_265& real, const SliceHeader_265& model) {
    return SameFields(kSlice265Fields, real, model);
}
inline ::testing::AssertionResult Same(const CVPS& real, const CVPS& model) {
    if (real.vps_max_dec_pic_buffering_minus1 != model.vps_max_dec_pic_buffering_minus1 ||
        real.vps_max_num_reorder_pics != model.vps_max_num_reorder_pics ||
        real.vps_max_latency_increase_plus1 != model.vps_max_latency_increase_plus1) {
        return ::testing::AssertionFailure() << "the arrays of the sub-layers differ";
    }
    return SameFields(kVps265Fields, real, model);
}

// Of a pointer and an object that may be missing.
template <typename Object>
::testing::AssertionResult SameSet(const std::shared_ptr<const Object>& real,
                                   const std::optional<Object>& model) {
    if ((real != nullptr) != model.has_value()) {
        return ::testing::AssertionFailure()
               << (real ? "the model has no set" : "the model has a set");
    }
    return real == nullptr ? ::testing::AssertionSuccess() : Same(*real, *model);
}

inline ::testing::AssertionResult Same(const CNALU& real, const CNALU& model) {
    if (real.forbidden_zero_bit != model.forbidden_zero_bit ||
        real.nal_ref_idc != model.nal_ref_idc || real.nal_unit_type != model.nal_unit_type ||
        real.nuh_layer_id != model.nuh_layer_id ||
        real.nuh_temporal_id_plus1 != model.nuh_temporal_id_plus1) {
        return ::testing::AssertionFailure() << "the heads differ";
    }
    if (real.size != model.size || real.name != model.name) {
        return ::testing::AssertionFailure()
               << real.size << " \"" << real.name << "\", the model has " << model.size << " \""
               << model.name << '"';
    }
    if (real.frame_num != model.frame_num || real.slice_type != model.slice_type ||
        real.first_mb_in_slice != model.first_mb_in_slice) {
        return ::testing::AssertionFailure() << "the values of the slice differ";
    }
    if (real.payload.index() != model.payload.index()) {
        return ::testing::AssertionFailure() << "the kinds of the payload differ";
    }
    return std::visit(
        [&](const auto& payload) -> ::testing::AssertionResult {
            using Held = std::decay_t<decltype(payload)>;
            if constexpr (std::is_same_v<Held, std::monostate>) {
                return ::testing::AssertionSuccess();
            } else {
                return Same(*payload, *std::get<Held>(model.payload));
            }
        },
        real.payload);
}

inline std::string Hex(ByteView bytes) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text;
    for (const auto byte : bytes) {
        text += kDigits[byte >> 4U];
        text += kDigits[byte & 15U];
    }
    return text;
}

// How often something was asked and how often it was accepted.
struct Tally {
    std::uint64_t asked = 0;
    std::uint64_t accepted = 0;
    void Note(bool isAccepted) {
        ++asked;
        accepted += isAccepted ? 1 : 0;
    }
};

inline void Record(const char* name, const Tally& tally) {
    ::testing::Test::RecordProperty(
        name, std::to_string(tally.accepted) + " of " + std::to_string(tally.asked));
    EXPECT_GT(tally.accepted, 0U) << name;
}

// Runs `round` for each seed, until one fails.
template <typename Round>
void ForEachSeed(std::uint64_t usual, Round round) {
    const std::uint64_t first = NumberFromEnvironment("CLIPFIX_FIRST_SEED", 1);
    const std::uint64_t count = NumberFromEnvironment("CLIPFIX_SEEDS", usual);
    for (std::uint64_t seed = first; seed < first + count && !::testing::Test::HasFailure();
         ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        RandomSource random(seed);
        round(random);
    }
}

// Noise, or long runs of zeros with a bit here and there: codes of many more bits than values have.
inline ByteVector RandomNoise(RandomSource& random) {
    const std::uint32_t size = random.OneIn(8) ? random.Below(300) : random.Below(40);
    if (!random.OneIn(3)) {
        return random.Bytes(size);
    }
    ByteVector bytes(size);
    for (std::uint32_t i = random.Below(12); i > 0 && size > 0; --i) {
        bytes[random.Below(size)] |= static_cast<std::uint8_t>(1U << random.Below(8));
    }
    return bytes;
}

// What is well formed, damaged, or mere noise.
inline ByteVector Varied(ByteVector bytes, RandomSource& random) {
    if (random.OneIn(6)) {
        return RandomNoise(random);
    }
    if (random.OneIn(2)) {
        DamageSlightly(bytes, random);
    }
    return bytes;
}

inline std::int32_t Signed(std::uint32_t value) {
    return static_cast<std::int32_t>(value);
}

// What a sample description says of a picture of the written size, rightly or wrongly.
inline PictureSize ExpectedSize(RandomSource& random, PictureSize written) {
    switch (random.Below(8)) {
        case 0:
            return {written.width / 2 + random.Below(3), written.height / 2 + random.Below(3)};
        case 1:
            return {written.width + 1, written.height};
        case 2:
            return {random.Below(3), random.Below(3)};
        case 3:
            return {1 + random.Below(20), 1 + random.Below(20)};
        default:
            return written;
    }
}

}  // namespace clipfix::test
