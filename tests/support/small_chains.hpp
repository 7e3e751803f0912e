// Small open chains, ordinary and degenerate, each a function of its seed alone.
#pragma once

#include <cstdint>

#include "support/chains.hpp"

namespace support {

// One of: a compact walk; a protein-like walk; a lattice walk that may meet itself; an open trefoil
// or figure eight; any of them flattened, shifted far off, or scaled. 4 to 70 atoms, numbered
// from 1.
inline Chain small_chain(std::uint64_t seed) {
  Random random(seed);
  const int atoms = 4 + random.below(67);
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
  for (std::size_t k = 0; k < chain.size(); ++k) chain[k].id = static_cast<int>(k) + 1;
  return chain;
}

}  // namespace support
