// Reidemeister moves I and II on Gauss codes, and the pulling back of ends of open ones, in place.
#pragma once

#include <cstdint>
#include <limits>
#include <vector>

#include "engine/diagram/gauss_code.hpp"

namespace korvex {

// Segments begin..end-1 of a chain.
struct SegmentRange {
  std::int32_t begin = std::numeric_limits<std::int32_t>::min();
  std::int32_t end = std::numeric_limits<std::int32_t>::max();

  bool contains(std::int32_t segment) const { return begin <= segment && segment < end; }
};

// Scratch memory for reductions: one object a thread.
class CodeReduction {
 public:
  // `code`, another object than `whole`, becomes the code of the chain cut to `range`.
  void restrict_to(SegmentRange range, const GaussCode& whole, GaussCode& code);

  // Removes passages from `code` until no move is left. Moves I and II touch only crossings with
  // both passages in `core`: what is left is then right not for the chain alone but also, once it
  // is restricted to the shorter chain, for every chain that still holds the core.
  void reduce(GaussCode& code, SegmentRange core = {});

  // As reduce, for a closed curve.
  void reduce_closed(GaussCode& code);

 private:
  void link(const GaussCode& code, bool closed);
  void do_waiting_moves(const GaussCode& code, SegmentRange core);
  void take_out(std::int32_t place);
  void take_out_crossing(const GaussCode& code, std::int32_t place);
  void try_moves_at(const GaussCode& code, std::int32_t place, SegmentRange core);
  void pull_back_ends(const GaussCode& code);
  void compact(GaussCode& code);

  // A ring through the places of the passages that are left. In that of an open chain a place more
  // than there are passages, the sentinel, stands between the end and the beginning.
  std::vector<std::int32_t> next_;
  std::vector<std::int32_t> previous_;
  std::vector<std::int32_t> waiting_;  // places that may allow a move with the next one
  std::vector<std::int32_t> moved_;    // new place of each passage
};

}  // namespace korvex
