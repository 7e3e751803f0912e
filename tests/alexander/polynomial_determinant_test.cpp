#include <gtest/gtest.h>

#include <climits>
#include <vector>

#include "korvex.h"
#include "support/stored_coefficients.hpp"

namespace {

using support::stored;
using support::stored_matrix;
using Coefficients = std::vector<int>;

Coefficients determinant_of(const std::vector<std::vector<Coefficients>>& rows) {
  return det_poly(stored_matrix(rows)).data();
}

TEST(DetPoly, OfNoRowsIsOneZeroCoefficient) {
  EXPECT_EQ(determinant_of({}), Coefficients{0});
  EXPECT_EQ(NormalizePoly(det_poly({})).data(), Coefficients{1});
}

TEST(DetPoly, OfOneRowIsTheEntryAsStored) {
  EXPECT_EQ(determinant_of({{{0, 0}}}), (Coefficients{0, 0}));
  EXPECT_EQ(determinant_of({{{1, -1, 0}, {7}}}), (Coefficients{1, -1, 0}));
  EXPECT_EQ(determinant_of({{{}}}), Coefficients{});
}

TEST(DetPoly, CancellingToZeroIsEmpty) {
  EXPECT_EQ(determinant_of({{{1}, {0}}, {{2}, {0}}}), Coefficients{});
  EXPECT_EQ(determinant_of({{{1, 1}, {1, 1}}, {{1, 1}, {1, 1}}}), Coefficients{});
}

TEST(DetPoly, OfTwoRows) {
  EXPECT_EQ(determinant_of({{{1, -1}, {0, 1}}, {{-1}, {1}}}), Coefficients{1});
  EXPECT_EQ(determinant_of({{{1}, {2}}, {{3}, {4}}}), Coefficients{-2});
}

TEST(DetPoly, SignOfThePermutation) {
  EXPECT_EQ(determinant_of({{{0}, {1}, {0}}, {{0}, {0}, {1}}, {{1}, {0}, {0}}}), Coefficients{1});
  EXPECT_EQ(determinant_of({{{0}, {1}, {0}}, {{1}, {0}, {0}}, {{0}, {0}, {1}}}), Coefficients{-1});
}

TEST(DetPoly, ColumnsBeyondTheRowsAreNotRead) {
  EXPECT_EQ(determinant_of({{{1}, {2}, {9, 9}}, {{3}, {4}, {9, 9}}}), Coefficients{-2});
}

TEST(DetPoly, ResultIsTrimmedThoughEntriesAreNot) {
  EXPECT_EQ(determinant_of({{{1, 0, 0}, {0, 0}}, {{0}, {0, 1, 0}}}), (Coefficients{0, 1}));
}

TEST(DetPoly, EmptyEntriesCountAsZero) {
  EXPECT_EQ(determinant_of({{{1}, {}}, {{}, {5}}}), Coefficients{5});
}

TEST(DetPoly, CoefficientsWrapAround) {
  EXPECT_EQ(determinant_of({{{65536}, {0}}, {{0}, {65536}}}), Coefficients{});
  EXPECT_EQ(determinant_of({{{INT_MAX}, {0}}, {{0}, {2}}}), Coefficients{-2});
}

TEST(NonZeroPoly, TellsZeroFromTheRest) {
  EXPECT_FALSE(NonZeroPoly({}));
  EXPECT_FALSE(NonZeroPoly(stored({0, 0})));
  EXPECT_TRUE(NonZeroPoly(stored({0, 0, -1})));
}

TEST(NormalizePoly, DividesOutThePowerAndTheSign) {
  EXPECT_EQ(NormalizePoly(stored({0, 0, -1, 1, -1, 0})).data(), (Coefficients{1, -1, 1}));
  EXPECT_EQ(NormalizePoly(stored({2, -3, 2})).data(), (Coefficients{2, -3, 2}));
}

TEST(NormalizePoly, KeepsCommonFactors) {
  EXPECT_EQ(NormalizePoly(stored({-2, 4})).data(), (Coefficients{2, -4}));
}

TEST(NormalizePoly, AllZerosBecomeOneAndEmptyStaysEmpty) {
  EXPECT_EQ(NormalizePoly(stored({0, 0, 0})).data(), Coefficients{1});
  EXPECT_EQ(NormalizePoly({}).data(), Coefficients{});
}

TEST(CalculatePoly, SumsPowers) {
  EXPECT_EQ(CalculatePoly(stored({1, -1, 1}), 2), 3);
  EXPECT_EQ(CalculatePoly(stored({1, -1, 1}), -3), 13);
  EXPECT_EQ(CalculatePoly({}, 5), 0);
}

TEST(CalculatePoly, WrapsAround) {
  EXPECT_EQ(CalculatePoly(stored({0, 0, 1}), 65536), 0);
  EXPECT_EQ(CalculatePoly(stored({INT_MAX, 1}), 1), INT_MIN);
}

}  // namespace
