// Determinants of the Alexander matrices of random rings with a given number of crossings.
#include <random>
#include <string>
#include <vector>

#include "comparison.hpp"
#include "korvex.h"
#include "random_diagrams.hpp"
#include "reference/reference.hpp"

namespace {

struct Problem {
  std::vector<std::vector<polynomial<int>>> matrix;
  polynomial<int> determinant;
};

// Rings of as many points as give about `crossings`, drawn until they have exactly so many.
void add(std::size_t crossings) {
  const auto make = [=](std::uint64_t seed) {
    std::mt19937_64 random(seed);
    const std::vector<Crossing> diagram =
        bench::random_diagram(10 + crossings, crossings, crossings, random);
    return Problem{CreateFoxMatrix(diagram), {}};
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
