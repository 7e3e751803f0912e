// det_poly against the cofactor expansion, coefficient for coefficient.
#include <gtest/gtest.h>

#include <cstdint>
#include <memory_resource>
#include <vector>

#include "alexander/division_free_determinant.hpp"
#include "korvex.h"
#include "reference/reference.hpp"
#include "support/effort.hpp"
#include "support/polynomial_matrices.hpp"
#include "support/stored_coefficients.hpp"

namespace {

using support::stored;

TEST(DetPoly, EqualsTheCofactorExpansion) {
  std::size_t largest = 0;
  int zeros = 0;
  for (int seed = 0; seed < support::input_count(); ++seed) {
    const auto matrix = support::random_polynomial_matrix(static_cast<std::uint64_t>(seed));
    const polynomial<int> plain = reference::det_poly(matrix);
    ASSERT_EQ(det_poly(matrix).data(), plain.data()) << "seed " << seed;
    largest = std::max(largest, matrix.size());
    zeros += plain.size() == 0 ? 1 : 0;
  }
  EXPECT_GE(largest, 10U);
  EXPECT_GT(zeros, 100);
}

TEST(DetPoly, OfNoRowsIsTheOneCoefficientZero) {
  EXPECT_EQ(det_poly({}).data(), std::vector<int>{0});
}

TEST(DetPoly, OfOneRowIsItsEntryAsStored) {
  EXPECT_EQ(det_poly({{stored({0, 0})}}).data(), (std::vector<int>{0, 0}));
  EXPECT_EQ(det_poly({{stored({}), stored({5})}}).data(), std::vector<int>{});
  EXPECT_EQ(det_poly({{stored({3, -1, 0})}}).data(), (std::vector<int>{3, -1, 0}));
}

TEST(DetPoly, OfAMatrixWithAZeroColumnIsEmpty) {
  EXPECT_TRUE(det_poly({{stored({1}), stored({0})}, {stored({1, 1}), stored({})}}).data().empty());
}

// A dense matrix of 12 rows, whose expansion has 12! terms: the determinant of the Vandermonde
// matrix of t^0, t^1, ... is the product of the differences of its points.
TEST(DetPoly, OfALargeDenseMatrixIsExact) {
  constexpr std::size_t kRows = 12;
  std::vector<std::vector<polynomial<int>>> matrix(kRows);
  polynomial<int> product = stored({1});
  for (std::size_t i = 0; i < kRows; ++i) {
    for (std::size_t j = 0; j < kRows; ++j) {
      std::vector<int> power(i * j + 1, 0);
      power.back() = 1;
      matrix[i].push_back(stored(power));
    }
    for (std::size_t j = 0; j < i; ++j) {
      std::vector<int> difference(i + 1, 0);
      difference[i] = 1;
      difference[j] -= 1;
      product *= stored(difference);
    }
  }
  EXPECT_EQ(det_poly(matrix).data(), product.data());
}

TEST(DivisionFreeDeterminant, EqualsTheCofactorExpansion) {
  for (int seed = 0; seed < support::input_count() / 4; ++seed) {
    const auto matrix = support::random_polynomial_matrix(static_cast<std::uint64_t>(seed));
    const std::size_t n = matrix.size();
    if (n < 2 || n > 6) continue;
    std::vector<korvex::alexander::Laurent> dense;
    for (std::size_t i = 0; i < n; ++i) {
      for (std::size_t j = 0; j < n; ++j) {
        const std::vector<int>& c = matrix[i][j].data();
        const auto* words = reinterpret_cast<const std::uint32_t*>(c.data());
        dense.push_back(korvex::alexander::trimmed(words, c.size(), 0));
        dense.back().low -= static_cast<std::int64_t>(i);  // the row over t^i
      }
    }
    std::pmr::monotonic_buffer_resource memory;
    const auto det = korvex::alexander::division_free_determinant(dense, n, memory);
    std::vector<int> coefficients;
    if (det.size > 0) {
      coefficients.assign(static_cast<std::size_t>(det.low + static_cast<int>(n * (n - 1) / 2)), 0);
      for (std::size_t k = 0; k < det.size; ++k) coefficients.push_back(static_cast<int>(det.c[k]));
    }
    ASSERT_EQ(coefficients, reference::det_poly(matrix).data()) << "seed " << seed;
  }
}

}  // namespace
