// Directions as points on the unit sphere, and the exact signs that decide how they lie.
//
// A direction is a vector of whole numbers, so that the sign of every polynomial of coordinates can
// be known: it is computed in doubles where these certainly have it, and in integers elsewhere.
#pragma once

#include <limits>

#include "korvex/geometry.hpp"

namespace korvex {

// No coordinate of a SpherePoint's vector is larger.
inline constexpr double kLargestWhole = 0x1p52;

struct SpherePoint {
  Point whole;  // whole numbers up to kLargestWhole in size, not all 0
  Point unit;   // that vector brought to length 1, to within 2 epsilon
};

// Of a vector of whole numbers that is not 0.
SpherePoint sphere_point(const Point& whole);

// What rounding can do to the triple product of three vectors of length up to 1, each known to
// within 2 epsilon: 6 epsilon by the vectors, 6 by the operations, and some to spare.
inline constexpr double kTripleProductError = 16 * std::numeric_limits<double>::epsilon();

// The sign of the triple product (a x b) . c: +1 where c lies to the left of the great circle from
// a to b, seen from outside; 0 where it lies on it.
// 1. orientation(a, b, c) = orientation(b, c, a) = -orientation(b, a, c).
// 2. It is that of the mirror images, with the other sign.
// 3. It is 0 where two of the points are equal or opposite, and for all points of one great circle.
int orientation(const SpherePoint& a, const SpherePoint& b, const SpherePoint& c);

// The same, by whole numbers alone.
int exact_orientation(const SpherePoint& a, const SpherePoint& b, const SpherePoint& c);

// The same, with (a x b) . c computed already from the unit vectors.
inline int orientation(const SpherePoint& a, const SpherePoint& b, const SpherePoint& c,
                       double approximate) {
  if (approximate > kTripleProductError) return 1;
  if (approximate < -kTripleProductError) return -1;
  return exact_orientation(a, b, c);
}

// The triple product of a, b and the unit vector of c, but for a positive factor that depends on a
// and b alone: to within a few epsilon of itself, however small it is.
double exact_height(const SpherePoint& a, const SpherePoint& b, const SpherePoint& c);

// The vector a x b brought to length 1, to within a few epsilon however near the two directions
// are; they are neither the same nor opposite.
Point exact_normal(const SpherePoint& a, const SpherePoint& b);

enum class Alignment { kNone, kSame, kOpposite };

// Whether two directions are the same, or opposite to each other.
Alignment alignment(const SpherePoint& a, const SpherePoint& b);

// Whether c, on the great circle through a and b, lies on the shorter arc from a to b or at one of
// its ends; a and b are neither the same nor opposite.
bool between(const SpherePoint& a, const SpherePoint& b, const SpherePoint& c);

// The sign of the scalar product of a x b and c x d.
int alignment_of_normals(const SpherePoint& a, const SpherePoint& b, const SpherePoint& c,
                         const SpherePoint& d);

// The sign of the triple product of the normals a x b, c x d and e x f.
int orientation_of_normals(const SpherePoint& a, const SpherePoint& b, const SpherePoint& c,
                           const SpherePoint& d, const SpherePoint& e, const SpherePoint& f);

}  // namespace korvex
