// Certificates that a triangle and an edge do not meet.
//
// A triangle may be taken out of a chain only when no other edge meets it. The functions below
// answer true only when that is certain: every sign they rely on is that of the exact value, shown
// by a bound on the rounding error of its evaluation (J. R. Shewchuk, Discrete Comput. Geom. 18,
// 305 (1997)). They answer false when the two meet, and also when rounding leaves it open.
//
// 1. Touching in one point, at an end, at a corner or along an edge, is meeting.
// 2. Degenerate triangles (two corners or all three on one line) and edges of zero length are
//    allowed: they are the segment or point that they look like.
// 3. For coordinates whose differences and products are exact (lattices, small integers) the answer
//    is exact: true whenever the two do not meet.
// 4. The answer does not change when the triangle's first and third corner change places, nor when
//    the edge's ends do.
// 5. Coordinates must be finite and at most 1 in magnitude, so that what underflows is far below
//    the bounds.
#pragma once

#include <algorithm>

#include "preprocess/vec3.hpp"

namespace preprocess {

// The corners of a triangle in chain order.
struct Triangle {
  Vec3 before;
  Vec3 tip;
  Vec3 after;
};

// True when the triangle and the closed segment from `from` to `to` certainly have no common point.
bool certainly_apart(const Triangle& triangle, Vec3 from, Vec3 to);

// For an edge that begins at a corner of the triangle: true when it certainly meets the triangle
// nowhere else. `other1` and `other2` are the other two corners, `to` is the edge's other end.
bool certainly_leaves(Vec3 corner, Vec3 other1, Vec3 other2, Vec3 to);

// Where three consecutive points of a chain lie on one line, decided exactly.
enum class Bend {
  kProper,    // not on one line, or not certainly so
  kStraight,  // the middle point lies between the others or coincides with one of them
  kSpike,     // on one line, and the chain turns back at the middle point
};
Bend bend_at(const Triangle& triangle);

// Of points on one line: `middle` lies between `a` and `b` or coincides with one of them.
inline bool lies_between(Vec3 a, Vec3 middle, Vec3 b) {
  const auto within = [](double u, double v, double w) {
    return std::min(u, w) <= v && v <= std::max(u, w);
  };
  return within(a.x, middle.x, b.x) && within(a.y, middle.y, b.y) && within(a.z, middle.z, b.z);
}

}  // namespace preprocess
