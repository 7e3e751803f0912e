// The signature of a knot.
#pragma once

#include "korvex/diagram.hpp"
#include "korvex/export.hpp"
#include "korvex/run.hpp"

namespace korvex {

// Convention: the right-handed trefoil has -2; the mirror image of a knot has the negative. Exact;
// for n crossings O(n^3) operations on integers of up to about n/2 decimal digits. Of `run` it asks
// only whether to stop: Error(kCancelled). Any thread.
//
// Source: C. McA. Gordon and R. A. Litherland, Invent. Math. 47, 53 (1978).
KORVEX_API int signature(const Diagram& diagram, const Run& run = {});

}  // namespace korvex
