// The sub-chains of a chain, put together where they must have the same knot type.
//
// Seen along the closing direction, moving an end of a sub-chain along a strand changes nothing
// unless something passes over that strand. So the triangle of sub-chains falls into rectangles of
// equal type, and what is common to many sub-chains is simplified once: a rectangle is given by the
// stations its ends range over, its core is the stretch that all its sub-chains hold, and a move
// that needs the core alone is valid for all of them: a pass move that frees the core of a tangle
// frees hundreds of sub-chains of it at once. Rectangles are halved until their sub-chains
// are equivalent.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <stop_token>
#include <vector>

#include "engine/projection/chain_code.hpp"

namespace korvex {

// Stations first..last, both included. A station is a residue at which sub-chains may begin or end.
struct Stations {
  std::int32_t first;
  std::int32_t last;
};

// Told a set of sub-chains, begin in `begins` and end in `ends`, whose closed curves are all of one
// type, and a reduced open code of that type with at least 2 crossings. Sub-chains it is never told
// of are unknotted.
using ClassVisitor = std::function<void(Stations begins, Stations ends, const GaussCode& reduced)>;

// Scratch memory of the search: one object a thread.
class SubChainClasses {
 public:
  // `residues` are the residues of the stations, 0-based and rising; they must outlive this object.
  // Throws Error(kCancelled) from a visit soon after `stop` asks for it.
  explicit SubChainClasses(std::span<const std::int32_t> residues, std::stop_token stop = {})
      : residues_(residues), stop_(std::move(stop)) {}

  // All sub-chains of a chain with the given code, both ends led to the viewer. Each is visited at
  // most once.
  void visit_triangle(const ChainCode& chain, const ClassVisitor& visit);

  // The sub-chains that end at one station, where the code goes on with a strand of its own: the
  // segment that would follow the end.
  void visit_column(const ChainCode& chain, std::int32_t end, const ClassVisitor& visit);

 private:
  struct Rectangle {
    Stations begins;
    Stations ends;
  };

  // A core gains that many passages before pass moves are tried on it again.
  static constexpr std::size_t kPassagesBetweenPassMoves = 4;

  // What has been done with a code: reduced for a core, if any; pass moves on another core are
  // worth trying from so many passages on.
  struct Simplified {
    std::optional<SegmentRange> core;
    std::size_t worth_moving = kPassagesBetweenPassMoves;
  };

  void visit_triangle(std::size_t depth, const ChainCode& chain, Stations stations,
                      const ClassVisitor& visit);
  void visit_rectangle(std::size_t depth, const ChainCode& chain, const Rectangle& rectangle,
                       const Simplified& before, const ClassVisitor& visit);
  // The last of the stations, but for the very last, from which the segment is still ahead.
  std::int32_t station_before(Stations stations, std::int32_t segment) const;
  std::int32_t residue(std::int32_t station) const {
    return residues_[static_cast<std::size_t>(station)];
  }
  std::int32_t end_of_segments(std::int32_t station) const {
    return residue(station) + strand_after_end_;
  }
  ChainCode& code_at(std::size_t depth);
  void look_for_cancellation();

  std::span<const std::int32_t> residues_;
  std::stop_token stop_;
  std::int32_t strand_after_end_ = 0;
  unsigned until_look_ = 0;
  ChainCodeReduction reduction_;
  std::vector<std::unique_ptr<ChainCode>> codes_;  // one a depth of the recursion
};

}  // namespace korvex
