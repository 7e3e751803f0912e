#include <algorithm>
#include <string>
#include <vector>

#include "comparison.hpp"
#include "preprocess.h"
#include "reference/preprocess.hpp"
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
  for (const int atoms : {10, 100, 300, 1000}) {
    add_reduction("compact", atoms, support::compact_ring);
  }
  add_reduction("coil", 1000, support::gaussian_ring);
  add_reduction("protein", 300, support::protein_like_walk);
  for (const int atoms : {10, 100, 1000}) add_projection(atoms);
  return true;
}();

}  // namespace
