#include "literal/random_codec.h"
#include "support/atom_builder.h"
#include "support/byte_builder.h"

namespace clipfix::test {

ByteVector RandomAvcC(RandomSource& random) {
    ByteBuilder box;
    box.U8(1).Bytes(random.Bytes(3)).U8(static_cast<std::uint8_t>(0xFC | random.Below(4)));
    const std::uint32_t spsCount = random.OneIn(3) ? random.Below(5) : 1;
    box.U8(static_cast<std::uint8_t>(0xE0 | spsCount));
    for (std::uint32_t i = 0; i < spsCount; ++i) {
        const ByteVector sps = random.OneIn(9) ? ByteVector() : RandomSps264(random);
        box.Big16(static_cast<std::uint16_t>(random.OneIn(12) ? random.Below(65536) : sps.size()));
        box.Bytes(sps);
    }
    const std::uint32_t ppsCount = random.OneIn(3) ? random.Below(5) : 1;
    box.U8(static_cast<std::uint8_t>(ppsCount));
    for (std::uint32_t i = 0; i < ppsCount; ++i) {
        const ByteVector pps = random.OneIn(9) ? ByteVector() : RandomPps264(random);
        box.Big16(static_cast<std::uint16_t>(random.OneIn(12) ? random.Below(65536) : pps.size()));
        box.Bytes(pps);
    }
    ByteVector bytes = AtomOf("avcC", box.View());
    if (random.OneIn(4)) {
        AppendRest(bytes, random, 16);
    }
    return bytes;
}

ByteVector RandomHvcC(RandomSource& random, PictureSize size) {
    ByteBuilder box;
    box.Bytes(random.Bytes(22));
    const std::uint32_t arrays = random.OneIn(5) ? random.Below(6) : 3;
    box.U8(static_cast<std::uint8_t>(arrays));
    const std::uint32_t first = random.OneIn(3) ? random.Below(4) : 0;
    for (std::uint32_t i = 0; i < arrays; ++i) {
        const std::uint32_t kind = (first + i) % 4;
        box.U8(static_cast<std::uint8_t>(kind == 3 ? 39 : 32 + kind));
        const std::uint32_t count = random.OneIn(5) ? random.Below(4) : 1;
        box.Big16(static_cast<std::uint16_t>(count));
        for (std::uint32_t k = 0; k < count; ++k) {
            const ByteVector unit = kind == 0   ? RandomVps265(random)
                                    : kind == 1 ? RandomSps265(random, size)
                                    : kind == 2 ? RandomPps265(random)
                                                : random.Bytes(random.Below(30));
            const std::uint32_t length =
                random.OneIn(12) ? random.Below(300) : static_cast<std::uint32_t>(unit.size());
            box.Big16(static_cast<std::uint16_t>(length)).Bytes(unit);
        }
    }
    ByteVector bytes = AtomOf("hvcC", box.View());
    if (random.OneIn(4)) {
        AppendRest(bytes, random, 16);
    }
    return bytes;
}

namespace {

// A descriptor of the tag, mostly with its true length, in one of the forms that are met.
void AppendDescriptor(ByteVector& bytes, RandomSource& random, std::uint8_t tag, ByteView payload) {
    bytes.push_back(random.OneIn(20) ? static_cast<std::uint8_t>(random.Below(8)) : tag);
    const bool isPadded = random.OneIn(2);
    bytes.insert(bytes.end(), isPadded ? 3 : random.Below(2), std::uint8_t{0x80});
    static constexpr std::uint8_t kOdd[] = {0, 0x7F, 0x80, 0x81, 0xFF};
    const auto honest = static_cast<std::uint8_t>(payload.size());
    const std::uint8_t near = static_cast<std::uint8_t>(honest + random.Below(7) - 3);
    bytes.push_back(random.OneIn(12) ? kOdd[random.Below(5)] : random.OneIn(8) ? near : honest);
    AppendBytes(bytes, payload);
}

}  // namespace

ByteVector RandomObjectDescriptor(RandomSource& random) {
    ByteVector payload = random.Bytes(2);
    const auto flags =
        static_cast<std::uint8_t>(random.OneIn(3) ? random.Below(256) : random.Below(32));
    payload.push_back(flags);
    if ((flags & 0x80) != 0) {
        AppendBytes(payload, random.Bytes(2));
    }
    if ((flags & 0x40) != 0) {
        const std::uint32_t length = random.Below(random.OneIn(4) ? 200 : 12);
        payload.push_back(static_cast<std::uint8_t>(length));
        AppendBytes(payload, random.Bytes(length));
    }
    if ((flags & 0x20) != 0) {
        AppendBytes(payload, random.Bytes(2));
    }
    ByteVector config = random.Bytes(13);
    if (!random.OneIn(6)) {
        AppendDescriptor(config, random, 5, random.Bytes(random.Below(random.OneIn(6) ? 120 : 6)));
    }
    AppendDescriptor(payload, random, 4, config);
    if (!random.OneIn(5)) {
        AppendDescriptor(payload, random, 6, random.Bytes(random.OneIn(3) ? random.Below(9) : 1));
    }
    return payload;
}

ByteVector RandomEsds(RandomSource& random) {
    ByteVector body = random.Bytes(4);
    AppendDescriptor(body, random, 3, RandomObjectDescriptor(random));
    ByteVector atom = AtomOf("esds", body);
    if (random.OneIn(4)) {
        AppendRest(atom, random, 16);
    }
    return atom;
}

}  // namespace clipfix::test
