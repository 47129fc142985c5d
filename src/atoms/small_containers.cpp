#include "atoms/small_containers.h"

#include "atoms/fields.h"
#include "base/fourcc.h"

namespace clipfix {

namespace {

constexpr std::size_t kChildAt = 8;
constexpr std::size_t kEntriesAt = 16;

}  // namespace

CDrefentry::CDrefentry(const AtomBlock& block) {
    ReadFields(*this, block);
}

CDref::CDref(const AtomBlock& block) {
    ReadFields(*this, block);
    std::size_t at = kEntriesAt;
    for (std::uint32_t i = 0; i < numberOfEntries; ++i) {
        const auto child = block.FittingChild(at);
        if (!child) {
            break;  // the place stays the same for all entries that remain
        }
        lastEntry = CDrefentry(*child);
        at += child->length;
    }
}

void CDref::Fill(std::uint32_t code) {
    constexpr std::uint32_t kSelfContained = 1;
    *this = CDref();
    CDrefentry entry;
    entry.size = BytesOfFields(entry);
    entry.type = code;
    entry.versionFlag = kSelfContained;
    entries.push_back(entry);

    type = FourCC("dref");
    numberOfEntries = 1;
    size = entry.size + BytesOfFields(*this);
    data = Serialize();
}

ByteVector CDref::Serialize() const {
    ByteVector image = ImageOf(*this);
    AppendEntries(image, entries);
    return image;
}

CDinf::CDinf(const AtomBlock& block) {
    ReadFields(*this, block);
    dref = CDref(block.ChildByPosition(kChildAt, block.Big32(kChildAt)));
}

void CDinf::Fill(std::uint32_t code) {
    *this = CDinf();
    type = FourCC("dinf");
    dref.Fill(code);
    size = dref.size + BytesOfFields(*this);
    data = Serialize();
}

ByteVector CDinf::Serialize() const {
    ByteVector image = ImageOf(*this);
    AppendBytes(image, dref.data);
    return image;
}

// Two slips of the reader are settled, and nothing uses what comes of them: the low byte of the
// duration is taken from byte 4 instead of byte 3, and the rate is divided by 0xFFFF.
CEditListEntry::CEditListEntry(const AtomBlock& block)
    : trackDuration((block.Big32(0) & 0xFFFFFF00U) | ByteAt(block.bytes, 4)),
      mediaTime(block.Big32(4)),
      mediaRate(block.Big32(8) / 0xFFFFU) {}

CElst::CElst(const AtomBlock& block) {
    ReadFields(*this, block);
    // Every entry is made from the first 12 bytes of the atom, as its place is not added in. That
    // is settled, so the last entry is known as soon as one fits.
    if (numberOfEntries > 0 && block.length >= kEntriesAt + BytesOnDisk<CEditListEntry>()) {
        lastEntry = CEditListEntry(block);
    }
}

void CElst::Fill(const CEditListEntry& edit) {
    *this = CElst();
    entries.push_back(edit);
    type = FourCC("elst");
    numberOfEntries = static_cast<std::uint32_t>(entries.size());
    size = numberOfEntries * BytesOfFields(edit) + BytesOfFields(*this);
    data = Serialize();
}

ByteVector CElst::Serialize() const {
    ByteVector image = ImageOf(*this);
    AppendEntries(image, entries);
    return image;
}

CEdts::CEdts(const AtomBlock& block) {
    ReadFields(*this, block);
    elst = CElst(block.ChildByPosition(kChildAt, block.Big32(kChildAt)));
}

void CEdts::Fill(std::uint32_t duration, std::uint32_t mediaTime) {
    constexpr std::uint32_t kNormalRate = 1U << 16U;
    *this = CEdts();
    type = FourCC("edts");
    elst.Fill({duration, mediaTime, kNormalRate});
    size = elst.size + BytesOfFields(*this);
    data = Serialize();
}

ByteVector CEdts::Serialize() const {
    ByteVector image = ImageOf(*this);
    AppendBytes(image, elst.data);
    return image;
}

}  // namespace clipfix
