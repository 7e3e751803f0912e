// What makes one chain and what makes several: TER records, lengths, molecules, bonds, atoms.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "support/reading.hpp"
#include "support/temporary_directory.hpp"

namespace {

using korvex::Chain;
using korvex::ChainEnds;
using reading::chain;
using reading::chains;
using reading::complaint;
using reading::contains;
using reading::numbers;

using Numbers = std::vector<std::int32_t>;

std::string atom(int serial, const char* name, const char* residue, char chain, int number,
                 double x, const char* record = "ATOM", double y = 0) {
  char text[96];
  std::snprintf(text, sizeof text, "%-6s%5d %-4s %-3s %c%4d    %8.3f%8.3f%8.3f  1.00  0.00\n",
                record, serial, name, residue, chain, number, x, y, 0.0);
  return text;
}

std::string alanines(int first, int last, char chain = ' ') {
  std::string text;
  for (int i = first; i <= last; ++i) text += atom(i, " CA ", "ALA", chain, i, 3.8 * i);
  return text;
}

TEST(Ter, EndsAChainWhoseNumbersRunOn) {
  const std::vector<Chain> read = chains(alanines(1, 3) + "TER\n" + alanines(4, 6) + "TER\nEND\n");
  ASSERT_EQ(read.size(), 2U);
  EXPECT_EQ(numbers(read[0]), Numbers({1, 2, 3}));
  EXPECT_EQ(numbers(read[1]), Numbers({4, 5, 6}));
}

TEST(Ter, GivesAModifiedFirstResidueToTheChainBehindIt) {
  const std::string first = atom(4, " CA ", "MSE", ' ', 4, 3.8 * 4, "HETATM");
  const std::vector<Chain> read =
      chains(alanines(1, 3) + "TER\n" + first + alanines(5, 6) + "TER\nEND\n");
  ASSERT_EQ(read.size(), 2U);
  EXPECT_EQ(numbers(read[0]), Numbers({1, 2, 3}));
  EXPECT_EQ(numbers(read[1]), Numbers({4, 5, 6}));
}

TEST(Ter, KeepsAModifiedLastResidueOfEveryChain) {
  const auto last = [](int number) {
    return atom(number, " CA ", "MSE", ' ', number, 3.8 * number + 9, "HETATM") + "TER\n";
  };
  const std::vector<Chain> read = chains(alanines(1, 3) + last(4) + alanines(5, 7) + last(8));
  ASSERT_EQ(read.size(), 2U);
  EXPECT_EQ(numbers(read[0]), Numbers({1, 2, 3, 4}));
  EXPECT_EQ(numbers(read[1]), Numbers({5, 6, 7, 8}));
}

TEST(Ter, BehindLigandsMakesThemNoChain) {
  const std::string ligand = atom(9, " CA ", "SFG", ' ', 300, 500, "HETATM") +
                             atom(10, " CA ", "SFG", ' ', 301, 600, "HETATM");
  EXPECT_EQ(chains(alanines(1, 3) + "TER\n" + ligand + "TER\n").size(), 1U);
}

TEST(Lipids, AreNoChain) {
  std::string text;
  for (int i = 1; i <= 9; ++i) text += atom(i, " P  ", "POP", ' ', i, 44.0 * i);
  EXPECT_TRUE(contains(complaint(text), "holds no polymer chain"));
  EXPECT_EQ(chain(text, {.atoms = {"P"}}).points.size(), 9U);
}

TEST(Residues, ThatAreUnknownMakeAChainThroughCaOnlyWhereTheyFollowOneAnother) {
  std::string near;
  std::string far;
  for (int i = 1; i <= 6; ++i) {
    near += atom(i, " CA ", "QQQ", ' ', i, 3.8 * i);
    far += atom(i, " CA ", "QQQ", ' ', i, 38.0 * i * i);
  }
  EXPECT_EQ(chain(near).points.size(), 6U);
  EXPECT_TRUE(contains(complaint(far), "holds no polymer chain"));
  EXPECT_EQ(chain(far, {.atoms = {"CA"}}).points.size(), 6U);
}

TEST(Atoms, OfSeveralNamesFollowTheFile) {
  std::string text;
  for (int i = 1; i <= 3; ++i) {
    text += atom(i, " N  ", "ALA", 'A', i, 3.8 * i) + atom(i, " CA ", "ALA", 'A', i, 3.8 * i + 1) +
            atom(i, " CB ", "ALA", 'A', i, 3.8 * i + 1, "ATOM", 1) +
            atom(i, " C  ", "ALA", 'A', i, 3.8 * i + 2);
  }
  const Chain backbone = chain(text, {.atoms = {"N", "CA", "C"}});
  EXPECT_EQ(numbers(backbone), Numbers({1, 1, 1, 2, 2, 2, 3, 3, 3}));
  EXPECT_EQ(backbone.points[4].x, 3.8 * 2 + 1);
  EXPECT_EQ(chain(text, {.atoms = {"all"}}).points.size(), 12U);
  EXPECT_EQ(chain(text, {.atoms = {"CB"}}).points.size(), 3U);
}

TEST(Atoms, OfSeveralKindsAreTakenInPointFiles) {
  const std::string text = "4\n\nC 0 0 0\nO 1 0 0\nN 2 0 0\nC 3 0 0\n";
  EXPECT_EQ(numbers(chain(text, {.atoms = {"C", "N"}})), Numbers({1, 3, 4}));
  EXPECT_EQ(chain(text, {.atoms = {"all"}}).points.size(), 4U);
  EXPECT_TRUE(contains(complaint(text, {.atoms = {"X", "Y"}}), "'X,Y'"));
}

TEST(Atoms, OfBeadsAreReadWhateverTheirNames) {
  std::string text;
  for (int i = 1; i <= 5; ++i) text += atom(i, " B1 ", "BEA", ' ', i, 1.0 * i);
  EXPECT_TRUE(contains(complaint(text), "name the atom to trace"));
  EXPECT_EQ(chain(text, {.atoms = {"all"}}).points.size(), 5U);
}

// Six alanines on a hexagon.
std::string hexagon() {
  const double xy[6][2] = {{3.8, 0},  {1.9, 3.29},   {-1.9, 3.29},
                           {-3.8, 0}, {-1.9, -3.29}, {1.9, -3.29}};
  std::string text;
  for (int i = 0; i < 6; ++i) {
    text += atom(i + 11, " CA ", "ALA", 'A', i + 1, xy[i][0], "ATOM", xy[i][1]);
  }
  return text;
}

TEST(Conect, BetweenTheEndsClosesAChain) {
  EXPECT_EQ(chain(hexagon()).ends, ChainEnds::kNear);
  const Chain ring = chain(hexagon() + "CONECT   16   15   11\nEND\n");
  EXPECT_TRUE(ring.closed);
  EXPECT_EQ(ring.ends, ChainEnds::kBonded);
  EXPECT_EQ(ring.points.size(), 6U);
  EXPECT_FALSE(chain(hexagon() + "CONECT   11   15\nCONECT   99   11\nEND\n").closed);
}

TEST(Conect, NoLongerClosesAChainOfWhichAnEndIsLeftOut) {
  EXPECT_FALSE(chain(hexagon() + "CONECT   16   11\n", {.residues = {1, 5}}).closed);
}

TEST(ChainLength, CutsWhatTheFileHasAsOne) {
  std::string text;
  for (int i = 0; i < 6; ++i) text += std::to_string(i) + " 0 0\n";
  const std::vector<Chain> read = chains(text, {.chain_length = 2});
  ASSERT_EQ(read.size(), 3U);
  EXPECT_EQ(read[2].name, "3");
  EXPECT_EQ(numbers(read[2]), Numbers({5, 6}));
  EXPECT_EQ(numbers(chain(text, {.chains = {"2"}, .chain_length = 3})), Numbers({4, 5, 6}));
  EXPECT_TRUE(contains(complaint(text, {.chain_length = 4}), "6 points in model 1 are no whole"));
  EXPECT_EQ(chains(alanines(1, 4, 'A'), {.chain_length = 2})[1].name, "A.2");
}

std::string dump(const std::vector<std::vector<double>>& points) {
  std::string text =
      "ITEM: TIMESTEP\n0\nITEM: NUMBER OF ATOMS\n" + std::to_string(points.size()) +
      "\nITEM: BOX BOUNDS pp pp pp\n0 90\n0 90\n0 90\nITEM: ATOMS id type xu yu zu\n";
  for (std::size_t i = 0; i < points.size(); ++i) {
    text += std::to_string(i + 1) + (i % 2 == 0 ? " 1" : " 2");
    for (const double value : points[i]) text += " " + std::to_string(value);
    text += "\n";
  }
  return text;
}

class Topologies : public testing::Test {
 protected:
  std::vector<Chain> read(const std::string& topology, std::vector<std::string> atoms = {}) const {
    return chains(kDump,
                  {.atoms = std::move(atoms), .topology = directory_.write("data", topology)});
  }
  std::string complaint_of(const std::string& topology) const {
    return complaint(kDump, {.topology = directory_.write("data", topology)});
  }

