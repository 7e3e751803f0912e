#include <algorithm>
#include <cstddef>
#include <vector>

#include "alexander/sparse_determinant.hpp"
#include "alexander/stored_polynomial.hpp"
#include "korvex.h"
#include "records/wrapping.hpp"

namespace {

using korvex::alexander::stored_polynomial;
using korvex::records::wrapping_add;
using korvex::records::wrapping_multiply;
using korvex::records::wrapping_negate;

bool has_non_zero(const polynomial<int>& poly) {
  return std::any_of(poly.data().begin(), poly.data().end(), [](int c) { return c != 0; });
}

polynomial<int> negated(polynomial<int> poly) {
  for (int& coefficient : poly.data()) coefficient = wrapping_negate(coefficient);
  return poly;
}

}  // namespace

bool NonZeroPoly(polynomial<int> poly) { return has_non_zero(poly); }

polynomial<int> det_poly(const std::vector<std::vector<polynomial<int>>>& matrix) {
  const std::size_t k = matrix.size();
  if (k < 1) return stored_polynomial({0});
  if (k == 1) return matrix[0][0];
  korvex::alexander::SparseMatrix sparse(k);
  for (std::size_t row = 0; row < k; ++row) {
    const polynomial<int>* const entries = matrix[row].data();
    for (std::size_t column = 0; column < k; ++column) {
      const std::vector<int>& coefficients = entries[column].data();
      if (coefficients.size() == 1 && coefficients[0] == 0) continue;  // most entries
      sparse.append(row, column, coefficients.data(), coefficients.size());
    }
  }
  return stored_polynomial(sparse.determinant());
}

polynomial<int> NormalizePoly(const polynomial<int>& poly) {
  const std::vector<int>& data = poly.data();
  if (data.empty()) return {};
  const auto is_set = [](int c) { return c != 0; };
  const auto lowest = std::find_if(data.begin(), data.end(), is_set);
  if (lowest == data.end()) return stored_polynomial({1});
  const auto behind_highest = std::find_if(data.rbegin(), data.rend(), is_set).base();
  polynomial<int> result = stored_polynomial({lowest, behind_highest});
  return *lowest < 0 ? negated(std::move(result)) : result;
}

int CalculatePoly(polynomial<int> poly, int x) {
  int value = 0;
  int power = 1;
  for (const int coefficient : poly.data()) {
    value = wrapping_add(value, wrapping_multiply(coefficient, power));
    power = wrapping_multiply(power, x);
  }
  return value;
}
