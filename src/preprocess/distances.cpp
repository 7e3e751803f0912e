#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <vector>

#include "geometry/bonds.hpp"
#include "preprocess.h"

namespace {

double distance(const ChainAtom& a, const ChainAtom& b) {
  return std::hypot(a.x - b.x, a.y - b.y, a.z - b.z);
}

// Six significant digits, whatever the locale of the process.
std::string shown(double value) {
  std::array<char, 32> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value,
                                 std::chars_format::general, 6);
  return {digits.data(), end.ptr};
}

}  // namespace

std::string CheckDistancesBetweenAtoms(std::vector<ChainAtom> chain) {
  if (chain.size() < 2) return "OK";
  std::vector<double> lengths(chain.size() - 1);
  for (std::size_t i = 0; i < lengths.size(); ++i) lengths[i] = distance(chain[i], chain[i + 1]);
  const double bond = preprocess::median_bond(lengths);
  const auto fits = [bond](double length) {
    return length > 0 && length >= bond / 2 && length <= preprocess::kGapFactor * bond;
  };
  const auto first = std::find_if_not(lengths.begin(), lengths.end(), fits);
  if (first == lengths.end()) return "OK";
  const auto count = std::count_if(first, lengths.end(), [&](double l) { return !fits(l); });
  const auto place = static_cast<std::size_t>(first - lengths.begin());
  return "Distance " + shown(*first) + " between atoms " + std::to_string(chain[place].id) +
         " and " + std::to_string(chain[place + 1].id) + " is out of range (median " + shown(bond) +
         "); " + std::to_string(count) + (count == 1 ? " such pair of" : " such pairs of") +
         " consecutive atoms in the chain.";
}
