#include "geometry/tournament.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <vector>

#include "support/chains.hpp"

namespace korvex {
namespace {

using Knockout = Tournament<std::less<std::uint32_t>>;

template <class Earlier>
void assign(Tournament<Earlier>& knockout, const std::vector<double>& keys) {
  knockout.assign(keys.size(), [&](std::uint32_t player) { return keys[player]; });
}

std::uint32_t winner_of(const std::vector<double>& keys) {
  return static_cast<std::uint32_t>(std::min_element(keys.begin(), keys.end()) - keys.begin());
}

TEST(Tournament, OfNobodyIsOver) {
  Knockout knockout({});
  assign(knockout, {});
  EXPECT_TRUE(knockout.is_over());
  assign(knockout, {Knockout::kOut, Knockout::kOut});
  EXPECT_TRUE(knockout.is_over());
}

TEST(Tournament, AsksForThePreferenceAmongEqualsAlone) {
  const std::vector<double> keys{3, 1, 2, 1, 1};
  Knockout first({});
  assign(first, keys);
  EXPECT_EQ(first.winner(), 1U);
  Tournament<std::greater<std::uint32_t>> last({});
  assign(last, keys);
  EXPECT_EQ(last.winner(), 4U);
}

TEST(Tournament, TellsKeysApartThatSinglePrecisionDoesNot) {
  Knockout knockout({});
  assign(knockout, {1 + 0x1p-50, 1 + 0x1p-51, 1, 1 + 0x1p-52});
  EXPECT_EQ(knockout.winner(), 2U);
  knockout.set(2, 1 + 0x1p-49);
  EXPECT_EQ(knockout.winner(), 3U);
  knockout.set(0, 0x1p-1060);
  knockout.set(1, 0x1p-1061);
  EXPECT_EQ(knockout.winner(), 1U);
  knockout.set(3, 0);
  EXPECT_EQ(knockout.winner(), 3U);
}

// Few values, so that many keys are equal, and some that only single precision takes for equal.
TEST(Tournament, IsWonByTheSmallestThroughAllChanges) {
  support::Random random(21);
  const auto any_key = [&]() -> double {
    if (random.below(4) == 0) return Knockout::kOut;
    return random.below(20) + (random.below(2) == 0 ? 0 : 0x1p-40 * random.below(3));
  };
  for (const std::size_t count : {1U, 2U, 3U, 16U, 17U, 100U, 600U}) {
    const auto any_player = [&] {
      return static_cast<std::uint32_t>(random.below(static_cast<int>(count)));
    };
    std::vector<double> keys;
    for (std::size_t k = 0; k < count; ++k) keys.push_back(any_key());
    Knockout knockout({});
    assign(knockout, keys);
    for (int round = 0; round < 2000; ++round) {
      const std::uint32_t winner = winner_of(keys);
      ASSERT_EQ(knockout.is_over(), keys[winner] == Knockout::kOut);
      if (!knockout.is_over()) {
        ASSERT_EQ(knockout.winner(), winner);
      }
      const std::array players{any_player(), any_player(),
                               random.below(2) == 0 ? winner : any_player()};
      const std::array changed{any_key(), any_key(), any_key()};
      if (random.below(2) == 0) {
        knockout.set(players[0], changed[0]);
        keys[players[0]] = changed[0];
      } else {
        knockout.set(players, changed);
        for (std::size_t i = 0; i < players.size(); ++i) keys[players[i]] = changed[i];
      }
    }
  }
}

}  // namespace
}  // namespace korvex
