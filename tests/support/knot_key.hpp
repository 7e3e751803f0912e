// A knot invariant for tests, made without any of the library's code.
#pragma once

#include <cstdint>
#include <vector>

#include "preprocess.h"

namespace support {

// D(t) D(1/t) modulo the prime 2^61 - 1 at one fixed t, where D is the Alexander polynomial of the
// ring (its last atom joined to its first), taken from a projection along a generic direction
// chosen by `view`. The product does not depend on the unit by which D is undetermined; it is 1 for
// the unknot, and equal for mirror images. Throws std::runtime_error when the projection is not
// generic. O(c^3) for c crossings.
std::uint64_t knot_key(const std::vector<ChainAtom>& ring, std::uint64_t view = 1);

// The key of a polynomial, coefficients lowest power first.
std::uint64_t key_of_polynomial(const std::vector<int>& coefficients);

}  // namespace support
