#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "atoms/moov.h"
#include "base/bytes.h"
#include "job/state/job_front_end.h"

namespace clipfix {

// A file type atom (ISO/IEC 14496-12, 4.3) as far as it is looked at.
struct CFtyp {
    std::uint32_t size = 0;      // the length that the caller passed, in bytes
    std::uint32_t ftyptype = 0;  // the atom's type, big-endian
    std::uint32_t subtyp = 0;    // the major brand, big-endian

    // `atom` holds the bytes from the size field on; those that are missing read as zero.
    CFtyp(ByteView atom, std::uint32_t length);
};

// One movie file once its top level is known, and the one door to its movie tree. It answers zero
// or null to everything while it holds no tree, and nothing here fails.
//
// The coder formats that the tree's sample descriptions name are left in the job's state
// (g_strVideoCoderFormat, g_strAudioCoderFormat). For use by one thread at a time.
class GFile {
  public:
    // What `job` refers to must outlive the object.
    explicit GFile(JobContext job) : job_(job) {}

    // Finds `ftyp`, `mdat` and `moov` in the file that g_strCheckedPath names and fills the
    // members below. The path that is passed is not used, and that is meant. A file that cannot be
    // opened sets g_bJobFailed and g_nMessageKind; everything else that is wrong with a file shows
    // only as members that stay empty. Left early when g_lJobAlive becomes 0.
    void ReadStructure(const std::string& path);

    [[nodiscard]] AnySps GetSPS() const;
    [[nodiscard]] AnyPps GetPPS() const;
    [[nodiscard]] std::shared_ptr<const CVPS> GetVPS() const;
    [[nodiscard]] std::size_t GetTrackCount() const;
    // The tree of the repaired movie; see CMoov::CreateMoov, which may be called once.
    [[nodiscard]] std::unique_ptr<CMoov> CreateMoov(const CAtomCreationRequest& videoRequest,
                                                    const CAtomCreationRequest& audioRequest);
    // Samples in one second of the first track of the kind.
    [[nodiscard]] double GetVideoSampleRate() const;
    [[nodiscard]] double GetAudioSampleRate() const;
    // Ticks in one second of the first track of the kind.
    [[nodiscard]] std::uint32_t GetVideoTimescale() const;
    [[nodiscard]] std::uint32_t GetAudioTimescale() const;
    [[nodiscard]] std::optional<DecoderSpecifiInfoWrapper> GetAudioSpecificInfo() const;

    // The first track of the movie, of whatever kind, when the job's video coder is `avc1` or
    // `hvc1`; else null. That the kind of the track is not asked is settled.
    [[nodiscard]] const CTrak* GetFirstVideoTrack() const;
    // Bytes of the length word ahead of each NAL unit, as the first track's description has it;
    // 0 when that is not a description of known video, for example when sound is the first track.
    [[nodiscard]] std::uint32_t GetNalLengthSize() const;

    std::unique_ptr<CMoov> pMoov;  // the movie tree; null when none with tracks was found
    std::optional<CMdat> pMdat;    // the last media data head found
    std::optional<CFtyp> pFtyp;    // the last file type found
    std::string strPath;           // empty, and not used

  private:
    JobContext job_;
};

}  // namespace clipfix
