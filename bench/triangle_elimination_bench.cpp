// Triangle elimination of chains of single-precision points.
#include <cstring>
#include <random>

#include "comparison.hpp"
#include "korvex.h"
#include "reference/reference.hpp"
#include "support/point_chains.hpp"

namespace {

using support::PointChain;

bool same_bits(const PointChain& a, const PointChain& b) {
  return a.size() == b.size() &&
         (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(fPointR3)) == 0);
}

void add(const std::string& kind, PointChain (*draw)(std::size_t, std::mt19937_64&),
         std::size_t points) {
  const auto make = [=](std::uint64_t seed) {
    std::mt19937_64 random(seed);
    return draw(points, random);
  };
  bench::add_comparison(
      "ChainReduce/" + kind + "/" + std::to_string(points), make,
      [](PointChain& chain) { ChainReduce(chain); },
      [](PointChain& chain) { reference::ChainReduce(chain); }, same_bits);
}

const bool kRegistered = [] {
  for (const std::size_t points : {10U, 30U, 100U, 300U, 1000U, 3000U}) {
    add("compact", support::compact, points);
    add("coil", support::coil, points);
  }
  return true;
}();

}  // namespace
