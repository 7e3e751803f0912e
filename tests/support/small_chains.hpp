// Small open chains, ordinary and degenerate, each a function of its seed alone.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "support/chains.hpp"

namespace support {

// Makes a few atoms copies of others, moves them by one unit in the last place, or takes their
// place away.
inline void spoil(Chain& chain, Random& random) {
  using Limits = std::numeric_limits<double>;
  constexpr double kOdd[] = {Limits::infinity(), -Limits::infinity(),  Limits::quiet_NaN(),
                             Limits::max(),      Limits::denorm_min(), -0.0};
  const int kind = random.below(3);
  const auto any = [&]() -> ChainAtom& {
    return chain[static_cast<std::size_t>(random.below(static_cast<int>(chain.size())))];
  };
  for (int k = random.below(6); k >= 0 && !chain.empty(); --k) {
    ChainAtom& atom = any();
    if (kind == 0) atom = any();
    if (kind == 1) atom.x = std::nextafter(atom.x, 1e9 * (random.below(3) - 1));
    if (kind == 2) atom.y = kOdd[random.below(6)];
  }
}

// One of: a compact walk; a protein-like walk; a lattice walk that may meet itself; an open trefoil
// or figure eight; any of them flattened, shifted far off, scaled by any power of ten that a double
// holds, with repeated atoms, off the lattice by about one rounding, or with coordinates that are
// infinite or no numbers. 0 to 70 atoms, numbered from 1.
inline Chain small_chain(std::uint64_t seed) {
  Random random(seed);
  const int atoms = random.below(30) == 0 ? random.below(4) : 4 + random.below(67);
  Chain chain;
  switch (seed % 5) {
    case 0:
      chain = confined_walk(atoms, 1.5 + 0.04 * atoms, seed);
      break;
    case 1:
      chain = protein_like_walk(atoms, seed);
      break;
    case 2:
      chain = lattice_walk(atoms, seed);
      break;
    case 3:
      chain = torus_knot(2, 3 + 2 * random.below(2), 20 + random.below(40));
      break;
    default:
      chain = figure_eight(30 + random.below(30));
      break;
  }
  if (random.below(8) == 0) {
    for (ChainAtom& atom : chain) atom.z = 0;
  }
  if (random.below(8) == 0) chain = shifted(chain, 1e4, -1e5, 12);
  if (random.below(8) == 0) chain = scaled(chain, 1e-3);
  if (random.below(20) == 0) chain = scaled(chain, std::pow(10.0, random.below(616) - 308));
  if (random.below(12) == 0) spoil(chain, random);
  for (std::size_t k = 0; k < chain.size(); ++k) chain[k].id = static_cast<int>(k) + 1;
  return chain;
}

}  // namespace support
