// Matrices of integer polynomials, ordinary and degenerate, each a function of its seed alone.
#pragma once

#include <cstdint>
#include <vector>

#include "korvex.h"

namespace support {

using PolynomialMatrix = std::vector<std::vector<polynomial<int>>>;

// One of: the Alexander matrix of a random projection of up to 11 crossings; small or large
// coefficients, dense or sparse; even coefficients only, of which none has an inverse; powers of
// two, whose products vanish; high powers of t; rows or columns that are zero or repeated. Entries
// may be empty, or bear zeros at either end; rows may have more entries than there are rows.
// 0 to 10 rows.
PolynomialMatrix random_polynomial_matrix(std::uint64_t seed);

}  // namespace support
