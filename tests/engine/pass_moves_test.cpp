#include "engine/diagram/pass_moves.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <stop_token>

#include "engine/diagram/code_closure.hpp"
#include "engine/invariants/of_codes.hpp"
#include "engine/projection/chain_code.hpp"
#include "engine/projection/projection.hpp"
#include "engine/random_chains.hpp"
#include "korvex/error.hpp"

namespace korvex {
namespace {

ChainCode code_of(unsigned seed, int steps) {
  return general_view(compact_walk(seed, steps), {0, 0, 1}).projection.chain_code();
}

GaussCode part_of(const ChainCode& whole, SegmentRange range) {
  ChainCode part;
  ChainCodeReduction().restrict_to(range, whole, part);
  return part.code;
}

GaussCode closed_and_simplified(const GaussCode& open) {
  GaussCode code = closed_over(open);
  CodeReduction reduction;
  PassMoves().simplify(code, reduction);
  return code;
}

bool is_well_formed(const ChainCode& chain) {
  const GaussCode& code = chain.code;
  for (std::size_t k = 0; k < code.size(); ++k) {
    const auto mate = static_cast<std::size_t>(code[k].mate);
    if (mate >= code.size() || mate == k || code[mate].mate != static_cast<std::int32_t>(k) ||
        code[mate].over == code[k].over || code[mate].positive != code[k].positive)
      return false;
  }
  return chain.segments.size() == code.size() &&
         std::is_sorted(chain.segments.begin(), chain.segments.end());
}

TEST(PassMovesInACore, KeepTheTypeOfEveryChainThatHoldsTheCore) {
  constexpr int kSteps = 44;
  std::size_t taken_out = 0;
  std::size_t knotted = 0;
  for (unsigned seed = 0; seed < 400; ++seed) {
    const auto length = static_cast<std::int32_t>(4 + seed % 40);
    const auto begin =
        static_cast<std::int32_t>(seed * 7 % (kSteps - static_cast<unsigned>(length)));
    const SegmentRange core{begin, begin + length};
    const ChainCode code = code_of(seed, kSteps);
    ChainCodeReduction reduction;
    ChainCode moved = code;
    reduction.reduce(moved, core);
    const std::size_t before = moved.code.size();
    reduction.move_passes(moved, core);
    taken_out += before - moved.code.size();
    ASSERT_TRUE(is_well_formed(moved)) << seed;
    for (std::int32_t from = 0; from <= core.begin; from += 3) {
      for (std::int32_t to = core.end; to <= kSteps; to += 3) {
        const GaussCode plain = closed_and_simplified(part_of(code, {from, to}));
        const GaussCode fast = closed_and_simplified(part_of(moved, {from, to}));
        ASSERT_EQ(alexander_key(plain), alexander_key(fast)) << seed << ": " << from << "-" << to;
        ASSERT_EQ(homfly(plain), homfly(fast)) << seed << ": " << from << "-" << to;
        knotted += plain.size() > 4 ? 1 : 0;
      }
    }
  }
  EXPECT_GT(taken_out, 200u);
  EXPECT_GT(knotted, 1000u);
}

TEST(PassMovesInACore, OfTheWholeChainLeaveFewerCrossingsThanMovesIAndII) {
  std::size_t before = 0;
  std::size_t after = 0;
  for (unsigned seed = 0; seed < 20; ++seed) {
    ChainCode code = code_of(seed, 120);
    ChainCodeReduction reduction;
    reduction.reduce(code, {});
    before += code.code.size();
    reduction.move_passes(code, {});
    after += code.code.size();
    ASSERT_TRUE(is_well_formed(code));
  }
  EXPECT_LT(2 * after, before + after / 2);
}

TEST(PassMovesInACore, OfFewOrNoPassagesLeaveTheCodeAsItIs) {
  ChainCodeReduction reduction;
  ChainCode none;
  reduction.move_passes(none, {});
  EXPECT_TRUE(none.code.empty());
  ChainCode code = code_of(1, 30);
  const ChainCode same = code;
  for (const std::int32_t at : {0, 15, 30}) {
    reduction.move_passes(code, {at, at});
    EXPECT_EQ(code, same);
  }
}

TEST(PassMovesInACore, AskWhetherToStop) {
  std::stop_source stop;
  stop.request_stop();
  ChainCodeReduction reduction;
  ChainCode code = code_of(2, 60);
  EXPECT_THROW(reduction.move_passes(code, {}, {.stop = stop.get_token()}), Error);
}

}  // namespace
}  // namespace korvex
