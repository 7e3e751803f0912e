#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "korvex.h"
#include "support/stored_coefficients.hpp"

namespace {

using support::stored;

class WhichKnotTest : public testing::Test {
 protected:
  void SetUp() override { FillKnotsArray(); }
};

TEST_F(WhichKnotTest, EveryTableEntryIsFoundUpToAUnit) {
  for (int k = 0; k <= 38; ++k) {
    std::vector<int> shifted{0, 0};
    for (const int c : knotsArray[k].poly) shifted.push_back(-c);
    shifted.push_back(0);
    EXPECT_EQ(WhichKnot_OrdNr(stored(knotsArray[k].poly)), k);
    EXPECT_EQ(WhichKnot_OrdNr(stored(shifted)), k);
    EXPECT_EQ(WhichKnot(stored(shifted)), knotsArray[k].name);
  }
}

TEST_F(WhichKnotTest, UnitsAndTrailingZerosDoNotMatter) {
  EXPECT_EQ(WhichKnot_OrdNr(stored({-1, 1, -1})), 1);
  EXPECT_EQ(WhichKnot_OrdNr(stored({0, 0, 1, -1, 1})), 1);
  EXPECT_EQ(WhichKnot_OrdNr(stored({1, -1, 1, 0})), 1);
}

TEST_F(WhichKnotTest, ZeroIsTheUnknotAndEmptyIsNothing) {
  EXPECT_EQ(WhichKnot_OrdNr(stored({0, 0})), 0);
  EXPECT_EQ(WhichKnot_OrdNr({}), 39);
  EXPECT_EQ(WhichKnot({}), "NO");
}

TEST_F(WhichKnotTest, NoMatch) {
  EXPECT_EQ(WhichKnot_OrdNr(stored({2, -2})), 39);
  EXPECT_EQ(WhichKnot(stored({2, -2})), "NO");
}

TEST(EqualPolies, TrailingZerosDoNotMatterAndUnitsDo) {
  EXPECT_TRUE(EqualPolies(stored({1, -1, 1}), stored({1, -1, 1, 0, 0})));
  EXPECT_TRUE(EqualPolies(stored({1, -1, 1, 0}), stored({1, -1, 1})));
  EXPECT_FALSE(EqualPolies(stored({1, -1, 1}), stored({0, 1, -1, 1})));
  EXPECT_FALSE(EqualPolies(stored({1, -1, 1}), stored({-1, 1, -1})));
  EXPECT_FALSE(EqualPolies(stored({1, -1}), stored({1, -1, 1})));
  EXPECT_TRUE(EqualPolies({}, stored({0, 0})));
  EXPECT_TRUE(EqualPolies({}, {}));
  EXPECT_FALSE(EqualPolies({}, stored({1})));
}

TEST_F(WhichKnotTest, NumericValues) {
  for (const double value : {13.0, 39.0, -117.0, 13.000005}) {
    EXPECT_EQ(WhichKnotDouble_OrdNr(value), 1) << value;
  }
  EXPECT_EQ(WhichKnotDouble_OrdNr(13.4), 40);
  EXPECT_EQ(WhichKnotDouble_OrdNr(0.0), 39);
  EXPECT_EQ(WhichKnotDouble_OrdNr(1.0), 0);
  EXPECT_EQ(WhichKnotDouble_OrdNr(45.0), 9);
  EXPECT_EQ(WhichKnotDouble_OrdNr(12.999995), 1);
  EXPECT_EQ(WhichKnotDouble_OrdNr(-12.999995), 1);
}

TEST_F(WhichKnotTest, NumericValuesThatAreNoIntegers) {
  EXPECT_EQ(WhichKnotDouble_OrdNr(std::numeric_limits<double>::quiet_NaN()), 40);
  EXPECT_EQ(WhichKnotDouble_OrdNr(std::numeric_limits<double>::infinity()), 40);
  EXPECT_EQ(WhichKnotDouble_OrdNr(1e300), 39);
}

// No magnitude is left out of the search: what records hold decides.
TEST_F(WhichKnotTest, ZeroIsTheFirstRecordOfATableThatWasNeverFilled) {
  for (KnotRecord& record : knotsArray) record = {};
  EXPECT_EQ(WhichKnotDouble_OrdNr(0.0), 0);
  EXPECT_EQ(WhichKnotDouble_OrdNr(-0.000001), 0);
  EXPECT_EQ(WhichKnotDouble_OrdNr(1.0), 39);
  FillKnotsArray();
  EXPECT_EQ(WhichKnotDouble_OrdNr(0.0), 39);
}

TEST_F(WhichKnotTest, PolynomialByExactValueAtMinusThree) {
  EXPECT_EQ(GivePolyByValM3(1573.0).data(), (std::vector<int>{1, -2, 3, -3, 3, -2, 1}));
  EXPECT_EQ(GivePolyByValM3(13.0).data(), (std::vector<int>{1, -1, 1}));
  for (const double value : {1573.5, 0.0, 39.0, std::nan("")}) {
    EXPECT_EQ(GivePolyByValM3(value).data(), std::vector<int>{1}) << value;
  }
}

}  // namespace
