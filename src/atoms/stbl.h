#pragma once

#include <cstdint>
#include <memory>

#include "atoms/atom_block.h"
#include "atoms/creation_request.h"
#include "atoms/movie_read.h"
#include "atoms/sample_descriptions.h"
#include "atoms/sample_tables.h"
#include "base/bytes.h"

namespace clipfix {

// The sample table (ISO/IEC 14496-12, 8.5.1). Of a reference it holds what was found; any pointer
// may be null. A rebuilt one holds every table but for what the reference lacks, some of them
// empty. Its image is made as part of its track's, from those of its tables.
struct CStbl {
    std::uint32_t size = 0;
    std::uint32_t type = 0;
    std::shared_ptr<CStsd> stsd;  // one object in the reference tree and the repaired one
    std::shared_ptr<CStts> stts;
    std::shared_ptr<CStss> stss;
    std::shared_ptr<CStsc> stsc;  // one object in both for `twos` sound
    std::shared_ptr<CStsz> stsz;
    std::shared_ptr<CStco> stco;
    std::shared_ptr<CCtts> ctts;  // one object in both where the repaired track keeps it

    CStbl() = default;
    // Reads the children, and adds the sizes of those that it met to `read.g_nStblChildBytes`,
    // which the parent judges.
    CStbl(const AtomBlock& block, MovieRead& read);

    // The tables of the repaired track: new ones of simple form, with the reference's description.
    [[nodiscard]] std::unique_ptr<CStbl> Create(const CAtomCreationRequest& request) const;

    // Samples as the table of sizes counts them; 0 without one.
    [[nodiscard]] std::uint32_t SampleCount() const {
        return stsz != nullptr ? stsz->numberOfEntries : 0;
    }

    void AppendImage(ByteVector& image) const;

    template <typename Self, typename Visitor>
    static constexpr void Fields(Self& self, Visitor& visit) {
        visit(self.size, self.type);
    }

  private:
    void TakeTable(const AtomBlock& child, std::uint32_t code, MovieRead& read);
    void MakeSizesAndRuns(const CStbl& reference, const CAtomCreationRequest& request);
    void MakeOptionalTables(const CStbl& reference, const CAtomCreationRequest& request);
};

}  // namespace clipfix
