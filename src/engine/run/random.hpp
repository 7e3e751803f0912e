// Random numbers that are a function of (seed, trial) alone, so that any trial can be computed by
// any thread in any order.
//
// The generator is SplitMix64 (G. L. Steele, D. Lea and C. H. Flood, OOPSLA 2014) started at a hash
// of seed and trial.
#pragma once

#include <cstdint>

namespace korvex {

// The finaliser of SplitMix64: a bijection of 64-bit numbers that scatters neighbours.
constexpr std::uint64_t scatter_bits(std::uint64_t bits) {
  bits = (bits ^ (bits >> 30)) * 0xbf58476d1ce4e5b9u;
  bits = (bits ^ (bits >> 27)) * 0x94d049bb133111ebu;
  return bits ^ (bits >> 31);
}

class TrialRandom {
 public:
  TrialRandom(std::uint64_t seed, std::uint64_t trial)
      : state_(scatter_bits(scatter_bits(seed + kStep) ^ (trial * kStep + 1))) {}

  std::uint64_t bits() {
    state_ += kStep;
    return scatter_bits(state_);
  }
  // Uniform in [0, 1), a multiple of 2^-53.
  double unit() { return static_cast<double>(bits() >> 11) * 0x1p-53; }

 private:
  static constexpr std::uint64_t kStep = 0x9e3779b97f4a7c15u;
  std::uint64_t state_;
};

}  // namespace korvex
