#include "engine/closures/whole_chain.hpp"

#include <algorithm>
#include <cmath>

#include "geometry/unit_scale.hpp"

namespace korvex {
namespace {

// unit_scale() leaves coordinates below 2 in size.
constexpr double kGrid = 0x1p49;

double distance_to_bond(const Point& from, const Point& to) {
  const Point along = to - from;
  const double part = std::clamp(-dot(from, along) / dot(along, along), 0.0, 1.0);
  return norm(from + part * along);
}

// What the points `from`..`to`-1 draw about `centre`.
std::optional<SpherePath> path_seen(std::span<const Point> chain, const Point& centre,
                                    std::size_t from, std::size_t to) {
  const double extent = reach_of(chain);
  SpherePath path;
  for (std::size_t i = from; i < to; ++i) {
    const Point away = chain[i] - centre;
    if (away == Point{}) return std::nullopt;
    path.points.push_back(sphere_point(away));
    if (i > from) path.weights.push_back(distance_to_bond(chain[i - 1] - centre, away) / extent);
  }
  return path;
}

}  // namespace

std::vector<Point> whole_chain(std::span<const Point> chain) {
  const double scale = unit_scale(chain);
  std::vector<Point> whole;
  whole.reserve(chain.size());
  const auto rounded = [](double value) { return std::nearbyint(kGrid * value); };
  for (const Point& p : chain) {
    const Point away = scale * (p - chain[0]);
    const Point point{rounded(away.x), rounded(away.y), rounded(away.z)};
    if (whole.empty() || point != whole.back()) whole.push_back(point);
  }
  return whole;
}

std::optional<SpherePath> path_seen_from_first(std::span<const Point> chain) {
  if (chain.size() < 2) return SpherePath{};
  return path_seen(chain, chain.front(), 1, chain.size());
}

std::optional<SpherePath> path_seen_from_last(std::span<const Point> chain) {
  if (chain.size() < 2) return SpherePath{};
  return path_seen(chain, chain.back(), 0, chain.size() - 1);
}

}  // namespace korvex
