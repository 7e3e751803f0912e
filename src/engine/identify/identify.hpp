// The knot types of diagrams that have been simplified already.
#pragma once

#include "korvex/identify.hpp"

namespace korvex {

// As identify(), for a closed code that pass moves leave as it is.
KnotIdentity identify_simplified(const GaussCode& closed, Detail detail = Detail::kHand,
                                 const Run& run = {});

}  // namespace korvex
