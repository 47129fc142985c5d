#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "atoms/atom_block.h"
#include "atoms/creation_request.h"
#include "atoms/header_atoms.h"
#include "atoms/mdia.h"
#include "atoms/movie_read.h"
#include "atoms/small_containers.h"
#include "base/bytes.h"

namespace clipfix {

// One track (ISO/IEC 14496-12, 8.3.1).
struct CTrak {
    std::uint32_t size = 0;
    std::uint32_t type = 0;
    std::uint32_t timescale = 0;       // ticks in one second of the media
    std::uint32_t mediaDuration = 0;   // ticks of the media's time scale
    std::uint32_t sampleCount = 0;     // as the table of sizes counts them
    std::uint32_t sampleDuration = 0;  // of the first sample, ticks of the media's time scale
    std::uint32_t trackDuration = 0;   // ticks of the movie's time scale
    double sampleRate = 0.0;           // samples in one second; a whole number for `sowt` sound
    std::string trackType;             // "VIDEO_TRACK", "AUDIO_TRACK" or "UNKNOWN_TRACK"
    std::string coderFormat;           // that of the sample description
    AnySampleEntry sampleEntry;        // the first entry of the sample description
    ByteVector data;                   // the image of the whole track, once SetDuration has run

    std::unique_ptr<CEdts> edts;  // null when absent
    std::unique_ptr<CMdia> mdia;  // null when absent or when it lacks a sound `minf`
    std::unique_ptr<CUdta> udta;  // null when absent
    // One object in the reference tree and the repaired one: a change shows in both.
    std::shared_ptr<CTkhd> tkhd;

    CTrak() = default;
    CTrak(const AtomBlock& block, MovieRead& read);

    // The repaired track that takes the place of this one. Only for one that has a `mdia`.
    [[nodiscard]] std::unique_ptr<CTrak> Create(const CAtomCreationRequest& request) const;

    // Finishes a rebuilt track: its duration in ticks of the movie's time scale, its edit list and
    // its image. Called once.
    void SetDuration(std::uint32_t duration);

    // Tells the kind of the track, and takes over the numbers that go with it.
    void ClassifyTrack();
    // Takes over all derived members from the atoms below. A table that is absent counts as empty.
    void UpdateMediaInfo();
    // This track if it is of the kind, else null.
    [[nodiscard]] const CTrak* HasTrackType(std::string_view kind) const;

    // The sample description, or null.
    [[nodiscard]] const CStsd* SampleDescription() const;

    [[nodiscard]] ByteVector Serialize() const;

    template <typename Self, typename Visitor>
    static constexpr void Fields(Self& self, Visitor& visit) {
        visit(self.size, self.type);
    }

  private:
    void ReadChildren(const AtomBlock& block, const AtomBlock& header, MovieRead& read);
    void TakeMdia(const AtomBlock& child, MovieRead& read);
};

}  // namespace clipfix
