// The names of closed braids: a mirror image has the other hand, other diagrams of the knot do not
// contradict one another, a sum has the names of its summands.
#include <algorithm>
#include <string>

#include "knots.hpp"
#include "korvex/identify.hpp"
#include "korvex/knot_name.hpp"
#include "points.hpp"

namespace {

using fuzz::require;
using korvex::Detail;
using korvex::Diagram;
using korvex::KnotIdentity;
using korvex::KnotName;
using korvex::KnotType;

bool holds(const KnotIdentity& identity, const KnotType* type) {
  const auto& all = identity.candidates;
  return std::find(all.begin(), all.end(), type) != all.end();
}

void check_one(const Diagram& diagram, const KnotIdentity& identity) {
  require(!identity.name.empty());
  require(identity.crossings <= diagram.crossings());
  require(identity.alexander_key == korvex::alexander_key(diagram));
  if (identity.candidates.empty() && identity.summands.empty()) require(identity.name[0] == '?');
  if (identity.crossings <= 10) require(identity.proven && identity.candidates.size() == 1);
  const KnotName name = KnotName::parse(identity.name).value();
  require(name.text() == identity.name);
  const auto choices = KnotName::parse(identify(diagram, Detail::kType).name).value().choices();
  for (const KnotType* type : identity.candidates)
    require(std::find(choices.begin(), choices.end(), KnotName::parse(type->plain)) !=
            choices.end());
}

// No two diagrams of one knot exclude what the other proves.
void check_same(const KnotIdentity& a, const KnotIdentity& b) {
  require(a.alexander_key == b.alexander_key);
  if (a.proven && b.proven) require(a.name == b.name);
  if (a.proven && a.candidates.size() == 1) require(holds(b, a.candidates.front()));
  if (b.proven && b.candidates.size() == 1) require(holds(a, b.candidates.front()));
}

void check_mirror(const KnotIdentity& own, const KnotIdentity& image) {
  require(own.proven == image.proven);
  require(own.candidates.size() == image.candidates.size());
  for (const KnotType* type : own.candidates) {
    require(std::any_of(image.candidates.begin(), image.candidates.end(), [&](const auto* other) {
      return other->plain == type->plain && other->jones == mirror(type->jones) &&
             (other == type) == (type->chirality == korvex::Chirality::kAmphichiral);
    }));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Bytes bytes(data, size);
  const fuzz::Braid braid = fuzz::braid(bytes, 5, 16);
  fuzz::Braid moved = braid;
  for (int k = 0; k < 3; ++k) moved = fuzz::moved(std::move(moved), bytes);
  const Diagram diagram = braid.closed();
  const KnotIdentity identity = identify(diagram);
  check_one(diagram, identity);
  require(identify(diagram.reversed()).name == identity.name || !identity.proven);
  check_same(identity, identify(diagram.reversed()));
  check_same(identity, identify(moved.closed()));
  check_mirror(identity, identify(diagram.mirror()));
  const Diagram trefoil = Diagram::of_gauss_code("O1+U2+O3+U1+O2+U3+");
  const KnotIdentity sum = identify(trefoil.connected_sum(diagram));
  if (identity.proven && identity.candidates.size() == 1 && sum.proven)
    require(identity.name == "0_1" ? sum.name == "+3_1" : sum.summands.size() > 1);
  return 0;
}
