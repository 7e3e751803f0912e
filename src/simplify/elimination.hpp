// Triangle elimination of a closed chain: the earliest removable point goes first.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "simplify/segment_scan.hpp"

namespace korvex::simplify {

// The removal order of the plain form at a fraction of its work. Every blocked triangle keeps the
// segment that blocked it, its witness. A removal replaces two segments by one and changes two
// triangles; only these and the triangles whose witness went are in doubt again, and the lowest of
// those in doubt is tested next: that is the triangle at which a pass from the chain's start would
// find the next removal, since all before it are known to be blocked.
//
// A triangle is named by its first point, a segment by its first point; the last point's segment
// closes the chain. Working space is kept from one chain to the next.
class TriangleElimination {
 public:
  // Reduces `chain` in place: the points left come first, in order, and their number is returned;
  // behind them the old points stay. Cost: see docs/performance.md.
  std::size_t reduce(std::span<fPointR3> chain);

 private:
  using Index = std::uint32_t;
  static constexpr Index kNone = 0xFFFFFFFF;

  void load();
  void link_slots();
  void place_segment(Index slot, const fPointR3& p, const fPointR3& q);
  void empty_slot(Index slot);
  bool next_in_doubt(Index& triangle);
  void put_in_doubt(Index triangle);
  bool take_doubt(Index triangle);
  void watch(Index triangle, Index segment);
  void unwatch(Index triangle);
  void release_watchers(Index segment, Index replacement);
  bool touches(Index triangle, Index segment) const;
  bool blocked(Index triangle);
  void remove_after(Index triangle);
  void compact();

  struct Watch {
    Index witness;  // the segment that blocked the triangle, or the one to try first; kNone
    Index earlier;  // neighbours in the list of the triangles that watch the same segment
    Index later;
    bool listed;
  };

  std::vector<fPointR3> points_;
  std::size_t slots_ = 0;  // slots in use, empty ones included
  std::size_t live_ = 0;   // points left
  Index last_ = 0;         // slot of the last point
  float largest_coordinate_ = 0;
  std::size_t first_doubtful_word_ = 0;  // no bit is set in the words before
  std::vector<SegmentBlock> segments_;
  std::vector<Index> next_;
  std::vector<Index> previous_;
  std::vector<Watch> watches_;
  std::vector<Index> first_watcher_;     // a list a segment
  std::vector<std::uint64_t> in_doubt_;  // a bit a triangle
};

}  // namespace korvex::simplify
