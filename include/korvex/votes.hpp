// The knot type of a whole chain, by votes over closures, with its error.
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "korvex/closure.hpp"
#include "korvex/export.hpp"
#include "korvex/geometry.hpp"
#include "korvex/interval.hpp"
#include "korvex/ring.hpp"
#include "korvex/run.hpp"

namespace korvex {

inline constexpr std::size_t kMostVotes = 10'000'000;  // that are cast at once

struct VoteOptions {
  Closure closure = Closure::kRays;
  Sampling sampling = Sampling::kLattice;  // of the directions of rays and two points
  // Votes by rays or by two points; the other closures cast one. 0 draws lattices of 100 votes each
  // until the interval of the most frequent type lies above one half, or no type's interval is
  // wider than twice the tolerance, or there are most_trials votes.
  std::size_t trials = 100;          // at most kMostVotes
  double tolerance = 0.02;           // share of the votes, above 0
  std::size_t most_trials = 10'000;  // 100 to kMostVotes
  // False leaves out the first of these ends: the shares of all types are to be known.
  bool majority_settles = true;
};

struct TypeVotes {
  std::string type;
  std::size_t count = 0;
  double share = 0;   // of all votes
  Interval interval;  // of the share at 95 % (Wilson)
  // Votes of diagrams that can be of no other knot, as KnotIdentity::proven tells. In particular
  // the other votes for 0_1 are of diagrams with more than 22 crossings, or too large for the Jones
  // polynomial, in which no knot was found. Never more than 0 for `?` names.
  std::size_t proven = 0;
};

struct Votes {
  std::size_t trials = 0;
  std::vector<TypeVotes> types;  // from the most to the least frequent, equal ones by name
  // Crossings left in the simplified diagrams, and how many diagrams had them.
  std::map<std::size_t, std::size_t> crossings;
  // Of the closed curve itself, where it was closed directly or is a ring.
  std::optional<RingReport> ring;

  // The type with most votes; of equal ones the first by name.
  const TypeVotes& dominant() const { return types.front(); }
};

// Votes on the type of `chain`, points in order along the backbone (or around the ring). Throws
// Error(kInvalidArgument) for no points at all, for coordinates that are no numbers and for options
// out of range, Error(kCancelled) when stopped. The answer depends on chain, options and run.seed
// alone.
KORVEX_API Votes vote(std::span<const Point> chain, const VoteOptions& options = {},
                      const Run& run = {});

}  // namespace korvex
