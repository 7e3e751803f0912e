#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "support/reading.hpp"

namespace {

using korvex::Chain;
using reading::chain;
using reading::chains;
using reading::complaint;
using reading::contains;
using reading::numbers;

using Numbers = std::vector<std::int32_t>;

// One atom's record; its place is (x, 0, 0). `name` is four columns wide.
struct Atom {
  const char* name = " CA ";
  const char* residue = "ALA";
  char chain = 'A';
  int number = 1;
  double x = 0;
  const char* element = " C";
  const char* record = "ATOM  ";
  char altloc = ' ';
  char code = ' ';
  double occupancy = 1;
};

std::string line(const Atom& a) {
  char text[96];
  std::snprintf(text, sizeof text, "%-6s%5d %-4s%c%3s %c%4d%c   %8.3f%8.3f%8.3f%6.2f%6.2f%10s%2s\n",
                a.record, 1, a.name, a.altloc, a.residue, a.chain, a.number, a.code, a.x, 0.0, 0.0,
                a.occupancy, 0.0, "", a.element);
  return text;
}

// The backbone of one residue, bonded to those of the numbers next to it.
std::string residue(int number, const char* name = "ALA", char chain = 'A',
                    const char* record = "ATOM  ") {
  const double x = 3.8 * number;
  Atom n{" N  ", name, chain, number, x - 1.3, " N", record};
  Atom ca{" CA ", name, chain, number, x, " C", record};
  Atom c{" C  ", name, chain, number, x + 1.3, " C", record};
  return line(n) + line(ca) + line(c);
}

std::string residues(int first, int last, char chain = 'A') {
  std::string text;
  for (int number = first; number <= last; ++number) text += residue(number, "ALA", chain);
  return text;
}

// A HETATM carbon named CA with a backbone around it, far from everything.
std::string ligand(int number, char chain = 'A') {
  return line({" N  ", "SFG", chain, number, 498.7, " N", "HETATM"}) +
         line({" CA ", "SFG", chain, number, 500, " C", "HETATM"}) +
         line({" C  ", "SFG", chain, number, 501.3, " C", "HETATM"});
}

TEST(ReadPdb, CalciumIsNoAlphaCarbon) {
  const std::string protein = residues(1, 3);
  const Atom ion{"CA  ", " CA", 'A', 201, 50, "CA", "HETATM"};
  Atom unmarked = ion;
  unmarked.element = "  ";
  Atom odd = ion;
  odd.record = "ATOM  ";
  for (const Atom& atom : {ion, unmarked, odd}) {
    EXPECT_EQ(numbers(chain(protein + line(atom) + "TER\nEND\n")), Numbers({1, 2, 3}));
  }
}

TEST(ReadPdb, AnAminoAcidsAlphaCarbonIsOneWhateverItsElementIsCalled) {
  std::string text;
  for (int number = 1; number <= 3; ++number) {
    text += line({"CA  ", "GLY", 'A', number, 3.8 * number, number == 2 ? "CA" : "  "});
  }
  EXPECT_EQ(numbers(chain(text)), Numbers({1, 2, 3}));
}

TEST(ReadPdb, LigandsAreLeftOutWhereverTheyStand) {
  const std::string protein = residues(1, 3);
  EXPECT_EQ(numbers(chain(protein + "TER\n" + ligand(300))), Numbers({1, 2, 3}));
  EXPECT_EQ(numbers(chain(protein + ligand(300))), Numbers({1, 2, 3}));
  EXPECT_EQ(numbers(chain(ligand(300) + protein)), Numbers({1, 2, 3}));
  EXPECT_EQ(
      numbers(chain(protein + residues(1, 2, 'B') + "TER\n" + ligand(300, 'A'), {.chains = {"A"}})),
      Numbers({1, 2, 3}));
}

TEST(ReadPdb, ALigandAloneIsNoChain) {
  EXPECT_TRUE(contains(complaint(ligand(1)), "no polymer chain with CA or P atoms"));
}

TEST(ReadPdb, ModifiedResiduesAreKept) {
  const std::string mse = residue(2, "MSE", 'A', "HETATM");
  EXPECT_EQ(numbers(chain(residue(1) + mse + residue(3) + "TER\n")), Numbers({1, 2, 3}));
  EXPECT_EQ(numbers(chain(residue(1) + mse + residue(3))), Numbers({1, 2, 3}));
  EXPECT_EQ(chain(residue(1) + mse + residue(3)).residues[1].name, "MSE");
}

TEST(ReadPdb, ModifiedResiduesAtTheEndsAreKept) {
  const std::string middle = residues(2, 3);
  const std::string first = residue(1, "MSE", 'A', "HETATM");
  const std::string last = residue(4, "XYZ", 'A', "HETATM");
  EXPECT_EQ(numbers(chain(first + middle + last)), Numbers({1, 2, 3, 4}));
  EXPECT_EQ(numbers(chain(first + middle + residue(9, "MSE", 'A', "HETATM") + "TER\n")),
            Numbers({1, 2, 3, 9}));
}

TEST(ReadPdb, APolymerOfModifiedResiduesAloneIsAChain) {
  EXPECT_EQ(numbers(chain(residue(1, "DVA", 'A', "HETATM") + residue(2, "MVA", 'A', "HETATM") +
                          residue(3, "DAL", 'A', "HETATM"))),
            Numbers({1, 2, 3}));
}

TEST(ReadPdb, ResiduesUnknownByNameInAtomRecordsMakeAChain) {
  EXPECT_EQ(numbers(chain(line({" CA ", "BEA", 'A', 1, 0}) + line({" CA ", "BEA", 'A', 2, 40}))),
            Numbers({1, 2}));
}

TEST(ReadPdb, TheAlternativeOfHighestOccupancyIsTaken) {
  const auto with = [](double first, double second) {
    return line({" CA ", "ALA", 'A', 1, 10, " C", "ATOM  ", 'A', ' ', first}) +
           line({" CA ", "ALA", 'A', 1, 20, " C", "ATOM  ", 'B', ' ', second}) + residue(2);
  };
  EXPECT_EQ(chain(with(0.7, 0.3)).points[0].x, 10);
  EXPECT_EQ(chain(with(0.3, 0.7)).points[0].x, 20);
  EXPECT_EQ(chain(with(0.5, 0.5)).points[0].x, 10);
  EXPECT_EQ(chain(with(0, 0)).points[0].x, 10);
  EXPECT_EQ(chain(with(0.5, 0.5)).points.size(), 2U);
}

TEST(ReadPdb, AlternativesMayBeListedApart) {
  const std::string text =
      line({" CA ", "ALA", 'A', 1, 10, " C", "ATOM  ", 'A', ' ', 0.4}) + residue(2) +
      line({" CA ", "ALA", 'A', 1, 20, " C", "ATOM  ", 'B', ' ', 0.6}) + residue(3);
  const Chain read = chain(text);
  EXPECT_EQ(numbers(read), Numbers({1, 2, 3}));
  EXPECT_EQ(read.points[0].x, 20);
}

TEST(ReadPdb, OneOfSeveralResiduesAtOnePlaceIsTaken) {
  const std::string text = line({" CA ", "SER", 'A', 1, 10, " C", "ATOM  ", 'A', ' ', 0.4}) +
                           line({" CA ", "PRO", 'A', 1, 11, " C", "ATOM  ", 'B', ' ', 0.6}) +
                           residue(2);
  const Chain read = chain(text);
  ASSERT_EQ(read.points.size(), 2U);
  EXPECT_EQ(read.residues[0].name, "PRO");
  EXPECT_EQ(read.points[0].x, 11);
}

TEST(ReadPdb, InsertionCodesTellResiduesApart) {
  std::string text;
  for (const char code : {' ', 'A', 'B'}) {
    text += line(
        {" CA ", "GLY", 'A', 52, 3.8 * (code == ' ' ? 0 : code - '@'), " C", "ATOM  ", ' ', code});
  }
  const Chain read = chain(text);
  EXPECT_EQ(numbers(read), Numbers({52, 52, 52}));
  EXPECT_EQ(read.residues[2].insertion_code, 'B');
}

TEST(ReadPdb, NucleicAcidsAreTracedByTheirPhosphates) {
  std::string text = line({" O3'", "  G", 'R', 1, 5.5, " O"});
  for (int number = 2; number <= 4; ++number) {
    text += line({" P  ", "  G", 'R', number, 6.0 * number, " P"}) +
            line({" O3'", "  G", 'R', number, 6.0 * number + 4.5, " O"});
  }
  const Chain read = chain(text + line({" P  ", "PO4", 'R', 90, 99, " P", "HETATM"}));
  EXPECT_EQ(read.name, "R");
  EXPECT_EQ(numbers(read), Numbers({2, 3, 4}));
  EXPECT_EQ(read.points[0].x, 12);
}

TEST(ReadPdb, LipidsDoNotOutvoteAProtein) {
  std::string text = residues(1, 3);
  for (int number = 4; number < 40; ++number) {
    text += line({" P  ", "POP", 'A', number, 9.0 * number, " P"});
  }
  EXPECT_EQ(numbers(chain(text)), Numbers({1, 2, 3}));
}

TEST(ReadPdb, WatersUnderTheChainsNameAreLeftOut) {
  const std::string water = line({" O  ", "HOH", 'A', 2, 90, " O", "HETATM"});
  EXPECT_EQ(chains(residues(1, 3) + "TER\n" + residues(1, 2, 'B') + "TER\n" + water).size(), 2U);
}

TEST(ReadPdb, NumbersThatBeginAgainAfterTerBeginAnotherChain) {
  const std::vector<Chain> read =
      chains(residues(1, 3, ' ') + "TER\n" + residues(1, 2, ' ') + "TER\n");
  ASSERT_EQ(read.size(), 2U);
  EXPECT_EQ(numbers(read[0]), Numbers({1, 2, 3}));
  EXPECT_EQ(numbers(read[1]), Numbers({1, 2}));
}

TEST(ReadPdb, NumbersMayWrap) {
  std::string text;
  for (int i = 0; i < 10005; ++i) text += line({" CA ", "GLY", 'A', i % 10000, 3.8 * (i % 100)});
  const Chain read = chain(text, {.gaps = korvex::GapPolicy::kBridge});
  ASSERT_EQ(read.points.size(), 10005U);
  EXPECT_EQ(read.residues[9999].number, 9999);
  EXPECT_EQ(read.residues[10004].number, 4);
}

TEST(ReadPdb, LargeNumbersAreReadInBothWritings) {
  std::string hybrid = line({" CA ", "GLY", 'A', 1, 0});
  hybrid.replace(22, 4, "A000");
  EXPECT_EQ(numbers(chain(hybrid)), Numbers({10000}));
  hybrid.replace(22, 4, "a001");
  EXPECT_EQ(numbers(chain(hybrid)), Numbers({1223057}));
  std::string wide = line({" CA ", "GLY", 'A', 1, 0});
  wide.replace(22, 5, "12345");
  EXPECT_EQ(numbers(chain(wide)), Numbers({12345}));
}

TEST(ReadPdb, NamesMayTakeTheSharedColumn) {
  std::string text = line({" CA ", "GLY", 'B', 1, 0});
  text[20] = 'A';
  EXPECT_EQ(chain(text).name, "AB");
  text = line({" CA ", "HIS", ' ', 1, 0});
  text[20] = 'D';
  EXPECT_EQ(chain(text).name, "");
  EXPECT_EQ(chain(text).residues[0].name, "HISD");
}

TEST(ReadPdb, AlphaCarbonsAloneAreAChain) {
  std::string text;
  for (int number = 1; number <= 4; ++number) {
    const bool modified = number == 4;
    text += line({" CA ", modified ? "MSE" : "ALA", 'A', number, 3.8 * number, "  ",
                  modified ? "HETATM" : "ATOM  "});
  }
  EXPECT_EQ(numbers(chain(text)), Numbers({1, 2, 3, 4}));
}

TEST(ReadPdb, ModelsAreToldByTheirNumbers) {
  const std::vector<Chain> read = chains("MODEL        3\n" + residues(1, 3) +
                                         "ENDMDL\nMODEL    12345\n" + residues(1, 2) + "ENDMDL\n");
  ASSERT_EQ(read.size(), 2U);
  EXPECT_EQ(read[0].model, 3);
  EXPECT_EQ(read[1].model, 12345);
}

TEST(ReadPdb, ModelsMayBeSeparatedByEndAlone) {
  const std::vector<Chain> read = chains(residues(1, 3) + "END\n" + residues(1, 3) + "END\n");
  ASSERT_EQ(read.size(), 2U);
  EXPECT_EQ(read[1].model, 2);
}

TEST(ReadPdb, AnAtomOfAnotherNameMayBeTraced) {
  const std::string beads = line({" BB ", "ALA", 'A', 1, 1}) + line({" BB ", "GLY", 'A', 2, 2});
  EXPECT_EQ(chain(beads, {.atoms = {"BB"}}).points[1].x, 2);
  EXPECT_EQ(numbers(chain(residues(1, 3), {.atoms = {"N"}})), Numbers({1, 2, 3}));
  EXPECT_TRUE(contains(complaint(beads), "name the atom to trace"));
  EXPECT_TRUE(contains(complaint(beads, {.atoms = {"CB"}}), "no polymer atom named 'CB'"));
}

TEST(ReadPdb, MalformedAtomsAreNamedByLineAndColumns) {
  std::string good = residue(1);
  const auto broken = [&good](std::size_t place, const std::string& field) {
    std::string text = residue(2);
    text.replace(place, field.size(), field);
    return complaint(good + text);
  };
  EXPECT_TRUE(contains(broken(30, "********"), "text:4: columns 31-38 hold '********'"));
  EXPECT_TRUE(contains(broken(38, "     nan"), "columns 39-46 hold '     nan', which is not fin"));
  EXPECT_TRUE(contains(broken(46, " 1.0 2.0"), "columns 47-54"));
  EXPECT_TRUE(contains(broken(46, "        "), "columns 47-54"));
  EXPECT_TRUE(contains(broken(22, "  x1"), "columns 23-26 hold 'x1'"));
  EXPECT_TRUE(contains(broken(22, "    "), "columns 23-26"));
  EXPECT_TRUE(contains(broken(54, "  high"), "columns 55-60"));
  EXPECT_TRUE(contains(complaint(good + residue(2).substr(0, 50)), "text:4: the atom's line ends"));
}

TEST(ReadPdb, AModelThatDoesNotEndIsRefused) {
  EXPECT_TRUE(contains(complaint("MODEL        1\n" + residues(1, 3)), "ends within a MODEL"));
}

TEST(ReadPdb, AnErrorInALaterModelIsAnError) {
  EXPECT_TRUE(
      contains(complaint(residues(1, 3) + "ENDMDL\nATOM      1  CA  ALA A   1\n"), "text:11:"));
}

TEST(ReadPdb, ShortAtomLinesNeedNothingAfterTheCoordinates) {
  EXPECT_EQ(chain(residue(1).substr(0, 54) + "\n" + line({}).substr(0, 54)).points.size(), 1U);
}

TEST(ReadPdb, AHeaderWithoutAtomsIsRefused) {
  EXPECT_TRUE(contains(complaint("HEADER    TRANSFERASE\nEND\n"), "no polymer chain"));
}

TEST(ReadPdb, AtomsAreFoundBehindAnyText) {
  EXPECT_EQ(chain("written by hand\n" + residues(1, 3) + "score 12\n").points.size(), 3U);
}

}  // namespace
