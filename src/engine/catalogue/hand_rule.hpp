// Which of two mirror images has the hand `+`.
#pragma once

#include "korvex/homfly.hpp"
#include "korvex/jones.hpp"

namespace korvex {

// 1 for +, -1 for -, 0 where the invariants are those of the mirror image. In turn, until one
// decides:
//   1. the Jones polynomial's lowest and highest exponents add up to more than 0: +;
//   2. from the outermost exponents inwards, the first pair e, -e of exponents whose coefficients
//      differ: + if that of the positive exponent is larger in size, or of equal size and larger;
//   3. the same for exponents -a, a of the HOMFLY-PT polynomial, for each from the highest power of
//      z down;
//   4. the signature is negative: +.
int hand(const JonesPolynomial& jones, const HomflyPolynomial& homfly, int signature);

}  // namespace korvex
