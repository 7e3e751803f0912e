// The fast triangle elimination equals the plain one bit for bit, on every instruction set.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <ostream>

#include "reference/reference.hpp"
#include "simplify/odd_chains.hpp"
#include "simplify/segment_scan.hpp"
#include "support/effort.hpp"
#include "support/simd_targets.hpp"

namespace {

using korvex::simplify::find_blocker;
using korvex::simplify::kNoSlot;
using korvex::simplify::meet;
using korvex::simplify::ScannedTriangle;
using korvex::simplify::SegmentBlock;
using korvex::simplify::SlotRanges;
using odd_chains::below;
using odd_chains::Random;
using support::PointChain;

bool same_bits(const PointChain& a, const PointChain& b) {
  return a.size() == b.size() &&
         (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(fPointR3)) == 0);
}

class TriangleElimination : public testing::TestWithParam<std::int64_t> {
  support::ForcedTarget forced_{GetParam()};
};

std::string target_name(const testing::TestParamInfo<std::int64_t>& info) {
  return support::simd_target_name(info.param);
}

INSTANTIATE_TEST_SUITE_P(OnEveryTarget, TriangleElimination,
                         testing::ValuesIn(support::simd_targets()), target_name);

TEST_P(TriangleElimination, EqualsThePlainFormBitForBit) {
  for (int seed = 0; seed < support::input_count(); ++seed) {
    Random random(static_cast<std::uint64_t>(seed));
    PointChain fast = odd_chains::any(random);
    PointChain plain = fast;
    const int fast_left = ChainReduce(fast);
    const int plain_left = reference::ChainReduce(plain);
    ASSERT_EQ(fast_left, plain_left) << "seed " << seed;
    ASSERT_TRUE(same_bits(fast, plain)) << "seed " << seed;
  }
}

TEST_P(TriangleElimination, EqualsThePlainFormOnAThousandPoints) {
  for (const int kind : {0, 1, 2}) {
    Random random(77);
    PointChain fast = odd_chains::of_kind(kind, 1000, random);
    PointChain plain = fast;
    ChainReduce(fast);
    reference::ChainReduce(plain);
    EXPECT_TRUE(same_bits(fast, plain)) << "kind " << kind;
  }
}

TEST_P(TriangleElimination, ReducesThePiecesOfAPoolAsThePlainFormDoes) {
  for (std::uint64_t seed = 0; seed < 50; ++seed) {
    Random random(seed);
    PointChain fast;
    std::vector<Job> fast_jobs;
    for (int piece = 0; piece < 12; ++piece) {
      const PointChain points = odd_chains::any(random);
      const auto start = static_cast<std::int32_t>(fast.size());
      fast_jobs.push_back({start, static_cast<std::int32_t>(points.size()), piece, 2, 3, 4});
      fast.insert(fast.end(), points.begin(), points.end());
      fast.insert(fast.end(), 2, fast.empty() ? fPointR3{} : fast.back());
    }
    fast_jobs.push_back({3, 40, 0, 0, 0, 0});  // pieces that overlap others
    fast_jobs.push_back({5, -7, 0, 0, 0, 0});
    PointChain plain = fast;
    std::vector<Job> plain_jobs = fast_jobs;
    ChainReduceANY(fast, fast_jobs, seed % 2 == 0);
    reference::ChainReduceANY(plain, plain_jobs, seed % 2 != 0);
    ASSERT_TRUE(same_bits(fast, plain)) << "seed " << seed;
    for (std::size_t j = 0; j < fast_jobs.size(); ++j) {
      EXPECT_EQ(fast_jobs[j].start, plain_jobs[j].start);
      EXPECT_EQ(fast_jobs[j].length, plain_jobs[j].length);
      EXPECT_EQ(fast_jobs[j].firstId, plain_jobs[j].firstId);
    }
  }
}

