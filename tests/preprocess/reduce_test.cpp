#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <string>

#include "preprocess.h"
#include "support/chains.hpp"
#include "support/data_file.hpp"
#include "support/knot_key.hpp"

namespace {

using support::Chain;

const std::uint64_t kUnknot = 1;
const std::uint64_t kTrefoil = support::key_of_polynomial({1, -1, 1});
const std::uint64_t kFigureEight = support::key_of_polynomial({-1, 3, -1});

Chain reduced(Chain chain, bool closed = true) {
  const int left = ChainReduce(chain, closed);
  EXPECT_EQ(left, static_cast<int>(chain.size()));
  return chain;
}

std::vector<std::int32_t> sorted_ids(const Chain& chain) {
  std::vector<std::int32_t> ids;
  for (const ChainAtom& atom : chain) ids.push_back(atom.id);
  std::sort(ids.begin(), ids.end());
  return ids;
}

// The atoms of `part` are atoms of `whole`, in its order and unchanged.
bool is_subsequence(const Chain& part, const Chain& whole) {
  std::size_t next = 0;
  for (const ChainAtom& atom : whole) {
    if (next < part.size() && support::same_atoms({atom}, {part[next]})) ++next;
  }
  return next == part.size();
}

Chain atoms(std::initializer_list<std::array<double, 3>> places) {
  Chain chain;
  for (const auto& p : places) {
    chain.push_back({p[0], p[1], p[2], static_cast<std::int32_t>(chain.size() + 1)});
  }
  return chain;
}

TEST(KnotKey, TellsTheKnotsOfTheFixturesApart) {
  EXPECT_EQ(support::knot_key(support::torus_knot(2, 3, 60)), kTrefoil);
  EXPECT_EQ(support::knot_key(support::torus_knot(3, 2, 60)), kTrefoil);
  EXPECT_EQ(support::knot_key(support::torus_knot(2, 5, 90)),
            support::key_of_polynomial({1, -1, 1, -1, 1}));
  EXPECT_EQ(support::knot_key(support::figure_eight(80)), kFigureEight);
  EXPECT_EQ(support::knot_key(support::torus_knot(1, 5, 60)), kUnknot);
  EXPECT_EQ(support::knot_key(support::lattice_ring(true, 24, 9, 1)), kTrefoil);
  EXPECT_EQ(support::knot_key(support::lattice_ring(false, 60, 9, 1)), kUnknot);
  EXPECT_NE(kTrefoil, kFigureEight);
}

TEST(ChainReduce, LeavesShortChainsAlone) {
  for (const bool closed : {false, true}) {
    EXPECT_TRUE(reduced({}, closed).empty());
    EXPECT_EQ(reduced(atoms({{1, 2, 3}}), closed).size(), 1U);
    EXPECT_EQ(reduced(atoms({{0, 0, 0}, {1, 0, 0}}), closed).size(), 2U);
  }
  EXPECT_EQ(reduced(atoms({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}), true).size(), 3U);
  EXPECT_EQ(reduced(atoms({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}), false).size(), 2U);
}

TEST(ChainReduce, BringsConvexRingsDownToThreeAtoms) {
  for (const int count : {4, 5, 17, 100}) {
    EXPECT_EQ(reduced(support::torus_knot(1, 0, count)).size(), 3U) << count;
  }
}

TEST(ChainReduce, KeepsBothEndsOfAnOpenChain) {
  const Chain chain = support::confined_walk(200, 5, 3);
  const Chain left = reduced(chain, false);
  EXPECT_LT(left.size(), chain.size());
  EXPECT_TRUE(support::same_atoms({left.front(), left.back()}, {chain.front(), chain.back()}));
  EXPECT_TRUE(is_subsequence(left, chain));
}

TEST(ChainReduce, KeepsTheKnotAndTheAtomsOfRandomRings) {
  for (std::uint64_t seed = 1; seed <= 120; ++seed) {
    for (const Chain& ring : {support::compact_ring(80, seed), support::gaussian_ring(80, seed),
                              support::protein_like_walk(80, seed)}) {
      const Chain left = reduced(ring);
      EXPECT_TRUE(is_subsequence(left, ring));
      EXPECT_EQ(support::knot_key(ring), support::knot_key(left)) << seed;
    }
  }
}

TEST(ChainReduce, KeepsTheKnotOfDenseRings) {
  for (std::uint64_t seed = 1; seed <= 4; ++seed) {
    const Chain ring = support::compact_ring(220, seed);
    EXPECT_EQ(support::knot_key(ring), support::knot_key(reduced(ring))) << seed;
  }
}

TEST(ChainReduce, KeepsTheKnotOfNearlyFlatRings) {
  for (std::uint64_t seed = 1; seed <= 60; ++seed) {
    Chain ring = support::gaussian_ring(60, seed);
    for (ChainAtom& atom : ring) atom.z *= 1e-7;
    EXPECT_EQ(support::knot_key(support::rotated(ring, seed)),
              support::knot_key(support::rotated(reduced(ring), seed)))
        << seed;
  }
}

TEST(ChainReduce, BringsTorusKnotsNearTheirFewestEdges) {
  for (std::uint64_t turn = 1; turn <= 10; ++turn) {
    const Chain trefoil = reduced(support::rotated(support::torus_knot(2, 3, 300), turn));
    EXPECT_EQ(support::knot_key(trefoil), kTrefoil);
    EXPECT_LE(trefoil.size(), 9U);  // 6 is the fewest
    const Chain eight = reduced(support::rotated(support::figure_eight(300), turn));
    EXPECT_EQ(support::knot_key(eight), kFigureEight);
    EXPECT_LE(eight.size(), 12U);  // 7 is the fewest
  }
}

TEST(ChainReduce, ReducesLatticeRingsToTheirKnot) {
  for (std::uint64_t seed = 1; seed <= 15; ++seed) {
    const Chain unknot = support::lattice_ring(false, 400, 5, seed);
    EXPECT_EQ(reduced(unknot).size(), 3U) << seed;
    const Chain trefoil = support::lattice_ring(true, 400, 5, seed);
    const Chain left = reduced(trefoil);
    EXPECT_EQ(support::knot_key(left), kTrefoil) << seed;
    EXPECT_LE(left.size(), 14U) << seed;
    EXPECT_TRUE(is_subsequence(left, trefoil));
  }
}

TEST(ChainReduce, BringsAThousandAtomsDownToAFewDozen) {
  for (std::uint64_t seed = 1; seed <= 3; ++seed) {
    Chain chain = support::protein_like_walk(1000, seed);
    EXPECT_LE(reduced(chain).size(), 48U);
    EXPECT_LE(reduced(support::lattice_ring(true, 1000, 6, seed)).size(), 14U);
  }
}

TEST(ChainReduce, KeepsTheKnotsOfRealProteinsAndLeavesAFewAtoms) {
  for (const std::string name : {"1ca2.pdb", "2efv_CA.pdb", "1xd3_A_bound.pdb", "1ubq.pdb"}) {
    std::string path = support::data_file("proteins/") + name;
    bool error = false;
    const Chain chain = ChainRead(path.data(), error);
    ASSERT_FALSE(error) << path;
    for (unsigned seed = 1; seed <= 5; ++seed) {
      std::srand(seed);
      Chain ring = chain;
      ASSERT_EQ(CloseChain_2points(ring, 1.25), 0);
      const Chain left = reduced(ring);
      EXPECT_EQ(support::knot_key(left, seed), support::knot_key(ring, seed)) << name;
      EXPECT_LE(left.size(), 24U) << name;
    }
  }
}

TEST(ChainReduce, IsDoneAfterOneCall) {
  for (std::uint64_t seed = 1; seed <= 20; ++seed) {
    for (const Chain& ring : {support::compact_ring(150, seed), support::lattice_walk(60, seed)}) {
      for (const bool closed : {false, true}) {
        const Chain once = reduced(ring, closed);
        EXPECT_TRUE(support::same_atoms(reduced(once, closed), once));
      }
    }
  }
}

TEST(ChainReduce, DoesNotDependOnTheFirstAtomOrTheDirection) {
  for (std::uint64_t seed = 1; seed <= 25; ++seed) {
    for (const Chain& ring : {support::compact_ring(120, seed), support::gaussian_ring(120, seed),
                              support::lattice_ring(seed % 2 == 0, 120, 4, seed)}) {
      const auto ids = sorted_ids(reduced(ring));
      EXPECT_EQ(sorted_ids(reduced(support::cycled(ring, 1))), ids) << seed;
      EXPECT_EQ(sorted_ids(reduced(support::cycled(ring, 57))), ids) << seed;
      EXPECT_EQ(sorted_ids(reduced(support::reversed(ring))), ids) << seed;
    }
  }
}

TEST(ChainReduce, DoesNotDependOnPowersOfTwoInTheUnit) {
  const Chain ring = support::compact_ring(150, 5);
  const auto ids = sorted_ids(reduced(ring));
  for (const double unit : {0x1p-900, 0x1p-30, 0x1p30, 0x1p900}) {
    EXPECT_EQ(sorted_ids(reduced(support::scaled(ring, unit))), ids);
  }
}

TEST(ChainReduce, KeepsTheKnotAtEveryScaleAndPlace) {
  for (std::uint64_t seed = 1; seed <= 25; ++seed) {
    const Chain ring = support::compact_ring(80, seed);
    const std::uint64_t key = support::knot_key(ring);
    const std::size_t usual = reduced(ring).size();
    for (const double factor : {1e-8, 1e8}) {
      const Chain left = reduced(support::scaled(ring, factor));
      EXPECT_EQ(support::knot_key(left), key) << seed;
      EXPECT_LE(left.size(), usual + 4);
    }
    const Chain far = support::shifted(ring, 1e6, -1e6, 2e6);
    const Chain left = reduced(far);
    EXPECT_EQ(support::knot_key(support::shifted(left, -1e6, 1e6, -2e6)), key) << seed;
    EXPECT_LE(left.size(), usual + 4);
  }
}

TEST(ChainReduce, WorksAtTheEndsOfTheNumberRange) {
  const Chain ring = support::torus_knot(2, 3, 100);
  for (const double factor : {1e300, 1e-300}) {
    const Chain left = reduced(support::scaled(ring, factor));
    EXPECT_EQ(support::knot_key(support::scaled(left, 1 / factor)), kTrefoil);
    EXPECT_LE(left.size(), 9U);
  }
}

TEST(ChainReduce, RemovesSubdivisionsAgain) {
  for (std::uint64_t seed = 1; seed <= 20; ++seed) {
    const Chain coarse = reduced(support::compact_ring(60, seed));
    EXPECT_LE(reduced(support::subdivided(coarse, 4)).size(), coarse.size() + 3);
    const Chain lattice = reduced(support::lattice_ring(true, 100, 4, seed));
    EXPECT_LE(reduced(support::subdivided(lattice, 4)).size(), lattice.size() + 3);
  }
}

TEST(ChainReduce, RemovesRepeatedAtoms) {
  EXPECT_EQ(reduced(Chain(9, ChainAtom{1, 2, 3, 0}), true).size(), 1U);
  EXPECT_EQ(reduced(Chain(9, ChainAtom{1, 2, 3, 0}), false).size(), 2U);
  Chain doubled;
  for (const ChainAtom& atom : support::torus_knot(2, 3, 60))
    doubled.insert(doubled.end(), 3, atom);
  const Chain left = reduced(doubled);
  EXPECT_EQ(left.size(), reduced(support::torus_knot(2, 3, 60)).size());
  EXPECT_EQ(support::knot_key(left), kTrefoil);
}

TEST(ChainReduce, RemovesAtomsOnStraightLinesThoughOtherEdgesTouchThem) {
  // The atom (1, 0, 0) lies on a line, and another edge passes through its place.
  const Chain chain = atoms({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {2, 2, 1}, {1, 1, 0}, {1, -1, 0}});
  const Chain left = reduced(chain, false);
  EXPECT_EQ(std::count_if(left.begin(), left.end(), [](const ChainAtom& a) { return a.id == 2; }),
            0);
}

TEST(ChainReduce, RemovesSpikesThatNothingTouches) {
  EXPECT_EQ(reduced(atoms({{0, 0, 0}, {3, 0, 0}, {1, 0, 0}}), false).size(), 2U);
  EXPECT_EQ(reduced(atoms({{0, 0, 0}, {3, 3, 3}, {-1, -1, -1}}), false).size(), 2U);
  EXPECT_EQ(reduced(atoms({{0, 0, 0}, {0, 0, 5}, {0, 0, 0}}), false).size(), 2U);
  EXPECT_EQ(reduced(atoms({{0, 0, 0}, {5, 0, 0}, {2, 0, 0}, {2, 3, 0}, {0, 3, 0}}), true).size(),
            3U);
}

TEST(ChainReduce, KeepsASpikeThatAnEdgeTouches) {
  // The tip (4, 0, 0) pokes exactly into the edge from (4, 1, 1) to (4, -1, -1).
  const Chain chain =
      atoms({{0, 0, 0}, {4, 0, 0}, {1, 0, 0}, {1, 5, 0}, {4, 1, 1}, {4, -1, -1}, {0, -5, -5}});
  const Chain left = reduced(chain, false);
  EXPECT_EQ(std::count_if(left.begin(), left.end(), [](const ChainAtom& a) { return a.id == 2; }),
            1);
}

TEST(ChainReduce, EndsOnChainsThatMeetThemselves) {
  for (std::uint64_t seed = 1; seed <= 200; ++seed) {
    for (const bool closed : {false, true}) {
      const Chain walk = support::lattice_walk(4 + static_cast<int>(seed % 60), seed);
      const Chain left = reduced(walk, closed);
      EXPECT_TRUE(is_subsequence(left, walk));
      EXPECT_GE(left.size(), 1U);
    }
  }
  for (const bool closed : {false, true}) {
    Chain zigzag;
    for (int k = 0; k < 50; ++k) zigzag.push_back({k % 2 == 0 ? 0.0 : 1.0, 0, 0, k});
    EXPECT_LE(reduced(zigzag, closed).size(), 50U);
  }
}

TEST(ChainReduce, LeavesChainsWithoutFinitePlacesAlone) {
  for (const double bad :
       {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
    Chain ring = support::torus_knot(1, 0, 10);
    ring[4].y = bad;
    EXPECT_EQ(reduced(ring, true).size(), 10U);
    EXPECT_EQ(reduced(ring, false).size(), 10U);
  }
}

}  // namespace
