// Triangle elimination that takes the point whose removal makes the shortest edge, always.
//
// Source: K. Koniaris and M. Muthukumar, Phys. Rev. Lett. 66, 2211 (1991).
#pragma once

#include <cstdint>
#include <vector>

#include "korvex/geometry.hpp"

namespace korvex {

// Indices, rising, of the points that are left of a chain, whose last point is joined to the first
// when `closed`. Of the points that can go always the one goes next whose removal makes the
// shortest edge (of equals, the first by x, y, z and index), until none can. A point can go where
// no other edge meets the triangle that it spans with its neighbours, or the tip of a spike; points
// that repeat a neighbour or lie between their neighbours always can. An open chain keeps its ends,
// and of distinct points at least 2 are left, of closed ones 3. Coordinates must be finite and at
// most 1 in magnitude. About O(n log n) for chains of short edges, O(n^3) at worst.
std::vector<std::uint32_t> eliminate_shortest_first(std::vector<Point> points, bool closed);

}  // namespace korvex
