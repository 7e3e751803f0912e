#include "engine/diagram/pass_moves.hpp"

#include <algorithm>
#include <optional>

#include "engine/diagram/course.hpp"
#include "engine/diagram/place.hpp"
#include "engine/run/parallel.hpp"

namespace korvex {
namespace {

// The old way of a stretch over everything, of passages first..last, and the new one must bound a
// disc that no end is in. So they must not meet between the ends of the stretch, nor meet what lies
// outside the core: an end may be anywhere on that.
PlaneDiagram::Bounds bounds_over(std::size_t first, std::size_t last, PassageRange core) {
  PlaneDiagram::Bounds bounds{{std::min(first, core.begin + 1), std::max(last + 1, core.end - 1)},
                              {}};
  if (first < last) bounds.but_not = {first + 1, last};
  return bounds;
}

// Crossings of a stretch over everything with strands that it crosses from left to right, less the
// others. A way with the same ends has both ends of the chain on one side of the two ways together
// where it has the same balance: the chain leads from the one end to the other.
std::int32_t balance(const GaussCode& code, std::size_t first, std::size_t last) {
  std::int32_t balance = 0;
  for (std::size_t k = first; k <= last; ++k) balance += code[k].positive ? 1 : -1;
  return balance;
}

}  // namespace

void PassMoves::simplify(GaussCode& code, CodeReduction& reduction, const Run& run) {
  reduction.reduce_closed(code);
  resume_ = 0;
  while (shorten_some_stretch(code, run)) reduction.reduce_closed(code);
}

void PassMoves::simplify_core(GaussCode& code, std::vector<std::int32_t>& beside, std::int32_t from,
                              std::int32_t to, CodeReduction& reduction, const Run& run) {
  const auto passage_from = [&](std::int32_t number) {
    return static_cast<std::size_t>(std::lower_bound(beside.begin(), beside.end(), number) -
                                    beside.begin());
  };
  const auto core = [&] { return PassageRange{passage_from(from), passage_from(to)}; };
  while (shorten_in_core(code, beside, core(), run)) reduction.reduce(code, core(), &beside);
}

bool PassMoves::shorten_in_core(GaussCode& code, std::vector<std::int32_t>& beside,
                                PassageRange core, const Run& run) {
  constexpr std::size_t kFewest = 3;
  if (core.end < core.begin + kFewest) return false;
  throw_if_cancelled(run);
  diagram_.draw(code, Curve::kOpen);
  const auto may_move = [&](std::size_t k) { return !code[k].over || core.contains(code[k].mate); };
  for (std::size_t first = core.begin, end = 0; first < core.end;
       first = std::max(end, first + 1)) {
    end = first;
    while (end < core.end && code[end].over == code[first].over && may_move(end)) ++end;
    if (end > first && shorten_stretch(code, beside, first, end - 1, core)) return true;
  }
  return false;
}

bool PassMoves::shorten_stretch(GaussCode& code, std::vector<std::int32_t>& beside,
                                std::size_t first, std::size_t last, PassageRange core) {
  const bool over = code[first].over;
  std::optional<PlaneDiagram::Bounds> bounds;
  if (over) bounds = bounds_over(first, last, core);
  const auto way =
      diagram_.way(first, last + 1, last - first, PlaneDiagram::Strands{first, last + 1}, bounds);
  if (!way) return false;
  if (over && balance(code, first, last) != diagram_.balance()) return false;
  lay_anew(code, first, last, *way, &beside);
  return true;
}

// Turns the code so that no stretch runs from its end on to its beginning.
void PassMoves::start_at_a_stretch(GaussCode& code) {
  std::size_t turn = 0;
  while (code[turn].over == code.back().over) ++turn;
  const std::size_t size = code.size();
  old_.resize(size);
  for (std::size_t k = 0; k < size; ++k) {
    Passage& passage = old_[k];
    passage = code[k + turn < size ? k + turn : k + turn - size];
    const std::size_t mate = at(passage.mate);
    passage.mate = static_cast<std::int32_t>(mate >= turn ? mate - turn : mate + size - turn);
  }
  std::swap(code, old_);
}

bool PassMoves::shorten_some_stretch(GaussCode& code, const Run& run) {
  if (code.empty()) return false;
  if (code.front().over == code.back().over) start_at_a_stretch(code);
  diagram_.draw(code, Curve::kClosed);
  // Once round from where the last move was: what lies before it was tried in vain.
  std::size_t begin = std::min(resume_, code.size() - 1);
  while (begin > 0 && code[begin].over == code[begin - 1].over) --begin;
  return shorten_first(code, begin, code.size(), run) || shorten_first(code, 0, begin, run);
}

// Shortens the first stretch of those that begin in from..to-1 that can be.
bool PassMoves::shorten_first(GaussCode& code, std::size_t from, std::size_t to, const Run& run) {
  for (std::size_t first = from, last = 0; first < to; first = last + 1) {
    throw_if_cancelled(run);
    last = first;
    while (last + 1 < code.size() && code[last + 1].over == code[first].over) ++last;
    const std::size_t behind = Course(code.size()).strand_after(last);
    const auto way =
        diagram_.way(first, behind, last - first, PlaneDiagram::Strands{first, behind});
    if (!way) continue;
    lay_anew(code, first, last, *way);
    resume_ = first;
    return true;
  }
  return false;
}

void PassMoves::lay_anew(GaussCode& code, std::size_t first, std::size_t last,
                         std::span<const PlaneDiagram::Step> way,
                         std::vector<std::int32_t>* beside) {
  std::swap(old_, code);
  code.clear();
  if (beside) std::swap(old_beside_, *beside);
  if (beside) beside->clear();
  crossed_.assign(old_.size() + 1, -1);
  for (std::size_t step = 0; step < way.size(); ++step)
    crossed_[at(way[step].strand)] = static_cast<std::int32_t>(step);
  place_.resize(old_.size());
  met_.resize(way.size());
  const bool over = old_[first].over;
  const auto keep_number_of = [&](std::size_t passage) {
    if (beside) beside->push_back(old_beside_[passage]);
  };
  const auto next_place = [&] { return static_cast<std::int32_t>(code.size()); };
  const auto join = [&](std::int32_t a, std::int32_t b) {
    code[at(a)].mate = b;
    code[at(b)].mate = a;
  };
  std::int32_t stretch = -1;
  for (std::size_t strand = 0; strand <= old_.size(); ++strand) {
    if (const std::int32_t step = crossed_[strand]; step >= 0) {
      met_[at(step)] = next_place();
      code.push_back({-1, !over, way[at(step)].left_to_right == over});
      keep_number_of(strand == 0 ? 0 : strand - 1);
    }
    if (strand == first) {
      stretch = next_place();
      for (const PlaneDiagram::Step& step : way) {
        code.push_back({-1, over, step.left_to_right == over});
        keep_number_of(first);
      }
    }
    if (strand == old_.size()) break;
    const std::size_t mate = at(old_[strand].mate);
    const auto in_stretch = [&](std::size_t k) { return first <= k && k <= last; };
    if (in_stretch(strand) || in_stretch(mate)) continue;
    place_[strand] = next_place();
    code.push_back(old_[strand]);
    keep_number_of(strand);
    if (mate < strand) join(place_[mate], place_[strand]);
  }
  for (std::size_t step = 0; step < way.size(); ++step)
    join(stretch + static_cast<std::int32_t>(step), met_[step]);
}

}  // namespace korvex
