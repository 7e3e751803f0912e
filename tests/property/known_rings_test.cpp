// The knot of a ring does not depend on how the ring is written down.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "korvex.h"
#include "support/chains.hpp"

namespace {

using support::Chain;

// A ring and its knot: ordinals of the knot table.
struct Ring {
  std::string name;
  int ordinal;
  Chain chain;
};

// The connected sum of two rings: each is opened at its atom farthest along x, the second is turned
// half round and set beside the first, and two edges join them.
Chain connected_sum(Chain a, Chain b) {
  const auto farthest = [](const Chain& ring) {
    std::size_t best = 0;
    for (std::size_t k = 0; k < ring.size(); ++k) {
      if (ring[k].x > ring[best].x) best = k;
    }
    return best;
  };
  a = support::cycled(a, farthest(a));
  b = support::cycled(b, farthest(b));
  const double gap = a.front().x + b.front().x + 1;
  Chain sum(a.begin() + 1, a.end());
  const double y = a.front().y + b.front().y, z = a.front().z - b.front().z;
  for (std::size_t k = 1; k < b.size(); ++k)
    sum.push_back({gap - b[k].x, y - b[k].y, b[k].z + z, 0});
  return sum;
}

std::vector<Ring> rings() {
  const Chain trefoil = support::torus_knot(2, 3, 40);
  const Chain figure_eight = support::figure_eight(60);
  return {{"unknot", 0, support::torus_knot(1, 3, 40)},
          {"3_1", 1, trefoil},
          {"4_1", 2, figure_eight},
          {"5_1", 3, support::torus_knot(2, 5, 60)},
          {"7_1", 8, support::torus_knot(2, 7, 80)},
          {"8_19", 33, support::torus_knot(3, 4, 80)},
          {"9_1", 36, support::torus_knot(2, 9, 100)},
          {"granny", 34, connected_sum(trefoil, trefoil)},
          {"square", 34, connected_sum(trefoil, support::mirrored(trefoil))},
          {"3_1#4_1", 35, connected_sum(trefoil, figure_eight)},
          {"3_1#5_1", 37, connected_sum(trefoil, support::torus_knot(2, 5, 60))}};
}

// Directions that show more crossings than the polynomial determinant of the interface takes (16)
// are asked for their polynomial all the same.
int ordinal_seen(const Chain& ring, int direction) {
  polynomial<int> poly;
  double value = 0;
  EXPECT_EQ(FindTheKnotInParticularDirection_poly(ring, poly, value, direction, 60), 1);
  return WhichKnot_OrdNr(poly);
}

int ordinal_of(Chain ring) {
  ChainReduce(ring, true);
  return ordinal_seen(ring, 0);
}

class KnownRings : public testing::TestWithParam<Ring> {};

TEST_P(KnownRings, AreNamedInEveryDirection) {
  Chain ring = GetParam().chain;
  ChainReduce(ring, true);
  for (int direction = 0; direction < 60; ++direction) {
    EXPECT_EQ(ordinal_seen(ring, direction), GetParam().ordinal) << direction;
  }
}

TEST_P(KnownRings, KeepTheirKnotUnderRotation) {
  for (std::uint64_t seed = 1; seed <= 20; ++seed) {
    EXPECT_EQ(ordinal_of(support::rotated(GetParam().chain, seed)), GetParam().ordinal) << seed;
  }
}

TEST_P(KnownRings, KeepTheirKnotUnderReversalShiftAndSubdivision) {
  const Chain& ring = GetParam().chain;
  EXPECT_EQ(ordinal_of(support::reversed(ring)), GetParam().ordinal);
  EXPECT_EQ(ordinal_of(support::subdivided(ring, 3)), GetParam().ordinal);
  for (std::size_t first = 0; first < ring.size(); first += 7) {
    EXPECT_EQ(ordinal_of(support::cycled(ring, first)), GetParam().ordinal) << first;
  }
}

TEST_P(KnownRings, MirrorImageHasTheSamePolynomial) {
  Chain ring = support::rotated(GetParam().chain, 3);
  Chain mirror = support::mirrored(ring);
  ChainReduce(ring, true);
  ChainReduce(mirror, true);
  EXPECT_EQ(FindTheKnot_poly_string(mirror, 60, false), FindTheKnot_poly_string(ring, 60, false));
}

TEST_P(KnownRings, PointEliminationKeepsTheKnot) {
  std::vector<fPointR3> points;
  for (const ChainAtom& atom : GetParam().chain) {
    points.push_back(
        {static_cast<float>(atom.x), static_cast<float>(atom.y), static_cast<float>(atom.z)});
  }
  const int left = ChainReduce(points);
  ASSERT_EQ(points.size(), static_cast<std::size_t>(left));
  Chain ring;
  for (const fPointR3& p : points) ring.push_back({p.x, p.y, p.z, 0});
  EXPECT_EQ(ordinal_of(ring), GetParam().ordinal);
}

INSTANTIATE_TEST_SUITE_P(, KnownRings, testing::ValuesIn(rings()),
                         [](const testing::TestParamInfo<Ring>& ring) {
                           std::string name = ring.param.name;
                           for (char& c : name) {
                             if (c == '#') c = '_';
                           }
                           return name;
                         });

// The determinant of a knot, |value at -1|, of one projection by two algorithms.
TEST(Determinants, PolynomialAndEliminationAgree) {
  int compared = 0;
  for (std::uint64_t seed = 1; seed <= 40; ++seed) {
    Chain ring = support::gaussian_ring(24, seed);
    auto edges = ProjectChain(ring, 0, true);
    std::vector<Crossing> crossings;
    ASSERT_EQ(FindAllCrossings(edges, crossings, true), 0);
    FillCrossings(edges, crossings);
    if (crossings.size() < 2 || crossings.size() > 14) continue;
    const int by_polynomial = std::abs(CalculatePoly(det_poly(CreateFoxMatrix(crossings)), -1));
    auto matrix = CreateFoxMatrix_double(crossings, -1);
    // 1,000,003 divides no determinant of a diagram this small.
    const double by_elimination = det_double(matrix, 1000003);
    EXPECT_NEAR(by_elimination, by_polynomial, 1e-6);
    EXPECT_EQ(by_polynomial % 2, 1);
    ++compared;
  }
  EXPECT_GE(compared, 10);
}

}  // namespace
