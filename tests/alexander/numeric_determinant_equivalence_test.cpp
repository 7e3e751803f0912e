// det_double against its plain form, bit for bit, and the remainder that it counts factors by.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <random>

#include "alexander/exact_remainder.hpp"
#include "korvex.h"
#include "reference/reference.hpp"
#include "support/bits.hpp"
#include "support/determinant_ends.hpp"
#include "support/effort.hpp"
#include "support/number_matrices.hpp"
#include "support/simd_targets.hpp"

namespace {

using support::same_bits;

bool same_bits(const support::NumberMatrix& a, const support::NumberMatrix& b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (a[i].size() != b[i].size()) return false;
    for (std::size_t j = 0; j < a[i].size(); ++j) {
      if (!same_bits(a[i][j], b[i][j])) return false;
    }
  }
  return true;
}

TEST(DetDouble, EqualsThePlainFormAndLeavesTheSameMatrix) {
  constexpr int kPoints[] = {12, 2, 3, -3, 7, 0, 1000003};
  int zeros = 0;
  int compared = 0;
  for (int seed = 0; seed < support::input_count(); ++seed) {
    const int p = seed % 3 != 0 ? 12 : kPoints[seed / 3 % 7];
    const auto matrix = support::random_number_matrix(static_cast<std::uint64_t>(seed));
    if (!support::determinant_ends(matrix, p)) continue;
    auto plain_matrix = matrix;
    const double plain = reference::det_double(plain_matrix, p);
    for (const std::int64_t target : support::simd_targets()) {
      const support::ForcedTarget forced(target);
      auto fast_matrix = matrix;
      ASSERT_TRUE(same_bits(det_double(fast_matrix, p), plain))
          << support::simd_target_name(target) << ", seed " << seed;
      ASSERT_TRUE(same_bits(fast_matrix, plain_matrix))
          << support::simd_target_name(target) << ", seed " << seed;
    }
    zeros += plain == 0 ? 1 : 0;
    ++compared;
  }
  EXPECT_GT(zeros, 100);
  EXPECT_GT(compared, support::input_count() / 2);
}

TEST(ExactRemainder, IsThatOfTheLibrary) {
  std::mt19937_64 random(3);
  for (int k = 0; k < 40 * support::input_count(); ++k) {
    double x = std::bit_cast<double>(random());
    if (k % 3 == 0)
      x = std::ldexp(static_cast<double>(random() >> 11), static_cast<int>(random() % 80) - 40);
    int p = static_cast<int>(random() % 30) - 4;
    if (k % 5 == 0) p = static_cast<int>(random() % (1U << 21)) - (1 << 20);
    if (k % 7 == 0 && p != 0) x = std::trunc(x / p) * p;
    ASSERT_TRUE(same_bits(korvex::alexander::exact_remainder(x, p), std::fmod(x, p)))
        << std::hexfloat << x << " " << p;
  }
}

TEST(ExactRemainder, KeepsTheSignOfZero) {
  EXPECT_TRUE(std::signbit(korvex::alexander::exact_remainder(-24.0, 12)));
  EXPECT_FALSE(std::signbit(korvex::alexander::exact_remainder(24.0, -12)));
  EXPECT_TRUE(std::signbit(korvex::alexander::exact_remainder(-0.0, 12)));
  EXPECT_TRUE(std::isnan(korvex::alexander::exact_remainder(1.0, 0)));
  EXPECT_TRUE(std::isnan(korvex::alexander::exact_remainder(INFINITY, 12)));
}

}  // namespace
