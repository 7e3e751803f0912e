// Drawings as curves in space.
#pragma once

#include <vector>

#include "korvex/drawing.hpp"
#include "korvex/geometry.hpp"

namespace support {

// The drawn curve as a polygon seen from +z, over strands above and under strands below the plane.
inline std::vector<korvex::Point> curve_of(const korvex::Diagram& diagram,
                                           const korvex::DiagramDrawing& drawing) {
  constexpr int kSteps = 24;
  std::vector<korvex::Point> points;
  for (const korvex::DrawnArc& arc : drawing.arcs) {
    const double height = !arc.passage ? 0 : diagram.code()[*arc.passage].over ? 1 : -1;
    for (int k = 0; k < kSteps; ++k) {
      const korvex::PlanePoint p = arc.at((k + 0.5) / kSteps);
      points.push_back({p.x, p.y, height});
    }
  }
  return points;
}

}  // namespace support
