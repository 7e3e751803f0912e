// Real proteins whose knots are known: data/README.md has them with their shares.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "engine/fingerprint/fingerprint_data.hpp"
#include "korvex/fingerprint.hpp"
#include "korvex/locate.hpp"
#include "korvex/read.hpp"
#include "korvex/votes.hpp"
#include "support/data_file.hpp"

namespace korvex {
namespace {

std::vector<Chain> chains_of(const std::string& file, const ReadOptions& options = {}) {
  return read_chains(support::data_file(file), options);
}

std::vector<Point> points_of(const std::string& file, const std::string& chain = {}) {
  ReadOptions options;
  if (!chain.empty()) options.chains = {chain};
  return chains_of("proteins/" + file, options).at(0).points;
}

std::vector<Point> mirrored(std::vector<Point> points) {
  for (Point& p : points) p.z = -p.z;
  return points;
}

struct Known {
  const char* file;
  const char* chain;
  const char* type;
  const char* mirror_type;
  double share;  // of random closures, measured apart from this code
};

const Known kKnown[] = {
    {"1ca2.pdb", "A", "+3_1", "-3_1", 0.60},         {"4yvi.cif", "A", "+3_1", "-3_1", 0.94},
    {"4yvi.cif", "B", "+3_1", "-3_1", 0.95},         {"1ztu.pdb", "A", "4_1", "4_1", 0.84},
    {"1xd3_A_bound.pdb", "A", "-5_2", "+5_2", 0.69}, {"2efv_CA.pdb", "A", "-3_1", "+3_1", 0.74},
    {"1ubq.pdb", "A", "0_1", "0_1", 0.99},           {"1crn.cif", "A", "0_1", "0_1", 0.92},
    {"4hhb.pdb", "A", "0_1", "0_1", 0.98},           {"1tim.pdb.gz", "A", "0_1", "0_1", 0.83},
};

TEST(Proteins, HaveTheirKnownKnotsAndHands) {
  constexpr double kScatter = 0.1;
  for (const Known& known : kKnown) {
    const auto points = points_of(known.file, known.chain);
    for (const Closure closure : {Closure::kRays, Closure::kTwoPoints}) {
      const Votes votes = vote(points, {.closure = closure, .trials = 200});
      EXPECT_EQ(votes.dominant().type, known.type) << known.file;
      EXPECT_NEAR(votes.dominant().share, known.share, kScatter)
          << known.file << " " << name_of(closure);
    }
  }
}

TEST(Proteins, InAMirrorHaveTheOtherHand) {
  for (const Known& known : kKnown) {
    const auto points = mirrored(points_of(known.file, known.chain));
    EXPECT_EQ(vote(points).dominant().type, known.mirror_type) << known.file;
  }
}

TEST(Proteins, RunBackwardsHaveTheSameKnot) {
  for (const Known& known : kKnown) {
    auto points = points_of(known.file, known.chain);
    const Votes forth = vote(points);
    std::reverse(points.begin(), points.end());
    const Votes back = vote(points);
    ASSERT_EQ(forth.types.size(), back.types.size()) << known.file;
    for (std::size_t k = 0; k < forth.types.size(); ++k) {
      EXPECT_EQ(forth.types[k].type, back.types[k].type) << known.file;
      EXPECT_EQ(forth.types[k].count, back.types[k].count) << known.file;
    }
  }
}

TEST(Proteins, BridgedOverAGapMayLookKnottedAndSplitThereAreNot) {
  const auto parts = chains_of("proteins/4g6m_fab_merged_gap.pdb");
  ASSERT_EQ(parts.size(), 2u);
  std::vector<Point> whole = parts[0].points;
  whole.insert(whole.end(), parts[1].points.begin(), parts[1].points.end());
  EXPECT_EQ(vote(whole).dominant().type, "-3_1#4_1");
  for (const Chain& part : parts) EXPECT_EQ(vote(part.points).dominant().type, "0_1");
}

TEST(Trajectories, KeepOrLoseTheirKnots) {
  for (const Chain& frame : chains_of("trajectories/ring_3_1.lammpstrj")) {
    const std::string type = vote(frame.points, {.closure = Closure::kRing}).dominant().type;
    EXPECT_EQ(type.substr(1), "3_1") << frame.model;
  }
  for (const Chain& frame : chains_of("trajectories/ring_0_1.lammpstrj"))
    EXPECT_EQ(vote(frame.points, {.closure = Closure::kRing}).dominant().type, "0_1");
  const auto untying = chains_of("trajectories/open_3_1.lammpstrj");
  EXPECT_EQ(vote(untying.front().points).dominant().type.substr(1), "3_1");
  EXPECT_EQ(vote(untying.back().points).dominant().type, "0_1");
}

std::vector<std::string> types_of(const std::string& trajectory, Closure closure) {
  std::vector<std::string> types;
  for (const Chain& frame : chains_of("trajectories/" + trajectory))
    types.push_back(vote(frame.points, {.closure = closure, .trials = 20}).dominant().type);
  return types;
}

// The same frames, or the first of them, in other units and rounded in other places.
TEST(Trajectories, HaveTheSameTypesFrameByFrameInEveryFormat) {
  const auto first = [](std::vector<std::string> types, std::size_t count) {
    types.resize(count);
    return types;
  };
  const auto ring = types_of("ring_3_1.lammpstrj", Closure::kRing);
  ASSERT_EQ(ring.size(), 50u);
  EXPECT_EQ(types_of("ring_3_1.xtc", Closure::kRing), ring);
  EXPECT_EQ(types_of("ring_3_1.dcd", Closure::kRing), ring);
  EXPECT_EQ(types_of("ring_3_1.models.pdb", Closure::kRing), first(ring, 10));
  EXPECT_EQ(types_of("ring_3_1.gro", Closure::kRing), first(ring, 1));
  const auto untying = types_of("open_3_1.lammpstrj", Closure::kRays);
  ASSERT_EQ(untying.size(), 60u);
  EXPECT_EQ(types_of("open_3_1.xtc", Closure::kRays), untying);
  EXPECT_EQ(types_of("open_3_1.dcd", Closure::kRays), untying);
  EXPECT_EQ(types_of("open_3_1.gro", Closure::kRays), first(untying, 1));
}

TEST(ProteinFingerprint, EqualsTheWayOneByOneInEverySubChain) {
  for (const Closure closure : {Closure::kRays, Closure::kTwoPoints}) {
    for (const char* file : {"2efv_CA.pdb", "1crn.pdb"}) {
      const auto points = points_of(file);
      const FingerprintOptions options{.closure = closure, .directions = 8};
      const Fingerprint fast = fingerprint(points, options);
      const Fingerprint slow =
          fingerprint_with(usual_identification({}), points, options, {}, SubChains::kOneByOne);
      ASSERT_EQ(fast.types(), slow.types());
      for (std::size_t begin = 0; begin < points.size(); ++begin)
        for (std::size_t end = begin + 1; end < points.size(); ++end)
          for (std::size_t type = 0; type < fast.types().size(); ++type)
            ASSERT_EQ(fast.count(type, begin, end), slow.count(type, begin, end))
                << file << " " << begin << "-" << end;
    }
  }
}

TEST(ProteinFingerprint, OfTheWholeChainIsItsVote) {
  const auto points = points_of("1xd3_A_bound.pdb");
  for (const Closure closure : {Closure::kRays, Closure::kTwoPoints}) {
    const Fingerprint found = fingerprint(points, {.closure = closure, .directions = 50});
    const Votes votes = vote(points, {.closure = closure, .trials = 50});
    std::size_t counted = 0;
    for (const TypeVotes& type : votes.types)
      for (std::size_t k = 0; k < found.types().size(); ++k)
        if (found.types()[k] == type.type) {
          EXPECT_EQ(found.count(k, 0, points.size() - 1), type.count) << type.type;
          counted += type.count;
        }
    EXPECT_EQ(counted, votes.trials);
  }
}

// Residues as in the literature: the core of the methyltransferase lies in its middle, that of
// carbonic anhydrase reaches nearly to the C-terminus.
TEST(ProteinLocation, FindsDeepAndShallowKnots) {
  const Location deep = locate(fingerprint(points_of("4yvi.cif", "B"), {.directions = 50}));
  ASSERT_FALSE(deep.knots.empty());
  EXPECT_EQ(deep.knots[0].type, "+3_1");
  EXPECT_LT(deep.knots[0].core.length(), 70);
  EXPECT_GT(deep.knots[0].tail_before, 60);
  EXPECT_GT(deep.knots[0].tail_after, 60);
  EXPECT_FALSE(deep.knots[0].slipknot());
  const Location shallow = locate(fingerprint(points_of("1ca2.pdb"), {.directions = 50}));
  ASSERT_FALSE(shallow.knots.empty());
  EXPECT_EQ(shallow.knots[0].type, "+3_1");
  EXPECT_LT(shallow.knots[0].tail_after, 10);
}

}  // namespace
}  // namespace korvex
