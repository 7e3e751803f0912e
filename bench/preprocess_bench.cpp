#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include "comparison.hpp"
#include "korvex.h"
#include "preprocess.h"
#include "protein_chain.hpp"
#include "reference/preprocess.hpp"
#include "support/captured_stream.hpp"
#include "support/chains.hpp"

namespace {

using support::Chain;

bool same_left(const Chain& a, const Chain& b) { return support::same_atoms(a, b); }

template <class Make>
void add_reduction(const std::string& kind, int atoms, Make make) {
  bench::add_comparison(
      "ChainReduceOfAtoms/" + kind + "/" + std::to_string(atoms),
      [=](std::uint64_t seed) { return make(atoms, seed); },
      [](Chain& chain) { ChainReduce(chain, true); },
      [](Chain& chain) { reference::ChainReduce(chain, true); }, same_left);
}

Chain closed_protein(const std::string& name, std::uint64_t seed) {
  constexpr double kFactor = 1.25;
  Chain chain = bench::protein_chain(name + ".pdb");
  std::srand(static_cast<unsigned>(seed));
  while (CloseChain_2points(chain, kFactor) == -1) {
  }
  return chain;
}

void add_protein(const std::string& name) {
  bench::add_comparison(
      "ChainReduceOfAtoms/" + name, [=](std::uint64_t seed) { return closed_protein(name, seed); },
      [](Chain& chain) { ChainReduce(chain, true); },
      [](Chain& chain) { reference::ChainReduce(chain, true); }, same_left);
}

// How much of the votes over closures the reduction of the closed chains takes.
void add_share(const std::string& name) {
  bench::add_benchmark("FindMajorKnot/reduction/" + name, [=](benchmark::State& state) {
    constexpr int kTwoPoints = 2, kTrials = 100, kRounds = 5;
    double all = 0, reductions = 0;
    for (auto _ : state) {
      for (int round = 0; round < kRounds; ++round) {
        std::vector<Chain> rings;
        for (int k = 0; k < kTrials; ++k) rings.push_back(closed_protein(name, bench::next_seed()));
        const Chain chain = bench::protein_chain(name + ".pdb");
        int counts[42] = {};
        const support::CapturedStream log(std::clog);
        const double start = bench::now();
        FindMajorKnot(chain, counts, kTwoPoints, kTrials);
        const double found = bench::now();
        for (Chain& ring : rings) ChainReduce(ring, true);
        reductions += bench::now() - found;
        all += found - start;
      }
      state.SetIterationTime(all / kRounds);
    }
    state.counters["fast_us"] = 1e6 * all / kRounds;
    state.counters["share"] = reductions / all;
  });
}

struct Projection {
  Chain chain;
  int direction;
  std::vector<Edge> edges;
};

bool same_edges(const Projection& a, const Projection& b) {
  return std::equal(a.edges.begin(), a.edges.end(), b.edges.begin(), b.edges.end(),
                    [](const Edge& p, const Edge& q) {
                      return p.x1 == q.x1 && p.y1 == q.y1 && p.z1 == q.z1 && p.x2 == q.x2 &&
                             p.y2 == q.y2 && p.z2 == q.z2;
                    });
}

void add_projection(int atoms) {
  bench::add_comparison(
      "ProjectChain/" + std::to_string(atoms),
      [=](std::uint64_t seed) {
        return Projection{support::compact_ring(atoms, seed), static_cast<int>(seed % 60), {}};
      },
      [](Projection& p) { p.edges = ProjectChain(p.chain, p.direction, true); },
      [](Projection& p) { p.edges = reference::ProjectChain(p.chain, p.direction, true); },
      same_edges);
}

const bool kRegistered = [] {
  for (const int atoms : {10, 100, 300, 1000})
    add_reduction("compact", atoms, support::compact_ring);
  add_reduction("coil", 1000, support::gaussian_ring);
  add_reduction("protein", 300, support::protein_like_walk);
  add_protein("1ztu");
  add_share("1ztu");
  for (const int atoms : {10, 100, 1000}) add_projection(atoms);
  return true;
}();

}  // namespace
