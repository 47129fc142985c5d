#include "literal/literal_atoms.h"

namespace clipfix::test {

namespace literal_walk {

constexpr std::uint64_t kBlock = 65532;

LiteralAtomBlock BytesFrom(ByteView file, std::uint64_t position, std::uint32_t count) {
    LiteralAtomBlock block;
    block.length = count;
    for (std::uint64_t i = position; i < position + count && i < file.size(); ++i) {
        block.bytes.push_back(file[i]);
    }
    return block;
}

bool HasKnownChild(const LiteralAtomBlock& buffer, std::uint64_t at) {
    for (const char* code : {"mvhd", "uuid", "free", "udta", "trak"}) {
        if (buffer.Spells(at + 12, code) || buffer.Spells(at + 20, code)) {
            return true;
        }
    }
    return false;
}

std::uint32_t SizeOfMdat(const LiteralAtomBlock& buffer, std::uint64_t at) {
    // The low half of the 64-bit size.
    return buffer.U32(at) == 1 ? buffer.U32(at + 12) : buffer.U32(at);
}

}  // namespace literal_walk

LiteralStructure LiteralCheckStructure(ByteView file) {
    using namespace literal_walk;
    LiteralStructure found;
    const std::uint64_t fileSize = file.size();
    const std::uint64_t share = fileSize / 100 * 30;
    const std::uint64_t rounds = fileSize / 127 + (fileSize % 127 != 0 ? 1 : 0);
    std::uint64_t position = 0;
    bool foundMdat = false;
    for (std::uint64_t r = 0; r < rounds && position < fileSize; ++r) {
        ++found.rounds;
        if (r == 10 && !foundMdat && rounds > 100) {
            r = rounds / 100 * 90;
            position = static_cast<std::uint32_t>((kBlock + 512) * r);
        }
        LiteralAtomBlock buffer = BytesFrom(file, position, kBlock + 1024);
        buffer.bytes.resize(kBlock + 1024);
        std::uint64_t j = 0;
        while (j < kBlock + 488) {
            const std::uint32_t size = buffer.U32(j);
            const bool fits = position + j + size <= fileSize;
            if (buffer.Spells(j + 4, "ftyp") && size <= share && size > 8) {
                const LiteralAtomBlock copy = buffer.Copy(j, size);
                found.ftyp = LiteralFtyp{size, copy.U32(4), copy.U32(8)};
                j += size;
            } else if ((buffer.Spells(j + 4, "wide") || buffer.Spells(j + 4, "free")) &&
                       size <= share && size > 8) {
                j += size;
            } else if (buffer.Spells(j + 4, "mdat") && fits && size > 0) {
                const std::uint32_t mdatSize = SizeOfMdat(buffer, j);
                found.mdat =
                    LiteralMdat{buffer.U32(j + 4), mdatSize, static_cast<std::uint32_t>(position)};
                foundMdat = true;
                j += mdatSize == 0 ? 1 : mdatSize;
            } else if (buffer.Spells(j + 4, "moov") && HasKnownChild(buffer, j) && fits &&
                       size > 8) {
                auto moov = std::make_shared<LiteralMoov>(
                    LiteralReadMoov(BytesFrom(file, position + j, size), found.globals));
                found.moov = moov->tracks.empty() ? nullptr : moov;
                j += size - 1;
                break;
            } else {
                j += 1;
            }
        }
        position += j;
    }
    found.position = position;
    return found;
}

}  // namespace clipfix::test
