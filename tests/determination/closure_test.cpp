#include <gtest/gtest.h>

#include <array>
#include <numeric>

#include "korvex.h"
#include "support/chains.hpp"

namespace {

using Counts = std::array<int, 42>;

Counts determined(const support::Chain& chain, int closure, int trials) {
  Counts counts;
  counts.fill(-5);
  EXPECT_EQ(FindOneKnot(chain, counts.data(), closure, trials), 0);
  return counts;
}

int total(const Counts& counts) { return std::accumulate(counts.begin(), counts.end() - 1, 0); }

const support::Chain kTrefoil = support::torus_knot(2, 3, 40);

TEST(FindOneKnot, UnclosedAndOutwardClosuresDetermineOnce) {
  for (const int closure : {0, 1}) {
    for (const int trials : {100, 0, -3}) {
      EXPECT_EQ(total(determined(kTrefoil, closure, trials)), 1);
    }
  }
  EXPECT_EQ(determined(kTrefoil, 0, 100)[1], 1);
}

TEST(FindOneKnot, OtherClosuresDetermineAsOftenAsTold) {
  for (const int closure : {2, 3, 4, 5, -1}) EXPECT_EQ(total(determined(kTrefoil, closure, 7)), 7);
}

TEST(FindOneKnot, WithoutTrialsTheCountersAreOnlyZeroed) {
  for (const int trials : {0, -1}) {
    const Counts counts = determined(kTrefoil, 2, trials);
    EXPECT_EQ(total(counts), 0);
    for (std::size_t k = 0; k < 41; ++k) EXPECT_EQ(counts[k], 0);
  }
}

TEST(FindOneKnot, NeverTouchesTheLastCounterAndNeverCountsForty) {
  const Counts counts = determined(kTrefoil, 2, 20);
  EXPECT_EQ(counts[41], -5);
  EXPECT_EQ(counts[40], 0);
}

TEST(FindOneKnot, UnknownClosuresLeaveTheChainAsItIs) {
  const Counts counts = determined(kTrefoil, 9, 6);
  EXPECT_EQ(counts[1], 6);
}

TEST(FindOneKnot, OneSeedGivesOneRun) {
  std::srand(11);
  const Counts first = determined(support::confined_walk(80, 3, 5), 2, 30);
  std::srand(11);
  EXPECT_EQ(determined(support::confined_walk(80, 3, 5), 2, 30), first);
}

TEST(FindOneKnot, ShortAndDegenerateChainsEnd) {
  const support::Chain line{{0, 0, 0, 1}, {1, 0, 0, 2}, {2, 0, 0, 3}, {3, 0, 0, 4}};
  for (std::size_t atoms = 0; atoms <= 4; ++atoms) {
    const support::Chain chain(line.begin(), line.begin() + static_cast<std::ptrdiff_t>(atoms));
    for (const int closure : {0, 1, 2, 3, 4}) {
      EXPECT_EQ(total(determined(chain, closure, 3)), closure < 2 ? 1 : 3);
    }
  }
  const support::Chain repeated(5, ChainAtom{1, 1, 1, 1});
  for (const int closure : {0, 1, 2, 3, 4}) EXPECT_GE(total(determined(repeated, closure, 2)), 1);
}

}  // namespace
