#include "simplify/segment_scan.hpp"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "simplify/segment_scan.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/dispatch.hpp"

HWY_BEFORE_NAMESPACE();
namespace korvex::simplify::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using Tag = hn::CappedTag<float, SegmentBlock::kSegments>;
using Floats = hn::Vec<Tag>;
using Bools = hn::Mask<Tag>;

struct Vectors {
  Floats x;
  Floats y;
  Floats z;
};

HWY_INLINE Vectors spread(const Vector& v) {
  const Tag tag;
  return {hn::Set(tag, v.x), hn::Set(tag, v.y), hn::Set(tag, v.z)};
}

HWY_INLINE Vectors minus(const Vectors& a, const Vectors& b) {
  return {hn::Sub(a.x, b.x), hn::Sub(a.y, b.y), hn::Sub(a.z, b.z)};
}

HWY_INLINE Floats determinant2(Floats a, Floats b, Floats c, Floats d) {
  return hn::Sub(hn::Mul(a, b), hn::Mul(c, d));
}

HWY_INLINE Vectors cross_product(const Vectors& a, const Vectors& b) {
  return {determinant2(a.y, b.z, a.z, b.y), determinant2(a.z, b.x, a.x, b.z),
          determinant2(a.x, b.y, a.y, b.x)};
}

HWY_INLINE Floats dot_product(const Vectors& a, const Vectors& b) {
  return hn::Add(hn::Add(hn::Mul(a.x, b.x), hn::Mul(a.y, b.y)), hn::Mul(a.z, b.z));
}

HWY_INLINE Floats scaled_dot(const Vectors& r, const Vectors& cofactor, Floats divisor) {
  return dot_product(r, {hn::Div(cofactor.x, divisor), hn::Div(cofactor.y, divisor),
                         hn::Div(cofactor.z, divisor)});
}

HWY_INLINE Bools between(float low, Floats value, float high) {
  const Tag tag;
  return hn::And(hn::Lt(hn::Set(tag, low), value), hn::Lt(value, hn::Set(tag, high)));
}

HWY_INLINE Bools inside(Floats value) {
  const Tag tag;
  return hn::And(hn::Le(hn::Set(tag, kTolerance), value), hn::Le(value, hn::Set(tag, kBelowOne)));
}

// Lane by lane whether the plain test's last step is not 0.
HWY_INLINE Bools placed(Floats u, Floats v, Floats w) {
  const Tag tag;
  const Floats s = hn::Add(u, v);
  const auto at_zero = [](Floats c) { return between(-kTolerance, c, kTolerance); };
  const auto at_one = [](Floats c) { return between(kBelowOne, c, kAboveOne); };
  const auto within = [](Floats c) { return between(-kTolerance, c, kAboveOne); };
  const Bools u_within = within(u);
  const Bools v_within = within(v);
  const Bools w_within = within(w);
  const Bools pierces = hn::And(hn::And(inside(u), inside(v)),
                                hn::And(inside(w), hn::Le(s, hn::Set(tag, kBelowOne))));
  const Bools on_ac = hn::And(at_zero(u), hn::And(v_within, w_within));
  const Bools on_ab = hn::And(at_zero(v), hn::And(u_within, w_within));
  const Bools on_bc = hn::And(hn::And(at_one(s), u_within), hn::And(v_within, w_within));
  const Bools in_triangle =
      hn::And(hn::And(hn::Gt(u, hn::Set(tag, -kTolerance)), hn::Gt(v, hn::Set(tag, -kTolerance))),
              hn::Lt(s, hn::Set(tag, kAboveOne)));
  const Bools end_in = hn::And(in_triangle, hn::Or(at_zero(w), at_one(w)));
  return hn::Or(hn::Or(pierces, end_in), hn::Or(on_ac, hn::Or(on_ab, on_bc)));
}

// Whether the coordinate r . cofactor / determinant is certain to lie outside [-1e-5, 1.00002],
// whatever the rounding of the plain test, which divides before it sums: the two differ by less
// than 8 roundings of the sum of magnitudes. Never true where underflow could blur that.
HWY_INLINE Bools surely_outside(const Vectors& r, const Vectors& cofactor, Floats determinant) {
  const Tag tag;
  const Floats x = hn::Mul(r.x, cofactor.x);
  const Floats y = hn::Mul(r.y, cofactor.y);
  const Floats z = hn::Mul(r.z, cofactor.z);
  const Floats sum = hn::Add(hn::Add(x, y), z);
  const Floats magnitude = hn::Add(hn::Add(hn::Abs(x), hn::Abs(y)), hn::Abs(z));
  const Floats size = hn::Abs(determinant);
  const Floats slack =
      hn::Add(hn::Mul(size, hn::Set(tag, 0x1p-15F)), hn::Mul(magnitude, hn::Set(tag, 0x1p-20F)));
  const Floats signed_sum = hn::Xor(sum, hn::And(determinant, hn::SignBit(tag)));
  const Bools outside = hn::Or(hn::Lt(hn::Add(signed_sum, slack), hn::Zero(tag)),
                               hn::Gt(hn::Sub(signed_sum, slack), size));
  return hn::And(outside, hn::Gt(size, hn::Set(tag, 1e-30F)));
}

