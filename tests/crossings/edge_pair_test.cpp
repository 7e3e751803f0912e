#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <utility>

#include "korvex.h"
#include "support/captured_stream.hpp"
#include "support/chains.hpp"
#include "support/edges.hpp"

namespace {

using support::edge;
using support::flat;
using Positions = std::pair<double, double>;

const char kOverlapOrPoint[] =
    "PROBLEM with one projection. Two segments are parallel and partially colaps, or one segment "
    "is degenerated.\n";
const char kPoint[] = "PROBLEM with one projection. One segment is degenerated.\n";
const char kOverlap[] =
    "PROBLEM with one projection. Two segments are parallel and partially colaps.\n";
const char kEndpoint[] =
    "PROBLEM with one projection. Two segments cross exactly at the end of one of them.\n";

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

struct Verdict {
  int status;
  Positions positions;
  std::string log;
  bool operator==(const Verdict&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Verdict& v) {
  return out << "status " << v.status << " at (" << v.positions.first << ", " << v.positions.second
             << "), log \"" << v.log << "\"";
}

Verdict verdict(const Edge& a, const Edge& b) {
  support::CapturedStreams streams;
  int status = 77;
  const Positions positions = TwoEdgesCrossed(a, b, status);
  EXPECT_EQ(streams.out.text() + streams.err.text(), "");
  return {status, positions, streams.log.text()};
}

const Verdict kApart{0, {0, 0}, ""};

Verdict crossing(double s, double u) { return {1, {s, u}, ""}; }
Verdict problem(const char* message) { return {-1, {0, 0}, message}; }

TEST(TwoEdgesCrossed, DiagonalsOfASquareCrossInTheirMiddles) {
  EXPECT_EQ(verdict(flat(0, 0, 2, 2), flat(0, 2, 2, 0)), crossing(0.5, 0.5));
}

TEST(TwoEdgesCrossed, HorizontalCrossesVertical) {
  EXPECT_EQ(verdict(flat(0, 0, 2, 0), flat(1, -1, 1, 1)), crossing(0.5, 0.5));
}

TEST(TwoEdgesCrossed, VerticalCrossesHorizontal) {
  EXPECT_EQ(verdict(flat(1, -1, 1, 1), flat(0, 0, 2, 0)), crossing(0.5, 0.5));
}

TEST(TwoEdgesCrossed, PositionsAreOneAtTheFirstEndpoint) {
  EXPECT_EQ(verdict(flat(0, 0, 4, 0), flat(1, -1, 1, 3)), crossing(0.75, 0.75));
  EXPECT_EQ(verdict(flat(1, -1, 1, 3), flat(0, 0, 4, 0)), crossing(0.75, 0.75));
}

TEST(TwoEdgesCrossed, CrossingAtAnEndpointOfTheFirstIsAProblem) {
  EXPECT_EQ(verdict(flat(0, 0, 2, 0), flat(2, -1, 2, 1)), problem(kEndpoint));
  EXPECT_EQ(verdict(flat(0, 0, 2, 0), flat(0, -1, 0, 1)), problem(kEndpoint));
}

TEST(TwoEdgesCrossed, CrossingAtAnEndpointOfTheSecondIsAProblem) {
  EXPECT_EQ(verdict(flat(0, 0, 2, 0), flat(1, 0, 1, 1)), problem(kEndpoint));
  EXPECT_EQ(verdict(flat(0, 0, 2, 0), flat(1, 1, 1, 0)), problem(kEndpoint));
  EXPECT_EQ(verdict(flat(1, -1, 1, 1), flat(1, 0, 3, 0)), problem(kEndpoint));
}

TEST(TwoEdgesCrossed, SharedEndpointIsAProblem) {
  EXPECT_EQ(verdict(flat(0, 0, 2, 1), flat(2, 1, 3, -4)), problem(kEndpoint));
}

TEST(TwoEdgesCrossed, RangesAreTestedBeforeEndpoints) {
  EXPECT_EQ(verdict(flat(0, 0, 2, 0), flat(2, 1, 2, 2)), kApart);  // at A's end, but beyond B
  EXPECT_EQ(verdict(flat(0, 0, 2, 0), flat(3, 0, 3, 2)), kApart);  // at B's end, but beyond A
}

TEST(TwoEdgesCrossed, BeyondTheFirstEdgeIsNoCrossing) {
  EXPECT_EQ(verdict(flat(0, 0, 2, 0), flat(3, -1, 3, 1)), kApart);
  EXPECT_EQ(verdict(flat(0, 0, 2, 0), flat(-3, -1, -3, 1)), kApart);
}

TEST(TwoEdgesCrossed, BeyondTheSecondEdgeIsNoCrossing) {
  EXPECT_EQ(verdict(flat(0, 0, 2, 0), flat(1, 1, 1, 3)), kApart);
  EXPECT_EQ(verdict(flat(0, 0, 2, 0), flat(1, -3, 1, -1)), kApart);
}

TEST(TwoEdgesCrossed, ParallelEdgesDoNotCross) {
  EXPECT_EQ(verdict(flat(0, 0, 1, 1), flat(0, 1, 1, 2)), kApart);
  EXPECT_EQ(verdict(flat(0, 0, 1, 1), flat(1, 2, 0, 1)), kApart);
}

TEST(TwoEdgesCrossed, CollinearHorizontalEdgesAreAProblemEvenApart) {
  EXPECT_EQ(verdict(flat(0, 0, 1, 0), flat(2, 0, 3, 0)), problem(kOverlap));
}

TEST(TwoEdgesCrossed, CollinearEdgesApartInHeightDoNotCross) {
  EXPECT_EQ(verdict(flat(0, 0, 1, 1), flat(2, 2, 3, 3)), kApart);
  EXPECT_EQ(verdict(flat(2, 2, 3, 3), flat(0, 0, 1, 1)), kApart);
  EXPECT_EQ(verdict(flat(1, 1, 0, 0), flat(2, 2, 3, 3)), kApart);
}

TEST(TwoEdgesCrossed, CollinearOverlapIsAProblem) {
  EXPECT_EQ(verdict(flat(0, 0, 2, 2), flat(1, 1, 3, 3)), problem(kOverlap));
  EXPECT_EQ(verdict(flat(0, 0, 1, 1), flat(1, 1, 2, 2)), problem(kOverlap));  // end to end
  EXPECT_EQ(verdict(flat(0, 0, 3, 3), flat(1, 1, 2, 2)), problem(kOverlap));
}

TEST(TwoEdgesCrossed, VerticalOverlapIsAProblem) {
  EXPECT_EQ(verdict(flat(1, 0, 1, 2), flat(1, 1, 1, 3)), problem(kOverlapOrPoint));
  EXPECT_EQ(verdict(flat(1, 0, 1, 1), flat(1, 1, 1, 2)), problem(kOverlapOrPoint));
  EXPECT_EQ(std::string(kOverlapOrPoint).size(), 108U);  // its newline included
}

TEST(TwoEdgesCrossed, VerticalEdgesBesideEachOtherDoNotCross) {
  EXPECT_EQ(verdict(flat(1, 0, 1, 2), flat(2, 1, 2, 3)), kApart);
}

TEST(TwoEdgesCrossed, VerticalEdgesAboveEachOtherDoNotCross) {
  EXPECT_EQ(verdict(flat(1, 0, 1, 2), flat(1, 3, 1, 4)), kApart);
  EXPECT_EQ(verdict(flat(1, 3, 1, 4), flat(1, 2, 1, 0)), kApart);
}

TEST(TwoEdgesCrossed, FirstEdgeThatIsAPointIsAProblem) {
  EXPECT_EQ(verdict(flat(1, 1, 1, 1), flat(0, 0, 2, 2)), problem(kPoint));
  EXPECT_EQ(verdict(flat(9, 9, 9, 9), flat(0, 0, 2, 2)), problem(kPoint));  // wherever it is
}

TEST(TwoEdgesCrossed, SecondEdgeThatIsAPointIsNotCrossed) {
  EXPECT_EQ(verdict(flat(0, 0, 2, 2), flat(1, 1, 1, 1)), kApart);
  EXPECT_EQ(verdict(flat(0, 0, 2, 0), flat(1, 0, 1, 0)), kApart);
}

TEST(TwoEdgesCrossed, PointOnTheLineOfAVerticalEdgeIsAProblemOnlyWithinIt) {
  EXPECT_EQ(verdict(flat(1, 0, 1, 2), flat(1, 1, 1, 1)), problem(kOverlapOrPoint));
  EXPECT_EQ(verdict(flat(1, 1, 1, 1), flat(1, 0, 1, 2)), problem(kOverlapOrPoint));
  EXPECT_EQ(verdict(flat(1, 0, 1, 2), flat(1, 3, 1, 3)), kApart);
  EXPECT_EQ(verdict(flat(1, 3, 1, 3), flat(1, 0, 1, 2)), kApart);
}

TEST(TwoEdgesCrossed, TwoPoints) {
  EXPECT_EQ(verdict(flat(1, 1, 1, 1), flat(1, 1, 1, 1)), problem(kOverlapOrPoint));
  EXPECT_EQ(verdict(flat(1, 1, 1, 1), flat(1, 2, 1, 2)), kApart);
  EXPECT_EQ(verdict(flat(1, 1, 1, 1), flat(2, 1, 2, 1)), kApart);
}

TEST(TwoEdgesCrossed, HeightsPlayNoPart) {
  EXPECT_EQ(verdict(edge(0, 0, 5, 2, 2, -7), edge(0, 2, 1e300, 2, 0, kNaN)), crossing(0.5, 0.5));
}

TEST(TwoEdgesCrossed, NotANumberPassesEveryTestOfTheRange) {
  const Verdict seen = verdict(flat(kNaN, 0, 2, 2), flat(0, 2, 2, 0));
  EXPECT_EQ(seen.status, 1);
  EXPECT_TRUE(std::isnan(seen.positions.first));
  EXPECT_TRUE(std::isnan(seen.positions.second));
  EXPECT_EQ(seen.log, "");
}

TEST(TwoEdgesCrossed, MessagesAreNotFlushed) {
  support::CapturedStream log(std::clog);
  int status = 0;
  TwoEdgesCrossed(flat(0, 0, 2, 0), flat(2, -1, 2, 1), status);
  EXPECT_EQ(log.text(), kEndpoint);
  EXPECT_EQ(log.flushes(), 0);
}

// Both formulas in the order of operations on which the exact comparisons depend.
TEST(TwoEdgesCrossed, PositionsHaveTheBitsOfTheirFormulas) {
  support::Random random(1);
  int found = 0;
  for (int k = 0; k < 2000; ++k) {
    Edge A = flat(random.normal(), random.normal(), random.normal(), random.normal());
    const Edge B = flat(random.normal(), random.normal(), random.normal(), random.normal());
    double s = 0, u = 0;
    if (k % 2 == 0) {
      A.x2 = A.x1;
      s = (B.y2 - A.y2) / (A.y1 - A.y2) +
          ((A.x2 - B.x2) * (B.y1 - B.y2)) / ((A.y1 - A.y2) * (B.x1 - B.x2));
      u = (A.x2 - B.x2) / (B.x1 - B.x2);
    } else {
      const double det = (A.y1 - A.y2) * (B.x1 - B.x2) - (A.x1 - A.x2) * (B.y1 - B.y2);
      u = ((A.x1 - A.x2) * (B.y2 - A.y2) - (A.y1 - A.y2) * (B.x2 - A.x2)) / det;
      s = (B.x2 + (B.x1 - B.x2) * u - A.x2) / (A.x1 - A.x2);
    }
    const bool inside = s > 0 && s < 1 && u > 0 && u < 1;
    ASSERT_EQ(verdict(A, B), inside ? crossing(s, u) : kApart) << "input " << k;
    found += inside ? 1 : 0;
  }
  EXPECT_GT(found, 300);
}

TEST(FirstEdgeOver, ComparesHeightsAtThePositions) {
  const Edge falling = edge(0, 0, 4, 2, 2, 0), rising = edge(0, 2, 0, 2, 0, 4);
  EXPECT_TRUE(FirstEdgeOver(falling, rising, 0.75, 0.75));   // 3 against 1
  EXPECT_FALSE(FirstEdgeOver(falling, rising, 0.25, 0.25));  // 1 against 3
  EXPECT_FALSE(FirstEdgeOver(rising, falling, 0.75, 0.75));
}

TEST(FirstEdgeOver, EqualHeightsAreNotOver) {
  EXPECT_FALSE(FirstEdgeOver(flat(0, 0, 2, 2), flat(0, 2, 2, 0), 0.5, 0.5));
  EXPECT_FALSE(FirstEdgeOver(edge(0, 0, 4, 2, 2, 0), edge(0, 2, 0, 2, 0, 4), 0.5, 0.5));
}

TEST(FirstEdgeOver, NotANumberIsNotOver) {
  EXPECT_FALSE(FirstEdgeOver(edge(0, 0, kNaN, 2, 2, 1), flat(0, 2, 2, 0), 0.5, 0.5));
  EXPECT_FALSE(FirstEdgeOver(flat(0, 2, 2, 0), edge(0, 0, kNaN, 2, 2, 1), 0.5, 0.5));
}

TEST(TypeOfCrossing, CounterClockwiseTurnIsOne) {
  EXPECT_TRUE(TypeOfCrossing(flat(0, 0, 1, 0), flat(0, 0, 0, 1)));
  EXPECT_FALSE(TypeOfCrossing(flat(0, 0, 1, 0), flat(0, 1, 0, 0)));
}

TEST(TypeOfCrossing, TakesDirectionsFromFirstToSecondEndpoint) {
  EXPECT_TRUE(TypeOfCrossing(flat(5, 5, 4, 5), flat(7, 9, 7, 8)));
  EXPECT_TRUE(TypeOfCrossing(flat(0, 0, 1, 0), flat(3, 3, 2, 4)));   // 135 degrees
  EXPECT_FALSE(TypeOfCrossing(flat(0, 0, 1, 0), flat(3, 3, 2, 2)));  // 225 degrees
}

TEST(TypeOfCrossing, SameDirectionIsZero) {
  EXPECT_FALSE(TypeOfCrossing(flat(0, 0, 1, 0), flat(5, 5, 7, 5)));
}

TEST(TypeOfCrossing, OppositeDirectionIsOne) {
  EXPECT_TRUE(TypeOfCrossing(flat(0, 0, 1, 0), flat(1, 0, 0, 0)));
  EXPECT_TRUE(TypeOfCrossing(flat(0, 0, 1, 2), flat(1, 2, 0, 0)));
}

TEST(TypeOfCrossing, PointIsZero) {
  EXPECT_FALSE(TypeOfCrossing(flat(0, 0, 1, 0), flat(1, 1, 1, 1)));
}

TEST(TypeOfCrossing, HeightsPlayNoPart) {
  EXPECT_TRUE(TypeOfCrossing(edge(0, 0, 9, 1, 0, -9), edge(0, 0, kNaN, 0, 1, 3)));
}

}  // namespace
