// Colourings of a knot by parabolic elements of PSL(2, p).
//
// They tell apart what the polynomials do not: knots that share their HOMFLY-PT polynomial and
// signature, and the hands of knots whose polynomials are symmetric.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "korvex/diagram.hpp"
#include "korvex/export.hpp"
#include "korvex/run.hpp"

namespace korvex {

// Element k, 0 <= k < p, is the number of homomorphisms from the knot's group to PSL(2, p) that
// take one meridian to the class of x = [[1, 1], [0, 1]] and its longitude to x^k. The meridian
// links the knot once, positively; the longitude runs along the knot and does not link it.
//
// The right-handed trefoil has 1 0 0 0 5 for p = 5 and the unknot 1 0 0 0 0. The sense of the curve
// makes no difference, the mirror image has -k in place of k, and a connected sum the sums of all
// pairs of k.
//
// p is an odd prime up to 31; Error(kInvalidArgument) otherwise. Nothing where the diagram is too
// large: where the search takes more than 10 million steps, from crossing to crossing while arcs
// are coloured and again along the longitude of every homomorphism found. For a diagram of n
// crossings that b arcs generate it takes fewer than 2n (p^2/2)^(b-1), and b is 3 for most diagrams
// of 10 crossings. Of `run` it asks only whether to stop: Error(kCancelled). Any thread.
//
// Sources: R. Riley, Proc. London Math. Soc. 24, 217 (1972), for parabolic representations; M.
// Eisermann, Pacific J. Math. 231, 305 (2007), for counting colourings by their longitudes.
KORVEX_API std::optional<std::vector<std::int64_t>> parabolic_colourings(const Diagram& diagram,
                                                                         int p,
                                                                         const Run& run = {});

}  // namespace korvex
