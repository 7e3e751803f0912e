// Equality bit for bit. NaN has many patterns; which one results is the processor's business.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>

#include "preprocess.h"

namespace support {

inline bool same_bits(double a, double b) {
  return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b) ||
         (std::isnan(a) && std::isnan(b));
}

inline bool same_bits(const ChainAtom& a, const ChainAtom& b) {
  return same_bits(a.x, b.x) && same_bits(a.y, b.y) && same_bits(a.z, b.z) && a.id == b.id;
}

// The crossings on the edges are not compared.
inline bool same_bits(const Edge& a, const Edge& b) {
  return same_bits(a.x1, b.x1) && same_bits(a.y1, b.y1) && same_bits(a.z1, b.z1) &&
         same_bits(a.x2, b.x2) && same_bits(a.y2, b.y2) && same_bits(a.z2, b.z2) && a.tag == b.tag;
}

}  // namespace support
