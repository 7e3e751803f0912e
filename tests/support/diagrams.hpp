// Diagrams of known knots, as signed Gauss codes in text: O1+U2+O3+U1+O2+U3+ is a right-handed
// trefoil.
#pragma once

#include <string>
#include <vector>

namespace support {

// The odd pretzel knot P(p, q, r): three columns of half twists side by side, the crossings of
// positive ones positive. P(1, 1, 1) is a right-handed trefoil, P(1, 1, -3) a figure eight. Its
// Alexander polynomial is 1 if pq + qr + rp = -1.
std::string odd_pretzel(int p, int q, int r);

// The closure of a braid on so many strands, which must be a knot. Letter i > 0 is a positive
// crossing of the strands at places i and i+1, -i its inverse.
std::string closed_braid(int strands, const std::vector<int>& word);

// The right-handed torus knot T(p, q), gcd(p, q) = 1, as a closed braid on p strands.
std::string torus_knot_code(int p, int q);

}  // namespace support