struct Scan {
  Vectors a;
  Vectors e1;
  Vectors e2;
  Vectors normal;
  Floats offset;
  Floats slack;
  bool by_height;

  explicit Scan(const ScannedTriangle& triangle)
      : a(spread({triangle.a.x, triangle.a.y, triangle.a.z})),
        e1(spread(triangle.e1)),
        e2(spread(triangle.e2)),
        normal(spread(triangle.normal)),
        offset(hn::Set(Tag(), triangle.offset)),
        slack(hn::Set(Tag(), triangle.slack)),
        by_height(triangle.slack == triangle.slack) {}

  // Both ends clear of the plane on one side, and not at one height: the segment misses. An empty
  // place is NaN and compares false throughout.
  HWY_INLINE Bools perhaps(const Vectors& p, const Vectors& q) const {
    const Floats at_p = hn::Add(dot_product(normal, p), offset);
    const Floats at_q = hn::Add(dot_product(normal, q), offset);
    const Bools level = hn::Le(hn::Abs(hn::Sub(at_p, at_q)), slack);
    return hn::Or(level, hn::And(hn::Le(hn::Min(at_p, at_q), slack),
                                 hn::Ge(hn::Max(at_p, at_q), hn::Neg(slack))));
  }

  // Of the lanes `asked`, those that block.
  HWY_INLINE Bools blocking(const Vectors& p, const Vectors& q, Bools asked) const {
    const Tag tag;
    const Vectors d = minus(p, q);
    const Vectors r = minus(p, a);
    const Vectors e2_d = cross_product(e2, d);
    const Floats determinant = dot_product(e1, e2_d);
    const Bools flat = hn::And(asked, hn::Eq(determinant, hn::Zero(tag)));
    if (!hn::AllFalse(tag, flat)) return flat;
    if (by_height) {
      asked = hn::AndNot(surely_outside(r, e2_d, determinant), asked);
      if (hn::AllFalse(tag, asked)) return asked;
    }
    const Vectors d_e1 = cross_product(d, e1);
    if (by_height) {
      asked = hn::AndNot(surely_outside(r, d_e1, determinant), asked);
      if (hn::AllFalse(tag, asked)) return asked;
    }
    const Floats u = scaled_dot(r, e2_d, determinant);
    const Floats v = scaled_dot(r, d_e1, determinant);
    const Floats w = scaled_dot(r, normal, determinant);
    return hn::And(asked, placed(u, v, w));
  }

  // The first blocking slot of the lanes from `slot` on that are within [first, end).
  HWY_INLINE std::size_t step(const SegmentBlock* blocks, std::size_t slot, std::size_t first,
                              std::size_t end) const {
    const Tag tag;
    const SegmentBlock& block = blocks[slot / SegmentBlock::kSegments];
    const std::size_t place = slot % SegmentBlock::kSegments;
    const Vectors p{hn::Load(tag, block.px + place), hn::Load(tag, block.py + place),
                    hn::Load(tag, block.pz + place)};
    const Vectors q{hn::Load(tag, block.qx + place), hn::Load(tag, block.qy + place),
                    hn::Load(tag, block.qz + place)};
    Bools asked = hn::FirstN(tag, end - slot);
    if (slot < first) asked = hn::AndNot(hn::FirstN(tag, first - slot), asked);
    if (by_height) {
      asked = hn::And(asked, perhaps(p, q));
      if (hn::AllFalse(tag, asked)) return kNoSlot;
    }
    const Bools hits = blocking(p, q, asked);
    if (hn::AllFalse(tag, hits)) return kNoSlot;
    return slot + hn::FindKnownFirstTrue(tag, hits);
  }
};

std::size_t FindBlocker(const SegmentBlock* blocks, const ScannedTriangle& triangle,
                        const SlotRanges& ranges) {
  const Scan scan(triangle);
  const std::size_t lanes = hn::Lanes(Tag());
  for (std::size_t slot = ranges.above_first / lanes * lanes; slot < ranges.above_end;
       slot += lanes) {
    const std::size_t hit = scan.step(blocks, slot, ranges.above_first, ranges.above_end);
    if (hit != kNoSlot) return hit;
  }
  if (ranges.below_first >= ranges.below_end) return kNoSlot;
  const std::size_t lowest = ranges.below_first / lanes * lanes;
  for (std::size_t slot = (ranges.below_end - 1) / lanes * lanes;; slot -= lanes) {
    const std::size_t hit = scan.step(blocks, slot, ranges.below_first, ranges.below_end);
    if (hit != kNoSlot) return hit;
    if (slot == lowest) return kNoSlot;
  }
}

}  // namespace korvex::simplify::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace korvex::simplify {

KORVEX_VARIANTS(FindBlocker);

std::size_t find_blocker(const SegmentBlock* blocks, const ScannedTriangle& triangle,
                         const SlotRanges& ranges) {
  return KORVEX_VARIANT(FindBlocker)(blocks, triangle, ranges);
}

}  // namespace korvex::simplify
#endif
