// Error-bounded predicates: the decisions on points, segments and triangles that both eliminations
// of points and the projection take.
//
// Every sign that an answer relies on is that of the exact value, shown by a bound on the rounding
// error of its evaluation (J. R. Shewchuk, Discrete Comput. Geom. 18, 305 (1997)). Where rounding
// leaves it open the answer is the safe one. All are pure functions of constant cost.
//
// certainly_apart() and certainly_leaves() allow a triangle to be taken out of a chain. They answer
// true only when that is certain, and false when triangle and edge meet or rounding leaves it open.
//
// 1. Touching in one point, at an end, at a corner or along an edge, is meeting.
// 2. Degenerate triangles (two corners or all three on one line) and edges of zero length are
//    allowed: they are the segment or point that they look like.
// 3. For coordinates whose differences and products are exact (lattices, small integers) the answer
//    is exact: true whenever the two do not meet.
// 4. The answer does not change when the triangle's first and third corner change places, nor when
//    the edge's ends do.
// 5. Coordinates must be finite and at most 1 in magnitude, so that what underflows is far below
//    the bounds. This holds for 1 to 7.
// 6. TrianglePlane::clearly_off() is true of a corner and a point only where certainly_leaves() of
//    the same corner and point is, clearly_beside() of a segment only where certainly_apart() is,
//    and is_clear() only where bend_at() is kProper.
// 7. bend_at() is exact: points that only look collinear are not taken for it.
//
// PiercedTriangle::may_be_by() asks the same with a bound that all questions of a chain share.
//
// 8. It is false only if the line certainly has no point in common with the triangle but its first
//    and third corner, or the end that they share. A line that ends in the second corner pierces.
//
// turn() tells on which side of a line in the plane a point lies.
//
// 9. Turn::value is positive for a counter-clockwise turn; where clear(), its sign is exact, and
//    exchanging two corners turns the sign alone.
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>

#include "korvex/geometry.hpp"

namespace korvex {

// The corners of a triangle in chain order.
struct Triangle {
  Point before;
  Point tip;
  Point after;
};

// True when the triangle and the closed segment from `from` to `to` certainly have no common point.
bool certainly_apart(const Triangle& triangle, const Point& from, const Point& to);

// For an edge that begins at a corner of the triangle: true when it certainly meets the triangle
// nowhere else. `other1` and `other2` are the other two corners, `to` is the edge's other end.
bool certainly_leaves(const Point& corner, const Point& other1, const Point& other2,
                      const Point& to);

// The plane of a triangle of a chain, for quick answers to most questions of the two above and of
// bend_at().
class TrianglePlane {
 public:
  explicit TrianglePlane(const Triangle& triangle) : tip_(triangle.tip) {
    const Point leg1 = triangle.before - tip_, leg2 = triangle.after - tip_;
    const double size = std::max(size_of(leg1), size_of(leg2));
    normal_ = cross(leg1, leg2);
    doubt_ = kRounding * size * size;
  }

  // For all three false says nothing.
  bool is_clear() const { return normal_ != Point{}; }

  bool clearly_off(const Point& corner, const Point& to) const {
    const Point away = to - corner;
    return std::fabs(dot(normal_, away)) > doubt_at(away);
  }

  bool clearly_beside(const Point& from, const Point& to) const {
    const Point start = from - tip_, end = to - tip_;
    const double start_height = dot(normal_, start), end_height = dot(normal_, end);
    return (start_height > doubt_at(start) && end_height > doubt_at(end)) ||
           (start_height < -doubt_at(start) && end_height < -doubt_at(end));
  }

 private:
  // A bound by the largest coordinates of two sides and a vector, at most M, M and D in size. A
  // triple product of sides of the triangle has terms of at most 12 M M D together, 6 M M D of two
  // that begin in one corner: (6 + 12) 2^-49 M M D is more than both round, and the terms of the
  // predicates' own bound once more, 12 * 2^-49 M M D, make it certain there, too: 480 * 2^-53.
  static constexpr double kRounding = 512 * 0x1p-53;
  static constexpr double kUnderflow = 4e-290;

  static double size_of(const Point& a) {
    return std::max({std::fabs(a.x), std::fabs(a.y), std::fabs(a.z)});
  }

  double doubt_at(const Point& away) const { return doubt_ * size_of(away) + kUnderflow; }

  Point tip_;
  Point normal_;
  double doubt_;  // of the height of a vector with coordinates of size 1
};

// Where three consecutive points of a chain lie on one line, decided exactly.
enum class Bend {
  kProper,    // not on one line, or not certainly so
  kStraight,  // the middle point lies between the others or coincides with one of them
  kSpike,     // on one line, and the chain turns back at the middle point
};
Bend bend_at(const Triangle& triangle);

// Of points on one line: `middle` lies between `a` and `b` or coincides with one of them.
inline bool lies_between(const Point& a, const Point& middle, const Point& b) {
  const auto within = [](double u, double v, double w) {
    return std::min(u, w) <= v && v <= std::max(u, w);
  };
  return within(a.x, middle.x, b.x) && within(a.y, middle.y, b.y) && within(a.z, middle.z, b.z);
}

// A straight segment from one point to another.
struct Line {
  Point from;
  Point to;
};

// The triangle (p, q, r) of a chain's neighbours, for questions about many lines. `extent` bounds
// the distance of any two of the triangle's and the lines' points.
class PiercedTriangle {
 public:
  PiercedTriangle(const Point& p, const Point& q, const Point& r, double extent)
      : p_(p),
        q_(q),
        r_(r),
        normal_(cross(q - p, r - p)),
        extent_(extent),
        error_(32 * std::numeric_limits<double>::epsilon() * extent * extent * extent) {}

  // Whether the line may pierce it.
  bool may_be_by(const Line& line) const {
    const double begin = dot(normal_, line.from - p_);
    const double end = dot(normal_, line.to - p_);
    // Ends in corners have no height beyond the error.
    if ((begin > error_ && end > error_) || (begin < -error_ && end < -error_)) return false;
    return may_be_across(line);
  }

 private:
  bool may_be_across(const Line& line) const;

  Point p_;
  Point q_;
  Point r_;
  Point normal_;
  double extent_;
  double error_;  // of a height, or a volume
};

// Twice the area of a triangle in the plane and a bound on what rounding did to it.
struct Turn {
  double value;
  double error;

  bool clear() const { return std::abs(value) > error; }
};

inline bool clearly_same_side(const Turn& a, const Turn& b) {
  return (a.value > a.error && b.value > b.error) || (a.value < -a.error && b.value < -b.error);
}

// The turn from p by q to r, vertices with coordinates x and y, which count as exact.
template <typename Vertex>
Turn turn(const Vertex& p, const Vertex& q, const Vertex& r) {
  constexpr double kRounding = 2 * std::numeric_limits<double>::epsilon();
  const double left = (q.x - p.x) * (r.y - p.y);
  const double right = (q.y - p.y) * (r.x - p.x);
  return {left - right, kRounding * (std::abs(left) + std::abs(right))};
}

}  // namespace korvex