// The segments of a chain, their slots in order and a few of them empty.
struct Segments {
  explicit Segments(const PointChain& chain, Random& random)
      : count(chain.size() - 1), blocks(count / SegmentBlock::kSegments + 1) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    for (std::size_t slot = 0; slot < blocks.size() * SegmentBlock::kSegments; ++slot) {
      const bool empty = slot >= count || below(random, 10) == 0;
      p.push_back(empty ? fPointR3{nan, nan, nan} : chain[slot]);
      q.push_back(empty ? fPointR3{nan, nan, nan} : chain[slot + 1]);
      SegmentBlock& block = blocks[slot / SegmentBlock::kSegments];
      const std::size_t place = slot % SegmentBlock::kSegments;
      block.px[place] = p.back().x;
      block.py[place] = p.back().y;
      block.pz[place] = p.back().z;
      block.qx[place] = q.back().x;
      block.qy[place] = q.back().y;
      block.qz[place] = q.back().z;
    }
  }

  std::size_t count;
  std::vector<SegmentBlock> blocks;
  PointChain p;
  PointChain q;
};

float largest_coordinate(const PointChain& chain) {
  float largest = 0;
  for (const fPointR3& point : chain) {
    for (const float c : {point.x, point.y, point.z}) {
      if (!(std::fabs(c) <= largest)) largest = std::fabs(c);
      if (std::isnan(largest)) return largest;
    }
  }
  return largest;
}

TEST_P(TriangleElimination, ScanBlocksExactlyWhereThePlainTestDoes) {
  for (int seed = 0; seed < support::input_count(); ++seed) {
    Random random(static_cast<std::uint64_t>(seed) + 1'000'000);
    const PointChain chain =
        odd_chains::of_kind(below(random, odd_chains::kKinds), 3 + random() % 60, random);
    const Segments segments(chain, random);
    const std::size_t i = random() % (chain.size() - 2);
    const ScannedTriangle triangle(chain[i], chain[i + 1], chain[i + 2], largest_coordinate(chain));
    for (std::size_t slot = 0; slot < segments.count; ++slot) {
      const bool blocks =
          meet(chain[i], chain[i + 1], chain[i + 2], segments.p[slot], segments.q[slot]) > 0;
      const SlotRanges above{0, 0, slot, slot + 1};
      const SlotRanges under{slot, slot + 1, 0, 0};
      const std::size_t expected = blocks ? slot : kNoSlot;
      ASSERT_EQ(find_blocker(segments.blocks.data(), triangle, above), expected) << "seed " << seed;
      ASSERT_EQ(find_blocker(segments.blocks.data(), triangle, under), expected) << "seed " << seed;
    }
  }
}

TEST_P(TriangleElimination, ScanStaysWithinItsRanges) {
  for (int seed = 0; seed < support::input_count(); ++seed) {
    Random random(static_cast<std::uint64_t>(seed) + 2'000'000);
    const PointChain chain = odd_chains::of_kind(below(random, 9), 3 + random() % 120, random);
    const Segments segments(chain, random);
    const std::size_t i = random() % (chain.size() - 2);
    const ScannedTriangle triangle(chain[i], chain[i + 1], chain[i + 2], largest_coordinate(chain));
    std::size_t bounds[4];
    for (std::size_t& bound : bounds) bound = random() % (segments.count + 1);
    std::sort(bounds, bounds + 4);
    const SlotRanges ranges{bounds[0], bounds[1], bounds[2], bounds[3]};
    bool any = false;
    for (std::size_t slot = 0; slot < segments.count; ++slot) {
      const bool asked =
          (slot >= bounds[0] && slot < bounds[1]) || (slot >= bounds[2] && slot < bounds[3]);
      any = any || (asked && meet(chain[i], chain[i + 1], chain[i + 2], segments.p[slot],
                                  segments.q[slot]) > 0);
    }
    const std::size_t hit = find_blocker(segments.blocks.data(), triangle, ranges);
    ASSERT_EQ(hit != kNoSlot, any) << "seed " << seed;
    if (hit == kNoSlot) continue;
    EXPECT_TRUE((hit >= bounds[0] && hit < bounds[1]) || (hit >= bounds[2] && hit < bounds[3]));
    EXPECT_GT(meet(chain[i], chain[i + 1], chain[i + 2], segments.p[hit], segments.q[hit]), 0);
  }
}

TEST(TriangleEliminationTargets, IncludeThePortableOne) {
  const std::vector<std::int64_t> targets = support::simd_targets();
  EXPECT_TRUE(std::any_of(targets.begin(), targets.end(), [](std::int64_t target) {
    return target == HWY_SCALAR || target == HWY_EMU128 || target == HWY_STATIC_TARGET;
  }));
}

}  // namespace
