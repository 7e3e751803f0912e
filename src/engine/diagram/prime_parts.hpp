// A closed diagram taken apart where a circle meets it in two strands.
#pragma once

#include <vector>

#include "korvex/gauss_code.hpp"
#include "korvex/run.hpp"

namespace korvex {

// Diagrams whose knots have the given code's knot as their connected sum. Each is left as it is by
// pass moves, has at least 3 crossings, and no circle that meets it in two strands has crossings on
// both sides. Empty for what these moves show to be the unknot. The given code must be simplified
// already. O(length^2). Of `run` it asks only whether to stop.
std::vector<GaussCode> prime_parts(const GaussCode& simplified, const Run& run = {});

// Over and under in turn along the curve. Such a diagram, if it is a prime part, has as many
// crossings as its knot's crossing number (L. H. Kauffman; K. Murasugi; M. B. Thistlethwaite, all
// Topology 26, 1987), and its knot is prime (W. Menasco, Topology 23, 37 (1984)).
bool is_alternating(const GaussCode& closed);

}  // namespace korvex
