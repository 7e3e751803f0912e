#include "geometry/box_tree.hpp"

#include <algorithm>
#include <bit>
#include <cstring>
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

template <std::size_t kBlock>
constexpr std::uint32_t kWholeBlock = ~std::uint32_t{0} >> (32 - kBlock);

// Those of a block's places, the first of them `start`, that lie in begin..end-1, in bits.
template <std::size_t kBlock>
HWY_INLINE std::uint32_t places_within(std::size_t start, std::size_t begin, std::size_t end) {
  const std::size_t from = std::clamp(begin, start, start + kBlock) - start;
  const std::size_t to = std::clamp(end, start, start + kBlock) - start;
  return to > from ? (kWholeBlock<kBlock> >> (kBlock - (to - from))) << from : 0;
}

// Those of the block's boxes that meet the box, in bits.
template <std::size_t kDimensions, typename Number>
HWY_INLINE std::uint32_t meeting(const BoxBlock<kDimensions, Number>& block,
                                 const BoundingBox<kDimensions, Number>& box) {
  constexpr std::size_t kBlock = BoxBlock<kDimensions, Number>::kSize;
  const hn::CappedTag<Number, kBlock> d;
  std::uint32_t bits = 0;
  for (std::size_t k = 0; k < kBlock; k += hn::Lanes(d)) {
    auto apart = hn::Gt(hn::Load(d, &block.low[0][k]), hn::Set(d, box.high[0]));
    apart = hn::Or(apart, hn::Gt(hn::Set(d, box.low[0]), hn::Load(d, &block.high[0][k])));
    for (std::size_t dimension = 1; dimension < kDimensions; ++dimension) {
      const auto low = hn::Load(d, &block.low[dimension][k]);
      const auto high = hn::Load(d, &block.high[dimension][k]);
      apart = hn::Or(apart, hn::Gt(low, hn::Set(d, box.high[dimension])));
      apart = hn::Or(apart, hn::Gt(hn::Set(d, box.low[dimension]), high));
    }
    std::uint8_t bytes[8] = {};
    hn::StoreMaskBits(d, apart, bytes);
    std::uint32_t lanes = 0;
    std::memcpy(&lanes, bytes, sizeof lanes);
    bits |= lanes << k;
  }
  return ~bits & kWholeBlock<kBlock>;
}

template <std::size_t kDimensions, typename Number>
class Search {
 public:
  using Box = BoundingBox<kDimensions, Number>;
  using Block = BoxBlock<kDimensions, Number>;

  HWY_INLINE Search(const Block* const* levels, const Box& box, std::size_t begin, std::size_t end,
                    std::vector<std::int32_t>& found)
      : levels_(levels), box_(box), begin_(begin), end_(end), found_(found) {}

  void descend(std::size_t level, std::size_t block) {
    const Box box = box_;  // stays in registers
    if (level == 0) return look_at_leaves(block, box);
    const std::size_t span = std::size_t{1} << (kLogBlock * level);  // leaves below one box
    for (std::uint32_t bits = meeting(levels_[level][block], box); bits != 0; bits &= bits - 1) {
      const std::size_t child = kBlock * block + hwy::Num0BitsBelowLS1Bit_Nonzero32(bits);
      if (child * span >= end_) return;
      if ((child + 1) * span <= begin_) continue;
      if (level == 1)
        look_at_leaves(child, box);
      else
        descend(level - 1, child);
    }
  }

 private:
  static constexpr std::size_t kBlock = Block::kSize;
  static constexpr int kLogBlock = std::bit_width(kBlock) - 1;

  HWY_INLINE void look_at_leaves(std::size_t block, const Box& box) {
    const std::size_t start = kBlock * block;
    std::uint32_t bits = meeting(levels_[0][block], box);
    if (start < begin_ || start + kBlock > end_) bits &= places_within<kBlock>(start, begin_, end_);
    for (; bits != 0; bits &= bits - 1)
      found_.push_back(static_cast<std::int32_t>(start + hwy::Num0BitsBelowLS1Bit_Nonzero32(bits)));
  }

  const Block* const* const levels_;
  const Box& box_;
  const std::size_t begin_;
  const std::size_t end_;
  std::vector<std::int32_t>& found_;
};

void FindInPlane(const BoxBlock<2, double>* const* levels, std::size_t top,
                 const BoundingBox<2>& box, std::size_t begin, std::size_t end,
                 std::vector<std::int32_t>& found) {
  Search<2, double>(levels, box, begin, end, found).descend(top, 0);
}

