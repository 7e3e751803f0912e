#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "support/reading.hpp"

namespace {

using korvex::Chain;
using korvex::Numbering;
using reading::chain;
using reading::chains;
using reading::complaint;
using reading::contains;
using reading::numbers;

using Numbers = std::vector<std::int32_t>;

// The columns of an archive's file, in its order.
const char* const kHead = R"(data_TEST
loop_
_atom_site.group_PDB
_atom_site.type_symbol
_atom_site.label_atom_id
_atom_site.label_alt_id
_atom_site.label_comp_id
_atom_site.label_asym_id
_atom_site.label_entity_id
_atom_site.label_seq_id
_atom_site.pdbx_PDB_ins_code
_atom_site.Cartn_x
_atom_site.Cartn_y
_atom_site.Cartn_z
_atom_site.occupancy
_atom_site.auth_seq_id
_atom_site.auth_asym_id
_atom_site.pdbx_PDB_model_num
)";

const char* const kEntities = R"(data_TEST
loop_
_entity.id
_entity.type
1 polymer
2 non-polymer
)";

const std::string kProtein = R"(ATOM C CA . ALA B 1 1 ? 1 0 0 1.0 11 X 1
ATOM C CA . GLY B 1 2 ? 2 0 0 1.0 12 X 1
HETATM C CA . MSE B 1 3 A 3 0 0 1.0 12 X 1
)";

std::string with_entities(const std::string& rows) {
  return kEntities + std::string(kHead).substr(std::string("data_TEST\n").size()) + rows;
}

TEST(ReadMmcif, AuthorNumbersAreTheDefault) {
  const Chain read = chain(with_entities(kProtein));
  EXPECT_EQ(read.name, "X");
  EXPECT_EQ(numbers(read), Numbers({11, 12, 12}));
  EXPECT_EQ(read.residues[2].insertion_code, 'A');
  EXPECT_EQ(read.residues[2].name, "MSE");
}

TEST(ReadMmcif, LabelNumbersMayBeAskedFor) {
  const Chain read = chain(with_entities(kProtein), {.numbering = Numbering::kLabel});
  EXPECT_EQ(read.name, "B");
  EXPECT_EQ(numbers(read), Numbers({1, 2, 3}));
  EXPECT_EQ(read.residues[2].insertion_code, ' ');
}

TEST(ReadMmcif, EntitiesTellLigandsFromThePolymer) {
  const std::string ligand = "ATOM C CA . SFG C 2 4 ? 4 0 0 1.0 99 X 1\n";
  EXPECT_EQ(chain(with_entities(kProtein + ligand)).points.size(), 3U);
}

TEST(ReadMmcif, SequenceNumbersTellLigandsWhereEntitiesDoNot) {
  const std::string ligand = "HETATM C CA . SFG C ? . ? 4 0 0 1.0 99 X 1\n";
  EXPECT_EQ(chain(kHead + kProtein + ligand).points.size(), 3U);
}

TEST(ReadMmcif, BondsTellLigandsWhereNothingElseDoes) {
  const std::string bare = R"(data_TEST
loop_
_atom_site.group_PDB
_atom_site.type_symbol
_atom_site.label_atom_id
_atom_site.label_comp_id
_atom_site.auth_asym_id
_atom_site.auth_seq_id
_atom_site.Cartn_x
_atom_site.Cartn_y
_atom_site.Cartn_z
ATOM C CA ALA A 1 0 0 0
ATOM C CA ALA A 2 3.8 0 0
HETATM C CA MSE A 3 7.6 0 0
HETATM CA CA CA A 101 9 0 0
HETATM C CA SFG A 102 30 0 0
)";
  EXPECT_EQ(numbers(chain(bare)), Numbers({1, 2, 3}));
}

TEST(ReadMmcif, CalciumInAPolymerIsNoAlphaCarbon) {
  EXPECT_EQ(
      chain(with_entities(kProtein + "HETATM CA CA . CA B 1 4 ? 9 0 0 1.0 13 X 1\n")).points.size(),
      3U);
}

TEST(ReadMmcif, TwoPolymersUnderOneAuthorsNameAreTwoChains) {
  const std::string second = "ATOM C CA . ALA C 1 1 ? 9 0 0 1.0 31 X 1\n";
  EXPECT_EQ(chains(with_entities(kProtein + second)).size(), 2U);
}

TEST(ReadMmcif, TheAlternativeOfHighestOccupancyIsTaken) {
  const std::string rows = R"(ATOM C CA A ALA B 1 1 ? 1 0 0 0.4 11 X 1
ATOM C CA B ALA B 1 1 ? 2 0 0 0.6 11 X 1
ATOM C CA A SER B 1 2 ? 5 0 0 0.5 12 X 1
ATOM C CA B PRO B 1 2 ? 6 0 0 0.5 12 X 1
)";
  const Chain read = chain(with_entities(rows));
  ASSERT_EQ(read.points.size(), 2U);
  EXPECT_EQ(read.points[0].x, 2);
  EXPECT_EQ(read.points[1].x, 5);
  EXPECT_EQ(read.residues[1].name, "SER");
}

