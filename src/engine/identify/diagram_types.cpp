#include "engine/identify/diagram_types.hpp"

#include <utility>

#include "engine/diagram/code_closure.hpp"
#include "engine/identify/canonical_code.hpp"

namespace korvex {

const DiagramType& DiagramTypes::of_open(const GaussCode& reduced, const Run& run) {
  constexpr std::size_t kFewestKnottedPassages = 4;
  if (reduced.size() < kFewestKnottedPassages) return type_ = {};
  write_key(reduced, KeyOf::kOpenCode, key_);
  IdentityTable& known = identification_.cache.table();
  if (known.find(key_, type_)) return type_;
  of_closed(closed_over(reduced), run);
  known.keep(key_, type_);
  return type_;
}

const DiagramType& DiagramTypes::of_closed(GaussCode code, const Run& run) {
  constexpr std::size_t kFewestKnottedPassages = 6;
  pass_moves_.simplify(code, reduction_, run);
  const auto crossings = static_cast<std::int32_t>(code.size() / 2);
  if (code.size() < kFewestKnottedPassages) {
    type_ = {};
  } else {
    KnotIdentity identity = identification_(code);
    type_.name = std::move(identity.name);
    type_.proven = identity.proven;
  }
  type_.crossings = crossings;
  return type_;
}

}  // namespace korvex
