#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

#include "reference/reference.hpp"

namespace reference {

namespace {

constexpr double kSmallestPivot = 1e-5;
constexpr double kLargestProduct = 1e8;
constexpr double kDivisibility = 0.005;

bool is_usable(double entry) { return std::fabs(entry) > kSmallestPivot; }

bool is_divisible(double x, int p) {
  const double remainder = std::fmod(x, p);
  return CompareEq(remainder, 0.0, kDivisibility) || CompareEq(remainder, p, kDivisibility) ||
         CompareEq(remainder, -static_cast<double>(p), kDivisibility);
}

// Reduces the rows below the pivot row `k`. The rows k+1..from-1 were passed over in the search for
// a pivot: what they hold in column k counts as zero.
void eliminate(std::vector<std::vector<double>>& matrix, std::size_t k, std::size_t from) {
  const std::size_t n = matrix.size();
  const std::vector<double>& pivot_row = matrix[k];
  for (std::size_t i = from; i < n; ++i) {
    std::vector<double>& row = matrix[i];
    if (!is_usable(row[k])) continue;
    const double factor = row[k] / pivot_row[k];
    for (std::size_t j = k; j < n; ++j) row[j] = row[j] - factor * pivot_row[j];
  }
}

}  // namespace

double det_double(std::vector<std::vector<double>>& matrix, int p) {
  const std::size_t n = matrix.size();
  double x = 1.0;
  for (std::size_t k = 0; k < n; ++k) {
    std::size_t r = k;
    while (r + 1 < n && !is_usable(matrix[r][k])) ++r;
    if (std::fabs(matrix[r][k]) <= kSmallestPivot) return 0.0;
    if (r != k) {
      std::swap(matrix[k], matrix[r]);
      x = -x;
    }
    eliminate(matrix, k, r + 1);
  }
  for (std::size_t k = 0; k < n; ++k) {
    while (std::fabs(x) > kLargestProduct && is_divisible(x, p)) x = x / p;
    x = x * matrix[k][k];
  }
  while (is_divisible(x, p)) x = x / p;
  return std::fabs(x);
}

}  // namespace reference
