// Places in codes and in what stands beside them.
#pragma once

#include <cstddef>
#include <cstdint>

namespace korvex {

// As containers count them. Codes keep places in 32 bits; here `place` is not negative.
constexpr std::size_t at(std::int32_t place) { return static_cast<std::size_t>(place); }

}  // namespace korvex
