#include "crossings/pair_filter.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>
#include <numeric>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "crossings/pair_filter.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/dispatch.hpp"

HWY_BEFORE_NAMESPACE();
namespace korvex::crossings::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;
using Tag = hn::CappedTag<double, kBlock>;
using Numbers = hn::Vec<Tag>;
using Lanes = hn::Mask<Tag>;

// A lane a bit, from the lowest.
HWY_INLINE std::uint32_t bits(Lanes lanes) {
  std::uint8_t bytes[8] = {};
  hn::StoreMaskBits(Tag(), lanes, bytes);
  return bytes[0];
}

// Of the ranges from `low` and `high` on, those that share a number with from..to.
HWY_INLINE Lanes overlap(const double* low, const double* high, double from, double to) {
  const Tag d;
  return hn::And(hn::Le(hn::Load(d, low), hn::Set(d, to)),
                 hn::Ge(hn::Load(d, high), hn::Set(d, from)));
}

HWY_INLINE Lanes is_outside(Numbers position) {
  const Tag d;
  return hn::Or(hn::Lt(position, hn::Zero(d)), hn::Gt(position, hn::Set(d, 1.0)));
}

// Whether the positions, computed as the crossing test has it, leave neither edge.
HWY_INLINE Lanes crosses(const EdgeColumns& edges, const FirstEdge& first, std::size_t j,
                         Numbers dx, Numbers det) {
  const Tag d;
  const Numbers x2 = hn::Load(d, edges.x2 + j);
  const Numbers y2 = hn::Load(d, edges.y2 + j);
  const Numbers top = hn::Sub(hn::Mul(hn::Set(d, first.dx), hn::Sub(y2, hn::Set(d, first.y2))),
                              hn::Mul(hn::Set(d, first.dy), hn::Sub(x2, hn::Set(d, first.x2))));
  const Numbers u = hn::Div(top, det);
  const Numbers s =
      hn::Div(hn::Sub(hn::Add(x2, hn::Mul(dx, u)), hn::Set(d, first.x2)), hn::Set(d, first.dx));
  return hn::Not(hn::Or(is_outside(s), is_outside(u)));
}

// Of the edges from j on, those that the first edge may meet.
HWY_INLINE Lanes may_meet(const EdgeColumns& edges, const FirstEdge& first, std::size_t j) {
  const Tag d;
  const Numbers dx = hn::Load(d, edges.dx + j);
  const Numbers dy = hn::Load(d, edges.dy + j);
  const Numbers det = hn::Sub(hn::Mul(hn::Set(d, first.dy), dx), hn::Mul(hn::Set(d, first.dx), dy));
  const Lanes parallel = hn::Eq(det, hn::Zero(d));
  const Lanes beside = overlap(edges.left + j, edges.right + j, first.left, first.right);
  const Lanes level = overlap(edges.bottom + j, edges.top + j, first.bottom, first.top);
  const Lanes near = hn::And(level, hn::Or(beside, parallel));
  if (hn::AllFalse(d, near)) return near;
  return hn::And(near, hn::Or(crosses(edges, first, j, dx, det), parallel));
}

// The blocks from b on, in bits, that the first edge is not apart from in y.
HWY_INLINE std::uint32_t near_blocks(const EdgeColumns& edges, const FirstEdge& first,
                                     std::size_t b) {
  std::uint32_t near = 0;
  for (std::size_t k = 0; k < kBlock; k += hn::Lanes(Tag())) {
    near |=
        bits(overlap(edges.block_bottom + b + k, edges.block_top + b + k, first.bottom, first.top))
        << k;
  }
  return near;
}

// The edges of the block from j on, in bits, that the first edge may meet.
HWY_INLINE std::uint32_t near_edges(const EdgeColumns& edges, const FirstEdge& first,
                                    std::size_t j) {
  std::uint32_t near = 0;
  for (std::size_t k = 0; k < kBlock; k += hn::Lanes(Tag())) {
    const Lanes lanes = may_meet(edges, first, j + k);
    if (HWY_UNLIKELY(!hn::AllFalse(Tag(), lanes))) near |= bits(lanes) << k;
  }
  return near;
}

std::size_t FindCandidates(const EdgeColumns& edges, const FirstEdge& first, std::size_t from,
                           std::size_t to, std::uint32_t* found) {
  constexpr std::size_t kGroup = kBlock * kBlock;
  std::uint32_t* end = found;
  for (std::size_t group = from / kGroup * kGroup; group < to; group += kGroup) {
    std::uint32_t blocks = near_blocks(edges, first, group / kBlock);
    if (group < from) blocks &= ~0U << ((from - group) / kBlock);
    for (; blocks != 0; blocks &= blocks - 1) {
      const std::size_t j = group + kBlock * hwy::Num0BitsBelowLS1Bit_Nonzero32(blocks);
      if (j >= to) break;
      std::uint32_t near = near_edges(edges, first, j);
      if (HWY_LIKELY(near == 0)) continue;
      if (j < from) near &= ~0U << (from - j);
      if (to - j < kBlock) near &= ~(~0U << (to - j));
      for (; near != 0; near &= near - 1)
        *end++ = static_cast<std::uint32_t>(j + hwy::Num0BitsBelowLS1Bit_Nonzero32(near));
    }
  }
  return static_cast<std::size_t>(end - found);
}

}  // namespace
}  // namespace korvex::crossings::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace korvex::crossings {

