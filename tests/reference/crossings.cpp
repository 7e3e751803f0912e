#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iostream>
#include <limits>
#include <vector>

#include "reference/reference.hpp"

namespace reference {

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

std::pair<double, double> strictly_inside(double s, double u, int& status) {
  constexpr const char* kAtTheEnd =
      "PROBLEM with one projection. Two segments cross exactly at the end of one of them.\n";
  if (s < 0 || s > 1) return kNone;
  if (u < 0 || u > 1) return kNone;
  if (s == 0 || s == 1) return problem(kAtTheEnd, status);
  if (u == 0 || u == 1) return problem(kAtTheEnd, status);
  status = 1;
  return {s, u};
}

std::pair<double, double> cross_vertical(const Edge& a, const Edge& b, int& status) {
  if (b.x1 == b.x2) {
    if (a.x1 != b.x1 || apart_in_y(a, b)) return kNone;
    return problem(
        "PROBLEM with one projection. Two segments are parallel and partially colaps, or one "
        "segment is degenerated.\n",
        status);
  }
  if (a.y1 == a.y2) {
    return problem("PROBLEM with one projection. One segment is degenerated.\n", status);
  }
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

}  // namespace

std::pair<double, double> cross_edges(const Edge& a, const Edge& b, int& status) {
  status = 0;
  if (a.x1 == a.x2) return cross_vertical(a, b, status);
  const double det = (a.y1 - a.y2) * (b.x1 - b.x2) - (a.x1 - a.x2) * (b.y1 - b.y2);
  if (det == 0) return cross_parallel(a, b, status);
  const double u = ((a.x1 - a.x2) * (b.y2 - a.y2) - (a.y1 - a.y2) * (b.x2 - a.x2)) / det;
  const double s = (b.x2 + (b.x1 - b.x2) * u - a.x2) / (a.x1 - a.x2);
  return strictly_inside(s, u, status);
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
  return std::atan2(cross, dot) > 0;
}

std::pair<double, double> TwoEdgesCrossed(Edge A, Edge B, int& status) {
  return cross_edges(A, B, status);
}

bool FirstEdgeOver(Edge A, Edge B, double s, double u) { return first_over(A, B, s, u); }

bool TypeOfCrossing(Edge A, Edge B) { return turns_left(A, B); }

namespace {

void record(std::vector<Edge>& edges, std::vector<Crossing>& crossings, int i, int j, double s,
            double u) {
  Edge& first = edges[static_cast<std::size_t>(i)];
  Edge& second = edges[static_cast<std::size_t>(j)];
  const bool first_is_over = first_over(first, second, s, u);
  const bool left = first_is_over ? turns_left(first, second) : turns_left(second, first);
  crossings.push_back(
      {first_is_over ? i : j, first_is_over ? j : i, 0, 0, 0, static_cast<std::int32_t>(left)});
  const auto index = static_cast<std::int16_t>(crossings.size() - 1);
  first.crossings.push_back({index, s});
  second.crossings.push_back({index, u});
}

// Positions that are not numbers have no order, and std::sort may then run off the list, but not
// past such a position.
void sort_along(std::vector<CrossingShort>& list) {
  const CrossingShort guard{0, std::numeric_limits<double>::quiet_NaN()};
  list.insert(list.begin(), guard);
  list.push_back(guard);
  std::sort(list.begin() + 1, list.end() - 1, WayToSortCrossings);
  list.pop_back();
  list.erase(list.begin());
}

}  // namespace

int FindAllCrossings(std::vector<Edge>& edges, std::vector<Crossing>& crossings,
                     bool chainIsClosed) {
  if (crossings.capacity() < 20) crossings.reserve(20);
  const int n = static_cast<int>(edges.size());
  if (n < 3) return 0;
  for (int i = 0; i + 2 < n; ++i) {
    const int bound = chainIsClosed && i == 0 ? n - 1 : n;
    for (int j = i + 2; j < bound; ++j) {
      int status = 0;
      const auto [s, u] = cross_edges(edges[static_cast<std::size_t>(i)],
                                      edges[static_cast<std::size_t>(j)], status);
      if (status == -1) return 1;
      if (status == 1) record(edges, crossings, i, j, s, u);
    }
  }
  for (Edge& edge : edges) sort_along(edge.crossings);
  return 0;
}

int FillCrossings(std::vector<Edge>& edges, std::vector<Crossing>& crossings) {
  const std::uint32_t count = static_cast<std::uint32_t>(crossings.size());
  std::uint32_t arc = 0;
  for (std::size_t k = 0; k < edges.size(); ++k) {
    for (const CrossingShort& on_edge : edges[k].crossings) {
      // An index that 16 bits could not hold names no crossing.
      const auto index = static_cast<std::size_t>(on_edge.crossingIndex);
      if (index >= crossings.size()) continue;
      Crossing& crossing = crossings[index];
      if (crossing.overEdge == static_cast<std::int32_t>(k)) {
        crossing.overArc = static_cast<std::int32_t>(arc);
      } else {
        crossing.underArcIn = static_cast<std::int32_t>(arc);
        arc = arc < count - 1 ? arc + 1 : 0;
        crossing.underArcOut = static_cast<std::int32_t>(arc);
      }
    }
  }
  return 0;
}

}  // namespace reference
