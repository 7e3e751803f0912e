// The crossings of a projected chain: the fast form against the plain one.
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include "bytes.hpp"
#include "korvex.h"
#include "reference/reference.hpp"
#include "support/bits.hpp"
#include "support/captured_stream.hpp"

namespace {

// The first byte chooses how coordinates are read: raw doubles reach infinities and NaN, the others
// small lattices, where parallel and collinear edges abound, and fine and coarse steps.
double coordinate(fuzz::Bytes& bytes, int kind) {
  switch (kind) {
    case 0:
      return bytes.take<double>();
    case 1:
      return bytes.take<std::int8_t>() % 4;
    case 2:
      return bytes.take<std::int8_t>();
    case 3:
      return bytes.take<std::int8_t>() * (1 + 0x1p-50);
    case 4:
      return bytes.take<float>();
    default:
      return bytes.take<std::int16_t>() / 3.0;
  }
}

std::vector<Edge> ring(fuzz::Bytes& bytes, int kind) {
  std::vector<Edge> edges;
  double at[3] = {coordinate(bytes, kind), coordinate(bytes, kind), coordinate(bytes, kind)};
  while (bytes.left() > 0 && edges.size() < 200) {
    const double next[3] = {coordinate(bytes, kind), coordinate(bytes, kind),
                            coordinate(bytes, kind)};
    edges.push_back({at[0], at[1], at[2], next[0], next[1], next[2], {}, 0});
    for (int k = 0; k < 3; ++k) at[k] = next[k];
  }
  return edges;
}

void require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Bytes bytes(data, size);
  const std::uint8_t first = bytes.take<std::uint8_t>();
  std::vector<Edge> fast = ring(bytes, first / 2 % 6);
  std::vector<Edge> plain = fast;
  std::vector<Crossing> fast_crossings;
  std::vector<Crossing> plain_crossings;
  const support::CapturedStream log(std::clog);
  const bool closed = first % 2 == 0;
  const int fast_result = FindAllCrossings(fast, fast_crossings, closed);
  const std::string fast_messages = log.text();
  require(reference::FindAllCrossings(plain, plain_crossings, closed) == fast_result);
  require(fast_messages + fast_messages == log.text());
  require(fast_crossings.size() == plain_crossings.size());
  for (std::size_t k = 0; k < fast_crossings.size(); ++k) {
    require(fast_crossings[k].overEdge == plain_crossings[k].overEdge);
    require(fast_crossings[k].underEdge == plain_crossings[k].underEdge);
    require(fast_crossings[k].type == plain_crossings[k].type);
  }
  for (std::size_t k = 0; k < fast.size(); ++k) {
    require(fast[k].crossings.size() == plain[k].crossings.size());
    for (std::size_t c = 0; c < fast[k].crossings.size(); ++c) {
      require(fast[k].crossings[c].crossingIndex == plain[k].crossings[c].crossingIndex);
      require(support::same_bits(fast[k].crossings[c].position, plain[k].crossings[c].position));
    }
  }
  return 0;
}
