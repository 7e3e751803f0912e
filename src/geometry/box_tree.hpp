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
template <std::size_t kDimensions>
struct BoundingBox {
  std::array<double, kDimensions> low;
  std::array<double, kDimensions> high;

  static BoundingBox empty() {
    BoundingBox box;
    box.low.fill(std::numeric_limits<double>::infinity());
    box.high.fill(-std::numeric_limits<double>::infinity());
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

// Boxes in a fixed order, in the plane or in space. Neighbours in that order should lie near one
// another: a query looks at those blocks alone that it meets. Const objects may be used from many
// threads.
template <std::size_t kDimensions>
class BoxTree {
 public:
  using Box = BoundingBox<kDimensions>;

  // `count` empty boxes.
  explicit BoxTree(std::size_t count = 0);

  std::size_t size() const { return size_; }
  void set(std::size_t index, const Box& box);
  void clear(std::size_t index);
  Box box(std::size_t index) const;

  // Appends the numbers of those boxes of begin..end-1 that meet `box`, rising.
  void find(const Box& box, std::size_t begin, std::size_t end,
            std::vector<std::int32_t>& found) const;

 private:
  // Boxes of a block lie side by side: all low x, all high x, all low y ...
  static constexpr std::size_t kBlock = 16;
  static constexpr std::size_t kNumbers = 2 * kDimensions * kBlock;

  std::size_t size_ = 0;
  std::vector<std::size_t> levels_;  // where each begins in numbers_; the boxes themselves first
  std::vector<double> numbers_;
};

extern template class BoxTree<2>;
extern template class BoxTree<3>;

}  // namespace korvex
