// Square matrices of doubles, ordinary and degenerate, each a function of its seed alone.
#pragma once

#include <cstdint>
#include <vector>

namespace support {

using NumberMatrix = std::vector<std::vector<double>>;

// One of: the Alexander matrix at 12 of a random projection; small integers, dense or sparse;
// singular integers; real numbers; entries about the smallest pivot, 1e-5; large and small
// magnitudes; zeros of either sign; infinities and NaN. Rows may have more entries than there are
// rows. 0 to 40 rows.
NumberMatrix random_number_matrix(std::uint64_t seed);

}  // namespace support
