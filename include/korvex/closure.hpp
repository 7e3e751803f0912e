// How the ends of an open chain are joined.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "korvex/directions.hpp"
#include "korvex/export.hpp"
#include "korvex/geometry.hpp"

namespace korvex {

enum class Closure {
  kRays,       // both ends to infinity in one direction: as many votes as directions
  kTwoPoints,  // each end to infinity in a direction of its own: as many votes as pairs
  kOut,        // both ends straight away from the centre of the chain: one vote
  kDirect,     // a straight segment from end to end: one vote
  kRing,       // the chain is closed already, its last point joined to its first: one vote
};

// Names as on the command line: rays, two-points, out, direct, ring.
KORVEX_API std::string_view name_of(Closure closure);
// Throws Error(kInvalidArgument) for another name.
KORVEX_API Closure closure_named(std::string_view name);

// True when the closure is drawn anew for every vote.
constexpr bool is_sampled(Closure closure) {
  return closure == Closure::kRays || closure == Closure::kTwoPoints;
}

// Directions, unit vectors, in which the first and the last point of a chain are led to infinity.
struct Ends {
  Point first;
  Point last;
};

// Directions for `count` votes by rays (both the same) or by two points. A lattice is one of
// `count` directions, rotated at random as (seed, block) fixes; the second ends of two points are
// another, in random order. Independent directions are those of trials block*count ... of the seed.
KORVEX_API std::vector<Ends> sampled_ends(Closure closure, Sampling sampling, std::size_t count,
                                          std::uint64_t seed, std::uint64_t block = 0);

}  // namespace korvex
