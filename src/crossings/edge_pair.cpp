#include "crossings/edge_pair.hpp"

#include <cmath>
#include <iostream>

namespace korvex::crossings {
namespace {

constexpr std::pair<double, double> kNone{0.0, 0.0};

std::pair<double, double> problem(const char* message, int& status) {
  std::clog << message;
  status = -1;
  return kNone;
}

// On a common line, only the y coordinates are looked at: horizontal edges are never apart.
bool apart_in_y(const Edge& a, const Edge& b) {
  if (a.y1 > b.y1 && a.y1 > b.y2 && a.y2 > b.y1 && a.y2 > b.y2) return true;
  return a.y1 < b.y1 && a.y1 < b.y2 && a.y2 < b.y1 && a.y2 < b.y2;
}

}  // namespace

std::pair<double, double> cross_vertical(const Edge& a, const Edge& b, int& status) {
  if (b.x1 == b.x2) {
    if (a.x1 != b.x1 || apart_in_y(a, b)) return kNone;
    return problem(
        "PROBLEM with one projection. Two segments are parallel and partially colaps, or one "
        "segment is degenerated.\n",
        status);
  }
  if (a.y1 == a.y2)
    return problem("PROBLEM with one projection. One segment is degenerated.\n", status);
  const double s = (b.y2 - a.y2) / (a.y1 - a.y2) +
                   ((a.x2 - b.x2) * (b.y1 - b.y2)) / ((a.y1 - a.y2) * (b.x1 - b.x2));
  const double u = (a.x2 - b.x2) / (b.x1 - b.x2);
  return strictly_inside(s, u, status);
}

std::pair<double, double> cross_parallel(const Edge& a, const Edge& b, int& status) {
  const double height_a = (a.y1 * a.x2 - a.x1 * a.y2) / (a.x2 - a.x1);
  const double height_b = (b.y1 * b.x2 - b.x1 * b.y2) / (b.x2 - b.x1);
  if (height_a != height_b || apart_in_y(a, b)) return kNone;
  return problem("PROBLEM with one projection. Two segments are parallel and partially colaps.\n",
                 status);
}

std::pair<double, double> crossing_at_end(int& status) {
  return problem(
      "PROBLEM with one projection. Two segments cross exactly at the end of one of them.\n",
      status);
}

bool first_over(const Edge& a, const Edge& b, double s, double u) {
  const double height_a = a.z1 * s + (1 - s) * a.z2;
  const double height_b = b.z1 * u + (1 - u) * b.z2;
  return height_a > height_b;
}

bool turns_left(const Edge& a, const Edge& b) {
  const double ax = a.x2 - a.x1;
  const double ay = a.y2 - a.y1;
  const double bx = b.x2 - b.x1;
  const double by = b.y2 - b.y1;
  const double cross = ax * by - ay * bx;
  const double dot = ax * bx + ay * by;
  if (cross < 0) return false;
  if (cross > 1e-290 * std::fabs(dot)) return true;  // an angle that cannot underflow
  return std::atan2(cross, dot) > 0;
}

}  // namespace korvex::crossings

std::pair<double, double> TwoEdgesCrossed(Edge A, Edge B, int& status) {
  return korvex::crossings::cross_edges(A, B, status);
}

bool FirstEdgeOver(Edge A, Edge B, double s, double u) {
  return korvex::crossings::first_over(A, B, s, u);
}

bool TypeOfCrossing(Edge A, Edge B) { return korvex::crossings::turns_left(A, B); }
