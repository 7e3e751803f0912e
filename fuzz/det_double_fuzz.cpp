// Numeric determinants: the fast form against the plain one, result and what is left of the matrix.
#include <cstdlib>
#include <vector>

#include "bytes.hpp"
#include "korvex.h"
#include "reference/reference.hpp"
#include "support/bits.hpp"
#include "support/determinant_ends.hpp"

namespace {

// The first byte chooses the size and how entries are read: raw doubles reach infinities and NaN,
// the others small integers, multiples of the smallest pivot, and reals.
double entry(fuzz::Bytes& bytes, int kind) {
  switch (kind) {
    case 0:
      return bytes.take<double>();
    case 1:
      return bytes.take<std::int8_t>() % 4;
    case 2:
      return bytes.take<std::int8_t>() * 1e-5;
    default:
      return bytes.take<std::int16_t>() / 7.0;
  }
}

void require_same(double a, double b) {
  if (!support::same_bits(a, b)) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Bytes bytes(data, size);
  const std::uint8_t first = bytes.take<std::uint8_t>();
  const int p = 2 + bytes.take<std::uint8_t>() % 20;
  std::vector<std::vector<double>> fast(first % 32);
  for (auto& row : fast)
    for (std::size_t k = 0; k < fast.size(); ++k) row.push_back(entry(bytes, first / 32 % 4));
  if (!support::determinant_ends(fast, p)) return 0;
  std::vector<std::vector<double>> plain = fast;
  require_same(det_double(fast, p), reference::det_double(plain, p));
  for (std::size_t i = 0; i < fast.size(); ++i)
    for (std::size_t j = 0; j < fast.size(); ++j) require_same(fast[i][j], plain[i][j]);
  return 0;
}
