#include "support/projections.hpp"

#include <cmath>
#include <cstddef>
#include <limits>

#include "support/chains.hpp"
#include "support/edges.hpp"

namespace support {

namespace {

using Ring = std::vector<ChainAtom>;  // x and y in the plane, z the height

Ring walk(int atoms, double radius, Random& random) {
  Ring ring;
  ChainAtom at{0, 0, 0, 0};
  for (int k = 0; k < atoms; ++k) {
    ring.push_back(at);
    ChainAtom next = at;
    do {
      next = {at.x + random.normal(), at.y + random.normal(), at.z + random.normal(), 0};
    } while (std::hypot(next.x, next.y, next.z) > radius);
    at = next;
  }
  return ring;
}

Ring lattice(int atoms, Random& random) {
  const int width = 3 + random.below(12);
  Ring ring;
  for (int k = 0; k < atoms; ++k) {
    const auto place = [&] { return static_cast<double>(random.below(width)); };
    ring.push_back({place(), place(), place(), 0});
  }
  return ring;
}

// A ring whose atoms lie on a few lines in turn, often several on one line.
Ring along_lines(int atoms, Random& random) {
  Ring ring;
  double slope = 0;
  double height = 0;
  for (int k = 0; k < atoms; ++k) {
    if (random.below(4) == 0) {
      slope = random.normal();
      height = random.normal();
    }
    const double x = 10 * random.normal();
    ring.push_back({x, height + slope * x, random.normal(), 0});
  }
  return ring;
}

double few_units_off(double x, Random& random) {
  for (int k = random.below(4); k > 0; --k) {
    x = std::nextafter(x, random.below(2) == 0 ? -100.0 : 100.0);
  }
  return x;
}

double any_exponent(Random& random) {
  return std::ldexp(random.uniform() - 0.5, random.below(2100) - 1060);
}

double odd_number(Random& random) {
  using Limits = std::numeric_limits<double>;
  switch (random.below(40)) {
    case 0:
      return Limits::infinity();
    case 1:
      return -Limits::infinity();
    case 2:
      return Limits::quiet_NaN();
    default:
      return random.below(3) == 0 ? random.below(4) : random.normal();
  }
}

Ring scattered(int atoms, Random& random, double (*draw)(Random&)) {
  Ring ring;
  for (int k = 0; k < atoms; ++k) {
    const double x = draw(random);
    const double y = draw(random);
    ring.push_back({x, y, draw(random), 0});
  }
  return ring;
}

std::vector<Edge> loose(int edges, Random& random) {
  std::vector<Edge> result;
  for (int k = 0; k < edges; ++k) {
    const ChainAtom a{random.normal(), random.normal(), random.normal(), 0};
    const bool is_point = random.below(20) == 0;
    const double length = is_point ? 0 : random.uniform();
    result.push_back({a.x,
                      a.y,
                      a.z,
                      a.x + length * random.normal(),
                      a.y + length * random.normal(),
                      random.normal(),
                      {},
                      0});
  }
  return result;
}

int size(Random& random) {
  switch (random.below(50)) {
    case 0:
      return 81 + random.below(220);
    case 1:
    case 2:
      return random.below(5);
    default:
      return 5 + random.below(76);
  }
}

}  // namespace

std::vector<Edge> random_projection(std::uint64_t seed) {
  Random random(seed);
  const int atoms = size(random);
  const double globule = std::cbrt(atoms);
  Ring ring;
  switch (seed % 12) {
    case 0:
      ring = walk(atoms, 1 + globule, random);
      break;
    case 1:
      ring = walk(atoms, 1e9, random);
      break;
    case 2:
      ring = lattice(atoms, random);
      break;
    case 3:
      ring = lattice(atoms, random);
      for (ChainAtom& atom : ring) atom.x += 3 * atom.y;
      break;
    case 4:
      ring = lattice(atoms, random);
      for (ChainAtom& atom : ring) {
        atom.x = few_units_off(atom.x + 0.5 * atom.y, random);
        atom.y = few_units_off(atom.y, random);
      }
      break;
    case 5:
      ring = along_lines(atoms, random);
      break;
    case 6:
      ring = walk(atoms, 1 + globule, random);
      for (ChainAtom& atom : ring) atom.x *= std::ldexp(1.0, -random.below(70));
      break;
    case 7:
      return loose(atoms, random);
    case 8:
      ring = walk(atoms, 1 + globule, random);
      for (ChainAtom& atom : ring) atom.x += 1e6, atom.y -= 1e8;
      break;
    case 9:
      ring = scattered(atoms, random, any_exponent);
      break;
    case 10:
      ring = walk(atoms, 1 + globule, random);
      ring = scaled(ring, std::ldexp(1.0, random.below(2000) - 1000));
      break;
    default:
      ring = scattered(atoms, random, odd_number);
      break;
  }
  return seen_from_above(ring);
}

}  // namespace support
