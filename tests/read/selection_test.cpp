#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "korvex/error.hpp"
#include "support/data_file.hpp"
#include "support/reading.hpp"

namespace {

using korvex::Chain;
using korvex::Error;
using korvex::ErrorCode;
using korvex::Gap;
using korvex::GapPolicy;
using korvex::ReadOptions;
using reading::chain;
using reading::chains;
using reading::complaint;
using reading::contains;
using reading::numbers;

using Numbers = std::vector<std::int32_t>;

std::string data(const char* file) { return support::data_file("proteins/") + file; }

struct Known {
  const char* file;
  const char* chain;
  std::size_t points;
  std::size_t gaps;
  double longest;  // of the gaps
};

class Proteins : public testing::TestWithParam<Known> {};

TEST_P(Proteins, HaveTheKnownResiduesAndGaps) {
  const auto [file, name, points, gaps, longest] = GetParam();
  const std::vector<Chain> read = korvex::read_chains(
      data(file), {.models = {1, 1}, .chains = {name}, .gaps = GapPolicy::kBridge});
  ASSERT_EQ(read.size(), 1U);
  EXPECT_EQ(read[0].points.size(), points);
  EXPECT_EQ(read[0].residues.size(), points);
  ASSERT_EQ(read[0].gaps.size(), gaps);
  EXPECT_EQ(read[0].mended, 0U);
  double found = 0;
  for (const Gap& gap : read[0].gaps) found = std::max(found, gap.length);
  EXPECT_NEAR(found, longest, 0.05);
}

INSTANTIATE_TEST_SUITE_P(
    Chains, Proteins,
    testing::Values(Known{"1ca2.pdb", "A", 256, 0, 0}, Known{"4yvi.cif", "A", 239, 1, 9.5},
                    Known{"4yvi.cif", "B", 249, 0, 0}, Known{"4yvi.cif", "C", 71, 0, 0},
                    Known{"1ztu.pdb", "A", 313, 2, 13.2}, Known{"1xd3_A_bound.pdb", "A", 229, 0, 0},
                    Known{"2efv_CA.pdb", "A", 82, 0, 0}, Known{"1ubq.pdb", "A", 76, 0, 0},
                    Known{"1crn.pdb", "A", 46, 0, 0}, Known{"1crn.cif", "A", 46, 0, 0},
                    Known{"4hhb.pdb", "A", 141, 0, 0}, Known{"4hhb.pdb", "B", 146, 0, 0},
                    Known{"4hhb.pdb", "C", 141, 0, 0}, Known{"4hhb.pdb", "D", 146, 0, 0},
                    Known{"1tim.pdb.gz", "A", 247, 0, 0}, Known{"1tim.pdb.gz", "B", 247, 0, 0},
                    Known{"1l2y.pdb", "A", 20, 0, 0}));

TEST(ReadChains, NoChainIsReadThatTheProteinsDoNotHave) {
  EXPECT_EQ(korvex::read_chains(data("4yvi.cif")).size(), 3U);
  EXPECT_EQ(korvex::read_chains(data("4hhb.pdb")).size(), 4U);
  EXPECT_EQ(korvex::read_chains(data("1tim.pdb.gz")).size(), 2U);
  EXPECT_EQ(korvex::read_chains(data("1ztu.pdb")).size(), 1U);
}

TEST(ReadChains, ChainThatIsMissingIsToldWhenTheOthersHaveBeenVisited) {
  std::vector<std::string> visited;
  const auto visit = [&visited](Chain&& read) {
    visited.push_back(read.name);
    return true;
  };
  try {
    korvex::visit_chains(data("4hhb.pdb"), {.chains = {"B", "Z", "D"}}, visit);
    FAIL() << "nothing was thrown";
  } catch (const Error& error) {
    EXPECT_EQ(error.code(), ErrorCode::kInvalidArgument);
    EXPECT_TRUE(contains(error.what(), "no chain named 'Z' is there")) << error.what();
    EXPECT_TRUE(contains(error.what(), "A, B, C, D")) << error.what();
  }
  EXPECT_EQ(visited, std::vector<std::string>({"B", "D"}));
}

TEST(ReadChains, FramesWithoutAtomsAreToldAsSuch) {
  EXPECT_EQ(complaint("0\n\n"), "text: holds no atoms; give a chain's coordinates");
  EXPECT_EQ(complaint("1\n\nC 1 2 3\n", {.atoms = {"N"}}),
            "text: holds no atom of the kind 'N'; name another");
}

TEST(ReadChains, ModelsAreSelectedByRangeAndStep) {
  EXPECT_EQ(korvex::read_chains(data("1l2y.pdb")).size(), 38U);
  std::vector<std::int64_t> models;
  for (const Chain& read : korvex::read_chains(data("1l2y.pdb"), {.models = {5, 20, 7}})) {
    models.push_back(read.model);
  }
  EXPECT_EQ(models, std::vector<std::int64_t>({5, 12, 19}));
  EXPECT_EQ(korvex::read_chains(data("1l2y.pdb"), {.models = {.step = 10}}).size(), 4U);
}

TEST(ReadChains, NegativeModelNumbersStepAsWell) {
  const std::string frame = "ATOM      1  CA  ALA A   1       0.000   0.000   0.000\nENDMDL\n";
  std::string text;
  for (int model = -4; model <= 4; ++model) {
    text += "MODEL " + std::to_string(model) + "\n" + frame;
  }
  EXPECT_EQ(chains(text, {.models = {-4, 4, 4}}).size(), 3U);
  EXPECT_EQ(chains(text, {.models = {.step = 3}}).size(), 3U);
}

TEST(ReadChains, ResiduesAreSelectedByNumber) {
  const std::string text = "1 0 0 0\n2 1 0 0\n3 2 0 0\n4 3 0 0\n";
  EXPECT_EQ(numbers(chain(text, {.residues = {2, 3}})), Numbers({2, 3}));
  EXPECT_EQ(numbers(chain(text, {.residues = {.first = 3}})), Numbers({3, 4}));
}

TEST(ReadChains, ABoundIsTheResidueOfThatLabelAlone) {
  std::string text;
  for (const char* label : {"  51 ", "  52 ", "  52A", "  52B", "  53 "}) {
    text += "ATOM      1  CA  GLY A" + std::string(label) + "      " +
            std::to_string(text.size() / 55) + ".000   0.000   0.000\n";
  }
  EXPECT_EQ(chain(text, {.residues = {52, 52}}).points.size(), 1U);
  EXPECT_EQ(chain(text, {.residues = {51, 52}}).points.size(), 2U);
  EXPECT_EQ(chain(text, {.residues = {52, 53}}).points.size(), 4U);
  EXPECT_EQ(chain(text, {.residues = {52, 53, 'A', ' '}}).points.size(), 3U);
  EXPECT_EQ(chain(text, {.residues = {52, 52, ' ', 'A'}}).points.size(), 2U);
  EXPECT_EQ(chain(text, {.residues = {52, 52, ' ', 'Z'}}).points.size(), 3U);
  EXPECT_EQ(chain(text, {.residues = {.first = 52}}).points.size(), 4U);
}

TEST(ReadChains, ASelectionThatNothingMeetsIsAnError) {
  EXPECT_THROW(
      {
        try {
          korvex::read_chains(data("4hhb.pdb"), {.chains = {"Z"}});
        } catch (const Error& error) {
          EXPECT_EQ(error.code(), ErrorCode::kInvalidArgument);
          EXPECT_EQ(error.file(), data("4hhb.pdb"));
          EXPECT_TRUE(contains(error.what(), "the chains of the selected models are A, B, C, D"));
          throw;
        }
      },
      Error);
  EXPECT_TRUE(contains(complaint("0 0 0\n", {.models = {2, 2}}), "no model"));
  EXPECT_TRUE(contains(complaint("0 0 0\n", {.residues = {7, 9}}), "residue numbers"));
  EXPECT_TRUE(contains(complaint("0 0 0\n", {.models = {.step = 0}}), "at least 1"));
}

const char* const kBroken = "0 0 0\n1 0 0\n2 0 0\n9 0 0\n10 0 0\n11 0 0\n";

TEST(Gaps, AreBridgedAndListed) {
  const Chain read = chain(kBroken);
  EXPECT_EQ(read.points.size(), 6U);
  EXPECT_EQ(read.gaps, std::vector<Gap>({{2, 7}}));
  EXPECT_EQ(read.bond, 1);
}

TEST(Gaps, SplitAChainWhereThatIsAskedFor) {
  const std::vector<Chain> read = chains(kBroken, {.gaps = GapPolicy::kSplit});
  ASSERT_EQ(read.size(), 2U);
  EXPECT_EQ(numbers(read[0]), Numbers({1, 2, 3}));
  EXPECT_EQ(numbers(read[1]), Numbers({4, 5, 6}));
  EXPECT_TRUE(read[0].gaps.empty());
}

TEST(Gaps, AreRefusedWhereThatIsAskedFor) {
  EXPECT_TRUE(contains(complaint(kBroken, {.gaps = GapPolicy::kReject}),
                       "text: gap of 7 (median bond 1) between 3 and 4, model 1; complete"));
}

TEST(Gaps, OfOneAndAHalfTimesTheMedianAreNone) {
  EXPECT_TRUE(chain("0 0 0\n1 0 0\n2.5 0 0\n3.5 0 0\n").gaps.empty());
}

TEST(Gaps, BetweenTheEndsOfARingCount) {
  const ReadOptions ring{.closed = true};
  const Chain open_ring = chain("0 0 0\n1 0 0\n2 0 0\n3 0 0\n", ring);
  EXPECT_TRUE(open_ring.closed);
  EXPECT_EQ(open_ring.gaps, std::vector<Gap>({{3, 3}}));
  EXPECT_TRUE(chain("0 0 0\n1 0 0\n1 1 0\n0 1 0\n", ring).gaps.empty());
}

TEST(Gaps, OpenARingWhenTheySplitIt) {
  const std::vector<Chain> read = chains("2 0 0\n2 1 0\n5 1 0\n5 2 0\n3 2 0\n3 1 0\n3 0 0\n",
                                         {.closed = true, .gaps = GapPolicy::kSplit});
  ASSERT_EQ(read.size(), 2U);
  EXPECT_EQ(numbers(read[0]), Numbers({5, 6, 7, 1, 2}));
  EXPECT_EQ(numbers(read[1]), Numbers({3, 4}));
  EXPECT_FALSE(read[0].closed);
  EXPECT_FALSE(read[1].closed);
}

TEST(Gaps, SplitTheMergedChainsOfAnAntibody) {
  const std::string path = data("4g6m_fab_merged_gap.pdb");
  std::string text = korvex::Source(path).load();
  const auto expect_two = [](const std::vector<Chain>& read) {
    ASSERT_EQ(read.size(), 2U);
    EXPECT_EQ(read[0].residues.back().number, 220);
    EXPECT_EQ(read[1].residues.front().number, 501);
    EXPECT_EQ(read[0].name, read[1].name);
  };
  expect_two(korvex::read_chains(path));
  // Its TER records end the chains; without them the gap does.
  for (std::size_t ter = text.find("\nTER"); ter != std::string::npos; ter = text.find("\nTER")) {
    text.replace(ter + 1, 3, "REM");
  }
  expect_two(chains(text));
  EXPECT_EQ(chain(text, {.gaps = GapPolicy::kBridge}).gaps.size(), 1U);
}

TEST(Gaps, AreNotSoughtAmongCoincidingPoints) {
  EXPECT_TRUE(chain("0 0 0\n0 0 0\n0 0 0\n1 0 0\n").gaps.empty());
}

TEST(Ends, ARepeatedFirstPointClosesTheChain) {
  const Chain read = chain("0 0 0\n1 0 0\n1 1 0\n0 0 0\n");
  EXPECT_TRUE(read.closed);
  EXPECT_EQ(read.points.size(), 3U);
}

TEST(Ends, StayOpenOtherwise) {
  EXPECT_FALSE(chain("0 0 0\n1 0 0\n1 1 0\n0 1 0\n").closed);
  EXPECT_FALSE(chain("0 0 0\n0 0 0\n").closed);
  EXPECT_FALSE(chain("0 0 0\n").closed);
}

TEST(VisitChains, StopsWhenItIsTold) {
  int visited = 0;
  korvex::visit_chains(data("1l2y.pdb"), {}, [&](Chain&&) { return ++visited < 3; });
  EXPECT_EQ(visited, 3);
}

TEST(VisitChains, LetsTheVisitorsExceptionsThrough) {
  for (const char* file : {"1crn.pdb", "1crn.cif"}) {
    EXPECT_THROW(korvex::visit_chains(data(file), {}, [](Chain&&) -> bool { throw 7; }), int);
  }
}

}  // namespace
