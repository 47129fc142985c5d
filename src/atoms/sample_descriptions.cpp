#include "atoms/sample_descriptions.h"

#include <utility>

#include "atoms/fields.h"
#include "atoms/kind_tags.h"
#include "base/fourcc.h"

namespace clipfix {

namespace {

constexpr std::uint32_t kAvc1 = FourCC("avc1");
constexpr std::uint32_t kHvc1 = FourCC("hvc1");
constexpr std::uint32_t kMp4a = FourCC("mp4a");
constexpr std::uint32_t kSowt = FourCC("sowt");
constexpr std::uint32_t kTwos = FourCC("twos");

// An entry that claims more than its parent holds is read as if zeros stood behind it.
class WholeBytes {
  public:
    explicit WholeBytes(const AtomBlock& block) : view_(block.bytes) {
        if (block.bytes.size() < block.length) {
            padded_.assign(block.bytes.begin(), block.bytes.end());
            padded_.resize(block.length);
            view_ = padded_;
        }
    }
    [[nodiscard]] ByteView View() const { return view_; }

  private:
    ByteVector padded_;
    ByteView view_;
};

}  // namespace

CVideoSampleDescriptionEntery::CVideoSampleDescriptionEntery(const AtomBlock& block) {
    FieldReader head(block.bytes);
    head(size, dformat, rsvd1, rsvd2, drindex, vrsn, rlevel, vdr, tquality, squality);
    head(wt, ht, horres, verres, dasize, fcount);
    constexpr std::size_t kBehindCompressorName = 82;
    FieldReader tail(block.bytes, kBehindCompressorName);
    tail(dpth, ctable);
    size = block.length;
    if (dformat == kAvc1 || dformat == kHvc1) {
        ReadExtensions(block);
    }
}

// The extensions behind the fixed fields are looked for byte by byte, so that whatever stands
// between them (`pasp`, `btrt`, `clap`, `fiel`, `gama`) is stepped through.
void CVideoSampleDescriptionEntery::ReadExtensions(const AtomBlock& block) {
    constexpr std::size_t kExtensionsAt = 86;
    std::size_t at = kExtensionsAt;
    while (at < block.length) {
        const std::uint32_t code = block.CodeAt(at);
        if (code == FourCC("colr")) {
            const std::uint32_t length = block.Big32(at);
            at += length == 0 ? 1 : length;
        } else if (code == FourCC("avcC") || code == FourCC("hvcC")) {
            const auto box = block.FittingChild(at);
            if (!box) {
                return;  // nothing behind a record that overruns its entry is looked at
            }
            if (code == FourCC("avcC")) {
                TakeAvcRecord(*box);
            } else {
                TakeHevcRecord(*box);
            }
            at += box->length;
        } else {
            ++at;
        }
    }
}

void CVideoSampleDescriptionEntery::TakeAvcRecord(const AtomBlock& box) {
    const WholeBytes whole(box);
    avcConfig = std::make_shared<const CAVCDecoderConfigurationRecord>(whole.View());
    decoderConfig = avcConfig;
}

void CVideoSampleDescriptionEntery::TakeHevcRecord(const AtomBlock& box) {
    const WholeBytes whole(box);
    auto record = std::make_shared<HVCDecoderConfigurationRecord>();
    record->Parse(whole.View(), wt, ht);
    decoderConfig = std::shared_ptr<const HVCDecoderConfigurationRecord>(std::move(record));
}

std::optional<std::uint8_t> CVideoSampleDescriptionEntery::LengthSizeMinusOne() const {
    if (dformat == kHvc1) {
        return std::uint8_t{3};  // settled: the record of an `hvc1` entry is not asked
    }
    if (avcConfig == nullptr) {
        return std::nullopt;
    }
    return avcConfig->lengthSizeMinusOne;
}

CAudioSampleDescriptionEntery::CAudioSampleDescriptionEntery(const AtomBlock& block) {
    FieldReader reader(block.bytes);
    reader(ssize, dformat, rsvd1, rsvd2, drindex, vrsn, rvrsn, vndr);
    reader(nchanel, smplsize, cid, psize, srate);
    constexpr std::uint32_t kVersion1Bytes = 52;
    if (dformat == kMp4a) {
        FindEsds(block);
    } else if (vrsn == 1 && block.length >= kVersion1Bytes) {
        reader(sppacket, bppacket, bpframe, bpsample);
    }
}

// Byte by byte, so that an `esds` inside a `wave` atom is found as well as one that stands in the
// entry itself, whatever the entry's version. The last one found stays.
void CAudioSampleDescriptionEntery::FindEsds(const AtomBlock& block) {
    constexpr std::size_t kExtensionsAt = 36;
    std::size_t at = kExtensionsAt;
    while (at + 4 < block.length) {
        const auto box = block.CodeAt(at) == FourCC("esds") ? block.FittingChild(at) : std::nullopt;
        if (box) {
            const WholeBytes whole(*box);
            esds = std::make_shared<const CEsdsDecoder>(whole.View());
            at += box->length;
        } else {
            ++at;
        }
    }
}

std::uint32_t CAudioSampleDescriptionEntery::MaximumBitrate() const {
    return dformat == kMp4a && esds != nullptr ? esds->MaximumBitrate() : 0;
}

std::uint32_t CAudioSampleDescriptionEntery::AverageBitrate() const {
    return dformat == kMp4a && esds != nullptr ? esds->AverageBitrate() : 0;
}

CStsd::CStsd(const AtomBlock& block, MovieRead& read)
    : data(block.bytes.begin(), block.bytes.end()) {
    ReadFields(*this, block);
    ReadEntries(block, read);
}

void CStsd::ReadEntries(const AtomBlock& block, MovieRead& read) {
    constexpr std::size_t kEntriesAt = 16;
    std::size_t at = kEntriesAt;
    for (std::uint32_t i = 0; i < numberOfEntries; ++i) {
        if (at + 4 > block.length) {
            return;
        }
        const std::uint32_t length = block.Big32(at);
        if (length > block.length - at) {
            return;
        }
        // An `avc1` entry moves the place, and the other formats are then looked for at the new
        // place in the same step, with the old length and no second test that it fits. Settled.
        const std::size_t before = at;
        if (TakeAvc1(block, at, length, read)) {
            at += length;
        }
        if (TakeOthers(block, at, length, read)) {
            at += length;
        }
        if (at == before) {
            return;  // all repeats that remain would look at the same place
        }
    }
}

bool CStsd::TakeAvc1(const AtomBlock& block, std::size_t at, std::uint32_t length,
                     MovieRead& read) {
    if (block.CodeAt(at) != kAvc1) {
        return false;
    }
    AddVideo(block.ChildByPosition(at, length), kAvc1VideoCoderFormat, read);
    return true;
}

bool CStsd::TakeOthers(const AtomBlock& block, std::size_t at, std::uint32_t length,
                       MovieRead& read) {
    const AtomBlock entry = block.ChildByPosition(at, length);
    switch (block.CodeAt(at)) {
        case kHvc1:
            AddVideo(entry, kHvc1VideoCoderFormat, read);
            return true;
        case kMp4a:
            AddAudio(entry, kMp4aAudioCoderFormat, read);
            return true;
        case kSowt:
            AddAudio(entry, kSowtAudioCoderFormat, read);
            return true;
        case kTwos:
            AddAudio(entry, kTwosAudioCoderFormat, read);
            return true;
        default:
            return false;
    }
}

void CStsd::AddVideo(const AtomBlock& entry, std::string_view format, MovieRead& read) {
    videoEntry = std::make_shared<const CVideoSampleDescriptionEntery>(entry);
    if (recognisedEntries_++ == 0) {
        firstEntry_ = videoEntry;
    }
    coderFormat = format;
    read.g_strVideoCoderFormat = format;
}

void CStsd::AddAudio(const AtomBlock& entry, std::string_view format, MovieRead& read) {
    audioEntry = std::make_shared<const CAudioSampleDescriptionEntery>(entry);
    if (recognisedEntries_++ == 0) {
        firstEntry_ = audioEntry;
    }
    coderFormat = format;
    read.g_strAudioCoderFormat = format;
}

const CVideoSampleDescriptionEntery* CStsd::VideoDescription() const {
    if (!SameTag(coderFormat, kAvc1VideoCoderFormat) &&
        !SameTag(coderFormat, kHvc1VideoCoderFormat)) {
        return nullptr;
    }
    const auto* video =
        std::get_if<std::shared_ptr<const CVideoSampleDescriptionEntery>>(&firstEntry_);
    return video != nullptr ? video->get() : nullptr;
}

std::uint32_t CStsd::GetNALLengthSize() const {
    const auto* video = VideoDescription();
    const auto minusOne = video != nullptr ? video->LengthSizeMinusOne() : std::nullopt;
    return minusOne ? *minusOne + 1U : 0U;
}

namespace {

template <typename Any, typename Set>
Any NonNull(const std::shared_ptr<const Set>& set) {
    return set != nullptr ? Any(set) : Any();
}

using AvcRecord = std::shared_ptr<const CAVCDecoderConfigurationRecord>;
using HevcRecord = std::shared_ptr<const HVCDecoderConfigurationRecord>;

}  // namespace

AnySps CStsd::GetSPS() const {
    if (const auto* video = VideoDescription()) {
        if (const auto* avc = std::get_if<AvcRecord>(&video->decoderConfig)) {
            return NonNull<AnySps>((*avc)->sps);
        }
        if (const auto* hevc = std::get_if<HevcRecord>(&video->decoderConfig)) {
            return NonNull<AnySps>((*hevc)->sps);
        }
    }
    return {};
}

AnyPps CStsd::GetPPS() const {
    if (const auto* video = VideoDescription()) {
        if (const auto* avc = std::get_if<AvcRecord>(&video->decoderConfig)) {
            return NonNull<AnyPps>((*avc)->pps);
        }
        if (const auto* hevc = std::get_if<HevcRecord>(&video->decoderConfig)) {
            return NonNull<AnyPps>((*hevc)->pps);
        }
    }
    return {};
}

std::shared_ptr<const CVPS> CStsd::GetVPS() const {
    const auto* video = VideoDescription();
    const auto* hevc = video != nullptr ? std::get_if<HevcRecord>(&video->decoderConfig) : nullptr;
    return hevc != nullptr ? (*hevc)->vps : nullptr;
}

std::optional<DecoderSpecifiInfoWrapper> CStsd::GetAudioSpecificInfo() const {
    const auto* audio =
        std::get_if<std::shared_ptr<const CAudioSampleDescriptionEntery>>(&firstEntry_);
    if (audio == nullptr || !SameTag(coderFormat, kMp4aAudioCoderFormat)) {
        return std::nullopt;
    }
    DecoderSpecifiInfoWrapper wrapper;
    if ((*audio)->esds != nullptr) {
        wrapper.bytes = (*audio)->esds->DecoderSpecificBytes();
    }
    return wrapper;
}

}  // namespace clipfix
