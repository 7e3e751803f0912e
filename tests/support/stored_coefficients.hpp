// Polynomials and matrices with every stored coefficient under control: Boost's constructors would
// drop trailing zeros.
#pragma once

#include <vector>

#include "korvex.h"

namespace support {

inline polynomial<int> stored(std::vector<int> coefficients) {
  polynomial<int> result;
  result.data() = std::move(coefficients);
  return result;
}

inline std::vector<std::vector<polynomial<int>>> stored_matrix(
    const std::vector<std::vector<std::vector<int>>>& rows) {
  std::vector<std::vector<polynomial<int>>> matrix;
  for (const auto& row : rows) {
    matrix.emplace_back();
    for (const auto& entry : row) matrix.back().push_back(stored(entry));
  }
  return matrix;
}

inline std::vector<std::vector<std::vector<int>>> coefficients_of(
    const std::vector<std::vector<polynomial<int>>>& matrix) {
  std::vector<std::vector<std::vector<int>>> rows;
  for (const auto& row : matrix) {
    rows.emplace_back();
    for (const auto& entry : row) rows.back().push_back(entry.data());
  }
  return rows;
}

}  // namespace support
