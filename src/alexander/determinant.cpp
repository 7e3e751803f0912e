#include <cmath>
#include <cstddef>
#include <iostream>
#include <utility>
#include <vector>

#include "alexander/numeric_determinant.hpp"
#include "alexander/row_elimination.hpp"
#include "korvex.h"

namespace {

using korvex::alexander::kSmallestPivot;

bool is_usable(double entry) { return std::fabs(entry) > kSmallestPivot; }

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
  return korvex::alexander::product_without_factors(
      x, n, [&](std::size_t k) { return matrix[k][k]; }, p);
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
