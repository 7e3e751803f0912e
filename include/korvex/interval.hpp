// Confidence intervals of shares that are counted in trials.
#pragma once

#include <cstddef>

#include "korvex/export.hpp"

namespace korvex {

struct Interval {
  double low = 0;
  double high = 1;
};

// Wilson's score interval at 95 % for a share seen in `hits` of `trials` independent trials: always
// within [0, 1], and [0, 1] itself without trials. Trials on a lattice of directions scatter less
// than independent ones, so for them the interval errs on the wide side.
// Source: E. B. Wilson, J. Am. Stat. Assoc. 22, 209 (1927).
KORVEX_API Interval wilson_interval(std::size_t hits, std::size_t trials);

}  // namespace korvex
