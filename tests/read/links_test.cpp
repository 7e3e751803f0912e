// Bonds that name their atoms: those between the ends of a chain make it a ring.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "support/reading.hpp"

namespace {

using korvex::Chain;
using korvex::ChainEnds;
using korvex::Numbering;
using reading::chain;
using reading::chains;

std::string formatted(const char* format, auto... values) {
  char text[128];
  std::snprintf(text, sizeof text, format, values...);
  return text;
}

const double kCorners[6][2] = {{3.8, 0},  {1.9, 3.29},   {-1.9, 3.29},
                               {-3.8, 0}, {-1.9, -3.29}, {1.9, -3.29}};

// Six glycines on a hexagon, with N, CA and C; the last has the insertion code B.
std::string cyclic_pdb(char chain = 'A') {
  std::string text;
  for (int i = 0; i < 18; ++i) {
    const int residue = i / 3;
    const char* const names[] = {"N", "CA", "C"};
    text += formatted("ATOM  %5d  %-3s GLY %c%4d%c   %8.3f%8.3f%8.3f  1.00  0.00\n", i + 1,
                      names[i % 3], chain, residue + 7, residue == 5 ? 'B' : ' ',
                      kCorners[residue][0] + i % 3, kCorners[residue][1], 0.0);
  }
  return text;
}

// Columns 13-27 of an atom's line.
std::string partner(const char* name, int number, char code = ' ', char chain = 'A') {
  return formatted(" %-3s GLY %c%4d%c", name, chain, number, code);
}

std::string link_record(const std::string& one, const std::string& other,
                        const std::string& symmetry = "  1555   1555  1.33") {
  return "LINK        " + one + std::string(15, ' ') + other + "  " + symmetry + "\n";
}

ChainEnds ends_of(const std::string& text, const korvex::ReadOptions& options = {}) {
  const Chain read = chain(text, options);
  EXPECT_EQ(read.closed, read.ends == ChainEnds::kBonded);
  return read.ends;
}

TEST(Link, BetweenTheEndsClosesAChainEitherWayRound) {
  const std::string first = partner("N", 7);
  const std::string last = partner("C", 12, 'B');
  EXPECT_NE(ends_of(cyclic_pdb()), ChainEnds::kBonded);
  EXPECT_EQ(ends_of(link_record(first, last) + cyclic_pdb()), ChainEnds::kBonded);
  EXPECT_EQ(ends_of(link_record(last, first) + cyclic_pdb()), ChainEnds::kBonded);
  EXPECT_EQ(ends_of(link_record(last, first, "") + cyclic_pdb()), ChainEnds::kBonded);
}

TEST(Link, ThatNamesAnotherAtomClosesNothing) {
  const std::string first = partner("N", 7);
  for (const std::string& other :
       {partner("C", 12), partner("C", 11), partner("SG", 12, 'B'), partner("C", 12, 'B', 'Z'),
        std::string(), std::string(15, 'x')}) {
    EXPECT_NE(ends_of(link_record(first, other) + cyclic_pdb()), ChainEnds::kBonded) << other;
  }
  EXPECT_NE(ends_of("LINK\n" + cyclic_pdb()), ChainEnds::kBonded);
}

TEST(Link, ToAnImageBySymmetryClosesNothing) {
  EXPECT_NE(ends_of(link_record(partner("N", 7), partner("C", 12, 'B'), "  1555   2655  1.33") +
                    cyclic_pdb()),
            ChainEnds::kBonded);
}

TEST(Link, ClosesItsOwnChainInEveryModel) {
  const std::string model = cyclic_pdb('A') + "TER\n" + cyclic_pdb('C') + "TER\nENDMDL\n";
  const std::vector<Chain> read = chains(link_record(partner("N", 7), partner("C", 12, 'B')) +
                                         "MODEL 1\n" + model + "MODEL 2\n" + model);
  ASSERT_EQ(read.size(), 4U);
  for (const Chain& one : read) EXPECT_EQ(one.closed, one.name == "A");
}

TEST(Link, NoLongerClosesAChainOfWhichAnEndIsLeftOut) {
  EXPECT_NE(ends_of(link_record(partner("N", 7), partner("C", 12, 'B')) + cyclic_pdb(),
                    {.residues = {7, 11}}),
            ChainEnds::kBonded);
}

// The same hexagon as chain B, which the authors call X and number from 7 on.
std::string cyclic_cif(const std::string& connections) {
  std::string text = R"(data_TEST
loop_
_atom_site.label_atom_id
_atom_site.label_comp_id
_atom_site.label_asym_id
_atom_site.label_seq_id
_atom_site.pdbx_PDB_ins_code
_atom_site.Cartn_x
_atom_site.Cartn_y
_atom_site.Cartn_z
_atom_site.auth_seq_id
_atom_site.auth_asym_id
)";
  for (int i = 0; i < 18; ++i) {
    const int residue = i / 3;
    const char* const names[] = {"N", "CA", "C"};
    text += formatted("%s GLY B %d %c %.3f %.3f 0 %d X\n", names[i % 3], residue + 1,
                      residue == 5 ? 'B' : '?', kCorners[residue][0] + i % 3, kCorners[residue][1],
                      residue + 7);
  }
  return text + connections;
}

