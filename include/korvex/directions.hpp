// Directions in which the ends of an open chain are led away.
//
// Sources: A. Gonzalez, Math. Geosci. 42, 49 (2010), for the spherical Fibonacci lattice; K.
// Shoemake, Graphics Gems III, 124 (1992), for uniform random rotations.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "korvex/export.hpp"
#include "korvex/geometry.hpp"

namespace korvex {

enum class Sampling {
  kLattice,      // spherical Fibonacci lattice, rotated at random
  kIndependent,  // independent, uniform on the sphere
};

// `count` unit vectors on a spherical Fibonacci lattice, turned by a uniform random rotation that
// (seed, block) fixes. O(count); a pure function.
KORVEX_API std::vector<Point> lattice_directions(std::size_t count, std::uint64_t seed,
                                                 std::uint64_t block = 0);

// One unit vector, uniform on the sphere: a function of (seed, trial) alone.
KORVEX_API Point random_direction(std::uint64_t seed, std::uint64_t trial);

}  // namespace korvex
