#include "literal/random_codec.h"

#include <algorithm>

#include "support/bit_writer.h"

namespace clipfix::test {

void AppendRest(ByteVector& bytes, RandomSource& random, std::uint32_t most) {
    const ByteVector rest =
        random.OneIn(3) ? ByteVector(random.Below(most), 0) : random.Bytes(random.Below(most));
    AppendBytes(bytes, rest);
}

namespace {

// Writes an element of random value.
class RandomBits {
  public:
    explicit RandomBits(RandomSource& random) : random_(random) {}

    // 1 in one of `chances` cases.
    bool Flag(std::uint32_t chances = 2) {
        const bool isSet = random_.OneIn(chances);
        bits_.Bit(isSet ? 1 : 0);
        return isSet;
    }
    void Flags(unsigned count) {
        for (unsigned i = 0; i < count; ++i) {
            Flag();
        }
    }
    std::uint32_t U(unsigned count) {
        const auto value = static_cast<std::uint32_t>(random_.Next() >> (64 - count));
        bits_.Bits(value, count);
        return value;
    }
    // Mostly a value below `limit`.
    std::uint32_t Ue(std::uint32_t limit) {
        const std::uint32_t value = random_.OneIn(60) ? Unusual() : random_.Below(limit);
        bits_.Ue(value);
        return value;
    }
    void UnusualUe() { bits_.Ue(Unusual()); }
    void Ues(unsigned count, std::uint32_t limit) {
        for (unsigned i = 0; i < count; ++i) {
            Ue(limit);
        }
    }
    void Se(std::uint32_t limit) { Ue(2 * limit); }
    BitWriter& Bits() { return bits_; }
    RandomSource& Random() { return random_; }

  private:
    // At the limits that values have, and of any number of bits.
    std::uint32_t Unusual() {
        static constexpr std::uint32_t kLimits[] = {15,  16,  31,   32,   63,         64,
                                                    256, 257, 1023, 1024, 0xFFFFFFFD, 0xFFFFFFFE};
        return random_.OneIn(2) ? kLimits[random_.Below(12)]
                                : static_cast<std::uint32_t>(random_.Next()) >> random_.Below(32);
    }

