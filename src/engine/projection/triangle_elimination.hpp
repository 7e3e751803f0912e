// Triangle elimination: a chain loses points without passing through itself or an obstacle.
//
// A point goes when the triangle it makes with its neighbours is pierced by nothing. Decisions are
// taken in double precision with a bound on their error, and a triangle that might be pierced
// stays: the knot type never changes.
//
// Source: K. Koniaris and M. Muthukumar, Phys. Rev. Lett. 66, 2211 (1991).
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "korvex/geometry.hpp"
#include "korvex/run.hpp"

namespace korvex {

// A straight segment from one point to another.
struct Line {
  Point from;
  Point to;
};

// False only if `line` certainly has no point in common with the triangle (p, q, r) but p, r or
// the end it shares with them. A line that ends in q counts as piercing. `extent` bounds the
// distance of any two of the five points.
bool may_pierce(const Line& line, const Point& p, const Point& q, const Point& r, double extent);

// Indices, rising, of points of an open chain whose polygon is isotopic to the chain with its ends
// fixed and all obstacles in place. The ends are kept. Obstacles may begin or end in ends of the
// chain. About O(n log n) for n points where few segments are near to one, besides n looks at all
// obstacles. Asks before each point whether to stop.
std::vector<std::int32_t> eliminate_open(std::span<const Point> chain,
                                         std::span<const Line> obstacles, const Run& run = {});

// The same for a closed ring, the last point of which is joined to the first: at least 3 points are
// kept of 3 or more.
std::vector<std::int32_t> eliminate_ring(std::span<const Point> ring, const Run& run = {});

}  // namespace korvex
