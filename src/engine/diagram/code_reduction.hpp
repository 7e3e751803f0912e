// Reidemeister moves I and II on Gauss codes, and the pulling back of ends of open ones, in place.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

#include "engine/diagram/course.hpp"
#include "korvex/gauss_code.hpp"

namespace korvex {

// Passages begin..end-1 of a code.
struct PassageRange {
  std::size_t begin = 0;
  std::size_t end = std::numeric_limits<std::size_t>::max();

  bool contains(std::int32_t passage) const {
    const auto place = static_cast<std::size_t>(passage);
    return begin <= place && place < end;
  }
};

// Scratch memory for reductions: one object a thread.
class CodeReduction {
 public:
  // Removes passages from `code` until no move is left. Moves II take apart only strands the lower
  // of which is in `core`: what is left is then right not for the chain alone but also, once it is
  // restricted to a shorter chain, for every chain that still holds the core. `beside`, where
  // given, has a number for each passage; those of passages that go, go with them.
  void reduce(GaussCode& code, PassageRange core = {}, std::vector<std::int32_t>* beside = nullptr);

  // The same, where a move is known to involve one of the places `fresh`, which rise, and the place
  // behind it.
  void reduce(GaussCode& code, PassageRange core, std::vector<std::int32_t>* beside,
              std::span<const std::int32_t> fresh);

  // As reduce, for a closed curve.
  void reduce_closed(GaussCode& code);

 private:
  void link(const GaussCode& code, Curve curve);
  void finish(GaussCode& code, PassageRange core, std::vector<std::int32_t>* beside);
  void do_waiting_moves(const GaussCode& code, PassageRange core);
  void take_out(std::int32_t place);
  void take_out_crossing(const GaussCode& code, std::int32_t place);
  void try_moves_at(const GaussCode& code, std::int32_t place, PassageRange core);
  void pull_back_ends(const GaussCode& code);
  void compact(GaussCode& code, std::vector<std::int32_t>* beside);

  // A ring through the places of the passages that are left. In that of an open chain a place more
  // than there are passages, the sentinel, stands between the end and the beginning.
  std::vector<std::int32_t> next_;
  std::vector<std::int32_t> previous_;
  std::vector<std::int32_t> waiting_;  // places that may allow a move with the next one
  std::vector<std::int32_t> moved_;    // new place of each passage
};

}  // namespace korvex
