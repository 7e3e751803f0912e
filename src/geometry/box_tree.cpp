#include "geometry/box_tree.hpp"

#include <algorithm>
#include <type_traits>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "geometry/box_tree.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/dispatch.hpp"

HWY_BEFORE_NAMESPACE();
namespace korvex::box_tree::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

constexpr std::size_t kLogBlock = 4;
constexpr std::size_t kBlock = 1 << kLogBlock;
constexpr std::uint32_t kWholeBlock = (1U << kBlock) - 1;

// Those of the block's boxes that meet the box, in bits.
template <std::size_t kDimensions, typename Number>
HWY_INLINE std::uint32_t meeting(const Number* block, const BoundingBox<kDimensions, Number>& box) {
  const hn::CappedTag<Number, kBlock> d;
  std::uint32_t bits = 0;
  for (std::size_t k = 0; k < kBlock; k += hn::Lanes(d)) {
    auto lanes = hn::Le(hn::LoadU(d, block + k), hn::Set(d, box.high[0]));
    lanes = hn::And(lanes, hn::Ge(hn::LoadU(d, block + kBlock + k), hn::Set(d, box.low[0])));
    for (std::size_t dimension = 1; dimension < kDimensions; ++dimension) {
      const Number* const row = block + 2 * dimension * kBlock + k;
      lanes = hn::And(lanes, hn::Le(hn::LoadU(d, row), hn::Set(d, box.high[dimension])));
      lanes = hn::And(lanes, hn::Ge(hn::LoadU(d, row + kBlock), hn::Set(d, box.low[dimension])));
    }
    std::uint8_t bytes[8] = {};
    hn::StoreMaskBits(d, lanes, bytes);
    bits |= (bytes[0] | static_cast<std::uint32_t>(bytes[1]) << 8) << k;
  }
  return bits;
}

// Those of the block's places that lie in begin..end-1, in bits.
HWY_INLINE std::uint32_t places_within(std::size_t block, std::size_t begin, std::size_t end) {
  const std::size_t start = kBlock * block;
  const std::size_t from = std::clamp(begin, start, start + kBlock) - start;
  const std::size_t to = std::clamp(end, start, start + kBlock) - start;
  return to > from ? (kWholeBlock >> (kBlock - (to - from))) << from : 0;
}

template <std::size_t kDimensions, typename Number, bool kBeyond>
class Search {
 public:
  using Box = BoundingBox<kDimensions, Number>;

  // Looks in begin..end-1 or, with kBeyond, everywhere else.
  HWY_INLINE Search(const Number* const* levels, const Box& box, std::size_t begin, std::size_t end,
                    std::vector<std::int32_t>& found)
      : levels_(levels), box_(box), begin_(begin), end_(end), found_(found) {}

  void descend(std::size_t level, std::size_t block) {
    if (level == 0) return look_at_leaves(block);
    const std::size_t span = std::size_t{1} << (kLogBlock * level);  // leaves below one box
    for (std::uint32_t bits = boxes_met(level, block); bits != 0; bits &= bits - 1) {
      const std::size_t child = kBlock * block + hwy::Num0BitsBelowLS1Bit_Nonzero32(bits);
      if (!kBeyond && child * span >= end_) return;
      if (!kBeyond && (child + 1) * span <= begin_) continue;
      if (level == 1) {
        look_at_leaves(child);
      } else {
        descend(level - 1, child);
      }
    }
  }

 private:
  HWY_INLINE std::uint32_t boxes_met(std::size_t level, std::size_t block) const {
    return meeting(levels_[level] + 2 * kDimensions * kBlock * block, box_);
  }

  HWY_INLINE void look_at_leaves(std::size_t block) {
    const std::uint32_t inside = places_within(block, begin_, end_);
    std::uint32_t bits = boxes_met(0, block) & (kBeyond ? ~inside : inside);
    for (; bits != 0; bits &= bits - 1)
      found_.push_back(
          static_cast<std::int32_t>(kBlock * block + hwy::Num0BitsBelowLS1Bit_Nonzero32(bits)));
  }

  const Number* const* levels_;
  const Box& box_;
  const std::size_t begin_;
  const std::size_t end_;
  std::vector<std::int32_t>& found_;
};

void FindInPlane(const double* const* levels, std::size_t top, const BoundingBox<2>& box,
                 std::size_t begin, std::size_t end, std::vector<std::int32_t>& found) {
  Search<2, double, false>(levels, box, begin, end, found).descend(top, 0);
}

