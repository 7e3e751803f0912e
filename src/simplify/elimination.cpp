#include "simplify/elimination.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <limits>

namespace korvex::simplify {

namespace {

constexpr std::size_t kWordBits = 64;

// The largest magnitude of a coordinate; NaN when any is.
float largest_coordinate(std::span<const fPointR3> points) {
  float largest = 0;
  for (const fPointR3& point : points) {
    for (const float c : {point.x, point.y, point.z}) {
      const float size = std::fabs(c);
      if (!(size <= largest)) largest = size;
      if (std::isnan(largest)) return largest;
    }
  }
  return largest;
}

// Whether a segment blocks the triangle at `i`, tested plainly. Points i + 1 and i + 2 exist, those
// of the last triangle but one wrapping around.
bool plainly_blocked(std::span<const fPointR3> chain, std::size_t i) {
  const std::size_t n = chain.size();
  const fPointR3& a = chain[i];
  const fPointR3& b = chain[i + 1];
  const fPointR3& c = chain[i + 2 == n ? 0 : i + 2];
  for (std::size_t k = 0; k + 2 <= i; ++k)
    if (meet(a, b, c, chain[k], chain[k + 1]) > 0) return true;
  for (std::size_t m = i + 3; m + 2 <= n; ++m)
    if (meet(a, b, c, chain[m], chain[m + 1]) > 0) return true;
  return i > 0 && i + 3 < n && meet(a, b, c, chain[n - 1], chain[0]) > 0;
}

// The plain form, for chains too short to repay the preparations of the other.
constexpr std::size_t kShort = 14;

std::size_t reduce_plainly(std::span<fPointR3> chain) {
  std::array<fPointR3, kShort> working{};
  std::copy(chain.begin(), chain.end(), working.begin());
  std::span<fPointR3> left(working.data(), chain.size());
  for (std::size_t i = 0; left.size() > 3 && i + 1 < left.size();) {
    if (plainly_blocked(left, i)) {
      ++i;
      continue;
    }
    const auto removed = left.begin() + static_cast<std::ptrdiff_t>(i) + 1;
    std::copy(removed + 1, left.end(), removed);
    left = left.first(left.size() - 1);
    i = 0;
  }
  std::copy(left.begin(), left.end(), chain.begin());
  return left.size();
}

}  // namespace

std::size_t TriangleElimination::reduce(std::span<fPointR3> chain) {
  if (chain.size() <= kShort) return reduce_plainly(chain);
  points_.assign(chain.begin(), chain.end());
  slots_ = live_ = chain.size();
  largest_coordinate_ = largest_coordinate(chain);
  load();
  Index triangle = 0;
  while (live_ > 3 && next_in_doubt(triangle)) {
    if (blocked(triangle)) continue;
    remove_after(triangle);
    if (live_ < slots_ / 2) compact();
  }
  if (live_ == chain.size()) return live_;
  Index slot = 0;
  for (std::size_t kept = 0; kept < live_; ++kept, slot = next_[slot]) chain[kept] = points_[slot];
  return live_;
}

// Puts every triangle in doubt but the last, whose middle point does not exist.
void TriangleElimination::load() {
  watches_.assign(slots_, {kNone, kNone, kNone, false});
  in_doubt_.assign((slots_ + kWordBits - 1) / kWordBits, 0);
  link_slots();
  for (Index triangle = 0; triangle != last_; ++triangle) put_in_doubt(triangle);
}

// Makes the chain and the segments of points_[0 .. slots_), watched by none.
void TriangleElimination::link_slots() {
  last_ = static_cast<Index>(slots_ - 1);
  segments_.resize((slots_ + SegmentBlock::kSegments - 1) / SegmentBlock::kSegments);
  next_.resize(slots_);
  previous_.resize(slots_);
  first_watcher_.assign(slots_, kNone);
  for (Index slot = 0; slot <= last_; ++slot) {
    next_[slot] = slot == last_ ? 0 : slot + 1;
    previous_[slot] = slot == 0 ? last_ : slot - 1;
    place_segment(slot, points_[slot], points_[next_[slot]]);
  }
  for (std::size_t slot = slots_; slot < segments_.size() * SegmentBlock::kSegments; ++slot)
    empty_slot(static_cast<Index>(slot));
  first_doubtful_word_ = 0;
}

void TriangleElimination::place_segment(Index slot, const fPointR3& p, const fPointR3& q) {
  SegmentBlock& block = segments_[slot / SegmentBlock::kSegments];
  const std::size_t place = slot % SegmentBlock::kSegments;
  block.px[place] = p.x;
  block.py[place] = p.y;
  block.pz[place] = p.z;
  block.qx[place] = q.x;
  block.qy[place] = q.y;
  block.qz[place] = q.z;
}

void TriangleElimination::empty_slot(Index slot) {
  constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
  place_segment(slot, {kNaN, kNaN, kNaN}, {kNaN, kNaN, kNaN});
}

// Takes the lowest triangle in doubt.
bool TriangleElimination::next_in_doubt(Index& triangle) {
  for (; first_doubtful_word_ < in_doubt_.size(); ++first_doubtful_word_) {
    std::uint64_t& word = in_doubt_[first_doubtful_word_];
    if (word == 0) continue;
    triangle = static_cast<Index>(first_doubtful_word_ * kWordBits +
                                  static_cast<std::size_t>(std::countr_zero(word)));
    word &= word - 1;
    return true;
  }
  return false;
}

void TriangleElimination::put_in_doubt(Index triangle) {
  const std::size_t word = triangle / kWordBits;
  in_doubt_[word] |= std::uint64_t{1} << (triangle % kWordBits);
  first_doubtful_word_ = std::min(first_doubtful_word_, word);
}

// Whether the triangle was in doubt; it no longer is.
bool TriangleElimination::take_doubt(Index triangle) {
  std::uint64_t& word = in_doubt_[triangle / kWordBits];
  const std::uint64_t bit = std::uint64_t{1} << (triangle % kWordBits);
  const bool was = (word & bit) != 0;
  word &= ~bit;
  return was;
}

void TriangleElimination::watch(Index triangle, Index segment) {
  const Index head = first_watcher_[segment];
  watches_[triangle] = {segment, kNone, head, true};
  if (head != kNone) watches_[head].earlier = triangle;
  first_watcher_[segment] = triangle;
}

void TriangleElimination::unwatch(Index triangle) {
  Watch& own = watches_[triangle];
  if (!own.listed) return;
  own.listed = false;
  if (own.later != kNone) watches_[own.later].earlier = own.earlier;
  if (own.earlier != kNone)
    watches_[own.earlier].later = own.later;
  else
    first_watcher_[own.witness] = own.later;
}

// The segment changes: its watchers are in doubt, and try `replacement` first.
void TriangleElimination::release_watchers(Index segment, Index replacement) {
  Index triangle = first_watcher_[segment];
  first_watcher_[segment] = kNone;
  while (triangle != kNone) {
    Watch& own = watches_[triangle];
    own.listed = false;
    own.witness = replacement;
    put_in_doubt(triangle);
    triangle = own.later;
  }
}

// Whether the segment shares a point with the triangle's own two sides. Such a one is never tested,
// but for the first segment against the triangle that wraps around to the chain's start.
bool TriangleElimination::touches(Index triangle, Index segment) const {
  const Index b = next_[triangle];
  return segment == previous_[triangle] || segment == triangle || segment == b ||
         segment == next_[b];
}

bool TriangleElimination::blocked(Index triangle) {
  const Index b = next_[triangle];
  const Index c = next_[b];
  const Index likely = watches_[triangle].witness;
  if (likely != kNone && !touches(triangle, likely) && next_[likely] != kNone &&
      meet(points_[triangle], points_[b], points_[c], points_[likely], points_[next_[likely]]) >
          0) {
    watch(triangle, likely);
    return true;
  }
  SlotRanges ranges{0, 0, 0, 0};
  if (triangle != 0) ranges.below_end = previous_[triangle];
  if (b != last_) {
    ranges.above_first = std::size_t{c} + 1;
    ranges.above_end = triangle == 0 ? last_ : std::size_t{last_} + 1;
  }
  const ScannedTriangle tested(points_[triangle], points_[b], points_[c], largest_coordinate_);
  const std::size_t segment = find_blocker(segments_.data(), tested, ranges);
  if (segment == kNoSlot) {
    watches_[triangle].witness = kNone;
    return false;
  }
  watch(triangle, static_cast<Index>(segment));
  return true;
}

// Removes the middle point of `triangle`, which is neither in doubt nor watching.
void TriangleElimination::remove_after(Index triangle) {
  const Index removed = next_[triangle];
  const Index after = next_[removed];
  release_watchers(triangle, triangle);
  release_watchers(removed, triangle);
  unwatch(removed);
  take_doubt(removed);
  next_[triangle] = after;
  previous_[after] = triangle;
  next_[removed] = kNone;
  place_segment(triangle, points_[triangle], points_[after]);
  empty_slot(removed);
  --live_;
  if (removed == last_)
    last_ = triangle;
  else
    put_in_doubt(triangle);
  if (triangle != 0) {
    unwatch(previous_[triangle]);
    put_in_doubt(previous_[triangle]);
  }
}

// Closes the gaps that removed points have left.
void TriangleElimination::compact() {
  std::vector<Index>& renamed = previous_;
  Index slot = 0;
  for (Index kept = 0; kept < live_; ++kept, slot = next_[slot]) renamed[slot] = kept;
  slot = 0;
  for (Index kept = 0; kept < live_; ++kept, slot = next_[slot]) {
    Watch own = watches_[slot];
    const bool known = own.witness != kNone && next_[own.witness] != kNone;
    own.witness = known ? renamed[own.witness] : kNone;
    watches_[kept] = own;
    points_[kept] = points_[slot];
    if (take_doubt(slot)) put_in_doubt(kept);
  }
  slots_ = live_;
  link_slots();
  for (Index triangle = 0; triangle < live_; ++triangle)
    if (watches_[triangle].listed) watch(triangle, watches_[triangle].witness);
}

}  // namespace korvex::simplify
