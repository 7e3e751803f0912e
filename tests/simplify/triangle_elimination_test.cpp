#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "korvex.h"

namespace {

using PointChain = std::vector<fPointR3>;

int meet(std::vector<fPointR3> triangle, std::vector<fPointR3> segment) {
  return intersection(triangle.data(), segment.data());
}

const PointChain kTriangle = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};

TEST(TriangleTest, SegmentThroughTheInteriorPierces) {
  EXPECT_EQ(meet(kTriangle, {{0.25F, 0.25F, 1}, {0.25F, 0.25F, -1}}), 1);
}

TEST(TriangleTest, SegmentBesideOrShortOfTheTriangleMisses) {
  EXPECT_EQ(meet(kTriangle, {{2, 2, 1}, {2, 2, -1}}), 0);
  EXPECT_EQ(meet(kTriangle, {{0.25F, 0.25F, 1}, {0.25F, 0.25F, 0.5F}}), 0);
}

TEST(TriangleTest, ParallelSegmentBlocksAtAnyDistance) {
  EXPECT_EQ(meet(kTriangle, {{1000, 1000, 500}, {1001, 1000, 500}}), 1);
  EXPECT_EQ(meet(kTriangle, {{5, 5, 5}, {5, 5, 5}}), 1);
}

TEST(TriangleTest, DegenerateTriangleIsParallelToEverything) {
  EXPECT_EQ(meet({{0, 0, 0}, {1, 1, 1}, {2, 2, 2}}, {{9, 3, 1}, {4, 5, 6}}), 1);
}

TEST(TriangleTest, BordersAreTouchedWithinTheTolerance) {
  EXPECT_EQ(meet(kTriangle, {{0, 0.5F, 1}, {0, 0.5F, -1}}), 2);        // side AC
  EXPECT_EQ(meet(kTriangle, {{0.5F, 0, 1}, {0.5F, 0, -1}}), 2);        // side AB
  EXPECT_EQ(meet(kTriangle, {{0.5F, 0.5F, 1}, {0.5F, 0.5F, -1}}), 2);  // side BC
  EXPECT_EQ(meet(kTriangle, {{-9e-6F, 0.5F, 1}, {-9e-6F, 0.5F, -1}}), 2);
  EXPECT_EQ(meet(kTriangle, {{-1.1e-5F, 0.5F, 1}, {-1.1e-5F, 0.5F, -1}}), 0);
}

TEST(TriangleTest, EndsOnTheTriangleTouch) {
  EXPECT_EQ(meet(kTriangle, {{0.25F, 0.25F, 0}, {0.25F, 0.25F, 1}}), 2);
  EXPECT_EQ(meet(kTriangle, {{0.25F, 0.25F, 1}, {0.25F, 0.25F, 0}}), 2);
  EXPECT_EQ(meet(kTriangle, {{0.25F, 0.25F, -9e-6F}, {0.25F, 0.25F, -1}}), 2);
  EXPECT_EQ(meet(kTriangle, {{0.25F, 0.25F, -1e-3F}, {0.25F, 0.25F, -1}}), 0);
}

TEST(TriangleTest, InteriorBoundsAreInclusive) {
  EXPECT_EQ(meet(kTriangle, {{1e-5F, 0.5F, 1}, {1e-5F, 0.5F, -1}}), 1);
}

TEST(TriangleTest, NotANumberMisses) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  EXPECT_EQ(meet(kTriangle, {{nan, 0.25F, 1}, {0.25F, 0.25F, -1}}), 0);
}

TEST(Utilities, ScalarProductSumsLeftToRight) {
  float a[] = {1e8F, 1, -1e8F};
  float b[] = {1, 1, 1};
  EXPECT_EQ(ScalarProduct(a, b), 0);  // the 1 is lost in the first sum
}

TEST(Utilities, DeterminantOfRows) {
  float a[] = {2, 0, 0};
  float b[] = {0, 3, 0};
  float c[] = {5, 7, 4};
  EXPECT_EQ(Determinant(a, b, c), 24);
  EXPECT_EQ(Determinant(b, a, c), -24);
}

TEST(ChainReduce, LeavesFewerThanFourPointsAlone) {
  for (std::size_t points = 0; points < 4; ++points) {
    PointChain chain(points, {1, 2, 3});
    EXPECT_EQ(ChainReduce(chain), static_cast<int>(points));
    EXPECT_EQ(chain.size(), points);
  }
}

TEST(ChainReduce, RemovesTheSecondOfFourPointsUntested) {
  PointChain chain = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
  EXPECT_EQ(ChainReduce(chain), 3);
  ASSERT_EQ(chain.size(), 3U);
  EXPECT_EQ(chain[1].y, 1);  // the former third point
}

TEST(ChainReduce, APlanarPentagonIsStuck) {
  const PointChain planar = {{0, 0, 0}, {2, 0, 0}, {3, 2, 0}, {1, 3, 0}, {-1, 2, 0}};
  PointChain chain = planar;
  EXPECT_EQ(ChainReduce(chain), 5);  // every segment is parallel to every triangle
}

TEST(ChainReduce, OfFivePointsOnlyTheOppositeSegmentCanBlockTheFirstTriangle) {
  PointChain chain = {{0, 0, 0}, {2, 0, 0}, {3, 2, 0}, {1, 3, 0}, {-1, 2, 1}};
  EXPECT_EQ(ChainReduce(chain), 3);
}

TEST(ChainReduce, UnwindsAPlainRingToThreePoints) {
  PointChain chain;
  for (int i = 0; i < 60; ++i) {
    const double angle = 0.1 * i;
    chain.push_back({static_cast<float>(std::cos(angle)), static_cast<float>(std::sin(angle)),
                     static_cast<float>(0.01 * std::sin(3 * angle + 0.1 * i))});
  }
  EXPECT_EQ(ChainReduce(chain), 3);
}

TEST(ChainReduce, KeepsATrefoilKnotted) {
  PointChain chain;
  for (int i = 0; i < 90; ++i) {
    const double t = 6.283185307179586 * i / 90;
    chain.push_back({static_cast<float>(std::sin(t) + 2 * std::sin(2 * t)),
                     static_cast<float>(std::cos(t) - 2 * std::cos(2 * t)),
                     static_cast<float>(-std::sin(3 * t))});
  }
  const int left = ChainReduce(chain);
  EXPECT_GE(left, 6);  // the stick number of the trefoil
  EXPECT_LE(left, 12);
}

TEST(ChainReduceANY, ShortensLengthsInPlaceAndLeavesTheRestOfThePool) {
  const PointChain square = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0.5F}, {0, 1, 0}};
  PointChain pool;
  std::vector<Job> jobs;
  for (int piece = 0; piece < 2; ++piece) {
    jobs.push_back({piece * 6, 4, 1, 2, 3, 4});
    pool.insert(pool.end(), square.begin(), square.end());
    pool.insert(pool.end(), 2, square.back());
  }
  ChainReduceANY(pool, jobs, false);
  ASSERT_EQ(pool.size(), 12U);
  for (const Job& job : jobs) {
    EXPECT_EQ(job.length, 3);
    const auto start = static_cast<std::size_t>(job.start);
    EXPECT_EQ(pool[start + 1].z, 0.5F);
    EXPECT_EQ(pool[start + 3].y, 1);  // beyond the new length: untouched
    EXPECT_EQ(pool[start + 3].x, 0);
  }
  EXPECT_EQ(jobs[1].start, 6);
}

}  // namespace
