// Laurent polynomials with coefficients modulo 2^32, as views of coefficients kept elsewhere.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory_resource>

namespace korvex::alexander {

// t^low * (c[0] + c[1] t + ...) with c[0] and c[size - 1] not 0; zero has size 0.
struct Laurent {
  const std::uint32_t* c = nullptr;
  std::size_t size = 0;
  std::int64_t low = 0;
};

// The polynomial of these coefficients, zeros at either end dropped.
inline Laurent trimmed(const std::uint32_t* c, std::size_t size, std::int64_t low) {
  while (size > 0 && c[size - 1] == 0) --size;
  while (size > 0 && *c == 0) ++c, ++low, --size;
  return {c, size, low};
}

inline bool is_zero(const Laurent& p) { return p.size == 0; }

// Whether p is c t^k with c odd, that is, with an inverse. (Others may have one too.)
inline bool is_unit(const Laurent& p) { return p.size == 1 && (*p.c & 1U) != 0; }

// -p / unit.
Laurent negated_quotient(const Laurent& p, const Laurent& unit, std::pmr::memory_resource& memory);

// a + b * c. Cost: O(size of the sum + b.size * c.size).
Laurent plus_product(const Laurent& a, const Laurent& b, const Laurent& c,
                     std::pmr::memory_resource& memory);

}  // namespace korvex::alexander