  static const std::string kDump;
  TemporaryDirectory directory_;
};

const std::string Topologies::kDump =
    dump({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {5, 0, 0}, {7, 0, 0}, {6, 0, 0}, {8, 0, 0}});

const char* const kDataHead = "title\n\n8 atoms\n";

TEST_F(Topologies, GiveMolecules) {
  const std::vector<Chain> read =
      this->read(std::string(kDataHead) +
                 "\nAtoms # molecular\n\n1 7 1 0 0 0\n2 9 1 0 0 0\n3 7 1 0 0 0\n"
                 "4 9 1 0 0 0\n5 7 1 0 0 0\n6 9 1 0 0 0\n7 7 1 0 0 0\n8 9 1 0 0 0\n");
  ASSERT_EQ(read.size(), 2U);
  EXPECT_EQ(read[0].name, "7");
  EXPECT_EQ(numbers(read[0]), Numbers({1, 3, 5, 7}));
  EXPECT_EQ(numbers(read[1]), Numbers({2, 4, 6, 8}));
}

const std::string kBonds =
    "6 bonds\n1 atom types\n\nMasses\n\n1 1\n\nAtoms\n\n1 1 1 0 0 0\n2 1 1 0 0 0\n3 1 1 0 0 0\n"
    "4 1 1 0 0 0\n5 2 1 0 0 0\n6 2 1 0 0 0\n7 2 1 0 0 0\n8 2 1 0 0 0\n\nBonds\n\n1 1 1 2\n"
    "2 1 2 3\n3 1 3 4\n4 1 4 1\n5 1 5 7\n6 1 6 7\n";

TEST_F(Topologies, GiveTheOrderOfBondsAndRings) {
  const std::vector<Chain> read = this->read(kDataHead + kBonds);
  ASSERT_EQ(read.size(), 3U);
  EXPECT_EQ(numbers(read[0]), Numbers({1, 2, 3, 4}));
  EXPECT_TRUE(read[0].closed);
  EXPECT_EQ(read[0].ends, ChainEnds::kBonded);
  EXPECT_EQ(numbers(read[1]), Numbers({5, 7, 6}));
  EXPECT_FALSE(read[1].closed);
  EXPECT_EQ(read[1].name, "2");
  EXPECT_EQ(numbers(read[2]), Numbers({8}));
}

TEST_F(Topologies, JoinOnlyTheChosenAtoms) {
  const std::vector<Chain> read = this->read(kDataHead + kBonds, {"1"});
  ASSERT_EQ(read.size(), 3U);
  EXPECT_EQ(numbers(read[2]), Numbers({5, 7}));
}

TEST_F(Topologies, ThatAreDamagedAreNamed) {
  EXPECT_TRUE(contains(complaint_of(kDataHead), "no section `Atoms`"));
  EXPECT_TRUE(
      contains(complaint_of(kDataHead + kBonds.substr(0, kBonds.size() - 8)), "5 of the 6 bonds"));
  std::string wrong = kDataHead + kBonds;
  wrong.replace(wrong.find("5 1 5 7"), 7, "5 1 5 x");
  EXPECT_TRUE(contains(complaint_of(wrong), ":28: 'x' stands where"));
  std::string branched = kDataHead + kBonds;
  branched.replace(branched.find("5 1 5 7"), 7, "5 1 3 7");
  EXPECT_TRUE(contains(complaint_of(branched), "text: atom 3 has bonds to 3 of the chosen atoms"));
}

TEST_F(Topologies, AreForTrajectoriesWithoutChainsAlone) {
  EXPECT_TRUE(
      contains(complaint("0 0 0\n", {.topology = directory_.write("data", kDataHead + kBonds)}),
               "names its chains itself"));
  EXPECT_TRUE(contains(complaint(kDump, {.topology = "/nowhere/data"}), "/nowhere/data: cannot"));
}

}  // namespace
