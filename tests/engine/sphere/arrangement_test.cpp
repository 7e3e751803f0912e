#include "engine/sphere/arrangement.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>
#include <random>

#include "engine/sphere/face_areas.hpp"
#include "engine/sphere/inner_point.hpp"

namespace korvex {
namespace {

constexpr double kSphere = 4 * std::numbers::pi;
constexpr std::size_t kMany = 1'000'000;

SpherePath path_through(const std::vector<Point>& directions) {
  SpherePath path;
  for (const Point& p : directions) path.points.push_back(sphere_point(p));
  path.weights.assign(directions.size(), 1);
  return path;
}

std::vector<Point> random_directions(unsigned seed, int count) {
  std::mt19937 generator(seed);
  std::normal_distribution<double> normal;
  std::vector<Point> directions;
  const auto whole = [&] { return std::round(1e12 * normal(generator)); };
  for (int i = 0; i < count; ++i) directions.push_back({whole(), whole(), whole()});
  return directions;
}

std::vector<std::optional<InnerPoint>> inner_of(const Arrangement& arrangement) {
  std::vector<std::optional<InnerPoint>> inner;
  for (std::size_t face = 0; face < arrangement.faces(); ++face) {
    const auto points = inner_points(arrangement, face);
    inner.push_back(points.empty() ? std::optional<InnerPoint>() : points.front());
  }
  return inner;
}

// Rising areas of all faces.
std::vector<double> areas_of(const Arrangement& arrangement) {
  auto areas = face_areas(arrangement, inner_of(arrangement));
  std::sort(areas.begin(), areas.end());
  return areas;
}

Arrangement arranged(const std::vector<Point>& first, const std::vector<Point>& second) {
  return Arrangement(path_through(first), path_through(second), kMany);
}

TEST(Arrangement, OfNoArcsIsTheWholeSphere) {
  const Arrangement none(SpherePath{}, SpherePath{}, kMany);
  ASSERT_EQ(none.faces(), 1u);
  EXPECT_TRUE(none.sides(0).empty());
  EXPECT_EQ(areas_of(none), std::vector<double>{kSphere});
}

TEST(Arrangement, OfPathsThatDoNotCrossIsOneFaceWithABoundaryEach) {
  const Arrangement apart = arranged({{1, 0, 0}, {5, 1, 0}, {5, 2, 1}}, {{-1, 0, 0}, {-5, 1, 1}});
  ASSERT_EQ(apart.faces(), 1u);
  EXPECT_EQ(apart.boundaries(0), (std::vector<std::size_t>{4, 2}));
  const auto inner = inner_of(apart);
  ASSERT_TRUE(inner[0]);
  EXPECT_GT(inner[0]->clearance, 1);
}

// A path about an octant that crosses itself in its corner.
TEST(Arrangement, HasAnOctantWhoseAreaIsAnEighthOfTheSphere) {
  const Arrangement octant = arranged({{1000, -1, 0}, {0, 1, 0}, {0, 0, 1}, {1000, 0, -1}}, {});
  ASSERT_EQ(octant.crossings(), 1u);
  const auto areas = areas_of(octant);
  ASSERT_EQ(areas.size(), 2u);
  EXPECT_NEAR(areas[0], kSphere / 8, 1e-14);
  EXPECT_NEAR(areas[1], kSphere * 7 / 8, 1e-14);
}

// Above the equator by 1e-9 (sin t - cos t) for t from 45 to 90 degrees, and then as before.
TEST(Arrangement, HasSliversOfTheRightArea) {
  const Arrangement sliver = arranged({{1000, -1, 0}, {0, 1, 0}, {-1000, -1, 0}},
                                      {{-1e9, 0, -1}, {0, 1e9, 1}, {1e9, -1, -1}});
  ASSERT_EQ(sliver.crossings(), 2u);
  EXPECT_NEAR(areas_of(sliver)[0], 2e-9 * (std::numbers::sqrt2 - 1), 1e-17);
}

TEST(Arrangement, CutsTheSphereIntoFacesThatCoverItWhole) {
  for (unsigned seed = 1; seed <= 30; ++seed) {
    const Arrangement random =
        arranged(random_directions(seed, 12), random_directions(seed + 1000, 9));
    ASSERT_EQ(random.state(), Arrangement::State::kGeneral);
    const auto areas = areas_of(random);
    EXPECT_NEAR(std::accumulate(areas.begin(), areas.end(), 0.0), kSphere, 1e-12);
    for (const double area : areas) EXPECT_GT(area, 0);
  }
}

TEST(Arrangement, PutsItsInnerPointsIntoTheirFaces) {
  for (unsigned seed = 1; seed <= 10; ++seed) {
    const Arrangement random =
        arranged(random_directions(seed, 10), random_directions(seed + 50, 8));
    const auto inner = inner_of(random);
    for (std::size_t face = 0; face < random.faces(); ++face) {
      ASSERT_TRUE(inner[face]);
      // Areas by winding: the fan about the inner point's opposite tells whether it lies inside.
      double around = 0;
      const Point apex = -inner[face]->at;
      for (const std::int32_t side : random.sides(face)) {
        const Point& a = random.begin_of(side);
        const Point& b = random.end_of(side);
        around +=
            2 * std::atan2(dot(apex, cross(a, b)), 1 + dot(apex, a) + dot(a, b) + dot(b, apex));
      }
      EXPECT_LT(around, 0) << "the face does not hold the point";
    }
  }
}

TEST(Arrangement, SaysWhereItIsDegenerate) {
  const auto state = [](const std::vector<Point>& first, const std::vector<Point>& second) {
    return arranged(first, second).state();
  };
  constexpr auto kDegenerate = Arrangement::State::kDegenerate;
  // Half a turn; there and back; an end on an arc; three arcs through one point; the same arc
  // twice.
  EXPECT_EQ(state({{1, 0, 0}, {-2, 0, 0}}, {}), kDegenerate);
  EXPECT_EQ(state({{1, 0, 0}, {1, 1, 0}, {2, 1, 0}}, {}), kDegenerate);
  EXPECT_EQ(state({{1, 0, 0}, {0, 1, 0}}, {{1, 1, 0}, {0, 0, 1}}), kDegenerate);
  EXPECT_EQ(state({{1, 0, 5}, {-1, 0, 5}, {-1, -1, 5}, {1, 1, 5}}, {{0, 1, 5}, {0, -1, 5}}),
            kDegenerate);
  EXPECT_EQ(state({{1, 0, 0}, {0, 1, 0}}, {{1, 0, 0}, {0, 1, 0}}), kDegenerate);
}

TEST(Arrangement, TakesStraightPathsAndRepeatedDirectionsAsTheyAre) {
  const Arrangement straight =
      arranged({{1, 0, 0}, {2, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 3, 0}, {-1, 1, 0}}, {});
  ASSERT_EQ(straight.state(), Arrangement::State::kGeneral);
  EXPECT_EQ(straight.faces(), 1u);
  EXPECT_EQ(straight.sides(0).size(), 6u);
}

// Two arcs that differ in the last digit of a whole number cross where only integers can tell.
TEST(Arrangement, DecidesCrossingsThatDoublesCannotSee) {
  constexpr double kBig = 0x1p50;
  const std::vector<Point> first{{kBig, 0, 1}, {-kBig + 1, kBig, -1}};
  const std::vector<Point> second{{kBig, 0, -1}, {-kBig + 1, kBig, 1}};
  const Arrangement crossing = arranged(first, second);
  ASSERT_EQ(crossing.state(), Arrangement::State::kGeneral);
  EXPECT_EQ(crossing.crossings(), 1u);
  EXPECT_EQ(crossing.faces(), 1u);
  const std::vector<Point> beside{{kBig, 0, -1}, {-kBig + 1, kBig, -2}};
  EXPECT_EQ(arranged(first, beside).crossings(), 0u);
}

TEST(Arrangement, StopsAtTheLimitOfCrossings) {
  const auto first = random_directions(1, 30);
  const auto second = random_directions(2, 30);
  const std::size_t all = arranged(first, second).crossings();
  EXPECT_EQ(Arrangement(path_through(first), path_through(second), all).state(),
            Arrangement::State::kGeneral);
  EXPECT_EQ(Arrangement(path_through(first), path_through(second), all - 1).state(),
            Arrangement::State::kTooMany);
}

}  // namespace
}  // namespace korvex
