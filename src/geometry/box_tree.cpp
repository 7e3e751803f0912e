#include "geometry/box_tree.hpp"

#include <algorithm>

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
using Tag = hn::CappedTag<double, kBlock>;

// Those of the block's boxes that meet the box, in bits.
template <std::size_t kDimensions>
HWY_INLINE std::uint32_t meeting(const double* block, const BoundingBox<kDimensions>& box) {
  const Tag d;
  std::uint32_t bits = 0;
  for (std::size_t k = 0; k < kBlock; k += hn::Lanes(d)) {
    auto lanes = hn::Le(hn::LoadU(d, block + k), hn::Set(d, box.high[0]));
    lanes = hn::And(lanes, hn::Ge(hn::LoadU(d, block + kBlock + k), hn::Set(d, box.low[0])));
    for (std::size_t dimension = 1; dimension < kDimensions; ++dimension) {
      const double* const row = block + 2 * dimension * kBlock + k;
      lanes = hn::And(lanes, hn::Le(hn::LoadU(d, row), hn::Set(d, box.high[dimension])));
      lanes = hn::And(lanes, hn::Ge(hn::LoadU(d, row + kBlock), hn::Set(d, box.low[dimension])));
    }
    std::uint8_t bytes[8] = {};
    hn::StoreMaskBits(d, lanes, bytes);
    bits |= (bytes[0] | static_cast<std::uint32_t>(bytes[1]) << 8) << k;
  }
  return bits;
}

template <std::size_t kDimensions>
void descend(const double* const* levels, std::size_t level, std::size_t block,
             const BoundingBox<kDimensions>& box, std::size_t begin, std::size_t end,
             std::vector<std::int32_t>& found) {
  const std::size_t span = std::size_t{1} << (kLogBlock * level);  // leaves below one box
  const double* const numbers = levels[level] + 2 * kDimensions * kBlock * block;
  for (std::uint32_t bits = meeting(numbers, box); bits != 0; bits &= bits - 1) {
    const std::size_t child = kBlock * block + hwy::Num0BitsBelowLS1Bit_Nonzero32(bits);
    if (child * span >= end) return;
    if ((child + 1) * span <= begin) continue;
    if (level == 0) {
      found.push_back(static_cast<std::int32_t>(child));
    } else {
      descend(levels, level - 1, child, box, begin, end, found);
    }
  }
}

void FindInPlane(const double* const* levels, std::size_t top, const BoundingBox<2>& box,
                 std::size_t begin, std::size_t end, std::vector<std::int32_t>& found) {
  descend(levels, top, 0, box, begin, end, found);
}

void FindInSpace(const double* const* levels, std::size_t top, const BoundingBox<3>& box,
                 std::size_t begin, std::size_t end, std::vector<std::int32_t>& found) {
  descend(levels, top, 0, box, begin, end, found);
}

}  // namespace
}  // namespace korvex::box_tree::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace korvex::box_tree {

KORVEX_VARIANTS(FindInPlane);
KORVEX_VARIANTS(FindInSpace);

}  // namespace korvex::box_tree

namespace korvex {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr std::size_t kMostLevels = 16;

}  // namespace

template <std::size_t kDimensions>
BoxTree<kDimensions>::BoxTree(std::size_t count) : size_(count) {
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

template <std::size_t kDimensions>
void BoxTree<kDimensions>::set(std::size_t index, const Box& box) {
  for (std::size_t level = 0; level < levels_.size(); ++level, index /= kBlock) {
    double* const numbers = &numbers_[levels_[level] + index / kBlock * kNumbers + index % kBlock];
    for (std::size_t d = 0; d < kDimensions; ++d) {
      double& low = numbers[2 * d * kBlock];
      double& high = numbers[(2 * d + 1) * kBlock];
      low = level == 0 ? box.low[d] : std::min(low, box.low[d]);
      high = level == 0 ? box.high[d] : std::max(high, box.high[d]);
    }
  }
}

template <std::size_t kDimensions>
void BoxTree<kDimensions>::clear(std::size_t index) {
  double* const numbers = &numbers_[index / kBlock * kNumbers + index % kBlock];
  for (std::size_t d = 0; d < kDimensions; ++d) {
    numbers[2 * d * kBlock] = kInfinity;
    numbers[(2 * d + 1) * kBlock] = -kInfinity;
  }
}

template <std::size_t kDimensions>
typename BoxTree<kDimensions>::Box BoxTree<kDimensions>::box(std::size_t index) const {
  const double* const numbers = &numbers_[index / kBlock * kNumbers + index % kBlock];
  Box box;
  for (std::size_t d = 0; d < kDimensions; ++d) {
    box.low[d] = numbers[2 * d * kBlock];
    box.high[d] = numbers[(2 * d + 1) * kBlock];
  }
  return box;
}

template <std::size_t kDimensions>
void BoxTree<kDimensions>::find(const Box& box, std::size_t begin, std::size_t end,
                                std::vector<std::int32_t>& found) const {
  if (begin >= end) return;
  using namespace box_tree;
  std::array<const double*, kMostLevels> levels;
  for (std::size_t level = 0; level < levels_.size(); ++level)
    levels[level] = numbers_.data() + levels_[level];
  const std::size_t top = levels_.size() - 1;
  if constexpr (kDimensions == 2)
    KORVEX_VARIANT(FindInPlane)(levels.data(), top, box, begin, end, found);
  if constexpr (kDimensions == 3)
    KORVEX_VARIANT(FindInSpace)(levels.data(), top, box, begin, end, found);
}

template class BoxTree<2>;
template class BoxTree<3>;

}  // namespace korvex
#endif
