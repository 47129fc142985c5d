#include "atoms/minf.h"

#include "atoms/fields.h"
#include "atoms/kind_tags.h"
#include "base/fourcc.h"

namespace clipfix {

namespace {

struct HeaderBytes {
    ByteView operator()(const std::monostate& /*none*/) const { return {}; }
    ByteView operator()(const CVmhd& header) const { return header.data; }
    ByteView operator()(const CSmhd& header) const { return header.data; }
};

struct HeaderSize {
    std::uint32_t operator()(const std::monostate& /*none*/) const { return 0; }
    std::uint32_t operator()(const CVmhd& header) const { return header.size; }
    std::uint32_t operator()(const CSmhd& header) const { return header.size; }
};

}  // namespace

CMinf::CMinf(const AtomBlock& block, MovieRead& read) {
    ReadFields(*this, block);
    std::size_t at = ReadMediaHeader(block);
    while (at + 4 < block.length) {
        const std::uint32_t code = block.CodeAt(at);
        const bool known = code == FourCC("gmin") || code == FourCC("hdlr") ||
                           code == FourCC("dinf") || code == FourCC("stbl");
        const auto child = known ? block.FittingChild(at) : std::nullopt;
        if (!child) {
            ++at;
            continue;
        }
        if (code == FourCC("gmin")) {
            // It belongs inside `gmhd`, which is not descended into; it is looked for here.
            gmin = std::make_unique<CGmin>(*child);
        } else if (code == FourCC("hdlr")) {
            hdlr = std::make_unique<CHdlr>(*child);
        } else if (code == FourCC("dinf")) {
            dinf = std::make_unique<CDinf>(*child);
        } else {
            TakeStbl(*child, read);
        }
        at += child->length;
    }
}

// The media header must stand first. Gives the place from which the other children are looked
// for: behind it, or, when the first child is another or too large, the place where it begins.
std::size_t CMinf::ReadMediaHeader(const AtomBlock& block) {
    const std::uint32_t length = block.Big32(kChildrenAt);
    if (block.length < kChildrenAt || length > block.length - kChildrenAt) {
        return kChildrenAt;
    }
    const AtomBlock header = block.ChildByPosition(kChildrenAt, length);
    switch (block.CodeAt(kChildrenAt)) {
        case FourCC("vmhd"):
            vmhd = std::make_unique<CVmhd>(header);
            mediaType = kVideoMedia;
            break;
        case FourCC("smhd"):
            smhd = std::make_unique<CSmhd>(header);
            mediaType = kAudioMedia;
            break;
        case FourCC("gmhd"):
            gmhd = std::make_unique<CGmhd>(header);
            mediaType = kUnknownMedia;
            break;
        default:
            return kChildrenAt;
    }
    return kChildrenAt + length;
}

// The one test of a movie's sizes: the children that were met must add up to the table's own size
// without its head. A table that fails it is dropped, and an earlier one with it.
void CMinf::TakeStbl(const AtomBlock& child, MovieRead& read) {
    constexpr std::uint32_t kHeadBytes = 8;
    stbl = std::make_unique<CStbl>(child, read);
    if (read.g_nStblChildBytes + kHeadBytes != child.length) {
        stbl = nullptr;
    }
    read.g_nStblChildBytes = 0;
}

std::unique_ptr<CMinf> CMinf::Create(std::string_view kind,
                                     const CAtomCreationRequest& request) const {
    auto made = std::make_unique<CMinf>();
    made->type = type;
    made->stbl = stbl->Create(request);
    if (SameTag(kind, kVideoRequest)) {
        made->mediaHeader = CVmhd();
        made->mediaType = kVideoMedia;
    } else if (SameTag(kind, kAudioRequest)) {
        made->mediaHeader = CSmhd();
        made->mediaType = kAudioMedia;
    }
    // The data handler's `dhlr` stands in the field of the subtype, and that of the type stays 0.
    // That is settled.
    made->hdlr = std::make_unique<CHdlr>();
    made->hdlr->Fill(0, FourCC("dhlr"), 0, "");
    made->dinf = std::make_unique<CDinf>();
    made->dinf->Fill(FourCC("alis"));
    made->size = made->stbl->size + std::visit(HeaderSize(), made->mediaHeader) + made->hdlr->size +
                 BytesOfFields(*this) + made->dinf->size;
    return made;
}

void CMinf::AppendImage(ByteVector& image) const {
    AppendFields(image, *this);
    AppendBytes(image, std::visit(HeaderBytes(), mediaHeader));
    AppendBytes(image, hdlr->data);
    AppendBytes(image, dinf->data);
    stbl->AppendImage(image);
}

}  // namespace clipfix
