#include "support/number_matrices.hpp"

#include <cmath>
#include <cstddef>
#include <iostream>
#include <limits>

#include "korvex.h"
#include "support/captured_stream.hpp"
#include "support/chains.hpp"
#include "support/projections.hpp"

namespace support {

namespace {

using Draw = double (*)(Random&);

double integer(Random& random) { return random.below(9) - 4; }
double sparse(Random& random) { return random.below(4) != 0 ? 0 : integer(random); }
double real(Random& random) { return random.normal(); }
double near_smallest(Random& random) {
  switch (random.below(6)) {
    case 0:
      return 1e-5;
    case 1:
      return std::nextafter(1e-5, random.below(2) == 0 ? 0 : 1);
    case 2:
      return 1e-6 * random.normal();
    default:
      return 3 * random.normal();
  }
}
double any_magnitude(Random& random) { return std::ldexp(random.normal(), random.below(200) - 60); }
double signed_zero(Random& random) {
  return random.below(3) == 0 ? random.normal() : random.below(2) == 0 ? 0.0 : -0.0;
}
double odd(Random& random) {
  using Limits = std::numeric_limits<double>;
  switch (random.below(30)) {
    case 0:
      return Limits::infinity();
    case 1:
      return -Limits::infinity();
    case 2:
      return Limits::quiet_NaN();
    case 3:
      return 1e308;
    default:
      return sparse(random);
  }
}

NumberMatrix filled(int rows, Random& random, Draw draw) {
  NumberMatrix matrix(static_cast<std::size_t>(rows));
  const int columns = rows + (random.below(3) == 0 ? random.below(3) : 0);
  for (auto& row : matrix) {
    for (int c = 0; c < columns; ++c) row.push_back(draw(random));
  }
  return matrix;
}

NumberMatrix singular(int rows, Random& random) {
  NumberMatrix matrix = filled(rows, random, integer);
  const auto from = static_cast<std::size_t>(random.below(rows));
  const auto to = static_cast<std::size_t>(random.below(rows));
  if (random.below(2) == 0) {
    matrix[to] = matrix[from];
  } else {
    for (auto& row : matrix) row[to] = 0;
  }
  return matrix;
}

NumberMatrix alexander(std::uint64_t seed) {
  const CapturedStream log(std::clog);
  for (;; seed += 12) {
    std::vector<Edge> edges = random_projection(seed);
    if (edges.size() > 45) continue;
    std::vector<Crossing> crossings;
    if (FindAllCrossings(edges, crossings, true) != 0 || crossings.size() > 41) continue;
    FillCrossings(edges, crossings);
    return CreateFoxMatrix_double(crossings, 12);
  }
}

}  // namespace

NumberMatrix random_number_matrix(std::uint64_t seed) {
  Random random(seed);
  const int rows = random.below(8);
  switch (seed % 10) {
    case 0:
    case 1:
      return alexander(12 * seed + seed % 2);
    case 2:
      return filled(rows, random, integer);
    case 3:
      return filled(random.below(40), random, sparse);
    case 4:
      return singular(1 + rows, random);
    case 5:
      return filled(random.below(20), random, real);
    case 6:
      return filled(rows, random, near_smallest);
    case 7:
      return filled(rows, random, any_magnitude);
    case 8:
      return filled(rows, random, signed_zero);
    default:
      return filled(random.below(12), random, odd);
  }
}

}  // namespace support
