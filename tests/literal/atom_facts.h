#pragma once

#include <map>
#include <string>

#include "atoms/moov.h"
#include "literal/literal_atoms.h"

namespace clipfix::test {

// What there is to say of a movie tree or a table, by name, so that a difference between the
// program and the model tells by itself where it is.
using Facts = std::map<std::string, std::string>;

// Of a tree: its atoms, and what it answers to the rest of the program.
[[nodiscard]] Facts FactsOf(const CMoov& moov);
[[nodiscard]] Facts FactsOf(const LiteralMoov& moov);

[[nodiscard]] Facts FactsOf(const LiteralTable& table);
[[nodiscard]] Facts FactsOf(const CStts& table);
[[nodiscard]] Facts FactsOf(const CStsc& table);
[[nodiscard]] Facts FactsOf(const CStsz& table);
[[nodiscard]] Facts FactsOf(const CStco& table);
[[nodiscard]] Facts FactsOf(const CStss& table);
[[nodiscard]] Facts FactsOf(const CCtts& table);

// The facts in which the two lists differ, one on each line; empty when there are none.
[[nodiscard]] std::string Differences(const Facts& program, const Facts& model);

}  // namespace clipfix::test
