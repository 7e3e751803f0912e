// The distances between neighbours in a chain, and what is far from their usual.
#pragma once

#include <vector>

namespace preprocess {

// Neighbours farther apart than this many times the median bond have a gap between them.
inline constexpr double kGapFactor = 1.5;

// The median of the finite ones among `lengths`; of an even number the mean of the middle two; 0 of
// none. O(n).
double median_bond(std::vector<double> lengths);

}  // namespace preprocess
