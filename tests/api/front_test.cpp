#include <gtest/gtest.h>

#include <array>
#include <iostream>
#include <vector>

#include "korvex.h"
#include "support/captured_stream.hpp"
#include "support/chains.hpp"
#include "support/stored_coefficients.hpp"

namespace {

const support::Chain kTrefoil = support::torus_knot(2, 3, 40);

support::Chain unprojectable() {
  support::Chain ring = kTrefoil;
  ring.insert(ring.begin(), ring.front());
  return ring;
}

std::string printed(const std::vector<ChainAtom>& chain) {
  const support::CapturedStream out(std::cout);
  PrintChain_ToMathematica(chain);
  return out.text();
}

TEST(PrintChainToMathematica, TrailingCommaStays) {
  EXPECT_EQ(printed({{1, 2.5, -3, 7}}), "{{1,2.5,-3},}\n");
  EXPECT_EQ(printed({{1, 2, 3, 1}, {1234567, 1e-7, 0.1234567, 2}}),
            "{{1,2,3},{1.23457e+06,1e-07,0.123457},}\n");
}

TEST(PrintChainToMathematica, EmptyChainIsTwoBraces) { EXPECT_EQ(printed({}), "{}\n"); }

TEST(FindTheKnotFront, NamesARing) {
  EXPECT_EQ(FindTheKnot(kTrefoil), 1);
  EXPECT_EQ(FindTheKnot_poly_string(kTrefoil, 16, false), "1 -1 1");
}

TEST(FindTheKnotPoly, ResultIsAppended) {
  std::vector<int> coefficients;
  double value = -7;
  EXPECT_EQ(FindTheKnot_poly(kTrefoil, coefficients, value), 1);
  EXPECT_EQ(coefficients, (std::vector<int>{1, -1, 1}));
  EXPECT_EQ(value, -7);
  coefficients = {9, 0};
  FindTheKnot_poly(kTrefoil, coefficients, value);
  EXPECT_EQ(coefficients, (std::vector<int>{9, 0, 1, -1, 1}));
}

TEST(FindTheKnotPoly, ProblemGivesTheCallersOwnPolynomialBackTrimmed) {
  const support::CapturedStream log(std::clog);
  std::vector<int> coefficients{4, 5, 0, 0};
  double value = 0;
  EXPECT_EQ(FindTheKnot_poly(unprojectable(), coefficients, value), 1);
  EXPECT_EQ(coefficients, (std::vector<int>{4, 5, 0, 0, 4, 5}));
}

TEST(FindTheKnotPolyPolynomial, AboveSixteenCrossingsTheTablesPolynomialByValue) {
  // A knot seen with more than 16 crossings: its value at 12 is in no table, so that the unknot's
  // polynomial comes back.
  const support::Chain ring = support::torus_knot(2, 19, 400);
  polynomial<int> poly;
  double value = 0;
  EXPECT_EQ(FindTheKnot_poly_polynomial(ring, poly, value), 0);
  EXPECT_EQ(poly.data(), std::vector<int>{1});
  EXPECT_NE(value, 0);
}

TEST(CalculatesPoly, EvaluatesCoefficients) {
  EXPECT_EQ(CalculatesPoly({1, -1, 1}, 2), 3);
  EXPECT_EQ(CalculatesPoly({1, -1, 1, 0, 0}, 2), 3);
  EXPECT_EQ(CalculatesPoly({}, 2), 0);
}

TEST(FindMajorKnot, IsTheVoteOverClosures) {
  std::array<int, 42> counts{};
  EXPECT_EQ(FindMajorKnot(kTrefoil, counts.data(), 0, 50), 0);
  EXPECT_EQ(counts[1], 1);
  EXPECT_EQ(GiveTheNameOfKnot(counts.data()), "3_1(100%) ");
  EXPECT_EQ(GiveTheNameOfKnot_Matrix(counts.data()), GiveTheNameOfKnot_toMatrix(counts.data()));
}

}  // namespace
