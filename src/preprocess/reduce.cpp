#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

#include "geometry/shortest_elimination.hpp"
#include "preprocess/points.hpp"

namespace preprocess {
namespace {

// The power of two that brings all coordinates to 1 at most.
double scale_of(const std::vector<ChainAtom>& chain) {
  double largest = 0;
  for (const ChainAtom& atom : chain)
    largest = std::max({largest, std::fabs(atom.x), std::fabs(atom.y), std::fabs(atom.z)});
  int exponent = 0;
  std::frexp(largest, &exponent);
  return std::ldexp(1.0, -std::max(exponent, -1000));
}

}  // namespace
}  // namespace preprocess

int ChainReduce(std::vector<ChainAtom>& chain, bool closed) {
  if (chain.size() > 1 && preprocess::all_finite(chain)) {
    const double scale = preprocess::scale_of(chain);
    std::vector<korvex::Point> points;
    points.reserve(chain.size());
    for (const ChainAtom& atom : chain) points.push_back(scale * preprocess::position(atom));
    std::size_t left = 0;
    for (const std::uint32_t k : korvex::eliminate_shortest_first(std::move(points), closed))
      chain[left++] = chain[k];
    chain.resize(left);
  }
  return static_cast<int>(chain.size());
}
