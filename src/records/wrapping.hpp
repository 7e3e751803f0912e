// 32-bit integer arithmetic that wraps around on overflow, as the exported interface counts.
#pragma once

#include <cstdint>

namespace korvex::records {

inline int wrapping_add(int a, int b) {
  return static_cast<int>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}

inline int wrapping_multiply(int a, int b) {
  return static_cast<int>(static_cast<std::uint32_t>(a) * static_cast<std::uint32_t>(b));
}

inline int wrapping_negate(int a) { return static_cast<int>(0U - static_cast<std::uint32_t>(a)); }

// part * 100 / whole, truncated toward zero; 0 when whole is 0.
inline int percentage(int part, int whole) {
  if (whole == 0) return 0;
  return static_cast<int>(std::int64_t{wrapping_multiply(part, 100)} / whole);
}

}  // namespace korvex::records
