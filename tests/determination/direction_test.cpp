#include <gtest/gtest.h>

#include <iostream>
#include <string>
#include <vector>

#include "korvex.h"
#include "support/captured_stream.hpp"
#include "support/chains.hpp"
#include "support/national_locale.hpp"
#include "support/stored_coefficients.hpp"

namespace {

using support::Chain;

Chain trefoil() { return support::torus_knot(2, 3, 40); }

// Its first edge is a point, which no projection can resolve.
Chain unprojectable() {
  Chain ring = trefoil();
  ring.insert(ring.begin(), ring.front());
  return ring;
}

int crossings_seen(const Chain& ring, int direction) {
  auto edges = ProjectChain(ring, direction, true);
  std::vector<Crossing> crossings;
  EXPECT_EQ(FindAllCrossings(edges, crossings, true), 0);
  return static_cast<int>(crossings.size());
}

TEST(FindTheKnotInParticularDirection, NamesRingsInEveryDirection) {
  for (int direction = 0; direction < 60; ++direction) {
    EXPECT_EQ(FindTheKnotInParticularDirection(trefoil(), direction), 1) << direction;
    const Chain figure_eight = support::figure_eight(60);
    const int ordinal = FindTheKnotInParticularDirection(figure_eight, direction);
    EXPECT_EQ(ordinal, crossings_seen(figure_eight, direction) > 16 ? 39 : 2) << direction;
  }
}

TEST(FindTheKnotInParticularDirection, DirectionsWrapModuloSixtyWithTheirSign) {
  EXPECT_EQ(FindTheKnotInParticularDirection(trefoil(), 61), 1);
  EXPECT_EQ(FindTheKnotInParticularDirection(trefoil(), -61), 1);
  EXPECT_EQ(FindTheKnotInParticularDirection_True(trefoil(), 61), 1);
}

// A ring seen with that many crossings in direction 0.
Chain ring_with_crossings(int crossings) {
  for (std::uint64_t seed = 1; seed < 1000; ++seed) {
    const Chain ring = support::gaussian_ring(26, seed);
    if (crossings_seen(ring, 0) == crossings) return ring;
  }
  ADD_FAILURE() << "no ring with " << crossings << " crossings";
  return {};
}

TEST(FindTheKnotInParticularDirection, SixteenCrossingsStillTakeThePolynomial) {
  const Chain ring = ring_with_crossings(16);
  polynomial<int> poly;
  double value = -7;
  EXPECT_EQ(FindTheKnotInParticularDirection_poly(ring, poly, value, 0, 16), 1);
  EXPECT_EQ(value, -7);
  EXPECT_EQ(FindTheKnotInParticularDirection(ring, 0), WhichKnot_OrdNr(poly));
}

TEST(FindTheKnotInParticularDirection, SeventeenCrossingsTakeTheValue) {
  const Chain ring = ring_with_crossings(17);
  polynomial<int> poly;
  double value = -7;
  EXPECT_EQ(FindTheKnotInParticularDirection_poly(ring, poly, value, 0, 16), 0);
  EXPECT_TRUE(poly.data().empty());
  EXPECT_EQ(FindTheKnotInParticularDirection(ring, 0), WhichKnotDouble_OrdNr(value));
}

TEST(FindTheKnotInParticularDirection, ProjectionProblemLooksUpTheEmptyPolynomial) {
  const support::CapturedStream log(std::clog);
  EXPECT_EQ(FindTheKnotInParticularDirection(unprojectable(), 0), 39);
  EXPECT_EQ(FindTheKnotInParticularDirection_True(unprojectable(), 0), 39);
  EXPECT_NE(log.text().find("PROBLEM with one projection. "), std::string::npos);
}

TEST(FindTheKnotInParticularDirectionPoly, UpToTheLimitThePolynomialIsTheAnswer) {
  const Chain ring = trefoil();
  const int crossings = crossings_seen(ring, 0);
  polynomial<int> poly;
  double value = -7;
  EXPECT_EQ(FindTheKnotInParticularDirection_poly(ring, poly, value, 0, crossings), 1);
  EXPECT_EQ(poly.data(), (std::vector<int>{1, -1, 1}));
  EXPECT_EQ(value, -7);
}

TEST(FindTheKnotInParticularDirectionPoly, AboveTheLimitTheValueAtTwelveIs) {
  const Chain ring = trefoil();
  const int crossings = crossings_seen(ring, 0);
  polynomial<int> poly = support::stored({5, 5});
  double value = -7;
  EXPECT_EQ(FindTheKnotInParticularDirection_poly(ring, poly, value, 0, crossings - 1), 0);
  EXPECT_NEAR(value, 133, 1e-6);  // 1 - 12 + 144
  EXPECT_EQ(poly.data(), (std::vector<int>{5, 5}));
}

TEST(FindTheKnotInParticularDirectionPoly, ProblemLeavesBothUntouched) {
  const support::CapturedStream log(std::clog);
  polynomial<int> poly = support::stored({5, 5});
  double value = -7;
  EXPECT_EQ(FindTheKnotInParticularDirection_poly(unprojectable(), poly, value, 0, 16), 1);
  EXPECT_EQ(poly.data(), (std::vector<int>{5, 5}));
  EXPECT_EQ(value, -7);
}

TEST(FindTheKnotInParticularDirectionPoly, WithoutCrossingsTheAnswerIsOne) {
  const Chain triangle{{0, 0, 0, 1}, {5, 1, 0, 2}, {2, 6, 1, 3}};
  polynomial<int> poly;
  double value = 0;
  EXPECT_EQ(FindTheKnotInParticularDirection_poly(triangle, poly, value, 0, 16), 1);
  EXPECT_EQ(poly.data(), std::vector<int>{1});
  EXPECT_EQ(FindTheKnotInParticularDirection_poly(triangle, poly, value, 0, -1), 0);
  EXPECT_EQ(value, 1.0);
}

TEST(FindTheKnotInParticularDirectionPoly, RefillsTheTable) {
  FillKnotsArray();
  knotsArray[1].name = "scribbled";
  knotsArray[2].poly.clear();
  FindTheKnotInParticularDirection(trefoil(), 0);
  EXPECT_EQ(knotsArray[1].name, "3_1");
  EXPECT_EQ(knotsArray[2].poly, (std::vector<int>{1, -3, 1}));
}

TEST(FindTheKnotInParticularDirection, ChainsOfNoToFourAtomsAreUnknots) {
  const Chain square{{0, 0, 0, 1}, {5, 1, 0, 2}, {6, 6, 1, 3}, {1, 5, 2, 4}};
  for (std::size_t atoms = 0; atoms <= 4; ++atoms) {
    const Chain chain(square.begin(), square.begin() + static_cast<std::ptrdiff_t>(atoms));
    EXPECT_EQ(FindTheKnotInParticularDirection(chain, 0), 0) << atoms;
  }
}

TEST(PolyString, CoefficientsSeparatedByBlanks) {
  EXPECT_EQ(FindTheKnotInParticularDirection_poly_string(trefoil(), 50, false), "1 -1 1");
  EXPECT_EQ(FindTheKnotInParticularDirection_poly_string(support::figure_eight(60), 50, false),
            "1 -3 1");
}

TEST(PolyString, EmptyAboveTheLimitOrAfterAProblem) {
  const support::CapturedStream log(std::clog);
  EXPECT_EQ(FindTheKnotInParticularDirection_poly_string(trefoil(), 2, false), "");
  EXPECT_EQ(FindTheKnotInParticularDirection_poly_string(unprojectable(), 50, false), "");
}

TEST(PolyString, NumericIgnoresTheLimit) {
  const support::CapturedStream log(std::clog);
  EXPECT_EQ(FindTheKnotInParticularDirection_poly_string(trefoil(), 50, true), "133");
  EXPECT_EQ(FindTheKnotInParticularDirection_poly_string({}, 50, true), "1");
  EXPECT_EQ(FindTheKnotInParticularDirection_poly_string(unprojectable(), 50, true), "0");
}

TEST(RemoveTrailingZeros, KeepsWhatMatters) {
  EXPECT_EQ(removeTrailingZeros(2.5F), "2.5");
  EXPECT_EQ(removeTrailingZeros(3.0F), "3");
  EXPECT_EQ(removeTrailingZeros(0.0F), "0");
  EXPECT_EQ(removeTrailingZeros(-0.0F), "-0");
  EXPECT_EQ(removeTrailingZeros(10.0F), "10");
  EXPECT_EQ(removeTrailingZeros(1.0005F), "1");
  EXPECT_EQ(removeTrailingZeros(-2.25F), "-2.25");
}

TEST(RemoveTrailingZeros, WritesAPointInEveryLocale) {
  const support::NationalLocale locale;
  EXPECT_EQ(removeTrailingZeros(2.5F), "2.5");
  EXPECT_EQ(removeTrailingZeros(1234567.0F), "1234567");
}

}  // namespace
