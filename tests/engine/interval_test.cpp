#include "korvex/interval.hpp"

#include <gtest/gtest.h>

namespace korvex {
namespace {

// Values of R. G. Newcombe, Stat. Med. 17, 857 (1998), table I, method 3.
TEST(WilsonInterval, AgreesWithPublishedValues) {
  const Interval common = wilson_interval(81, 263);
  EXPECT_NEAR(common.low, 0.2553, 5e-5);
  EXPECT_NEAR(common.high, 0.3662, 5e-5);
  const Interval few = wilson_interval(15, 148);
  EXPECT_NEAR(few.low, 0.0624, 5e-5);
  EXPECT_NEAR(few.high, 0.1605, 5e-5);
  const Interval none = wilson_interval(0, 20);
  EXPECT_EQ(none.low, 0);
  EXPECT_NEAR(none.high, 0.1611, 5e-5);
  const Interval one = wilson_interval(1, 29);
  EXPECT_NEAR(one.low, 0.0061, 5e-5);
  EXPECT_NEAR(one.high, 0.1718, 5e-5);
}

TEST(WilsonInterval, OfTheOppositeShareIsItsMirrorImage) {
  for (const std::size_t trials : {1u, 2u, 10u, 100u, 1000u}) {
    for (std::size_t hits = 0; hits <= trials; hits += trials < 20 ? 1 : 7) {
      const Interval share = wilson_interval(hits, trials);
      const Interval rest = wilson_interval(trials - hits, trials);
      EXPECT_NEAR(share.low, 1 - rest.high, 1e-12);
      EXPECT_NEAR(share.high, 1 - rest.low, 1e-12);
      EXPECT_LE(share.low, static_cast<double>(hits) / static_cast<double>(trials));
      EXPECT_GE(share.high, static_cast<double>(hits) / static_cast<double>(trials));
    }
  }
}

TEST(WilsonInterval, WithoutTrialsSaysNothing) {
  EXPECT_EQ(wilson_interval(0, 0).low, 0);
  EXPECT_EQ(wilson_interval(0, 0).high, 1);
}

}  // namespace
}  // namespace korvex
