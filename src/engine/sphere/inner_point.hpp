// Points well inside the faces of an arrangement.
#pragma once

#include <cstddef>
#include <vector>

#include "engine/sphere/arrangement.hpp"

namespace korvex {

struct InnerPoint {
  Point at;          // of length 1
  double clearance;  // the least distance to a piece of the boundary, in radians
  double weighted;   // the least product of such a distance and the weight of the piece's arc
};

// Points of a face, from the best to the worst by weighted clearance: middles of chords from its
// longest sides straight across it, and of chords across those. At least one for a face with sides
// that is wider than rounding, none for others. O(sides).
std::vector<InnerPoint> inner_points(const Arrangement& arrangement, std::size_t face);

// The distance of a point from a piece, in radians or as the chord where that is from an end of it.
double distance_to_piece(const Arrangement& arrangement, const Point& p, std::size_t piece);

}  // namespace korvex
