#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "support/reading.hpp"

namespace {

using korvex::Chain;
using korvex::ChainEnds;
using korvex::Gap;
using korvex::GapPolicy;
using korvex::ReadOptions;
using reading::chain;
using reading::chains;
using reading::complaint;
using reading::contains;
using reading::numbers;

using Numbers = std::vector<std::int32_t>;

// Beads on a line, each this far from the one before.
std::string beads(const std::vector<double>& steps) {
  double x = 0;
  std::string text = "0 0 0\n";
  for (const double step : steps) text += std::to_string(x += step) + " 0 0\n";
  return text;
}

// Alanines on a line with these numbers, each this far from the one before.
std::string alanines(const std::vector<int>& labels, const std::vector<double>& steps) {
  double x = 0;
  std::string text;
  for (std::size_t i = 0; i < labels.size(); ++i) {
    if (i != 0) x += steps[i - 1];
    char line[96];
    std::snprintf(line, sizeof line, "ATOM  %5d  CA  ALA A%4d    %8.3f%8.3f%8.3f  1.00  0.00\n", 1,
                  labels[i], x, 0.0, 0.0);
    text += line;
  }
  return text;
}

TEST(AutoGaps, MayLieAtTheFirstBondAndAtTheLast) {
  EXPECT_EQ(chain(beads({10, 1, 1, 1, 1, 1})).gaps, std::vector<Gap>({{0, 10}}));
  EXPECT_EQ(chain(beads({1, 1, 1, 1, 1, 10})).gaps, std::vector<Gap>({{5, 10}}));
  EXPECT_EQ(chains(beads({12, 1, 1, 1, 1, 1})).size(), 2U);
  EXPECT_EQ(chains(beads({1, 1, 1, 1, 1, 12})).size(), 2U);
}

TEST(AutoGaps, UpToTheBoundAreBridgedAndLongerOnesSplit) {
  const std::vector<Chain> parts = chains(beads({1, 1, 10, 1, 1, 11, 1, 1, 12, 1, 1}));
  ASSERT_EQ(parts.size(), 3U);
  EXPECT_EQ(numbers(parts[0]), Numbers({1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(parts[0].gaps, std::vector<Gap>({{2, 10}}));
  EXPECT_EQ(parts[0].part, 1);
  EXPECT_EQ(parts[0].split_length, 0);
  EXPECT_EQ(parts[1].part, 2);
  EXPECT_EQ(parts[1].split_length, 11);
  EXPECT_TRUE(parts[1].gaps.empty());
  EXPECT_EQ(parts[2].part, 3);
  EXPECT_EQ(parts[2].split_length, 12);
}

TEST(AutoGaps, AreBridgedUpToTheBoundThatIsGiven) {
  const std::string text = beads({1, 1, 10, 1, 1, 20, 1, 1});
  EXPECT_EQ(chains(text, {.max_gap = 9.9}).size(), 3U);
  const Chain bridged = chain(text, {.max_gap = 20});
  EXPECT_EQ(bridged.gaps, std::vector<Gap>({{2, 10}, {5, 20}}));
  EXPECT_EQ(bridged.part, 0);
}

TEST(AutoGaps, NeedABoundThatIsNoOrdinaryBond) {
  for (const double bound : {1.4, 0.0, -3.0, std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_TRUE(contains(complaint(beads({1, 1}), {.max_gap = bound}), "at least 1.5"));
  }
}

TEST(AutoGaps, InsideAPartCountFromItsBeginning) {
  const std::vector<Chain> parts = chains(beads({1, 1, 30, 1, 5, 1, 1, 1, 1}));
  ASSERT_EQ(parts.size(), 2U);
  EXPECT_EQ(parts[1].gaps, std::vector<Gap>({{1, 5}}));
}

TEST(AutoGaps, OfARingThatOpensKeepTheirPlaces) {
  // A square of side 20 of which one side is broken, and another has a hole of 3.
  std::string text;
  for (int i = 0; i <= 20; ++i) text += std::to_string(i) + " 0 0\n";
  for (int i = 1; i <= 20; ++i) {
    if (i != 8 && i != 9) text += "20 " + std::to_string(i) + " 0\n";
  }
  for (int i = 19; i >= 0; --i) text += std::to_string(i) + " 20 0\n";
  const Chain open = chain(text, {.closed = true});
  EXPECT_FALSE(open.closed);
  EXPECT_EQ(open.part, 1);
  EXPECT_EQ(open.split_length, 20);
  EXPECT_EQ(open.gaps, std::vector<Gap>({{27, 3}}));
}

TEST(Jumps, OfTheSequenceAreGapsWhateverTheirLength) {
  std::string text = R"(data_x
loop_
_atom_site.group_PDB
_atom_site.label_atom_id
_atom_site.label_comp_id
_atom_site.label_asym_id
_atom_site.label_seq_id
_atom_site.auth_seq_id
_atom_site.Cartn_x
_atom_site.Cartn_y
_atom_site.Cartn_z
)";
  for (const auto& [sequence, number, x] :
       {std::tuple{1, 11, "0"}, {2, 15, "3.8"}, {3, 16, "7.6"}, {5, 17, "11.3"}, {6, 18, "15.1"}}) {
    text += "ATOM CA ALA A " + std::to_string(sequence) + " " + std::to_string(number) + " " + x +
            " 0 0\n";
  }
  const Chain read = chain(text);
  ASSERT_EQ(read.gaps.size(), 1U);
  EXPECT_EQ(read.gaps[0].after, 2U);
  EXPECT_NEAR(read.gaps[0].length, 3.7, 1e-9);
  EXPECT_EQ(chains(text, {.gaps = GapPolicy::kSplit}).size(), 2U);
}

TEST(Jumps, OfResidueNumbersAreGapsWhereTheBondIsLong) {
  EXPECT_EQ(chain(alanines({1, 2, 5, 6}, {3.8, 5.5, 3.8})).gaps.size(), 1U);
  EXPECT_TRUE(chain(alanines({1, 2, 3, 4}, {3.8, 5.5, 3.8})).gaps.empty());
  EXPECT_TRUE(chain(alanines({1, 2, 5, 6}, {3.8, 4.5, 3.8})).gaps.empty());
}

TEST(Jumps, OfTheNumbersOfBeadsSayNothing) {
  EXPECT_TRUE(chain("1 0 0 0\n2 1 0 0\n5 2.3 0 0\n6 3.3 0 0\n").gaps.empty());
}

TEST(BeadsWhoseBondsVary, HaveNoGaps) {
  EXPECT_TRUE(chain(beads({1, 1.3, 0.6, 2.4, 0.9, 3.1, 0.7, 1.8})).gaps.empty());
  // One bond of many is a gap all the same where the others do not vary.
  EXPECT_EQ(chain(beads({1, 1.1, 0.9, 1, 3.1, 1, 1.1, 1})).gaps.size(), 1U);
}

TEST(BeadsWhoseBondsVary, AreSplitWhereThePolicyEndsThem) {
  EXPECT_EQ(chains(beads({1, 1.3, 0.6, 2.4, 0.9, 31, 0.7, 1.8})).size(), 2U);
}

std::string hexagon(double last) {
  return "1 0 0\n0.5 0.866 0\n-0.5 0.866 0\n-1 0 0\n-0.5 -0.866 0\n" + std::to_string(last) +
         " -0.866 0\n";
}

TEST(EndsOfAChain, AreToldNearWithinOneAndAHalfBonds) {
  EXPECT_EQ(chain(hexagon(0.5)).ends, ChainEnds::kNear);
  EXPECT_FALSE(chain(hexagon(0.5)).closed);
  EXPECT_EQ(chain(hexagon(2.9)).ends, ChainEnds::kApart);
  EXPECT_EQ(chain("0 0 0\n1 0 0\n1 1 0\n0 1 0\n").ends, ChainEnds::kApart);  // too few for a knot
}

TEST(EndsOfAChain, SayWhatClosedIt) {
  EXPECT_EQ(chain(hexagon(0.5), {.closed = true}).ends, ChainEnds::kAsked);
  EXPECT_EQ(chain(hexagon(0.5) + "1 0 0\n", {.closed = true}).ends, ChainEnds::kRepeated);
  EXPECT_EQ(chain(hexagon(0.5) + "1 0 0\n").ends, ChainEnds::kRepeated);
}

}  // namespace
