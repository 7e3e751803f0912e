// Rings of known knot type, made by formula.
//
// Conventions. A ring does not repeat its first atom at its end; ids run from 1. A crossing is
// right-handed (positive) when the upper strand reaches the lower one by a counter-clockwise turn
// of less than 180 degrees; a right-handed trefoil has three of them. The knot table names a knot
// up to its mirror image.
#pragma once

#include <string>
#include <vector>

#include "support/chains.hpp"

namespace support {

// The closure of a braid of `strands` strands that run upwards side by side. +i in `word`: the
// strand in place i (from 1) passes over its right neighbour into place i + 1, a right-handed
// crossing; -i is its inverse. The closing arcs go round on the right. Strands are 1 apart; every
// atom stands up to 0.05 aside along each axis, so that no two edges are in one line.
Chain braid_closure(int strands, const std::vector<int>& word);

Chain unknot(int atoms = 30);  // a circle with waves along its axis
Chain trefoil_right();
Chain trefoil_left();
Chain figure_eight_polygon();
Chain cinquefoil_right();

// The connected sum: each ring is opened at one of its atoms farthest along x (`a` forwards, `b`
// backwards), and two edges join them.
Chain connected_sum(const Chain& a, const Chain& b);

struct KnownKnot {
  std::string name;               // the field's name, composites with "#"
  int ordinal;                    // the table's, 0..38, or 39 for a knot that it does not hold
  std::vector<int> coefficients;  // Alexander polynomial, lowest power first, constant term > 0
  Chain ring;
};

// A ring for every entry of the knot table, both knots of the entries that stand for two, and some
// that the table does not hold.
std::vector<KnownKnot> known_knots();

// The same ring, looked at as different input: turned, reversed, begun elsewhere, every edge cut.
struct Reshaped {
  std::string how;
  Chain ring;
};
std::vector<Reshaped> reshaped(const Chain& ring, std::uint64_t seed);

}  // namespace support
