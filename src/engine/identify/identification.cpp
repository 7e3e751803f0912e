#include "engine/identify/identification.hpp"

#include "engine/identify/identify.hpp"

namespace korvex {

IdentifiedName identified_name(const GaussCode& closed) {
  KnotIdentity identity = identify_simplified(closed);
  return {std::move(identity.name), identity.proven};
}

}  // namespace korvex
