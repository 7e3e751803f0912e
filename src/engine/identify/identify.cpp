#include "engine/identify/identify.hpp"

#include <algorithm>
#include <map>
#include <mutex>
#include <unordered_map>
#include <utility>

#include "engine/diagram/prime_parts.hpp"
#include "engine/identify/canonical_code.hpp"
#include "engine/identify/diagram_search.hpp"
#include "engine/identify/identity_table.hpp"
#include "engine/invariants/of_codes.hpp"
#include "korvex/colourings.hpp"
#include "korvex/homfly.hpp"
#include "korvex/jones.hpp"
#include "korvex/knot_name.hpp"
#include "korvex/signature.hpp"

namespace korvex {
namespace {

constexpr std::size_t kCatalogueCrossings = 10;
constexpr std::size_t kJonesUnknotCrossings = 22;
constexpr std::size_t kMostCrossingsForPolynomial = 200;
constexpr std::size_t kMostCrossingsForSignature = 100;

// Of these, each type of the catalogue that shares its HOMFLY-PT polynomial and its signature with
// another, or with its mirror image, differs for some p; and so do most knots beyond it.
constexpr int kPrimesOfColourings[] = {5, 7, 11, 13};

using Candidates = std::vector<const KnotType*>;

// Types of the catalogue with a given Alexander key.
const Candidates& types_with_key(std::uint64_t key) {
  static const auto classes = [] {
    std::unordered_map<std::uint64_t, Candidates> by_key;
    for (const KnotType& type : catalogue())
      by_key[alexander_key_of(type.alexander)].push_back(&type);
    return by_key;
  }();
  static const Candidates none;
  const auto found = classes.find(key);
  return found == classes.end() ? none : found->second;
}

// Those of a type of the catalogue, found once.
const std::vector<std::int64_t>& colourings_of(const KnotType& type, int p) {
  static std::mutex mutex;
  static std::map<std::pair<const KnotType*, int>, std::vector<std::int64_t>> known;
  const std::lock_guard lock(mutex);
  const auto [found, is_new] = known.try_emplace({&type, p});
  if (is_new)
    found->second = parabolic_colourings(Diagram::of_gauss_code(type.gauss_code), p).value();
  return found->second;
}

// One of the candidates.
KnotName name_of(const Candidates& candidates, bool with_hands) {
  std::vector<KnotName> names;
  for (const KnotType* type : candidates)
    names.push_back(KnotName::parse(with_hands ? type->name : type->plain).value());
  return KnotName::one_of(names);
}

KnotName name_of_unknown(const KnotIdentity& identity) {
  if (!identity.alexander) return KnotName::unknown(identity.alexander_key);
  return KnotName::unknown(identity.alexander_key, identity.alexander->coefficients);
}

// One prime part of a diagram, on its way to its name.
class PartIdentification {
 public:
  PartIdentification(const GaussCode& code, Detail detail, const Run& run)
      : code_(code), with_hands_(detail == Detail::kHand), run_(run) {}

  KnotIdentity identify() {
    identity_.crossings = code_.size() / 2;
    identity_.evidence = Evidence::kAlexander;
    identity_.alexander_key = alexander_key(code_, run_);
    identity_.candidates = types_with_key(identity_.alexander_key);
    exclude_by_crossings();
    if (is_open()) compare_polynomials();
    if (is_open() && identity_.crossings <= kMostCrossingsForSignature) compare_signature();
    for (const int p : kPrimesOfColourings)
      if (is_open() && identity_.crossings <= kMostCrossingsForSignature) compare_colourings(p);
    if (identity_.candidates.empty()) {
      if (identity_.crossings <= kMostCrossingsForPolynomial)
        identity_.alexander = alexander_polynomial(code_, run_);
      identity_.name = name_of_unknown(identity_).text();
      return std::move(identity_);
    }
    identity_.name = name_of(identity_.candidates, with_hands_).text();
    identity_.proven = !is_open();
    return std::move(identity_);
  }

 private:
  template <class Fits>
  void keep(const Fits& fits) {
    std::erase_if(identity_.candidates, [&](const KnotType* type) { return !fits(*type); });
  }

  // No diagram has fewer crossings than its knot's crossing number, and an alternating one has no
  // more.
  void exclude_by_crossings() {
    const bool exact = is_alternating(code_);
    keep([&](const KnotType& type) {
      const auto crossings = static_cast<std::size_t>(type.crossings);
      return exact ? crossings == identity_.crossings && type.is_prime()
                   : crossings <= identity_.crossings;
    });
  }

  bool is_settled() const {
    const Candidates& left = identity_.candidates;
    return std::all_of(left.begin(), left.end(), [&](const KnotType* type) {
      return with_hands_ ? type == left.front() : type->plain == left.front()->plain;
    });
  }

  bool is_unknot_by_jones() const {
    return identity_.candidates.front()->crossings == 0 && has_polynomial_ &&
           identity_.crossings <= kJonesUnknotCrossings;
  }

  // Whether an invariant more could exclude candidates: as long as there are several, and where
  // knots beyond the catalogue may have the diagram, also the last.
  bool is_open() const {
    const bool complete = identity_.crossings <= kCatalogueCrossings;
    return !identity_.candidates.empty() && !(is_settled() && (complete || is_unknot_by_jones()));
  }

  void compare_polynomials() {
    has_polynomial_ = true;
    if (const auto p = homfly(code_, run_)) {
      identity_.evidence = Evidence::kHomfly;
      keep([&](const KnotType& type) { return type.homfly == *p; });
    } else if (const auto v = jones(code_, run_)) {
      identity_.evidence = Evidence::kJones;
      keep([&](const KnotType& type) { return type.jones == *v; });
    } else {
      has_polynomial_ = false;
      with_hands_ = false;
    }
  }

