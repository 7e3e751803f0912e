#include "engine/diagram/pass_moves.hpp"

#include <algorithm>

#include "engine/diagram/course.hpp"
#include "engine/diagram/place.hpp"
#include "engine/run/parallel.hpp"

namespace korvex {
void PassMoves::simplify(GaussCode& code, CodeReduction& reduction, const Run& run) {
  reduction.reduce_closed(code);
  resume_ = 0;
  while (shorten_some_stretch(code, run)) reduction.reduce_closed(code);
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
                         std::span<const PlaneDiagram::Step> way) {
  std::swap(old_, code);
  code.clear();
  crossed_.assign(old_.size() + 1, -1);
  for (std::size_t step = 0; step < way.size(); ++step)
    crossed_[at(way[step].strand)] = static_cast<std::int32_t>(step);
  place_.resize(old_.size());
  met_.resize(way.size());
  const bool over = old_[first].over;
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
    }
    if (strand == first) {
      stretch = next_place();
      for (const PlaneDiagram::Step& step : way)
        code.push_back({-1, over, step.left_to_right == over});
    }
    if (strand == old_.size()) break;
    const std::size_t mate = at(old_[strand].mate);
    const auto in_stretch = [&](std::size_t k) { return first <= k && k <= last; };
    if (in_stretch(strand) || in_stretch(mate)) continue;
    place_[strand] = next_place();
    code.push_back(old_[strand]);
    if (mate < strand) join(place_[mate], place_[strand]);
  }
  for (std::size_t step = 0; step < way.size(); ++step)
    join(stretch + static_cast<std::int32_t>(step), met_[step]);
}

}  // namespace korvex
