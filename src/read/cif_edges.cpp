#include "read/cif_edges.hpp"

#include <bit>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "read/cif_edges.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/dispatch.hpp"

HWY_BEFORE_NAMESPACE();
namespace korvex::read::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;
using Tag = hn::CappedTag<std::uint8_t, CifEdges::kBlock>;
using Bytes = hn::Vec<Tag>;
using Lanes = hn::Mask<Tag>;

HWY_INLINE Lanes is(Bytes bytes, char wanted) {
  return hn::Eq(bytes, hn::Set(Tag(), static_cast<std::uint8_t>(wanted)));
}

// The bytes from `first` to `last`, both included.
HWY_INLINE Lanes lies_within(Bytes bytes, char first, char last) {
  const Tag d;
  const Bytes above = hn::Sub(bytes, hn::Set(d, static_cast<std::uint8_t>(first)));
  const auto span = static_cast<std::uint8_t>(last - first);
  return hn::Eq(hn::Min(above, hn::Set(d, span)), above);
}

HWY_INLINE std::uint64_t bits(Lanes lanes) {
  std::uint64_t found = 0;
  hn::StoreMaskBits(Tag(), lanes, reinterpret_cast<std::uint8_t*>(&found));
  return found;
}

// Writes where the bits of a block are.
HWY_INLINE std::uint32_t* write_places(std::uint64_t marked, std::uint32_t begin,
                                       std::uint32_t* out) {
  const auto count = static_cast<std::size_t>(std::popcount(marked));
  for (std::size_t some = 0; some < count; some += CifEdges::kSlack) {
    for (std::size_t i = some; i < some + CifEdges::kSlack; ++i) {
      out[i] = begin + static_cast<std::uint32_t>(std::countr_zero(marked));
      marked &= marked - 1;
    }
  }
  return out + count;
}

}  // namespace

HWY_ATTR void FindCifEdges(const char* text, std::size_t blocks, std::uint32_t begin,
                           CifEdges& found) {
  const Tag d;
  const std::size_t lanes = hn::Lanes(d);
  std::uint64_t carried = found.in_word ? 1 : 0;
  for (std::size_t block = 0; block < blocks; ++block, begin += CifEdges::kBlock) {
    std::uint64_t black = 0;
    std::uint64_t special = 0;
    for (std::size_t i = 0; i < CifEdges::kBlock; i += lanes) {
      const char* at = text + block * CifEdges::kBlock + i;
      const Bytes bytes = hn::LoadU(d, reinterpret_cast<const std::uint8_t*>(at));
      const Lanes white = hn::Or(hn::Or(is(bytes, ' '), is(bytes, '\n')), is(bytes, '\t'));
      const Lanes marks = hn::Or(hn::Or(lies_within(bytes, '"', '$'), is(bytes, '\'')),
                                 hn::Or(is(bytes, ';'), is(bytes, '_')));
      const Lanes strange = hn::Not(hn::Or(white, lies_within(bytes, '!', '~')));
      black |= bits(hn::Not(white)) << i;
      special |= bits(hn::Or(marks, strange)) << i;
    }
    found.edges = write_places(black ^ (black << 1U | carried), begin, found.edges);
    found.specials = write_places(special, begin, found.specials);
    carried = black >> 63U;
  }
  found.in_word = carried != 0;
}

}  // namespace korvex::read::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace korvex::read {

KORVEX_VARIANTS(FindCifEdges);

void find_cif_edges(const char* text, std::size_t blocks, std::uint32_t begin, CifEdges& found) {
  KORVEX_VARIANT(FindCifEdges)(text, blocks, begin, found);
}

}  // namespace korvex::read

#endif
