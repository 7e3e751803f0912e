// From a diagram to the name of its knot.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "korvex/alexander.hpp"
#include "korvex/catalogue.hpp"
#include "korvex/diagram.hpp"
#include "korvex/export.hpp"
#include "korvex/run.hpp"

namespace korvex {

enum class Detail {
  kType,  // 3_1
  kHand,  // +3_1
};

// What decided, each after those before it.
enum class Evidence {
  kDiagram,     // a diagram of at most 2 crossings is the unknot's
  kAlexander,   // the Alexander key
  kJones,       // the Jones polynomial, where the diagram is too large for HOMFLY-PT
  kHomfly,      // the HOMFLY-PT polynomial
  kSignature,   // the signature, where a polynomial leaves the answer open
  kColourings,  // parabolic colourings, where the signature leaves it open, too
};

struct KORVEX_API KnotIdentity {
  // 0_1, +3_1, 4_1, +3_1#-3_1; several candidates as +8_16|+10_156. Where there is none, `?` and
  // the Alexander polynomial, as ?1-5+7-5+1, or its key in hexadecimal, as ?key:1f00ba5, where the
  // polynomial takes more than 40 characters or was not computed.
  std::string name;
  // The types of the catalogue that the diagram may be of, in its order; none when all are
  // excluded.
  std::vector<const KnotType*> candidates;
  // Where the simplest diagram found is visibly a connected sum: its summands, by name. They may be
  // known where the sum has too many crossings for the catalogue; its name is then made of theirs.
  std::vector<KnotIdentity> summands;
  Evidence evidence = Evidence::kDiagram;
  // True when no other knot is possible. That is so where the one candidate left has a diagram of
  // at most 10 crossings, since the catalogue is complete there; for a sum of such; and for the
  // unknot where a diagram of at most 22 crossings has Jones polynomial 1 (R. E. Tuzun and A. S.
  // Sikora, J. Knot Theory Ramif. 27, 1840009 (2018)). Else the name says which type to 10
  // crossings agrees in all of its Alexander, HOMFLY-PT or Jones polynomials, signature and
  // parabolic colourings for p = 5, 7, 11, 13 that could be computed.
  bool proven = false;
  std::size_t crossings = 0;  // of the simplest diagram found, no more than when simplified
  std::uint64_t alexander_key = 1;
  // Where there is no candidate and the diagram, which is no visible sum, has at most 200
  // crossings.
  std::optional<AlexanderPolynomial> alexander;
};

// The knot type of a diagram. Simplifies it first; where that leaves a prime part of 11 to 40
// crossings whose type is not proven, looks through about 100 diagrams that moves III lead to for
// one that can be simplified further or shows a connected sum. The Alexander key leaves a few types
// of the catalogue, or none; HOMFLY-PT, or Jones where the diagram is too large for that, tells
// them and their hands apart; where types still agree the signature may, and then the parabolic
// colourings for p = 5, 7, 11: together these tell all types of the catalogue apart. A diagram of
// more than 10 crossings may be of a knot that the catalogue lacks: even a single type then has to
// agree in all of these, as far as the diagram is not too large for them. An alternating diagram
// that cannot be simplified shows the crossing number of its knot and excludes all other types. A
// diagram too large for both polynomials keeps the types that are left without their hands. An
// Alexander polynomial 1 alone is never taken for the unknot: such a diagram is 0_1 by HOMFLY-PT or
// Jones, or where it is too large for both, 0_1 that is not proven. Answers are remembered by Gauss
// code. Of `run` it asks only whether to stop: Error(kCancelled). Any thread.
KORVEX_API KnotIdentity identify(const Diagram& diagram, Detail detail = Detail::kHand,
                                 const Run& run = {});

}  // namespace korvex
