// The fixed numbers of the exported interface that more than one of its rooms goes by.
#pragma once

namespace korvex::determination {

// Closure types. 0 and every other number leave a chain as it is.
enum ClosureType { kCloseOut = 1, kCloseTwoPoints, kCloseOnePoint, kCloseOneDirection };

inline constexpr double kFactor = 1.25;    // radius of the closing sphere over the chain's own
inline constexpr int kMostCrossings = 16;  // the polynomial determinant's limit

}  // namespace korvex::determination
