#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "engine/diagram/code_closure.hpp"
#include "engine/diagram/code_reduction.hpp"
#include "engine/diagram/plane_diagram.hpp"
#include "engine/invariants/of_codes.hpp"
#include "engine/projection/projection.hpp"
#include "engine/random_chains.hpp"
#include "korvex/diagram.hpp"
#include "korvex/directions.hpp"
#include "korvex/error.hpp"

namespace korvex {
namespace {

std::optional<GaussCode> open_code(std::span<const Point> chain, const Point& direction) {
  const Projection projection(chain, direction);
  if (projection.degenerate()) return std::nullopt;
  return projection.code();
}

GaussCode general_open_code(std::span<const Point> chain, const Point& direction) {
  return general_view(chain, direction).projection.code();
}

GaussCode reduced(GaussCode code) {
  CodeReduction().reduce(code);
  return code;
}

void expect_well_formed(const GaussCode& code) {
  for (std::size_t k = 0; k < code.size(); ++k) {
    const auto mate = static_cast<std::size_t>(code[k].mate);
    ASSERT_LT(mate, code.size());
    EXPECT_EQ(static_cast<std::size_t>(code[mate].mate), k);
    EXPECT_NE(code[mate].over, code[k].over);
    EXPECT_EQ(code[mate].positive, code[k].positive);
  }
}

// A diagram of one component on the sphere has two faces more than crossings.
std::size_t faces_of_closed(const GaussCode& code) {
  PlaneDiagram diagram;
  diagram.draw(code, Curve::kClosed);
  return diagram.faces();
}

TEST(OpenCode, OfATrefoilSeenAlongItsAxisHasThreeCrossingsOfOneSign) {
  const auto code = open_code(trefoil_ring(), {0, 0, 1});
  ASSERT_TRUE(code);
  expect_well_formed(*code);
  ASSERT_EQ(code->size(), 6u);
  for (std::size_t k = 0; k < 6; ++k) {
    const bool positive = (*code)[k].positive;
    EXPECT_EQ(positive, (*code)[0].positive);
    if (k > 0) {
      EXPECT_NE((*code)[k].over, (*code)[k - 1].over);
    }
  }
}

TEST(OpenCode, OfTheMirrorImageHasOppositeSigns) {
  auto chain = random_walk(4, 60);
  const auto code = open_code(chain, {0, 0, 1});
  for (Point& p : chain) p.x = -p.x;
  const auto mirrored = open_code(chain, {0, 0, 1});
  ASSERT_TRUE(code && mirrored);
  ASSERT_EQ(code->size(), mirrored->size());
  for (std::size_t k = 0; k < code->size(); ++k) {
    EXPECT_EQ((*code)[k].over, (*mirrored)[k].over);
    EXPECT_NE((*code)[k].positive, (*mirrored)[k].positive);
    EXPECT_EQ((*code)[k].mate, (*mirrored)[k].mate);
  }
}

TEST(OpenCode, SeenFromBehindSwapsOverAndUnderAndKeepsSigns) {
  const auto chain = random_walk(5, 60);
  const auto front = open_code(chain, {0, 0, 1});
  const auto back = open_code(chain, {0, 0, -1});
  ASSERT_TRUE(front && back);
  ASSERT_EQ(front->size(), back->size());
  for (std::size_t k = 0; k < front->size(); ++k) {
    EXPECT_NE((*front)[k].over, (*back)[k].over);
    EXPECT_EQ((*front)[k].positive, (*back)[k].positive);
  }
}

TEST(OpenCode, IsThatOfAPlaneDiagramOnceClosed) {
  for (unsigned seed = 0; seed < 50; ++seed) {
    const auto chain = random_walk(seed, 3 + static_cast<int>(seed));
    const auto code = open_code(chain, random_direction(seed, 0));
    ASSERT_TRUE(code);
    expect_well_formed(*code);
    for (const GaussCode& some : {*code, reduced(*code)}) {
      expect_well_formed(some);
      const auto closed = closed_over(some);
      if (!closed.empty()) {
        EXPECT_EQ(faces_of_closed(closed), closed.size() / 2 + 2) << seed;
      }
    }
  }
}

TEST(OpenCode, IgnoresRepeatedPoints) {
  const auto chain = random_walk(3, 50);
  std::vector<Point> repeated;
  for (const Point& p : chain) repeated.insert(repeated.end(), 3, p);
  const auto once = open_code(chain, {0, 0, 1});
  const auto thrice = open_code(repeated, {0, 0, 1});
  ASSERT_TRUE(once && thrice);
  const auto once_segments = Projection(chain, {0, 0, 1}).chain_code().segments;
  const auto thrice_segments = Projection(repeated, {0, 0, 1}).chain_code().segments;
  ASSERT_EQ(once->size(), thrice->size());
  for (std::size_t k = 0; k < once->size(); ++k) {
    EXPECT_EQ((*once)[k].mate, (*thrice)[k].mate);
    EXPECT_EQ((*once)[k].over, (*thrice)[k].over);
    EXPECT_EQ(3 * once_segments[k] + 2, thrice_segments[k]);
  }
}

TEST(OpenCode, OfAVertexOnAStrandIsDegenerate) {
  const std::vector<Point> chain{{0, 0, 0}, {2, 0, 0}, {2, 2, 1}, {1, 0, 1}, {0, 3, 0}};
  EXPECT_FALSE(open_code(chain, {0, 0, 1}));
  EXPECT_NO_THROW(general_open_code(chain, {0, 0, 1}));
}

TEST(OpenCode, OfThreeStrandsThroughAPointIsDegenerate) {
  const std::vector<Point> chain{{-1, 0, 0}, {1, 0, 0},   {2, 5, 1},   {0, 1, 1},
                                 {0, -1, 1}, {-3, -3, 2}, {-1, -1, 2}, {1, 1, 2}};
  EXPECT_FALSE(open_code(chain, {0, 0, 1}));
  expect_well_formed(general_open_code(chain, {0, 0, 1}));
}

TEST(OpenCode, OfChainsThatTouchThemselvesIsStillACode) {
  const std::vector<Point> spike{{0, 0, 0}, {1, 0, 0}, {0, 0, 0}, {0, 1, 0}, {0, 0, 0}};
  const std::vector<Point> twice_round{{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0},
                                       {0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
  const std::vector<Point> line{{0, 0, 0}, {4, 0, 0}, {1, 0, 0}, {3, 0, 0}, {2, 0, 0}};
  const std::vector<Point> point(9, Point{1, 2, 3});
  for (const auto& chain : {spike, twice_round, line, point}) {
    const GaussCode code = general_open_code(chain, {0, 0, 1});
    expect_well_formed(code);
    const auto closed = closed_over(code);
    if (!closed.empty()) {
      EXPECT_EQ(faces_of_closed(closed), closed.size() / 2 + 2);
    }
  }
}

TEST(OpenCode, DoesNotDependOnTheUnitOfLength) {
  const auto chain = random_walk(8, 80);
  const auto code = open_code(chain, {0, 0, 1});
  ASSERT_TRUE(code);
  for (const double unit : {1e-200, 1e-3, 1e200}) {
    std::vector<Point> scaled;
    for (const Point& p : chain) scaled.push_back(unit * p);
    EXPECT_EQ(open_code(scaled, {0, 0, 1}), code) << unit;
  }
}

TEST(OpenCode, OfFewPointsIsEmpty) {
  for (int steps = 0; steps < 3; ++steps)
    EXPECT_TRUE(general_open_code(random_walk(1, steps), {0, 0, 1}).empty());
  EXPECT_TRUE(general_open_code({}, {0, 0, 1}).empty());
}

TEST(OpenCode, RefusesCoordinatesThatAreNotNumbers) {
  for (const double bad : {std::nan(""), HUGE_VAL, -HUGE_VAL}) {
    auto chain = random_walk(1, 9);
    chain[4].y = bad;
    EXPECT_THROW(Diagram::of_open_chain(chain, {0, 0, 1}), Error);
  }
}

TEST(ReducedCode, OfATrefoilKeepsTwoCrossings) {
  const auto code = open_code(trefoil_ring(), {0, 0, 1});
  ASSERT_TRUE(code);
  EXPECT_EQ(reduced(*code).size(), 4u);
  EXPECT_EQ(closed_over(reduced(*code)).size(), 6u);
}

TEST(ReducedCode, OfMostlyStraightChainsIsEmpty) {
  for (unsigned seed = 0; seed < 20; ++seed) {
    auto chain = random_walk(seed, 100);
    for (std::size_t i = 0; i < chain.size(); ++i) chain[i].z = static_cast<double>(i);
    EXPECT_TRUE(reduced(general_open_code(chain, random_direction(1, seed))).empty()) << seed;
  }
}

TEST(ReducedCode, KeepsTheSegmentsOfThePassagesThatAreLeft) {
  for (unsigned seed = 0; seed < 20; ++seed) {
    const auto chain = random_walk(seed, 80);
    const ChainCode whole = general_view(chain, {0, 0, 1}).projection.chain_code();
    EXPECT_TRUE(std::is_sorted(whole.segments.begin(), whole.segments.end()));
    ChainCode left = whole;
    ChainCodeReduction().reduce(left, {});
    EXPECT_EQ(left.code, reduced(whole.code)) << seed;
    ASSERT_EQ(left.segments.size(), left.code.size());
    EXPECT_TRUE(std::includes(whole.segments.begin(), whole.segments.end(), left.segments.begin(),
                              left.segments.end()));
  }
}

TEST(RestrictedCode, IsTheCodeOfThePartOfTheChain) {
  for (unsigned seed = 0; seed < 20; ++seed) {
    const auto chain = random_walk(seed, 60);
    const Projection whole(chain, {0, 0, 1});
    const Projection part{std::span(chain).subspan(10, 36), {0, 0, 1}};
    ASSERT_FALSE(whole.degenerate() || part.degenerate());
    ChainCode restricted;
    ChainCodeReduction().restrict_to({10, 45}, whole.chain_code(), restricted);
    for (std::int32_t& segment : restricted.segments) segment -= 10;
    EXPECT_EQ(restricted, part.chain_code()) << seed;
  }
}

TEST(ReducedCode, ReducedFurtherHasNoMoveLeftAndTheTypeOfEveryChainThatHoldsTheCore) {
  std::size_t taken_out = 0;
  for (unsigned seed = 0; seed < 100; ++seed) {
    const ChainCode whole = general_view(compact_walk(seed, 60), {0, 0, 1}).projection.chain_code();
    const SegmentRange small{26, static_cast<std::int32_t>(28 + seed % 8)};
    const SegmentRange large{static_cast<std::int32_t>(10 + seed % 16), 48};
    ChainCodeReduction reduction;
    ChainCode before = whole;
    reduction.reduce(before, small);
    for (const SegmentRange range : {SegmentRange{}, SegmentRange{4, 52}, SegmentRange{9, 60}}) {
      ChainCode further;
      reduction.restrict_to(range, before, further);
      reduction.reduce_further(further, large, small);
      taken_out += before.code.size() - further.code.size();
      ChainCode anew = further;
      reduction.reduce(anew, large);
      ASSERT_EQ(anew, further) << seed;
      for (const SegmentRange part : {SegmentRange{large.begin, 48}, SegmentRange{9, 52}}) {
        const auto key = [&](const ChainCode& chain) {
          ChainCode own;
          reduction.restrict_to(part, chain, own);
          return alexander_key(closed_over(own.code));
        };
        ASSERT_EQ(key(further), key(whole)) << seed;
      }
    }
  }
  EXPECT_GT(taken_out, 1000u);
}

TEST(ReducedCode, LosesKinksOutsideOfTheCore) {
  GaussCode code{{4, false, true}, {2, true, true}, {1, false, true},
                 {5, true, true},  {0, true, true}, {3, false, true}};
  CodeReduction().reduce(code, {0, 0});
  EXPECT_EQ(code.size(), 4u);
}

TEST(ReducedCode, TakesStrandsApartTheLowerOfWhichIsInTheCore) {
  const GaussCode lower_first{{4, false, true}, {5, false, true}, {6, false, false},
                              {7, true, true},  {0, true, true},  {1, true, true},
                              {2, true, false}, {3, false, true}};
  GaussCode code = lower_first;
  CodeReduction().reduce(code, {1, 3});
  EXPECT_EQ(code.size(), 4u);
  code = lower_first;
  CodeReduction().reduce(code, {2, 7});
  EXPECT_EQ(code, lower_first);
}

}  // namespace
}  // namespace korvex
