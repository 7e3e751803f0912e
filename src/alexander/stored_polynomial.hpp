// Polynomials with their coefficients exactly as given.
#pragma once

#include <utility>
#include <vector>

#include "korvex.h"

namespace korvex::alexander {

// Boost's own constructors drop trailing zeros; here {0} stays one coefficient.
inline polynomial<int> stored_polynomial(std::vector<int> coefficients) {
  polynomial<int> result;
  result.data() = std::move(coefficients);
  return result;
}

}  // namespace korvex::alexander
