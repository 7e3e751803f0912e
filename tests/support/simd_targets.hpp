// The instruction sets for which the kernels are compiled and that this machine has.
#pragma once

#include <hwy/highway.h>

#include <cstdint>
#include <string>
#include <vector>

#include "simd/dispatch.hpp"

namespace support {

inline std::vector<std::int64_t> simd_targets() {
  // The portable variant runs everywhere.
  constexpr std::int64_t kPortable = HWY_SCALAR | HWY_EMU128 | HWY_STATIC_TARGET;
  std::vector<std::int64_t> targets;
  const std::int64_t all = HWY_TARGETS & (korvex::simd::supported_targets() | kPortable);
  for (std::int64_t rest = all; rest != 0; rest &= rest - 1) targets.push_back(rest & -rest);
  return targets;
}

inline std::string simd_target_name(std::int64_t target) { return hwy::TargetName(target); }

// While it lives, the kernels run for `target` and no other.
class ForcedTarget {
 public:
  explicit ForcedTarget(std::int64_t target) { korvex::simd::force_targets(target); }
  ~ForcedTarget() { korvex::simd::force_targets(0); }
  ForcedTarget(const ForcedTarget&) = delete;
  ForcedTarget& operator=(const ForcedTarget&) = delete;
};

}  // namespace support
