#include "engine/diagram/plane_diagram.hpp"

#include <algorithm>

#include "engine/diagram/place.hpp"

namespace korvex {
namespace {

constexpr std::int32_t kUnseen = -1;
constexpr std::int32_t kStart = -2;

}  // namespace

// The dart that comes next around the face to the left. About a crossing the four strands follow
// counter-clockwise as: over out, X, over in, Y, where X is under out at a positive crossing.
std::size_t PlaneDiagram::following(std::size_t dart) const {
  const std::size_t strand = dart / 2;
  const bool along = dart % 2 == 0;
  if (along ? course_.ends_with(strand) : course_.begins_with(strand)) return dart ^ 1;
  const std::size_t reached = along ? strand : course_.passage_before(strand);
  const Passage& passage = (*code_)[reached];
  const bool leaves_along = (passage.positive == passage.over) == along;
  const std::size_t mate = at(passage.mate);
  if (!leaves_along) return 2 * mate + 1;
  return 2 * course_.strand_after(mate);
}

void PlaneDiagram::draw(const GaussCode& code, Curve curve) {
  code_ = &code;
  course_ = Course(code.size(), curve);
  face_.assign(2 * strands(), kUnseen);
  around_.clear();
  begin_.clear();
  for (std::size_t start = 0; start < face_.size(); ++start) {
    if (face_[start] != kUnseen) continue;
    const auto face = static_cast<std::int32_t>(begin_.size());
    begin_.push_back(static_cast<std::int32_t>(around_.size()));
    for (std::size_t dart = start; face_[dart] == kUnseen; dart = following(dart)) {
      face_[dart] = face;
      around_.push_back(static_cast<std::int32_t>(dart));
    }
  }
  face_count_ = begin_.size();
  begin_.push_back(static_cast<std::int32_t>(around_.size()));
}

void PlaneDiagram::enter(std::int32_t face, std::int32_t dart, std::vector<std::int32_t>& queue) {
  if (entered(face)) return;
  entered_[at(face)] = {search_, dart};
  queue.push_back(face);
}

std::optional<std::span<const PlaneDiagram::Step>> PlaneDiagram::way(
    std::size_t from, std::size_t to, std::size_t most, std::optional<Strands> free,
    const std::optional<Bounds>& bounds) {
  if (entered_.size() < face_count_) entered_.resize(face_count_);
  if (++search_ == 0) {
    std::fill(entered_.begin(), entered_.end(), Entry());
    search_ = 1;
  }
  const auto may_cross = [&](std::int32_t dart) {
    return !bounds || bounds->contain(at(dart) / 2);
  };
  here_.clear();
  const std::int32_t goal = face_[2 * to];
  enter(face_[2 * from], kStart, here_);
  for (std::size_t distance = 0; !entered(goal); ++distance) {
    if (distance > most || here_.empty()) return std::nullopt;
    beyond_.clear();
    for (std::size_t head = 0; head < here_.size(); ++head) {
      const std::size_t face = at(here_[head]);
      if (!free) break;
      for (std::int32_t k = begin_[face]; k < begin_[face + 1]; ++k) {
        const std::int32_t dart = around_[at(k)];
        if (free->contains(at(dart) / 2) && may_cross(dart))
          enter(face_[at(dart) ^ 1], dart, here_);
      }
    }
    if (entered(goal)) break;
    for (const std::int32_t face : here_) {
      for (std::int32_t k = begin_[at(face)]; k < begin_[at(face) + 1]; ++k) {
        const std::int32_t dart = around_[at(k)];
        if (may_cross(dart)) enter(face_[at(dart) ^ 1], dart, beyond_);
      }
    }
    std::swap(here_, beyond_);
  }
  steps_.clear();
  balance_ = 0;
  for (std::int32_t face = goal; entered_[at(face)].dart != kStart;) {
    const std::int32_t dart = entered_[at(face)].dart;
    balance_ += dart % 2 == 0 ? 1 : -1;
    if (!free || !free->contains(at(dart) / 2)) steps_.push_back({dart / 2, dart % 2 == 0});
    face = face_[at(dart)];
  }
  std::reverse(steps_.begin(), steps_.end());
  if (steps_.size() > most) return std::nullopt;
  return steps_;
}

}  // namespace korvex
