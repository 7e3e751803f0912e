// Triangle elimination: a chain loses points without passing through itself or an obstacle.
//
// A point goes when the triangle it makes with its neighbours is pierced by nothing. Decisions are
// taken in double precision with a bound on their error, and a triangle that might be pierced
// stays: the knot type never changes.
//
// Source: K. Koniaris and M. Muthukumar, Phys. Rev. Lett. 66, 2211 (1991).
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "geometry/predicates.hpp"
#include "korvex/geometry.hpp"

namespace korvex {

// Called before each look at a point; what it throws ends the elimination.
using BeforeEach = std::function<void()>;

// Indices, rising, of points of an open chain whose polygon is isotopic to the chain with its ends
// fixed and all obstacles in place. The ends are kept. Obstacles may begin or end in ends of the
// chain. About O(n log n) for n points where few segments are near to one, besides n looks at all
// obstacles.
std::vector<std::int32_t> eliminate_open(std::span<const Point> chain,
                                         std::span<const Line> obstacles,
                                         const BeforeEach& before_each = {});

// The same for a closed ring, the last point of which is joined to the first: at least 3 points are
// kept of 3 or more.
std::vector<std::int32_t> eliminate_ring(std::span<const Point> ring,
                                         const BeforeEach& before_each = {});

}  // namespace korvex
