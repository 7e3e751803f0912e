// Where sub-chains may begin and end.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "korvex/error.hpp"

namespace korvex {

// Residues 0, step, 2 step, ... and the last of a chain. Throws Error(kInvalidArgument) for no
// step.
inline std::vector<std::int32_t> stations_along(std::size_t residues, std::size_t step) {
  if (step == 0)
    throw Error(ErrorCode::kInvalidArgument,
                "the step of a fingerprint must be at least 1 residue");
  std::vector<std::int32_t> stations;
  for (std::size_t residue = 0; residue < residues; residue += step)
    stations.push_back(static_cast<std::int32_t>(residue));
  const auto last = static_cast<std::int32_t>(residues) - 1;
  if (!stations.empty() && stations.back() != last) stations.push_back(last);
  return stations;
}

}  // namespace korvex
