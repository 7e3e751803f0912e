// Signed extended Gauss codes: a knot diagram as the passages met along its curve.
#pragma once

#include <cstdint>
#include <vector>

namespace korvex {

// One passage of a curve through a crossing.
struct Passage {
  std::int32_t mate;  // index in the code of the other passage through this crossing
  bool over;          // nearer to the viewer than its mate
  bool positive;      // right-handed: the over strand turns counter-clockwise onto the under one

  friend bool operator==(const Passage&, const Passage&) = default;
};

// Passages in the order of a curve, two for every crossing: from end to end of an open chain, or
// once round a closed curve from wherever.
using GaussCode = std::vector<Passage>;

}  // namespace korvex
