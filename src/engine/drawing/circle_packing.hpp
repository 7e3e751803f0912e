// Circles in a disc that touch as the vertices of a triangulation meet.
#pragma once

#include <complex>
#include <cstddef>
#include <span>
#include <vector>

#include "engine/drawing/triangulation.hpp"
#include "korvex/run.hpp"

namespace korvex {

struct PackedCircle {
  std::complex<double> centre;
  double radius = 0;
};

// A circle for each vertex of a triangulated disc without double edges, in the disc of radius 1
// about the origin, to about 1e-9 of its radius: circles of neighbours touch from outside, those of
// the rim touch the disc's circle from inside, and no two overlap. Seen as hyperbolic circles of
// the disc there is one solution but for its position: here the hyperbolic centres of the circles
// in `balanced`, or the places where they touch the rim, have their mean in the origin. Throws
// Error(kCancelled).
std::vector<PackedCircle> packed_circles(std::span<const Flower> flowers,
                                         std::span<const std::size_t> balanced, const Run& run);

}  // namespace korvex
