// One column's step of Gaussian elimination, several entries of a row at a time.
#pragma once

#include <cstddef>
#include <vector>

namespace korvex::alexander {

constexpr double kSmallestPivot = 1e-5;  // entries of at most this magnitude count as zero

// Subtracts from each of the rows from, from + 1, ... that has a usable entry in column k the
// multiple f = entry / pivot of row k: row[j] = row[j] - f * pivot_row[j], both operations rounded,
// for j = k, k + 1, ... below the number of rows. Rows have at least that many entries.
void eliminate_column(std::vector<std::vector<double>>& rows, std::size_t k, std::size_t from);

}  // namespace korvex::alexander
