// Reidemeister moves III of a closed curve's diagram.
#pragma once

#include <vector>

#include "korvex/gauss_code.hpp"

namespace korvex {

// The diagrams that one move III makes of the given one, as many as it has triangles in which one
// strand passes over both others and one under both.
// O(n) for each, and O(n) at least.
std::vector<GaussCode> third_moves(const GaussCode& closed);

}  // namespace korvex