const char* const kConnectionTags = R"(loop_
_struct_conn.id
_struct_conn.conn_type_id
_struct_conn.ptnr1_label_asym_id
_struct_conn.ptnr1_label_seq_id
_struct_conn.ptnr1_label_atom_id
_struct_conn.ptnr1_symmetry
_struct_conn.ptnr2_label_asym_id
_struct_conn.ptnr2_label_seq_id
_struct_conn.ptnr2_label_atom_id
_struct_conn.ptnr2_symmetry
_struct_conn.ptnr1_auth_asym_id
_struct_conn.ptnr1_auth_seq_id
_struct_conn.ptnr2_auth_asym_id
_struct_conn.ptnr2_auth_seq_id
_struct_conn.pdbx_ptnr2_PDB_ins_code
)";

std::string cif_with_row(const std::string& row) {
  return cyclic_cif(kConnectionTags + row + "\n");
}

TEST(Connection, BetweenTheEndsClosesAChainInEitherNumbering) {
  const std::string text = cif_with_row("c1 covale B 1 N 1_555 B 6 C 1_555 X 7 X 12 B");
  EXPECT_NE(ends_of(cyclic_cif("")), ChainEnds::kBonded);
  EXPECT_EQ(ends_of(text), ChainEnds::kBonded);
  EXPECT_EQ(ends_of(text, {.numbering = Numbering::kLabel}), ChainEnds::kBonded);
}

TEST(Connection, ThatIsNoCovalentBondBetweenTheEndsClosesNothing) {
  for (const char* row : {"c1 disulf B 1 N 1_555 B 6 C 1_555 X 7 X 12 B",
                          "c1 covale B 1 N 1_555 B 6 C 2_555 X 7 X 12 B",
                          "c1 covale B 1 N 1_555 B 5 C 1_555 X 7 X 11 B",
                          "c1 covale B 1 N 1_555 B 6 C 1_555 X 7 X 12 ?",
                          "c1 covale B 1 N 1_555 B 6 C 1_555 Z 7 Z 12 B",
                          "c1 covale B 1 N 1_555 B 6 ? 1_555 X 7 X 12 B",
                          "c1 covale B 1 N 1_555 B ? C 1_555 X 7 X ? B"}) {
    EXPECT_NE(ends_of(cif_with_row(row)), ChainEnds::kBonded) << row;
  }
}

TEST(Connection, IsReadFromSingleValuesToo) {
  EXPECT_EQ(
      ends_of(cyclic_cif("_struct_conn.conn_type_id covale\n"
                         "_struct_conn.ptnr1_label_asym_id B\n_struct_conn.ptnr1_label_seq_id 1\n"
                         "_struct_conn.ptnr1_label_atom_id N\n_struct_conn.ptnr2_label_asym_id B\n"
                         "_struct_conn.ptnr2_label_seq_id 6\n_struct_conn.ptnr2_label_atom_id C\n"),
              {.numbering = Numbering::kLabel}),
      ChainEnds::kBonded);
}

}  // namespace
