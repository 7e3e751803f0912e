// Numeric determinants of the Alexander matrices, at 12, of random rings.
#include <random>
#include <string>
#include <vector>

#include "comparison.hpp"
#include "korvex.h"
#include "reference/reference.hpp"
#include "support/point_chains.hpp"

namespace {

struct Problem {
  std::vector<std::vector<double>> matrix;
  double determinant = 0;
};

// The crossings of a ring of so many points, drawn until they are `crossings` or up to a fifth
// more.
std::vector<Crossing> random_diagram(std::size_t points, std::size_t crossings,
                                     std::mt19937_64& random) {
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
    if (diagram.size() < crossings || diagram.size() > crossings + crossings / 5) continue;
    FillCrossings(edges, diagram);
    return diagram;
  }
}

void add(std::size_t points, std::size_t crossings) {
  const auto make = [=](std::uint64_t seed) {
    std::mt19937_64 random(seed);
    return Problem{CreateFoxMatrix_double(random_diagram(points, crossings, random), 12), 0};
  };
  bench::add_comparison(
      "det_double/alexander/" + std::to_string(crossings), make,
      [](Problem& p) { p.determinant = det_double(p.matrix, 12); },
      [](Problem& p) { p.determinant = reference::det_double(p.matrix, 12); },
      [](const Problem& a, const Problem& b) {
        return a.determinant == b.determinant && a.matrix == b.matrix;
      });
}

const bool kRegistered = [] {
  add(22, 17);
  add(42, 40);
  add(115, 160);
  add(225, 400);
  return true;
}();

}  // namespace
