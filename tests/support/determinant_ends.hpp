// Whether det_double ends.
#pragma once

#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

namespace support {

// x with the factors p divided out: all of them, or those beyond 10^8 only.
inline double without_factors(double x, int p, bool all) {
  const auto near = [](double a, double b) { return std::fabs(a - b) < 0.005; };
  while (std::fabs(x) >= 0.005 && (all || std::fabs(x) > 1e8)) {
    const double rest = std::fmod(x, p);
    if (!near(rest, 0) && !near(rest, p) && !near(rest, -p)) break;
    x = x / p;
  }
  return x;
}

// Whether det_double ends for the matrix: what is left of the determinant must not come below the
// tolerance within which 0 counts as divisible.
inline bool determinant_ends(std::vector<std::vector<double>> m, int p) {
  const std::size_t n = m.size();
  double x = 1;
  for (std::size_t k = 0; k < n; ++k) {
    std::size_t r = k;
    while (r + 1 < n && !(std::fabs(m[r][k]) > 1e-5)) ++r;
    if (std::fabs(m[r][k]) <= 1e-5) return true;
    std::swap(m[k], m[r]);
    for (std::size_t i = r + 1; i < n; ++i) {
      if (!(std::fabs(m[i][k]) > 1e-5)) continue;
      const double f = m[i][k] / m[k][k];
      for (std::size_t j = k; j < n; ++j) m[i][j] -= f * m[k][j];
    }
  }
  for (std::size_t k = 0; k < n; ++k) x = without_factors(x, p, false) * m[k][k];
  return !(std::fabs(without_factors(x, p, true)) < 0.01);
}

}  // namespace support
