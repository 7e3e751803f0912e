#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

#include "korvex.h"
#include "support/captured_stream.hpp"
#include "support/edges.hpp"

namespace {

using support::edge;
using support::flat;
using Edges = std::vector<Edge>;
using Pairs = std::vector<std::pair<int, int>>;

const char kEndpointText[] =
    "PROBLEM with one projection. Two segments cross exactly at the end of one of them.\n";

struct Found {
  int result;
  Edges edges;
  std::vector<Crossing> crossings;
};

Found find(Edges edges, bool closed) {
  Found found{0, std::move(edges), {}};
  found.result = FindAllCrossings(found.edges, found.crossings, closed);
  return found;
}

Pairs over_and_under(const std::vector<Crossing>& crossings) {
  Pairs pairs;
  for (const Crossing& c : crossings) pairs.emplace_back(c.overEdge, c.underEdge);
  return pairs;
}

// The pairs of edges that are tested, found by letting one pair at a time cross.
Pairs tested_pairs(int edges, bool closed) {
  Pairs pairs;
  for (int i = 0; i < edges; ++i) {
    for (int j = i + 1; j < edges; ++j) {
      Edges apart;
      for (int k = 0; k < edges; ++k) apart.push_back(flat(10 * k, 10 * k, 10 * k + 1, 10 * k + 1));
      apart[static_cast<std::size_t>(i)] = flat(-9, -9, -7, -7);
      apart[static_cast<std::size_t>(j)] = flat(-9, -7, -7, -9);
      if (!find(apart, closed).crossings.empty()) pairs.emplace_back(i, j);
    }
  }
  return pairs;
}

std::vector<int> indices(const Edge& e) {
  std::vector<int> places;
  for (const CrossingShort& c : e.crossings) places.push_back(c.crossingIndex);
  return places;
}

TEST(EnumerationOrder, OpenChainOfThreeEdgesTestsTheFirstAgainstTheLast) {
  EXPECT_EQ(tested_pairs(3, false), (Pairs{{0, 2}}));
}

TEST(EnumerationOrder, FourEdgesOfAClosedChain) {
  EXPECT_EQ(tested_pairs(4, true), (Pairs{{0, 2}, {1, 3}}));
}

TEST(EnumerationOrder, FourEdgesOfAnOpenChain) {
  EXPECT_EQ(tested_pairs(4, false), (Pairs{{0, 2}, {0, 3}, {1, 3}}));
}

TEST(EnumerationOrder, PairsAreTestedRowByRow) {
  const Found star = find(support::pentagram(), true);
  EXPECT_EQ(star.result, 0);
  // All heights are equal, so the later edge of each pair is the upper one.
  EXPECT_EQ(over_and_under(star.crossings), (Pairs{{2, 0}, {3, 0}, {3, 1}, {4, 1}, {4, 2}}));
}

TEST(EnumerationOrder, TheUpperEdgeIsTheHigherOneAtTheCrossing) {
  const Edge across = edge(0, 0, 0, 4, 4, 0), far = flat(50, 0, 51, 0);
  const Edges above = {across, far, edge(0, 4, 3, 4, 0, -1)};  // at height 1 where they cross
  EXPECT_EQ(over_and_under(find(above, false).crossings), (Pairs{{2, 0}}));
  const Edges below = {across, far, edge(0, 4, -3, 4, 0, 1)};
  EXPECT_EQ(over_and_under(find(below, false).crossings), (Pairs{{0, 2}}));
}

TEST(EnumerationOrder, TypeTurnsFromTheUpperEdgeToTheLower) {
  const Edge far = flat(50, 0, 51, 0);
  const Edge up_right = edge(0, 0, 1, 4, 4, 1), down_right = edge(0, 4, 0, 4, 0, 0);
  EXPECT_EQ(find({up_right, far, down_right}, false).crossings.at(0).type, 0);
  EXPECT_EQ(find({down_right, far, up_right}, false).crossings.at(0).type, 0);
  const Edge up_left = edge(4, 0, 0, 0, 4, 0);
  EXPECT_EQ(find({up_right, far, up_left}, false).crossings.at(0).type, 1);
  EXPECT_EQ(find({up_left, far, up_right}, false).crossings.at(0).type, 1);
}

TEST(EnumerationOrder, StopsAtTheFirstProblemAndLeavesTheListsUnsorted) {
  support::CapturedStreams streams;
  const Edges comb = {flat(0, 0, 8, 0), flat(90, 0, 91, 1), flat(4, -1, 4, 1), flat(2, -1, 2, 1),
                      flat(3, 0, 3, 1), flat(5, -1, 5, 1),  flat(6, 0, 6, 1)};
  const Found found = find(comb, false);
  EXPECT_EQ(found.result, 1);
  EXPECT_EQ(over_and_under(found.crossings), (Pairs{{2, 0}, {3, 0}}));
  EXPECT_EQ(indices(found.edges[0]), (std::vector<int>{0, 1}));  // positions 0.5, then 0.75
  EXPECT_EQ(indices(found.edges[2]), (std::vector<int>{0}));
  EXPECT_EQ(indices(found.edges[3]), (std::vector<int>{1}));
  EXPECT_EQ(streams.log.text(), kEndpointText);
  EXPECT_EQ(streams.out.text() + streams.err.text(), "");
}

TEST(EnumerationOrder, AppendsToWhatTheListHolds) {
  Edges edges = support::kink();
  std::vector<Crossing> crossings = {{7, 8, 9, 10, 11, 1}};
  EXPECT_EQ(FindAllCrossings(edges, crossings, true), 0);
  EXPECT_EQ(over_and_under(crossings), (Pairs{{7, 8}, {0, 2}}));
  EXPECT_EQ(crossings[0].underArcOut, 11);
  EXPECT_EQ(indices(edges[0]), (std::vector<int>{1}));
  EXPECT_EQ(indices(edges[2]), (std::vector<int>{1}));
}

TEST(EnumerationOrder, IndicesAreTheLowSixteenBits) {
  constexpr int kBars = 190;  // 36,100 crossings
  Edges grid;
  for (int k = 0; k < kBars; ++k) grid.push_back(flat(-1, k, kBars, k));
  grid.push_back(flat(-9, -9, -8, -8));
  for (int k = 0; k < kBars; ++k) grid.push_back(flat(k, -1, k, kBars));
  const Found found = find(grid, false);
  ASSERT_EQ(found.result, 0);
  ASSERT_EQ(found.crossings.size(), 36100U);
  EXPECT_EQ(found.edges.back().crossings.front().crossingIndex, kBars - 1);
  EXPECT_EQ(found.edges.back().crossings.back().crossingIndex,
            static_cast<std::int16_t>(36099 - 65536));
}

// Not a number has no place in the order: the list is as std::sort leaves it. From 17 on it
// partitions, which leaves another order than inserting or merging.
TEST(EnumerationOrder, SortsListsWithNumbersThatAreNoneAsTheLibraryDoes) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  for (std::size_t length = 2; length <= 80; ++length) {
    std::vector<CrossingShort> list;
    for (std::size_t k = 0; k < length; ++k) {
      const double position = static_cast<double>(k * 7 % 16) / 16;  // ties from 17 on
      list.push_back({static_cast<std::int16_t>(k), k * 5 % 6 == 1 ? nan : position});
    }
    Edges edges = support::seen_from_above({{0, 0, 0, 1}, {1, 0, 0, 2}, {0, 1, 0, 3}});
    edges[1].crossings = list;
    std::sort(list.begin(), list.end(), WayToSortCrossings);
    std::vector<Crossing> crossings;
    FindAllCrossings(edges, crossings, true);
    for (std::size_t k = 0; k < length; ++k) {
      EXPECT_EQ(edges[1].crossings[k].crossingIndex, list[k].crossingIndex);
    }
  }
}

