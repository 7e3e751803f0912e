// Points and vectors of space, as this room needs them.
#pragma once

#include <cmath>

#include "preprocess.h"

namespace preprocess {

struct Vec3 {
  double x;
  double y;
  double z;

  friend bool operator==(const Vec3&, const Vec3&) = default;
};

inline Vec3 operator+(Vec3 a, Vec3 b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
inline Vec3 operator-(Vec3 a, Vec3 b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
inline Vec3 operator*(double s, Vec3 a) { return {s * a.x, s * a.y, s * a.z}; }

inline double dot(Vec3 a, Vec3 b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

inline Vec3 cross(Vec3 a, Vec3 b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

// Euclidean length, without overflow or underflow on the way.
inline double length(Vec3 a) { return std::hypot(a.x, a.y, a.z); }

inline bool is_finite(Vec3 a) {
  return std::isfinite(a.x) && std::isfinite(a.y) && std::isfinite(a.z);
}

inline Vec3 position(const ChainAtom& atom) { return {atom.x, atom.y, atom.z}; }

inline bool all_finite(const std::vector<ChainAtom>& chain) {
  for (const ChainAtom& atom : chain) {
    if (!is_finite(position(atom))) return false;
  }
  return true;
}

}  // namespace preprocess
