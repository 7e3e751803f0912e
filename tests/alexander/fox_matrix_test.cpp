#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "korvex.h"
#include "support/chains.hpp"
#include "support/edges.hpp"
#include "support/stored_coefficients.hpp"

namespace {

using Coefficients = std::vector<int>;
using Rows = std::vector<std::vector<Coefficients>>;

const Coefficients kZero{0}, kOne{1}, kMinusOne{-1}, kT{0, 1}, kMinusT{0, -1}, kOneMinusT{1, -1};

// A row as crossing 0 of as many crossings as there are arcs.
std::vector<Coefficients> row_of(Crossing crossing, int arcs) {
  std::vector<Crossing> crossings(static_cast<std::size_t>(arcs), Crossing{0, 0, 0, 0, 1, 0});
  crossings[0] = crossing;
  return support::coefficients_of(CreateFoxMatrix(crossings))[0];
}

Crossing crossing_of_arcs(int over, int in, int out, int type) {
  return {0, 0, over, in, out, type};
}

TEST(CreateFoxMatrix, RowOfThreeDifferentArcs) {
  EXPECT_EQ(row_of(crossing_of_arcs(0, 1, 2, 1), 3), (std::vector{kOneMinusT, kMinusOne, kT}));
  EXPECT_EQ(row_of(crossing_of_arcs(0, 1, 2, 0), 3), (std::vector{kOneMinusT, kT, kMinusOne}));
}

TEST(CreateFoxMatrix, RowWhoseOverArcComesInUnderIt) {
  EXPECT_EQ(row_of(crossing_of_arcs(0, 0, 1, 1), 2), (std::vector{kMinusT, kT}));
  EXPECT_EQ(row_of(crossing_of_arcs(0, 0, 1, 0), 2), (std::vector{kOne, kMinusOne}));
}

TEST(CreateFoxMatrix, RowWhoseOverArcGoesOutUnderIt) {
  EXPECT_EQ(row_of(crossing_of_arcs(1, 0, 1, 1), 2), (std::vector{kMinusOne, kOne}));
  EXPECT_EQ(row_of(crossing_of_arcs(1, 0, 1, 0), 2), (std::vector{kT, kMinusT}));
}

TEST(CreateFoxMatrix, RowOfOneArcIsZero) {
  EXPECT_EQ(row_of(crossing_of_arcs(0, 0, 0, 1), 2), (std::vector{kZero, kZero}));
}

TEST(CreateFoxMatrix, WhereBothUnderArcsCoincideTheOutgoingOneStands) {
  EXPECT_EQ(row_of(crossing_of_arcs(0, 1, 1, 1), 2), (std::vector{kOneMinusT, kT}));
  EXPECT_EQ(row_of(crossing_of_arcs(0, 1, 1, 0), 2), (std::vector{kOneMinusT, kMinusOne}));
  EXPECT_EQ(CreateFoxMatrix_double({crossing_of_arcs(1, 0, 0, 1), {}}, 12)[0],
            (std::vector<double>{12, -11}));
  EXPECT_EQ(CreateFoxMatrix_double({crossing_of_arcs(1, 0, 0, 0), {}}, 12)[0],
            (std::vector<double>{-1, -11}));
}

TEST(CreateFoxMatrix, ZeroEntriesHoldOneZeroCoefficient) {
  EXPECT_EQ(row_of(crossing_of_arcs(0, 1, 2, 1), 4)[3], kZero);
}

TEST(CreateFoxMatrix, NoOrOneCrossingGivesNoRows) {
  EXPECT_TRUE(CreateFoxMatrix({}).empty());
  EXPECT_TRUE(CreateFoxMatrix({crossing_of_arcs(0, 0, 0, 1)}).empty());
  EXPECT_TRUE(CreateFoxMatrix_double({}, 12).empty());
  EXPECT_TRUE(CreateFoxMatrix_double({crossing_of_arcs(0, 0, 0, 1)}, 12).empty());
}

TEST(CreateFoxMatrix, LastRowIsRemovedAndNoColumnIs) {
  const auto matrix = CreateFoxMatrix(std::vector<Crossing>(5, crossing_of_arcs(0, 1, 2, 1)));
  ASSERT_EQ(matrix.size(), 4U);
  for (const auto& row : matrix) EXPECT_EQ(row.size(), 5U);
}

TEST(CreateFoxMatrix, CrossingListIsNotChanged) {
  const std::vector<Crossing> crossings{{3, 4, 0, 1, 0, 1}, {5, 6, 1, 0, 1, 0}};
  const auto copy = crossings;
  CreateFoxMatrix(crossings);
  EXPECT_EQ(crossings[0].overEdge, copy[0].overEdge);
  EXPECT_EQ(crossings[1].underArcOut, copy[1].underArcOut);
}

TEST(CreateFoxMatrixDouble, EntriesAtTwelve) {
  const auto general =
      CreateFoxMatrix_double(std::vector<Crossing>(4, crossing_of_arcs(0, 1, 2, 1)), 12);
  EXPECT_EQ(general[0], (std::vector<double>{-11, -1, 12, 0}));
  const auto other =
      CreateFoxMatrix_double(std::vector<Crossing>(3, crossing_of_arcs(0, 1, 2, 0)), 12);
  EXPECT_EQ(other[0], (std::vector<double>{-11, 12, -1}));
  const auto kink =
      CreateFoxMatrix_double(std::vector<Crossing>(2, crossing_of_arcs(0, 0, 1, 1)), 12);
  EXPECT_EQ(kink[0], (std::vector<double>{-12, 12}));
}

TEST(CreateFoxMatrixDouble, AnyTypeButZeroIsPositive) {
  EXPECT_EQ(CreateFoxMatrix_double(std::vector<Crossing>(3, crossing_of_arcs(0, 1, 2, 5)), 12),
            CreateFoxMatrix_double(std::vector<Crossing>(3, crossing_of_arcs(0, 1, 2, 1)), 12));
}

// Entries are formed as integers, which have no negative zero.
TEST(CreateFoxMatrixDouble, ZerosArePositiveAtZeroAndOne) {
  for (const int t : {0, 1}) {
    for (const int type : {0, 1}) {
      for (const Crossing& crossing :
           {crossing_of_arcs(0, 0, 1, type), crossing_of_arcs(1, 0, 1, type),
            crossing_of_arcs(0, 1, 2, type), crossing_of_arcs(0, 0, 0, type)}) {
        const auto matrix = CreateFoxMatrix_double(std::vector(3, crossing), t);
        for (const double entry : matrix[0]) {
          EXPECT_FALSE(entry == 0 && std::signbit(entry));
        }
      }
    }
  }
}

TEST(CreateFoxMatrix, BothFormsAgreeAtEveryPoint) {
  auto edges = support::seen_from_above(support::gaussian_ring(40, 3));
  std::vector<Crossing> crossings;
  ASSERT_EQ(FindAllCrossings(edges, crossings, true), 0);
  FillCrossings(edges, crossings);
  const auto polynomials = CreateFoxMatrix(crossings);
  for (const int t : {-3, 0, 1, 2, 12}) {
    const auto values = CreateFoxMatrix_double(crossings, t);
    ASSERT_EQ(values.size(), polynomials.size());
    for (std::size_t r = 0; r < values.size(); ++r) {
      for (std::size_t c = 0; c < values[r].size(); ++c) {
        EXPECT_EQ(values[r][c], CalculatePoly(polynomials[r][c], t));
      }
    }
  }
}

TEST(CreateFoxMatrix, TrefoilRowsHoldEachEntryOnce) {
  auto edges = support::seen_from_above(support::torus_knot(2, 3, 60));
  std::vector<Crossing> crossings;
  ASSERT_EQ(FindAllCrossings(edges, crossings, true), 0);
  FillCrossings(edges, crossings);
  const Rows rows = support::coefficients_of(CreateFoxMatrix(crossings));
  ASSERT_EQ(rows.size(), 2U);
  for (const auto& row : rows) {
    ASSERT_EQ(row.size(), 3U);
    for (const Coefficients& entry : {kOneMinusT, kT, kMinusOne}) {
      EXPECT_EQ(std::count(row.begin(), row.end(), entry), 1);
    }
  }
}

}  // namespace