void FindInSpace(const double* const* levels, std::size_t top, const BoundingBox<3>& box,
                 std::size_t begin, std::size_t end, std::vector<std::int32_t>& found) {
  Search<3, double, false>(levels, box, begin, end, found).descend(top, 0);
}

void FindRounded(const float* const* levels, std::size_t top, const BoundingBox<3, float>& box,
                 std::size_t begin, std::size_t end, std::vector<std::int32_t>& found) {
  Search<3, float, false>(levels, box, begin, end, found).descend(top, 0);
}

void FindBeyondInPlane(const double* const* levels, std::size_t top, const BoundingBox<2>& box,
                       std::size_t begin, std::size_t end, std::vector<std::int32_t>& found) {
  Search<2, double, true>(levels, box, begin, end, found).descend(top, 0);
}

void FindBeyondInSpace(const double* const* levels, std::size_t top, const BoundingBox<3>& box,
                       std::size_t begin, std::size_t end, std::vector<std::int32_t>& found) {
  Search<3, double, true>(levels, box, begin, end, found).descend(top, 0);
}

void FindBeyondRounded(const float* const* levels, std::size_t top,
                       const BoundingBox<3, float>& box, std::size_t begin, std::size_t end,
                       std::vector<std::int32_t>& found) {
  Search<3, float, true>(levels, box, begin, end, found).descend(top, 0);
}

}  // namespace
}  // namespace korvex::box_tree::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace korvex::box_tree {

KORVEX_VARIANTS(FindInPlane);
KORVEX_VARIANTS(FindInSpace);
KORVEX_VARIANTS(FindRounded);
KORVEX_VARIANTS(FindBeyondInPlane);
KORVEX_VARIANTS(FindBeyondInSpace);
KORVEX_VARIANTS(FindBeyondRounded);

}  // namespace korvex::box_tree