TEST(ReadMmcif, ModelsMayBeInterleaved) {
  const std::string rows = R"(ATOM C CA . ALA B 1 1 ? 1 0 0 1 11 X 2
ATOM C CA . ALA B 1 1 ? 2 0 0 1 11 X 7
ATOM C CA . ALA B 1 2 ? 3 0 0 1 12 X 2
)";
  const std::vector<Chain> read = chains(with_entities(rows));
  ASSERT_EQ(read.size(), 2U);
  EXPECT_EQ(read[0].model, 2);
  EXPECT_EQ(read[0].points.size(), 2U);
  EXPECT_EQ(read[1].model, 7);
}

TEST(ReadMmcif, QuotedNamesAndOldInsertionCodesAreUnderstood) {
  const std::string rows = R"(ATOM P "P" . 'G' B 1 1 ? 1 0 0 1 15A X 1
ATOM O "O3'" . G B 1 1 ? 1 0 0 1 15A X 1
ATOM P P . G B 1 2 ? 7 0 0 1 16 X 1
)";
  const Chain read = chain(with_entities(rows));
  EXPECT_EQ(numbers(read), Numbers({15, 16}));
  EXPECT_EQ(read.residues[0].insertion_code, 'A');
  EXPECT_EQ(read.residues[0].name, "G");
}

TEST(ReadMmcif, AtomsMayStandInALaterBlock) {
  EXPECT_EQ(chain("data_first\n_cell.length_a 1\n" + with_entities(kProtein)).points.size(), 3U);
}

TEST(ReadMmcif, CommentsMayComeFirst) {
  EXPECT_EQ(chain("\n# written by hand\n" + with_entities(kProtein)).points.size(), 3U);
}

TEST(ReadMmcif, OtherCategoriesAreNotInTheWay) {
  const std::string huge = "_pdbx_struct_assembly_gen.oper_expression '(1-2000000000)'\n";
  EXPECT_EQ(chain(with_entities(kProtein) + huge).points.size(), 3U);
}

TEST(ReadMmcif, MalformedFilesAreRefused) {
  const std::string rows = with_entities(kProtein);
  EXPECT_TRUE(contains(complaint(rows + "ATOM C CA\n"), "cut short"));
  EXPECT_TRUE(contains(complaint(rows + "'unclosed\n"), "text:27"));
  EXPECT_TRUE(contains(complaint("data_x\n_cell.length_a 1\n"), "holds no atoms"));
  EXPECT_TRUE(contains(complaint(kHead), "_atom_site has no rows"));
}

TEST(ReadMmcif, RowsAreNamedWhereTheyAreWrong) {
  const auto wrong = [](const std::string& row) {
    return complaint(with_entities(kProtein + row));
  };
  EXPECT_TRUE(contains(wrong("ATOM C CA . ALA B 1 4 ? ? 0 0 1 13 X 1\n"),
                       "row 4 of _atom_site: '?' stands where the x coordinate belongs"));
  EXPECT_TRUE(contains(wrong("ATOM C CA . ALA B 1 4 ? 0 nan 0 1 13 X 1\n"), "the y coordinate"));
  EXPECT_TRUE(contains(wrong("ATOM C CA . ALA B 1 4 ? 0 0 1e999 1 13 X 1\n"), "the z coordinate"));
  EXPECT_TRUE(contains(wrong("ATOM C CA . ALA B 1 4 ? 0 0 0 x 13 X 1\n"), "the occupancy"));
  EXPECT_TRUE(contains(wrong("ATOM C CA . ALA B 1 4 ? 0 0 0 1 99999999999 X 1\n"),
                       "'99999999999' stands where the residue number belongs"));
  EXPECT_TRUE(contains(wrong("ATOM C CA . ALA B 1 4 ? 0 0 0 1 13 X one\n"), "the model number"));
}

TEST(ReadMmcif, TheLineOfAWrongRowIsNamedWhateverStandsInTheRowsBefore) {
  const std::string head = with_entities("");
  const auto first = 1 + std::count(head.begin(), head.end(), '\n');
  const std::string wrong = "ATOM C CA . ALA B 1 4 ? x 0 0 1 13 X 1\n";
  const auto place = [&](const std::string& rows) {
    const std::string text = complaint(head + rows + wrong);
    return std::stol(text.substr(text.find(':') + 1)) - first;
  };
  EXPECT_EQ(place(""), 0);
  EXPECT_EQ(place(kProtein), 3);
  EXPECT_EQ(place("ATOM C CA . ALA B\n1 4 ?\n\n0 0 0 # a comment\n1 13 X 1\n"), 5);
  EXPECT_EQ(place("ATOM C 'C A'x' . \"AL 'A\" B 1 4 ? 0 0 0 1 13 X 1\n"), 1);
  EXPECT_EQ(place("ATOM C\n;CA\n' x\n;\n. ALA B 1 4 ? 0 0 0 1 13 X 1\n"), 5);
}

TEST(ReadMmcif, MissingColumnsAreNamed) {
  const std::string text = R"(data_x
loop_
_atom_site.Cartn_x
_atom_site.Cartn_y
_atom_site.Cartn_z
_atom_site.label_atom_id
1 2 3 CA
)";
  EXPECT_TRUE(contains(complaint(text), "no column label_comp_id"));
}

}  // namespace
