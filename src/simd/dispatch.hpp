// Which variant of a vector kernel runs. The vector library compiles a kernel once for each
// instruction set; these choose between them by the processor that the program meets. The library
// would choose as well, from its shared part, which measures the clock for milliseconds whenever a
// program starts.
//
// For kernels of one source file, after the part that is compiled once for each instruction set:
//
//   KORVEX_VARIANTS(Kernel);              in the namespace around HWY_NAMESPACE
//   KORVEX_VARIANT(Kernel)(arguments);    calls the variant for this processor
//
// Thread-safe but for force_targets().
#pragma once

#include <hwy/highway.h>

#include <cstddef>
#include <cstdint>

namespace korvex::simd {

// The instruction sets of this processor, a sum of the vector library's bits such as HWY_AVX2.
std::int64_t supported_targets();

// Those that kernels may use: all that are supported, until force_targets() leaves some of them or,
// with 0, takes its choice back. For tests; no kernel may run meanwhile.
const hwy::ChosenTarget& chosen_target();
void force_targets(std::int64_t targets);

}  // namespace korvex::simd

// The first place belongs to a choice that is not made yet, which chosen_target() never gives.
#define KORVEX_VARIANTS(kernel)                                                          \
  static decltype(&HWY_STATIC_DISPATCH(kernel)) const HWY_CONCAT(kernel, Variants)[] = { \
      nullptr, HWY_CHOOSE_TARGET_LIST(kernel), HWY_CHOOSE_FALLBACK(kernel)}
#define KORVEX_VARIANT(kernel) \
  (*HWY_CONCAT(kernel, Variants)[korvex::simd::chosen_target().GetIndex()])
