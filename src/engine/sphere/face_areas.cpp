#include "engine/sphere/face_areas.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace korvex {
namespace {

constexpr double kSphere = 4 * std::numbers::pi;

// The area of a face, less that of the sphere where the point opposite to the apex lies in it.
double fan(const Arrangement& arrangement, std::size_t face, const Point& apex) {
  double area = 0;
  for (const std::int32_t side : arrangement.sides(face))
    area += signed_triangle(apex, arrangement.begin_of(side), arrangement.end_of(side));
  return area;
}

// True where the boundary of a face keeps farther than `clearance` from the point opposite to the
// apex, near which triangles are ill-conditioned.
bool keeps_away(const Arrangement& arrangement, std::size_t face, const Point& apex,
                double clearance) {
  const auto sides = arrangement.sides(face);
  const auto near = [&](std::int32_t side) { return dot(apex, arrangement.begin_of(side)) > 0; };
  if (std::all_of(sides.begin(), sides.end(), near)) return true;  // within half the sphere
  return std::all_of(sides.begin(), sides.end(), [&](std::int32_t side) {
    return distance_to_piece(arrangement, -apex, Arrangement::piece_of(side)) > clearance;
  });
}

}  // namespace

double signed_triangle(const Point& apex, const Point& a, const Point& b) {
  const double volume = dot(apex, cross(a - apex, b - apex));
  return 2 * std::atan2(volume, 1 + dot(apex, a) + dot(a, b) + dot(b, apex));
}

std::vector<double> face_areas(const Arrangement& arrangement,
                               std::span<const std::optional<InnerPoint>> inner) {
  const std::size_t faces = arrangement.faces();
  if (faces == 1) return {kSphere};
  std::size_t widest = 0;
  for (std::size_t face = 0; face < faces; ++face)
    if (inner[face] && (!inner[widest] || inner[face]->clearance > inner[widest]->clearance))
      widest = face;
  if (!inner[widest]) return std::vector<double>(faces, 0.0);
  const Point common = -inner[widest]->at;
  std::vector<double> areas(faces);
  for (std::size_t face = 0; face < faces; ++face) {
    const double about = fan(arrangement, face, common) + (face == widest ? kSphere : 0);
    const Point own =
        inner[face] ? inner[face]->at : arrangement.begin_of(arrangement.sides(face).front());
    double area = about;
    if (keeps_away(arrangement, face, own, inner[widest]->clearance)) {
      area = fan(arrangement, face, own);
      area += kSphere * std::round((about - area) / kSphere);
    }
    areas[face] = std::max(area, 0.0);
  }
  return areas;
}

}  // namespace korvex
