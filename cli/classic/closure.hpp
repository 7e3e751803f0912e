// The closures by the names that users give them.
#pragma once

#include "choice.hpp"

namespace korvex::cli::classic {

// How an open chain's ends are joined. The values are the closure codes of the exported interface.
enum class ClosureCode { kNone = 0, kOut = 1, kTwoPoints = 2, kOnePoint = 3, kDirection = 4 };

inline const Choices<ClosureCode> kClosures = {
    {"out", ClosureCode::kOut},
    {"two-points", ClosureCode::kTwoPoints},
    {"one-point", ClosureCode::kOnePoint},
    {"direction", ClosureCode::kDirection},
    {"none", ClosureCode::kNone},
};

// Those that a fingerprint knows: it has no closure in one direction.
inline const Choices<ClosureCode> kFingerprintClosures = {
    {"out", ClosureCode::kOut},
    {"two-points", ClosureCode::kTwoPoints},
    {"one-point", ClosureCode::kOnePoint},
    {"none", ClosureCode::kNone},
};

// Whether a closure draws random numbers, so that its trials differ.
inline bool is_random(ClosureCode closure) {
  return closure != ClosureCode::kNone && closure != ClosureCode::kOut;
}

}  // namespace korvex::cli::classic