namespace korvex {
namespace {

constexpr std::size_t kMostLevels = 16;
constexpr std::size_t kBlock = 16;

// Of the numbers of a block, in pairs of neighbours: without branches, and not one after another.
template <typename Number, typename Choose>
Number of_all(const Number* block, Choose choose) {
  std::array<Number, kBlock> left;
  std::copy_n(block, kBlock, left.begin());
  for (std::size_t half = kBlock / 2; half > 0; half /= 2)
    for (std::size_t k = 0; k < half; ++k) left[k] = choose(left[k], left[k + half]);
  return left[0];
}

template <typename Number>
Number lowest(const Number* block) {
  return of_all(block, [](Number a, Number b) { return std::min(a, b); });
}

template <typename Number>
Number highest(const Number* block) {
  return of_all(block, [](Number a, Number b) { return std::max(a, b); });
}

template <typename Number>
using Levels = std::array<const Number*, kMostLevels>;

template <typename Number>
Levels<Number> levels_of(const std::vector<Number>& numbers,
                         const std::vector<std::size_t>& begins) {
  Levels<Number> levels;
  for (std::size_t level = 0; level < begins.size(); ++level)
    levels[level] = numbers.data() + begins[level];
  return levels;
}

}  // namespace

template <std::size_t kDimensions, typename Number>
BoxTree<kDimensions, Number>::BoxTree(std::size_t count) {
  resize(count);
}

template <std::size_t kDimensions, typename Number>
void BoxTree<kDimensions, Number>::resize(std::size_t count) {
  constexpr Number kInfinity = std::numeric_limits<Number>::infinity();
  size_ = count;
  levels_.clear();
  std::size_t numbers = 0;
  for (std::size_t boxes = count, blocks = 0; blocks != 1; boxes = blocks) {
    blocks = std::max<std::size_t>((boxes + kBlock - 1) / kBlock, 1);
    levels_.push_back(numbers);
    numbers += blocks * kNumbers;
  }
  numbers_.resize(numbers);
  for (std::size_t row = 0; row < numbers; row += kBlock)
    std::fill_n(&numbers_[row], kBlock, row / kBlock % 2 == 0 ? kInfinity : -kInfinity);
}

template <std::size_t kDimensions, typename Number>
void BoxTree<kDimensions, Number>::assign(std::span<const Box> boxes) {
  resize(boxes.size());
  for (std::size_t k = 0; k < boxes.size(); ++k) {
    Number* const numbers = &numbers_[k / kBlock * kNumbers + k % kBlock];
    for (std::size_t d = 0; d < kDimensions; ++d) {
      numbers[2 * d * kBlock] = boxes[k].low[d];
      numbers[(2 * d + 1) * kBlock] = boxes[k].high[d];
    }
  }
  for (std::size_t level = 1; level < levels_.size(); ++level) {
    const std::size_t blocks = (levels_[level] - levels_[level - 1]) / kNumbers;
    for (std::size_t block = 0; block < blocks; ++block) {
      const Number* const below = &numbers_[levels_[level - 1] + block * kNumbers];
      Number* const numbers =
          &numbers_[levels_[level] + block / kBlock * kNumbers + block % kBlock];
      for (std::size_t row = 0; row < kNumbers; row += kBlock)
        numbers[row] = row / kBlock % 2 == 0 ? lowest(below + row) : highest(below + row);
    }
  }
}

template <std::size_t kDimensions, typename Number>
void BoxTree<kDimensions, Number>::set(std::size_t index, const Box& box) {
  for (std::size_t level = 0; level < levels_.size(); ++level, index /= kBlock) {
    Number* const numbers = &numbers_[levels_[level] + index / kBlock * kNumbers + index % kBlock];
    bool held = level > 0;  // and then by all above, too
    for (std::size_t d = 0; held && d < kDimensions; ++d)
      held = numbers[2 * d * kBlock] <= box.low[d] && box.high[d] <= numbers[(2 * d + 1) * kBlock];
    if (held) return;
    for (std::size_t d = 0; d < kDimensions; ++d) {
      Number& low = numbers[2 * d * kBlock];
      Number& high = numbers[(2 * d + 1) * kBlock];
      low = level == 0 ? box.low[d] : std::min(low, box.low[d]);
      high = level == 0 ? box.high[d] : std::max(high, box.high[d]);
    }
  }
}

template <std::size_t kDimensions, typename Number>
void BoxTree<kDimensions, Number>::clear(std::size_t index) {
  constexpr Number kInfinity = std::numeric_limits<Number>::infinity();
  Number* const numbers = &numbers_[index / kBlock * kNumbers + index % kBlock];
  for (std::size_t d = 0; d < kDimensions; ++d) {
    numbers[2 * d * kBlock] = kInfinity;
    numbers[(2 * d + 1) * kBlock] = -kInfinity;
  }
}

template <std::size_t kDimensions, typename Number>
typename BoxTree<kDimensions, Number>::Box BoxTree<kDimensions, Number>::box(
    std::size_t index) const {
  const Number* const numbers = &numbers_[index / kBlock * kNumbers + index % kBlock];
  Box box;
  for (std::size_t d = 0; d < kDimensions; ++d) {
    box.low[d] = numbers[2 * d * kBlock];
    box.high[d] = numbers[(2 * d + 1) * kBlock];
  }
  return box;
}

template <std::size_t kDimensions, typename Number>
void BoxTree<kDimensions, Number>::find(const Box& box, std::size_t begin, std::size_t end,
                                        std::vector<std::int32_t>& found) const {
  if (begin >= end) return;
  using namespace box_tree;
  const auto levels = levels_of(numbers_, levels_);
  const std::size_t top = levels_.size() - 1;
  if constexpr (kDimensions == 2) {
    KORVEX_VARIANT(FindInPlane)(levels.data(), top, box, begin, end, found);
  } else if constexpr (std::is_same_v<Number, double>) {
    KORVEX_VARIANT(FindInSpace)(levels.data(), top, box, begin, end, found);
  } else {
    KORVEX_VARIANT(FindRounded)(levels.data(), top, box, begin, end, found);
  }
}

template <std::size_t kDimensions, typename Number>
void BoxTree<kDimensions, Number>::find_beyond(const Box& box, std::size_t first, std::size_t last,
                                               std::vector<std::int32_t>& found) const {
  using namespace box_tree;
  const auto levels = levels_of(numbers_, levels_);
  const std::size_t top = levels_.size() - 1;
  if constexpr (kDimensions == 2) {
    KORVEX_VARIANT(FindBeyondInPlane)(levels.data(), top, box, first, last + 1, found);
  } else if constexpr (std::is_same_v<Number, double>) {
    KORVEX_VARIANT(FindBeyondInSpace)(levels.data(), top, box, first, last + 1, found);
  } else {
    KORVEX_VARIANT(FindBeyondRounded)(levels.data(), top, box, first, last + 1, found);
  }
}

template class BoxTree<2>;
template class BoxTree<3>;
template class BoxTree<3, float>;

}  // namespace korvex
#endif
