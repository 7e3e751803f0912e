// How closed codes get their names where votes are counted.
#pragma once

#include <string>
#include <utility>

#include "korvex/gauss_code.hpp"

namespace korvex {

struct IdentifiedName {
  // Takes a name alone, too.
  IdentifiedName(std::string type, bool is_proven = true)
      : name(std::move(type)), proven(is_proven) {}

  std::string name;
  bool proven;  // no other knot is possible
};

// What KnotIdentity tells, with hands, of a code that pass moves leave as it is.
IdentifiedName identified_name(const GaussCode& closed);

}  // namespace korvex