    RandomSource& random_;
    BitWriter bits_;
};

ByteVector Finish(RandomBits& bits) {
    bits.Bits().Bit(1);
    ByteVector bytes = bits.Bits().View();
    if (bits.Random().OneIn(4)) {
        AppendRest(bytes, bits.Random(), 12);
    }
    return bytes;
}

void WriteScalingLists264(RandomBits& bits, unsigned lists) {
    for (unsigned i = 0; i < lists; ++i) {
        if (bits.Flag(4)) {
            for (int k = 0; k < 16; ++k) {
                bits.Se(4);
            }
        }
    }
}

void WriteShortTermSets265(RandomBits& bits, std::uint32_t count) {
    for (std::uint32_t i = 0; i < std::min(count, 20U); ++i) {
        if (i > 0 && bits.Flag(3)) {
            bits.Flag();
            bits.Ue(4);
            bits.Flags(4);
            continue;
        }
        const std::uint32_t negative = bits.Ue(3);
        const std::uint32_t positive = bits.Ue(3);
        for (std::uint32_t k = 0; k < std::min(negative, 4U) + std::min(positive, 4U); ++k) {
            bits.Ue(4);
            bits.Flag();
        }
    }
}

void WriteHead265(RandomBits& bits, std::uint32_t type) {
    const bool isPlain = !bits.Random().OneIn(10);
    bits.Bits().Bits(type << 1U, 8);
    bits.Bits().Bits(isPlain ? 1 : bits.Random().Below(256), 8);
}

void WriteProfileTierLevel265(RandomBits& bits, std::uint32_t subLayers) {
    bits.U(8);
    bits.Bits().Bits(0x60000003, 32);
    bits.Bits().Bits(bits.Random().OneIn(2) ? 0x900000030000ULL : 0, 48);
    bits.U(8);
    if (subLayers == 0) {
        return;
    }
    for (std::uint32_t i = 0; i < 8; ++i) {
        bits.Bits().Bits(i < subLayers ? bits.Random().Below(4) : 0, 2);
    }
}

}  // namespace

PictureSize RandomPictureSize(RandomSource& random) {
    static constexpr PictureSize kUsual[] = {
        {1920, 1088}, {1280, 720}, {64, 48}, {3840, 2160}, {416, 240}};
    if (random.OneIn(3)) {
        return {1 + random.Below(4200), 1 + random.Below(2400)};
    }
    return kUsual[random.Below(5)];
}

ByteVector RandomSps264(RandomSource& random) {
    static constexpr std::uint32_t kProfiles[] = {66, 77,  88,  100, 110, 122, 244, 44, 83,
                                                  86, 118, 128, 138, 139, 134, 135, 183};
    RandomBits bits(random);
    bits.Bits().Bits(random.OneIn(8) ? random.Below(256) : 0x67, 8);
    const std::uint32_t profile =
        random.OneIn(10) ? random.Below(256) : kProfiles[random.Below(17)];
    bits.Bits().Bits(profile, 8);
    bits.U(16);
    bits.Ue(random.OneIn(4) ? 32 : 1);
    if (profile != 66 && profile != 77 && profile != 88) {
        const std::uint32_t chroma = bits.Ue(4);
        if (chroma == 3) {
            bits.Flag();
        }
        bits.Ues(2, 8);
        bits.Flag();
        if (bits.Flag(3)) {
            WriteScalingLists264(bits, chroma == 3 ? 12 : 8);
        }
    }
    bits.Ue(14);
    const std::uint32_t order = bits.Ue(3);
    if (order == 0) {
        bits.Ue(14);
    } else if (order == 1) {
        bits.Flag();
        bits.Se(3);
        bits.Se(3);
        bits.Ues(std::min(bits.Ue(4), 8U), 9);
    }
    bits.Ue(17);
    bits.Flag();
    bits.Ues(2, 200);
    if (!bits.Flag()) {
        bits.Flag();
    }
    bits.Flag();
    if (bits.Flag()) {
        bits.Ues(4, 9);
    }
    if (bits.Flag()) {
        bits.U(24);
    }
    return Finish(bits);
}

ByteVector RandomPps264(RandomSource& random) {
    RandomBits bits(random);
    bits.Bits().Bits(random.OneIn(8) ? random.Below(256) : 0x68, 8);
    bits.Ue(random.OneIn(4) ? 256 : 2);
    bits.Ue(random.OneIn(4) ? 32 : 2);
    bits.Flags(2);
    const std::uint32_t groups = random.OneIn(4) ? bits.Ue(8) : bits.Ue(1);
    if (groups > 0) {
        bits.Ues(std::min(groups, 8U) + 1, 7);
    }
    bits.Ues(2, 32);
    bits.Flags(3);
    bits.Se(26);
    bits.Se(26);
    bits.Se(12);
    bits.Flags(3);
    return Finish(bits);
}

ByteVector RandomVps265(RandomSource& random) {
    RandomBits bits(random);
    WriteHead265(bits, 32);
    bits.U(4);
    bits.Bits().Bits(random.OneIn(4) ? random.Below(4) : 3, 2);
    bits.U(6);
    const std::uint32_t subLayers = random.OneIn(2) ? 0 : random.Below(8);
    bits.Bits().Bits(subLayers, 3);
    bits.Flag();
    bits.Bits().Bits(random.OneIn(8) ? random.Below(65536) : 0xFFFF, 16);
    WriteProfileTierLevel265(bits, subLayers);
    const std::uint32_t rounds = bits.Flag() ? subLayers + 1 : 1;
    bits.Ues(3 * rounds, random.OneIn(6) ? 700 : 6);
    bits.U(6);
    bits.Ue(random.OneIn(6) ? 2048 : 3);
    if (bits.Flag()) {
        bits.U(32);
        bits.U(32);
        if (bits.Flag()) {
            bits.Ue(300);
        }
        bits.Ue(3);
    }
    return Finish(bits);
}

namespace {

void WriteExtensions265(RandomBits& bits) {
    const bool hasRange = bits.Flag();
    const bool hasLayers = bits.Flag();
    const bool has3d = bits.Flag();
    const bool hasScreen = bits.Flag();
    bits.U(4);
    bits.Flags(hasRange ? 9 : 0);
    bits.Flags(hasLayers ? 1 : 0);
    if (has3d) {
        bits.Flags(2);
        bits.Ue(4);
        bits.Flags(4 + 2 + 1);
        bits.Ue(4);
        bits.Flags(5);
    }
    if (hasScreen) {
        bits.Flag();
        if (bits.Flag()) {
            bits.Ues(2, 64);
            if (bits.Flag()) {
                bits.Ue(4);
                bits.U(24);
            }
        }
        bits.U(2);
        bits.Flag();
    }
}

}  // namespace

ByteVector RandomSps265(RandomSource& random, PictureSize size) {
    RandomBits bits(random);
    WriteHead265(bits, 33);
    bits.U(4);
    const std::uint32_t subLayers = random.OneIn(2) ? 0 : random.Below(7);
    bits.Bits().Bits(subLayers, 3);
    bits.Flag();
    WriteProfileTierLevel265(bits, subLayers);
    bits.Ue(random.OneIn(4) ? 16 : 1);
    if (bits.Ue(4) == 3) {
        bits.Flag();
    }
    bits.Bits().Ue(size.width).Ue(size.height);
    if (bits.Flag()) {
        bits.Ues(4, 9);
    }
    bits.Ues(2, 9);
    bits.Ue(13);
    const std::uint32_t rounds = bits.Flag() ? subLayers + 1 : 1;
    bits.Ues(3 * rounds, 6);
    bits.Ues(6, 4);
    if (bits.Flag()) {
        if (bits.Flag()) {
            bits.Ues(24, 3);
        }
    }
    bits.Flags(2);
    if (bits.Flag()) {
        bits.U(8);
        bits.Ues(2, 3);
        bits.Flag();
    }
    WriteShortTermSets265(bits, bits.Ue(random.OneIn(3) ? 65 : 3));
    if (bits.Flag()) {
        const std::uint32_t count = bits.Ue(random.OneIn(3) ? 36 : 3);
        for (std::uint32_t i = 0; i < std::min(count, 40U); ++i) {
            bits.U(9);
        }
    }
    bits.Flags(2);
    if (bits.Flag(4)) {
        bits.U(20);
    }
    if (bits.Flag()) {
        WriteExtensions265(bits);
    }
    return Finish(bits);
}

ByteVector RandomPps265(RandomSource& random) {
    RandomBits bits(random);
    WriteHead265(bits, 34);
    bits.Ue(random.OneIn(4) ? 64 : 1);
    bits.Ue(random.OneIn(4) ? 16 : 1);
    bits.Flags(2);
    bits.U(3);
    bits.Flags(2);
    bits.Ues(2, 16);
    bits.Se(26);
    bits.Flags(1);
    const bool hasSkip = bits.Flag();
    if (bits.Flag()) {
        bits.Ue(4);
    }
    bits.Se(12);
    bits.Se(12);
    bits.Flags(4);
    const bool hasTiles = bits.Flag();
    bits.Flag();
    if (hasTiles) {
        const std::uint32_t columns = bits.Ue(random.OneIn(4) ? 300 : 4);
        const std::uint32_t rows = bits.Ue(4);
        if (!bits.Flag()) {
            bits.Ues(std::min(columns, 400U) + std::min(rows, 400U), 8);
        }
        bits.Flag();
    }
    bits.Flag();
    if (bits.Flag()) {
        bits.Flag();
        if (!bits.Flag()) {
            bits.Se(6);
            bits.Se(6);
        }
    }
    bits.Flag(8);
    bits.Flag();
    bits.Ue(4);
    bits.Flag();
    if (bits.Flag()) {
        const bool hasRange = bits.Flag();
        bits.Flags(3);
        bits.U(4);
        if (hasRange) {
            bits.Ues(hasSkip ? 1 : 0, 3);
            bits.Flag();
            if (bits.Flag()) {
                bits.Ue(3);
                bits.Ues(2 * std::min(bits.Ue(6) + 1, 8U), 12);
            }
            bits.Ues(2, 4);
        }
    }
    return Finish(bits);
}

ByteVector RandomSlice264(RandomSource& random) {
    RandomBits bits(random);
    bits.Ue(random.OneIn(3) ? 8160 : 1);
    bits.Ue(random.OneIn(6) ? 14 : 10);
    bits.Ue(random.OneIn(4) ? 256 : 2);
    bits.U(32);
    bits.U(32);
    return Finish(bits);
}

ByteVector RandomSlice265(RandomSource& random) {
    RandomBits bits(random);
    const bool isFirst = bits.Flag(4);
    if (random.OneIn(3)) {
        bits.Flag();
    }
    bits.Ue(random.OneIn(6) ? 70 : 2);
    if (!isFirst) {
        bits.Flag();
        bits.U(1 + random.Below(14));
        bits.Ue(3);
    }
    if (random.OneIn(4)) {
        bits.UnusualUe();
    }
    for (int i = 0; i < 6; ++i) {
        random.OneIn(2) ? static_cast<void>(bits.U(32)) : bits.Ues(10, 3);
    }
    return Finish(bits);
}

namespace {

std::uint32_t RandomUnitLength(RandomSource& random) {
    static constexpr std::uint32_t kLimits[] = {0, 3, 7, 800, 1000, 0x200000, 2200000, 0xFFFFFFFF};
    switch (random.Below(4)) {
        case 0:
            return kLimits[random.Below(8)] + random.Below(12) - 6;
        case 1:
            return static_cast<std::uint32_t>(random.Next());
        default:
            return 1 + random.Below(random.OneIn(3) ? 100000 : 800);
    }
}

ByteVector RandomBody264(RandomSource& random, std::uint32_t& head) {
    static constexpr std::uint32_t kTypes[] = {1, 1, 5, 5, 6, 7, 8, 9};
    const std::uint32_t type = random.OneIn(12) ? random.Below(32) : kTypes[random.Below(8)];
    const bool needsNone = type == 6 || type == 9;
    const std::uint32_t idc = random.OneIn(5) ? random.Below(4) : needsNone ? 0 : 3;
    head = (random.OneIn(40) ? 0x80U : 0U) | (idc << 5U) | type;
    switch (type) {
        case 7: {
            ByteVector sps = RandomSps264(random);
            if (random.OneIn(2)) {
                sps.erase(sps.begin());
            }
            return sps;
        }
        case 8:
            return RandomPps264(random);
        default:
            return RandomSlice264(random);
    }
}

ByteVector RandomBody265(RandomSource& random, PictureSize size) {
    static constexpr std::uint32_t kTypes[] = {0,  1,  9,  16, 19, 20, 21, 32, 33, 34,
                                               35, 36, 39, 40, 48, 62, 63, 1,  1,  19};
    const std::uint32_t type = random.OneIn(8) ? random.Below(64) : kTypes[random.Below(20)];
    if (type == 32) {
        return RandomVps265(random);
    }
    if (type == 33) {
        return RandomSps265(random, size);
    }
    if (type == 34) {
        return RandomPps265(random);
    }
    ByteVector unit{static_cast<std::uint8_t>((type << 1U) | (random.OneIn(20) ? 1U : 0U)),
                    static_cast<std::uint8_t>(random.OneIn(10) ? random.Below(256) : 1)};
    if (random.OneIn(30)) {
        unit[0] |= 0x80;
    }
    AppendBytes(unit, RandomSlice265(random));
    return unit;
}

}  // namespace

ByteVector RandomUnit(RandomSource& random, bool isH265, std::uint32_t nalLengthSize,
                      PictureSize size) {
    ByteVector unit;
    AppendBig32(unit, RandomUnitLength(random));
    unit.resize(nalLengthSize);
    if (isH265) {
        AppendBytes(unit, RandomBody265(random, size));
    } else {
        std::uint32_t head = 0;
        const ByteVector body = RandomBody264(random, head);
        unit.push_back(static_cast<std::uint8_t>(head));
        AppendBytes(unit, body);
    }
    if (nalLengthSize < 4 && random.OneIn(2)) {
        // The four bytes that count as the length reach into the unit: a small number there.
        unit[0] = 0;
        unit[std::min<std::size_t>(nalLengthSize, 1)] = 0;
    }
    if (random.OneIn(4)) {
        DamageSlightly(unit, random);
    }
    switch (random.Below(5)) {
        case 0:
            break;
        case 1:
            unit.resize(random.Below(60));
            break;
        default:
            unit.resize(50);
            break;
    }
    return unit;
}

void DamageSlightly(ByteVector& bytes, RandomSource& random) {
    for (std::uint32_t i = random.Below(4); i > 0 && !bytes.empty(); --i) {
        const std::uint32_t at = random.Below(static_cast<std::uint32_t>(bytes.size()));
        switch (random.Below(6)) {
            case 0:
            case 1:
                bytes[at] ^= static_cast<std::uint8_t>(1U << random.Below(8));
                break;
            case 2:
                bytes[at] = static_cast<std::uint8_t>(random.Below(256));
                break;
            case 3:
                bytes.resize(at);
                break;
            case 4: {
                const ByteVector more = random.Bytes(1 + random.Below(6));
                bytes.insert(bytes.begin() + at, more.begin(), more.end());
                break;
            }
            default:
                std::fill_n(bytes.begin() + at,
                            std::min<std::size_t>(bytes.size() - at, 1 + random.Below(12)),
                            random.OneIn(2) ? std::uint8_t{0} : std::uint8_t{0xFF});
                break;
        }
    }
}

}  // namespace clipfix::test
