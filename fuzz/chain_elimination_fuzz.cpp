// Triangle elimination of chains of atoms: the fast form against the plain one.
#include <algorithm>
#include <cstdlib>

#include "bytes.hpp"
#include "reference/preprocess.hpp"
#include "support/bits.hpp"

namespace {

// Raw doubles reach every exponent, infinities and NaN; the others are small lattices, where exact
// zeros abound, and points whose differences are near the rounding of their coordinates.
double coordinate(fuzz::Bytes& bytes, int kind) {
  switch (kind) {
    case 0:
      return bytes.take<double>();
    case 1:
      return bytes.take<std::int8_t>() % 4;
    case 2:
      return bytes.take<std::int8_t>();
    case 3:
      return 1 + bytes.take<std::int8_t>() * 0x1p-52;
    default:
      return bytes.take<std::int16_t>() * 1e-3;
  }
}

bool same_bits(const ChainAtom& a, const ChainAtom& b) { return support::same_bits(a, b); }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Bytes bytes(data, size);
  const int kind = bytes.take<std::uint8_t>() % 5;
  const bool closed = bytes.take<std::uint8_t>() % 2 == 0;
  std::vector<ChainAtom> fast;
  while (bytes.left() > 0 && fast.size() < 60) {
    const double x = coordinate(bytes, kind);
    const double y = coordinate(bytes, kind);
    const double z = coordinate(bytes, kind);
    fast.push_back({x, y, z, static_cast<std::int32_t>(fast.size())});
  }
  std::vector<ChainAtom> plain = fast;
  if (ChainReduce(fast, closed) != reference::ChainReduce(plain, closed)) std::abort();
  if (!std::equal(fast.begin(), fast.end(), plain.begin(), plain.end(), same_bits)) std::abort();
  return 0;
}
