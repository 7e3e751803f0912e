#include "simd/dispatch.hpp"

#if HWY_ARCH_X86
#include <cpuid.h>
#endif

namespace korvex::simd {
namespace {

#if HWY_ARCH_X86
// Two that not every compiler's test of the processor knows.
bool has_f16c_and_lzcnt() {
  unsigned a = 0;
  unsigned b = 0;
  unsigned c = 0;
  unsigned d = 0;
  const bool f16c = __get_cpuid(1, &a, &b, &c, &d) != 0 && (c & bit_F16C) != 0;
  return f16c && __get_cpuid(0x80000001, &a, &b, &c, &d) != 0 && (c & bit_LZCNT) != 0;
}

// Each instruction set asks for the ones before it and for what its code is compiled with. The
// tests take in whether the operating system keeps the registers.
std::int64_t look_at_processor() {
  __builtin_cpu_init();
  std::int64_t targets = 0;
  if (!__builtin_cpu_supports("ssse3")) return targets;
  targets |= HWY_SSSE3;
  if (!__builtin_cpu_supports("sse4.1") || !__builtin_cpu_supports("sse4.2") ||
      !__builtin_cpu_supports("aes") || !__builtin_cpu_supports("pclmul"))
    return targets;
  targets |= HWY_SSE4;
  if (!__builtin_cpu_supports("avx2") || !__builtin_cpu_supports("fma") ||
      !__builtin_cpu_supports("bmi") || !__builtin_cpu_supports("bmi2") || !has_f16c_and_lzcnt())
    return targets;
  targets |= HWY_AVX2;
  if (!__builtin_cpu_supports("avx512f") || !__builtin_cpu_supports("avx512vl") ||
      !__builtin_cpu_supports("avx512dq") || !__builtin_cpu_supports("avx512bw") ||
      !__builtin_cpu_supports("avx512cd"))
    return targets;
  return targets | HWY_AVX3;
}
#else
std::int64_t look_at_processor() { return HWY_STATIC_TARGET; }
#endif

hwy::ChosenTarget& choice() {
  static hwy::ChosenTarget target;
  static const bool chosen = (target.Update(supported_targets()), true);
  static_cast<void>(chosen);
  return target;
}

}  // namespace

std::int64_t supported_targets() {
  static const std::int64_t targets = look_at_processor();
  return targets;
}

const hwy::ChosenTarget& chosen_target() { return choice(); }

void force_targets(std::int64_t targets) {
  choice().Update(targets == 0 ? supported_targets() : targets & supported_targets());
}

}  // namespace korvex::simd
