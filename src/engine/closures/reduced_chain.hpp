// Chains without the points that no closure of theirs needs.
#pragma once

#include <span>
#include <vector>

#include "korvex/closure.hpp"
#include "korvex/geometry.hpp"
#include "korvex/run.hpp"

namespace korvex {

// The chain after triangle elimination with the rays of all these closures in place: each of them
// leaves it the type that it had.
std::vector<Point> reduced_for(std::span<const Ends> ends, std::span<const Point> chain,
                               const Run& run);

}  // namespace korvex
