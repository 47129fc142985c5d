#include "atoms/moov.h"

#include <limits>
#include <new>
#include <utility>

#include "atoms/fields.h"
#include "atoms/kind_tags.h"
#include "atoms/truncation.h"
#include "base/fourcc.h"

namespace clipfix {

namespace {}  // namespace

CMoov::CMoov(ByteView block, MovieRead& read) {
    // The one place of a read where failure is swallowed: memory may run out, and the tree then
    // stays as far as it had come.
    try {
        Parse(AtomBlock::Of(block), read);
    } catch (const std::bad_alloc&) {
        read.g_nStblChildBytes = 0;
    }
}

void CMoov::Parse(const AtomBlock& block, MovieRead& read) {
    ReadFields(*this, block);
    read.g_nTrackCount = 0;
    std::size_t at = kChildrenAt;
    while (at + 8 <= block.length) {
        const std::uint32_t code = block.CodeAt(at);
        const bool known = code == FourCC("mvhd") || code == FourCC("trak");
        const auto child = known ? block.FittingChild(at) : std::nullopt;
        if (!child) {
            ++at;
            continue;
        }
        if (code == FourCC("mvhd")) {
            mvhd = std::make_shared<CMvhd>(*child);
        } else {
            auto track = std::make_unique<CTrak>(*child, read);
            if (track->mdia == nullptr) {
                return;  // settled: the tracks behind it are never looked at
            }
            tracks.push_back(std::move(track));
            ++read.g_nTrackCount;
        }
        at += child->length;
    }
}

std::unique_ptr<CMoov> CMoov::CreateMoov(const CAtomCreationRequest& videoRequest,
                                         const CAtomCreationRequest& audioRequest) {
    if (tracks.empty()) {
        return nullptr;
    }
    auto made = std::make_unique<CMoov>();
    made->type = type;
    made->mvhd = mvhd;
    made->size = (mvhd != nullptr ? mvhd->size : 0) + BytesOfFields(*this);
    // The rates are those of the first track of each kind, also for a second track. Settled.
    const double videoRate = GetVideoSampleRate();
    const double audioRate = GetAudioSampleRate();
    std::uint64_t imageBytes = made->size;
    for (const auto& track : tracks) {
        if (track->HasTrackType(kVideoTrack) != nullptr) {
            imageBytes += made->AddRebuilt(*track, videoRequest, videoRate, true);
        } else if (track->HasTrackType(kAudioTrack) != nullptr) {
            imageBytes += made->AddRebuilt(*track, audioRequest, audioRate, false);
        }
        if (imageBytes > std::numeric_limits<std::uint32_t>::max()) {
            return nullptr;
        }
    }
    return made;
}

// The movie's duration is that of the last video track; a sound track cannot lengthen it. That is
// settled. Gives the bytes of the track's image.
std::size_t CMoov::AddRebuilt(const CTrak& reference, const CAtomCreationRequest& request,
                              double sampleRate, bool setsMovieDuration) {
    auto track = reference.Create(request);
    const double seconds = static_cast<double>(track->sampleCount) / sampleRate;
    const std::uint32_t movieTimescale = mvhd != nullptr ? mvhd->timescale : 0;
    const std::uint32_t duration = TruncateToLow32(seconds * static_cast<double>(movieTimescale));
    if (setsMovieDuration && mvhd != nullptr) {
        mvhd->duration = duration;
    }
    track->SetDuration(duration);
    size += track->size;
    tracks.push_back(std::move(track));
    return tracks.back()->data.size();
}

Result<void> CMoov::WriteMoov(MoovSink& sink) {
    Result<void> outcome;
    const auto note = [&outcome](Result<void> step) {
        if (outcome && !step) {
            outcome = std::move(step);
        }
    };
    ByteVector head;
    AppendFields(head, *this);
    const ByteView headView = head;
    note(sink.Append(headView.first(4)));
    note(sink.Append(headView.subspan(4)));
    if (mvhd != nullptr) {
        mvhd->data = mvhd->Serialize();
        note(sink.Append(mvhd->data));
    }
    note(sink.Flush());
    for (const auto& track : tracks) {
        note(sink.Append(track->data));
    }
    note(sink.Flush());
    return outcome;
}

std::string_view CMoov::PlayerArgsSuffix(std::string_view videoCoderFormat,
                                         std::string_view audioCoderFormat) {
    const bool heavy = SameTag(videoCoderFormat, kHvc1VideoCoderFormat) ||
                       SameTag(audioCoderFormat, kMp4aAudioCoderFormat);
    return heavy ? "$$1" : "$$0";
}

const CTrak* CMoov::GetTrack(std::string_view trackType) const {
    for (const auto& track : tracks) {
        if (const CTrak* found = track->HasTrackType(trackType)) {
            return found;
        }
    }
    return nullptr;
}

double CMoov::GetVideoSampleRate() const {
    const CTrak* track = GetTrack(kVideoTrack);
    return track != nullptr ? track->sampleRate : 0.0;
}

double CMoov::GetAudioSampleRate() const {
    const CTrak* track = GetTrack(kAudioTrack);
    return track != nullptr ? track->sampleRate : 0.0;
}

std::uint32_t CMoov::GetVideoTimescale() const {
    const CTrak* track = GetTrack(kVideoTrack);
    return track != nullptr ? track->timescale : 0;
}

std::uint32_t CMoov::GetAudioTimescale() const {
    const CTrak* track = GetTrack(kAudioTrack);
    return track != nullptr ? track->timescale : 0;
}

const CStsd* CMoov::VideoDescription() const {
    const CTrak* track = GetTrack(kVideoTrack);
    if (track == nullptr || (!SameTag(track->coderFormat, kAvc1VideoCoderFormat) &&
                             !SameTag(track->coderFormat, kHvc1VideoCoderFormat))) {
        return nullptr;
    }
    return track->SampleDescription();
}

AnySps CMoov::GetSPS() const {
    const CStsd* description = VideoDescription();
    return description != nullptr ? description->GetSPS() : AnySps();
}

AnyPps CMoov::GetPPS() const {
    const CStsd* description = VideoDescription();
    return description != nullptr ? description->GetPPS() : AnyPps();
}

std::shared_ptr<const CVPS> CMoov::GetVPS() const {
    const CStsd* description = VideoDescription();
    return description != nullptr ? description->GetVPS() : nullptr;
}

std::optional<DecoderSpecifiInfoWrapper> CMoov::GetAudioSpecificInfo() const {
    const CTrak* track = GetTrack(kAudioTrack);
    if (track == nullptr || !SameTag(track->coderFormat, kMp4aAudioCoderFormat)) {
        return std::nullopt;
    }
    const CStsd* description = track->SampleDescription();
    return description != nullptr ? description->GetAudioSpecificInfo() : std::nullopt;
}

}  // namespace clipfix
