#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "atoms/atom_block.h"
#include "atoms/creation_request.h"
#include "atoms/header_atoms.h"
#include "atoms/minf.h"
#include "atoms/movie_read.h"
#include "atoms/small_containers.h"
#include "base/bytes.h"

namespace clipfix {

// Samples in one second of a media whose time scale and duration are given in ticks. It may be
// infinite or no number at all.
[[nodiscard]] double SamplesPerSecond(std::uint32_t timescale, std::uint32_t duration,
                                      std::uint32_t sampleCount);

// Media (ISO/IEC 14496-12, 8.4.1).
struct CMdia {
    std::uint32_t size = 0;
    std::uint32_t type = 0;
    std::string mediaType;    // "VIDEO_MEDIA", "AUDIO_MEDIA" or "UNKNOWN_MEDIA"
    double sampleRate = 0.0;  // samples in one second, never rounded; 0 without a table of sizes

    std::unique_ptr<CHdlr> hdlr;  // null when absent
    std::unique_ptr<CMinf> minf;  // null as well when it lacks a sound `stbl`
    CMdhd mdhd;                   // the child at byte 8, whatever its code
    std::unique_ptr<CUdta> udta;  // null when absent

    CMdia() = default;
    CMdia(const AtomBlock& block, MovieRead& read);

    // `kind` is "VIDEO_REQUEST" or "AUDIO_REQUEST". Only for one that has a `minf`.
    [[nodiscard]] std::unique_ptr<CMdia> Create(std::string_view kind,
                                                const CAtomCreationRequest& request) const;

    void AppendImage(ByteVector& image) const;

    template <typename Self, typename Visitor>
    static constexpr void Fields(Self& self, Visitor& visit) {
        visit(self.size, self.type);
    }

  private:
    void ReadChildren(const AtomBlock& block, MovieRead& read);
    void SetMediaType();
};

}  // namespace clipfix
