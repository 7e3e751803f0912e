// Projected edges and hand-drawn diagrams for tests.
#pragma once

#include <vector>

#include "korvex.h"

namespace support {

// The edge from (x1, y1) at height z1 to (x2, y2) at height z2.
inline Edge edge(double x1, double y1, double z1, double x2, double y2, double z2) {
  return {x1, y1, z1, x2, y2, z2, {}, 0};
}

// An edge at height 0.
inline Edge flat(double x1, double y1, double x2, double y2) { return edge(x1, y1, 0, x2, y2, 0); }

// The edges of a ring seen from above: x and y as they are, z the height.
inline std::vector<Edge> seen_from_above(const std::vector<ChainAtom>& ring) {
  std::vector<Edge> edges;
  for (std::size_t k = 0; k < ring.size(); ++k) {
    const ChainAtom &a = ring[k], &b = ring[(k + 1) % ring.size()];
    edges.push_back(edge(a.x, a.y, a.z, b.x, b.y, b.z));
  }
  return edges;
}

// Four edges, of which the first crosses over the third.
inline std::vector<Edge> kink() {
  return seen_from_above({{0, 0, 1, 1}, {4, 4, 1, 2}, {4, 0, 0, 3}, {0, 4, 0, 4}});
}

// A five-pointed star; every edge crosses the two that it does not meet at its ends.
inline std::vector<Edge> pentagram() {
  return seen_from_above(
      {{0, 10, 0, 1}, {-6, -8, 0, 2}, {9, 3, 0, 3}, {-9, 3.5, 0, 4}, {6, -8, 0, 5}});
}

}  // namespace support
