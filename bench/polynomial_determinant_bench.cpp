// Determinants of the Alexander matrices of random rings with a given number of crossings.
#include <random>
#include <string>
#include <vector>

#include "comparison.hpp"
#include "korvex.h"
#include "reference/reference.hpp"
#include "support/point_chains.hpp"

namespace {

struct Problem {
  std::vector<std::vector<polynomial<int>>> matrix;
  polynomial<int> determinant;
};

// A ring of as many points as give about that many crossings, drawn until it has exactly so many.
std::vector<Crossing> random_diagram(std::size_t crossings, std::mt19937_64& random) {
  for (;;) {
    const support::PointChain ring = support::compact(10 + crossings, random);
    std::vector<Edge> edges;
    for (std::size_t k = 0; k < ring.size(); ++k) {
      const fPointR3& a = ring[k];
      const fPointR3& b = ring[(k + 1) % ring.size()];
      edges.push_back({a.x, a.y, a.z, b.x, b.y, b.z, {}, 0});
    }
    std::vector<Crossing> diagram;
    if (FindAllCrossings(edges, diagram, true) != 0 || diagram.size() != crossings) continue;
    FillCrossings(edges, diagram);
    return diagram;
  }
}

void add(std::size_t crossings) {
  const auto make = [=](std::uint64_t seed) {
    std::mt19937_64 random(seed);
    return Problem{CreateFoxMatrix(random_diagram(crossings, random)), {}};
  };
  bench::add_comparison(
      "det_poly/alexander/" + std::to_string(crossings), make,
      [](Problem& p) { p.determinant = det_poly(p.matrix); },
      [](Problem& p) { p.determinant = reference::det_poly(p.matrix); },
      [](const Problem& a, const Problem& b) {
        return a.determinant.data() == b.determinant.data();
      });
}

const bool kRegistered = [] {
  for (const std::size_t crossings : {4U, 7U, 10U, 13U, 16U}) add(crossings);
  return true;
}();

}  // namespace
