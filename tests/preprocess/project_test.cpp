#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <thread>

#include "preprocess.h"
#include "support/chains.hpp"

namespace {

using support::Chain;

struct Seen {
  double x, y, height;
};

// Where a point appears.
Seen see(double x, double y, double z, int direction) {
  const auto edges = ProjectChain({{x, y, z, 1}, {0, 0, 0, 2}}, direction, false);
  return {edges[0].x1, edges[0].y1, edges[0].z1};
}

// The direction to the viewer: the heights of the unit vectors.
ChainAtom viewer(int direction) {
  return {see(1, 0, 0, direction).height, see(0, 1, 0, direction).height,
          see(0, 0, 1, direction).height, 0};
}

double dot(const ChainAtom& a, const ChainAtom& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

bool same_edge(const Edge& a, const Edge& b) {
  return a.x1 == b.x1 && a.y1 == b.y1 && a.z1 == b.z1 && a.x2 == b.x2 && a.y2 == b.y2 &&
         a.z2 == b.z2 && a.tag == b.tag && a.crossings.size() == b.crossings.size();
}

bool same_edges(const std::vector<Edge>& a, const std::vector<Edge>& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), same_edge);
}

TEST(ProjectChain, GivesEdgesInChainOrderThatShareTheirEnds) {
  const Chain chain = support::confined_walk(20, 4, 1);
  const auto closed = ProjectChain(chain, 7, true);
  const auto open = ProjectChain(chain, 7, false);
  ASSERT_EQ(closed.size(), 20U);
  ASSERT_EQ(open.size(), 19U);
  for (std::size_t k = 0; k < closed.size(); ++k) {
    const Edge& next = closed[(k + 1) % closed.size()];
    EXPECT_EQ(closed[k].x2, next.x1);
    EXPECT_EQ(closed[k].y2, next.y1);
    EXPECT_EQ(closed[k].z2, next.z1);
    EXPECT_TRUE(closed[k].crossings.empty());
    EXPECT_EQ(closed[k].tag, 0);
  }
  EXPECT_TRUE(std::equal(open.begin(), open.end(), closed.begin(), same_edge));
}

TEST(ProjectChain, TakesChainsOfAFewAtoms) {
  for (const bool closed : {false, true}) {
    EXPECT_TRUE(ProjectChain({}, 0, closed).empty());
    EXPECT_TRUE(ProjectChain({{1, 2, 3, 4}}, 0, closed).empty());
  }
  const Chain chain = support::confined_walk(4, 3, 2);
  for (std::size_t count = 2; count <= 4; ++count) {
    const Chain part(chain.begin(), chain.begin() + static_cast<std::ptrdiff_t>(count));
    EXPECT_EQ(ProjectChain(part, 0, false).size(), count - 1);
    EXPECT_EQ(ProjectChain(part, 0, true).size(), count);
  }
}

TEST(ProjectChain, KeepsLengthsAndIsRightHanded) {
  for (int direction = 0; direction < 60; ++direction) {
    const Seen p = see(3, -4, 12, direction);
    EXPECT_NEAR(std::hypot(p.x, p.y, p.height), 13, 1e-13);
    const Seen x = see(1, 0, 0, direction), y = see(0, 1, 0, direction),
               z = see(0, 0, 1, direction);
    const double determinant = x.x * (y.y * z.height - y.height * z.y) -
                               x.y * (y.x * z.height - y.height * z.x) +
                               x.height * (y.x * z.y - y.y * z.x);
    EXPECT_NEAR(determinant, 1, 1e-14);
  }
}

TEST(ProjectChain, PutsTheViewerAboveThePlane) {
  for (int direction = 0; direction < 60; ++direction) {
    const ChainAtom d = viewer(direction);
    const Seen p = see(d.x, d.y, d.z, direction);
    EXPECT_NEAR(p.x, 0, 1e-15);
    EXPECT_NEAR(p.y, 0, 1e-15);
    EXPECT_NEAR(p.height, 1, 1e-15);
  }
}

