// Numeric determinants of the Alexander matrices, at 12, of random rings.
#include <random>
#include <string>
#include <vector>

#include "comparison.hpp"
#include "korvex.h"
#include "random_diagrams.hpp"
#include "reference/reference.hpp"

namespace {

struct Problem {
  std::vector<std::vector<double>> matrix;
  double determinant = 0;
};

// Rings of so many points, drawn until they have `crossings` or up to a fifth more.
void add(std::size_t points, std::size_t crossings) {
  const auto make = [=](std::uint64_t seed) {
    std::mt19937_64 random(seed);
    const std::vector<Crossing> diagram =
        bench::random_diagram(points, crossings, crossings + crossings / 5, random);
    return Problem{CreateFoxMatrix_double(diagram, 12), 0};
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
