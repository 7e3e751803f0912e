// The knot types of reduced diagrams, as votes and fingerprints count them.
#pragma once

#include <string>

#include "engine/diagram/code_reduction.hpp"
#include "engine/diagram/pass_moves.hpp"
#include "engine/identify/identify.hpp"
#include "engine/identify/identity_table.hpp"

namespace korvex {

// One thread's way to them. A reduced open code is looked up as it is, and where it is new again
// when pass moves have brought it to its fewest crossings; what is left is identified.
class DiagramTypes {
 public:
  // The identification must outlive this object.
  explicit DiagramTypes(const Identification& identification) : identification_(identification) {}

  // The type that a reduced open code has when both ends are led to the viewer. Asks before each
  // pass move whether to stop. The reference is good until the next question.
  const DiagramType& of_open(const GaussCode& reduced, const Run& run);
  // The type of a closed code.
  const DiagramType& of_closed(GaussCode code, const Run& run);

 private:
  const Identification& identification_;
  CodeReduction reduction_;
  PassMoves pass_moves_;
  std::string key_;
  DiagramType type_;
};

}  // namespace korvex
