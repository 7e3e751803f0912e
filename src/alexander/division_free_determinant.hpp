// Determinants of dense matrices of polynomials without any division.
#pragma once

#include <cstddef>
#include <memory_resource>
#include <vector>

#include "alexander/laurent.hpp"

namespace korvex::alexander {

// The determinant of the matrix of `size` rows and columns, row by row; at least one row.
// Method: R. S. Bird, Inf. Process. Lett. 111, 1072 (2011). Cost: O(size^4) products.
Laurent division_free_determinant(const std::vector<Laurent>& matrix, std::size_t size,
                                  std::pmr::memory_resource& memory);

}  // namespace korvex::alexander
