// Shares of knot types over all directions of closing, without regions: from the types on both
// sides of every piece of the paths that a chain draws on the sphere about its ends.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <map>
#include <numbers>
#include <span>
#include <string>
#include <vector>

#include "korvex/geometry.hpp"

namespace reference {

using korvex::Point;

// Name of the type of a chain closed by rays in a direction.
using TypeInDirection = std::function<std::string(const Point& direction)>;

class ClosureShares {
 public:
  // `chain` must be in general position, and `pole` far from the paths it draws.
  ClosureShares(std::span<const Point> chain, const TypeInDirection& type, const Point& pole)
      : type_(type), pole_(pole) {
    for (std::size_t i = 1; i + 1 < chain.size(); ++i)
      arcs_.push_back({unit(chain[i] - chain.front()), unit(chain[i + 1] - chain.front())});
    for (std::size_t i = 0; i + 2 < chain.size(); ++i)
      arcs_.push_back({unit(chain[i] - chain.back()), unit(chain[i + 1] - chain.back())});
    shares_[type_(-pole_)] = 1;
    for (const Arc& arc : arcs_) add_sides(arc);
  }

  const std::map<std::string, double>& shares() const { return shares_; }

 private:
  struct Arc {
    Point from;
    Point to;
  };

  static Point unit(const Point& p) { return (1 / norm(p)) * p; }

  // The area to the left of a piece counts for the type there, and against that on the right: all
  // pieces together leave of each type its area, less the sphere where the pole's opposite has it.
  void add_sides(const Arc& arc) {
    const std::vector<Point> stops = stops_of(arc);
    const Point normal = unit(cross(arc.from, arc.to));
    for (std::size_t k = 0; k + 1 < stops.size(); ++k) {
      const Point middle = unit(stops[k] + stops[k + 1]);
      const double aside = std::min(1e-10, 1e-3 * norm(stops[k + 1] - stops[k]));
      const std::string left = type_(unit(middle + aside * normal));
      const std::string right = type_(unit(middle - aside * normal));
      if (left == right) continue;
      const double share = triangle(stops[k], stops[k + 1]) / (4 * std::numbers::pi);
      shares_[left] += share;
      shares_[right] -= share;
    }
  }

  // The ends of an arc and its crossings with all others, in their order.
  std::vector<Point> stops_of(const Arc& arc) const {
    std::vector<std::pair<double, Point>> stops{{0, arc.from}, {norm(arc.to - arc.from), arc.to}};
    const Point normal = cross(arc.from, arc.to);
    for (const Arc& other : arcs_) {
      if (shares_an_end(arc, other)) continue;
      const Point across = cross(normal, cross(other.from, other.to));
      if (!(norm(across) > 0)) continue;
      for (const double sign : {1.0, -1.0}) {
        const Point meeting = sign * unit(across);
        if (inside(meeting, arc) && inside(meeting, other))
          stops.push_back({norm(meeting - arc.from), meeting});
      }
    }
    std::sort(stops.begin(), stops.end(),
              [](const auto& a, const auto& b) { return a.first < b.first; });
    std::vector<Point> points;
    for (const auto& [place, point] : stops) points.push_back(point);
    return points;
  }

  static bool shares_an_end(const Arc& a, const Arc& b) {
    return a.from == b.from || a.to == b.to || a.from == b.to || a.to == b.from;
  }

  static bool inside(const Point& p, const Arc& arc) {
    const Point normal = cross(arc.from, arc.to);
    return dot(cross(normal, arc.from), p) > 0 && dot(cross(arc.to, normal), p) > 0;
  }

  double triangle(const Point& a, const Point& b) const {
    return 2 * std::atan2(dot(pole_, cross(a, b)), 1 + dot(pole_, a) + dot(a, b) + dot(b, pole_));
  }

  const TypeInDirection& type_;
  const Point pole_;
  std::vector<Arc> arcs_;
  std::map<std::string, double> shares_;
};

}  // namespace reference
