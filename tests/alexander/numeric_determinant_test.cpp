#include <gtest/gtest.h>

#include <iostream>
#include <vector>

#include "korvex.h"
#include "support/captured_stream.hpp"

namespace {

using Matrix = std::vector<std::vector<double>>;

double det(Matrix matrix) { return det_double(matrix, 12); }

TEST(DetDouble, MagnitudeOfTheDeterminant) {
  EXPECT_EQ(det({{2, -1, 1}, {1, 0, 5}, {3, 2, -1}}), 34.0);
}

TEST(DetDouble, ZeroColumnIsSingular) {
  EXPECT_EQ(det({{1, 0, 2}, {3, 0, 4}, {5, 0, 6}}), 0.0);
  EXPECT_EQ(det({{0}}), 0.0);
}

TEST(DetDouble, ExchangedRowsChangeNothing) {
  EXPECT_EQ(det({{0, 5}, {7, 1}}), 35.0);
  EXPECT_EQ(det({{7, 1}, {0, 5}}), 35.0);
}

TEST(DetDouble, FactorsOfThePointAreDividedOut) {
  EXPECT_EQ(det({{144}}), 1.0);
  EXPECT_EQ(det({{13}}), 13.0);
  EXPECT_EQ(det({{6}}), 6.0);
  EXPECT_EQ(det({{-24}}), 2.0);
}

TEST(DetDouble, EmptyMatrixHasDeterminantOne) { EXPECT_EQ(det({}), 1.0); }

TEST(DetDouble, EntriesUpToTheThresholdCountAsZero) {
  EXPECT_EQ(det({{1e-5, 1}, {1e-5, 2}}), 0.0);
  EXPECT_EQ(det({{1e-6, 2}, {3, 5}}), 6.0);
}

TEST(DetDouble, LargeProductsLoseTheirFactorsOnTheWay) {
  Matrix diagonal(40, std::vector<double>(40, 0.0));
  for (std::size_t k = 0; k < 40; ++k) diagonal[k][k] = k % 2 == 0 ? 12.0 : 144.0;
  diagonal[7][7] = 5;
  EXPECT_EQ(det(diagonal), 5.0);
}

TEST(DetDouble, LeavesTheMatrixReduced) {
  Matrix matrix{{2, 4}, {1, 5}};
  EXPECT_EQ(det_double(matrix, 12), 6.0);
  EXPECT_EQ(matrix[1], (std::vector<double>{0, 3}));
}

// The row that the pivot's place came from is passed over too.
TEST(DetDouble, RowsPassedOverStayUnreduced) {
  Matrix matrix{{1e-6, 1}, {2, 3}};
  EXPECT_EQ(det_double(matrix, 12), 2.0);  // and not 2 * (1 - 1e-6 / 2 * 3)
  EXPECT_EQ(matrix, (Matrix{{2, 3}, {1e-6, 1}}));
  matrix = {{1e-6, 1, 0}, {-1e-5, 0, 1}, {4, 7, 7}, {8, 0, 0}};
  for (auto& row : matrix) row.push_back(row[0] == 8 ? 5 : 0);
  EXPECT_EQ(det_double(matrix, 2), 5.0);  // 4 * 1 * 1 * 5, the twos divided out
  EXPECT_EQ(matrix, (Matrix{{4, 7, 7, 0}, {1e-6, 1, 0, 0}, {-1e-5, 0, 1, 0}, {0, 0, 0, 5}}));
}

TEST(DetDouble, RemaindersWithinTheToleranceCountAsDivisible) {
  EXPECT_EQ(det({{12.004}}), 12.004 / 12);
  EXPECT_EQ(det({{12.006}}), 12.006);
  EXPECT_EQ(det({{23.996}}), 23.996 / 12);
  EXPECT_EQ(det({{23.994}}), 23.994);
  EXPECT_EQ(det({{-12.004}}), 12.004 / 12);
  EXPECT_EQ(det({{-23.996}}), 23.996 / 12);
  EXPECT_EQ(det({{144.004}}), 144.004 / 12 / 12);
}

TEST(NormalizeDetDouble, RoundsAndDividesOut) {
  EXPECT_EQ(Normalize_det_double(-45.2, 3), 5);
  EXPECT_EQ(Normalize_det_double(0.4, 3), 0);
  EXPECT_EQ(Normalize_det_double(2.5, 12), 3);
  EXPECT_EQ(Normalize_det_double(-144, 12), 1);
}

TEST(NormalizeDetDouble, RoundsHalvesAwayFromZeroAndNothingElse) {
  EXPECT_EQ(Normalize_det_double(0.5, 3), 1);
  EXPECT_EQ(Normalize_det_double(-0.5, 3), 1);
  EXPECT_EQ(Normalize_det_double(0.49999999999999994, 3), 0);  // whose sum with 0.5 rounds to 1
  EXPECT_EQ(Normalize_det_double(-0.49999999999999994, 3), 0);
  EXPECT_EQ(Normalize_det_double(2251799813685249.5, 1000003), 2251799813685250);
  EXPECT_EQ(Normalize_det_double(9007199254740991.0, 2), 9007199254740991);
}

TEST(ShowMatrixDouble, FlushesEveryRow) {
  const support::CapturedStream out(std::cout);
  ShowMatrix_double({{1, -2.5}, {}});
  EXPECT_EQ(out.text(), "Macierz:\n1,   -2.5,   \n\n");
  EXPECT_EQ(out.flushes(), 2);
}

TEST(Main2, AnswersZeroSilently) {
  const support::CapturedStream out(std::cout);
  EXPECT_EQ(main2(), 0);
  EXPECT_EQ(out.text(), "");
}

}  // namespace
