#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <variant>

#include "atoms/atom_block.h"
#include "atoms/creation_request.h"
#include "atoms/header_atoms.h"
#include "atoms/movie_read.h"
#include "atoms/small_containers.h"
#include "atoms/stbl.h"
#include "base/bytes.h"

namespace clipfix {

// Media information (ISO/IEC 14496-12, 8.4.4; QuickTime File Format, "Media Information Atoms").
struct CMinf {
    std::uint32_t size = 0;
    std::uint32_t type = 0;
    std::string mediaType;  // "VIDEO_MEDIA", "AUDIO_MEDIA", "UNKNOWN_MEDIA", or empty

    // What was read. Null when absent.
    std::unique_ptr<CVmhd> vmhd;
    std::unique_ptr<CSmhd> smhd;
    std::unique_ptr<CGmhd> gmhd;
    std::unique_ptr<CGmin> gmin;
    // Of both kinds.
    std::unique_ptr<CHdlr> hdlr;
    std::unique_ptr<CDinf> dinf;
    std::unique_ptr<CStbl> stbl;  // null as well when its children do not add up to its size
    // The media header of a rebuilt one.
    std::variant<std::monostate, CVmhd, CSmhd> mediaHeader;

    CMinf() = default;
    CMinf(const AtomBlock& block, MovieRead& read);

    // `kind` is "VIDEO_REQUEST" or "AUDIO_REQUEST". Only for one that has a `stbl`.
    [[nodiscard]] std::unique_ptr<CMinf> Create(std::string_view kind,
                                                const CAtomCreationRequest& request) const;

    void AppendImage(ByteVector& image) const;

    template <typename Self, typename Visitor>
    static constexpr void Fields(Self& self, Visitor& visit) {
        visit(self.size, self.type);
    }

  private:
    std::size_t ReadMediaHeader(const AtomBlock& block);
    void TakeStbl(const AtomBlock& child, MovieRead& read);
};

}  // namespace clipfix