  void compare_signature() {
    identity_.evidence = Evidence::kSignature;
    const int s = signature(code_, run_);
    keep([&](const KnotType& type) { return type.signature == s; });
  }

  void compare_colourings(int p) {
    const auto counts = parabolic_colourings(code_, p, run_);
    if (!counts) return;
    identity_.evidence = Evidence::kColourings;
    keep([&](const KnotType& type) { return colourings_of(type, p) == *counts; });
  }

  const GaussCode& code_;
  bool with_hands_;
  const Run& run_;
  bool has_polynomial_ = false;  // HOMFLY-PT or Jones
  KnotIdentity identity_;
};

KnotIdentity unknot() {
  KnotIdentity identity;
  identity.candidates = {&catalogue().front()};
  identity.name = identity.candidates.front()->name;
  identity.proven = true;
  return identity;
}

// What the parts of a diagram have in common with the whole.
void add_part(KnotIdentity& whole, const KnotIdentity& part) {
  whole.crossings += part.crossings;
  whole.evidence = std::max(whole.evidence, part.evidence);
  whole.proven = whole.proven && part.proven;
}

struct Summand {
  KnotName name;
  KnotIdentity identity;
};

// A factor, by its name, of a part whose diagram does not show it.
KnotIdentity hidden_factor(const KnotName& name, const KnotIdentity& part) {
  KnotIdentity factor;
  factor.name = name.text();
  factor.candidates = knot_types_named(factor.name);
  const KnotType& type = *factor.candidates.front();
  factor.crossings = static_cast<std::size_t>(type.crossings);
  factor.evidence = part.evidence;
  factor.proven = part.proven;
  factor.alexander_key = alexander_key_of(type.alexander);
  return factor;
}

// Adds a part; one that is composite though its diagram does not show it by its factors.
void add_summands(std::vector<Summand>& summands, KnotIdentity part) {
  KnotName name = KnotName::parse(part.name).value();
  if (name.is_choice() || name.factors().size() < 2) {
    summands.push_back({std::move(name), std::move(part)});
    return;
  }
  for (KnotName& factor : name.factors()) {
    KnotIdentity identity = hidden_factor(factor, part);
    summands.push_back({std::move(factor), std::move(identity)});
  }
}

KnotIdentity sum_of(std::vector<KnotIdentity> parts) {
  // A part may turn out to be the unknot, or seem to be.
  KnotIdentity unknots = unknot();
  std::erase_if(parts, [&](const KnotIdentity& part) {
    const bool nothing = part.name == unknots.name;
    if (nothing) add_part(unknots, part);
    return nothing;
  });
  if (parts.empty()) return unknots;
  if (parts.size() == 1) {
    add_part(parts.front(), unknots);
    return std::move(parts.front());
  }
  KnotIdentity sum;
  sum.proven = true;
  add_part(sum, unknots);
  std::vector<Summand> summands;
  for (KnotIdentity& part : parts) {
    add_part(sum, part);
    sum.alexander_key = alexander_key_of_sum(sum.alexander_key, part.alexander_key);
    add_summands(summands, std::move(part));
  }
  std::stable_sort(summands.begin(), summands.end(),
                   [](const Summand& a, const Summand& b) { return a.name < b.name; });
  std::vector<KnotName> names;
  for (Summand& summand : summands) {
    names.push_back(std::move(summand.name));
    sum.summands.push_back(std::move(summand.identity));
  }
  sum.name = KnotName::sum(names).text();
  sum.candidates = knot_types_named(sum.name);
  return sum;
}

bool may_be_simpler(const GaussCode& part, const KnotIdentity& identity) {
  constexpr std::size_t kMostCrossings = 40;
  return !identity.proven && identity.crossings <= kMostCrossings && !is_alternating(part);
}

KnotIdentity identify_anew(const GaussCode& code, Detail detail, const Run& run) {
  std::vector<KnotIdentity> summands;
  for (const GaussCode& part : prime_parts(code, run)) {
    KnotIdentity summand = PartIdentification(part, detail, run).identify();
    if (!may_be_simpler(part, summand)) {
      summands.push_back(std::move(summand));
      continue;
    }
    for (const GaussCode& simpler : searched_parts(part, run))
      summands.push_back(PartIdentification(simpler, detail, run).identify());
  }
  return sum_of(std::move(summands));
}

}  // namespace

KnotIdentity Identification::operator()(const GaussCode& closed) const {
  constexpr std::size_t kMostCrossingsToTurn = 64;
  const std::size_t crossings = closed.size() / 2;
  if (crossings <= 2) return unknot();
  // What is found, and which polynomials were in reach, must not depend on which code of a diagram
  // came first.
  const GaussCode code = crossings > kMostCrossingsToTurn ? closed : canonical_diagram(closed);
  std::string key;
  write_key(code, detail == Detail::kHand ? KeyOf::kHandOfClosed : KeyOf::kTypeOfClosed, key);
  if (auto known = cache.table().find(key)) return *std::move(known);
  KnotIdentity identity = identify(code);
  cache.table().keep(key, identity);
  return identity;
}

Identification usual_identification(const Run& run, Detail detail) {
  return {[detail, asked = Run{.stop = run.stop}](const GaussCode& code) {
            return identify_anew(code, detail, asked);
          },
          identities_of(run), detail};
}

KnotIdentity identify(const Diagram& diagram, Detail detail, const Run& run) {
  return usual_identification(run, detail)(diagram.simplified(run).code());
}

}  // namespace korvex
