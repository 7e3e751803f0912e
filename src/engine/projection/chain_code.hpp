// A Gauss code and where along its chain the passages lie.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "engine/diagram/code_reduction.hpp"
#include "engine/diagram/pass_moves.hpp"
#include "korvex/gauss_code.hpp"
#include "korvex/run.hpp"

namespace korvex {

// Segments begin..end-1 of a chain. Segment k runs from point k to the next one, 0-based.
struct SegmentRange {
  std::int32_t begin = std::numeric_limits<std::int32_t>::min();
  std::int32_t end = std::numeric_limits<std::int32_t>::max();
};

struct ChainCode {
  GaussCode code;
  std::vector<std::int32_t> segments;  // of each passage; they do not fall along the code

  // Index of the first passage on a segment not before `segment`. O(log length).
  std::size_t first_from(std::int32_t segment) const;

  friend bool operator==(const ChainCode&, const ChainCode&) = default;
};

// Scratch memory for the reduction of codes that keep their segments: one object a thread.
class ChainCodeReduction {
 public:
  // `part`, another object than `whole`, becomes the code of the chain cut to `range`.
  void restrict_to(SegmentRange range, const ChainCode& whole, ChainCode& part);

  // As CodeReduction::reduce, with the core given in segments.
  void reduce(ChainCode& chain, SegmentRange core);

  // The same for the `part` that restrict_to() made last, of a whole that had been reduced with
  // the core `reduced`, which `core` holds: only what has changed since is looked at.
  void reduce_further(ChainCode& part, SegmentRange core, SegmentRange reduced);

  // As PassMoves::simplify_core, of a code that has been reduced. Asks before each move whether to
  // stop.
  void move_passes(ChainCode& chain, SegmentRange core, const Run& run = {});

 private:
  CodeReduction reduction_;
  PassMoves pass_moves_;
  std::vector<std::int32_t> moved_;   // new place of each passage
  std::vector<std::int32_t> joined_;  // places of the part from which something was cut behind
  std::vector<std::int32_t> fresh_;
};

}  // namespace korvex
