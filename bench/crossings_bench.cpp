// The crossings of projected chains.
#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "comparison.hpp"
#include "korvex.h"
#include "reference/reference.hpp"
#include "support/point_chains.hpp"

namespace {

struct Projection {
  std::vector<Edge> edges;
  std::vector<Crossing> crossings;
  int result = -1;
};

Projection project(const support::PointChain& ring) {
  Projection projection;
  for (std::size_t k = 0; k < ring.size(); ++k) {
    const fPointR3& a = ring[k];
    const fPointR3& b = ring[(k + 1) % ring.size()];
    projection.edges.push_back({a.x, a.y, a.z, b.x, b.y, b.z, {}, 0});
  }
  return projection;
}

// A rough three-lobed ring, which hardly ever crosses itself.
support::PointChain lobed_ring(std::size_t points, std::mt19937_64& random) {
  support::PointChain ring;
  for (std::size_t k = 0; k < points; ++k) {
    const double angle = 6.283185307179586 * static_cast<double>(k) / static_cast<double>(points);
    const double radius = static_cast<double>(points) / 6.3 * (1 + 0.1 * std::cos(3 * angle));
    const fPointR3 noise = support::random_unit_vector(random);
    ring.push_back({static_cast<float>(radius * std::cos(angle)) + 0.3F * noise.x,
                    static_cast<float>(radius * std::sin(angle)) + 0.3F * noise.y, noise.z});
  }
  return ring;
}

bool same(const Projection& a, const Projection& b) {
  if (a.result != b.result || a.crossings.size() != b.crossings.size()) return false;
  for (std::size_t k = 0; k < a.crossings.size(); ++k) {
    if (a.crossings[k].overEdge != b.crossings[k].overEdge) return false;
    if (a.crossings[k].underEdge != b.crossings[k].underEdge) return false;
  }
  return true;
}

using Draw = support::PointChain (*)(std::size_t, std::mt19937_64&);

void add(const std::string& kind, Draw draw, std::size_t edges) {
  const auto make = [=](std::uint64_t seed) {
    std::mt19937_64 random(seed);
    return project(draw(edges, random));
  };
  bench::add_comparison(
      "FindAllCrossings/" + kind + "/" + std::to_string(edges), make,
      [](Projection& p) { p.result = FindAllCrossings(p.edges, p.crossings, true); },
      [](Projection& p) { p.result = reference::FindAllCrossings(p.edges, p.crossings, true); },
      same);
}

const bool kRegistered = [] {
  for (const std::size_t edges : {12U, 30U, 100U, 300U, 1000U, 3000U}) {
    add("few", lobed_ring, edges);
    add("coil", support::coil, edges);
    add("compact", support::compact, edges);
  }
  return true;
}();

}  // namespace
