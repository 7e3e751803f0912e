// The parts of what is written of maps of closures.
#pragma once

#include <iosfwd>
#include <string>

#include "korvex/chain.hpp"
#include "korvex/closure_map.hpp"

namespace korvex {

// Both hemispheres in equal area as SVG, with a legend.
std::string drawing_of(const Chain& chain, const ClosureMap& map);

void write_map_npz(const ClosureMap& map, std::ostream& out);

}  // namespace korvex
