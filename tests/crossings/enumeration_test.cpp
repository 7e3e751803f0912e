#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <set>
#include <vector>

#include "korvex.h"
#include "support/captured_stream.hpp"
#include "support/chains.hpp"
#include "support/edges.hpp"

namespace {

using support::flat;
using support::seen_from_above;

struct Diagram {
  std::vector<Edge> edges;
  std::vector<Crossing> crossings;
};

Diagram labelled(const std::vector<ChainAtom>& ring) {
  Diagram diagram{seen_from_above(ring), {}};
  EXPECT_EQ(FindAllCrossings(diagram.edges, diagram.crossings, true), 0);
  EXPECT_EQ(FillCrossings(diagram.edges, diagram.crossings), 0);
  return diagram;
}

TEST(FindAllCrossings, FewerThanThreeEdgesHaveNone) {
  for (const int count : {0, 1, 2}) {
    std::vector<Edge> edges(static_cast<std::size_t>(count), flat(0, 0, 1, 1));
    std::vector<Crossing> crossings;
    EXPECT_EQ(FindAllCrossings(edges, crossings, true), 0);
    EXPECT_TRUE(crossings.empty());
  }
}

TEST(FindAllCrossings, ReservesRoomForTwenty) {
  std::vector<Edge> edges;
  std::vector<Crossing> crossings;
  FindAllCrossings(edges, crossings, true);
  EXPECT_GE(crossings.capacity(), 20U);
}

TEST(FindAllCrossings, ClosedTriangleTestsNoPair) {
  // The first and the third edge overlap: a pair that were tested would be a problem.
  std::vector<Edge> edges{flat(0, 0, 1, 0), flat(1, 0, 2, 0), flat(2, 0, 0, 0)};
  std::vector<Crossing> crossings;
  const support::CapturedStream log(std::clog);
  EXPECT_EQ(FindAllCrossings(edges, crossings, true), 0);
  EXPECT_EQ(log.text(), "");
  EXPECT_EQ(FindAllCrossings(edges, crossings, false), 1);
}

TEST(FindAllCrossings, FirstAndLastEdgeAreNeighboursOnlyInAClosedChain) {
  // Of four edges the first and the last cross, and no other pair does.
  const std::vector<Edge> edges{flat(0, 0, 4, 0), flat(4, 0, 4, 5), flat(4, 5, 1, 5),
                                flat(1, 5, 2, -5)};
  std::vector<Edge> closed = edges;
  std::vector<Crossing> crossings;
  EXPECT_EQ(FindAllCrossings(closed, crossings, true), 0);
  EXPECT_TRUE(crossings.empty());
  std::vector<Edge> open = edges;
  EXPECT_EQ(FindAllCrossings(open, crossings, false), 0);
  ASSERT_EQ(crossings.size(), 1U);
  EXPECT_EQ(open[0].crossings.size(), 1U);
  EXPECT_EQ(open[3].crossings.size(), 1U);
}

TEST(FindAllCrossings, ProblemPairEndsTheSearchAndKeepsWhatWasFound) {
  // The first edge crosses the third, and ends exactly on the fourth.
  std::vector<Edge> edges{flat(0, 0, 4, 0), flat(4, 0, 6, 3), flat(1, 1, 1, -1), flat(4, -1, 4, 1),
                          flat(2, 1, 2, -1)};
  std::vector<Crossing> crossings;
  const support::CapturedStream log(std::clog);
  EXPECT_EQ(FindAllCrossings(edges, crossings, false), 1);
  EXPECT_EQ(log.text(),
            "PROBLEM with one projection. Two segments cross exactly at the end of one of them.\n");
  EXPECT_EQ(crossings.size(), 1U);
  EXPECT_EQ(edges[0].crossings.size(), 1U);
  EXPECT_TRUE(edges[4].crossings.empty());
}

TEST(FindAllCrossings, AtEqualHeightsTheLaterEdgeIsOver) {
  std::vector<Edge> edges{flat(0, 0, 4, 0), flat(4, 0, 2, 3), flat(2, 3, 2, -3)};
  std::vector<Crossing> crossings;
  EXPECT_EQ(FindAllCrossings(edges, crossings, false), 0);
  ASSERT_EQ(crossings.size(), 1U);
  EXPECT_EQ(crossings[0].overEdge, 2);
  EXPECT_EQ(crossings[0].underEdge, 0);
}

TEST(FindAllCrossings, ListsAreSortedAlongTheEdge) {
  std::vector<Edge> edges{flat(0, 0, 10, 0), flat(10, 0, 7, 3), flat(7, 3, 7, -3),
                          flat(7, -3, 2, -3), flat(2, -3, 2, 3)};
  std::vector<Crossing> crossings;
  EXPECT_EQ(FindAllCrossings(edges, crossings, false), 0);
  ASSERT_EQ(edges[0].crossings.size(), 2U);
  EXPECT_EQ(edges[0].crossings[0].crossingIndex, 1);
  EXPECT_DOUBLE_EQ(edges[0].crossings[0].position, 0.8);
  EXPECT_EQ(edges[0].crossings[1].crossingIndex, 0);
}

TEST(WayToSortCrossings, LargerPositionComesFirst) {
  EXPECT_TRUE(WayToSortCrossings({0, 0.75}, {1, 0.25}));
  EXPECT_FALSE(WayToSortCrossings({0, 0.25}, {1, 0.75}));
  EXPECT_FALSE(WayToSortCrossings({0, 0.5}, {1, 0.5}));
}

TEST(FillCrossings, OneCrossingHasOneArc) {
  const Diagram kink = labelled({{0, 0, 1, 1}, {4, 4, 1, 2}, {4, 0, 0, 3}, {0, 4, 0, 4}});
  ASSERT_EQ(kink.crossings.size(), 1U);
  EXPECT_EQ(kink.crossings[0].overArc, 0);
  EXPECT_EQ(kink.crossings[0].underArcIn, 0);
  EXPECT_EQ(kink.crossings[0].underArcOut, 0);
}

TEST(FillCrossings, TrefoilHasEveryArcOnceInEveryRole) {
  const Diagram trefoil = labelled(support::torus_knot(2, 3, 60));
  ASSERT_EQ(trefoil.crossings.size(), 3U);
  std::set<int> over, in, out;
  for (const Crossing& crossing : trefoil.crossings) {
    over.insert(crossing.overArc);
    in.insert(crossing.underArcIn);
    out.insert(crossing.underArcOut);
    EXPECT_EQ(crossing.underArcOut, (crossing.underArcIn + 1) % 3);
  }
  const std::set<int> all{0, 1, 2};
  EXPECT_EQ(over, all);
  EXPECT_EQ(in, all);
  EXPECT_EQ(out, all);
}

TEST(FillCrossings, TrefoilCrossingsHaveOneHandAndTheMirrorImageTheOther) {
  const auto ring = support::torus_knot(2, 3, 60);
  const Diagram trefoil = labelled(ring);
  const Diagram mirror = labelled(support::mirrored(ring));
  for (const Diagram* diagram : {&trefoil, &mirror}) {
    ASSERT_EQ(diagram->crossings.size(), 3U);
    for (const Crossing& c : diagram->crossings) EXPECT_EQ(c.type, diagram->crossings[0].type);
  }
  EXPECT_NE(trefoil.crossings[0].type, mirror.crossings[0].type);
}

TEST(FillCrossings, EveryArcComesInOnceAndGoesOutOnceInAnyDiagram) {
  for (const std::uint64_t seed : {1U, 2U, 3U, 4U, 5U}) {
    const Diagram diagram = labelled(support::gaussian_ring(60, seed));
    const int count = static_cast<int>(diagram.crossings.size());
    ASSERT_GT(count, 3);
    std::vector<int> in, out, all;
    for (int k = 0; k < count; ++k) all.push_back(k);
    for (const Crossing& crossing : diagram.crossings) {
      in.push_back(crossing.underArcIn);
      out.push_back(crossing.underArcOut);
    }
    std::sort(in.begin(), in.end());
    std::sort(out.begin(), out.end());
    EXPECT_EQ(in, all);
    EXPECT_EQ(out, all);
  }
}

// By orientation of triangles, without the formulas of the crossing test.
int crossings_by_brute_force(const std::vector<Edge>& edges) {
  const auto side = [](double ax, double ay, double bx, double by, double cx, double cy) {
    return (bx - ax) * (cy - ay) - (by - ay) * (cx - ax);
  };
  int count = 0;
  for (std::size_t i = 0; i < edges.size(); ++i) {
    for (std::size_t j = i + 2; j < edges.size(); ++j) {
      if (i == 0 && j + 1 == edges.size()) continue;
      const Edge &a = edges[i], &b = edges[j];
      const bool a_parts =
          side(b.x1, b.y1, b.x2, b.y2, a.x1, a.y1) * side(b.x1, b.y1, b.x2, b.y2, a.x2, a.y2) < 0;
      const bool b_parts =
          side(a.x1, a.y1, a.x2, a.y2, b.x1, b.y1) * side(a.x1, a.y1, a.x2, a.y2, b.x2, b.y2) < 0;
      if (a_parts && b_parts) ++count;
    }
  }
  return count;
}

TEST(FindAllCrossings, AgreesWithABruteForceCount) {
  for (const std::uint64_t seed : {11U, 12U, 13U, 14U, 15U, 16U}) {
    std::vector<Edge> edges = seen_from_above(support::compact_ring(120, seed));
    const int expected = crossings_by_brute_force(edges);
    std::vector<Crossing> crossings;
    ASSERT_EQ(FindAllCrossings(edges, crossings, true), 0);
    EXPECT_EQ(static_cast<int>(crossings.size()), expected);
  }
}

}  // namespace
