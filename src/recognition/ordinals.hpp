// The knot ordinals that carry a meaning of their own, and how many there are.
#pragma once

#include <string>

namespace korvex::recognition {

constexpr int kOrdinals = 42;
constexpr int kUnknot = 0;
constexpr int kLastKnot = 38;  // the last ordinal that a match can give
constexpr int kNoMatch = 39;
constexpr int kUnusable = 40;  // "Problem with projecting"
constexpr int kReserved = 41;  // a further failure class

extern const std::string kUnknotName;      // "01"
extern const std::string kNoMajorityName;  // "-1"
extern const std::string kFailuresName;    // "-2"

}  // namespace korvex::recognition
