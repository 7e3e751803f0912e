#include "engine/projection/chain_code.hpp"

#include <algorithm>

#include "engine/diagram/place.hpp"

namespace korvex {

std::size_t ChainCode::first_from(std::int32_t segment) const {
  const auto found = std::lower_bound(segments.begin(), segments.end(), segment);
  return static_cast<std::size_t>(found - segments.begin());
}

void ChainCodeReduction::restrict_to(SegmentRange range, const ChainCode& whole, ChainCode& part) {
  const std::size_t from = whole.first_from(range.begin);
  const std::size_t to = std::max(from, whole.first_from(range.end));
  joined_.clear();
  if (from == 0 && to == whole.code.size()) {
    part = whole;
    return;
  }
  moved_.resize(whole.code.size());
  part.code.resize(to - from);
  part.segments.resize(to - from);
  Passage* const passages = part.code.data();
  std::int32_t* const moved = moved_.data();
  std::int32_t count = 0;
  bool cut = false;
  for (std::size_t k = from; k < to; ++k) {
    Passage passage = whole.code[k];
    const auto mate = static_cast<std::size_t>(passage.mate);
    if (mate < from || mate >= to) {
      cut = true;
      continue;
    }
    if (cut && count > 0) joined_.push_back(count - 1);
    cut = false;
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

void ChainCodeReduction::reduce_further(ChainCode& part, SegmentRange core, SegmentRange reduced) {
  const PassageRange passages{part.first_from(core.begin), part.first_from(core.end)};
  const PassageRange before{part.first_from(reduced.begin), part.first_from(reduced.end)};
  // A pair of neighbours is new where one of them is, or where they are neighbours only now.
  fresh_.clear();
  const auto add = [this](std::size_t from, std::size_t to) {
    for (std::size_t k = from; k < to; ++k) fresh_.push_back(static_cast<std::int32_t>(k));
  };
  auto joined = joined_.begin();
  const auto add_joined = [&](std::size_t to) {
    for (; joined != joined_.end() && at(*joined) < to; ++joined) fresh_.push_back(*joined);
  };
  const auto skip_joined = [&](std::size_t to) {
    while (joined != joined_.end() && at(*joined) < to) ++joined;
  };
  const std::size_t late = std::max(before.begin, before.end > 0 ? before.end - 1 : 0);
  add_joined(passages.begin);
  add(passages.begin, before.begin);
  skip_joined(before.begin);
  add_joined(late);
  add(late, passages.end);
  skip_joined(passages.end);
  add_joined(part.code.size());
  reduction_.reduce(part.code, passages, &part.segments, fresh_);
}

void ChainCodeReduction::move_passes(ChainCode& chain, SegmentRange core, const Run& run) {
  pass_moves_.simplify_core(chain.code, chain.segments, core.begin, core.end, reduction_, run);
}

}  // namespace korvex
