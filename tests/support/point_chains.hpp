// Random chains of single-precision points, each a function of the generator's state alone.
#pragma once

#include <cmath>
#include <cstddef>
#include <random>
#include <vector>

#include "korvex.h"

namespace support {

using PointChain = std::vector<fPointR3>;

// Uniform in [0, 1), the same with every standard library.
inline double uniform(std::mt19937_64& random) {
  return static_cast<double>(random() >> 11) * 0x1p-53;
}

inline fPointR3 random_unit_vector(std::mt19937_64& random) {
  const double z = 2 * uniform(random) - 1;
  const double angle = 6.283185307179586 * uniform(random);
  const double radius = std::sqrt(1 - z * z);
  return {static_cast<float>(radius * std::cos(angle)),
          static_cast<float>(radius * std::sin(angle)), static_cast<float>(z)};
}

// Unit steps in random directions.
inline PointChain coil(std::size_t points, std::mt19937_64& random) {
  PointChain chain;
  fPointR3 at{0, 0, 0};
  for (std::size_t i = 0; i < points; ++i) {
    chain.push_back(at);
    const fPointR3 step = random_unit_vector(random);
    at = {at.x + step.x, at.y + step.y, at.z + step.z};
  }
  return chain;
}

// Unit steps within a sphere about the start, at the density of a folded protein: 0.4 points in the
// cube of a step, as of one residue in 135 cubic angstroms with steps of 3.8. A step that would
// leave the sphere is drawn anew.
inline PointChain compact(std::size_t points, std::mt19937_64& random) {
  constexpr double kDensity = 0.4;
  constexpr double kBall = 4 * 3.141592653589793 / 3;
  const double radius = std::cbrt(static_cast<double>(points) / (kBall * kDensity));
  const auto limit = static_cast<float>(radius * radius + 1);
  PointChain chain;
  fPointR3 at{0, 0, 0};
  while (chain.size() < points) {
    chain.push_back(at);
    fPointR3 next{};
    do {
      const fPointR3 step = random_unit_vector(random);
      next = {at.x + step.x, at.y + step.y, at.z + step.z};
    } while (next.x * next.x + next.y * next.y + next.z * next.z > limit);
    at = next;
  }
  return chain;
}

}  // namespace support
