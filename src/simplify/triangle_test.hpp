// The plain test of one segment against one triangle, in single precision.
#pragma once

#include "korvex.h"

namespace korvex::simplify {

// Bounds of the triangle's and the segment's own coordinates.
constexpr float kTolerance = 1e-5F;
constexpr float kBelowOne = 0.99999F;
constexpr float kAboveOne = 1.00001F;

struct Vector {
  float x;
  float y;
  float z;
};

inline Vector difference(const fPointR3& a, const fPointR3& b) {
  return {a.x - b.x, a.y - b.y, a.z - b.z};
}

inline Vector cross(const Vector& a, const Vector& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

inline float dot(const Vector& a, const Vector& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

inline Vector quotient(const Vector& a, float divisor) {
  return {a.x / divisor, a.y / divisor, a.z / divisor};
}

// (u, v) place the meeting point in the triangle, along its two sides from A; w along the segment.
inline int place(float u, float v, float w) {
  const float s = u + v;
  const auto inside = [](float c) { return kTolerance <= c && c <= kBelowOne; };
  const auto at_zero = [](float c) { return -kTolerance < c && c < kTolerance; };
  const auto at_one = [](float c) { return kBelowOne < c && c < kAboveOne; };
  const auto within = [](float c) { return -kTolerance < c && c < kAboveOne; };
  if (inside(w) && inside(u) && inside(v) && s <= kBelowOne) return 1;
  if (at_zero(u) && within(v) && within(w)) return 2;
  if (at_zero(v) && within(u) && within(w)) return 2;
  if (at_one(s) && within(u) && within(v) && within(w)) return 2;
  const bool in_triangle = u > -kTolerance && v > -kTolerance && s < kAboveOne;
  if (at_zero(w) && in_triangle) return 2;
  if (at_one(w) && in_triangle) return 2;
  return 0;
}

// How the segment (p, q) meets the triangle (a, b, c): 0, 1 or 2, as `intersection`.
inline int meet(const fPointR3& a, const fPointR3& b, const fPointR3& c, const fPointR3& p,
                const fPointR3& q) {
  const Vector e1 = difference(b, a);
  const Vector e2 = difference(c, a);
  const Vector d = difference(p, q);
  const Vector r = difference(p, a);
  const Vector e2_d = cross(e2, d);
  const float determinant = dot(e1, e2_d);
  if (determinant == 0) return 1;
  const float u = dot(r, quotient(e2_d, determinant));
  const float v = dot(r, quotient(cross(d, e1), determinant));
  const float w = dot(r, quotient(cross(e1, e2), determinant));
  return place(u, v, w);
}

}  // namespace korvex::simplify
