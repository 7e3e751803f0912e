#include <gtest/gtest.h>

#include "korvex/alexander.hpp"
#include "support/knot_rows.hpp"

namespace korvex {
namespace {

const std::vector<support::KnotRow>& rows() {
  static const auto all = support::read_knot_rows(KORVEX_DATA_DIR "/prime_knots_to_10.tsv");
  return all;
}

TEST(AlexanderKey, IsThatOfThePolynomialOfEveryPrimeKnotToTenCrossings) {
  ASSERT_EQ(rows().size(), 249U);
  for (const support::KnotRow& row : rows()) {
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

}  // namespace
}  // namespace korvex
