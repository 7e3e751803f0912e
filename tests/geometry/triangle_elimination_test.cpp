#include "geometry/triangle_elimination.hpp"

#include <gtest/gtest.h>

#include <algorithm>

#include "engine/random_chains.hpp"
#include "korvex/alexander.hpp"
#include "korvex/diagram.hpp"
#include "korvex/directions.hpp"

namespace korvex {
namespace {

TEST(EliminateOpen, StraightensAChainThatNothingHolds) {
  for (const int points : {2, 3, 10, 100}) {
    std::vector<Point> helix;
    for (int i = 0; i < points; ++i)
      helix.push_back({std::cos(0.7 * i), std::sin(0.7 * i), 0.5 * i});
    const auto kept = eliminate_open(helix, {});
    EXPECT_EQ(kept, (std::vector<std::int32_t>{0, points - 1})) << points;
  }
}

TEST(EliminateOpen, LeavesAnObstacleOnItsSide) {
  const std::vector<Point> bow{{-1, 0, 0}, {0, 2, 0}, {1, 0, 0}};
  const Line through{{0, 1, -5}, {0, 1, 5}};
  const Line past{{0, 3, -5}, {0, 3, 5}};
  EXPECT_EQ(eliminate_open(bow, std::vector{through}).size(), 3u);
  EXPECT_EQ(eliminate_open(bow, std::vector{past}).size(), 2u);
}

TEST(EliminateOpen, KeepsTheTypeOfTheChainClosedByRays) {
  for (unsigned seed = 0; seed < 40; ++seed) {
    const auto chain = compact_walk(seed, 120);
    const Point direction = random_direction(seed, 0);
    const std::vector<Line> rays{{chain.front(), chain.front() + 100 * direction},
                                 {chain.back(), chain.back() + 100 * direction}};
    std::vector<Point> reduced;
    for (const std::int32_t k : eliminate_open(chain, rays))
      reduced.push_back(chain[static_cast<std::size_t>(k)]);
    EXPECT_LT(reduced.size(), chain.size());
    EXPECT_EQ(alexander_key(Diagram::of_open_chain(chain, direction)),
              alexander_key(Diagram::of_open_chain(reduced, direction)))
        << seed;
  }
}

TEST(EliminateRing, KeepsTheTypeOfTheRing) {
  for (unsigned seed = 0; seed < 40; ++seed) {
    const auto ring = compact_walk(seed, 120);
    std::vector<Point> reduced;
    for (const std::int32_t k : eliminate_ring(ring))
      reduced.push_back(ring[static_cast<std::size_t>(k)]);
    EXPECT_LT(reduced.size(), ring.size());
    EXPECT_EQ(alexander_key(Diagram::of_polygon(ring, {0, 0, 1})),
              alexander_key(Diagram::of_polygon(reduced, {0, 0, 1})))
        << seed;
  }
}

TEST(EliminateRing, StopsAtSixPointsOfATrefoilOrAbove) {
  const auto kept = eliminate_ring(trefoil_ring(200));
  EXPECT_GE(kept.size(), 6u);
  EXPECT_LE(kept.size(), 20u);
}

TEST(EliminateRing, TakesPointsInAnyPosition) {
  for (const std::size_t size : {0u, 1u, 2u, 3u, 4u, 9u}) {
    const std::vector<Point> same(size, Point{1, 2, 3});
    EXPECT_GE(eliminate_ring(same).size(), std::min<std::size_t>(size, 3));
    EXPECT_GE(eliminate_open(same, {}).size(), std::min<std::size_t>(size, 2));
  }
  const std::vector<Point> spike{{0, 0, 0}, {1, 0, 0}, {0, 0, 0}, {0, 1, 0}, {2, 2, 2}};
  EXPECT_EQ(eliminate_open(spike, {}).back(), 4);
}

TEST(Elimination, EndsWithWhatIsThrownBeforeALook) {
  const auto ring = trefoil_ring(200);
  int looks = 0;
  const auto stop_at_tenth = [&looks] {
    if (++looks == 10) throw looks;
  };
  EXPECT_THROW(eliminate_ring(ring, stop_at_tenth), int);
  EXPECT_EQ(looks, 10);
  looks = 0;
  EXPECT_THROW(eliminate_open(ring, {}, stop_at_tenth), int);
  EXPECT_EQ(looks, 10);
}

}  // namespace
}  // namespace korvex
