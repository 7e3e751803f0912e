// The Gauss code of an open chain seen along a direction, and the closed curve that it stands for.
//
// The chain stands for the closed curve that both ends make when they are led to infinity towards
// the viewer and joined there. Seen by the viewer that closing arc passes over everything, so it
// may run anywhere and is not part of the code: the chain's own crossings fix the knot type, and an
// end may be pulled back through every crossing in which it passes over. (Both ends under
// everything would be the under-closure of a knotoid: V. Turaev, Osaka J. Math. 49, 195 (2012).)
#pragma once

#include "korvex/gauss_code.hpp"

namespace korvex {

// The code of the closed curve: the closing arc is routed over the fewest strands of the diagram on
// the sphere and its crossings are inserted, its own passages last. O(length).
GaussCode closed_over(const GaussCode& code);

}  // namespace korvex
