#include "korvex/drawing.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <sstream>
#include <stop_token>
#include <string>
#include <vector>

#include "engine/random_chains.hpp"
#include "korvex/catalogue.hpp"
#include "korvex/error.hpp"
#include "korvex/report.hpp"
#include "support/diagrams.hpp"
#include "support/drawn_curve.hpp"

using korvex::Diagram;
using korvex::DiagramDrawing;
using korvex::DrawnArc;
using korvex::PlanePoint;

namespace {

Diagram coded(const std::string& code) { return Diagram::of_gauss_code(code); }

double apart(const PlanePoint& a, const PlanePoint& b) { return std::hypot(a.x - b.x, a.y - b.y); }

std::string read_back(const Diagram& diagram) {
  const auto curve = support::curve_of(diagram, draw(diagram));
  return Diagram::of_polygon(curve, {0, 0, 1}).gauss_code();
}

// Kinks with a loop in the loop, alternately over and under.
Diagram nested_loops(int depth) {
  std::string code;
  for (int k = 1; k <= depth; ++k) code += "O" + std::to_string(k) + "+";
  for (int k = depth; k >= 1; --k) code += "U" + std::to_string(k) + "+";
  return coded(code);
}

}  // namespace

TEST(Drawing, IsTheCircleOfADiagramWithoutCrossings) {
  const DiagramDrawing drawing = draw(Diagram());
  ASSERT_EQ(drawing.arcs.size(), 2u);
  for (const DrawnArc& arc : drawing.arcs) {
    for (const double fraction : {0.0, 0.2, 0.5, 0.9, 1.0}) {
      EXPECT_NEAR(apart(arc.at(fraction), {0, 0}), 1, 1e-12);
    }
    EXPECT_NEAR(arc.length(), std::acos(-1.0), 1e-12);
  }
}

TEST(Drawing, IsReadBackAsTheSameCodeForEveryKnotOfTheCatalogue) {
  for (const korvex::KnotType& type : korvex::catalogue()) {
    const Diagram diagram = coded(type.gauss_code);
    if (diagram.crossings() == 0) continue;
    EXPECT_EQ(read_back(diagram), diagram.gauss_code()) << type.name;
  }
}

TEST(Drawing, IsReadBackOfLoopsNestedAndInARow) {
  for (const char* code : {"O1+U1+", "O1-U1-", "O1+U1+O2-U2-", "U1-O1-O2+U2+U3+O3+"}) {
    EXPECT_EQ(read_back(coded(code)), coded(code).gauss_code()) << code;
  }
  for (const int depth : {2, 3, 4}) {
    EXPECT_EQ(read_back(nested_loops(depth)), nested_loops(depth).gauss_code()) << depth;
  }
}

TEST(Drawing, IsReadBackOfDiagramsOfChainsAndBraids) {
  for (unsigned seed = 1; seed <= 12; ++seed) {
    const auto chain = korvex::random_walk(seed, 5 + 3 * static_cast<int>(seed));
    const Diagram diagram = Diagram::of_polygon(chain, {0.3, 0.4, 0.9});
    if (diagram.crossings() == 0) continue;
    EXPECT_EQ(read_back(diagram), diagram.gauss_code()) << seed;
  }
  const Diagram torus = coded(support::torus_knot_code(4, 9));
  EXPECT_EQ(read_back(torus), torus.gauss_code());
}

TEST(Drawing, IsASmoothClosedCurveInTheDiscWithAnArcOfItsOwnForEachPassage) {
  const Diagram diagram = coded(korvex::find_knot_type("+8_19")->gauss_code);
  const DiagramDrawing drawing = draw(diagram);
  std::vector<std::size_t> passages;
  for (std::size_t k = 0; k < drawing.arcs.size(); ++k) {
    const DrawnArc& arc = drawing.arcs[k];
    const DrawnArc& next = drawing.arcs[(k + 1) % drawing.arcs.size()];
    EXPECT_LT(apart(arc.to, next.from), 1e-9);
    EXPECT_LT(apart(arc.at(0.5), {0, 0}), 1);
    const PlanePoint before = arc.at(1 - 1e-5);
    const PlanePoint behind = next.at(1e-5);
    const double turn = std::remainder(std::atan2(behind.y - arc.to.y, behind.x - arc.to.x) -
                                           std::atan2(arc.to.y - before.y, arc.to.x - before.x),
                                       2 * std::acos(-1.0));
    EXPECT_NEAR(turn, 0, 1e-3);
    if (arc.passage) passages.push_back(*arc.passage);
  }
  std::vector<std::size_t> all;
  for (std::size_t k = 0; k < diagram.code().size(); ++k) all.push_back(k);
  EXPECT_EQ(passages, all);
}

TEST(Drawing, HasBothPassagesOfACrossingMeetInOnePoint) {
  const Diagram diagram = coded(korvex::find_knot_type("-3_1#4_1")->gauss_code);
  std::vector<PlanePoint> meet(diagram.code().size());
  for (const DrawnArc& arc : draw(diagram).arcs) {
    if (arc.passage) meet[*arc.passage] = arc.at(arc.crossed_at);
  }
  for (std::size_t k = 0; k < meet.size(); ++k) {
    const auto mate = static_cast<std::size_t>(diagram.code()[k].mate);
    EXPECT_LT(apart(meet[k], meet[mate]), 1e-9) << k;
  }
}

TEST(Drawing, RefusesWhatNoOneCouldRead) {
  std::string code;
  for (int k = 1; k <= 1001; ++k) {
    code += "O" + std::to_string(k) + "+U" + std::to_string(k) + "+";
  }
  EXPECT_THROW(draw(coded(code)), korvex::Error);
  // A walk whose loops lie in loops of loops.
  const auto walk = korvex::random_walk(2, 80);
  EXPECT_THROW(draw(Diagram::of_polygon(walk, {0.3, 0.4, 0.9})), korvex::Error);
}

TEST(Drawing, CanBeStopped) {
  std::stop_source source;
  source.request_stop();
  korvex::Run run;
  run.stop = source.get_token();
  EXPECT_THROW(draw(coded("O1+U2+O3+U1+O2+U3+"), run), korvex::Error);
}

TEST(Drawing, IsWrittenWithAGapWhereTheCurvePassesUnderAndItsCaptionQuoted) {
  const Diagram trefoil = coded("O1+U2+O3+U1+O2+U3+");
  std::ostringstream out;
  write_drawing(trefoil, draw(trefoil), "<a&b>", "#123456", out);
  const std::string svg = out.str();
  const std::string path = svg.substr(svg.find(" d=\""), svg.find("\" fill") - svg.find(" d=\""));
  EXPECT_EQ(std::count(path.begin(), path.end(), 'M'), 3) << path;
  EXPECT_NE(svg.find("&lt;a&amp;b&gt;"), std::string::npos);
  EXPECT_EQ(svg.find("<a&b>"), std::string::npos);
  std::ostringstream circle;
  write_drawing(Diagram(), draw(Diagram()), "0_1", "#000000", circle);
  EXPECT_NE(circle.str().find("Z\""), std::string::npos);
}
