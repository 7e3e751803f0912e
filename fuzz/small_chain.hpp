// Small chains of atoms from the fuzzer's bytes.
#pragma once

#include <cstdint>
#include <vector>

#include "bytes.hpp"
#include "korvex.h"

namespace fuzz {

// Small lattices, where exact zeros abound; finer ones; coordinates near their own rounding; raw
// floats, which reach infinities and NaN.
inline double coordinate(Bytes& bytes, int kind) {
  switch (kind % 8) {
    case 0:
      return static_cast<double>(bytes.take<float>());
    case 1:
      return bytes.take<std::int8_t>() % 4;
    case 2:
      return 1 + bytes.take<std::int8_t>() * 0x1p-52;
    case 3:
      return 1e6 + bytes.take<std::int8_t>();
    case 4:
      return bytes.take<std::int16_t>() * 1e-3;
    default:
      return bytes.take<std::int8_t>();
  }
}

// At most so many atoms, numbered from -2. Chains of raw floats stay so short that the determinants
// of what infinities and NaN make of a diagram are soon done.
inline std::vector<ChainAtom> small_chain(Bytes& bytes, int kind, std::size_t most) {
  if (kind % 8 == 0 && most > 6) most = 6;
  std::vector<ChainAtom> chain;
  while (bytes.left() > 0 && chain.size() < most) {
    const double x = coordinate(bytes, kind);
    const double y = coordinate(bytes, kind);
    const double z = coordinate(bytes, kind);
    chain.push_back({x, y, z, static_cast<std::int32_t>(chain.size()) - 2});
  }
  return chain;
}

}  // namespace fuzz
