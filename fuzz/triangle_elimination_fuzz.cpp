// Triangle elimination of chains of single-precision points: the fast form against the plain one.
#include <cstdlib>
#include <cstring>

#include "bytes.hpp"
#include "korvex.h"
#include "reference/reference.hpp"
#include "support/point_chains.hpp"

namespace {

using support::PointChain;

// The first byte chooses how coordinates are read: raw floats reach infinities and NaN, the others
// small lattices, where exact zeros abound, fine steps about the tolerances, and many points.
float coordinate(fuzz::Bytes& bytes, int kind) {
  switch (kind) {
    case 0:
      return bytes.take<float>();
    case 1:
      return static_cast<float>(bytes.take<std::int8_t>() % 4);
    case 2:
      return static_cast<float>(bytes.take<std::int8_t>());
    case 3:
      return static_cast<float>(bytes.take<std::int16_t>()) * 5e-6F;
    default:
      return static_cast<float>(bytes.take<std::int16_t>()) * 1e-3F;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Bytes bytes(data, size);
  const int kind = bytes.take<std::uint8_t>() % 5;
  PointChain fast;
  while (bytes.left() > 0 && fast.size() < 400) {
    const float x = coordinate(bytes, kind);
    const float y = coordinate(bytes, kind);
    const float z = coordinate(bytes, kind);
    fast.push_back({x, y, z});
  }
  PointChain plain = fast;
  const int fast_left = ChainReduce(fast);
  const int plain_left = reference::ChainReduce(plain);
  if (fast_left != plain_left || fast.size() != plain.size()) std::abort();
  if (!fast.empty() && std::memcmp(fast.data(), plain.data(), fast.size() * sizeof fast[0]) != 0)
    std::abort();
  return 0;
}
