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

}  // namespace
