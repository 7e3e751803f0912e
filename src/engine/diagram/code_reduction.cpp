#include "engine/diagram/code_reduction.hpp"

#include <algorithm>
#include <cstdlib>

#include "engine/diagram/place.hpp"

namespace korvex {
namespace {

constexpr std::int32_t kGone = -1;

// Whether two passages that follow one another, and so do their mates, may be taken apart. A chain
// that is cut between those over the others begins or ends with a passage over something, from
// which its end can be pulled back; one cut between the others does not.
bool may_part(const GaussCode& code, std::int32_t place, std::int32_t after, PassageRange core) {
  const Passage& a = code[at(place)];
  const Passage& b = code[at(after)];
  if (a.over != b.over || a.positive == b.positive) return false;
  return a.over ? core.contains(a.mate) && core.contains(b.mate)
                : core.contains(place) && core.contains(after);
}

// Whether a code none of whose passages is gone allows a move of `place` with the one behind it.
bool allows_move(const GaussCode& code, std::int32_t place, PassageRange core) {
  const std::int32_t after = place + 1;
  if (at(after) >= code.size()) return false;
  const Passage& a = code[at(place)];
  if (a.mate == after) return true;
  return std::abs(a.mate - code[at(after)].mate) == 1 && may_part(code, place, after, core);
}

}  // namespace

void CodeReduction::reduce(GaussCode& code, PassageRange core, std::vector<std::int32_t>* beside) {
  link(code, Curve::kOpen);
  for (auto place = static_cast<std::int32_t>(code.size()); place >= 0; --place)
    waiting_.push_back(place);
  finish(code, core, beside);
}

void CodeReduction::reduce(GaussCode& code, PassageRange core, std::vector<std::int32_t>* beside,
                           std::span<const std::int32_t> fresh) {
  if (code.empty()) return;
  const bool at_an_end = code.front().over || code.back().over;
  if (!at_an_end && std::none_of(fresh.begin(), fresh.end(), [&](std::int32_t place) {
        return allows_move(code, place, core);
      }))
    return;
  link(code, Curve::kOpen);
  waiting_.assign(fresh.rbegin(), fresh.rend());
  finish(code, core, beside);
}

void CodeReduction::finish(GaussCode& code, PassageRange core, std::vector<std::int32_t>* beside) {
  pull_back_ends(code);
  while (!waiting_.empty()) {
    do_waiting_moves(code, core);
    pull_back_ends(code);
  }
  compact(code, beside);
}

void CodeReduction::reduce_closed(GaussCode& code) {
  if (code.empty()) return;
  link(code, Curve::kClosed);
  for (auto place = static_cast<std::int32_t>(code.size()) - 1; place >= 0; --place)
    waiting_.push_back(place);
  do_waiting_moves(code, {});
  compact(code, nullptr);
}

void CodeReduction::link(const GaussCode& code, Curve curve) {
  const Course course(code.size(), curve);
  const std::size_t ring = course.strands();
  next_.resize(ring);
  previous_.resize(ring);
  waiting_.clear();
  for (std::size_t k = ring; k-- > 0;) {
    next_[k] = static_cast<std::int32_t>(course.strand_after(k));
    previous_[at(next_[k])] = static_cast<std::int32_t>(k);
  }
}

void CodeReduction::do_waiting_moves(const GaussCode& code, PassageRange core) {
  while (!waiting_.empty()) {
    const std::int32_t place = waiting_.back();
    waiting_.pop_back();
    try_moves_at(code, place, core);
  }
}

void CodeReduction::take_out(std::int32_t place) {
  const std::int32_t before = previous_[at(place)];
  const std::int32_t after = next_[at(place)];
  next_[at(before)] = after;
  previous_[at(after)] = before;
  next_[at(place)] = kGone;
  waiting_.push_back(before);
}

void CodeReduction::take_out_crossing(const GaussCode& code, std::int32_t place) {
  take_out(code[at(place)].mate);
  take_out(place);
}

void CodeReduction::try_moves_at(const GaussCode& code, std::int32_t place, PassageRange core) {
  const auto sentinel = static_cast<std::int32_t>(code.size());
  if (place == sentinel || next_[at(place)] == kGone) return;
  const std::int32_t after = next_[at(place)];
  if (after == sentinel) return;
  const Passage& a = code[at(place)];
  const Passage& b = code[at(after)];
  if (a.mate == after) {
    take_out_crossing(code, place);
    return;
  }
  if (!may_part(code, place, after, core)) return;
  if (next_[at(a.mate)] != b.mate && next_[at(b.mate)] != a.mate) return;
  take_out_crossing(code, place);
  take_out_crossing(code, after);
}

void CodeReduction::pull_back_ends(const GaussCode& code) {
  const std::size_t sentinel = code.size();
  for (const bool from_beginning : {true, false}) {
    while (true) {
      const std::int32_t end = from_beginning ? next_[sentinel] : previous_[sentinel];
      if (at(end) == sentinel || !code[at(end)].over) break;
      take_out_crossing(code, end);
    }
  }
}

void CodeReduction::compact(GaussCode& code, std::vector<std::int32_t>* beside) {
  const std::size_t size = code.size();
  moved_.resize(size);
  std::size_t count = 0;
  for (std::size_t k = 0; k < size; ++k) {
    if (next_[k] == kGone) continue;
    moved_[k] = static_cast<std::int32_t>(count);
    Passage passage = code[k];
    if (at(passage.mate) < k) {
      passage.mate = moved_[at(passage.mate)];
      code[at(passage.mate)].mate = static_cast<std::int32_t>(count);
    }
    if (beside) (*beside)[count] = (*beside)[k];
    code[count++] = passage;
  }
  code.resize(count);
  if (beside) beside->resize(count);
}

}  // namespace korvex
