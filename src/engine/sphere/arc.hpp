// Arcs of great circles, and where two of them cross: exactly, or not at all.
#pragma once

#include "engine/sphere/sphere_point.hpp"
#include "korvex/geometry.hpp"

namespace korvex {

// The shorter arc between two directions that are neither the same nor opposite.
struct Arc {
  SpherePoint from;
  SpherePoint to;
  Point across;  // from x to, of the unit vectors
  Point normal;  // the same of length 1: the pole to the left of the arc
};

Arc arc_between(const SpherePoint& from, const SpherePoint& to);

// A crossing of two arcs in a point inside of both.
struct ArcCrossing {
  bool second_to_left = false;  // the second passes from the right of the first to its left
  // Where on either arc: rising from 0 to 1, though not the part of its length, each with the bound
  // on its error.
  double at_first = 0;
  double at_second = 0;
  double error_first = 0;
  double error_second = 0;
};

enum class ArcPair {
  kApart,
  kCross,
  kDegenerate,  // an end of one lies on the other, or they have more than one point in common
};

// How two arcs lie that have no end in common by construction. The decision is exact.
ArcPair meet(const Arc& first, const Arc& second, ArcCrossing& crossing);

// True where two arcs that begin in one point, or end there, have more than it in common. For arcs
// of which one begins where the other ends, turn one round.
bool overlap_at_end(const Arc& a, const Arc& b);

// An arc turned round.
Arc reversed(const Arc& arc);

// One of two crossings of `along` with others: where, and with which arc.
struct ArcPassage {
  double at;
  double error;
  const Arc* other;
  bool to_left;  // the other passes from the right of `along` to its left
};

// The sign of (where b is) less (where a is), exactly: 0 where three arcs meet in one point.
int order_along(const Arc& along, const ArcPassage& a, const ArcPassage& b);

// The point of an arc at the given place, of length 1. It lies on the arc to within a few epsilon
// however small the angle at which another crosses there.
Point point_at(const Arc& arc, double at);

}  // namespace korvex
