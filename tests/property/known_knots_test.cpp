#include <gtest/gtest.h>

#include <cstdlib>

#include "korvex.h"
#include "support/knot_key.hpp"
#include "support/knots.hpp"

namespace {

using support::KnownKnot;

int value_at_one(const std::vector<int>& coefficients) {
  int sum = 0;
  for (const int c : coefficients) sum += c;
  return sum;
}

// The rings are what they are called: an invariant made without the library's code says so.
TEST(KnownKnots, HaveTheAlexanderPolynomialOfTheirType) {
  for (const KnownKnot& knot : support::known_knots()) {
    const std::uint64_t expected = support::key_of_polynomial(knot.coefficients);
    EXPECT_EQ(support::knot_key(support::rotated(knot.ring, 5)), expected) << knot.name;
    EXPECT_EQ(support::knot_key(support::rotated(knot.ring, 6)), expected) << knot.name;
    EXPECT_EQ(std::abs(value_at_one(knot.coefficients)), 1) << knot.name;
  }
}

TEST(KnownKnots, TheTableHoldsTheirPolynomials) {
  FillKnotsArray();
  for (const KnownKnot& knot : support::known_knots()) {
    EXPECT_EQ(WhichKnot_OrdNr(polynomial<int>(knot.coefficients.begin(), knot.coefficients.end())),
              knot.ordinal)
        << knot.name;
    if (knot.ordinal == 39) continue;
    EXPECT_EQ(knotsArray[knot.ordinal].poly, knot.coefficients) << knot.name;
  }
}

// Every knot of the table and beyond, however its ring is written down.
TEST(KnownKnots, AreNamedHoweverTheirRingsAreWritten) {
  for (const KnownKnot& knot : support::known_knots()) {
    auto forms = support::reshaped(knot.ring, 11);
    for (auto& [how, ring] : forms) {
      ChainReduce(ring, true);
      polynomial<int> poly;
      double value = 0;
      EXPECT_EQ(FindTheKnotInParticularDirection_poly(ring, poly, value, 7, 200), 1);
      EXPECT_EQ(poly.data(), knot.coefficients) << knot.name << " " << how;
      EXPECT_EQ(WhichKnot_OrdNr(poly), knot.ordinal) << knot.name << " " << how;
    }
  }
}

}  // namespace
