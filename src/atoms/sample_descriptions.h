#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "atoms/atom_block.h"
#include "atoms/movie_read.h"
#include "base/bytes.h"
#include "codec/avc_configuration_record.h"
#include "codec/hevc_configuration_record.h"
#include "codec/mpeg4_descriptors.h"

namespace clipfix {

// The parameter sets of a reference, by the standard they follow; std::monostate where there is
// none. A pointer in here is never null, and keeps its set alive by itself.
using AnySps =
    std::variant<std::monostate, std::shared_ptr<const CSPS>, std::shared_ptr<const SPS_265>>;
using AnyPps =
    std::variant<std::monostate, std::shared_ptr<const CPPS>, std::shared_ptr<const PPS_265>>;

// A video sample description. QuickTime File Format, "Video Sample Description"; ISO/IEC 14496-12,
// 12.1.3. All fields stand at fixed places, and one outside the entry is 0.
struct CVideoSampleDescriptionEntery {
    std::uint32_t size = 0;      // the length that the parent passed
    std::uint32_t dformat = 0;   // data format: `avc1` or `hvc1`
    std::uint32_t rsvd1 = 0;     // reserved
    std::uint16_t rsvd2 = 0;     // reserved
    std::uint16_t drindex = 0;   // data reference index
    std::uint16_t vrsn = 0;      // version
    std::uint16_t rlevel = 0;    // revision level
    std::uint32_t vdr = 0;       // vendor
    std::uint32_t tquality = 0;  // temporal quality
    std::uint32_t squality = 0;  // spatial quality
    std::uint16_t wt = 0;        // width, pixels
    std::uint16_t ht = 0;        // height, pixels
    std::uint32_t horres = 0;    // horizontal resolution, 16.16 pixels per inch
    std::uint32_t verres = 0;    // vertical resolution
    std::uint32_t dasize = 0;    // data size
    std::uint16_t fcount = 0;    // frame count
    // 32 bytes of compressor name stand here; they are passed over.
    std::uint16_t dpth = 0;    // depth
    std::uint16_t ctable = 0;  // color table id

    // The last record of either kind, and the last `avcC` record. Null when there is none.
    std::variant<std::monostate, std::shared_ptr<const CAVCDecoderConfigurationRecord>,
                 std::shared_ptr<const HVCDecoderConfigurationRecord>>
        decoderConfig;
    std::shared_ptr<const CAVCDecoderConfigurationRecord> avcConfig;

    explicit CVideoSampleDescriptionEntery(const AtomBlock& block);

    // 3 for every `hvc1` entry, whatever its record says; else what the `avcC` record says, and
    // nothing without one.
    [[nodiscard]] std::optional<std::uint8_t> LengthSizeMinusOne() const;

  private:
    void ReadExtensions(const AtomBlock& block);
    void TakeAvcRecord(const AtomBlock& box);
    void TakeHevcRecord(const AtomBlock& box);
};

// A sound sample description. QuickTime File Format, "Sound Sample Description (Version 0)" and
// "(Version 1)"; ISO/IEC 14496-12, 12.2.3.
struct CAudioSampleDescriptionEntery {
    std::uint32_t ssize = 0;     // as the entry says, in bytes
    std::uint32_t dformat = 0;   // data format: `mp4a`, `sowt`, `twos`
    std::uint32_t rsvd1 = 0;     // reserved
    std::uint16_t rsvd2 = 0;     // reserved
    std::uint16_t drindex = 0;   // data reference index
    std::uint16_t vrsn = 0;      // version
    std::uint16_t rvrsn = 0;     // revision level
    std::uint32_t vndr = 0;      // vendor
    std::uint16_t nchanel = 0;   // number of channels
    std::uint16_t smplsize = 0;  // sample size, bits
    std::uint16_t cid = 0;       // compression id
    std::uint16_t psize = 0;     // packet size
    std::uint32_t srate = 0;     // sample rate, 16.16
    // Of a PCM entry of version 1 only; else 0.
    std::uint32_t sppacket = 0;  // samples per packet
    std::uint32_t bppacket = 0;  // bytes per packet
    std::uint32_t bpframe = 0;   // bytes per frame
    std::uint32_t bpsample = 0;  // bytes per sample

