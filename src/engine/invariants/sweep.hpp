// A closed diagram taken in crossing by crossing.
//
// What has been taken in is always a disk. The strands that leave it meet its boundary in points,
// listed counter-clockwise: the frontier. A state sum over what the disk may hold costs time in the
// number of states its frontier allows, so the sweep is planned for a narrow one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "korvex/gauss_code.hpp"
#include "korvex/run.hpp"

namespace korvex {

// Positions count from 0 in the cyclic list of frontier points; the one after the last is the
// first.
struct SweepStep {
  enum class Kind : std::uint8_t {
    kCup,   // a new short strand: two points are inserted, the first at `position`
    kSwap,  // a crossing is put on the points at `position` and after: they change places
    kCap,   // the points at `position` and after are joined and leave the list
  };
  Kind kind;
  std::int32_t position;
  bool first_leaves =
      false;  // cup: the curve leaves the disk at the first point, enters at the other
  bool first_over = false;  // swap: the strand that was first passes over
  bool positive = false;    // swap: the sign of the crossing
};

struct SweepPlan {
  std::vector<SweepStep> steps;
  std::size_t widest = 0;  // most points of the frontier at a time
};

// A state sum over more crossings could leave the exponents that fit into 32 bits: each crossing
// moves them by less than 256.
inline constexpr std::size_t kMostCrossingsToSweep = 4'000'000;

// The plan with the narrowest frontier of those that begin at different crossings and go on
// greedily. O(n w) for each beginning, n crossings and width w; at most 24 beginnings.
// Of `run` it asks only whether to stop.
SweepPlan plan_sweep(const GaussCode& closed, const Run& run = {});

}  // namespace korvex
