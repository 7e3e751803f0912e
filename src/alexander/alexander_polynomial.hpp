// The Alexander polynomial of a diagram.
#pragma once

#include <vector>

#include "korvex.h"

namespace korvex::alexander {

// NormalizePoly(det_poly(CreateFoxMatrix(crossings))), and 1 where that matrix has no rows, without
// the matrix. The arcs of the crossings must be below their number.
polynomial<int> alexander_polynomial(const std::vector<Crossing>& crossings);

}  // namespace korvex::alexander
