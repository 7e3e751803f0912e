// The closures by the names that users give them.
#pragma once

#include "choice.hpp"

namespace korvex::cli {

// How an open chain's ends are joined. The values are the closure codes of the exported interface.
enum class Closure { kNone = 0, kOut = 1, kTwoPoints = 2, kOnePoint = 3, kDirection = 4 };

inline const Choices<Closure> kClosures = {
    {"out", Closure::kOut},
    {"two-points", Closure::kTwoPoints},
    {"one-point", Closure::kOnePoint},
    {"direction", Closure::kDirection},
    {"none", Closure::kNone},
};

// Those that a fingerprint knows: it has no closure in one direction.
inline const Choices<Closure> kFingerprintClosures = {
    {"out", Closure::kOut},
    {"two-points", Closure::kTwoPoints},
    {"one-point", Closure::kOnePoint},
    {"none", Closure::kNone},
};

// Whether a closure draws random numbers, so that its trials differ.
inline bool is_random(Closure closure) {
  return closure != Closure::kNone && closure != Closure::kOut;
}

}  // namespace korvex::cli
