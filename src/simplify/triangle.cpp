#include <algorithm>
#include <cmath>
#include <limits>

#include "simplify/segment_scan.hpp"

namespace korvex::simplify {

namespace {

float largest_component(const Vector& v) {
  return std::max({std::fabs(v.x), std::fabs(v.y), std::fabs(v.z)});
}

// With m the product of the largest components of e1, e2 and any point, and one rounding 2^-24: the
// height of an end is off by at most 44 roundings of m, the plain test's determinant from the
// difference of the two heights by 104, and its w times the determinant from the first height by
// 108; the tolerance adds 1e-5 of the determinant, which is at most 12 m. 2^-12 m is more than all
// of these together. The least slack keeps underflow out; beyond the limit of coordinates, overflow
// is possible and nothing is certain.
float height_slack(const Vector& e1, const Vector& e2, float largest_coordinate) {
  constexpr float kLargest = 1e9F;
  constexpr float kLeast = 1e-30F;
  if (!(largest_coordinate <= kLargest)) return std::numeric_limits<float>::quiet_NaN();
  const float m = largest_component(e1) * largest_component(e2) * largest_coordinate;
  return std::max(m * 0x1p-12F, kLeast);
}

}  // namespace

ScannedTriangle::ScannedTriangle(const fPointR3& a_, const fPointR3& b, const fPointR3& c,
                                 float largest_coordinate)
    : a(a_),
      e1(difference(b, a_)),
      e2(difference(c, a_)),
      normal(cross(e1, e2)),
      offset(-dot(normal, {a_.x, a_.y, a_.z})),
      slack(height_slack(e1, e2, largest_coordinate)) {}

}  // namespace korvex::simplify
