#include "engine/invariants/arc_colouring.hpp"

#include <algorithm>
#include <cstddef>

#include "engine/diagram/place.hpp"

namespace korvex {
void ArcColouring::read(const GaussCode& closed) {
  arcs_ = static_cast<std::int32_t>(closed.size() / 2);
  course_ = Course(closed.size() / 2);
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
  gain_.assign(first_over_.begin(), first_over_.end() - 1);  // where the next one goes
  for (std::int32_t k = 0; k < arcs_; ++k) over_[at(gain_[at(crossings_[at(k)].over)]++)] = k;
}

void ArcColouring::plan(const GaussCode& closed) {
  read(closed);
  seeds_ = 0;
  steps_.clear();
  waiting_.clear();
  coloured_.assign(at(arcs_), 0);
  gain_.assign(at(arcs_), 0);
  for (auto& arcs : worth_) arcs.clear();
  if (arcs_ > 0) plant(arc_over_most());
  while (const auto seed = best_seed()) plant(*seed);
}

// Makes an arc a seed and colours all that follows from it.
void ArcColouring::plant(std::int32_t seed) {
  steps_.push_back({ColouringStep::Kind::kSeed, false, -1, seed, -1});
  ++seeds_;
  colour(seed);
  while (!waiting_.empty()) {
    const std::int32_t crossing = waiting_.back();
    waiting_.pop_back();
    look_at(crossing);
  }
}

// The crossings that the new arc takes part in may now give another, or would with one arc more.
// They may do so in the end as well: what an arc is worth never falls until it is coloured.
void ArcColouring::colour(std::int32_t arc) {
  coloured_[at(arc)] = 1;
  for (const std::int32_t crossing : {arc, before(arc)}) {
    waiting_.push_back(crossing);
    const std::int32_t other = crossing == arc ? next(arc) : crossing;
    if (!coloured_[at(other)]) raise(crossings_[at(crossing)].over);
  }
  for (std::int32_t k = first_over_[at(arc)]; k < first_over_[at(arc) + 1]; ++k) {
    const std::int32_t crossing = over_[at(k)];
    waiting_.push_back(crossing);
    if (coloured_[at(crossing)] || coloured_[at(next(crossing))]) continue;
    raise(crossing);
    raise(next(crossing));
  }
}

void ArcColouring::raise(std::int32_t arc) {
  if (coloured_[at(arc)]) return;
  const std::int32_t gain = ++gain_[at(arc)];
  worth_[std::min(at(gain), worth_.size()) - 1].push_back(arc);
}

void ArcColouring::look_at(std::int32_t number) {
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

std::int32_t ArcColouring::arc_over_most() const {
  std::int32_t best = 0;
  const auto passed = [&](std::int32_t arc) {
    return first_over_[at(arc) + 1] - first_over_[at(arc)];
  };
  for (std::int32_t arc = 1; arc < arcs_; ++arc)
    if (passed(arc) > passed(best)) best = arc;
  return best;
}

// An arc that lets most crossings give another arc at once, of equal ones that which was raised
// last: it is near to what is being coloured. There is one as long as any arc is left, for where
// the coloured part of the curve ends an arc that is not coloured passes over it.
std::optional<std::int32_t> ArcColouring::best_seed() {
  for (std::size_t k = worth_.size(); k-- > 0;) {
    std::vector<std::int32_t>& arcs = worth_[k];
    while (!arcs.empty()) {
      const std::int32_t arc = arcs.back();
      arcs.pop_back();
      if (!coloured_[at(arc)]) return arc;
    }
  }
  return std::nullopt;
}

}  // namespace korvex
