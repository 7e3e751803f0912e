#include "engine/invariants/colouring.hpp"

#include <algorithm>
#include <cstddef>

namespace korvex {
namespace {

std::size_t at(std::int32_t number) { return static_cast<std::size_t>(number); }

}  // namespace

void Colouring::read(const GaussCode& closed) {
  arcs_ = static_cast<std::int32_t>(closed.size() / 2);
  under_.resize(closed.size());
  std::int32_t under = 0;
  for (std::size_t k = 0; k < closed.size(); ++k) {
    under_[k] = under;
    if (!closed[k].over) ++under;
  }
  crossings_.resize(at(arcs_));
  first_over_.assign(at(arcs_) + 1, 0);
  for (std::size_t k = 0; k < closed.size(); ++k) {
    if (closed[k].over) continue;
    const std::int32_t begun = under_[at(closed[k].mate)];
    const std::int32_t over = begun < arcs_ ? begun : 0;
    crossings_[at(under_[k])] = {over, closed[k].positive, false};
    ++first_over_[at(over) + 1];
  }
  for (std::size_t arc = 0; arc < at(arcs_); ++arc) first_over_[arc + 1] += first_over_[arc];
  over_.resize(at(arcs_));
  gain_.assign(first_over_.begin(), first_over_.end() - 1);
  for (std::int32_t k = 0; k < arcs_; ++k) over_[at(gain_[at(crossings_[at(k)].over)]++)] = k;
}

void Colouring::plan(const GaussCode& closed) {
  read(closed);
  seeds_ = 0;
  steps_.clear();
  coloured_.assign(at(arcs_), 0);
  waiting_.clear();
  for (std::int32_t coloured = 0; coloured < arcs_;) {
    const std::int32_t seed = best_seed();
    steps_.push_back({ColouringStep::Kind::kSeed, false, -1, seed, -1});
    ++seeds_;
    colour(seed);
    const std::size_t before = steps_.size();
    ++coloured;
    while (!waiting_.empty()) {
      const std::int32_t crossing = waiting_.back();
      waiting_.pop_back();
      look_at(crossing);
    }
    for (std::size_t k = before; k < steps_.size(); ++k)
      if (steps_[k].kind != ColouringStep::Kind::kEquation) ++coloured;
  }
}

// The crossings that the new arc takes part in may now give another.
void Colouring::colour(std::int32_t arc) {
  coloured_[at(arc)] = 1;
  waiting_.push_back(arc);
  waiting_.push_back(arc > 0 ? arc - 1 : arcs_ - 1);
  for (std::int32_t k = first_over_[at(arc)]; k < first_over_[at(arc) + 1]; ++k)
    waiting_.push_back(over_[at(k)]);
}

void Colouring::look_at(std::int32_t number) {
  Crossing& crossing = crossings_[at(number)];
  if (crossing.used || !coloured_[at(crossing.over)]) return;
  const std::int32_t out = next(number);
  const bool in_known = coloured_[at(number)] != 0;
  const bool out_known = coloured_[at(out)] != 0;
  if (!in_known && !out_known) return;
  crossing.used = true;
  using Kind = ColouringStep::Kind;
  const Kind kind = in_known && out_known ? Kind::kEquation
                    : in_known            ? Kind::kForward
                                          : Kind::kBackward;
  steps_.push_back({kind, crossing.positive, number, out, crossing.over});
  if (kind == Kind::kForward) colour(out);
  if (kind == Kind::kBackward) colour(number);
}

// The arc that lets most crossings give another arc at once; the first one passes over most.
std::int32_t Colouring::best_seed() {
  gain_.assign(at(arcs_), 0);
  for (std::int32_t k = 0; k < arcs_; ++k) {
    const Crossing& crossing = crossings_[at(k)];
    const std::int32_t out = next(k);
    const bool under = coloured_[at(k)] != 0 || coloured_[at(out)] != 0;
    if (coloured_[at(crossing.over)]) {
      if (under) continue;
      gain_[at(k)] += 2;
      gain_[at(out)] += 2;
    } else {
      gain_[at(crossing.over)] += under ? 2 : seeds_ == 0 ? 1 : 0;
    }
  }
  std::int32_t best = -1;
  for (std::int32_t arc = 0; arc < arcs_; ++arc)
    if (!coloured_[at(arc)] && (best < 0 || gain_[at(arc)] > gain_[at(best)])) best = arc;
  return best;
}

}  // namespace korvex
