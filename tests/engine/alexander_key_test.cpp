#include <gtest/gtest.h>

#include <cstdint>
#include <utility>
#include <vector>

#include "korvex/alexander.hpp"
#include "support/diagrams.hpp"
#include "support/knot_rows.hpp"

namespace korvex {
namespace {

TEST(AlexanderKey, IsThatOfThePolynomialOfEveryPrimeKnotToTenCrossings) {
  ASSERT_EQ(support::knot_rows().size(), 249U);
  for (const support::KnotRow& row : support::knot_rows()) {
    const Diagram diagram = Diagram::of_pd(row.pd);
    EXPECT_EQ(alexander_key(diagram), alexander_key_of(row.alexander)) << row.name;
    EXPECT_EQ(alexander_key(diagram.mirror()), alexander_key(diagram)) << row.name;
    EXPECT_EQ(alexander_key(diagram.reversed()), alexander_key(diagram)) << row.name;
  }
}

TEST(AlexanderKey, IsOneForDiagramsOfTheUnknotThatAreEasyToSee) {
  EXPECT_EQ(alexander_key(Diagram()), 1U);
  EXPECT_EQ(alexander_key(Diagram::of_gauss_code("O1+U1+")), 1U);
  EXPECT_EQ(alexander_key(Diagram::of_gauss_code("U1-O1-U2+O2+")), 1U);
}

TEST(AlexanderKey, IsMultipliedByConnectedSum) {
  const std::vector<std::int64_t> granny = {1, -2, 3, -2, 1};
  const Diagram trefoil = Diagram::of_gauss_code("O1+U2+O3+U1+O2+U3+");
  EXPECT_EQ(alexander_key(trefoil.connected_sum(trefoil.mirror())), alexander_key_of(granny));
}

// (t^pq - 1)(t - 1) / ((t^p - 1)(t^q - 1)) has the coefficients of a numerical semigroup.
std::vector<std::int64_t> torus_knot_polynomial(int p, int q) {
  const int degree = (p - 1) * (q - 1);
  std::vector<std::int64_t> in_semigroup(static_cast<std::size_t>(degree + 1), 0);
  for (int a = 0; a <= degree; a += p)
    for (int b = a; b <= degree; b += q) in_semigroup[static_cast<std::size_t>(b)] = 1;
  std::vector<std::int64_t> coefficients = in_semigroup;
  for (std::size_t k = 1; k < coefficients.size(); ++k) coefficients[k] -= in_semigroup[k - 1];
  return coefficients;
}

TEST(AlexanderKey, IsThatOfTorusKnotsOnManyStrands) {
  for (const auto& [p, q] : {std::pair(2, 2001), {9, 10}, {17, 18}, {30, 31}, {40, 41}}) {
    const Diagram diagram = Diagram::of_gauss_code(support::torus_knot_code(p, q));
    EXPECT_EQ(alexander_key(diagram), alexander_key_of(torus_knot_polynomial(p, q))) << p;
  }
}

TEST(AlexanderKey, OfALongConnectedSumIsTheProductOfItsParts) {
  const Diagram wide = Diagram::of_gauss_code(support::torus_knot_code(11, 13));
  const Diagram narrow = Diagram::of_gauss_code("O1+U2+O3+U1+O2+U3+");
  Diagram sum;
  std::uint64_t key = 1;
  for (int k = 0; k < 20; ++k) {
    for (const Diagram& part : {k % 3 == 0 ? wide : narrow, narrow.mirror()}) {
      sum = sum.connected_sum(part);
      key = alexander_key_of_sum(key, alexander_key(part));
    }
  }
  EXPECT_EQ(alexander_key(sum), key);
}

}  // namespace
}  // namespace korvex
