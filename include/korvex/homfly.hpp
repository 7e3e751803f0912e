// The HOMFLY-PT polynomial of a knot.
//
// Convention: a P(L+) - a^-1 P(L-) = z P(L0) and P(unknot) = 1, so that the right-handed trefoil
// has 2 a^-2 - a^-4 + z^2 a^-2, and the mirror image of a knot has a^-1 in place of a.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "korvex/diagram.hpp"
#include "korvex/export.hpp"
#include "korvex/run.hpp"

namespace korvex {

struct HomflyTerm {
  int a;  // exponents
  int z;
  std::int64_t coefficient;  // not 0

  friend bool operator==(const HomflyTerm&, const HomflyTerm&) = default;
};

// Terms by exponent of a, then of z, each once.
using HomflyPolynomial = std::vector<HomflyTerm>;

// The polynomial of the diagram's knot, exact; nothing where the diagram is too large: where taking
// it in crossing by crossing needs a frontier of more than 16 strand ends, where a coefficient does
// not fit into 64 bits, or beyond 4 million crossings. Time is in proportion to crossings, terms of
// the polynomial and (w/2)! for a frontier of w ends: well below a millisecond for 12 crossings.
// Simplify diagrams first. Of `run` it asks only whether to stop: Error(kCancelled). Any thread.
//
// Source: skein relation, P. Freyd et al., Bull. Amer. Math. Soc. 12, 239 (1985), J. H. Przytycki
// and P. Traczyk, Kobe J. Math. 4, 115 (1988); summed over layered tangles behind a frontier as B.
// Burton, SoCG 2018, LIPIcs 99, 18, does over a tree decomposition.
KORVEX_API std::optional<HomflyPolynomial> homfly(const Diagram& diagram, const Run& run = {});

KORVEX_API HomflyPolynomial mirror(const HomflyPolynomial& polynomial);
// Throws Error(kInvalidArgument) where a coefficient leaves 64 bits.
KORVEX_API HomflyPolynomial product(const HomflyPolynomial& p, const HomflyPolynomial& q);

// Terms as (exponent of a,exponent of z):coefficient, separated by blanks.
KORVEX_API std::string text_of(const HomflyPolynomial& polynomial);
// The polynomial so written; throws Error(kBadInput) for other text.
KORVEX_API HomflyPolynomial homfly_of_text(std::string_view text);

}  // namespace korvex
