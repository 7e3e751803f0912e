// The fast forms against the plain ones, bit for bit.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "preprocess.h"
#include "reference/preprocess.hpp"
#include "support/bits.hpp"
#include "support/chains.hpp"
#include "support/effort.hpp"

namespace {

using support::Chain;
using support::Random;

Chain grid_points(Random& random, int count, int size) {
  Chain chain;
  for (int k = 0; k < count; ++k) {
    chain.push_back({static_cast<double>(random.below(size)),
                     static_cast<double>(random.below(size)),
                     static_cast<double>(random.below(size)), k});
  }
  return chain;
}

void jitter(Chain& chain, Random& random, double size) {
  for (ChainAtom& atom : chain) {
    atom.x += size * (random.uniform() - 0.5);
    atom.y += size * (random.uniform() - 0.5);
    atom.z += size * (random.uniform() - 0.5);
  }
}

void repeat_some(Chain& chain, Random& random) {
  for (int k = 0; k < 5 && !chain.empty(); ++k) {
    const int place = random.below(static_cast<int>(chain.size()));
    const ChainAtom copy = chain[static_cast<std::size_t>(place)];
    chain.insert(chain.begin() + place, copy);
  }
}

// Every kind of chain that the functions may meet, degenerate ones first.
Chain any_chain(std::uint64_t seed) {
  Random random(seed);
  const int atoms = random.below(40);
  Chain chain;
  switch (seed % 10) {
    case 0:
      return grid_points(random, atoms, 2 + random.below(4));
    case 1:
      return support::lattice_walk(atoms, seed);
    case 2:
      chain = support::lattice_walk(atoms, seed);
      jitter(chain, random, 1e-15);
      return chain;
    case 3:
      chain = support::lattice_ring(random.below(2) == 0, atoms, 3, seed);
      repeat_some(chain, random);
      return chain;
    case 4:
      chain = support::gaussian_ring(atoms, seed);
      for (ChainAtom& atom : chain) atom.z *= random.below(2) == 0 ? 0 : 1e-12;
      return chain;
    case 5:
      return support::subdivided(support::gaussian_ring(atoms / 3 + 1, seed), 3);
    case 6:
      return support::scaled(support::compact_ring(atoms + 20, seed),
                             std::ldexp(1 + random.uniform(), random.below(2000) - 1000));
    case 7:
      return support::shifted(support::compact_ring(atoms + 2, seed), 1e6, -3e5, 1e9);
    case 8:
      return support::protein_like_walk(atoms + 1, seed);
    default:
      return support::compact_ring(3 * atoms + 1, seed);
  }
}

template <class Item>
bool all_same_bits(const std::vector<Item>& a, const std::vector<Item>& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](const Item& p, const Item& q) { return support::same_bits(p, q); });
}

void expect_same_reduction(const Chain& chain, bool closed) {
  Chain fast = chain, plain = chain;
  const int fast_left = ChainReduce(fast, closed);
  EXPECT_EQ(fast_left, reference::ChainReduce(plain, closed));
  EXPECT_TRUE(all_same_bits(fast, plain));
}

TEST(FastForms, ReduceAsThePlainFormDoes) {
  for (int k = 0; k < support::input_count() && !HasFailure(); ++k) {
    SCOPED_TRACE("seed " + std::to_string(k));
    expect_same_reduction(any_chain(static_cast<std::uint64_t>(k)), k % 3 != 0);
  }
}

TEST(FastForms, ReduceLongChainsAsThePlainFormDoes) {
  for (std::uint64_t seed = 1; seed <= 3; ++seed) {
    for (const bool closed : {false, true}) {
      expect_same_reduction(support::compact_ring(400, seed), closed);
      expect_same_reduction(support::gaussian_ring(400, seed), closed);
      expect_same_reduction(support::lattice_ring(true, 400, 5, seed), closed);
      expect_same_reduction(support::lattice_walk(300, seed), closed);
      expect_same_reduction(support::torus_knot(2, 7, 300), closed);
    }
  }
}

TEST(FastForms, ReduceChainsWithoutFinitePlacesAsThePlainFormDoes) {
  for (const double bad :
       {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
    Chain chain = support::compact_ring(30, 1);
    chain[11].x = bad;
    expect_same_reduction(chain, true);
  }
}

TEST(FastForms, ProjectAsThePlainFormDoes) {
  const double infinity = std::numeric_limits<double>::infinity();
  for (int k = 0; k < support::input_count() && !HasFailure(); ++k) {
    SCOPED_TRACE("seed " + std::to_string(k));
    Chain chain = any_chain(static_cast<std::uint64_t>(k));
    if (k % 50 == 0 && !chain.empty()) chain.front().y = k % 100 == 0 ? infinity : -infinity;
    const int direction = k % 7 == 0 ? -k : k;
    EXPECT_TRUE(all_same_bits(ProjectChain(chain, direction, k % 2 == 0),
                              reference::ProjectChain(chain, direction, k % 2 == 0)));
  }
}

}  // namespace
