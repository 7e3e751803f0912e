// std::fmod by a small integer without its loop over the quotient's bits.
#pragma once

#include <algorithm>
#include <bit>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdlib>

namespace korvex::alexander {

// The remainder of m * 2^exponent, for a divisor below 2^20.
inline std::uint64_t shifted_remainder(std::uint64_t m, int exponent, std::uint64_t divisor) {
  constexpr int kStep = 40;
  std::uint64_t rest = m % divisor;
  for (; exponent > 0; exponent -= kStep) rest = (rest << std::min(exponent, kStep)) % divisor;
  return rest;
}

// std::fmod(x, p), bit for bit.
inline double exact_remainder(double x, int p) {
  constexpr std::uint64_t kImplicitBit = std::uint64_t{1} << 52;
  constexpr int kBias = 1075;  // of the exponent of a double's last place
  const double magnitude = std::fabs(x);
  const int divisor = p == INT_MIN ? 0 : std::abs(p);
  if (divisor <= 0 || divisor >= 1 << 20) return std::fmod(x, p);
  if (magnitude < 0x1p50) {
    // The quotient is off by one at most; its product and the differences are exact.
    double rest = magnitude - std::trunc(magnitude / divisor) * divisor;
    if (rest < 0) rest += divisor;
    return std::copysign(rest, x);
  }
  if (magnitude >= 0x1p52 && magnitude <= 0x1p1023) {
    const auto pattern = std::bit_cast<std::uint64_t>(magnitude);
    const std::uint64_t m = (pattern & (kImplicitBit - 1)) | kImplicitBit;
    const std::uint64_t rest = shifted_remainder(m, static_cast<int>(pattern >> 52) - kBias,
                                                 static_cast<std::uint64_t>(divisor));
    return std::copysign(static_cast<double>(rest), x);
  }
  return std::fmod(x, p);
}

}  // namespace korvex::alexander
