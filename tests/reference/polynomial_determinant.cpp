#include <algorithm>
#include <cstddef>
#include <vector>

#include "alexander/stored_polynomial.hpp"
#include "records/wrapping.hpp"
#include "reference/reference.hpp"

namespace reference {

namespace {

using korvex::alexander::stored_polynomial;
using korvex::records::wrapping_add;
using korvex::records::wrapping_multiply;
using korvex::records::wrapping_negate;
using PolyMatrix = std::vector<std::vector<polynomial<int>>>;

bool has_non_zero(const polynomial<int>& poly) {
  return std::any_of(poly.data().begin(), poly.data().end(), [](int c) { return c != 0; });
}

polynomial<int> negated(polynomial<int> poly) {
  for (int& coefficient : poly.data()) coefficient = wrapping_negate(coefficient);
  return poly;
}

// a * b with coefficients modulo 2^32; the product of an empty polynomial is empty.
polynomial<int> product(const polynomial<int>& a, const polynomial<int>& b) {
  if (a.size() == 0 || b.size() == 0) return {};
  std::vector<int> coefficients(a.size() + b.size() - 1, 0);
  for (std::size_t i = 0; i < a.size(); ++i) {
    for (std::size_t j = 0; j < b.size(); ++j) {
      coefficients[i + j] = wrapping_add(coefficients[i + j], wrapping_multiply(a[i], b[j]));
    }
  }
  return stored_polynomial(std::move(coefficients));
}

// sum += term, with coefficients modulo 2^32, trimmed.
void accumulate(polynomial<int>& sum, const polynomial<int>& term) {
  std::vector<int>& data = sum.data();
  if (data.size() < term.size()) data.resize(term.size(), 0);
  for (std::size_t i = 0; i < term.size(); ++i) data[i] = wrapping_add(data[i], term[i]);
  sum.normalize();
}

PolyMatrix without_row(const PolyMatrix& matrix, std::size_t row) {
  PolyMatrix minor = matrix;
  minor.erase(minor.begin() + static_cast<std::ptrdiff_t>(row));
  return minor;
}

}  // namespace

polynomial<int> det_poly(const std::vector<std::vector<polynomial<int>>>& matrix) {
  const std::size_t k = matrix.size();
  if (k < 1) return stored_polynomial({0});
  if (k == 1) return matrix[0][0];
  polynomial<int> sum;
  bool positive = k % 2 == 1;
  for (std::size_t i = 0; i < k; ++i, positive = !positive) {
    const polynomial<int>& entry = matrix[i][k - 1];
    if (!has_non_zero(entry)) continue;
    polynomial<int> factor = positive ? entry : negated(entry);
    factor.normalize();
    accumulate(sum, product(factor, reference::det_poly(without_row(matrix, i))));
  }
  return sum;
}

}  // namespace reference
