#include <gtest/gtest.h>

#include <array>
#include <initializer_list>
#include <map>
#include <string>
#include <utility>

#include "korvex.h"
#include "support/national_locale.hpp"

namespace {

using Counts = std::array<int, 42>;
using Tally = std::map<std::string, float>;

std::string bands(std::initializer_list<std::pair<int, int>> list) {
  Counts counts{};
  for (const auto& [ordinal, count] : list) counts[static_cast<std::size_t>(ordinal)] = count;
  return GiveTheNameOfKnot_toMatrix(counts.data());
}

// `before` bands of "0 ", the names, and "0 " up to 31 bands, then the last column.
std::string expected(int before, const std::string& names, const std::string& inside = "0") {
  std::string text;
  for (int band = 0; band < 31; ++band) text += (band == before ? names : "0") + " ";
  return text + inside;
}

class Bands : public testing::Test {
 protected:
  void SetUp() override { FillKnotsArray(); }
};

TEST_F(Bands, NoVotes) { EXPECT_EQ(bands({}), "EMPTY KNOTS TABLE in GIVETHENAME...()"); }

TEST_F(Bands, UnknotNeedsMoreThanHalf) {
  EXPECT_EQ(bands({{0, 20}}), "01");
  EXPECT_EQ(bands({{0, 11}, {40, 9}}), "01");
  EXPECT_EQ(bands({{0, 10}, {40, 4}, {41, 6}}), expected(31, "", "50"));
  EXPECT_EQ(bands({{41, 3}}), expected(31, "", "100"));
}

TEST_F(Bands, OneKnotWithEveryVote) { EXPECT_EQ(bands({{1, 7}}), expected(0, "3_1")); }

TEST_F(Bands, TwoKnotsAtHalfShareTheBandOf48) {
  EXPECT_EQ(bands({{1, 10}, {2, 10}}), expected(14, "3_1,4_1"));
}

TEST_F(Bands, ThresholdsAreStrict) {
  EXPECT_EQ(bands({{1, 9}, {0, 1}}), expected(1, "3_1"));
  EXPECT_EQ(bands({{1, 91}, {0, 9}}), expected(0, "3_1"));
}

TEST_F(Bands, BelowOnePercentIsNeverListed) {
  EXPECT_EQ(bands({{0, 999}, {1, 1}}), expected(31, ""));
  EXPECT_EQ(bands({{0, 99}, {1, 1}}), expected(30, "3_1"));
}

TEST_F(Bands, InsideColumnAndUnmatched) {
  EXPECT_EQ(bands({{39, 3}, {40, 1}}), expected(6, "-3", "25"));
}

TEST(WayToSortPolies, LargerCountFirst) {
  EXPECT_TRUE(WayToSortPolies({"a", 2.0F}, {"b", 1.0F}));
  EXPECT_FALSE(WayToSortPolies({"a", 1.0F}, {"b", 1.0F}));
}

TEST(GiveThePoliesToDict, OneSingleDeterminationIsTheKeyAlone) {
  EXPECT_EQ(GiveThePolies_toDict({{"1 -1 1", 1.0F}}), "'1 -1 1'");
  EXPECT_EQ(GiveThePolies_toDict({{"1", 1.0F}}), "'1'");
}

TEST(GiveThePoliesToDict, OneEntryOfSeveral) {
  EXPECT_EQ(GiveThePolies_toDict({{"1", 2.0F}}), "{'1': 1}");
}

TEST(GiveThePoliesToDict, Empty) { EXPECT_EQ(GiveThePolies_toDict({}), "{}"); }

TEST(GiveThePoliesToDict, SharesInFallingOrderRoundedToThousandths) {
  EXPECT_EQ(GiveThePolies_toDict({{"1", 1.0F}, {"1 -1 1", 2.0F}}), "{'1 -1 1': 0.667, '1': 0.333}");
  EXPECT_EQ(GiveThePolies_toDict({{"1", 15.0F}, {"1 -3 1", 1.0F}}),
            "{'1': 0.938, '1 -3 1': 0.063}");
}

TEST(GiveThePoliesToDict, SharesHaveAPointInEveryLocale) {
  const support::NationalLocale locale;
  EXPECT_EQ(GiveThePolies_toDict({{"1", 1.0F}, {"1 -1 1", 3.0F}}), "{'1 -1 1': 0.75, '1': 0.25}");
}

TEST(GiveTheStrenghtOfKnotPoly, LeavesTheUnknotOut) {
  EXPECT_EQ(GiveTheStrenghtOfKnot_poly({}), 0);
  EXPECT_EQ(GiveTheStrenghtOfKnot_poly({{"1", 9.0F}}), 0);
  EXPECT_EQ(GiveTheStrenghtOfKnot_poly({{"1", 1.0F}, {"1 -1 1", 2.0F}}), 66);
  EXPECT_EQ(GiveTheStrenghtOfKnot_poly({{"0", 3.0F}, {"1 -1 1", 2.0F}}), 60);
}

TEST(GiveTheStrenghtOfKnotPoly, CountsAreTruncatedAtEveryStep) {
  EXPECT_EQ(GiveTheStrenghtOfKnot_poly({{"a", 1.9F}, {"b", 0.9F}}), 100);
}

}  // namespace
