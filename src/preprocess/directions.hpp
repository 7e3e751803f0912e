// The 60 directions of projection.
#pragma once

#include <array>

#include "preprocess/points.hpp"

namespace preprocess {

inline constexpr int kDirections = 60;

// An orthonormal right-handed frame: `right` and `up` span the plane of projection, `viewer` points
// from the plane to the viewer.
struct ViewFrame {
  Point right;
  Point up;
  Point viewer;
};

// The frames of the 60 directions: the vertices of a truncated icosahedron, turned by one fixed
// generic rotation. Directions 0 to 29 hold no antipodal pair; direction 30 + k is opposite to k.
// Made at the first call, from additions, products, quotients and square roots alone, so that every
// machine with IEEE arithmetic has the same bits. Safe from any number of threads.
const std::array<ViewFrame, kDirections>& view_frames();

// The place of any direction number in the table: the residue modulo 60, 0 to 59.
inline int wrap_direction(int direction) {
  const int residue = direction % kDirections;
  return residue < 0 ? residue + kDirections : residue;
}

}  // namespace preprocess
