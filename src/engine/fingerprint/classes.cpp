#include "engine/fingerprint/classes.hpp"

#include <algorithm>

#include "korvex/error.hpp"

namespace korvex {
namespace {

// Shorter chains have at most one crossing.
constexpr std::int32_t kFewestKnottedSegments = 4;

}  // namespace

void SubChainClasses::visit_triangle(const ChainCode& chain, const ClassVisitor& visit) {
  strand_after_end_ = 0;
  visit_triangle(0, chain, {0, static_cast<std::int32_t>(residues_.size()) - 1}, visit);
}

void SubChainClasses::visit_column(const ChainCode& chain, std::int32_t end,
                                   const ClassVisitor& visit) {
  if (end == 0) return;
  strand_after_end_ = 1;
  visit_rectangle(0, chain, {{0, end - 1}, {end, end}}, {}, visit);
}

ChainCode& SubChainClasses::code_at(std::size_t depth) {
  while (codes_.size() <= depth) codes_.push_back(std::make_unique<ChainCode>());
  return *codes_[depth];
}

void SubChainClasses::look_for_cancellation() {
  constexpr unsigned kRectanglesBetween = 256;
  if (until_look_-- != 0) return;
  until_look_ = kRectanglesBetween;
  if (stop_.stop_requested()) throw Error(ErrorCode::kCancelled, "stopped on request");
}

void SubChainClasses::visit_triangle(std::size_t depth, const ChainCode& chain, Stations stations,
                                     const ClassVisitor& visit) {
  if (stations.last <= stations.first) return;
  if (residue(stations.last) - residue(stations.first) < kFewestKnottedSegments) return;
  ChainCode& own = code_at(depth);
  reduction_.restrict_to({residue(stations.first), residue(stations.last)}, chain, own);
  if (own.code.empty()) return;
  const std::int32_t middle = stations.first + (stations.last - stations.first) / 2;
  const Stations left{stations.first, middle};
  const Stations right{middle + 1, stations.last};
  visit_rectangle(depth + 1, own, {left, right}, {}, visit);
  visit_triangle(depth + 1, own, left, visit);
  visit_triangle(depth + 1, own, right, visit);
}

std::int32_t SubChainClasses::station_before(Stations stations, std::int32_t segment) const {
  const auto from = residues_.begin() + stations.first;
  const auto to = residues_.begin() + stations.last;
  return static_cast<std::int32_t>(std::upper_bound(from, to, segment) - residues_.begin()) - 1;
}

void SubChainClasses::visit_rectangle(std::size_t depth, const ChainCode& chain,
                                      const Rectangle& rectangle, const Simplified& before,
                                      const ClassVisitor& visit) {
  look_for_cancellation();
  const auto& [begins, ends] = rectangle;
  const SegmentRange all{residue(begins.first), end_of_segments(ends.last)};
  const SegmentRange core{residue(begins.last), end_of_segments(ends.first)};
  if (all.end - all.begin < kFewestKnottedSegments) return;
  ChainCode& own = code_at(depth);
  reduction_.restrict_to(all, chain, own);
  if (before.core)
    reduction_.reduce_further(own, core, *before.core);
  else
    reduction_.reduce(own, core);
  Simplified now{core, before.worth_moving};
  std::size_t core_begin = own.first_from(core.begin);
  std::size_t core_end = own.first_from(core.end);
  if (core_end - core_begin >= now.worth_moving) {
    reduction_.move_passes(own, core, {.stop = stop_});
    core_begin = own.first_from(core.begin);
    core_end = own.first_from(core.end);
    now.worth_moving = core_end - core_begin + kPassagesBetweenPassMoves;
  }
  if (own.code.size() < 4) return;
  if (core_begin == 0 && core_end == own.code.size()) {
    visit(begins, ends, own.code);
  } else if (core_begin >= own.code.size() - core_end) {
    const std::int32_t middle = station_before(begins, own.segments[core_begin / 2]);
    visit_rectangle(depth + 1, own, {{begins.first, middle}, ends}, now, visit);
    visit_rectangle(depth + 1, own, {{middle + 1, begins.last}, ends}, now, visit);
  } else {
    const std::int32_t middle =
        station_before(ends, own.segments[(core_end + own.code.size()) / 2]);
    visit_rectangle(depth + 1, own, {begins, {ends.first, middle}}, now, visit);
    visit_rectangle(depth + 1, own, {begins, {middle + 1, ends.last}}, now, visit);
  }
}

}  // namespace korvex
