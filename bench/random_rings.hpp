// Closed random walks, and how a cost grows with their length.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "korvex/geometry.hpp"
#include "support/chains.hpp"

namespace bench {

// A walk of normally distributed steps, each less its share of the way from end to end: a closed
// phantom polymer.
inline std::vector<korvex::Point> random_ring(std::size_t steps, std::uint64_t seed) {
  support::Random random(seed);
  std::vector<korvex::Point> ring;
  korvex::Point end;
  for (std::size_t k = 0; k < steps; ++k) {
    ring.push_back(end);
    const double x = random.normal();
    const double y = random.normal();
    end = end + korvex::Point{x, y, random.normal()};
  }
  for (std::size_t k = 0; k < steps; ++k)
    ring[k] = ring[k] - (static_cast<double>(k) / static_cast<double>(steps)) * end;
  return ring;
}

// The slope of the straight line through (log size, log cost), by least squares.
inline double fitted_exponent(const std::vector<double>& sizes, const std::vector<double>& costs) {
  double x = 0;
  double y = 0;
  double xx = 0;
  double xy = 0;
  const auto count = static_cast<double>(sizes.size());
  for (std::size_t k = 0; k < sizes.size(); ++k) {
    const double size = std::log(sizes[k]);
    const double cost = std::log(costs[k]);
    x += size;
    y += cost;
    xx += size * size;
    xy += size * cost;
  }
  return (count * xy - x * y) / (count * xx - x * x);
}

}  // namespace bench
