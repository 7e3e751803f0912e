// How closed codes get their names where votes are counted.
#pragma once

#include <string>

#include "korvex/gauss_code.hpp"

namespace korvex {

// KnotIdentity::name, with hands, of the diagram with this code.
std::string identified_name(const GaussCode& closed);

}  // namespace korvex
