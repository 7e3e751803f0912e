// The knot of a closed chain in one projection direction, without the copy of the chain that the
// exported forms take.
#pragma once

#include <string>
#include <vector>

#include "korvex.h"

namespace korvex::determination {

// As FindTheKnotInParticularDirection.
int find_ordinal(const std::vector<ChainAtom>& chain, int direction);

// As FindTheKnotInParticularDirection_poly_string.
std::string invariant_text(const std::vector<ChainAtom>& chain, int max_crossings, bool numeric);

}  // namespace korvex::determination