KORVEX_VARIANTS(FindCandidates);

namespace {

// Where the largest coordinate is within these, no product of the crossing test overflows and what
// underflows does not matter.
constexpr double kSmallest = 1e-100;
constexpr double kLargest = 1e150;
constexpr double kInfinity = std::numeric_limits<double>::infinity();

std::size_t rounded_up(std::size_t n, std::size_t step) { return (n + step - 1) / step * step; }

}  // namespace

PairFilter::PairFilter(const std::vector<Edge>& edges) {
  find_ = &KORVEX_VARIANT(FindCandidates);
  const std::size_t length = rounded_up(edges.size(), kBlock);
  const std::size_t blocks = rounded_up(length / kBlock, kBlock);
  found_ = std::make_unique_for_overwrite<std::uint32_t[]>(length);
  numbers_.reset(new (std::align_val_t(kAlignment)) double[8 * length + 2 * blocks]);
  double* next = numbers_.get();
  for (double** column : {&columns_.x2, &columns_.y2, &columns_.dx, &columns_.dy, &columns_.left,
                          &columns_.right, &columns_.bottom, &columns_.top}) {
    *column = next;
    next += length;
  }
  columns_.block_bottom = next;
  columns_.block_top = next + blocks;
  fill(edges);
  fill_blocks(edges.size(), blocks);
}

void PairFilter::fill(const std::vector<Edge>& edges) {
  const std::size_t n = edges.size();
  const EdgeColumns columns = columns_;
  double largest = 0;
  double sum = 0;  // of magnitudes: not finite when one of them is not
  for (std::size_t k = 0; k < n; ++k) {
    const Edge& edge = edges[k];
    columns.x2[k] = edge.x2;
    columns.y2[k] = edge.y2;
    columns.dx[k] = edge.x1 - edge.x2;
    columns.dy[k] = edge.y1 - edge.y2;
    columns.left[k] = std::min(edge.x1, edge.x2);
    columns.right[k] = std::max(edge.x1, edge.x2);
    columns.bottom[k] = std::min(edge.y1, edge.y2);
    columns.top[k] = std::max(edge.y1, edge.y2);
    const double magnitudes[] = {std::fabs(edge.x1), std::fabs(edge.x2), std::fabs(edge.y1),
                                 std::fabs(edge.y2)};
    sum += (magnitudes[0] + magnitudes[1]) + (magnitudes[2] + magnitudes[3]);
    largest = std::max(largest, std::max(std::max(magnitudes[0], magnitudes[1]),
                                         std::max(magnitudes[2], magnitudes[3])));
  }
  for (std::size_t k = n; k < rounded_up(n, kBlock); ++k)
    for (double* column : {columns.x2, columns.y2, columns.dx, columns.dy, columns.left,
                           columns.right, columns.bottom, columns.top})
      column[k] = 0;
  largest_ = largest;
  is_usable_ = largest >= kSmallest && sum <= kLargest;
}

void PairFilter::fill_blocks(std::size_t n, std::size_t blocks) {
  for (std::size_t b = 0; b < blocks; ++b) {
    double bottom = kInfinity;
    double top = -kInfinity;
    for (std::size_t k = b * kBlock; k < std::min((b + 1) * kBlock, n); ++k) {
      bottom = std::min(bottom, columns_.bottom[k]);
      top = std::max(top, columns_.top[k]);
    }
    columns_.block_bottom[b] = bottom;
    columns_.block_top[b] = top;
  }
}

// With u and s in 0..1 the points that the crossing test has for the meeting lie in the x ranges of
// both edges but for a few roundings of `largest_`, and in the y ranges but for those times the
// first edge's slope. A steep edge's slope bounds nothing.
FirstEdge PairFilter::first_edge(std::size_t i) const {
  const EdgeColumns& c = columns_;
  const double dx = std::fabs(c.dx[i]);
  const double dy = std::fabs(c.dy[i]);
  const bool is_steep = dx < 0x1p-20 * dy || dx < 0x1p-60 * largest_;
  const double margin_x = 0x1p-25 * largest_;
  const double margin_y = is_steep ? 4 * largest_ : margin_x;
  return {c.x2[i],
          c.y2[i],
          c.dx[i],
          c.dy[i],
          c.left[i] - margin_x,
          c.right[i] + margin_x,
          c.bottom[i] - margin_y,
          c.top[i] + margin_y};
}

std::span<const std::uint32_t> PairFilter::candidates(std::size_t i, std::size_t from,
                                                      std::size_t to) {
  if (from >= to) return {};
  if (!is_usable_ || columns_.dx[i] == 0) {
    std::iota(found_.get(), found_.get() + (to - from), static_cast<std::uint32_t>(from));
    return {found_.get(), to - from};
  }
  return {found_.get(), find_(columns_, first_edge(i), from, to, found_.get())};
}

}  // namespace korvex::crossings
#endif
