// What can be told of a closed chain of any length, whether or not its knot has a name.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "korvex/diagram.hpp"
#include "korvex/export.hpp"
#include "korvex/geometry.hpp"
#include "korvex/run.hpp"

namespace korvex {

struct DiagramSize {
  std::size_t crossings = 0;
  std::int64_t writhe = 0;  // positive crossings less negative ones

  friend bool operator==(const DiagramSize&, const DiagramSize&) = default;
};

struct KORVEX_API RingReport {
  DiagramSize projected;            // of the ring as it is, seen along one direction
  std::size_t points_left = 0;      // after triangle elimination
  Diagram simplified;               // of what was left, after all moves
  std::uint64_t alexander_key = 1;  // as alexander_key() has it: does not depend on the direction

  DiagramSize simplified_size() const { return {simplified.crossings(), simplified.writhe()}; }
};

// Examines the closed polygon through `points`, its last point joined to its first, along a random
// direction that run.seed fixes (one for all rings; where that view is degenerate it is turned as
// Diagram::of_polygon does). The ring loses points by triangle elimination, is projected again
// along that direction and its diagram simplified. For a random walk of n steps, which has about n
// log n crossings, the time grows as n^1.2 up to 100,000 steps, which take less than a second and
// 100 MB; a ring packed densely has about n^(4/3) crossings at least. Runs on one thread. Throws
// Error(kInvalidArgument) as Diagram::of_polygon does, Error(kCancelled) when stopped.
//
// Sources: K. Koniaris and M. Muthukumar, Phys. Rev. Lett. 66, 2211 (1991), for the elimination;
// docs/performance.md for the measured times.
KORVEX_API RingReport examine_ring(std::span<const Point> points, const Run& run = {});

}  // namespace korvex
