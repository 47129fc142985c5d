#include "atoms/header_atoms.h"

#include "atoms/fields.h"
#include "base/fourcc.h"

namespace clipfix {

CMvhd::CMvhd(const AtomBlock& block) {
    ReadFields(*this, block);
}

ByteVector CMvhd::Serialize() const {
    return ImageOf(*this);
}

CTkhd::CTkhd(const AtomBlock& block) {
    ReadFields(*this, block);
}

ByteVector CTkhd::Serialize() const {
    return ImageOf(*this);
}

CMdhd::CMdhd(const AtomBlock& block) {
    ReadFields(*this, block);
}

void CMdhd::Fill(std::uint32_t newDuration, std::uint32_t newTimescale, std::uint16_t newLanguage,
                 std::uint16_t newQuality) {
    *this = CMdhd();
    size = BytesOfFields(*this);
    type = FourCC("mdhd");
    timescale = newTimescale;
    duration = newDuration;
    language = newLanguage;
    quality = newQuality;
    data = Serialize();
}

ByteVector CMdhd::Serialize() const {
    return ImageOf(*this);
}

CHdlr::CHdlr(const AtomBlock& block) {
    ReadFields(*this, block);
    // The length of the name is taken from the first byte of the atom, where the highest byte of
    // its size stands, and not from byte 32. That is settled; no name of a handler is kept, and
    // only its type and subtype count for anything.
    constexpr std::uint32_t kBytesBeforeName = 32;
    stringSize = block.length > kBytesBeforeName ? ByteAt(block.bytes, 0) : std::uint8_t{0};
    nameString = 0;
}

void CHdlr::Fill(std::uint32_t newComponentType, std::uint32_t newComponentSubtype,
                 std::uint8_t newStringSize, std::string_view newName) {
    *this = CHdlr();
    size = BytesOfFields(*this);
    type = FourCC("hdlr");
    componentType = newComponentType;
    componentSubtype = newComponentSubtype;
    stringSize = newStringSize;
    // The image holds one byte of name, whatever the name: it is kept aside and not written.
    name = newName;
    data = Serialize();
}

ByteVector CHdlr::Serialize() const {
    return ImageOf(*this);
}

CVmhd::CVmhd() : type(FourCC("vmhd")), versionFlag(1) {
    size = BytesOfFields(*this);
    data = Serialize();
}

CVmhd::CVmhd(const AtomBlock& block) {
    ReadFields(*this, block);
}

ByteVector CVmhd::Serialize() const {
    return ImageOf(*this);
}

CSmhd::CSmhd() : type(FourCC("smhd")) {
    size = BytesOfFields(*this);
    data = Serialize();
}

CSmhd::CSmhd(const AtomBlock& block) {
    ReadFields(*this, block);
}

ByteVector CSmhd::Serialize() const {
    return ImageOf(*this);
}

CGmhd::CGmhd(const AtomBlock& block) : size(block.length), type(block.CodeAt(0)) {}

CGmin::CGmin(const AtomBlock& block)
    : type(block.CodeAt(0)),
      versionFlag(block.Big32(8)),
      Gmode(ReadBig16(block.bytes, 12)),
      opc_R(ReadBig16(block.bytes, 14)),
      opc_G(ReadBig16(block.bytes, 16)),
      opc_B(ReadBig16(block.bytes, 18)),
      blnc(ReadBig16(block.bytes, 20)),
      rsvd(ReadBig16(block.bytes, 22)) {}

CMdat::CMdat(ByteView head, std::uint32_t position) : offset(position) {
    constexpr std::size_t kHeadBytes = 16;
    if (head.size() < kHeadBytes) {
        return;
    }
    type = ReadBig32(head, 4);
    const std::uint32_t shortSize = ReadBig32(head, 0);
    size = shortSize == 1 ? static_cast<std::uint32_t>(ReadBig64(head, 8)) : shortSize;
}

}  // namespace clipfix
