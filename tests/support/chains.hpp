// Chains of known make for tests: every random one is a function of its seed alone.
#pragma once

#include <cstdint>
#include <random>
#include <vector>

#include "preprocess.h"

namespace support {

using Chain = std::vector<ChainAtom>;

// A deterministic source of numbers, the same with every standard library.
class Random {
 public:
  explicit Random(std::uint64_t seed) : engine_(seed) {}
  double uniform() { return static_cast<double>(engine_() >> 11) * 0x1p-53; }  // in [0, 1)
  double normal();
  int below(int bound) { return static_cast<int>(engine_() % static_cast<std::uint64_t>(bound)); }

 private:
  std::mt19937_64 engine_;
};

// A uniformly random rotation.
struct Turn {
  explicit Turn(Random& random);
  ChainAtom operator()(const ChainAtom& atom) const;
  double rows[3][3];
};

Chain torus_knot(int p, int q,
                 int atoms);  // winds p times round the axis, q times through the hole
Chain figure_eight(int atoms);

// Unit steps; a step that would leave the sphere of radius `radius` about the start is drawn anew.
Chain confined_walk(int atoms, double radius, std::uint64_t seed);
// A confined walk at the density of a globule, ends joined by one edge.
Chain compact_ring(int atoms, std::uint64_t seed);
// Gaussian steps, corrected so that they close.
Chain gaussian_ring(int atoms, std::uint64_t seed);
// Steps of 3.8 with bond angles between 80 and 150 degrees, confined, no two atoms nearer than 4.
Chain protein_like_walk(int atoms, std::uint64_t seed);

// A self-avoiding ring of the cubic lattice grown from a rectangle or a trefoil by moves that push
// one edge sideways over an empty square, within a box of the given half width.
Chain lattice_ring(bool trefoil, int atoms, int half_width, std::uint64_t seed);
// A walk of the cubic lattice that may turn back and meet itself.
Chain lattice_walk(int atoms, std::uint64_t seed);

Chain scaled(Chain chain, double factor);
Chain shifted(Chain chain, double dx, double dy, double dz);
Chain rotated(Chain chain, std::uint64_t seed);
Chain mirrored(Chain chain);
Chain reversed(Chain chain);
Chain cycled(Chain chain, std::size_t first);
// Every edge, the closing one included, cut into `parts` at points that rounding may push off it.
Chain subdivided(const Chain& ring, int parts);

bool same_atoms(const Chain& a, const Chain& b);

}  // namespace support
