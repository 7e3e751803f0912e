// Which of many segments blocks a triangle: the plain test on many segments at a time.
#pragma once

#include <cstddef>

#include "simplify/triangle_test.hpp"

namespace korvex::simplify {

// Sixteen segments, each from its first point P to its second point Q. An empty place holds NaN
// throughout: it never blocks.
struct alignas(64) SegmentBlock {
  static constexpr std::size_t kSegments = 16;
  float px[kSegments];
  float py[kSegments];
  float pz[kSegments];
  float qx[kSegments];
  float qy[kSegments];
  float qz[kSegments];
};

// A triangle to test segments against. `normal` is e1 x e2, rounded as the plain test rounds it.
// `slack` bounds, for every segment of the chain, how far rounding and the test's tolerances
// together can move the heights normal . (point - a) of its ends: a segment that is certain to miss
// is then told from its heights alone. NaN: no segment is, and all are tested in full.
struct ScannedTriangle {
  ScannedTriangle(const fPointR3& a, const fPointR3& b, const fPointR3& c,
                  float largest_coordinate);

  fPointR3 a;
  Vector e1;
  Vector e2;
  Vector normal;
  float offset;  // -(normal . a)
  float slack;
};

// Slots [below_first, below_end) and [above_first, above_end), slot k being place k % 16 of block
// k / 16.
struct SlotRanges {
  std::size_t below_first;
  std::size_t below_end;
  std::size_t above_first;
  std::size_t above_end;
};

constexpr std::size_t kNoSlot = static_cast<std::size_t>(-1);

// The slot of a segment within the ranges for which the plain test is not 0, or kNoSlot when there
// is none. Which one of several is left open. Cost: linear in the size of the ranges.
std::size_t find_blocker(const SegmentBlock* blocks, const ScannedTriangle& triangle,
                         const SlotRanges& ranges);

}  // namespace korvex::simplify
