// The numeric determinant of large diagrams, whose matrices are nearly all zeros, without the
// matrix: the elimination of det_double on the entries that are not zero. Leaving out zeros changes
// no bit: x - f * 0 is x for every finite f, and a sum's sign of zero decides nothing. Where f is
// not finite, f * 0 is not a number, and that is kept as what all of a row's other entries are.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "alexander/exact_remainder.hpp"
#include "korvex.h"

namespace korvex::alexander {

struct NumericEntry {
  std::uint32_t column;
  double value;
};

// One row: its entries with columns rising, those left out being zeros.
using NumericRow = std::vector<NumericEntry>;

// det_double of the square matrix with these rows, bit for bit. Columns must be below their number.
// Memory and time grow with the entries that elimination fills in: for projections of random walks
// some 30 a crossing, for dense matrices all of them.
double sparse_det_double(std::vector<NumericRow> rows, int p);

// det_double(CreateFoxMatrix_double(crossings, t), t), bit for bit, and 1 where that matrix has no
// rows. The arcs of the crossings must be below their number.
double alexander_value(const std::vector<Crossing>& crossings, int t);

inline bool is_divisible(double x, int p) {
  constexpr double kDivisibility = 0.005;
  const double remainder = exact_remainder(x, p);
  return CompareEq(remainder, 0.0, kDivisibility) || CompareEq(remainder, p, kDivisibility) ||
         CompareEq(remainder, -static_cast<double>(p), kDivisibility);
}

// The magnitude of the product of `x` and `count` pivots, pivot_at(k), without its factors p.
template <class PivotAt>
double product_without_factors(double x, std::size_t count, PivotAt pivot_at, int p) {
  constexpr double kLargestProduct = 1e8;
  for (std::size_t k = 0; k < count; ++k) {
    while (std::fabs(x) > kLargestProduct && is_divisible(x, p)) x = x / p;
    x = x * pivot_at(k);
  }
  while (is_divisible(x, p)) x = x / p;
  return std::fabs(x);
}

}  // namespace korvex::alexander
