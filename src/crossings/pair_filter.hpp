// Which pairs of projected edges need the crossing test at all.
//
// Nearly all pairs of a projection are far apart. The filter forms the crossing test's own numbers
// for several second edges at a time and passes on every pair that the test might answer with
// anything but "no crossing":
//
// 1. A pair left out gets status 0, and no message, from TwoEdgesCrossed.
// 2. Edges apart in y are left out, in blocks of consecutive edges where all of them are. Of the
//    others, those apart in x are left out unless they are parallel (determinant 0): the test calls
//    collinear horizontal edges a problem at any distance.
// 3. "Apart" is by a margin that covers every rounding error of the test.
// 4. Pairs with a vertical first edge are passed on, and all pairs of a projection that holds
//    infinities, numbers that are not numbers, or extreme magnitudes.
// 5. The pairs passed on are the same on every instruction set.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <span>
#include <vector>

#include "korvex.h"

namespace korvex::crossings {

constexpr std::size_t kBlock = 8;  // edges that are left out together

// A projection's edges by column, filled up to whole blocks, of which there are a multiple of
// kBlock.
struct EdgeColumns {
  double* x2;
  double* y2;
  double* dx;            // x1 - x2
  double* dy;            // y1 - y2
  double* left;          // min(x1, x2)
  double* right;         // max(x1, x2)
  double* bottom;        // min(y1, y2)
  double* top;           // max(y1, y2)
  double* block_bottom;  // a number a block
  double* block_top;
};

// One edge and the ranges outside of which it meets nothing.
struct FirstEdge {
  double x2;
  double y2;
  double dx;
  double dy;
  double left;
  double right;
  double bottom;
  double top;
};

class PairFilter {
 public:
  explicit PairFilter(const std::vector<Edge>& edges);

  // The edges j of [from, to) that edge i may meet, rising; valid until the next call.
  // Cost: O(to - from).
  std::span<const std::uint32_t> candidates(std::size_t i, std::size_t from, std::size_t to);

 private:
  // Enough for the widest vectors, each of which then lies in one cache line.
  static constexpr std::size_t kAlignment = 128;

  struct Freed {
    void operator()(double* numbers) const {
      ::operator delete[](numbers, std::align_val_t(kAlignment));
    }
  };

  using Find = std::size_t(const EdgeColumns&, const FirstEdge&, std::size_t from, std::size_t to,
                           std::uint32_t* found);

  void fill(const std::vector<Edge>& edges);
  void fill_blocks(std::size_t n, std::size_t blocks);

  FirstEdge first_edge(std::size_t i) const;

  Find* find_;  // for this processor
  EdgeColumns columns_;
  double largest_;  // magnitude of a coordinate
  bool is_usable_;  // otherwise every pair is passed on
  std::unique_ptr<double[], Freed> numbers_;
  std::unique_ptr<std::uint32_t[]> found_;
};

}  // namespace korvex::crossings
