#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <set>
#include <string>
#include <vector>

#include "korvex.h"
#include "support/stored_coefficients.hpp"

namespace {

class KnotTable : public testing::Test {
 protected:
  void SetUp() override { FillKnotsArray(); }
};

TEST_F(KnotTable, NamesInOrder) {
  const std::vector<std::string> names{"01",
                                       "3_1",
                                       "4_1",
                                       "5_1",
                                       "5_2",
                                       "6_1",
                                       "6_2",
                                       "6_3",
                                       "7_1",
                                       "7_2",
                                       "7_3",
                                       "7_4",
                                       "7_5",
                                       "7_6",
                                       "7_7",
                                       "8_1",
                                       "8_2",
                                       "8_3",
                                       "8_4",
                                       "8_5",
                                       "8_6",
                                       "8_7",
                                       "8_8",
                                       "8_9",
                                       "8_10",
                                       "8_11",
                                       "8_12",
                                       "8_13",
                                       "8_14",
                                       "8_15",
                                       "8_16",
                                       "8_17",
                                       "8_18",
                                       "8_19",
                                       "8_20|3_1#3_1",
                                       "8_21|3_1#4_1",
                                       "9_1",
                                       "3_1#5_1",
                                       "3_1#5_2",
                                       "-3",
                                       "Problem with projecting",
                                       "-2"};
  ASSERT_EQ(names.size(), 42U);
  for (std::size_t k = 0; k < 42; ++k) EXPECT_EQ(knotsArray[k].name, names[k]);
}

TEST_F(KnotTable, ValueAtMinusThreeIsThePolynomialsWithoutFactorsThree) {
  for (int k = 0; k <= 38; ++k) {
    int value = std::abs(CalculatePoly(support::stored(knotsArray[k].poly), -3));
    while (value % 3 == 0) value /= 3;
    EXPECT_EQ(knotsArray[k].valueAtMinus3, value) << knotsArray[k].name;
  }
  EXPECT_EQ(knotsArray[9].valueAtMinus3, 5);
  EXPECT_EQ(knotsArray[15].valueAtMinus3, 17);
  EXPECT_EQ(knotsArray[29].valueAtMinus3, 65);
}

TEST_F(KnotTable, ValuesAtMinusThreeAreDistinct) {
  std::set<int> values;
  for (int k = 0; k <= 38; ++k) values.insert(knotsArray[k].valueAtMinus3);
  EXPECT_EQ(values.size(), 39U);
}

TEST_F(KnotTable, ValuesAtMinusTwoWithTheirTwoOddOnes) {
  for (int k = 1; k <= 14; ++k) {
    if (k == 12) continue;
    EXPECT_EQ(knotsArray[k].valueAtMinus2, CalculatePoly(support::stored(knotsArray[k].poly), -2));
  }
  EXPECT_EQ(knotsArray[12].valueAtMinus2, 104);
  EXPECT_EQ(knotsArray[37].valueAtMinus2, 112);
  EXPECT_EQ(knotsArray[37].valueAtMinus3, 1573);
  EXPECT_EQ(knotsArray[38].valueAtMinus2, 0);
  EXPECT_EQ(knotsArray[38].valueAtMinus3, 377);
  for (int k = 15; k <= 36; ++k) EXPECT_EQ(knotsArray[k].valueAtMinus2, 0);
}

TEST_F(KnotTable, PolynomialsArePalindromesThatTakeOneAtOne) {
  for (int k = 0; k <= 38; ++k) {
    const std::vector<int>& poly = knotsArray[k].poly;
    EXPECT_EQ(poly, std::vector<int>(poly.rbegin(), poly.rend()));
    EXPECT_EQ(std::abs(CalculatePoly(support::stored(poly), 1)), 1);
    EXPECT_GT(poly.front(), 0);
  }
}

TEST_F(KnotTable, FailureRecords) {
  for (int k = 39; k <= 41; ++k) {
    EXPECT_EQ(knotsArray[k].poly, std::vector<int>{1});
    EXPECT_EQ(knotsArray[k].valueAtMinus2, 0);
    EXPECT_EQ(knotsArray[k].valueAtMinus3, 0);
  }
}

TEST_F(KnotTable, FillingAgainMendsAndAppendsNothing) {
  knotsArray[3].name = "scribbled";
  knotsArray[3].poly.push_back(9);
  knotsArray[4].valueAtMinus3 = -1;
  FillKnotsArray();
  EXPECT_EQ(knotsArray[3].name, "5_1");
  EXPECT_EQ(knotsArray[3].poly, (std::vector<int>{1, -1, 1, -1, 1}));
  EXPECT_EQ(knotsArray[4].valueAtMinus3, 29);
}

TEST_F(KnotTable, FillingWritesNoValueAtMinusTwoButThoseItStores) {
  for (KnotRecord& record : knotsArray) record = {{7}, -5, -5, "scribbled"};
  FillKnotsArray();
  for (int k = 0; k < 42; ++k) {
    const bool is_stored = k <= 14 || k == 37;
    EXPECT_EQ(knotsArray[k].valueAtMinus2 == -5, !is_stored) << k;
    EXPECT_NE(knotsArray[k].valueAtMinus3, -5) << k;
    EXPECT_NE(knotsArray[k].poly, std::vector<int>{7}) << k;
    EXPECT_NE(knotsArray[k].name, "scribbled") << k;
    knotsArray[k].valueAtMinus2 = 0;
  }
}

// In a process of its own, where nothing has filled the table.
TEST(KnotTableDeathTest, IsEmptyBeforeTheFirstFill) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto is_empty = [](const KnotRecord& knot) {
    return knot.poly.empty() && knot.name.empty() && knot.valueAtMinus2 == 0 &&
           knot.valueAtMinus3 == 0;
  };
  EXPECT_EXIT(std::exit(std::all_of(knotsArray, knotsArray + 42, is_empty) ? 7 : 8),
              testing::ExitedWithCode(7), "");
}

}  // namespace
