#include "support/polynomial_matrices.hpp"

#include <iostream>
#include <utility>

#include "support/captured_stream.hpp"
#include "support/chains.hpp"
#include "support/projections.hpp"

namespace support {

namespace {

using DrawEntry = int (*)(Random&);

int small(Random& random) { return random.below(5) - 2; }
int any(Random& random) { return random.below(2147483647) * (random.below(2) == 0 ? 1 : -1); }
int even(Random& random) { return 2 * small(random); }
int power_of_two(Random& random) { return random.below(2) == 0 ? 0 : 1 << random.below(31); }
int unit(Random& random) { return random.below(2) == 0 ? 1 : -1; }

polynomial<int> stored(std::vector<int> coefficients) {
  polynomial<int> result;
  result.data() = std::move(coefficients);
  return result;
}

polynomial<int> entry(Random& random, DrawEntry draw, int longest) {
  std::vector<int> coefficients;
  for (int k = random.below(longest + 1); k > 0; --k) coefficients.push_back(draw(random));
  if (random.below(8) == 0) coefficients.push_back(0);
  return stored(coefficients);
}

PolynomialMatrix filled(int rows, int percent, Random& random, DrawEntry draw, int longest) {
  PolynomialMatrix matrix(static_cast<std::size_t>(rows));
  const int columns = rows + (random.below(3) == 0 ? random.below(3) : 0);
  for (auto& row : matrix) {
    for (int c = 0; c < columns; ++c) {
      const bool is_set = random.below(100) < percent;
      row.push_back(is_set ? entry(random, draw, longest) : stored({0}));
    }
  }
  return matrix;
}

// c t^k with one k for each row and column, as elimination by unit pivots likes it least.
PolynomialMatrix high_powers(int rows, Random& random) {
  PolynomialMatrix matrix(static_cast<std::size_t>(rows));
  for (auto& row : matrix) {
    for (int c = 0; c < rows; ++c) {
      std::vector<int> coefficients(static_cast<std::size_t>(random.below(40)), 0);
      if (random.below(3) != 0) coefficients.push_back(small(random));
      if (random.below(5) == 0) coefficients.push_back(small(random));
      row.push_back(stored(coefficients));
    }
  }
  return matrix;
}

PolynomialMatrix singular_polynomials(int rows, Random& random) {
  PolynomialMatrix matrix = filled(rows, 60, random, small, 3);
  const auto pick = [&] { return static_cast<std::size_t>(random.below(rows)); };
  const std::size_t from = pick();
  const std::size_t to = pick();
  switch (random.below(4)) {
    case 0:
      matrix[to] = matrix[from];
      break;
    case 1:
      for (auto& row : matrix) row[to] = row[from];
      break;
    case 2:
      for (auto& row : matrix) row[to] = stored({});
      break;
    default:
      for (auto& item : matrix[to]) item = stored({0, 0});
      break;
  }
  return matrix;
}

PolynomialMatrix alexander_polynomials(std::uint64_t seed) {
  const CapturedStream log(std::clog);
  for (;; seed += 12) {
    std::vector<Edge> edges = random_projection(seed);
    if (edges.size() > 24) edges.resize(24);
    if (edges.size() > 1) edges.back().x2 = edges.front().x1, edges.back().y2 = edges.front().y1;
    std::vector<Crossing> crossings;
    if (FindAllCrossings(edges, crossings, true) != 0 || crossings.size() > 11) continue;
    FillCrossings(edges, crossings);
    return CreateFoxMatrix(crossings);
  }
}

}  // namespace

PolynomialMatrix random_polynomial_matrix(std::uint64_t seed) {
  Random random(seed);
  const int rows = random.below(6);
  switch (seed % 12) {
    case 0:
    case 1:
    case 2:
      return alexander_polynomials(seed - seed % 12 + seed % 2);
    case 3:
      return filled(rows, 100, random, small, 3);
    case 4:
      return filled(rows, 100, random, any, 3);
    case 5:
      return filled(4 + random.below(5), 30, random, small, 3);
    case 6:
      return filled(rows, 70, random, even, 4);
    case 7:
      return filled(rows, 90, random, power_of_two, 3);
    case 8:
      return filled(4 + random.below(4), 40, random, any, 2);
    case 9:
      return high_powers(rows, random);
    case 10:
      return singular_polynomials(1 + rows, random);
    default:
      return filled(rows, 100, random, unit, 2);
  }
}

}  // namespace support
