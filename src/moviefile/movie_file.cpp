#include "moviefile/movie_file.h"

#include "atoms/kind_tags.h"
#include "moviefile/structure_check.h"

namespace clipfix {

CFtyp::CFtyp(ByteView atom, std::uint32_t length)
    : size(length), ftyptype(ReadBig32(atom, 4)), subtyp(ReadBig32(atom, 8)) {}

void GFile::ReadStructure(const std::string& path) {
    static_cast<void>(path);  // settled: the file that is opened is the one in the job's state
    StructureCheck(*this, job_).Run();
}

AnySps GFile::GetSPS() const {
    return pMoov != nullptr ? pMoov->GetSPS() : AnySps();
}

AnyPps GFile::GetPPS() const {
    return pMoov != nullptr ? pMoov->GetPPS() : AnyPps();
}

std::shared_ptr<const CVPS> GFile::GetVPS() const {
    return pMoov != nullptr ? pMoov->GetVPS() : nullptr;
}

std::size_t GFile::GetTrackCount() const {
    return pMoov != nullptr ? pMoov->tracks.size() : 0;
}

std::unique_ptr<CMoov> GFile::CreateMoov(const CAtomCreationRequest& videoRequest,
                                         const CAtomCreationRequest& audioRequest) {
    return pMoov != nullptr ? pMoov->CreateMoov(videoRequest, audioRequest) : nullptr;
}

double GFile::GetVideoSampleRate() const {
    return pMoov != nullptr ? pMoov->GetVideoSampleRate() : 0.0;
}

double GFile::GetAudioSampleRate() const {
    return pMoov != nullptr ? pMoov->GetAudioSampleRate() : 0.0;
}

std::uint32_t GFile::GetVideoTimescale() const {
    return pMoov != nullptr ? pMoov->GetVideoTimescale() : 0;
}

std::uint32_t GFile::GetAudioTimescale() const {
    return pMoov != nullptr ? pMoov->GetAudioTimescale() : 0;
}

std::optional<DecoderSpecifiInfoWrapper> GFile::GetAudioSpecificInfo() const {
    return pMoov != nullptr ? pMoov->GetAudioSpecificInfo() : std::nullopt;
}

const CTrak* GFile::GetFirstVideoTrack() const {
    const std::string& coder = job_.state.g_strVideoCoderFormat;
    const bool known =
        SameTag(coder, kAvc1VideoCoderFormat) || SameTag(coder, kHvc1VideoCoderFormat);
    return known && GetTrackCount() > 0 ? pMoov->tracks.front().get() : nullptr;
}

std::uint32_t GFile::GetNalLengthSize() const {
    const CTrak* track = GetFirstVideoTrack();
    const CStsd* description = track != nullptr ? track->SampleDescription() : nullptr;
    return description != nullptr ? description->GetNALLengthSize() : 0;
}

}  // namespace clipfix
