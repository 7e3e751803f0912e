// The numeric determinant without the matrix against that with it, bit for bit.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include "alexander/numeric_determinant.hpp"
#include "korvex.h"
#include "reference/reference.hpp"
#include "support/bits.hpp"
#include "support/determinant_ends.hpp"
#include "support/effort.hpp"
#include "support/number_matrices.hpp"

namespace {

using korvex::alexander::alexander_value;
using korvex::alexander::NumericRow;
using korvex::alexander::sparse_det_double;
using support::same_bits;

std::vector<NumericRow> rows_of(const support::NumberMatrix& matrix) {
  std::vector<NumericRow> rows(matrix.size());
  for (std::size_t i = 0; i < rows.size(); ++i)
    for (std::uint32_t j = 0; j < rows.size(); ++j)
      if (matrix[i][j] != 0) rows[i].push_back({j, matrix[i][j]});
  return rows;
}

void expect_same(const support::NumberMatrix& matrix, int p, int seed) {
  auto plain_matrix = matrix;
  const double plain = reference::det_double(plain_matrix, p);
  const double sparse = sparse_det_double(rows_of(matrix), p);
  ASSERT_TRUE(same_bits(sparse, plain)) << sparse << " " << plain << ", seed " << seed;
}

TEST(SparseDetDouble, EqualsThePlainForm) {
  for (int seed = 0; seed < support::input_count(); ++seed) {
    const auto matrix = support::random_number_matrix(static_cast<std::uint64_t>(seed));
    if (support::determinant_ends(matrix, 12)) expect_same(matrix, 12, seed);
  }
}

// Mostly zeros; what else there is reaches numbers whose quotients overflow, and entries that are
// infinite or not numbers.
support::NumberMatrix extreme_matrix(std::mt19937_64& random) {
  constexpr double kValues[] = {1,      -1,   12,   -11,   1e-5, 2e-5, 1e150, -1e200, 1e308,
                                -1e308, 1e-4, 3e-5, -7e-5, 0.5,  1e5,  -1e9,  1e-3,   INFINITY};
  const std::size_t n = 1 + random() % 12;
  const std::size_t kinds = random() % 3 == 0 ? 18 : random() % 3 == 0 ? 17 : 10;
  support::NumberMatrix matrix(n, std::vector<double>(n, 0.0));
  for (auto& row : matrix)
    for (double& entry : row)
      if (random() % 3 == 0) entry = kValues[random() % kinds];
  if (random() % 8 == 0)
    matrix[random() % n][random() % n] = std::numeric_limits<double>::quiet_NaN();
  return matrix;
}

TEST(SparseDetDouble, EqualsThePlainFormBeyondFiniteNumbers) {
  std::mt19937_64 random(5);
  int not_finite = 0;
  for (int seed = 0; seed < 4 * support::input_count(); ++seed) {
    const auto matrix = extreme_matrix(random);
    if (!support::determinant_ends(matrix, 12)) continue;
    expect_same(matrix, 12, seed);
    not_finite += std::isfinite(sparse_det_double(rows_of(matrix), 12)) ? 0 : 1;
  }
  EXPECT_GT(not_finite, 100);
}

TEST(SparseDetDouble, OfNoRowsIsOneAndOfAZeroRowZero) {
  EXPECT_EQ(sparse_det_double({}, 12), 1.0);
  EXPECT_EQ(sparse_det_double({{}}, 12), 0.0);
  EXPECT_EQ(sparse_det_double({{{0, 144}}}, 12), 1.0);
  EXPECT_EQ(sparse_det_double({{{0, 1}, {1, 2}}, {}}, 12), 0.0);
  EXPECT_EQ(sparse_det_double({{}, {{0, 1}, {1, 2}}}, 12), 0.0);
  EXPECT_EQ(sparse_det_double(
                {{{0, 2}, {1, -1}, {2, 1}}, {{0, 1}, {2, 5}}, {{0, 3}, {1, 2}, {2, -1}}}, 12),
            34.0);
}

double plain_value(const std::vector<Crossing>& crossings, int t) {
  auto matrix = reference::CreateFoxMatrix_double(crossings, t);
  return matrix.empty() ? 1.0 : reference::det_double(matrix, t);
}

std::vector<ChainAtom> random_walk(std::size_t atoms, unsigned seed) {
  std::mt19937_64 random(seed);
  std::normal_distribution<double> step;
  std::vector<ChainAtom> chain;
  ChainAtom at{0, 0, 0, 0};
  for (std::size_t k = 0; k < atoms; ++k) {
    at = {at.x + step(random), at.y + step(random), at.z + step(random), at.id + 1};
    chain.push_back(at);
  }
  return chain;
}

TEST(AlexanderValue, IsThatOfTheMatrixForProjectionsOfRandomWalks) {
  std::size_t most = 0;
  for (unsigned seed = 0; seed < 12; ++seed) {
    auto edges = ProjectChain(random_walk(100 + 100 * (seed % 6), seed), 0, true);
    std::vector<Crossing> crossings;
    if (FindAllCrossings(edges, crossings, true) != 0) continue;
    FillCrossings(edges, crossings);
    most = std::max(most, crossings.size());
    ASSERT_TRUE(same_bits(alexander_value(crossings, 12), plain_value(crossings, 12)))
        << crossings.size() << " crossings, seed " << seed;
  }
  EXPECT_GT(most, 300U);
}

// Crossings as no projection has them: any arcs, also where they coincide.
TEST(AlexanderValue, IsThatOfTheMatrixForAnyArcs) {
  std::mt19937_64 random(7);
  for (int seed = 0; seed < 200; ++seed) {
    const std::size_t n = 95 + random() % 30;
    std::vector<Crossing> crossings(n);
    const auto near = [&](std::size_t k) {
      return static_cast<std::int32_t>(random() % 4 == 0 ? random() % n : (k + random() % 3) % n);
    };
    for (std::size_t k = 0; k < n; ++k)
      crossings[k] = {0, 0, near(k), near(k), near(k), static_cast<std::int32_t>(random() % 2)};
    auto matrix = reference::CreateFoxMatrix_double(crossings, 12);
    if (!support::determinant_ends(matrix, 12)) continue;
    ASSERT_TRUE(same_bits(alexander_value(crossings, 12), plain_value(crossings, 12))) << seed;
  }
}

// The matrix would take 800 GB. Crossings beyond the 32,768th are not on any arc, so that their
// rows are zeros.
TEST(AlexanderValue, NeedsNoMatrix) {
  std::vector<Crossing> crossings(316'000);
  for (std::int32_t k = 0; k < 32'768; ++k)
    crossings[static_cast<std::size_t>(k)] = {0, 0, (7 * k) % 32'768, k, k + 1, k % 2};
  EXPECT_EQ(alexander_value(crossings, 12), 0.0);
}

}  // namespace
