#include "engine/projection/chain_code.hpp"

#include <algorithm>

namespace korvex {

std::size_t ChainCode::first_from(std::int32_t segment) const {
  const auto found = std::lower_bound(segments.begin(), segments.end(), segment);
  return static_cast<std::size_t>(found - segments.begin());
}

void ChainCodeReduction::restrict_to(SegmentRange range, const ChainCode& whole, ChainCode& part) {
  const std::size_t from = whole.first_from(range.begin);
  const std::size_t to = std::max(from, whole.first_from(range.end));
  moved_.resize(whole.code.size());
  part.code.resize(to - from);
  part.segments.resize(to - from);
  Passage* const passages = part.code.data();
  std::int32_t* const moved = moved_.data();
  std::int32_t count = 0;
  for (std::size_t k = from; k < to; ++k) {
    Passage passage = whole.code[k];
    const auto mate = static_cast<std::size_t>(passage.mate);
    if (mate < from || mate >= to) continue;
    if (mate < k) {
      passage.mate = moved[mate];
      passages[passage.mate].mate = count;
    }
    passages[count] = passage;
    part.segments[static_cast<std::size_t>(count)] = whole.segments[k];
    moved[k] = count++;
  }
  part.code.resize(static_cast<std::size_t>(count));
  part.segments.resize(static_cast<std::size_t>(count));
}

void ChainCodeReduction::reduce(ChainCode& chain, SegmentRange core) {
  const PassageRange passages{chain.first_from(core.begin), chain.first_from(core.end)};
  reduction_.reduce(chain.code, passages, &chain.segments);
}

void ChainCodeReduction::move_passes(ChainCode& chain, SegmentRange core, const Run& run) {
  pass_moves_.simplify_core(chain.code, chain.segments, core.begin, core.end, reduction_, run);
}

}  // namespace korvex
