// Bounding boxes of a chain's segments, kept in a tree of blocks of neighbours: which of them meet
// a given box is found without looking at all.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

namespace korvex {

// Sides are closed. An empty box, low above high, meets none.
// Sides in single precision are those of a box that was rounded as a whole: rounding keeps order,
// so that boxes which meet still do, and some that do not seem to.
template <std::size_t kDimensions, typename Number = double>
struct BoundingBox {
  std::array<Number, kDimensions> low;
  std::array<Number, kDimensions> high;

  static BoundingBox empty() {
    BoundingBox box;
    box.low.fill(std::numeric_limits<Number>::infinity());
    box.high.fill(-std::numeric_limits<Number>::infinity());
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
template <std::size_t kDimensions, typename Number = double>
class BoxTree {
 public:
  using Box = BoundingBox<kDimensions, Number>;

  // `count` empty boxes.
  explicit BoxTree(std::size_t count = 0);

  // Holds these boxes and no others. O(n).
  void assign(std::span<const Box> boxes);

  std::size_t size() const { return size_; }
  void set(std::size_t index, const Box& box);
  void clear(std::size_t index);
  Box box(std::size_t index) const;

  // Appends the numbers of those boxes of begin..end-1 that meet `box`, rising.
  void find(const Box& box, std::size_t begin, std::size_t end,
            std::vector<std::int32_t>& found) const;

  // The same for all boxes but first..last.
  void find_beyond(const Box& box, std::size_t first, std::size_t last,
                   std::vector<std::int32_t>& found) const;

 private:
  // Boxes of a block lie side by side: all low x, all high x, all low y ...
  static constexpr std::size_t kBlock = 16;
  static constexpr std::size_t kNumbers = 2 * kDimensions * kBlock;

  void resize(std::size_t count);

  std::size_t size_ = 0;
  std::vector<std::size_t> levels_;  // where each begins in numbers_; the boxes themselves first
  std::vector<Number> numbers_;
};

extern template class BoxTree<2>;
extern template class BoxTree<3>;
extern template class BoxTree<3, float>;

}  // namespace korvex
