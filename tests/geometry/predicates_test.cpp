#include "geometry/predicates.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cmath>

#include "support/chains.hpp"

namespace {

using korvex::Bend;
using korvex::bend_at;
using korvex::certainly_apart;
using korvex::certainly_leaves;
using korvex::Triangle;

// Exact arithmetic on small integers, by another method than the code's: two convex sets meet when
// the origin lies in the hull of the differences of their corners, that is, in the hull of four of
// them at most.
struct Point {
  long x, y, z;
};

Point operator-(Point a, Point b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
Point cross(Point a, Point b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
long dot(Point a, Point b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
bool is_zero(Point a) { return a.x == 0 && a.y == 0 && a.z == 0; }

bool origin_between(Point a, Point b) { return is_zero(cross(a, b)) && dot(a, b) <= 0; }

bool origin_in_triangle(Point a, Point b, Point c) {
  const Point normal = cross(b - a, c - a);
  if (is_zero(normal) || dot(normal, a) != 0) return false;
  return dot(cross(a, b), normal) >= 0 && dot(cross(b, c), normal) >= 0 &&
         dot(cross(c, a), normal) >= 0;
}

bool origin_in_tetrahedron(Point a, Point b, Point c, Point d) {
  const std::array<long, 4> volumes{dot(cross(b, c), d), -dot(cross(a, c), d), dot(cross(a, b), d),
                                    -dot(cross(a, b), c)};
  const long whole = volumes[0] + volumes[1] + volumes[2] + volumes[3];
  if (whole == 0) return false;
  for (const long volume : volumes) {
    if (whole > 0 ? volume < 0 : volume > 0) return false;
  }
  return true;
}

bool origin_in_hull(const std::vector<Point>& points) {
  const std::size_t n = points.size();
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = i; j < n; ++j) {
      if (origin_between(points[i], points[j])) return true;
      for (std::size_t k = j + 1; k < n; ++k) {
        if (origin_in_triangle(points[i], points[j], points[k])) return true;
        for (std::size_t l = k + 1; l < n; ++l) {
          if (origin_in_tetrahedron(points[i], points[j], points[k], points[l])) return true;
        }
      }
    }
  }
  return false;
}

bool meet(const std::array<Point, 3>& triangle, const std::array<Point, 2>& edge) {
  std::vector<Point> differences;
  for (const Point& corner : triangle) {
    for (const Point& end : edge) differences.push_back(corner - end);
  }
  return origin_in_hull(differences);
}

// Whether d lies in the cone of e1 and e2: some positive multiple of it in the hull of 0, e1, e2,
// that is, 0 in the hull of -d, e1, e2 with a positive share of -d.
bool in_cone(Point e1, Point e2, Point d) {
  const Point normal = cross(e1, e2);
  if (is_zero(normal)) {
    const auto along = [&](Point e) { return is_zero(cross(e, d)) && dot(e, d) > 0; };
    return along(e1) || along(e2);
  }
  return dot(normal, d) == 0 && dot(cross(e1, d), normal) >= 0 && dot(cross(d, e2), normal) >= 0;
}

Point random_point(support::Random& random, int size) {
  return {random.below(size), random.below(size), random.below(size)};
}

// A fixed offset and a power of two keep every difference of small integers exact.
korvex::Point placed(Point p, double unit, double offset) {
  return {offset + unit * static_cast<double>(p.x), offset + unit * static_cast<double>(p.y),
          offset + unit * static_cast<double>(p.z)};
}

TEST(CertainlyApart, IsExactOnSmallIntegers) {
  support::Random random(11);
  int apart = 0, met = 0;
  for (int trial = 0; trial < 60000; ++trial) {
    const int size = 2 + trial % 5;
    const std::array<Point, 3> t{random_point(random, size), random_point(random, size),
                                 random_point(random, size)};
    const std::array<Point, 2> e{random_point(random, size), random_point(random, size)};
    const double unit = trial % 2 == 0 ? 0x1p-4 : 0x1p-30;
    const double offset = trial % 3 == 0 ? 0 : 0.625;
    const auto at = [&](Point p) { return placed(p, unit, offset); };
    const bool expected = !meet(t, e);
    ASSERT_EQ(certainly_apart({at(t[0]), at(t[1]), at(t[2])}, at(e[0]), at(e[1])), expected)
        << "trial " << trial;
    ++(expected ? apart : met);
  }
  EXPECT_GT(apart, 10000);
  EXPECT_GT(met, 10000);
}

TEST(CertainlyLeaves, IsExactOnSmallIntegers) {
  support::Random random(12);
  int leaves = 0, stays = 0;
  for (int trial = 0; trial < 60000; ++trial) {
    const int size = 2 + trial % 3;
    const Point corner = random_point(random, size), other1 = random_point(random, size),
                other2 = random_point(random, size), to = random_point(random, size);
    if (is_zero(other1 - corner) || is_zero(other2 - corner) || is_zero(to - corner)) continue;
    const Point normal = cross(other1 - corner, other2 - corner);
    if (is_zero(normal) && dot(other1 - corner, other2 - corner) < 0) continue;  // no corner
    const auto at = [&](Point p) { return placed(p, 0x1p-4, 0.5); };
    const bool expected = !in_cone(other1 - corner, other2 - corner, to - corner);
    ASSERT_EQ(certainly_leaves(at(corner), at(other1), at(other2), at(to)), expected)
        << "trial " << trial;
    ++(expected ? leaves : stays);
  }
  EXPECT_GT(leaves, 10000);
  EXPECT_GT(stays, 1000);
}

TEST(CertainlyApart, TakesTouchingForMeeting) {
  const Triangle t{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
  EXPECT_FALSE(certainly_apart(t, {0.25, 0.25, 0}, {0.25, 0.25, 1}));     // an end inside
  EXPECT_FALSE(certainly_apart(t, {0.5, 0.5, 0}, {1, 1, 0}));             // an end on a side
  EXPECT_FALSE(certainly_apart(t, {1, 0, 0}, {1, 0, 1}));                 // a corner
  EXPECT_FALSE(certainly_apart(t, {0.25, 0, -0.5}, {0.25, 0, 0.5}));      // through a side
  EXPECT_FALSE(certainly_apart(t, {-0.5, 0, 0}, {1, 0, 0}));              // along a side
  EXPECT_FALSE(certainly_apart(t, {-0.5, 0.25, 0}, {1, 0.25, 0}));        // across, in the plane
  EXPECT_FALSE(certainly_apart(t, {0.25, 0.25, 0}, {0.25, 0.25, 0}));     // a point inside
  EXPECT_TRUE(certainly_apart(t, {0.5, 0.5, 0x1p-40}, {1, 1, 0x1p-40}));  // just above
  EXPECT_TRUE(certainly_apart(t, {0.5, 0.5 + 0x1p-40, 0}, {1, 1, 0}));    // just beside
}

TEST(CertainlyApart, DoesNotDependOnTheOrderOfCornersAndEnds) {
  support::Random random(13);
  const auto near_plane = [&] {
    return korvex::Point{random.uniform(), random.uniform(), 1e-16 * random.uniform()};
  };
  for (int trial = 0; trial < 20000; ++trial) {
    const Triangle t{near_plane(), near_plane(), near_plane()};
    const korvex::Point from = near_plane(), to = near_plane();
    const bool apart = certainly_apart(t, from, to);
    EXPECT_EQ(certainly_apart(t, to, from), apart);
    EXPECT_EQ(certainly_apart({t.after, t.tip, t.before}, from, to), apart);
    EXPECT_EQ(certainly_leaves(t.tip, t.before, t.after, to),
              certainly_leaves(t.tip, t.after, t.before, to));
  }
}

// Edges that begin at a point of the triangle, but for its rounding: no answer may rest on that.
TEST(CertainlyApart, LeavesOpenWhatRoundingDecides) {
  support::Random random(14);
  int certified = 0;
  for (int trial = 0; trial < 20000; ++trial) {
    const auto any = [&] {
      return korvex::Point{random.uniform() - 0.5, random.uniform() - 0.5, random.uniform() - 0.5};
    };
    const Triangle t{any(), {0, 0, 0}, any()};
    const double u = random.uniform(), v = (1 - u) * random.uniform();
    const korvex::Point inside = u * t.before + v * t.after;
    if (certainly_apart(t, inside, inside + cross(t.before, t.after))) ++certified;
  }
  EXPECT_EQ(certified, 0);
}

TEST(BendAt, TellsStraightFromSpikeExactly) {
  const korvex::Point a{0.125, 0.25, 0.5}, b{0.25, 0.5, 0.5}, c{0.5, 1.0, 0.5};
  EXPECT_EQ(bend_at({a, b, c}), Bend::kStraight);
  EXPECT_EQ(bend_at({c, b, a}), Bend::kStraight);
  EXPECT_EQ(bend_at({a, c, b}), Bend::kSpike);
  EXPECT_EQ(bend_at({b, a, c}), Bend::kSpike);
  EXPECT_EQ(bend_at({a, b, a}), Bend::kSpike);
  EXPECT_EQ(bend_at({a, a, b}), Bend::kStraight);
  EXPECT_EQ(bend_at({a, b, b}), Bend::kStraight);
  EXPECT_EQ(bend_at({a, a, a}), Bend::kStraight);
  EXPECT_EQ(bend_at({a, {0.25, 0.5, 0.5 + 0x1p-52}, c}), Bend::kProper);
}

// 0.1 + 0.2 k is rounded: points that look collinear are not, and are not taken for it.
TEST(BendAt, IsNotFooledByRounding) {
  support::Random random(15);
  for (int trial = 0; trial < 5000; ++trial) {
    const auto any = [&] {
      return korvex::Point{random.uniform(), random.uniform(), random.uniform()};
    };
    const korvex::Point a = any(), c = any();
    const korvex::Point middle = a + random.uniform() * (c - a);
    const korvex::Point leg1 = a - middle, leg2 = c - middle;
    const long double z = static_cast<long double>(leg1.x) * static_cast<long double>(leg2.y) -
                          static_cast<long double>(leg1.y) * static_cast<long double>(leg2.x);
    if (z != 0) {
      EXPECT_EQ(bend_at({a, middle, c}), Bend::kProper);
    }
  }
}

korvex::Point random_place(support::Random& random, double size) {
  return {size * (random.uniform() - 0.5), size * (random.uniform() - 0.5),
          size * (random.uniform() - 0.5)};
}

// Edges that all but lie in the plane of the triangle: the answers differ, and one way alone.
TEST(TrianglePlane, IsClearlyLeftOnlyWhereTheEdgeCertainlyLeaves) {
  support::Random random(16);
  int clear = 0, certain = 0;
  for (int trial = 0; trial < 60000; ++trial) {
    const double size = trial % 7 == 0 ? 1e-150 : 1;
    const Triangle t{random_place(random, size), random_place(random, size),
                     random_place(random, size)};
    const double height = std::ldexp(size, -(trial % 60));
    const korvex::Point to = t.after + random.uniform() * (t.tip - t.before) +
                             random.uniform() * (t.after - t.before) +
                             height * random_place(random, 1);
    const korvex::TrianglePlane plane(t);
    const bool leaves_after = certainly_leaves(t.after, t.tip, t.before, to);
    if (plane.clearly_off(t.after, to)) {
      ASSERT_TRUE(leaves_after) << trial;
      ++clear;
    }
    if (leaves_after) ++certain;
    if (plane.clearly_off(t.before, to)) {
      ASSERT_TRUE(certainly_leaves(t.before, t.tip, t.after, to)) << trial;
    }
  }
  EXPECT_GT(clear, 30000);
  EXPECT_LT(clear, certain);
}

TEST(TrianglePlane, IsNotClearlyLeftByWhatLiesInIt) {
  const Triangle t{{0.5, 0, 0}, {0, 0, 0}, {0, 0.5, 0}};
  EXPECT_FALSE(korvex::TrianglePlane(t).clearly_off(t.after, {0.25, 0.25, 0}));
  EXPECT_FALSE(korvex::TrianglePlane(t).clearly_off(t.after, t.after));
  EXPECT_TRUE(korvex::TrianglePlane(t).clearly_off(t.after, {0, 0.5, 0.25}));
  const Triangle flat{{0.5, 0.5, 0.5}, {0, 0, 0}, {0.25, 0.25, 0.25}};
  EXPECT_FALSE(korvex::TrianglePlane(flat).clearly_off(flat.after, {0, 0.5, 0.25}));
}

TEST(TrianglePlane, HasClearlyBesideItOnlyWhatIsCertainlyApart) {
  support::Random random(18);
  int beside = 0, apart = 0, clear = 0;
  for (int trial = 0; trial < 60000; ++trial) {
    const double size = trial % 7 == 0 ? 1e-150 : 1;
    const Triangle t{random_place(random, size), random_place(random, size),
                     random_place(random, size)};
    const double height = std::ldexp(size, -(trial % 60));
    const auto near_plane = [&] {
      return t.tip + random.uniform() * (t.before - t.tip) + random.uniform() * (t.after - t.tip) +
             height * random_place(random, 1);
    };
    const korvex::Point from = near_plane(), to = near_plane();
    const korvex::TrianglePlane plane(t);
    const bool is_apart = certainly_apart(t, from, to);
    if (plane.clearly_beside(from, to)) {
      ASSERT_TRUE(is_apart) << trial;
      ++beside;
    }
    if (is_apart) ++apart;
    if (plane.is_clear()) {
      ASSERT_EQ(bend_at(t), Bend::kProper) << trial;
      ++clear;
    }
  }
  EXPECT_GT(beside, 15000);
  EXPECT_LT(beside, apart);
  EXPECT_GT(clear, 30000);
}

TEST(TrianglePlane, HasNotBesideItWhatReachesIt) {
  const Triangle t{{0.5, 0, 0}, {0, 0, 0}, {0, 0.5, 0}};
  const korvex::TrianglePlane plane(t);
  EXPECT_TRUE(plane.is_clear());
  EXPECT_TRUE(plane.clearly_beside({0.1, 0.1, 0.1}, {0.2, 0.1, 0.3}));
  EXPECT_TRUE(plane.clearly_beside({0.1, 0.1, -0.1}, {0.2, 0.1, -0.3}));
  EXPECT_FALSE(plane.clearly_beside({0.1, 0.1, 0.1}, {0.2, 0.1, -0.3}));
  EXPECT_FALSE(plane.clearly_beside({0.1, 0.1, 0.1}, {0.2, 0.1, 0}));
  const Triangle flat{{0.5, 0.5, 0.5}, {0, 0, 0}, {0.25, 0.25, 0.25}};
  EXPECT_FALSE(korvex::TrianglePlane(flat).is_clear());
  EXPECT_FALSE(korvex::TrianglePlane(flat).clearly_beside({0, 0.5, 0.25}, {0, 0.5, 0.5}));
}

struct InPlane {
  double x;
  double y;
};

TEST(TurnInThePlane, IsExactOnSmallIntegersAndChangesSignWithTwoCorners) {
  support::Random random(17);
  for (int trial = 0; trial < 20000; ++trial) {
    const Point p = random_point(random, 9), q = random_point(random, 9),
                r = random_point(random, 9);
    const auto at = [](Point a) {
      return InPlane{0.625 + 0x1p-20 * static_cast<double>(a.x),
                     0x1p-20 * static_cast<double>(a.y)};
    };
    const long exact = (q.x - p.x) * (r.y - p.y) - (q.y - p.y) * (r.x - p.x);
    const korvex::Turn turn = korvex::turn(at(p), at(q), at(r));
    EXPECT_EQ(turn.value, 0x1p-40 * static_cast<double>(exact));
    EXPECT_EQ(korvex::turn(at(p), at(r), at(q)).value, -turn.value);
    EXPECT_EQ(korvex::turn(at(p), at(r), at(q)).clear(), turn.clear());
    if (exact == 0) {
      EXPECT_FALSE(turn.clear());
    }
  }
}

// A point on a line but for rounding: wherever the turn is clear its sign is that of the exact one.
TEST(TurnInThePlane, HasTheExactSignWhereItIsClear) {
  support::Random random(18);
  int clear = 0, doubtful = 0;
  for (int trial = 0; trial < 20000; ++trial) {
    const auto any = [&] { return InPlane{random.uniform(), random.uniform()}; };
    const InPlane p = any(), q = any();
    const double part = random.uniform();
    const InPlane r{p.x + part * (q.x - p.x), p.y + part * (q.y - p.y)};
    using Wide = long double;
    const Wide left = (Wide{q.x} - p.x) * (Wide{r.y} - p.y);
    const Wide right = (Wide{q.y} - p.y) * (Wide{r.x} - p.x);
    const korvex::Turn turn = korvex::turn(p, q, r);
    ++(turn.clear() ? clear : doubtful);
    if (turn.clear()) {
      EXPECT_EQ(turn.value > 0, left > right) << trial;
    }
    EXPECT_FALSE(clearly_same_side(turn, {-turn.value, turn.error}));
  }
  EXPECT_GT(doubtful, 1000);
  const korvex::Turn up{1, 0.5}, down{-1, 0.5}, open{0.25, 0.5};
  EXPECT_TRUE(clearly_same_side(up, up));
  EXPECT_TRUE(clearly_same_side(down, down));
  EXPECT_FALSE(clearly_same_side(up, down));
  EXPECT_FALSE(clearly_same_side(up, open));
}

const korvex::Point kP{0, 0, 0};
const korvex::Point kQ{1, 0, 0};
const korvex::Point kR{0, 1, 0};

bool pierces(const korvex::Point& from, const korvex::Point& to) {
  return korvex::PiercedTriangle(kP, kQ, kR, 10).may_be_by({from, to});
}

TEST(MayPierce, IsTrueForALineThroughTheTriangle) {
  EXPECT_TRUE(pierces({0.2, 0.2, -1}, {0.3, 0.3, 1}));
  EXPECT_TRUE(pierces({0.3, 0.3, 1}, {0.2, 0.2, -1}));
}

TEST(MayPierce, IsFalseForALineBesideItOrAwayFromItsPlane) {
  EXPECT_FALSE(pierces({0.8, 0.8, -1}, {0.8, 0.8, 1}));
  EXPECT_FALSE(pierces({0.2, 0.2, 0.1}, {0.3, 0.3, 1}));
  EXPECT_FALSE(pierces({2, 0, -1}, {3, 0, 1}));
}

TEST(MayPierce, IsTrueForATouch) {
  EXPECT_TRUE(pierces({0.2, 0.2, 0}, {0.3, 0.3, 1}));
  EXPECT_TRUE(pierces({0.5, 0.5, -1}, {0.5, 0.5, 1}));
  EXPECT_TRUE(pierces({0.5, 0, -1}, {0.5, 0, 1}));
  EXPECT_TRUE(pierces({1, 0, 0}, {2, 0, 1}));
  EXPECT_TRUE(pierces({-1, 0.2, 0}, {2, 0.2, 0}));
}

TEST(MayPierce, ForgivesACommonEndInAnOuterCornerUnlessTheLineRunsOnInside) {
  EXPECT_FALSE(pierces({-1, -1, -1}, kP));
  EXPECT_FALSE(pierces(kR, {0.1, 0.1, 1}));
  EXPECT_FALSE(pierces({-1, -1, 0}, kP));
  EXPECT_TRUE(pierces(kP, {0.2, 0.2, 0}));
  EXPECT_TRUE(pierces({1, 1, 0}, kP));
}

}  // namespace
