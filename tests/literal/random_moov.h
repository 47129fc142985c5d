#pragma once

#include <string>
#include <vector>

#include "base/bytes.h"
#include "literal/literal_atoms.h"
#include "literal/random_source.h"

namespace clipfix::test {

// An atom taken apart: the bytes behind its header, and the atoms behind those.
struct AtomNode {
    std::string code;
    ByteVector head;
    std::vector<AtomNode> children;

    [[nodiscard]] ByteVector Image() const;
};

// Takes a sound `moov` apart as far as its containers go.
[[nodiscard]] AtomNode TakeApart(ByteView atom);

// A `moov` that no camera wrote: tracks of all kinds, and tables with random contents.
[[nodiscard]] AtomNode RandomMoov(RandomSource& random);

// Changes a tree so that every size in it still adds up: atoms removed, doubled, moved, renamed,
// put around, entries of tables added, counts changed.
void ReshapeTree(AtomNode& moov, RandomSource& random);

// Damages the bytes: sizes of atoms, single bytes, the end.
void DamageBytes(ByteVector& moov, RandomSource& random);

// What an engine might hand over, and what none would.
[[nodiscard]] LiteralRequest RandomRequest(bool video, double referenceRate, RandomSource& random);

}  // namespace clipfix::test
