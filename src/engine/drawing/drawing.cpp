#include "korvex/drawing.hpp"

#include <algorithm>
#include <cmath>
#include <complex>
#include <string>
#include <utility>
#include <vector>

#include "engine/diagram/place.hpp"
#include "engine/diagram/plane_diagram.hpp"
#include "engine/drawing/circle_packing.hpp"
#include "engine/drawing/triangulation.hpp"
#include "korvex/error.hpp"

namespace korvex {
namespace {

constexpr std::size_t kMostCrossings = 1000;
constexpr std::size_t kMostTried = 20;  // crossings of a diagram all of whose faces are tried
constexpr double kLeastRadius = 1e-5;   // of a crossing in the disc of radius 1
constexpr double kBetter = 1.000001;    // what rounding may make of equal radii is no better

using Complex = std::complex<double>;

Complex complex(const PlanePoint& p) { return {p.x, p.y}; }
PlanePoint plane_point(const Complex& z) { return {z.real(), z.imag()}; }

// The angle that an arc turns by, counter-clockwise.
double turn_of(const DrawnArc& arc) { return 4 * std::atan(arc.bulge); }

// sin(part * angle) / sin(angle), also where there is no angle.
double sine_ratio(double part, double angle) {
  return std::abs(angle) < 1e-9 ? part : std::sin(part * angle) / std::sin(angle);
}

// Where two touching circles touch.
Complex touching(const PackedCircle& a, const PackedCircle& b) {
  return a.centre + a.radius / (a.radius + b.radius) * (b.centre - a.centre);
}

// Within a circle, from one point of it to another, at right angles to it.
DrawnArc arc_within(const PackedCircle& circle, const Complex& from, const Complex& to) {
  const double turn = std::arg((to - circle.centre) / (circle.centre - from));
  return {plane_point(from), plane_point(to), std::tan(turn / 4)};
}

// Positive to the left of the whole circle, or line, of an arc; negative to its right.
double side_of(const PlanePoint& point, const DrawnArc& arc) {
  const Complex chord = complex(arc.to) - complex(arc.from);
  // With the chord from 0 to 1 the circle is |z|^2 - Re z = cot(half the turn) Im z.
  const Complex way = (complex(point) - complex(arc.from)) / chord;
  const double half = turn_of(arc) / 2;
  return way.imag() * std::cos(half) - (std::norm(way) - way.real()) * std::sin(half);
}

// How far along `arc` it crosses `other`, which has one of its ends to either side.
double crossing_of(const DrawnArc& arc, const DrawnArc& other) {
  const bool begins_left = side_of(arc.from, other) > 0;
  double before = 0;
  double behind = 1;
  for (int k = 0; k < 60; ++k) {
    const double middle = (before + behind) / 2;
    (side_of(arc.at(middle), other) > 0) == begins_left ? before = middle : behind = middle;
  }
  return (before + behind) / 2;
}

DiagramDrawing circle() { return {{{{1, 0}, {-1, 0}, 1}, {{-1, 0}, {1, 0}, 1}}}; }

// Circles for a diagram with one of its faces outside.
struct Packing {
  DiagramTriangulation disc;
  std::vector<PackedCircle> circles;
  double least_crossing = 0;  // radius of the smallest crossing's circle
};

Packing packing_of(const GaussCode& code, std::size_t outer, const Run& run) {
  Packing packing;
  packing.disc = triangulated(code, outer);
  packing.circles = packed_circles(packing.disc.flowers, packing.disc.course, run);
  packing.least_crossing = 1;
  for (const std::size_t place : packing.disc.places)
    packing.least_crossing =
        std::min(packing.least_crossing, packing.circles[packing.disc.course[place]].radius);
  return packing;
}

Packing best_packing(const GaussCode& code, const Run& run) {
  PlaneDiagram plane;
  plane.draw(code, Curve::kClosed);
  std::size_t most_sides = 0;
  for (std::size_t face = 0; face < plane.faces(); ++face)
    most_sides = std::max(most_sides, plane.darts_of(face).size());
  const bool is_small = code.size() <= 2 * kMostTried;
  Packing best;
  for (std::size_t face = 0; face < plane.faces(); ++face) {
    if (plane.darts_of(face).size() + (is_small ? 1 : 0) < most_sides) continue;
    Packing packing = packing_of(code, face, run);
    if (packing.least_crossing > kBetter * best.least_crossing) best = std::move(packing);
    if (!is_small) break;
  }
  return best;
}

DiagramDrawing curve_through(const Packing& packing) {
  const std::vector<std::size_t>& course = packing.disc.course;
  DiagramDrawing drawing;
  for (std::size_t k = 0; k < course.size(); ++k) {
    const PackedCircle& before = packing.circles[course[(k + course.size() - 1) % course.size()]];
    const PackedCircle& here = packing.circles[course[k]];
    const PackedCircle& behind = packing.circles[course[(k + 1) % course.size()]];
    drawing.arcs.push_back(arc_within(here, touching(before, here), touching(here, behind)));
  }
  return drawing;
}

}  // namespace

PlanePoint DrawnArc::at(double fraction) const {
  const double half = turn_of(*this) / 2;
  const Complex chord = complex(to) - complex(from);
  return plane_point(complex(from) +
                     chord * std::polar(sine_ratio(fraction, half), (fraction - 1) * half));
}

DrawnArc DrawnArc::between(double begin, double end) const {
  return {at(begin), at(end), std::tan((end - begin) * turn_of(*this) / 4)};
}

double DrawnArc::length() const {
  const double half = turn_of(*this) / 2;
  const double chord = std::abs(complex(to) - complex(from));
  return std::abs(half) < 1e-9 ? chord : chord * half / std::sin(half);
}

DiagramDrawing draw(const Diagram& diagram, const Run& run) {
  const GaussCode& code = diagram.code();
  if (code.empty()) return circle();
  if (diagram.crossings() > kMostCrossings)
    throw Error(ErrorCode::kInvalidArgument,
                "cannot draw a diagram of " + std::to_string(diagram.crossings()) +
                    " crossings: at most " + std::to_string(kMostCrossings) +
                    "; simplify it first");
  const Packing packing = best_packing(code, run);
  if (!(packing.least_crossing > kLeastRadius))
    throw Error(ErrorCode::kInvalidArgument,
                "cannot draw a diagram of " + std::to_string(diagram.crossings()) +
                    " crossings legibly: some lie too deep inside others; simplify it first");
  DiagramDrawing drawing = curve_through(packing);
  const std::vector<std::size_t>& places = packing.disc.places;
  for (std::size_t k = 0; k < code.size(); ++k) {
    DrawnArc& arc = drawing.arcs[places[k]];
    arc.passage = k;
    arc.crossed_at = crossing_of(arc, drawing.arcs[places[at(code[k].mate)]]);
  }
  return drawing;
}

}  // namespace korvex
