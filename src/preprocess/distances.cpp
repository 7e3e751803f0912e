#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <vector>

#include "preprocess.h"

namespace {

double distance(const ChainAtom& a, const ChainAtom& b) {
  return std::hypot(a.x - b.x, a.y - b.y, a.z - b.z);
}

// Of an even number of values the mean of the middle two.
double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  if (values.size() % 2 != 0) return *middle;
  const double below = *std::max_element(values.begin(), middle);
  return below + (*middle - below) / 2;
}

// Six significant digits, whatever the locale of the process.
std::string shown(double value) {
  std::array<char, 32> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value,
                                 std::chars_format::general, 6);
  return std::string(digits.data(), end.ptr);
}

}  // namespace

std::string CheckDistancesBetweenAtoms(std::vector<ChainAtom> chain) {
  if (chain.size() < 2) return "OK";
  std::vector<double> lengths(chain.size() - 1);
  for (std::size_t i = 0; i < lengths.size(); ++i) lengths[i] = distance(chain[i], chain[i + 1]);
  // A coordinate that is no number makes distances that are none: they offend, and take no part in
  // the median.
  std::vector<double> finite;
  std::copy_if(lengths.begin(), lengths.end(), std::back_inserter(finite),
               [](double length) { return std::isfinite(length); });
  const double bond = finite.empty() ? 0 : median(finite);

  const auto fits = [bond](double length) {
    return length > 0 && length >= bond / 2 && length <= 1.5 * bond;
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
