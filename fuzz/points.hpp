// Small chains of points from the fuzzer's bytes, for the engine.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <vector>

#include "bytes.hpp"
#include "korvex/directions.hpp"
#include "korvex/error.hpp"
#include "korvex/geometry.hpp"

namespace fuzz {

inline void require(bool holds) {
  if (!holds) std::abort();
}

// Raw doubles, which reach infinities and NaN; a small lattice, where points repeat and edges
// touch; a large offset; finer ones.
inline double engine_coordinate(Bytes& bytes, unsigned kind) {
  switch (kind % 8) {
    case 0:
      return bytes.take<double>();
    case 1:
      return bytes.take<std::int8_t>() % 4;
    case 2:
      return 1e6 + bytes.take<std::int8_t>();
    case 3:
      return bytes.take<std::int16_t>() * 1e-3;
    default:
      return bytes.take<std::int8_t>();
  }
}

// At most so many points: as many as the bytes hold.
inline std::vector<korvex::Point> points(Bytes& bytes, unsigned kind, std::size_t most) {
  std::vector<korvex::Point> chain;
  while (bytes.left() > 0 && chain.size() < most) {
    const double x = engine_coordinate(bytes, kind);
    const double y = engine_coordinate(bytes, kind);
    const double z = engine_coordinate(bytes, kind);
    chain.push_back({x, y, z});
  }
  return chain;
}

inline bool usable(std::span<const korvex::Point> chain) {
  return std::all_of(chain.begin(), chain.end(), [](const korvex::Point& p) {
    return std::abs(p.x) <= 1e300 && std::abs(p.y) <= 1e300 && std::abs(p.z) <= 1e300;
  });
}

inline double distance_to_segment(const korvex::Point& p, const korvex::Point& a,
                                  const korvex::Point& b) {
  const korvex::Point along = b - a;
  const double size = dot(along, along);
  const double at = size > 0 ? std::clamp(dot(p - a, along) / size, 0.0, 1.0) : 0;
  return norm(p - a - at * along);
}

// The least distance of two segments, at ends or inside of both.
inline double distance(const korvex::Point& a, const korvex::Point& b, const korvex::Point& c,
                       const korvex::Point& d) {
  double least = std::min({distance_to_segment(a, c, d), distance_to_segment(b, c, d),
                           distance_to_segment(c, a, b), distance_to_segment(d, a, b)});
  const korvex::Point across = cross(b - a, d - c);
  const double size = dot(across, across);
  if (size > 0) {
    const double on_first = dot(cross(c - a, d - c), across) / size;
    const double on_second = dot(cross(c - a, b - a), across) / size;
    if (0 <= on_first && on_first <= 1 && 0 <= on_second && on_second <= 1)
      least = std::min(least, std::abs(dot(c - a, across)) / std::sqrt(size));
  }
  return least;
}

// True where segments that are not neighbours keep apart, and neighbours meet in their common end
// alone: such a curve has one knot type from wherever it is seen.
inline bool is_embedded(std::span<const korvex::Point> chain, bool closed, double clearance) {
  const std::size_t count = chain.size();
  if (count < 2) return true;
  const std::size_t segments = count - (closed ? 0 : 1);
  const auto at = [&](std::size_t k) { return chain[k % count]; };
  for (std::size_t j = 0; j < segments; ++j) {
    if (norm(at(j + 1) - at(j)) < clearance) return false;
    for (std::size_t k = j + 1; k < segments; ++k) {
      const bool before = k == j + 1;
      const bool behind = closed && j == 0 && k + 1 == segments;
      if (before && distance_to_segment(at(k + 1), at(j), at(k)) < clearance) return false;
      if (before && distance_to_segment(at(j), at(k), at(k + 1)) < clearance) return false;
      if (behind && distance_to_segment(at(k), at(0), at(1)) < clearance) return false;
      if (behind && distance_to_segment(at(1), at(k), at(0)) < clearance) return false;
      if (!before && !behind && distance(at(j), at(j + 1), at(k), at(k + 1)) < clearance)
        return false;
    }
  }
  return true;
}

inline double extent(std::span<const korvex::Point> chain) {
  double largest = 0;
  for (const korvex::Point& p : chain) largest = std::max(largest, norm(p - chain.front()));
  return largest;
}

// A chain may be refused where its coordinates are no numbers, or so much larger than its extent
// that rounding has put its points together, or where a point lies so far off that a bond is lost
// beside it.
inline bool may_be_refused(std::span<const korvex::Point> chain) {
  if (chain.empty()) return false;
  const double size = extent(chain);
  if (!usable(chain) || !(size > 1e-6 && size < 1e6)) return true;
  for (std::size_t k = 1; k < chain.size(); ++k) {
    const bool repeats = chain[k] == chain[k - 1];
    if (!repeats && norm(chain[k] - chain[k - 1]) < 1e-6 * size) return true;
  }
  return false;
}

// True when the computation is refused as an invalid argument.
template <class Computation>
bool is_refused(const Computation& compute) {
  try {
    compute();
  } catch (const korvex::Error& error) {
    require(error.code() == korvex::ErrorCode::kInvalidArgument);
    return true;
  }
  return false;
}

}  // namespace fuzz
