// The Alexander polynomial of a knot.
//
// Convention: D(t) = D(1/t), D(1) = 1; the trefoil has t - 1 + 1/t. Written as coefficients it is
// shifted to begin with the constant term and its sign is chosen so that that term is positive, as
// knot tables do: 1 -1 1.
#pragma once

#include <cstdint>
#include <span>

#include "korvex/diagram.hpp"
#include "korvex/export.hpp"

namespace korvex {

// D(t) D(1/t) modulo the prime 2^61 - 1 at one fixed t: the same for every diagram of a knot and
// for its mirror image, 1 for the unknot, and another for another Alexander polynomial but for
// chance of about 2^-50. For n crossings and a diagram that b arcs generate (b is 2 to 10 for
// simplified diagrams of up to 100 crossings) O(n b + b^3). Any thread.
//
// Source: colouring moves, R. Blair, A. Kjuchukova, R. Velazquez and P. Villanueva, Comm. Anal.
// Geom. 28, 105 (2020), applied to the Alexander quandle, D. Joyce, J. Pure Appl. Algebra 23, 37
// (1982).
KORVEX_API std::uint64_t alexander_key(const Diagram& diagram);
KORVEX_API std::uint64_t alexander_key(const GaussCode& closed);

// The key of a polynomial with the given coefficients, lowest power first.
KORVEX_API std::uint64_t alexander_key_of(std::span<const std::int64_t> coefficients);

}  // namespace korvex
