#include "alexander/laurent.hpp"

#include <algorithm>

namespace korvex::alexander {

namespace {

std::uint32_t* new_words(std::size_t count, std::pmr::memory_resource& memory) {
  return static_cast<std::uint32_t*>(
      memory.allocate(count * sizeof(std::uint32_t), alignof(std::uint32_t)));
}

// Newton's iteration: every step doubles the number of right bits, of which odd * odd = 1 mod 8
// gives three.
std::uint32_t inverse(std::uint32_t odd) {
  std::uint32_t x = odd;
  for (int right = 3; right < 32; right *= 2) x *= 2 - odd * x;
  return x;
}

}  // namespace

Laurent negated_quotient(const Laurent& p, const Laurent& unit, std::pmr::memory_resource& memory) {
  const std::uint32_t factor = 0U - inverse(*unit.c);
  if (factor == 1) return {p.c, p.size, p.low - unit.low};
  std::uint32_t* const c = new_words(p.size, memory);
  std::transform(p.c, p.c + p.size, c, [=](std::uint32_t x) { return factor * x; });
  return {c, p.size, p.low - unit.low};
}

Laurent plus_product(const Laurent& a, const Laurent& b, const Laurent& c,
                     std::pmr::memory_resource& memory) {
  std::int64_t low = b.low + c.low;
  std::int64_t end = low + static_cast<std::int64_t>(b.size + c.size - 1);
  if (!is_zero(a)) {
    low = std::min(low, a.low);
    end = std::max(end, a.low + static_cast<std::int64_t>(a.size));
  }
  const auto size = static_cast<std::size_t>(end - low);
  std::uint32_t* const sum = new_words(size, memory);
  std::fill_n(sum, size, 0U);
  if (!is_zero(a)) std::copy_n(a.c, a.size, sum + (a.low - low));
  std::uint32_t* const product = sum + (b.low + c.low - low);
  for (std::size_t i = 0; i < b.size; ++i)
    for (std::size_t j = 0; j < c.size; ++j) product[i + j] += b.c[i] * c.c[j];
  return trimmed(sum, size, low);
}

}  // namespace korvex::alexander
