// The instruction sets for which the kernels are compiled and that this machine has.
#pragma once

#include <hwy/highway.h>

#include <cstdint>
#include <string>
#include <vector>

namespace support {

inline std::vector<std::int64_t> simd_targets() {
  hwy::SetSupportedTargetsForTest(0);
  std::vector<std::int64_t> targets = hwy::SupportedAndGeneratedTargets();
  return targets;
}

inline std::string simd_target_name(std::int64_t target) { return hwy::TargetName(target); }

// While it lives, the kernels run for `target` and no other.
class ForcedTarget {
 public:
  explicit ForcedTarget(std::int64_t target) { force(target); }
  ~ForcedTarget() { force(0); }
  ForcedTarget(const ForcedTarget&) = delete;
  ForcedTarget& operator=(const ForcedTarget&) = delete;

 private:
  static void force(std::int64_t target) {
    hwy::SetSupportedTargetsForTest(target);
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
  }
};

}  // namespace support
