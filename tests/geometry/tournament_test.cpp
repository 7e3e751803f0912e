#include "geometry/tournament.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <vector>

#include "support/chains.hpp"

namespace korvex {
namespace {

using Knockout = Tournament<std::less<std::uint32_t>>;

std::uint32_t winner_of(const std::vector<double>& keys) {
  return static_cast<std::uint32_t>(std::min_element(keys.begin(), keys.end()) - keys.begin());
}

TEST(Tournament, OfNobodyIsOver) {
  Knockout knockout({});
  knockout.assign({});
  EXPECT_TRUE(knockout.is_over());
  knockout.assign({Knockout::kOut, Knockout::kOut});
  EXPECT_TRUE(knockout.is_over());
}

TEST(Tournament, AsksForThePreferenceAmongEqualsAlone) {
  const std::vector<double> keys{3, 1, 2, 1, 1};
  Knockout first({});
  first.assign(keys);
  EXPECT_EQ(first.winner(), 1U);
  Tournament<std::greater<std::uint32_t>> last({});
  last.assign(keys);
  EXPECT_EQ(last.winner(), 4U);
}

// Few values, so that many keys are equal.
TEST(Tournament, IsWonByTheSmallestThroughAllChanges) {
  support::Random random(21);
  for (const std::size_t count : {1U, 2U, 3U, 16U, 17U, 100U}) {
    std::vector<double> keys;
    for (std::size_t k = 0; k < count; ++k) keys.push_back(random.below(20));
    Knockout knockout({});
    knockout.assign(keys);
    for (int round = 0; round < 2000; ++round) {
      const std::uint32_t winner = winner_of(keys);
      ASSERT_EQ(knockout.is_over(), keys[winner] == Knockout::kOut);
      if (knockout.is_over()) break;
      ASSERT_EQ(knockout.winner(), winner);
      if (random.below(2) == 0) {
        const auto any = static_cast<std::uint32_t>(random.below(static_cast<int>(count)));
        keys[any] = random.below(3) == 0 ? Knockout::kOut : random.below(20);
        knockout.set(any, keys[any]);
        continue;
      }
      for (int changes = random.below(3); changes > 0; --changes) {
        const auto any = static_cast<std::uint32_t>(random.below(static_cast<int>(count)));
        if (any == winner) continue;
        keys[any] = random.below(20);
        knockout.set_beside_winner(any, keys[any]);
      }
      keys[winner] = Knockout::kOut;
      knockout.drop_winner();
    }
  }
}

}  // namespace
}  // namespace korvex
