// Whether FindOneKnot ends.
#pragma once

#include "support/chains.hpp"

namespace support {

// Whether a closure of this type succeeds within a few attempts, and the closed chain is one that
// the first direction answers. Draws from rand().
bool determination_ends(const Chain& chain, int closure);

}  // namespace support
