#include "atoms/mdia.h"

#include "atoms/fields.h"
#include "atoms/kind_tags.h"
#include "atoms/truncation.h"
#include "base/fourcc.h"

namespace clipfix {

namespace {}  // namespace

double SamplesPerSecond(std::uint32_t timescale, std::uint32_t duration,
                        std::uint32_t sampleCount) {
    return static_cast<double>(timescale) / static_cast<double>(duration) *
           static_cast<double>(sampleCount);
}

CMdia::CMdia(const AtomBlock& block, MovieRead& read) {
    ReadFields(*this, block);
    const std::uint32_t mdhdLength = block.Big32(kChildrenAt);
    mdhd = CMdhd(block.ChildByPosition(kChildrenAt, mdhdLength));
    ReadChildren(block, read);
    SetMediaType();
    if (minf != nullptr && minf->stbl->stsz != nullptr) {
        sampleRate = SamplesPerSecond(mdhd.timescale, mdhd.duration, minf->stbl->SampleCount());
    }
}

void CMdia::ReadChildren(const AtomBlock& block, MovieRead& read) {
    std::size_t at = kChildrenAt + block.Big32(kChildrenAt);
    while (at + 8 < block.length) {
        const std::uint32_t code = block.CodeAt(at);
        const bool known =
            code == FourCC("hdlr") || code == FourCC("minf") || code == FourCC("udta");
        const auto child = known ? block.FittingChild(at) : std::nullopt;
        if (!child) {
            ++at;
            continue;
        }
        if (code == FourCC("hdlr")) {
            hdlr = std::make_unique<CHdlr>(*child);
        } else if (code == FourCC("minf")) {
            minf = std::make_unique<CMinf>(*child, read);
            if (minf->stbl == nullptr) {
                minf = nullptr;
            }
        } else {
            udta = std::make_unique<CUdta>(*child);
        }
        at += child->length;
    }
}

void CMdia::SetMediaType() {
    if (hdlr != nullptr && hdlr->componentSubtype == FourCC("vide")) {
        mediaType = kVideoMedia;
    } else if (hdlr != nullptr && hdlr->componentSubtype == FourCC("soun")) {
        mediaType = kAudioMedia;
    } else {
        mediaType = kUnknownMedia;
    }
}

std::unique_ptr<CMdia> CMdia::Create(std::string_view kind,
                                     const CAtomCreationRequest& request) const {
    auto made = std::make_unique<CMdia>();
    made->type = type;
    made->minf = minf->Create(kind, request);
    made->hdlr = std::make_unique<CHdlr>();
    made->hdlr->Fill(FourCC("mhlr"), SameTag(kind, kVideoRequest) ? FourCC("vide") : FourCC("soun"),
                     0, "");
    // The product of samples and time scale wraps in 32 bits before it is divided, which bounds
    // the duration of long tracks. That is settled.
    const std::uint32_t product = made->minf->stbl->SampleCount() * mdhd.timescale;
    const std::uint32_t duration = TruncateToLow32(static_cast<double>(product) / sampleRate);
    made->mdhd.Fill(duration, mdhd.timescale, mdhd.language, mdhd.quality);
    made->size = made->minf->size + made->hdlr->size + made->mdhd.size + BytesOfFields(*this);
    made->SetMediaType();
    return made;
}

void CMdia::AppendImage(ByteVector& image) const {
    AppendFields(image, *this);
    AppendBytes(image, mdhd.data);
    AppendBytes(image, hdlr->data);
    minf->AppendImage(image);
}

}  // namespace clipfix
