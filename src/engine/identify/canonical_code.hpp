// Gauss codes that do not depend on where the curve begins and which way it runs.
#pragma once

#include <string>

#include "korvex/gauss_code.hpp"

namespace korvex {

// Equal for codes that differ by their beginning, their sense or their segments alone. Two bytes a
// passage below 8192 passages, else four. O(length^2) at worst, O(length) for most.
std::string canonical_code(const GaussCode& closed);

// One and the same of all codes that have this canonical code. Its passages have segment 0.
GaussCode canonical_diagram(const GaussCode& closed);

}  // namespace korvex
