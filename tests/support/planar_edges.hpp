// Projected edges by hand.
#pragma once

#include <vector>

#include "korvex.h"

namespace support {

// From (x1, y1) to (x2, y2), all at one height.
inline Edge level_edge(double x1, double y1, double x2, double y2, double height = 0) {
  return {x1, y1, height, x2, y2, height, {}, 0};
}

// The edges of a closed chain seen along its z axis.
inline std::vector<Edge> seen_from_above(const std::vector<ChainAtom>& ring) {
  std::vector<Edge> edges;
  for (std::size_t k = 0; k < ring.size(); ++k) {
    const ChainAtom& a = ring[k];
    const ChainAtom& b = ring[(k + 1) % ring.size()];
    edges.push_back({a.x, a.y, a.z, b.x, b.y, b.z, {}, 0});
  }
  return edges;
}

}  // namespace support
