// The rows of data/prime_knots_to_10.tsv.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace support {

struct KnotRow {
  std::string name;
  int crossings;
  std::string pd;
  std::int64_t determinant;
  std::vector<std::int64_t> alexander;  // lowest power first
  std::string jones;                    // "exponent:coefficient ..." as in the file
  std::string homfly;
};

// All 249 rows.
const std::vector<KnotRow>& knot_rows();

}  // namespace support
