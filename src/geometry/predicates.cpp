#include "geometry/predicates.hpp"

#include <limits>

namespace korvex {
namespace {

// Each bound is a multiple of the sum of the magnitudes of the terms, larger than the number of
// roundings on any path to the result times 2^-53, and an allowance for underflow.
constexpr double kRounding = 16 * 0x1p-53;
constexpr double kUnderflow = 1e-290;
constexpr double kEpsilon = std::numeric_limits<double>::epsilon();

// A value and a bound on its rounding error.
struct Estimate {
  double value;
  double bound;
};

int certain_sign(Estimate e) {
  if (e.value > e.bound) return 1;
  return e.value < -e.bound ? -1 : 0;
}

bool same_certain_sign(int a, int b) { return a != 0 && a == b; }

// (a x b) . c. Exchanging a and b changes the sign of the value and nothing else.
Estimate triple_product(const Point& a, const Point& b, const Point& c) {
  const double xy = a.x * b.y, yx = a.y * b.x;
  const double yz = a.y * b.z, zy = a.z * b.y;
  const double zx = a.z * b.x, xz = a.x * b.z;
  const double value = (yz - zy) * c.x + (zx - xz) * c.y + (xy - yx) * c.z;
  const double size = (std::fabs(yz) + std::fabs(zy)) * std::fabs(c.x) +
                      (std::fabs(zx) + std::fabs(xz)) * std::fabs(c.y) +
                      (std::fabs(xy) + std::fabs(yx)) * std::fabs(c.z);
  return {value, kRounding * size + kUnderflow};
}

int dot_sign(const Point& a, const Point& b) {
  const double x = a.x * b.x, y = a.y * b.y, z = a.z * b.z;
  return certain_sign(
      {x + y + z, kRounding * (std::fabs(x) + std::fabs(y) + std::fabs(z)) + kUnderflow});
}

struct Vec2 {
  double x;
  double y;
};

Vec2 operator-(Vec2 a, Vec2 b) { return {a.x - b.x, a.y - b.y}; }

// The shadow of a point on the coordinate plane that leaves out one axis. Sets whose shadows do not
// meet do not meet.
Vec2 shadow(const Point& a, int axis) {
  if (axis == 0) return {a.y, a.z};
  if (axis == 1) return {a.z, a.x};
  return {a.x, a.y};
}

Estimate cross_estimate(Vec2 a, Vec2 b) {
  const double l = a.x * b.y, r = a.y * b.x;
  return {l - r, kRounding * (std::fabs(l) + std::fabs(r)) + kUnderflow};
}

int cross_sign(Vec2 a, Vec2 b) { return certain_sign(cross_estimate(a, b)); }

bool boxes_apart(double a, double b, double c, double p, double q) {
  return std::max({a, b, c}) < std::min(p, q) || std::max(p, q) < std::min({a, b, c});
}

// Of a triangle with corners at a, c and the origin and a segment from s to t: the lines along w
// separate them.
bool line_separates(Vec2 w, Vec2 a, Vec2 c, Vec2 s, Vec2 t) {
  const Estimate at_a = cross_estimate(w, a), at_c = cross_estimate(w, c);
  const Estimate at_s = cross_estimate(w, s), at_t = cross_estimate(w, t);
  const double high = std::max({0.0, at_a.value + at_a.bound, at_c.value + at_c.bound});
  const double low = std::min({0.0, at_a.value - at_a.bound, at_c.value - at_c.bound});
  return std::min(at_s.value - at_s.bound, at_t.value - at_t.bound) > high ||
         std::max(at_s.value + at_s.bound, at_t.value + at_t.bound) < low;
}

// If two convex figures of the plane do not meet, a line along one of their sides separates them.
bool shadows_apart(Vec2 a, Vec2 c, Vec2 s, Vec2 t) {
  return line_separates(t - s, a, c, s, t) || line_separates(a, a, c, s, t) ||
         line_separates(c, a, c, s, t) || line_separates(c - a, a, c, s, t);
}

// In the shadow, the ray along d is not among the directions between e1 and e2.
bool shadow_leaves(Vec2 e1, Vec2 e2, Vec2 d) {
  const int from1 = cross_sign(e1, d);
  const int to2 = cross_sign(d, e2);
  if (same_certain_sign(from1, -to2)) return true;
  const int turn = cross_sign(e1, e2);
  return same_certain_sign(turn, -from1) || same_certain_sign(turn, -to2);
}

// a * b == c * d, exactly. Only called with values that do not overflow; an underflow answers
// false.
bool products_equal(double a, double b, double c, double d) {
  const double left = a * b, right = c * d;
  if (left != right) return false;
  if (left == 0) return (a == 0 || b == 0) && (c == 0 || d == 0);
  if (std::fabs(left) < 1e-250) return false;
  return std::fma(a, b, -left) == std::fma(c, d, -right);
}

// The difference a - b where it is exact, not a number where it is not.
double exact_difference(double a, double b) {
  const double difference = a - b;
  const double b_part = a - difference;
  const double a_part = difference + b_part;
  const double rest = (a - a_part) + (b_part - b);
  return rest == 0 ? difference : std::numeric_limits<double>::quiet_NaN();
}

Point exact_difference(const Point& a, const Point& b) {
  return {exact_difference(a.x, b.x), exact_difference(a.y, b.y), exact_difference(a.z, b.z)};
}

// Six times the volume of the tetrahedron (a, b, c, d).
double volume(const Point& a, const Point& b, const Point& c, const Point& d) {
  return dot(cross(b - a, c - a), d - a);
}

// Whether a line from corner p to `far` may run on within the triangle.
bool may_run_inside(const Point& p, const Point& q, const Point& r, const Point& far,
                    double extent) {
  const double cube = extent * extent * extent;
  const Point normal = cross(q - p, r - p);
  if (std::abs(dot(normal, far - p)) > 32 * kEpsilon * cube) return false;
  const double error = 128 * kEpsilon * cube * extent;
  const bool beyond_pq = dot(normal, cross(q - p, far - p)) < -error;
  const bool beyond_pr = dot(normal, cross(far - p, r - p)) < -error;
  return !(beyond_pq || beyond_pr);
}

}  // namespace

bool certainly_apart(const Triangle& triangle, const Point& from, const Point& to) {
  const auto& [a, b, c] = triangle;
  if (boxes_apart(a.x, b.x, c.x, from.x, to.x) || boxes_apart(a.y, b.y, c.y, from.y, to.y) ||
      boxes_apart(a.z, b.z, c.z, from.z, to.z))
    return true;
  const Point leg1 = a - b, leg2 = c - b;
  const Point start = from - b, end = to - b;
  const Estimate start_height = triple_product(leg1, leg2, start);
  const Estimate end_height = triple_product(leg1, leg2, end);
  if (same_certain_sign(certain_sign(start_height), certain_sign(end_height))) return true;

  // A line that meets the triangle passes its three sides with one sense of rotation. The three
  // volumes that tell the senses, of each side and the edge, sum up to the difference of heights.
  const Estimate side1 = triple_product(start, end, leg1);
  const Estimate side2 = triple_product(start, end, leg2);
  const Estimate base{(side1.value - side2.value) - (end_height.value - start_height.value),
                      (side1.bound + side2.bound) + (end_height.bound + start_height.bound)};
  const int turn1 = -certain_sign(side1), turn2 = certain_sign(side2), turn3 = certain_sign(base);
  const int highest = std::max({turn1, turn2, turn3}), lowest = std::min({turn1, turn2, turn3});
  if (highest > 0 && lowest < 0) return true;
  const bool crosses_plane = certain_sign(start_height) * certain_sign(end_height) < 0;
  if (crosses_plane && (lowest > 0 || highest < 0)) return false;

  for (const int axis : {0, 1, 2})
    if (shadows_apart(shadow(leg1, axis), shadow(leg2, axis), shadow(start, axis),
                      shadow(end, axis)))
      return true;
  return false;
}

bool certainly_leaves(const Point& corner, const Point& other1, const Point& other2,
                      const Point& to) {
  const Point e1 = other1 - corner;
  const Point e2 = other2 - corner;
  const Point d = to - corner;
  if (certain_sign(triple_product(e1, e2, d)) != 0) return true;
  if (dot_sign(e1, d) < 0 && dot_sign(e2, d) < 0) return true;
  for (const int axis : {0, 1, 2})
    if (shadow_leaves(shadow(e1, axis), shadow(e2, axis), shadow(d, axis))) return true;
  return false;
}

Bend bend_at(const Triangle& triangle) {
  const auto& [a, b, c] = triangle;
  if (a == b || b == c) return Bend::kStraight;
  if (a == c) return Bend::kSpike;
  const Point near1 = a - b, near2 = c - b;
  if (near1.x * near2.y != near1.y * near2.x || near1.y * near2.z != near1.z * near2.y ||
      near1.z * near2.x != near1.x * near2.z)
    return Bend::kProper;  // as below, whether the differences are exact or not
  const Point leg1 = exact_difference(a, b);
  const Point leg2 = exact_difference(c, b);
  if (!products_equal(leg1.x, leg2.y, leg1.y, leg2.x) ||
      !products_equal(leg1.y, leg2.z, leg1.z, leg2.y) ||
      !products_equal(leg1.z, leg2.x, leg1.x, leg2.z))
    return Bend::kProper;
  return lies_between(a, b, c) ? Bend::kStraight : Bend::kSpike;
}

bool PiercedTriangle::may_be_across(const Line& line) const {
  const auto& [from, to] = line;
  if (from == p_ || to == p_) return may_run_inside(p_, q_, r_, from == p_ ? to : from, extent_);
  if (from == r_ || to == r_) return may_run_inside(r_, p_, q_, from == r_ ? to : from, extent_);
  const double about_pq = volume(from, to, p_, q_);
  const double about_qr = volume(from, to, q_, r_);
  const double about_rp = volume(from, to, r_, p_);
  const bool some_positive = about_pq > error_ || about_qr > error_ || about_rp > error_;
  const bool some_negative = about_pq < -error_ || about_qr < -error_ || about_rp < -error_;
  return !(some_positive && some_negative);
}

}  // namespace korvex
