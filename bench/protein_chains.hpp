// Chains like those of real proteins of any length: the shipped proteins, cut and strung together.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "korvex/read.hpp"
#include "support/chains.hpp"
#include "support/data_file.hpp"

namespace bench {

using Points = std::vector<korvex::Point>;

constexpr double kBond = 3.8;
constexpr double kNearest = 4;  // between residues of two domains

// Whole domains, none of which is knotted deeply.
inline const std::vector<Points>& domains() {
  static const std::vector<Points> all = [] {
    std::vector<Points> found;
    for (const char* name : {"1tim.pdb.gz", "1ca2.pdb", "4hhb.pdb", "1ubq.pdb", "1crn.pdb"})
      for (korvex::Chain& chain :
           korvex::read_chains(support::data_file(std::string("proteins/") + name)))
        found.push_back(std::move(chain.points));
    return found;
  }();
  return all;
}

inline korvex::Point turned(const support::Turn& turn, const korvex::Point& point) {
  const ChainAtom atom = turn({point.x, point.y, point.z, 0});
  return {atom.x, atom.y, atom.z};
}

// Pairs of residues that are too near to one another.
inline std::size_t clashes(const Points& chain, const Points& domain) {
  std::size_t count = 0;
  for (std::size_t i = 0; i + 1 < chain.size(); ++i)
    for (std::size_t k = 1; k < domain.size(); ++k)
      if (korvex::norm(chain[i] - domain[k]) < kNearest) ++count;
  return count;
}

// Goes on with a domain that is turned and placed so that it hits the chain least.
inline void append_domain(Points& chain, const Points& domain, support::Random& random) {
  constexpr int kTries = 200;
  Points best;
  std::size_t fewest = std::numeric_limits<std::size_t>::max();
  for (int k = 0; k < kTries && fewest > 0; ++k) {
    const support::Turn turn(random);
    const korvex::Point bond = turned(support::Turn(random), {kBond, 0, 0});
    Points placed;
    for (const korvex::Point& point : domain)
      placed.push_back(chain.back() + bond + turned(turn, point - domain.front()));
    const std::size_t count = clashes(chain, placed);
    if (count < fewest) {
      fewest = count;
      best = std::move(placed);
    }
  }
  chain.insert(chain.end(), best.begin(), best.end());
}

// Domains in random order on one chain, the last of them cut to the length.
inline Points multi_domain_chain(std::size_t residues, std::uint64_t seed) {
  support::Random random(seed);
  const auto any_domain = [&] {
    const int count = static_cast<int>(domains().size());
    return domains()[static_cast<std::size_t>(random.below(count))];
  };
  Points chain = any_domain();
  while (chain.size() < residues) append_domain(chain, any_domain(), random);
  chain.resize(residues);
  return chain;
}

// A predicted model: the beginning of a domain, and about it a quarter of the residues in tails
// that nothing folds.
inline Points model_chain(std::size_t residues, std::uint64_t seed) {
  support::Random random(seed);
  const std::size_t tail = residues / 8;
  Points chain{{0, 0, 0}};
  const auto grow = [&](std::size_t to) {
    while (chain.size() < to)
      chain.push_back(chain.back() + turned(support::Turn(random), {kBond, 0, 0}));
  };
  grow(tail);
  const Points core =
      multi_domain_chain(residues - 2 * tail, static_cast<std::uint64_t>(random.below(1 << 30)));
  append_domain(chain, core, random);
  grow(residues);
  return chain;
}

}  // namespace bench
