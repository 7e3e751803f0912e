// Projected chains, ordinary and degenerate, each a function of its seed alone.
#pragma once

#include <cstdint>
#include <vector>

#include "preprocess.h"

namespace support {

// One of: a compact ring; a coil; a ring of an integer lattice (parallel, collinear, vertical and
// repeated edges); that ring sheared, so that parallel edges lie askew; a lattice ring moved by a
// few units in the last place; edges along few common lines; nearly vertical edges; loose edges; a
// ring far from the origin; coordinates over the whole range of exponents; infinities and NaN. 0 to
// 80 edges, seldom up to 300. Lists of crossings are empty.
std::vector<Edge> random_projection(std::uint64_t seed);

}  // namespace support