TEST(ArcOrder, NoCrossingsIsNothingToDo) {
  Edges edges = support::seen_from_above({{0, 0, 0, 1}, {1, 0, 0, 2}, {0, 1, 0, 3}});
  std::vector<Crossing> crossings;
  EXPECT_EQ(FillCrossings(edges, crossings), 0);
  EXPECT_TRUE(crossings.empty());
}

TEST(ArcOrder, CountsArcsFromTheFirstEndpointOfTheFirstEdge) {
  // Passes under, over, under along one line: arcs 0 | 1, 1 | 2.
  Edges edges = {flat(0, 0, 8, 0),       flat(90, 0, 91, 1),        edge(2, -1, 5, 2, 1, 5),
                 flat(92, 0, 93, 1),     edge(4, -1, -5, 4, 1, -5), flat(94, 0, 95, 1),
                 edge(6, -1, 5, 6, 1, 5)};
  Found found = find(edges, false);
  ASSERT_EQ(found.crossings.size(), 3U);
  FillCrossings(found.edges, found.crossings);
  EXPECT_EQ(found.crossings[0].underArcIn, 0);
  EXPECT_EQ(found.crossings[0].underArcOut, 1);
  EXPECT_EQ(found.crossings[1].overArc, 1);
  EXPECT_EQ(found.crossings[2].underArcIn, 1);
  EXPECT_EQ(found.crossings[2].underArcOut, 2);
  EXPECT_EQ(found.crossings[0].overArc, 2);  // edges 2 and 6 come after the second under-passing
  EXPECT_EQ(found.crossings[1].underArcIn, 2);
  EXPECT_EQ(found.crossings[1].underArcOut, 0);  // the last arc is also the first
  EXPECT_EQ(found.crossings[2].overArc, 0);
}

}  // namespace
