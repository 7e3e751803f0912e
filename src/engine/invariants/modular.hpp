// Arithmetic modulo the Mersenne prime 2^61 - 1.
#pragma once

#include <cstdint>

namespace korvex::modular {

inline constexpr std::uint64_t kPrime = (std::uint64_t{1} << 61) - 1;

// Operands and results lie in 0..kPrime-1.
constexpr std::uint64_t add(std::uint64_t a, std::uint64_t b) {
  const std::uint64_t sum = a + b;
  return sum >= kPrime ? sum - kPrime : sum;
}

constexpr std::uint64_t subtract(std::uint64_t a, std::uint64_t b) {
  return a >= b ? a - b : a + kPrime - b;
}

constexpr std::uint64_t multiply(std::uint64_t a, std::uint64_t b) {
  __extension__ using Wide = unsigned __int128;
  const Wide product = static_cast<Wide>(a) * b;
  const auto low = static_cast<std::uint64_t>(product) & kPrime;
  const auto high = static_cast<std::uint64_t>(product >> 61);
  return add(low, high);
}

constexpr std::uint64_t power(std::uint64_t base, std::uint64_t exponent) {
  std::uint64_t result = 1;
  for (; exponent > 0; exponent >>= 1) {
    if (exponent & 1) result = multiply(result, base);
    base = multiply(base, base);
  }
  return result;
}

// Of a number other than 0.
constexpr std::uint64_t inverse(std::uint64_t a) { return power(a, kPrime - 2); }

// The residue of any integer.
constexpr std::uint64_t residue(std::int64_t a) {
  const std::int64_t rest = a % static_cast<std::int64_t>(kPrime);
  return static_cast<std::uint64_t>(rest < 0 ? rest + static_cast<std::int64_t>(kPrime) : rest);
}

}  // namespace korvex::modular
