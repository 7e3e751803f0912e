// Determinants of matrices of integer polynomials: elimination against the cofactor expansion.
#include <cstdlib>
#include <vector>

#include "bytes.hpp"
#include "korvex.h"
#include "reference/reference.hpp"

namespace {

// The first byte chooses the size and how coefficients are read: any, small, even, or powers of
// two.
int coefficient(fuzz::Bytes& bytes, int kind) {
  switch (kind) {
    case 0:
      return bytes.take<std::int32_t>();
    case 1:
      return bytes.take<std::int8_t>() % 3;
    case 2:
      return 2 * bytes.take<std::int8_t>();
    default:
      return static_cast<int>(1U << (bytes.take<std::uint8_t>() % 32));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Bytes bytes(data, size);
  const std::uint8_t first = bytes.take<std::uint8_t>();
  const int kind = first / 8 % 4;
  std::vector<std::vector<polynomial<int>>> matrix(first % 8);
  const std::size_t columns = matrix.size() + first / 32 % 2;
  for (auto& row : matrix) {
    row.resize(columns);
    for (auto& entry : row)
      for (int left = bytes.take<std::uint8_t>() % 4; left > 0; --left)
        entry.data().push_back(coefficient(bytes, kind));
  }
  if (det_poly(matrix).data() != reference::det_poly(matrix).data()) std::abort();
  return 0;
}
