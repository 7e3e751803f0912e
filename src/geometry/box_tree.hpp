// Bounding boxes of a chain's segments, kept in a tree of blocks of neighbours: which of them meet
// a given box is found without looking at all.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace korvex {

// Sides are closed. An empty box, low above high, meets none.
// Sides in whole numbers are those of a box whose corners were rounded to a grid: rounding keeps
// order, so that boxes which meet still do, and some that do not seem to.
template <std::size_t kDimensions, typename Number = double>
struct BoundingBox {
  std::array<Number, kDimensions> low;
  std::array<Number, kDimensions> high;

  // Sides lie between these two and reach neither.
  static constexpr Number kHighest = std::numeric_limits<Number>::has_infinity
                                         ? std::numeric_limits<Number>::infinity()
                                         : std::numeric_limits<Number>::max();
  static constexpr Number kLowest = std::numeric_limits<Number>::has_infinity
                                        ? -std::numeric_limits<Number>::infinity()
                                        : std::numeric_limits<Number>::lowest();

  static BoundingBox empty() {
    BoundingBox box;
    box.low.fill(kHighest);
    box.high.fill(kLowest);
    return box;
  }

  bool meets(const BoundingBox& other) const {
    unsigned all = 1;  // without branches
    for (std::size_t d = 0; d < kDimensions; ++d) {
      all &= static_cast<unsigned>(low[d] <= other.high[d]);
      all &= static_cast<unsigned>(other.low[d] <= high[d]);
    }
    return all != 0;
  }
};

// Boxes of a tree side by side, for what compares many numbers at once.
template <std::size_t kDimensions, typename Number>
struct alignas(64) BoxBlock {
  using Box = BoundingBox<kDimensions, Number>;
  static constexpr std::size_t kSize = sizeof(Number) < sizeof(float) ? 32 : 16;

  std::array<std::array<Number, kSize>, kDimensions> low;
  std::array<std::array<Number, kSize>, kDimensions> high;

  static BoxBlock empty() {
    BoxBlock block;
    for (auto& row : block.low) row.fill(Box::kHighest);
    for (auto& row : block.high) row.fill(Box::kLowest);
    return block;
  }

  Box box(std::size_t place) const {
    Box box;
    for (std::size_t d = 0; d < kDimensions; ++d) {
      box.low[d] = low[d][place];
      box.high[d] = high[d][place];
    }
    return box;
  }

  void set(std::size_t place, const Box& box) {
    for (std::size_t d = 0; d < kDimensions; ++d) {
      low[d][place] = box.low[d];
      high[d][place] = box.high[d];
    }
  }
};

// Boxes in a fixed order, in the plane or in space. Neighbours in that order should lie near one
// another: a query looks at those blocks alone that it meets. Const objects may be used from many
// threads.
template <std::size_t kDimensions, typename Number = double>
class BoxTree {
 public:
  using Box = BoundingBox<kDimensions, Number>;

  // `count` empty boxes.
  explicit BoxTree(std::size_t count = 0) { resize(count); }

  // Holds `count` boxes and no others, box_of(k) at place k. O(n).
  template <typename BoxOf>
  void assign(std::size_t count, BoxOf box_of) {
    resize(count);
    for (std::size_t k = 0; k < count; ++k) lay(k, box_of(k));
    bound();
  }

  std::size_t size() const { return size_; }
  void set(std::size_t index, const Box& box);
  void clear(std::size_t index) { lay(index, Box::empty()); }
  Box box(std::size_t index) const { return blocks_[index / kBlock].box(index % kBlock); }

  // Appends the numbers of those boxes of begin..end-1 that meet `box`, rising.
  void find(const Box& box, std::size_t begin, std::size_t end,
            std::vector<std::int32_t>& found) const;

 private:
  using Block = BoxBlock<kDimensions, Number>;
  static constexpr std::size_t kBlock = Block::kSize;

  void resize(std::size_t count);
  void bound();  // the levels above the boxes
  void lay(std::size_t index, const Box& box) { blocks_[index / kBlock].set(index % kBlock, box); }

  std::size_t size_ = 0;
  std::vector<std::size_t> levels_;  // where each begins in blocks_; the boxes themselves first
  std::vector<Block> blocks_;
};

extern template class BoxTree<2>;
extern template class BoxTree<3>;
extern template class BoxTree<3, std::int16_t>;

}  // namespace korvex