void FindInSpace(const BoxBlock<3, double>* const* levels, std::size_t top,
                 const BoundingBox<3>& box, std::size_t begin, std::size_t end,
                 std::vector<std::int32_t>& found) {
  Search<3, double>(levels, box, begin, end, found).descend(top, 0);
}

void FindOnGrid(const BoxBlock<3, std::int16_t>* const* levels, std::size_t top,
                const BoundingBox<3, std::int16_t>& box, std::size_t begin, std::size_t end,
                std::vector<std::int32_t>& found) {
  Search<3, std::int16_t>(levels, box, begin, end, found).descend(top, 0);
}

}  // namespace
}  // namespace korvex::box_tree::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace korvex::box_tree {

KORVEX_VARIANTS(FindInPlane);
KORVEX_VARIANTS(FindInSpace);
KORVEX_VARIANTS(FindOnGrid);

}  // namespace korvex::box_tree

namespace korvex {
namespace {

// Of the numbers of a row, in pairs of neighbours: without branches, and not one after another.
template <typename Row, typename Choose>
auto of_all(Row row, Choose choose) {
  for (std::size_t half = row.size() / 2; half > 0; half /= 2)
    for (std::size_t k = 0; k < half; ++k) row[k] = choose(row[k], row[k + half]);
  return row[0];
}

// Of all boxes of a block.
template <std::size_t kDimensions, typename Number>
BoundingBox<kDimensions, Number> bounds(const BoxBlock<kDimensions, Number>& block) {
  BoundingBox<kDimensions, Number> box;
  for (std::size_t d = 0; d < kDimensions; ++d) {
    box.low[d] = of_all(block.low[d], [](Number a, Number b) { return std::min(a, b); });
    box.high[d] = of_all(block.high[d], [](Number a, Number b) { return std::max(a, b); });
  }
  return box;
}

}  // namespace

template <std::size_t kDimensions, typename Number>
void BoxTree<kDimensions, Number>::resize(std::size_t count) {
  size_ = count;
  levels_.clear();
  std::size_t all = 0;
  for (std::size_t boxes = count, blocks = 0; blocks != 1; boxes = blocks) {
    blocks = std::max<std::size_t>((boxes + kBlock - 1) / kBlock, 1);
    levels_.push_back(all);
    all += blocks;
  }
  blocks_.assign(all, Block::empty());
}

template <std::size_t kDimensions, typename Number>
void BoxTree<kDimensions, Number>::bound() {
  for (std::size_t level = 1; level < levels_.size(); ++level) {
    const std::size_t below = levels_[level - 1], begin = levels_[level];
    for (std::size_t block = below; block < begin; ++block) {
      const std::size_t index = block - below;
      blocks_[begin + index / kBlock].set(index % kBlock, bounds(blocks_[block]));
    }
  }
}

template <std::size_t kDimensions, typename Number>
void BoxTree<kDimensions, Number>::set(std::size_t index, const Box& box) {
  lay(index, box);
  for (std::size_t level = 1; level < levels_.size(); ++level) {
    index /= kBlock;
    Block& block = blocks_[levels_[level] + index / kBlock];
    Box around = block.box(index % kBlock);
    bool held = true;  // and then by all above, too
    for (std::size_t d = 0; d < kDimensions; ++d) {
      held = held && around.low[d] <= box.low[d] && box.high[d] <= around.high[d];
      around.low[d] = std::min(around.low[d], box.low[d]);
      around.high[d] = std::max(around.high[d], box.high[d]);
    }
    if (held) return;
    block.set(index % kBlock, around);
  }
}

template <std::size_t kDimensions, typename Number>
void BoxTree<kDimensions, Number>::find(const Box& box, std::size_t begin, std::size_t end,
                                        std::vector<std::int32_t>& found) const {
  if (begin >= end) return;
  using namespace box_tree;
  constexpr std::size_t kMostLevels = 16;
  const std::size_t top = levels_.size() - 1;
  std::array<const Block*, kMostLevels> levels;
  for (std::size_t level = 0; level <= top; ++level)
    levels[level] = blocks_.data() + levels_[level];
  if constexpr (kDimensions == 2)
    KORVEX_VARIANT(FindInPlane)(levels.data(), top, box, begin, end, found);
  else if constexpr (std::is_same_v<Number, double>)
    KORVEX_VARIANT(FindInSpace)(levels.data(), top, box, begin, end, found);
  else
    KORVEX_VARIANT(FindOnGrid)(levels.data(), top, box, begin, end, found);
}

template class BoxTree<2>;
template class BoxTree<3>;
template class BoxTree<3, std::int16_t>;

}  // namespace korvex
#endif
