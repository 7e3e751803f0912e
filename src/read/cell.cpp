#include "read/cell.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace korvex::read {
namespace {

bool is_usable(const Point& edge) {
  const double length = dot(edge, edge);
  return std::isfinite(length) && length > 0;
}

// Takes off `a` as many whole `b` as make it shortest; true where that shortened it.
bool shorten(Point& a, const Point& b) {
  const Point shorter = a - std::round(dot(a, b) / dot(b, b)) * b;
  if (!(dot(shorter, shorter) < dot(a, a) * (1 - 1e-12))) return false;
  a = shorter;
  return true;
}

// Sums and differences of two or three edges, and the edges: one of each pair of opposite ones.
std::vector<Point> sums_of(const std::vector<Point>& edges) {
  std::vector<Point> sums;
  for (const Point& edge : edges) {
    const std::size_t before = sums.size();
    for (std::size_t i = 0; i < before; ++i) {
      const Point sum = sums[i];
      sums.push_back(sum + edge);
      sums.push_back(sum - edge);
    }
    sums.push_back(edge);
  }
  return sums;
}

// Makes edges of the same lattice that are as short and as upright as they get.
void reduce(std::vector<Point>& edges) {
  constexpr int kMost = 1000;  // rounding may not let it end
  bool again = true;
  for (int round = 0; again && round < kMost; ++round) {
    std::sort(edges.begin(), edges.end(),
              [](const Point& a, const Point& b) { return dot(a, a) < dot(b, b); });
    again = false;
    for (std::size_t i = edges.size(); i-- > 1 && !again;) {
      const std::vector<Point> others(edges.begin(),
                                      edges.begin() + static_cast<std::ptrdiff_t>(i));
      for (const Point& other : sums_of(others)) again = again || shorten(edges[i], other);
    }
  }
}

bool are_independent(const std::vector<Point>& edges) {
  constexpr double kFlat = 1e-6;
  if (edges.size() < 2) return true;
  const Point normal = cross(edges[0], edges[1]);
  const double area = norm(edges[0]) * norm(edges[1]);
  if (!(norm(normal) > kFlat * area)) return false;
  return edges.size() < 3 || std::abs(dot(normal, edges[2])) > kFlat * area * norm(edges[2]);
}

}  // namespace

Cell cell_of(const Point& lengths, const Point& angles) {
  const auto cosine = [](double degrees) {
    return degrees == 90 ? 0 : std::cos(degrees * std::numbers::pi / 180);
  };
  const double ca = cosine(angles.x);
  const double cb = cosine(angles.y);
  const double cg = cosine(angles.z);
  const double sg = std::sqrt(1 - cg * cg);
  const double cx = cb;
  const double cy = (ca - cb * cg) / sg;
  const double cz = std::sqrt(1 - cx * cx - cy * cy);
  const std::vector<Point> edges = {
      {lengths.x, 0, 0}, lengths.y * Point{cg, sg, 0}, lengths.z * Point{cx, cy, cz}};
  return std::all_of(edges.begin(), edges.end(), is_usable) ? Cell{edges} : Cell{};
}

Lattice::Lattice(const Cell& cell) {
  std::vector<Point> edges;
  for (const Point& edge : cell.edges) {
    if (!is_usable(edge)) continue;
    edges.push_back(edge);
    if (!are_independent(edges)) edges.pop_back();
  }
  reduce(edges);
  steps_ = sums_of(edges);
}

double Lattice::shortest() const {
  double least = 0;
  for (const Point& step : steps_)
    if (least == 0 || norm(step) < least) least = norm(step);
  return least;
}

Point Lattice::nearest(Point place) const {
  const Point from = place;
  bool again = true;
  while (again) {
    again = false;
    for (const Point& step : steps_) again = shorten(place, step) || again;
  }
  return from - place;
}

std::vector<bool> mend_bonds(std::vector<Point>& points, const Lattice& lattice, double longest,
                             const std::vector<bool>& may_break) {
  std::vector<bool> mended;
  if (lattice.empty() || lattice.shortest() < 2 * longest) return mended;
  Point shift;
  for (std::size_t i = 1; i < points.size(); ++i) {
    // `shift` is what the point before was moved by.
    const Point bond = points[i] + shift - points[i - 1];
    if (may_break[i - 1] && norm(bond) > longest) {
      const Point vector = lattice.nearest(bond);
      if (vector != Point{} && norm(bond - vector) <= longest) {
        shift = shift - vector;
        mended.resize(points.size());
        mended[i] = true;
      }
    }
    points[i] = points[i] + shift;
  }
  return mended;
}

}  // namespace korvex::read
