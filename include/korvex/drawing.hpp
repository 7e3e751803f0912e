// Diagrams of knots, drawn.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "korvex/diagram.hpp"
#include "korvex/export.hpp"
#include "korvex/run.hpp"

namespace korvex {

// A point of the drawing's plane: x to the right, y upwards, no unit.
struct PlanePoint {
  double x = 0;
  double y = 0;

  friend bool operator==(const PlanePoint&, const PlanePoint&) = default;
};

// A piece of a circle, or a straight line, run through from `from` to `to`.
struct DrawnArc {
  PlanePoint from;
  PlanePoint to;
  double bulge = 0;  // tangent of a quarter of the angle that it turns; positive counter-clockwise
  std::optional<std::size_t> passage = {};  // index in the diagram's code of the passage on it
  double crossed_at = 0;                    // of that: how far along the arc, from 0 to 1

  // The point so far along the arc, from 0 to 1, and what lies between two such points.
  KORVEX_API PlanePoint at(double fraction) const;
  KORVEX_API DrawnArc between(double begin, double end) const;
  KORVEX_API double length() const;
};

// A closed smooth curve that meets itself at the crossings of its diagram and nowhere else. It lies
// in the disc of radius 1 about the origin, and is that disc's circle where there is no crossing.
struct DiagramDrawing {
  std::vector<DrawnArc> arcs;  // along the curve; each begins where the one before it ends. Every
                               // passage of the code has one of its own, in the code's order
};

// Draws a diagram as it is, without a crossing less or more, seen from the side from which the
// code's signs are read. Outside is the face that leaves the smallest crossing the most room;
// beyond 20 crossings it is a face with the most sides. The same diagram always gives the same
// drawing.
//
// Crossings, strands and faces become circles of which those touch that meet in the diagram (the
// circle packing theorem of P. Koebe, 1936; radii by C. R. Collins and K. Stephenson, A circle
// packing algorithm, Computational Geometry 25, 233 (2003)). The curve runs through the circles of
// crossings and strands by arcs at right angles to them: within a circle two such arcs meet once or
// not at all. Time grows about as the square of the crossings. Of `run` it asks only whether to
// stop: Error(kCancelled). Throws Error(kInvalidArgument) for more than 1,000 crossings, and where
// the circle of a crossing would have less than a 100,000th of the disc's radius.
KORVEX_API DiagramDrawing draw(const Diagram& diagram, const Run& run = {});

}  // namespace korvex
