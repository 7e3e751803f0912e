// Which of two mirror images has the hand `+`.
#pragma once

#include "korvex/diagram.hpp"

namespace korvex {

// For the diagram of a prime knot to 10 crossings: 1 for +, -1 for -, 0 where no rule decides,
// which is so for the knots that are their own mirror image. In turn, until one decides:
//   1. the Jones polynomial's lowest and highest exponents add up to more than 0: +;
//   2. from the outermost exponents inwards, the first pair e, -e of exponents whose coefficients
//      differ: + if that of the positive exponent is larger in size, or of equal size and larger;
//   3. the same for exponents -a, a of the HOMFLY-PT polynomial, for each from the highest power of
//      z down;
//   4. the signature is negative: +;
//   5. for p = 5, 7, 11 and k from 1 to p/2, the first pair k, p-k whose numbers of parabolic
//      colourings differ: + if that of k is larger.
int hand(const Diagram& diagram);

}  // namespace korvex
