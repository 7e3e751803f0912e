#include "korvex/closure_map.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <map>
#include <numbers>
#include <string>

#include "engine/closures/closure_mapping.hpp"
#include "engine/invariants/of_codes.hpp"
#include "engine/named_diagrams.hpp"
#include "engine/random_chains.hpp"
#include "korvex/diagram.hpp"
#include "korvex/directions.hpp"
#include "korvex/error.hpp"
#include "korvex/read.hpp"
#include "korvex/votes.hpp"
#include "reference/closure_shares.hpp"
#include "support/data_file.hpp"

namespace korvex {
namespace {

using Shares = std::map<std::string, double>;

std::string name_by_key(const GaussCode& closed) {
  const std::uint64_t key = alexander_key(closed);
  return key == 1 ? "0_1" : std::to_string(key);
}

ClosureMap map_of(std::span<const Point> chain) { return closure_map(chain).value(); }

// Knots by their Alexander keys: as good as types to compare shares by, and faster.
ClosureMap keys_of(std::span<const Point> chain, const korvex::Run& run = {}) {
  return closure_map_with(NamedDiagrams(name_by_key), chain, {}, run).value();
}

Shares shares_of(const ClosureMap& map) {
  Shares shares;
  for (const TypeShare& type : map.types) shares[type.type] = type.share;
  return shares;
}

void expect_equal(const Shares& a, const Shares& b, double tolerance) {
  for (const auto& [type, share] : a) {
    const auto found = b.find(type);
    EXPECT_NEAR(share, found == b.end() ? 0 : found->second, tolerance) << type;
  }
  for (const auto& [type, share] : b) {
    EXPECT_TRUE(a.contains(type) || share < tolerance) << type << " " << share;
  }
}

void expect_whole(const ClosureMap& map) {
  double regions = 0;
  for (const ClosureRegion& region : map.regions) regions += region.share;
  EXPECT_NEAR(regions, 1, 1e-9);
  double types = 0;
  for (const TypeShare& type : map.types) types += type.share;
  EXPECT_NEAR(types, 1, 1e-9);
  double crossings = 0;
  for (const auto& [count, share] : map.crossings) crossings += share;
  EXPECT_NEAR(crossings, 1, 1e-9);
}

std::vector<Point> protein(const std::string& file) {
  ReadOptions options;
  options.chains = {"A"};
  return read_chains(support::data_file("proteins/" + file), options).at(0).points;
}

// Ends where it has shut itself in.
std::vector<Point> lattice_walk(unsigned seed, int steps, double width = 1e3) {
  std::mt19937 generator(seed);
  std::vector<Point> chain{{0, 0, 0}};
  const Point moves[] = {{1, 0, 0}, {-1, 0, 0}, {0, 1, 0}, {0, -1, 0}, {0, 0, 1}, {0, 0, -1}};
  while (static_cast<int>(chain.size()) <= steps) {
    std::vector<Point> free;
    for (const Point& move : moves) {
      const Point next = chain.back() + move;
      const bool inside =
          std::abs(next.x) < width && std::abs(next.y) < width && std::abs(next.z) < width;
      if (inside && std::find(chain.begin(), chain.end(), next) == chain.end())
        free.push_back(next);
    }
    if (free.empty()) break;
    chain.push_back(free[generator() % free.size()]);
  }
  return chain;
}

// Lattice walks folded into a small cube, whose ends have more than one type of closure.
std::vector<std::vector<Point>> knotted_lattice_walks(std::size_t count) {
  constexpr double kWidth = 2;
  std::vector<std::vector<Point>> chains;
  for (unsigned seed = 1; chains.size() < count; ++seed) {
    auto chain = lattice_walk(seed, 50, kWidth);
    if (keys_of(chain).types.size() > 1) chains.push_back(std::move(chain));
  }
  return chains;
}

// A rotation that moves every axis.
std::vector<Point> turned(std::vector<Point> chain) {
  for (Point& p : chain) {
    p = {0.36 * p.x + 0.48 * p.y - 0.8 * p.z, -0.8 * p.x + 0.6 * p.y,
         0.48 * p.x + 0.64 * p.y + 0.6 * p.z};
  }
  return chain;
}

TEST(ClosureMap, HasTheSharesOfProteinsThatSamplingApproaches) {
  struct Known {
    const char* file;
    std::size_t regions;
    Shares shares;  // of the first few types, to six digits
  };
  const Known known[] = {
      {"2efv_CA.pdb", 33, {{"-3_1", 0.774115}, {"0_1", 0.225732}, {"-5_2", 0.000153}}},
      {"1ca2.pdb", 172, {{"+3_1", 0.630872}, {"0_1", 0.265515}, {"+5_1", 0.067303}}},
      {"1xd3_A_bound.pdb", 125, {{"-5_2", 0.679867}, {"0_1", 0.177860}}},
      {"1ztu.pdb", 397, {{"4_1", 0.814054}, {"0_1", 0.082053}}},
  };
  for (const Known& one : known) {
    const ClosureMap map = map_of(protein(one.file));
    expect_whole(map);
    EXPECT_EQ(map.regions.size(), one.regions) << one.file;
    EXPECT_EQ(map.doubt, 0) << one.file;
    const Shares shares = shares_of(map);
    for (const auto& [type, share] : one.shares)
      EXPECT_NEAR(shares.at(type), share, 5e-7) << one.file << " " << type;
    for (const TypeShare& type : map.types) EXPECT_NEAR(type.proven, type.share, 1e-12);
  }
}

TEST(ClosureMap, DoesNotDependOnWhereAndHowTheChainLies) {
  const auto chain = compact_walk(7, 60);
  const Shares shares = shares_of(keys_of(chain));
  ASSERT_GT(shares.size(), 2u);
  expect_equal(shares_of(keys_of(turned(chain))), shares, 1e-9);
  auto moved = chain;
  for (Point& p : moved) p = p + Point{100, -30, 7};
  expect_equal(shares_of(keys_of(moved)), shares, 1e-9);
  for (const double factor : {3.7, 1e-300, 1e290}) {
    auto scaled = chain;
    for (Point& p : scaled) p = factor * p;
    expect_equal(shares_of(keys_of(scaled)), shares, 1e-9);
  }
  auto reversed = chain;
  std::reverse(reversed.begin(), reversed.end());
  expect_equal(shares_of(keys_of(reversed)), shares, 1e-9);
}

TEST(ClosureMap, CoversTheSphereOfALatticeChainThatLeavesSlivers) {
  const std::vector<Point> chain{{0, 2, 3},  {-1, 0, 2}, {2, 0, -1}, {0, -1, 2}, {-2, 1, 3},
                                 {0, -2, 3}, {3, 0, -3}, {1, 1, -2}, {0, 0, 1}};
  expect_whole(map_of(chain));
}

TEST(ClosureMap, IsFoundWhereARegionIsWidestOppositeToItsArcs) {
  for (const auto& [seed, first] : {std::pair{7u, 18}, std::pair{6u, 43}}) {
    const auto walk = compact_walk(seed, 60);
    const ClosureMap map = map_of(std::span(walk).subspan(static_cast<std::size_t>(first), 5));
    EXPECT_EQ(map.regions.size(), 2u);
    EXPECT_EQ(map.dominant().type, "0_1");
    EXPECT_EQ(map.doubt, 0);
  }
}

TEST(ClosureMap, DoesNotDependOnPointsInsideBonds) {
  const auto chain = compact_walk(8, 40);
  std::vector<Point> divided;
  for (std::size_t i = 0; i < chain.size(); ++i) {
    divided.push_back(chain[i]);
    if (i + 1 == chain.size()) break;
    divided.push_back(chain[i] + 0.3 * (chain[i + 1] - chain[i]));
    divided.push_back(chain[i] + 0.7 * (chain[i + 1] - chain[i]));
  }
  expect_equal(shares_of(keys_of(divided)), shares_of(keys_of(chain)), 1e-9);
}

TEST(ClosureMap, IsMirroredWithTheChain) {
  auto chain = protein("2efv_CA.pdb");
  const Shares shares = shares_of(map_of(chain));
  for (Point& p : chain) p.y = -p.y;
  Shares mirrored;
  for (const auto& [type, share] : shares_of(map_of(chain))) {
    std::string other = type;
    if (type[0] == '+' || type[0] == '-') other[0] = type[0] == '+' ? '-' : '+';
    mirrored[other] = share;
  }
  expect_equal(mirrored, shares, 1e-9);
}

TEST(ClosureMap, EqualsTheSumOverPiecesOfArcs) {
  std::vector<std::vector<Point>> chains{protein("2efv_CA.pdb")};
  for (unsigned seed = 1; seed <= 4; ++seed) {
    chains.push_back(random_walk(seed, 40));
    chains.push_back(compact_walk(seed, 25));
  }
  for (const auto& chain : chains) {
    const auto type = [&chain](const Point& direction) {
      return name_by_key(Diagram::of_open_chain(chain, direction).code());
    };
    const ClosureMap map = keys_of(chain);
    const reference::ClosureShares plain(chain, type, -map.regions.front().direction);
    expect_equal(plain.shares(), shares_of(map), 1e-9);
  }
}

// Where arcs meet three at a time, or an end lies on a bond, the plain sum has no answer: that of
// the chain with its points moved by 1e-6 of a step differs from the map of the chain as it is by
// the width of the bands between the arcs before and after, and no more.
TEST(ClosureMap, OfDegenerateChainsEqualsTheSumOverPiecesOfArcsNearby) {
  std::vector<std::vector<Point>> chains = knotted_lattice_walks(3);
  std::vector<Point> planar;
  for (int i = 0; i < 16; ++i) planar.push_back({i * std::cos(0.7 * i), i * std::sin(0.7 * i), 0});
  chains.push_back(planar);
  auto repeated = compact_walk(4, 25);
  repeated.insert(repeated.begin() + 6, 3, repeated[5]);
  chains.push_back(repeated);
  auto straight_on = compact_walk(6, 25);
  for (std::size_t i = straight_on.size() - 1; i > 0; --i)
    straight_on.insert(straight_on.begin() + static_cast<std::ptrdiff_t>(i),
                       0.5 * (straight_on[i - 1] + straight_on[i]));
  chains.push_back(straight_on);
  for (const auto& chain : chains) {
    auto nearby = chain;
    for (std::size_t i = 0; i < chain.size(); ++i)
      nearby[i] = nearby[i] + 1e-6 * random_direction(7, i);
    const auto type = [&nearby](const Point& direction) {
      return name_by_key(Diagram::of_open_chain(nearby, direction).code());
    };
    const ClosureMap map = keys_of(chain);
    const reference::ClosureShares plain(nearby, type, -map.regions.front().direction);
    expect_equal(plain.shares(), shares_of(map), 1e-5);
  }
}

TEST(ClosureMap, AgreesWithIndependentClosures) {
  const double kTrials = std::getenv("KORVEX_LONG_TESTS") != nullptr ? 1e6 : 2000;
  for (unsigned seed = 1; seed <= 2; ++seed) {
    const auto chain = compact_walk(seed, 40);
    const ClosureMap map = keys_of(chain);
    Shares sampled;
    for (unsigned k = 0; k < kTrials; ++k) {
      const Diagram diagram = Diagram::of_open_chain(chain, random_direction(seed, k));
      sampled[name_by_key(diagram.code())] += 1 / kTrials;
    }
    for (const auto& [type, share] : shares_of(map)) {
      const double scatter = std::sqrt(share * (1 - share) / kTrials);
      EXPECT_NEAR(sampled[type], share, 4.5 * scatter + 1 / kTrials) << type;
    }
  }
}

TEST(ClosureMap, HasTheTypesThatClosuresInsideItsRegionsHave) {
  const auto chain = compact_walk(5, 50);
  const ClosureMap map = keys_of(chain);
  for (const ClosureRegion& region : map.regions) {
    ASSERT_GT(region.clearance, 0);
    for (unsigned k = 0; k < 4; ++k) {
      const Point aside = region.direction + 0.9 * region.clearance * random_direction(3, k);
      const Diagram diagram = Diagram::of_open_chain(chain, aside);
      EXPECT_EQ(name_by_key(diagram.code()), map.types[region.type].type);
    }
  }
}

TEST(ClosureMap, OfShortChainsIsOneUnknottedRegionAndOfNoneAnError) {
  EXPECT_THROW(closure_map({}), Error);
  const auto walk = random_walk(4, 3);
  for (std::size_t count = 1; count <= 4; ++count) {
    const ClosureMap map = map_of(std::span(walk).first(count));
    ASSERT_EQ(map.types.size(), 1u) << count;
    EXPECT_EQ(map.dominant().type, "0_1");
    EXPECT_EQ(map.dominant().share, 1);
    EXPECT_EQ(map.doubt, 0);
    EXPECT_EQ(map.regions.size(), 1u);
  }
  const std::vector<Point> same(5, Point{1, 2, 3});
  EXPECT_EQ(map_of(same).dominant().share, 1);
}

TEST(ClosureMap, OfAStraightOrAPlanarChainIsUnknottedEverywhere) {
  std::vector<Point> straight;
  for (int i = 0; i < 20; ++i) straight.push_back({0.1 * i, 0.7 * i, -0.3 * i});
  std::vector<Point> zigzag;
  for (int i = 0; i < 20; ++i) zigzag.push_back({1.0 * i, i % 2 == 0 ? 0.0 : 1.0, 0});
  std::vector<Point> spiral;
  for (int i = 0; i < 30; ++i) spiral.push_back({i * std::cos(0.7 * i), i * std::sin(0.7 * i), 0});
  for (const auto& chain : {straight, zigzag, spiral}) {
    for (const auto& placed : {chain, turned(chain)}) {
      const ClosureMap map = map_of(placed);
      expect_whole(map);
      EXPECT_NEAR(shares_of(map)["0_1"], 1, 1e-9);
      EXPECT_LT(map.doubt, 1e-9);
    }
  }
}

// Both rays start in one point and are one: nothing is left but the ring.
TEST(ClosureMap, OfALoopWhoseEndsTouchIsThatOfTheRing) {
  auto loop = trefoil_ring();
  loop.push_back(loop.front());
  const ClosureMap map = map_of(loop);
  ASSERT_EQ(map.types.size(), 1u);
  EXPECT_EQ(map.dominant().type, "-3_1");
  EXPECT_EQ(map.dominant().share, 1);
  EXPECT_EQ(map.doubt, 0);
}

TEST(ClosureMap, OfLatticeChainsCoversTheSphereAndAgreesWithClosures) {
  for (unsigned seed = 1; seed <= 4; ++seed) {
    const auto chain = lattice_walk(seed, 60);
    const ClosureMap map = keys_of(chain);
    expect_whole(map);
    EXPECT_LT(map.doubt, 1e-9);
    for (const ClosureRegion& region : map.regions) {
      if (region.in_doubt || region.clearance < 1e-6) continue;
      const Diagram diagram = Diagram::of_open_chain(chain, region.direction);
      EXPECT_EQ(name_by_key(diagram.code()), map.types[region.type].type);
    }
  }
}

// Whichever side of it the end is taken to lie on: the rest of the sphere is known.
TEST(ClosureMap, IsDrawnWhereAnEndLiesOnABondOrPointsRepeat) {
  auto inside_bond = compact_walk(3, 20);
  inside_bond.push_back(0.5 * (inside_bond[4] + inside_bond[5]));
  auto on_point = compact_walk(5, 20);
  on_point.push_back(on_point[7]);
  auto repeated = compact_walk(4, 15);
  repeated.insert(repeated.begin() + 6, 5, repeated[5]);
  auto back_and_forth = compact_walk(6, 12);
  back_and_forth.insert(back_and_forth.begin() + 5, {back_and_forth[4], back_and_forth[3]});
  for (const auto& chain : {inside_bond, on_point, repeated, back_and_forth}) {
    const ClosureMap map = keys_of(chain);
    expect_whole(map);
    EXPECT_LT(map.doubt, 1e-9);
  }
}

TEST(ClosureMap, OfRepeatedPointsIsThatOfTheChainWithout) {
  const auto chain = compact_walk(4, 30);
  auto repeated = chain;
  repeated.insert(repeated.begin() + 6, 5, repeated[5]);
  repeated.insert(repeated.begin(), repeated.front());
  repeated.push_back(repeated.back());
  expect_equal(shares_of(keys_of(repeated)), shares_of(keys_of(chain)), 0);
}

TEST(ClosureMap, HasAnArcThroughThePole) {
  std::vector<Point> chain = compact_walk(9, 30);
  // Seen from the first point this bond passes through the z axis.
  chain[10] = chain[0] + Point{0.5, 0, 2};
  chain[11] = chain[0] + Point{-0.5, 0, 2};
  expect_equal(shares_of(keys_of(turned(chain))), shares_of(keys_of(chain)), 1e-9);
}

TEST(ClosureMap, IsTheSameOnAnyNumberOfThreads) {
  const auto chain = compact_walk(12, 70);
  const ClosureMap one = keys_of(chain);
  const ClosureMap three = keys_of(chain, {.threads = 3});
  ASSERT_EQ(one.regions.size(), three.regions.size());
  for (std::size_t k = 0; k < one.regions.size(); ++k) {
    EXPECT_EQ(one.regions[k].share, three.regions[k].share);
    EXPECT_EQ(one.types[one.regions[k].type].type, three.types[three.regions[k].type].type);
    EXPECT_EQ(one.regions[k].boundaries, three.regions[k].boundaries);
  }
}

TEST(ClosureMap, IsNotDrawnBeyondTheLimitOfRegions) {
  const auto chain = compact_walk(12, 60);
  const std::size_t regions = keys_of(chain).regions.size();
  EXPECT_TRUE(closure_map_with(NamedDiagrams(name_by_key), chain, {.most_regions = regions}));
  EXPECT_FALSE(closure_map_with(NamedDiagrams(name_by_key), chain, {.most_regions = regions - 1}));
  EXPECT_FALSE(closure_map_with(NamedDiagrams(name_by_key), chain, {.most_regions = 3}));
  EXPECT_THROW(closure_map(chain, {.most_regions = 0}), Error);
}

TEST(ClosureMap, RefusesWhatIsNoNumberAndStopsWhenAsked) {
  auto chain = compact_walk(1, 10);
  std::stop_source stopped;
  stopped.request_stop();
  try {
    closure_map(chain, {}, {.stop = stopped.get_token()});
    FAIL() << "it was to stop";
  } catch (const Error& error) {
    EXPECT_EQ(error.code(), ErrorCode::kCancelled);
  }
  chain[3].y = std::nan("");
  EXPECT_THROW(closure_map(chain), Error);
}

TEST(ClosureMap, TellsItsProgressFromBeginningToEnd) {
  std::vector<double> told;
  korvex::Run run;
  run.progress = [&told](double fraction) { told.push_back(fraction); };
  keys_of(compact_walk(12, 80), run);
  ASSERT_FALSE(told.empty());
  EXPECT_TRUE(std::is_sorted(told.begin(), told.end()));
  EXPECT_EQ(told.back(), 1);
}

}  // namespace
}  // namespace korvex
