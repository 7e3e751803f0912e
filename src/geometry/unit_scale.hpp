// Chains of any size brought to one size, so that products of coordinates neither overflow nor
// lose digits below the smallest normal number.
#pragma once

#include <algorithm>
#include <cmath>
#include <span>

#include "korvex/geometry.hpp"

namespace korvex {

// A power of two that brings the extent of the points near 1 (of subnormal extent, nearer to it):
// scaling by it rounds nothing, and its inverse is finite.
inline double unit_scale(std::span<const Point> points) {
  double extent = 0;
  for (const Point& p : points) {
    const Point away = p - points[0];
    extent = std::max({extent, std::abs(away.x), std::abs(away.y), std::abs(away.z)});
  }
  constexpr int kLargestExponent = 1023;
  return extent > 0 ? std::scalbn(1.0, std::min(-std::ilogb(extent), kLargestExponent)) : 1;
}

// The largest distance of a point from the first.
inline double reach_of(std::span<const Point> points) {
  const double scale = unit_scale(points);
  double reach = 0;
  for (const Point& p : points) reach = std::max(reach, norm(scale * (p - points[0])));
  return reach / scale;
}

}  // namespace korvex
