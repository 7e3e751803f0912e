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
  // True when no other knot is possible. Else the name says which type of the catalogue agrees in
  // all that could be computed.
  bool proven = false;
  std::size_t crossings = 0;  // of the simplest diagram found, no more than when simplified
  std::uint64_t alexander_key = 1;
  // Where there is no candidate and the diagram, which is no visible sum, has at most 200
  // crossings.
  std::optional<AlexanderPolynomial> alexander;
};

// The knot type of a diagram, which it simplifies first. "How sure a name is" in
// docs/conventions.md has the ladder of evidence: what is compared in which order, what proves a
// name, what is left open where a diagram is too large, and the sources. Answers are remembered
// where `run` says, which is else asked only whether to stop: Error(kCancelled). Any thread.
KORVEX_API KnotIdentity identify(const Diagram& diagram, Detail detail = Detail::kHand,
                                 const Run& run = {});

}  // namespace korvex
