#include "geometry/bonds.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace preprocess {

double median_bond(std::vector<double> lengths) {
  std::erase_if(lengths, [](double length) { return !std::isfinite(length); });
  if (lengths.empty()) return 0;
  const auto middle = lengths.begin() + static_cast<std::ptrdiff_t>(lengths.size() / 2);
  std::nth_element(lengths.begin(), middle, lengths.end());
  if (lengths.size() % 2 != 0) return *middle;
  const double below = *std::max_element(lengths.begin(), middle);
  return below + (*middle - below) / 2;
}

}  // namespace preprocess
