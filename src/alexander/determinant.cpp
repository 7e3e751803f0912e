#include <cmath>
#include <cstddef>
#include <iostream>
#include <utility>
#include <vector>

#include "alexander/exact_remainder.hpp"
#include "alexander/row_elimination.hpp"
#include "korvex.h"

namespace {

constexpr double kLargestProduct = 1e8;
constexpr double kDivisibility = 0.005;

using korvex::alexander::kSmallestPivot;

bool is_usable(double entry) { return std::fabs(entry) > kSmallestPivot; }

bool is_divisible(double x, int p) {
  const double remainder = korvex::alexander::exact_remainder(x, p);
  return CompareEq(remainder, 0.0, kDivisibility) || CompareEq(remainder, p, kDivisibility) ||
         CompareEq(remainder, -static_cast<double>(p), kDivisibility);
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
    // The rows k+1..r were passed over in the search for a pivot: what they hold in column k counts
    // as zero.
    korvex::alexander::eliminate_column(matrix, k, r + 1);
  }
  for (std::size_t k = 0; k < n; ++k) {
    while (std::fabs(x) > kLargestProduct && is_divisible(x, p)) x = x / p;
    x = x * matrix[k][k];
  }
  while (is_divisible(x, p)) x = x / p;
  return std::fabs(x);
}

void ShowMatrix_double(const std::vector<std::vector<double>>& matrix) {
  std::cout << "Macierz:\n";
  for (const auto& row : matrix) {
    for (const double entry : row) std::cout << entry << ",   ";
    std::cout << std::endl;
  }
}

int main2() {
  std::vector<std::vector<double>> matrix;
  std::vector<double> row{2, -1, 1};
  matrix.push_back(row);
  row = {1, 0, 5};
  matrix.push_back(row);
  row = {3, 2, -1};
  matrix.push_back(row);
  return 0;
}
