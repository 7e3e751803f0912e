#include "engine/diagram/third_moves.hpp"

#include <array>
#include <cstddef>
#include <numeric>
#include <utility>

#include "engine/diagram/plane_diagram.hpp"

namespace korvex {
namespace {

// The strands around a triangle. Strand k runs from the passage before passage k to that.
struct Triangle {
  std::array<std::size_t, 3> strands{};
  std::size_t count = 0;  // of all strands around the face
};

std::vector<Triangle> triangles(const GaussCode& code) {
  PlaneDiagram diagram;
  diagram.draw(code, Curve::kClosed);
  std::vector<Triangle> faces(diagram.faces());
  for (std::size_t dart = 0; dart < 2 * diagram.strands(); ++dart) {
    Triangle& face = faces[static_cast<std::size_t>(diagram.face_left_of(dart))];
    if (face.count < face.strands.size()) face.strands[face.count] = dart / 2;
    ++face.count;
  }
  std::erase_if(faces, [](const Triangle& face) { return face.count != 3; });
  return faces;
}

std::size_t before(std::size_t passage, std::size_t size) {
  return (passage > 0 ? passage : size) - 1;
}

bool can_turn(const GaussCode& code, const Triangle& triangle) {
  int highest = 0;
  int lowest = 0;
  for (const std::size_t strand : triangle.strands) {
    const bool over = code[strand].over;
    if (over != code[before(strand, code.size())].over) continue;
    ++(over ? highest : lowest);
  }
  return highest == 1 && lowest == 1;
}

// Each strand then meets the other two in the other order.
GaussCode turned(const GaussCode& code, const Triangle& triangle) {
  std::vector<std::int32_t> place(code.size());
  std::iota(place.begin(), place.end(), 0);
  for (const std::size_t strand : triangle.strands)
    std::swap(place[strand], place[before(strand, code.size())]);
  GaussCode result(code.size());
  for (std::size_t k = 0; k < code.size(); ++k) {
    Passage& passage = result[static_cast<std::size_t>(place[k])];
    passage = code[k];
    passage.mate = place[static_cast<std::size_t>(code[k].mate)];
  }
  return result;
}

}  // namespace

std::vector<GaussCode> third_moves(const GaussCode& closed) {
  constexpr std::size_t kPassagesOfATriangle = 6;
  std::vector<GaussCode> moved;
  if (closed.size() <= kPassagesOfATriangle) return moved;
  for (const Triangle& triangle : triangles(closed))
    if (can_turn(closed, triangle)) moved.push_back(turned(closed, triangle));
  return moved;
}

}  // namespace korvex
