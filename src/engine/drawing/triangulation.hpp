// A diagram as a triangulated disc, whose vertices become circles.
#pragma once

#include <cstddef>
#include <vector>

#include "korvex/gauss_code.hpp"

namespace korvex {

// The vertices about a vertex, counter-clockwise; neighbours follow one another by a triangle. Of a
// vertex on the rim they begin and end with its neighbours along the rim.
struct Flower {
  std::vector<std::size_t> petals;
  bool on_rim = false;
};

// The curve of a diagram lies on edges of a triangulated disc without double edges: every crossing
// is a vertex, every strand has one or more of its own, and so has every face but the outer one,
// which is what lies outside of the disc.
struct DiagramTriangulation {
  std::vector<Flower> flowers;      // by vertex
  std::vector<std::size_t> course;  // vertices that the curve runs through, from passage 0 on
  std::vector<std::size_t> places;  // where in `course` each passage is
};

// Of a code of at least one crossing, of a closed curve, with `outer` of its plane diagram's faces
// outside. O(length log length).
DiagramTriangulation triangulated(const GaussCode& code, std::size_t outer);

}  // namespace korvex
