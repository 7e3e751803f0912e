#include "korvex/directions.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace korvex {
namespace {

TEST(LatticeDirections, AreUnitVectorsInBalance) {
  for (const std::size_t count : {1u, 2u, 3u, 50u, 100u, 1000u}) {
    Point sum;
    for (const Point& direction : lattice_directions(count, 7)) {
      EXPECT_NEAR(norm(direction), 1, 1e-14);
      sum = sum + direction;
    }
    EXPECT_LT(norm(sum), 1.5) << count;
  }
}

TEST(LatticeDirections, KeepTheirDistance) {
  const auto directions = lattice_directions(200, 3);
  double nearest = 2;
  for (std::size_t i = 0; i < directions.size(); ++i)
    for (std::size_t j = 0; j < i; ++j)
      nearest = std::min(nearest, norm(directions[i] - directions[j]));
  const double edge_of_even_cover = std::sqrt(4 * 3.14159265 / 200);
  EXPECT_GT(nearest, 0.7 * edge_of_even_cover);
}

TEST(LatticeDirections, AreFixedBySeedAndBlock) {
  EXPECT_EQ(lattice_directions(100, 5), lattice_directions(100, 5));
  EXPECT_EQ(lattice_directions(100, 5, 2), lattice_directions(100, 5, 2));
  EXPECT_NE(lattice_directions(100, 5), lattice_directions(100, 6));
  EXPECT_NE(lattice_directions(100, 5), lattice_directions(100, 5, 1));
}

// The mean of each coordinate and of each product of two, against their errors at this count.
TEST(RandomDirections, AreUniform) {
  constexpr std::size_t kCount = 20000;
  Point mean;
  double xx = 0;
  double yy = 0;
  double xy = 0;
  for (std::size_t trial = 0; trial < kCount; ++trial) {
    const Point p = random_direction(11, trial);
    ASSERT_NEAR(norm(p), 1, 1e-14);
    mean = mean + (1.0 / kCount) * p;
    xx += p.x * p.x / kCount;
    yy += p.y * p.y / kCount;
    xy += p.x * p.y / kCount;
  }
  EXPECT_LT(norm(mean), 0.02);
  EXPECT_NEAR(xx, 1.0 / 3, 0.01);
  EXPECT_NEAR(yy, 1.0 / 3, 0.01);
  EXPECT_NEAR(xy, 0, 0.01);
}

TEST(RandomDirections, DependOnSeedAndTrialAlone) {
  EXPECT_EQ(random_direction(1, 9), random_direction(1, 9));
  EXPECT_NE(random_direction(1, 9), random_direction(1, 10));
  EXPECT_NE(random_direction(1, 9), random_direction(2, 9));
}

}  // namespace
}  // namespace korvex
