// How many random inputs a comparison with a plain form draws.
#pragma once

#include <cstdlib>

namespace support {

// 5,000; 100,000 when the environment variable KORVEX_LONG_TESTS is set.
inline int input_count() { return std::getenv("KORVEX_LONG_TESTS") != nullptr ? 100'000 : 5'000; }

}  // namespace support
