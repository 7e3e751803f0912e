// Which of two mirror images has the hand `+`.
#pragma once

#include "korvex/diagram.hpp"

namespace korvex {

// For the diagram of a prime knot to 10 crossings: 1 for +, -1 for -, 0 where no rule decides,
// which is so for the knots that are their own mirror image. The rules, tried in turn until one
// decides, are those under "Hands" in docs/conventions.md.
int hand(const Diagram& diagram);

}  // namespace korvex
