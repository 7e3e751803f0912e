#include <gtest/gtest.h>

#include <array>
#include <initializer_list>
#include <string>
#include <utility>

#include "korvex.h"

namespace {

using Counts = std::array<int, 42>;

// Counters of the given (ordinal, votes), all others 0.
Counts votes(std::initializer_list<std::pair<int, int>> list) {
  Counts counts{};
  for (const auto& [ordinal, count] : list) counts[static_cast<std::size_t>(ordinal)] = count;
  return counts;
}

std::string ranking(Counts counts) { return GiveTheNameOfKnot_allProj(counts.data()); }
std::string one(Counts counts) { return GiveTheNameOfKnotOne(counts.data()); }
int strength(Counts counts) { return GiveTheStrenghtOfKnot(counts.data()); }

class Votes : public testing::Test {
 protected:
  void SetUp() override { FillKnotsArray(); }
};

TEST_F(Votes, NoVotes) {
  EXPECT_EQ(ranking({}), "");
  EXPECT_EQ(one({}), "-2");
  EXPECT_EQ(strength({}), 0);
}

TEST_F(Votes, AllForTheUnknot) {
  const Counts counts = votes({{0, 100}});
  EXPECT_EQ(ranking(counts), "01(100%) ");
  EXPECT_EQ(one(counts), "01");
  EXPECT_EQ(strength(counts), 0);
}

TEST_F(Votes, RankedWithPercentages) {
  EXPECT_EQ(ranking(votes({{2, 30}, {1, 70}})), "3_1(70%) 4_1(30%) ");
}

TEST_F(Votes, PercentagesAreTruncated) {
  EXPECT_EQ(ranking(votes({{1, 1}, {2, 1}, {3, 1}})), "3_1(33%) 4_1(33%) 5_1(33%) ");
  EXPECT_EQ(strength(votes({{1, 2}, {0, 1}})), 66);
}

TEST_F(Votes, HalfIsNoMajority) {
  EXPECT_EQ(one(votes({{1, 50}, {2, 50}})), "-1");
  EXPECT_EQ(one(votes({{1, 51}, {2, 49}})), "3_1");
}

TEST_F(Votes, TieKeepsTheLowerOrdinalButHasNoMajority) {
  EXPECT_EQ(one(votes({{0, 1}, {1, 1}})), "-1");
}

TEST_F(Votes, FailureClassesAreCountedInside) {
  EXPECT_EQ(ranking(votes({{41, 5}})), "IN(5)  \t----- many INSIDE!");
  EXPECT_EQ(ranking(votes({{1, 9}, {41, 1}})), "3_1(90%) IN(1) ");
  EXPECT_EQ(ranking(votes({{1, 6}, {40, 3}})), "3_1(66%) Problem with projecting(33%) IN(3) ");
  EXPECT_EQ(ranking(votes({{1, 5}, {40, 3}})),
            "3_1(62%) Problem with projecting(37%) IN(3)  \t----- many INSIDE!");
}

TEST_F(Votes, FailuresAloneHaveNoName) {
  EXPECT_EQ(one(votes({{40, 3}, {41, 2}})), "-2");
  EXPECT_EQ(one(votes({{40, 9}, {1, 1}})), "Problem with projecting");
}

TEST_F(Votes, UnmatchedIsListedByItsCode) { EXPECT_EQ(ranking(votes({{39, 4}})), "-3(100%) "); }

TEST_F(Votes, NegativeCountersAreNeitherListedNorSummed) {
  EXPECT_EQ(ranking(votes({{1, 4}, {2, -8}})), "3_1(100%) ");
  EXPECT_EQ(ranking(votes({{1, 4}, {40, -1}, {41, 1}})), "3_1(80%) ");
}

TEST_F(Votes, StrengthLeavesTheUnknotOut) { EXPECT_EQ(strength(votes({{0, 90}, {1, 10}})), 10); }

TEST(WayToSortKnociki, MoreVotesFirst) {
  EXPECT_TRUE(WayToSortKnociki({1, 5}, {0, 4}));
  EXPECT_FALSE(WayToSortKnociki({1, 4}, {0, 4}));
}

}  // namespace
