#include "engine/diagram/third_moves.hpp"

#include <array>
#include <cstddef>
#include <numeric>
#include <utility>

#include "engine/diagram/course.hpp"
#include "engine/diagram/place.hpp"
#include "engine/diagram/plane_diagram.hpp"

namespace korvex {
namespace {

// The strands around a face of three. Strand k runs from the passage before passage k to that.
struct TriangularFace {
  std::array<std::size_t, 3> strands{};
  std::size_t count = 0;  // of all strands around it
};

std::vector<TriangularFace> triangles(const GaussCode& code) {
  PlaneDiagram diagram;
  diagram.draw(code, Curve::kClosed);
  std::vector<TriangularFace> faces(diagram.faces());
  for (std::size_t dart = 0; dart < 2 * diagram.strands(); ++dart) {
    TriangularFace& face = faces[at(diagram.face_left_of(dart))];
    if (face.count < face.strands.size()) face.strands[face.count] = dart / 2;
    ++face.count;
  }
  std::erase_if(faces, [](const TriangularFace& face) { return face.count != 3; });
  return faces;
}

bool can_turn(const GaussCode& code, const TriangularFace& triangle) {
  const Course course(code.size());
  int highest = 0;
  int lowest = 0;
  for (const std::size_t strand : triangle.strands) {
    const bool over = code[strand].over;
    if (over != code[course.passage_before(strand)].over) continue;
    ++(over ? highest : lowest);
  }
  return highest == 1 && lowest == 1;
}

// Each strand then meets the other two in the other order.
GaussCode turned(const GaussCode& code, const TriangularFace& triangle) {
  std::vector<std::int32_t> place(code.size());
  std::iota(place.begin(), place.end(), 0);
  const Course course(code.size());
  for (const std::size_t strand : triangle.strands)
    std::swap(place[strand], place[course.passage_before(strand)]);
  GaussCode result(code.size());
  for (std::size_t k = 0; k < code.size(); ++k) {
    Passage& passage = result[at(place[k])];
    passage = code[k];
    passage.mate = place[at(code[k].mate)];
  }
  return result;
}

}  // namespace

std::vector<GaussCode> third_moves(const GaussCode& closed) {
  constexpr std::size_t kPassagesOfATriangle = 6;
  std::vector<GaussCode> moved;
  if (closed.size() <= kPassagesOfATriangle) return moved;
  for (const TriangularFace& triangle : triangles(closed))
    if (can_turn(closed, triangle)) moved.push_back(turned(closed, triangle));
  return moved;
}

}  // namespace korvex