    std::shared_ptr<const CEsdsDecoder> esds;  // the last one found, or null

    explicit CAudioSampleDescriptionEntery(const AtomBlock& block);

    // In bits per second, from the `esds` of an `mp4a` entry; 0 for any other entry.
    [[nodiscard]] std::uint32_t MaximumBitrate() const;
    [[nodiscard]] std::uint32_t AverageBitrate() const;

  private:
    void FindEsds(const AtomBlock& block);
};

// Which of the two an entry is; std::monostate where there is none.
using AnySampleEntry =
    std::variant<std::monostate, std::shared_ptr<const CVideoSampleDescriptionEntery>,
                 std::shared_ptr<const CAudioSampleDescriptionEntery>>;

// Sample descriptions (ISO/IEC 14496-12, 8.5.2). The atom is kept as it stands and goes into the
// repaired movie byte for byte; what is read of it on the side tells the engine what to look for.
class CStsd {
  public:
    // Copies the bytes, then reads them. Tells `read` the coder formats it recognises.
    CStsd(const AtomBlock& block, MovieRead& read);

    std::uint32_t size = 0;
    std::uint32_t type = 0;
    std::uint32_t versionFlag = 0;
    std::uint32_t numberOfEntries = 0;  // as the atom says
    // The tag of the last entry that was recognised (kind_tags.h); empty if none was.
    std::string coderFormat;
    ByteVector data;  // the whole atom as it was read

    std::shared_ptr<const CVideoSampleDescriptionEntery> videoEntry;  // the last, or null
    std::shared_ptr<const CAudioSampleDescriptionEntery> audioEntry;  // the last, or null

    // The first entry that was recognised. Those between the first and the last are not held.
    [[nodiscard]] const AnySampleEntry& GetFirstEntry() const { return firstEntry_; }
    // How many entries were recognised.
    [[nodiscard]] std::uint32_t RecognisedEntries() const { return recognisedEntries_; }

    // Bytes of the length field ahead of each NAL unit: 1 to 4. 0 when the coder is not a known
    // video coder, the first entry is not a video entry, or an `avc1` entry has no record.
    [[nodiscard]] std::uint32_t GetNALLengthSize() const;

    // The parameter sets of the first entry, if the coder is a known video coder.
    [[nodiscard]] AnySps GetSPS() const;
    [[nodiscard]] AnyPps GetPPS() const;
    // Null for an `avcC` record.
    [[nodiscard]] std::shared_ptr<const CVPS> GetVPS() const;

    // What starts the AAC decoder. Nothing unless the coder is MP4A and the first entry is an
    // audio entry; otherwise a holder, which is empty where the `esds` lacks the bytes.
    [[nodiscard]] std::optional<DecoderSpecifiInfoWrapper> GetAudioSpecificInfo() const;

    template <typename Self, typename Visitor>
    static constexpr void Fields(Self& self, Visitor& visit) {
        visit(self.size, self.type, self.versionFlag, self.numberOfEntries);
    }

  private:
    void ReadEntries(const AtomBlock& block, MovieRead& read);
    bool TakeAvc1(const AtomBlock& block, std::size_t at, std::uint32_t length, MovieRead& read);
    bool TakeOthers(const AtomBlock& block, std::size_t at, std::uint32_t length, MovieRead& read);
    void AddVideo(const AtomBlock& entry, std::string_view format, MovieRead& read);
    void AddAudio(const AtomBlock& entry, std::string_view format, MovieRead& read);
    [[nodiscard]] const CVideoSampleDescriptionEntery* VideoDescription() const;

    AnySampleEntry firstEntry_;
    std::uint32_t recognisedEntries_ = 0;
};

}  // namespace clipfix
