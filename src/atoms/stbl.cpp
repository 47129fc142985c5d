#include "atoms/stbl.h"

#include <utility>

#include "atoms/fields.h"
#include "atoms/kind_tags.h"
#include "atoms/truncation.h"
#include "base/fourcc.h"

namespace clipfix {

namespace {

enum class Counted { Never, Always, IfItFits };

// When the size of a child counts towards the test that its parent makes. A child that is not
// listed (`stps`, `stsh`, `padb`, `subs` and all others) never counts, which costs the whole table
// its place in the tree. `sdps` is spelt so. Both are settled.
Counted WhenCounted(std::uint32_t code) {
    switch (code) {
        case FourCC("stsd"):
        case FourCC("stts"):
        case FourCC("stss"):
        case FourCC("stsc"):
        case FourCC("stsz"):
        case FourCC("stco"):
        case FourCC("co64"):
        case FourCC("ctts"):
        case FourCC("sdtp"):
            return Counted::Always;
        case FourCC("cslg"):
        case FourCC("sdps"):
        case FourCC("sgpd"):
        case FourCC("sbgp"):
        case FourCC("csgm"):
        case FourCC("free"):
            return Counted::IfItFits;
        default:
            return Counted::Never;
    }
}

template <typename Table>
std::uint32_t SizeOf(const std::shared_ptr<Table>& table) {
    return table != nullptr ? table->size : 0;
}

template <typename Table>
void AppendData(ByteVector& image, const std::shared_ptr<Table>& table) {
    if (table != nullptr) {
        AppendBytes(image, table->data);
    }
}

}  // namespace

CStbl::CStbl(const AtomBlock& block, MovieRead& read) {
    ReadFields(*this, block);
    std::size_t at = kChildrenAt;
    while (at < block.length) {
        const std::uint32_t code = block.CodeAt(at);
        const Counted counted = WhenCounted(code);
        if (counted == Counted::Never) {
            ++at;
            continue;
        }
        const auto child = block.FittingChild(at);
        if (counted == Counted::Always || child) {
            read.g_nStblChildBytes += block.Big32(at);
        }
        if (child) {
            TakeTable(*child, code, read);
        }
        at += child ? child->length : 1;
    }
}

void CStbl::TakeTable(const AtomBlock& child, std::uint32_t code, MovieRead& read) {
    switch (code) {
        case FourCC("stsd"):
            stsd = std::make_shared<CStsd>(child, read);
            break;
        case FourCC("stts"):
            stts = std::make_shared<CStts>(child);
            break;
        case FourCC("stss"):
            stss = std::make_shared<CStss>(child);
            break;
        case FourCC("stsc"):
            stsc = std::make_shared<CStsc>(child);
            break;
        case FourCC("stsz"):
            stsz = std::make_shared<CStsz>(child);
            break;
        case FourCC("stco"):
            stco = std::make_shared<CStco>(child, CStco::Form::Offsets32);
            break;
        case FourCC("co64"):
            stco = std::make_shared<CStco>(child, CStco::Form::Offsets64);
            break;
        case FourCC("ctts"):
            ctts = std::make_shared<CCtts>(child);
            break;
        default:
            break;  // counted, and not kept
    }
}

// The delta of a track whose samples all last equally long, in ticks of the media's time scale.
static std::uint32_t SampleDelta(const CAtomCreationRequest& request) {
    constexpr std::uint32_t kAacFrame = 1024;
    const std::uint32_t delta =
        TruncateToLow32(static_cast<double>(request.timescale) / request.sampleRate);
    if (delta != 0) {
        return delta;
    }
    return SameTag(request.requestType, kVideoRequest) ? 1 : kAacFrame;
}

std::unique_ptr<CStbl> CStbl::Create(const CAtomCreationRequest& request) const {
    auto made = std::make_unique<CStbl>();
    made->type = type;
    made->stsd = stsd;
    made->stco = std::make_shared<CStco>();
    made->stco->Fill(request.stcoEntries);
    made->MakeSizesAndRuns(*this, request);
    made->MakeOptionalTables(*this, request);
    made->stts = std::make_shared<CStts>();
    made->stts->Fill(made->SampleCount(), SampleDelta(request));
    made->size = SizeOf(made->stsd) + SizeOf(made->stco) + SizeOf(made->stsz) + SizeOf(made->stts) +
                 SizeOf(made->stsc) + BytesOfFields(*this) + SizeOf(made->ctts) +
                 SizeOf(made->stss);
    return made;
}

// A PCM track gets samples of size 1 and a single count: the number of chunks times the samples
// per chunk of the first run, however the later runs differ. The product wraps in 32 bits. Without
// any run there is no table of sizes at all.
static std::shared_ptr<CStsz> PcmSizes(const CStco& chunks, const CStsc& runs) {
    auto sizes = std::make_shared<CStsz>();
    if (!runs.IsEmpty()) {
        sizes->FillUniform(chunks.numberOfEntries * runs.FirstSamplesPerChunk(), 1);
    }
    return sizes;
}

void CStbl::MakeSizesAndRuns(const CStbl& reference, const CAtomCreationRequest& request) {
    const std::string_view format =
        reference.stsd != nullptr ? std::string_view(reference.stsd->coderFormat) : "";
    if (SameTag(format, kTwosAudioCoderFormat) && reference.stsc != nullptr) {
        // The reference's own runs, which its engine-made list never replaces.
        stsc = reference.stsc;
        stsc->Refresh();
        stsz = PcmSizes(*stco, *stsc);
        return;
    }
    stsc = std::make_shared<CStsc>();
    if (SameTag(format, kTwosAudioCoderFormat)) {
        stsz = std::make_shared<CStsz>();
        return;
    }
    stsc->Fill(request.stscEntries);
    if (SameTag(format, kSowtAudioCoderFormat)) {
        stsz = PcmSizes(*stco, *stsc);
        return;
    }
    stsz = std::make_shared<CStsz>();
    stsz->Fill(request.stszEntries);
}

// Sound gets neither composition offsets nor sync samples.
void CStbl::MakeOptionalTables(const CStbl& reference, const CAtomCreationRequest& request) {
    if (!SameTag(request.requestType, kVideoRequest)) {
        return;
    }
    // The composition offsets of the reference's first samples govern the repaired track, however
    // many samples it has. The table goes over whole, or, with one entry or none, not at all.
    if (reference.ctts != nullptr && reference.ctts->entries.size() > 1) {
        ctts = reference.ctts;
    }
    // Without a table in the reference every sample is a sync sample, and none is written.
    if (reference.stss != nullptr) {
        constexpr std::uint32_t kFallbackSync = 2;
        const auto& known = reference.stss->entries;
        stss = std::make_shared<CStss>();
        stss->Fill(SampleCount(), known.size() > 1 ? known[1] : kFallbackSync);
    }
}

void CStbl::AppendImage(ByteVector& image) const {
    AppendFields(image, *this);
    AppendData(image, stsd);
    AppendData(image, stss);
    AppendData(image, ctts);
    AppendData(image, stts);
    AppendData(image, stsc);
    AppendData(image, stsz);
    AppendData(image, stco);
}

}  // namespace clipfix
