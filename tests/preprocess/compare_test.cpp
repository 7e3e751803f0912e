#include <gtest/gtest.h>

#include <limits>

#include "preprocess.h"

namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(CompareEq, IsTrueWithinEpsAndFalseAtEps) {
  EXPECT_TRUE(CompareEq(1.0, 1.25, 0.5));
  EXPECT_TRUE(CompareEq(1.25, 1.0, 0.5));
  EXPECT_FALSE(CompareEq(1.0, 1.5, 0.5));
  EXPECT_FALSE(CompareEq(1.5, 1.0, 0.5));
}

TEST(CompareEq, IsFalseForEqualNumbersWithoutEps) {
  EXPECT_FALSE(CompareEq(1.0, 1.0, 0.0));
  EXPECT_FALSE(CompareEq(1.0, 1.0, -1.0));
  EXPECT_TRUE(CompareEq(0.0, -0.0, 1e-300));
}

TEST(CompareEq, IsFalseForWhatIsNotANumber) {
  EXPECT_FALSE(CompareEq(kNan, 1, 5));
  EXPECT_FALSE(CompareEq(1, kNan, 5));
  EXPECT_FALSE(CompareEq(1, 1, kNan));
  EXPECT_FALSE(CompareEq(kInfinity, kInfinity, 5));
  EXPECT_TRUE(CompareEq(1, 2, kInfinity));
}

}  // namespace
