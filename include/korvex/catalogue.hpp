// The catalogue: the unknot, the 249 prime knots to 10 crossings and all composite knots whose
// factors have 10 crossings together, each with both hands.
//
// Names are those of D. Rolfsen, Knots and Links (1976), with the Perko pair 10_161 = 10_162 merged
// and the later ones renumbered, so that the last is 10_165. A chiral knot has the sign of its hand
// in front: +3_1 is the right-handed trefoil. docs/conventions.md has the rule of hands;
// korvex/knot_name.hpp has names as values.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "korvex/diagram.hpp"
#include "korvex/export.hpp"
#include "korvex/homfly.hpp"
#include "korvex/jones.hpp"

namespace korvex {

enum class Chirality {
  kAmphichiral,  // the same as its mirror image; the name has no sign
  kChiral,       // the sign (of a composite knot those of its factors) tells the hand
};

struct KnotType {
  std::string name;   // with hands: +3_1, 4_1, +3_1#-3_1
  std::string plain;  // without: 3_1, 4_1, 3_1#3_1
  int crossings;      // crossing number: the fewest that a diagram can have
  Chirality chirality;
  int signature;  // -2 for +3_1
  std::int64_t determinant;
  std::vector<std::int64_t> alexander;  // coefficients, lowest power first, the first positive
  JonesPolynomial jones;
  HomflyPolynomial homfly;
  std::string gauss_code;  // of a diagram, as Diagram::of_gauss_code reads it

  KORVEX_API bool is_prime() const;
};

// All types by crossing number, primes first, each knot before its mirror image; the first is 0_1.
// Made at the first call, then the same for the life of the program. Any thread.
KORVEX_API std::span<const KnotType> catalogue();

// The types that a name means, in order; its factors may stand in any order, and one without a hand
// stands for either. None where the name is no name or means no type of the catalogue, as a choice
// between types does. Looks at no other types. Any thread.
KORVEX_API std::vector<const KnotType*> knot_types_named(std::string_view name);

// The first of these; nullptr if there is none.
KORVEX_API const KnotType* find_knot_type(std::string_view name);

}  // namespace korvex
