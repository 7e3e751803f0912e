#include <gtest/gtest.h>

#include <iostream>
#include <utility>

#include "korvex.h"
#include "support/captured_stream.hpp"
#include "support/planar_edges.hpp"

namespace {

using support::level_edge;

struct Outcome {
  int status;
  std::pair<double, double> positions;
  std::string message;
};

Outcome cross(const Edge& a, const Edge& b) {
  const support::CapturedStream log(std::clog);
  Outcome outcome{};
  outcome.positions = TwoEdgesCrossed(a, b, outcome.status);
  outcome.message = log.text();
  return outcome;
}

void expect_none(const Edge& a, const Edge& b) {
  const Outcome outcome = cross(a, b);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.positions, std::pair(0.0, 0.0));
  EXPECT_EQ(outcome.message, "");
}

void expect_problem(const Edge& a, const Edge& b, const std::string& message) {
  const Outcome outcome = cross(a, b);
  EXPECT_EQ(outcome.status, -1);
  EXPECT_EQ(outcome.positions, std::pair(0.0, 0.0));
  EXPECT_EQ(outcome.message, message);
}

const std::string kCollapse =
    "PROBLEM with one projection. Two segments are parallel and partially colaps.\n";
const std::string kVerticalCollapse =
    "PROBLEM with one projection. Two segments are parallel and partially colaps, or one segment "
    "is degenerated.\n";
const std::string kDegenerate = "PROBLEM with one projection. One segment is degenerated.\n";
const std::string kAtTheEnd =
    "PROBLEM with one projection. Two segments cross exactly at the end of one of them.\n";

TEST(TwoEdgesCrossed, DiagonalsCrossInTheirMiddles) {
  const Outcome outcome = cross(level_edge(0, 0, 2, 2), level_edge(0, 2, 2, 0));
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.positions, std::pair(0.5, 0.5));
  EXPECT_EQ(outcome.message, "");
}

TEST(TwoEdgesCrossed, HorizontalCrossesVertical) {
  const Outcome outcome = cross(level_edge(0, 0, 2, 0), level_edge(1, -1, 1, 1));
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.positions, std::pair(0.5, 0.5));
}

TEST(TwoEdgesCrossed, VerticalFirstEdgeCrossesToo) {
  const Outcome outcome = cross(level_edge(1, -1, 1, 3), level_edge(0, 0, 4, 0));
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.positions, std::pair(0.75, 0.75));
}

TEST(TwoEdgesCrossed, PositionsFallFromTheFirstEndpointToTheSecond) {
  const Outcome outcome = cross(level_edge(0, 0, 4, 0), level_edge(1, -3, 1, 1));
  EXPECT_EQ(outcome.positions, std::pair(0.75, 0.25));
}

TEST(TwoEdgesCrossed, EndpointTouchIsAProblem) {
  expect_problem(level_edge(0, 0, 2, 0), level_edge(2, -1, 2, 1), kAtTheEnd);
  expect_problem(level_edge(2, -1, 2, 1), level_edge(0, 0, 2, 0), kAtTheEnd);
  expect_problem(level_edge(0, 0, 2, 0), level_edge(1, 0, 1, 1), kAtTheEnd);
}

TEST(TwoEdgesCrossed, CrossingBeyondAnEndIsNone) {
  expect_none(level_edge(0, 0, 2, 0), level_edge(3, -1, 3, 1));
  expect_none(level_edge(0, 0, 2, 0), level_edge(1, 1, 1, 2));
}

TEST(TwoEdgesCrossed, DisjointHorizontalEdgesOnOneLineAreAProblem) {
  expect_problem(level_edge(0, 0, 1, 0), level_edge(2, 0, 3, 0), kCollapse);
}

TEST(TwoEdgesCrossed, CollinearEdgesApartInYDoNotCross) {
  expect_none(level_edge(0, 0, 1, 1), level_edge(2, 2, 3, 3));
  expect_none(level_edge(2, 2, 3, 3), level_edge(0, 0, 1, 1));
  expect_problem(level_edge(0, 0, 2, 2), level_edge(1, 1, 3, 3), kCollapse);
}

TEST(TwoEdgesCrossed, ParallelEdgesOnTwoLinesDoNotCross) {
  expect_none(level_edge(0, 0, 1, 1), level_edge(0, 1, 1, 2));
}

TEST(TwoEdgesCrossed, OnlyTheFirstEdgeIsTestedForBeingAPoint) {
  expect_problem(level_edge(1, 1, 1, 1), level_edge(0, 0, 2, 2), kDegenerate);
  expect_none(level_edge(0, 0, 2, 2), level_edge(1, 1, 1, 1));
}

TEST(TwoEdgesCrossed, VerticalEdgesOnOneLine) {
  EXPECT_EQ(kVerticalCollapse.size(), 108U);
  expect_problem(level_edge(1, 0, 1, 2), level_edge(1, 1, 1, 3), kVerticalCollapse);
  expect_problem(level_edge(1, 1, 1, 1), level_edge(1, 0, 1, 2), kVerticalCollapse);
  expect_none(level_edge(1, 0, 1, 2), level_edge(2, 1, 2, 3));
  expect_none(level_edge(1, 0, 1, 1), level_edge(1, 2, 1, 3));
  expect_none(level_edge(1, 2, 1, 3), level_edge(1, 0, 1, 1));
}

TEST(TwoEdgesCrossed, StatusIsResetOnEntry) {
  int status = 7;
  TwoEdgesCrossed(level_edge(0, 0, 2, 0), level_edge(3, -1, 3, 1), status);
  EXPECT_EQ(status, 0);
}

TEST(FirstEdgeOver, TheHigherEdgeIsOver) {
  const Edge low = level_edge(0, 0, 2, 2, 1);
  const Edge high = level_edge(0, 2, 2, 0, 3);
  EXPECT_TRUE(FirstEdgeOver(high, low, 0.5, 0.5));
  EXPECT_FALSE(FirstEdgeOver(low, high, 0.5, 0.5));
}

TEST(FirstEdgeOver, EqualHeightsAnswerFalse) {
  EXPECT_FALSE(FirstEdgeOver(level_edge(0, 0, 2, 2), level_edge(0, 2, 2, 0), 0.5, 0.5));
}

TEST(FirstEdgeOver, PositionOneIsTheFirstEndpoint) {
  const Edge rising{0, 0, 0, 1, 1, 10, {}, 0};
  const Edge middle = level_edge(0, 1, 1, 0, 5);
  EXPECT_FALSE(FirstEdgeOver(rising, middle, 1, 0.5));
  EXPECT_TRUE(FirstEdgeOver(rising, middle, 0, 0.5));
}

TEST(TypeOfCrossing, CounterClockwiseTurnIsTrue) {
  EXPECT_TRUE(TypeOfCrossing(level_edge(0, 0, 1, 0), level_edge(0, 0, 0, 1)));
  EXPECT_FALSE(TypeOfCrossing(level_edge(0, 0, 1, 0), level_edge(0, 1, 0, 0)));
}

TEST(TypeOfCrossing, OppositeDirectionsTurnByPi) {
  EXPECT_TRUE(TypeOfCrossing(level_edge(0, 0, 1, 0), level_edge(1, 0, 0, 0)));
  EXPECT_FALSE(TypeOfCrossing(level_edge(0, 0, 1, 0), level_edge(0, 0, 1, 0)));
}

}  // namespace
