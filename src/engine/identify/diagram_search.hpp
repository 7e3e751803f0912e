// A search for a simpler diagram of a knot, where no move at hand takes a crossing away.
#pragma once

#include <vector>

#include "korvex/gauss_code.hpp"
#include "korvex/run.hpp"

namespace korvex {

// The prime parts of the simplest diagram found. `part` is a prime part that pass moves leave as
// it is: its diagrams with as many crossings, moves III apart, are looked through breadth first
// until pass moves shorten one or one shows a connected sum, and then the parts of that one. The
// parts are `part` alone where about a hundred diagrams show neither. Depends on the diagram as a
// point set on the sphere alone, not on where its code begins and which way it runs; the mirror
// image of `part` has the mirror images of its parts. Of `run` it asks only whether to stop.
std::vector<GaussCode> searched_parts(const GaussCode& part, const Run& run = {});

}  // namespace korvex
