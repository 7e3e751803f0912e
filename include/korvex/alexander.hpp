// The Alexander polynomial of a knot.
//
// Convention: D(t) = D(1/t), D(1) = 1; the trefoil has t - 1 + 1/t. Written as coefficients it is
// shifted to begin with the constant term and its sign is chosen so that that term is positive, as
// knot tables do: 1 -1 1.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "korvex/diagram.hpp"
#include "korvex/export.hpp"
#include "korvex/run.hpp"

namespace korvex {

// D(t) D(1/t) modulo the prime 2^61 - 1 at one fixed t: the same for every diagram of a knot and
// for its mirror image, 1 for the unknot, and another for another Alexander polynomial but for
// chance of about 2^-50. O(n w^2) for n crossings at worst, where a sweep over the diagram has w
// generators open at a time: a few in simplified diagrams of random knots, about sqrt(n) in a
// tangle without parts. Of `run` it asks only whether to stop: Error(kCancelled). Any thread.
//
// Source: colouring moves, R. Blair, A. Kjuchukova, R. Velazquez and P. Villanueva, Comm. Anal.
// Geom. 28, 105 (2020), applied to the Alexander quandle, D. Joyce, J. Pure Appl. Algebra 23, 37
// (1982).
KORVEX_API std::uint64_t alexander_key(const Diagram& diagram, const Run& run = {});

// The key of a polynomial with the given coefficients, lowest power first.
KORVEX_API std::uint64_t alexander_key_of(std::span<const std::int64_t> coefficients);

// The key of the connected sum of two knots with the given keys.
KORVEX_API std::uint64_t alexander_key_of_sum(std::uint64_t a, std::uint64_t b);

// Coefficients of any size.
struct KORVEX_API AlexanderPolynomial {
  std::vector<std::string> coefficients;  // decimal, lowest power first, the first positive

  // The same as numbers, unless one does not fit into 64 bits.
  std::optional<std::vector<std::int64_t>> small_coefficients() const;
  // |D(-1)|, decimal.
  std::string determinant() const;

  friend bool operator==(const AlexanderPolynomial&, const AlexanderPolynomial&) = default;
};

// The polynomial over the integers, proven for every diagram. The diagram is simplified
// and taken apart into its visible summands. For a summand of n crossings, w as above and g <= n/2
// the genus of its Seifert surface about g n/61 determinants of O(n w^2) at worst: less than a
// millisecond for 100 crossings, ten seconds for a tangle of 1000 without parts, a fraction of a
// second for the torus knot T(3, 500) and for the composite knots of long chains. Uses run.threads,
// reports no progress and throws Error(kCancelled) when stopped. Any thread.
//
// Source: values modulo primes below 2^62, Newton's interpolation, Chinese remainders; L. H.
// Kauffman, Formal Knot Theory (1983), for the bound on coefficients.
KORVEX_API AlexanderPolynomial alexander_polynomial(const Diagram& diagram, const Run& run = {});

}  // namespace korvex