TEST(ProjectChain, LooksFromTheVerticesOfATruncatedIcosahedron) {
  // The edge length is 1 where the circumscribed radius is sqrt(58 + 18 sqrt(5)) / 4.
  const double radius2 = (58 + 18 * std::sqrt(5.0)) / 16;
  const double cos_edge = 1 - 1 / (2 * radius2);
  for (int a = 0; a < 60; ++a) {
    int neighbours = 0;
    for (int b = 0; b < 60; ++b) {
      if (a == b) continue;
      const double cosine = dot(viewer(a), viewer(b));
      EXPECT_LT(cosine, cos_edge + 1e-12);
      if (std::fabs(cosine - cos_edge) < 1e-12) ++neighbours;
    }
    EXPECT_EQ(neighbours, 3) << a;
  }
}

TEST(ProjectChain, HoldsNoAntipodesBelow30AndAllOfThemAbove) {
  for (int a = 0; a < 30; ++a) {
    EXPECT_NEAR(dot(viewer(a), viewer(a + 30)), -1, 1e-14);
    for (int b = 0; b < 30; ++b) EXPECT_GT(dot(viewer(a), viewer(b)), -0.999);
  }
}

TEST(ProjectChain, WrapsTheDirectionModulo60) {
  const Chain chain = support::confined_walk(10, 4, 3);
  for (const auto& [number, residue] :
       std::vector<std::pair<int, int>>{{60, 0},
                                        {61, 1},
                                        {-1, 59},
                                        {-60, 0},
                                        {-61, 59},
                                        {std::numeric_limits<int>::max(), 7},
                                        {std::numeric_limits<int>::min(), 52}}) {
    EXPECT_TRUE(same_edges(ProjectChain(chain, number, true), ProjectChain(chain, residue, true)))
        << number;
  }
}

// Sites of the simple, face-centred and body-centred cubic lattices have integer coordinates in
// half their constant. Seen along any direction, no two of their short steps may appear on one
// line, and so no step may appear as a point.
TEST(ProjectChain, ShowsNoTwoStepsOfALatticeOnOneLine) {
  const int reach = 4;
  std::vector<std::array<int, 3>> steps;
  for (int x = -reach; x <= reach; ++x) {
    for (int y = -reach; y <= reach; ++y) {
      for (int z = -reach; z <= reach; ++z) {
        const bool half = x > 0 || (x == 0 && (y > 0 || (y == 0 && z > 0)));
        if (half && x * x + y * y + z * z <= 12) steps.push_back({x, y, z});
      }
    }
  }
  double smallest = 1;
  for (int direction = 0; direction < 60; ++direction) {
    std::vector<Seen> seen;
    for (const auto& s : steps) seen.push_back(see(s[0], s[1], s[2], direction));
    for (std::size_t i = 0; i < steps.size(); ++i) {
      for (std::size_t j = i + 1; j < steps.size(); ++j) {
        const auto &a = steps[i], &b = steps[j];
        const bool parallel =
            a[1] * b[2] == a[2] * b[1] && a[2] * b[0] == a[0] * b[2] && a[0] * b[1] == a[1] * b[0];
        if (parallel) continue;
        smallest = std::min(smallest, std::fabs(seen[i].x * seen[j].y - seen[i].y * seen[j].x));
      }
    }
  }
  EXPECT_GT(smallest, 8e-4);
}

TEST(ProjectChain, NeedsNoPreparationAndAnyNumberOfThreads) {
  const Chain chain = support::confined_walk(50, 4, 4);
  std::vector<std::vector<Edge>> results(8);
  {
    std::vector<std::jthread> threads;
    for (auto& result : results) {
      threads.emplace_back([&] { result = ProjectChain(chain, 17, true); });
    }
  }
  FillFulerenData();
  FillFulerenData();
  for (const auto& result : results) {
    EXPECT_TRUE(same_edges(result, ProjectChain(chain, 17, true)));
  }
}

}  // namespace
