#include "korvex/diagram.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "korvex/alexander.hpp"
#include "korvex/error.hpp"
#include "support/chains.hpp"
#include "support/knot_rows.hpp"

namespace korvex {
namespace {

constexpr const char* kTrefoil = "O1+U2+O3+U1+O2+U3+";

std::vector<Point> points_of(const support::Chain& chain) {
  std::vector<Point> points;
  for (const ChainAtom& atom : chain) points.push_back({atom.x, atom.y, atom.z});
  return points;
}

TEST(Diagram, ReadsAndWritesGaussCodes) {
  const Diagram trefoil = Diagram::of_gauss_code(kTrefoil);
  EXPECT_EQ(trefoil.gauss_code(), kTrefoil);
  EXPECT_EQ(trefoil.crossings(), 3U);
  EXPECT_EQ(trefoil.writhe(), 3);
  EXPECT_EQ(trefoil.mirror().writhe(), -3);
  EXPECT_EQ(trefoil.mirror().mirror(), trefoil);
  EXPECT_EQ(trefoil.reversed().reversed(), trefoil);
  EXPECT_EQ(Diagram::of_gauss_code("").crossings(), 0U);
}

TEST(Diagram, RefusesWhatIsNoGaussCodeOfAPlaneCurve) {
  for (const char* text : {"O1+", "O1+U1-", "O1+O1+", "X1+U1+", "O0+U0+", "O1U1", "O1+U2+U1+O2+",
                           "O1+U1+O1+", "O99999999999999999999+U1+"})
    EXPECT_THROW(Diagram::of_gauss_code(text), Error) << text;
}

TEST(Diagram, ReadsAndWritesPlanarDiagramCodes) {
  for (const support::KnotRow& row : support::knot_rows()) {
    const Diagram diagram = Diagram::of_pd(row.pd);
    EXPECT_EQ(Diagram::of_pd(diagram.pd()), diagram) << row.name;
    EXPECT_EQ(Diagram::of_gauss_code(diagram.gauss_code()), diagram) << row.name;
  }
}

TEST(Diagram, ReadsBothCodesOfASingleCrossing) {
  EXPECT_EQ(Diagram::of_pd("[1,1,2,2]").crossings(), 1U);
  EXPECT_EQ(Diagram::of_pd("[1,2,2,1]").crossings(), 1U);
  EXPECT_EQ(Diagram::of_pd("[1,1,2,2]").writhe(), -Diagram::of_pd("[1,2,2,1]").writhe());
}

TEST(Diagram, RefusesWhatIsNoPlanarDiagramCode) {
  for (const char* text :
       {"[1,2,3]", "[1,5,2,4],[5,3,6,2],[3,1,4,7]", "[1,3,2,4],[3,1,4,2],[5,5,6,6]", "[0,1,2,3]",
        "[1,5,2,4],[1,5,2,4],[3,1,4,6]"})
    EXPECT_THROW(Diagram::of_pd(text), Error) << text;
}

TEST(Diagram, OfARightHandedTrefoilInSpaceHasPositiveCrossings) {
  std::vector<Point> trefoil;
  for (int k = 0; k < 60; ++k) {
    const double a = 2 * M_PI * k / 60;
    trefoil.push_back(
        {std::sin(a) + 2 * std::sin(2 * a), std::cos(a) - 2 * std::cos(2 * a), -std::sin(3 * a)});
  }
  const Diagram diagram = Diagram::of_polygon(trefoil, {0, 0, 1});
  EXPECT_EQ(diagram.crossings(), 3U);
  EXPECT_EQ(std::abs(diagram.writhe()), 3);
  const Diagram from_behind = Diagram::of_polygon(trefoil, {0, 0, -5});
  EXPECT_EQ(from_behind.writhe(), diagram.writhe());
}

TEST(Diagram, OfAPolygonKeepsTheKnotFromEveryDirection) {
  const std::vector<Point> ring = points_of(support::torus_knot(2, 5, 80));
  const std::vector<std::int64_t> polynomial = {1, -1, 1, -1, 1};
  for (const Point& direction :
       {Point{1, 0, 0}, Point{0, 1, 0}, Point{0, 0, 1}, Point{1, 2, 3}, Point{-1, 0.1, 4},
        Point{1e-200, 0, 0}, Point{1e300, 1e300, 0}, Point{0, 5e-324, 5e-324}})
    EXPECT_EQ(alexander_key(Diagram::of_polygon(ring, direction)), alexander_key_of(polynomial));
}

TEST(Diagram, TurnsDegenerateViewsAndRefusesBadPoints) {
  const std::vector<Point> square = {{0, 0, 0}, {0, 0, 1}, {1, 0, 1}, {1, 0, 0}};
  EXPECT_EQ(Diagram::of_polygon(square, {0, 0, 1}).simplified().crossings(), 0U);
  EXPECT_EQ(Diagram::of_polygon(square, {0, 1, 0}).simplified().crossings(), 0U);
  EXPECT_EQ(Diagram::of_polygon({}, {0, 0, 1}).crossings(), 0U);
  EXPECT_EQ(Diagram::of_polygon(std::vector<Point>(5, Point{1, 1, 1}), {0, 0, 1}).crossings(), 0U);
  EXPECT_THROW(Diagram::of_polygon(square, {0, 0, 0}), Error);
  const double nan = std::numeric_limits<double>::quiet_NaN();
  for (const Point& direction : {Point{nan, 0, 0}, {1, nan, 0}, {1, 2, nan}, {1, 2, HUGE_VAL}})
    EXPECT_THROW(Diagram::of_polygon(square, direction), Error);
  EXPECT_THROW(Diagram::of_polygon(std::vector<Point>{{0, 0, nan}, {1, 0, 0}}, {0, 0, 1}), Error);
}

TEST(Diagram, EqualsTheOneThatItsCodeDescribes) {
  const std::vector<Point> chain = points_of(support::torus_knot(3, 5, 70));
  const Diagram polygon = Diagram::of_polygon(chain, {1, 2, 3});
  const Diagram open = Diagram::of_open_chain(chain, {3, 1, -2});
  const Diagram sum = polygon.connected_sum(open);
  for (const Diagram& diagram : {Diagram(), polygon, open, sum, sum.simplified(), polygon.mirror(),
                                 open.reversed(), Diagram::of_pd(sum.pd())}) {
    EXPECT_EQ(Diagram::of_gauss_code(diagram.gauss_code()), diagram);
    EXPECT_EQ(Diagram::of_pd(diagram.pd()), diagram);
  }
  EXPECT_NE(polygon, polygon.mirror());
}

TEST(Diagram, OfAnOpenChainClosesOverEverything) {
  std::vector<Point> chain = points_of(support::torus_knot(2, 3, 90));
  for (int k = 0; k < 2; ++k) chain.pop_back();
  const std::vector<std::int64_t> trefoil = {1, -1, 1};
  EXPECT_EQ(alexander_key(Diagram::of_open_chain(chain, {0.2, 0.1, 1})), alexander_key_of(trefoil));
}

TEST(Diagram, SimplifiesAwayWhatReidemeisterMovesAdd) {
  const Diagram trefoil = Diagram::of_gauss_code(kTrefoil);
  const Diagram kinked = Diagram::of_gauss_code("O4-U4-O1+U2+O3+U1+O2+U5-O5-U3+");
  EXPECT_EQ(kinked.simplified().crossings(), 3U);
  EXPECT_EQ(kinked.simplified().writhe(), trefoil.writhe());
  EXPECT_EQ(trefoil.simplified().crossings(), 3U);
  EXPECT_EQ(trefoil.connected_sum(trefoil).crossings(), 6U);
}

}  // namespace
}  // namespace korvex
