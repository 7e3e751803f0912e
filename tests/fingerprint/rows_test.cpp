#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "korvex.h"
#include "support/national_locale.hpp"

namespace {

TEST(MakeRowFromJob, MatrixMode) {
  const RowFile row = MakeRowFromJob("K1 K2", {0, 0, 11, 160, 12, 161}, 70, 1);
  EXPECT_EQ(row.text, "11 160 K1 K2 12 161");
  EXPECT_EQ(row.begin, 12);
  EXPECT_EQ(row.end, 161);
  EXPECT_EQ(row.strength, 70);
  EXPECT_EQ(MakeRowFromJob("K", {0, 0, 1, 2, 3, 4}, 0, -1).text, "1 2 K 3 4");
}

TEST(MakeRowFromJob, DictionaryModeWithNegativeNumbers) {
  EXPECT_EQ(MakeRowFromJob("{'1 -1 1': 1}", {0, 0, -4, 17, 1, 22}, 0, 0).text,
            "(-4, 17): {'1 -1 1': 1}");
}

TEST(MakeRowFromJob, DoesNotGroupDigitsInAnyLocale) {
  const support::NationalLocale locale;
  EXPECT_EQ(MakeRowFromJob("K", {0, 0, 1001, 2345, 1000, 2344}, 0, 1).text,
            "1001 2345 K 1000 2344");
  EXPECT_EQ(MakeRowFromJob("K", {0, 0, 1001, 2345, 1000, 2344}, 0, 0).text, "(1001, 2345): K");
}

TEST(WayToSortRowsToFile, ByBeginThenLongestFirst) {
  std::vector<RowFile> rows{{3, 90, 0, ""}, {3, 120, 0, ""}, {1, 50, 0, ""}, {1, 200, 0, ""}};
  std::sort(rows.begin(), rows.end(), WayToSortRowsToFile);
  std::vector<std::pair<int, int>> order;
  for (const RowFile& row : rows) order.emplace_back(row.begin, row.end);
  EXPECT_EQ(order, (std::vector<std::pair<int, int>>{{1, 200}, {1, 50}, {3, 120}, {3, 90}}));
  EXPECT_FALSE(WayToSortRowsToFile({1, 5, 0, ""}, {1, 5, 9, ""}));
}

}  // namespace
