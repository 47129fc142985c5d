#include "atoms/trak.h"

#include <cmath>

#include "atoms/fields.h"
#include "atoms/kind_tags.h"
#include "base/fourcc.h"

namespace clipfix {

namespace {}  // namespace

CTrak::CTrak(const AtomBlock& block, MovieRead& read) {
    ReadFields(*this, block);
    // The first child is taken for `tkhd` by its position, without a test that it fits.
    const AtomBlock header = block.ChildByPosition(kChildrenAt, block.Big32(kChildrenAt));
    tkhd = std::make_shared<CTkhd>(header);
    ReadChildren(block, header, read);
    if (mdia != nullptr) {
        UpdateMediaInfo();
    }
}

// The three tests of a step come one behind the other: after a child has moved the place, the next
// test of the same step looks at the new place already.
void CTrak::ReadChildren(const AtomBlock& block, const AtomBlock& header, MovieRead& read) {
    std::size_t at = kChildrenAt + header.length;
    const auto childOf = [&](std::uint32_t code) {
        return block.CodeAt(at) == code ? block.FittingChild(at) : std::nullopt;
    };
    while (at + 8 < block.length) {
        const std::size_t before = at;
        if (const auto child = childOf(FourCC("edts"))) {
            // An edit list is read from the bytes of the track header instead of its own. That is
            // settled, and nothing uses what comes of it.
            edts = std::make_unique<CEdts>(
                AtomBlock{SubView(header.bytes, 0, child->length), child->length});
            at += child->length;
        }
        if (const auto child = childOf(FourCC("mdia"))) {
            TakeMdia(*child, read);
            at += child->length;
        }
        if (const auto child = childOf(FourCC("udta"))) {
            udta = std::make_unique<CUdta>(*child);
            at += child->length;
        }
        if (at == before) {
            ++at;
        }
    }
}

void CTrak::TakeMdia(const AtomBlock& child, MovieRead& read) {
    mdia = std::make_unique<CMdia>(child, read);
    if (mdia->minf == nullptr) {
        mdia = nullptr;
    }
}

void CTrak::ClassifyTrack() {
    // The handler counts; the media header only where there is no handler.
    std::string_view media = kUnknownMedia;
    if (mdia->hdlr != nullptr) {
        if (mdia->hdlr->componentSubtype == FourCC("vide")) {
            media = kVideoMedia;
        } else if (mdia->hdlr->componentSubtype == FourCC("soun")) {
            media = kAudioMedia;
        }
    } else if (mdia->minf != nullptr) {
        media = mdia->minf->mediaType;
    }
    const bool video = SameTag(media, kVideoMedia);
    if (!video && !SameTag(media, kAudioMedia)) {
        trackType = kUnknownTrack;
        return;
    }
    trackType = video ? kVideoTrack : kAudioTrack;
    timescale = mdia->mdhd.timescale;
    mediaDuration = mdia->mdhd.duration;
    sampleCount = mdia->minf->stbl->SampleCount();
    sampleRate = SamplesPerSecond(timescale, mediaDuration, sampleCount);
    if (video) {
        sampleDuration = timescale;  // until the table of times has been asked
    }
}

void CTrak::UpdateMediaInfo() {
    ClassifyTrack();
    const CStbl& tables = *mdia->minf->stbl;
    trackDuration = tkhd->duration;
    timescale = mdia->mdhd.timescale;
    mediaDuration = mdia->mdhd.duration;
    sampleCount = tables.SampleCount();
    sampleDuration = tables.stts != nullptr ? tables.stts->GetFirstSampleDuration() : 0;
    sampleRate = SamplesPerSecond(timescale, mediaDuration, sampleCount);
    sampleEntry = tables.stsd != nullptr ? tables.stsd->GetFirstEntry() : AnySampleEntry();
    coderFormat = tables.stsd != nullptr ? tables.stsd->coderFormat : std::string();
    if (SameTag(coderFormat, kSowtAudioCoderFormat)) {
        sampleRate = std::trunc(sampleRate);
    }
}

const CTrak* CTrak::HasTrackType(std::string_view kind) const {
    return SameTag(trackType, kind) ? this : nullptr;
}

const CStsd* CTrak::SampleDescription() const {
    return mdia != nullptr ? mdia->minf->stbl->stsd.get() : nullptr;
}

std::unique_ptr<CTrak> CTrak::Create(const CAtomCreationRequest& request) const {
    auto made = std::make_unique<CTrak>();
    made->trackType = trackType;
    made->type = type;
    made->tkhd = tkhd;
    made->mdia =
        mdia->Create(SameTag(trackType, kVideoTrack) ? kVideoRequest : kAudioRequest, request);
    made->size = made->mdia->size + BytesOfFields(*this) + tkhd->size;
    made->UpdateMediaInfo();
    return made;
}

void CTrak::SetDuration(std::uint32_t duration) {
    tkhd->duration = duration;
    tkhd->data = tkhd->Serialize();
    edts = nullptr;
    if (SameTag(trackType, kVideoTrack)) {
        // One edit that starts a sample's duration into the media, with or without composition
        // offsets. That shift is settled.
        edts = std::make_unique<CEdts>();
        edts->Fill(duration, sampleDuration);
        size += edts->size;
    }
    data = Serialize();
    UpdateMediaInfo();
}

ByteVector CTrak::Serialize() const {
    ByteVector image;
    image.reserve(size);
    AppendFields(image, *this);
    AppendBytes(image, tkhd->data);
    if (edts != nullptr) {
        AppendBytes(image, edts->data);
    }
    mdia->AppendImage(image);
    return image;
}

}  // namespace clipfix
