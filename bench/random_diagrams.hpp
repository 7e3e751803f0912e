// Diagrams of random rings in single precision, for the exported interface.
#pragma once

#include <cstddef>
#include <random>
#include <vector>

#include "korvex.h"
#include "support/point_chains.hpp"

namespace bench {

// The crossings, arcs included, of a compact ring of so many points, drawn until it can be
// projected and has `fewest` to `most` of them.
inline std::vector<Crossing> random_diagram(std::size_t points, std::size_t fewest,
                                            std::size_t most, std::mt19937_64& random) {
  for (;;) {
    const support::PointChain ring = support::compact(points, random);
    std::vector<Edge> edges;
    for (std::size_t k = 0; k < ring.size(); ++k) {
      const fPointR3& a = ring[k];
      const fPointR3& b = ring[(k + 1) % ring.size()];
      edges.push_back({a.x, a.y, a.z, b.x, b.y, b.z, {}, 0});
    }
    std::vector<Crossing> diagram;
    if (FindAllCrossings(edges, diagram, true) != 0) continue;
    if (diagram.size() < fewest || diagram.size() > most) continue;
    FillCrossings(edges, diagram);
    return diagram;
  }
}

}  // namespace bench
