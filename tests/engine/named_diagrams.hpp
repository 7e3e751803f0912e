// Identifications of diagrams by a name alone, with a cache of their own.
#pragma once

#include <functional>
#include <string>

#include "engine/identify/identify.hpp"

namespace korvex {

class NamedDiagrams {
 public:
  explicit NamedDiagrams(std::function<std::string(const GaussCode& closed)> name,
                         bool proven = true)
      : identification_{[name, proven](const GaussCode& closed) {
                          KnotIdentity identity;
                          identity.name = name(closed);
                          identity.proven = proven;
                          return identity;
                        },
                        cache_} {}

  operator const Identification&() const { return identification_; }

 private:
  IdentityCache cache_;
  Identification identification_;
};

}  // namespace korvex
