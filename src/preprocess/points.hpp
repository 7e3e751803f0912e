// What this room needs of points besides korvex/geometry.hpp.
#pragma once

#include <cmath>
#include <vector>

#include "korvex/geometry.hpp"
#include "preprocess.h"

namespace preprocess {

using korvex::Point;

// Euclidean length, without overflow or underflow on the way.
inline double length(const Point& a) { return std::hypot(a.x, a.y, a.z); }

inline bool is_finite(const Point& a) {
  return std::isfinite(a.x) && std::isfinite(a.y) && std::isfinite(a.z);
}

inline Point position(const ChainAtom& atom) { return {atom.x, atom.y, atom.z}; }

inline bool all_finite(const std::vector<ChainAtom>& chain) {
  for (const ChainAtom& atom : chain)
    if (!is_finite(position(atom))) return false;
  return true;
}

}  // namespace preprocess
