// The areas of the faces of an arrangement.
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "engine/sphere/arrangement.hpp"
#include "engine/sphere/inner_point.hpp"

namespace korvex {

// The area of the triangle from `apex` to the sides of the arc from `a` to `b`, positive where the
// arc runs counter-clockwise about the apex, in -2 pi .. 2 pi. Of arcs around a face they sum up to
// its area, less that of the sphere where the point opposite to the apex lies in it (G. G. Stokes's
// theorem for the form that the triangles integrate, singular in that point).
double signed_triangle(const Point& apex, const Point& a, const Point& b);

// Areas on the unit sphere of all faces, given the best point inside of each (nothing where there
// is none). Each face is summed up on its own, as triangles about a point of its own, so that those
// of slivers are accurate and that all come to 4 pi is a check of the arrangement and of the sums.
// O(sides).
//
// Source: the signed area of a spherical triangle after F. Eriksson, Math. Mag. 63, 184 (1990).
std::vector<double> face_areas(const Arrangement& arrangement,
                               std::span<const std::optional<InnerPoint>> inner);

}  // namespace korvex
