#include "korvex/interval.hpp"

#include <algorithm>
#include <cmath>

namespace korvex {

Interval wilson_interval(std::size_t hits, std::size_t trials) {
  if (trials == 0) return {0, 1};
  constexpr double kQuantile = 1.959963984540054;  // of the normal distribution, two-sided 95 %
  const double n = static_cast<double>(trials);
  const double share = static_cast<double>(hits) / n;
  const double square = kQuantile * kQuantile;
  const double centre = (share + square / (2 * n)) / (1 + square / n);
  const double half =
      kQuantile / (1 + square / n) * std::sqrt(share * (1 - share) / n + square / (4 * n * n));
  return {hits == 0 ? 0 : std::max(0.0, centre - half),
          hits == trials ? 1 : std::min(1.0, centre + half)};
}

}  // namespace korvex
