// The crossing test of two projected edges, without the copies that the exported form makes. The
// enumeration runs it in its innermost loop, so it stands here to be inlined.
#pragma once

#include <utility>

#include "korvex.h"

namespace korvex::crossings {

// As TwoEdgesCrossed for an `a` that is vertical in the plane or a point, and for parallel edges
// of which `a` is not.
std::pair<double, double> cross_vertical(const Edge& a, const Edge& b, int& status);
std::pair<double, double> cross_parallel(const Edge& a, const Edge& b, int& status);

// Writes the message of a crossing at an end of an edge and sets `status`.
std::pair<double, double> crossing_at_end(int& status);

inline std::pair<double, double> strictly_inside(double s, double u, int& status) {
  if (s < 0 || s > 1) return {0.0, 0.0};
  if (u < 0 || u > 1) return {0.0, 0.0};
  if (s == 0 || s == 1 || u == 0 || u == 1) return crossing_at_end(status);
  status = 1;
  return {s, u};
}

// As TwoEdgesCrossed.
inline std::pair<double, double> cross_edges(const Edge& a, const Edge& b, int& status) {
  status = 0;
  if (a.x1 == a.x2) return cross_vertical(a, b, status);
  const double det = (a.y1 - a.y2) * (b.x1 - b.x2) - (a.x1 - a.x2) * (b.y1 - b.y2);
  if (det == 0) return cross_parallel(a, b, status);
  const double u = ((a.x1 - a.x2) * (b.y2 - a.y2) - (a.y1 - a.y2) * (b.x2 - a.x2)) / det;
  const double s = (b.x2 + (b.x1 - b.x2) * u - a.x2) / (a.x1 - a.x2);
  return strictly_inside(s, u, status);
}

// As FirstEdgeOver.
bool first_over(const Edge& a, const Edge& b, double s, double u);

// As TypeOfCrossing.
bool turns_left(const Edge& a, const Edge& b);

}  // namespace korvex::crossings
