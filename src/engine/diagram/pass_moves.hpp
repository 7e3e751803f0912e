// Pass moves: a stretch of a closed curve that passes over everything it meets, or under
// everything, is laid along the way that meets the fewest strands.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "engine/diagram/code_reduction.hpp"
#include "engine/diagram/plane_diagram.hpp"
#include "korvex/gauss_code.hpp"
#include "korvex/run.hpp"

namespace korvex {

// Scratch memory for pass moves: one object a thread.
class PassMoves {
 public:
  // Shortens stretches of a closed curve, and undoes moves I and II, until no stretch can be
  // shortened: the crossings never become more. About O(length^2) for each move that succeeds.
  // Asks before each stretch whether to stop.
  void simplify(GaussCode& code, CodeReduction& reduction, const Run& run = {});

  // As simplify, for an open code and moves that are valid for every chain that holds the core, as
  // those of CodeReduction::reduce are. A stretch under everything may be laid anywhere: the ends
  // are led to the viewer, and nothing is below. One over everything must not sweep an end, which
  // may lie anywhere outside the core. `beside` has a number for each passage, which do not fall
  // along the code; the core is the passages with numbers from..to-1. New passages get the number
  // of the passage before them on their strand, those of a stretch that of its first one.
  void simplify_core(GaussCode& code, std::vector<std::int32_t>& beside, std::int32_t from,
                     std::int32_t to, CodeReduction& reduction, const Run& run = {});

 private:
  void start_at_a_stretch(GaussCode& code);
  bool shorten_some_stretch(GaussCode& code, const Run& run);
  bool shorten_first(GaussCode& code, std::size_t from, std::size_t to, const Run& run);
  bool shorten_in_core(GaussCode& code, std::vector<std::int32_t>& beside, PassageRange core,
                       const Run& run);
  bool shorten_stretch(GaussCode& code, std::vector<std::int32_t>& beside, std::size_t first,
                       std::size_t last, PassageRange core);
  void lay_anew(GaussCode& code, std::size_t first, std::size_t last,
                std::span<const PlaneDiagram::Step> way,
                std::vector<std::int32_t>* beside = nullptr);

  PlaneDiagram diagram_;
  std::size_t resume_ = 0;
  GaussCode old_;
  std::vector<std::int32_t> old_beside_;
  std::vector<std::int32_t> crossed_;  // step of the way across each strand, or -1
  std::vector<std::int32_t> place_;    // new place of each old passage
  std::vector<std::int32_t> met_;      // new place of the strand met at each step
};

}  // namespace korvex
