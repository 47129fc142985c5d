#include "moviefile/reference_check.h"

#include <cmath>
#include <variant>

#include "atoms/kind_tags.h"
#include "base/fourcc.h"

namespace clipfix {

namespace {

template <typename Set, typename Any>
std::shared_ptr<const Set> SetOf(const Any& any) {
    const auto* held = std::get_if<std::shared_ptr<const Set>>(&any);
    return held != nullptr ? *held : nullptr;
}

std::string KindOf(const CTrak& track) {
    if (SameTag(track.trackType, kVideoTrack)) {
        return "video";
    }
    return SameTag(track.trackType, kAudioTrack) ? "audio" : "other";
}

void DescribeEntry(const CVideoSampleDescriptionEntery& entry, TrackDescription& track) {
    track.width = entry.wt;
    track.height = entry.ht;
}

void DescribeEntry(const CAudioSampleDescriptionEntery& entry, TrackDescription& track) {
    constexpr unsigned kFractionBits = 16;  // the rate is 16.16 fixed point
    track.channels = entry.nchanel;
    track.sampleRate = entry.srate >> kFractionBits;
}

TrackDescription DescribeTrack(const CTrak& track) {
    TrackDescription made;
    made.kind = KindOf(track);
    made.timescale = track.timescale;
    made.sampleCount = track.sampleCount;
    made.duration = track.mediaDuration;
    made.samplesPerSecond = std::isfinite(track.sampleRate) ? track.sampleRate : 0.0;
    if (const CStsd* description = track.SampleDescription()) {
        made.nalLengthSize = description->GetNALLengthSize();
        // From the image of the description, so that a coder which nobody here knows is named too.
        constexpr std::size_t kFirstFormatAt = 20;
        const std::uint32_t format = ReadBig32(description->data, kFirstFormatAt);
        made.coder = format != 0 ? PrintableFourCC(format) : "";
    }
    std::visit(
        [&made](const auto& entry) {
            if constexpr (!std::is_same_v<std::decay_t<decltype(entry)>, std::monostate>) {
                DescribeEntry(*entry, made);
            }
        },
        track.sampleEntry);
    return made;
}

}  // namespace

std::optional<JobParameterSets> FindParameterSets(const GFile& movie, const JobState& state) {
    JobParameterSets sets;
    const AnySps sps = movie.GetSPS();
    const AnyPps pps = movie.GetPPS();
    if (SameTag(state.g_strVideoCoderFormat, kHvc1VideoCoderFormat)) {
        sets.sps265 = SetOf<SPS_265>(sps);
        sets.pps265 = SetOf<PPS_265>(pps);
        sets.vps = movie.GetVPS();
        const bool whole = sets.sps265 != nullptr && sets.pps265 != nullptr && sets.vps != nullptr;
        return whole ? std::optional(std::move(sets)) : std::nullopt;
    }
    sets.sps = SetOf<CSPS>(sps);
    sets.pps = SetOf<CPPS>(pps);
    const bool whole = sets.sps != nullptr && sets.pps != nullptr;
    return whole ? std::optional(std::move(sets)) : std::nullopt;
}

std::optional<ReferenceFault> FindReferenceFault(const GFile& movie, const JobState& state) {
    if (movie.pMoov == nullptr) {
        return ReferenceFault::NoMovie;
    }
    const std::string& coder = state.g_strVideoCoderFormat;
    if (!SameTag(coder, kAvc1VideoCoderFormat) && !SameTag(coder, kHvc1VideoCoderFormat)) {
        return ReferenceFault::UnknownVideo;
    }
    if (!FindParameterSets(movie, state)) {
        return ReferenceFault::NoParameterSets;
    }
    if (movie.GetNalLengthSize() == 0) {
        return ReferenceFault::VideoNotFirst;
    }
    return std::nullopt;
}

std::string_view SentenceOf(ReferenceFault fault) {
    switch (fault) {
        case ReferenceFault::NoMovie:
            return "no movie that can be read was found in it";
        case ReferenceFault::UnknownVideo:
            return "its video is neither H.264 (avc1) nor H.265 (hvc1)";
        case ReferenceFault::NoParameterSets:
            return "the description of its video lacks the parameter sets";
        case ReferenceFault::VideoNotFirst:
            return "its first track is not the video";
    }
    return "";
}

MovieDescription Describe(const GFile& movie) {
    MovieDescription made;
    if (movie.pFtyp) {
        made.brand = PrintableFourCC(movie.pFtyp->subtyp);
    }
    if (movie.pMoov == nullptr) {
        return made;
    }
    if (movie.pMoov->mvhd != nullptr) {
        made.timescale = movie.pMoov->mvhd->timescale;
        made.duration = movie.pMoov->mvhd->duration;
    }
    for (const auto& track : movie.pMoov->tracks) {
        made.tracks.push_back(DescribeTrack(*track));
    }
    return made;
}

}  // namespace clipfix
