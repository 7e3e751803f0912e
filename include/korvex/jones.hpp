// The Jones polynomial of a knot.
//
// Convention: t^-1 V(L+) - t V(L-) = (t^1/2 - t^-1/2) V(L0) and V(unknot) = 1, so that the
// right-handed trefoil has t + t^3 - t^4, and the mirror image of a knot has 1/t in place of t. It
// is the HOMFLY-PT polynomial at a = 1/t, z = t^1/2 - t^-1/2.
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

struct JonesTerm {
  int exponent;
  std::int64_t coefficient;  // not 0

  friend bool operator==(const JonesTerm&, const JonesTerm&) = default;
};

// Terms by rising exponent, each once.
using JonesPolynomial = std::vector<JonesTerm>;

// The polynomial of the diagram's knot, exact; nothing where the diagram is too large: where taking
// it in crossing by crossing needs a frontier of more than 24 strand ends, where a coefficient does
// not fit into 64 bits, or beyond 4 million crossings. Time is in proportion to crossings, terms of
// the polynomial and the Catalan number of w/2 for a frontier of w ends. Simplify diagrams first.
// Of `run` it asks only whether to stop: Error(kCancelled). Any thread.
//
// Source: state sum of L. H. Kauffman, Topology 26, 395 (1987), behind a frontier.
KORVEX_API std::optional<JonesPolynomial> jones(const Diagram& diagram, const Run& run = {});

KORVEX_API JonesPolynomial mirror(const JonesPolynomial& polynomial);
// Throws Error(kInvalidArgument) where a coefficient leaves 64 bits.
KORVEX_API JonesPolynomial product(const JonesPolynomial& p, const JonesPolynomial& q);

// Terms as exponent:coefficient, separated by blanks.
KORVEX_API std::string text_of(const JonesPolynomial& polynomial);
// The polynomial so written; throws Error(kBadInput) for other text.
KORVEX_API JonesPolynomial jones_of_text(std::string_view text);

}  // namespace korvex
