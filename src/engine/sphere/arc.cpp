#include "engine/sphere/arc.hpp"

#include <cmath>

namespace korvex {
namespace {

// The four sides on which the ends of two arcs lie of each other's great circles.
struct Sides {
  int second_from;  // of the first arc's circle
  int second_to;
  int first_from;  // of the second arc's circle
  int first_to;

  bool any_on_circle() const {
    return second_from == 0 || second_to == 0 || first_from == 0 || first_to == 0;
  }
};

bool end_on_other_arc(const Arc& first, const Arc& second, const Sides& sides) {
  return (sides.second_from == 0 && between(first.from, first.to, second.from)) ||
         (sides.second_to == 0 && between(first.from, first.to, second.to)) ||
         (sides.first_from == 0 && between(second.from, second.to, first.from)) ||
         (sides.first_to == 0 && between(second.from, second.to, first.to));
}

bool certainly_one_side(double a, double b) {
  return (a > kTripleProductError && b > kTripleProductError) ||
         (a < -kTripleProductError && b < -kTripleProductError);
}

struct Place {
  double at;
  double error;
};

// Where an arc is crossed by `other`, given the heights of its ends over the circle of that.
Place place(const Arc& arc, const Arc& other, double from, double to) {
  constexpr double kEpsilon = std::numeric_limits<double>::epsilon();
  constexpr double kPoor = 1e-12;
  const double whole = std::abs(from) + std::abs(to);
  if (2 * kTripleProductError < kPoor * whole)
    return {std::abs(from) / whole, 2 * kTripleProductError / whole + 4 * kEpsilon};
  from = std::abs(exact_height(other.from, other.to, arc.from));
  to = std::abs(exact_height(other.from, other.to, arc.to));
  return {from / (from + to), 16 * kEpsilon};
}

}  // namespace

Arc arc_between(const SpherePoint& from, const SpherePoint& to) {
  constexpr double kShort = 0.01;
  const Point across = cross(from.unit, to.unit);
  const double sine = norm(across);
  return {from, to, across, sine < kShort ? exact_normal(from, to) : (1 / sine) * across};
}

Arc reversed(const Arc& arc) { return {arc.to, arc.from, -arc.across, -arc.normal}; }

ArcPair meet(const Arc& first, const Arc& second, ArcCrossing& crossing) {
  const double second_from = dot(first.across, second.from.unit);
  const double second_to = dot(first.across, second.to.unit);
  if (certainly_one_side(second_from, second_to)) return ArcPair::kApart;
  const double first_from = dot(second.across, first.from.unit);
  const double first_to = dot(second.across, first.to.unit);
  if (certainly_one_side(first_from, first_to)) return ArcPair::kApart;
  const Sides sides{orientation(first.from, first.to, second.from, second_from),
                    orientation(first.from, first.to, second.to, second_to),
                    orientation(second.from, second.to, first.from, first_from),
                    orientation(second.from, second.to, first.to, first_to)};
  // An end on the other's circle but not on the other: the arcs could meet in that end alone.
  if (sides.any_on_circle())
    return end_on_other_arc(first, second, sides) ? ArcPair::kDegenerate : ArcPair::kApart;
  if (sides.second_from == sides.second_to || sides.first_from == sides.first_to)
    return ArcPair::kApart;
  if (sides.second_from == sides.first_from) return ArcPair::kApart;  // they meet on the far side
  const Place on_first = place(first, second, first_from, first_to);
  const Place on_second = place(second, first, second_from, second_to);
  crossing = {sides.second_to > 0, on_first.at, on_second.at, on_first.error, on_second.error};
  return ArcPair::kCross;
}

bool overlap_at_end(const Arc& a, const Arc& b) {
  const bool at_start = a.from.whole == b.from.whole;
  const SpherePoint& other = at_start ? b.to : b.from;
  if (orientation(a.from, a.to, other) != 0) return false;
  return alignment_of_normals(a.from, a.to, b.from, b.to) > 0;
}

// A crossing with the circle of normal m is at +-(n x m) for the arc's own normal n, with the sign
// of `to_left`; and (n x m) x (n x k) is n times the triple product of n, m and k.
int order_along(const Arc& along, const ArcPassage& a, const ArcPassage& b) {
  const double apart = b.at - a.at;
  if (apart > a.error + b.error) return 1;
  if (-apart > a.error + b.error) return -1;
  const int sign = orientation_of_normals(along.from, along.to, a.other->from, a.other->to,
                                          b.other->from, b.other->to);
  return a.to_left == b.to_left ? sign : -sign;
}

Point point_at(const Arc& arc, double at) {
  const Point chord = (1 - at) * arc.from.unit + at * arc.to.unit;
  return (1 / norm(chord)) * chord;
}

}  // namespace korvex
