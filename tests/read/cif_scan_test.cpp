// The scanner of CIF against gemmi's grammar: the same tables, or no answer.
#include <gtest/gtest.h>

#include <cmath>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "korvex/error.hpp"
#include "read/cif_table.hpp"
#include "support/damage.hpp"
#include "support/simd_targets.hpp"

namespace {

using korvex::read::CifBlock;
using korvex::read::CifTable;
using korvex::read::read_cif_document;
using korvex::read::scan_cif;

const std::vector<std::string_view> kWanted = {
    "cartn_x",      "cartn_y",       "cartn_z",      "group_pdb",    "label_atom_id",
    "label_alt_id", "label_comp_id", "label_seq_id", "auth_asym_id", "occupancy"};

// That the tables have the columns of `scanned`, with the same values and lines.
void expect_same(const CifTable& scanned, const CifTable& whole,
                 const std::vector<std::string>& tags, const std::string& text) {
  for (const std::string& tag : tags) {
    const std::optional<std::size_t> here = scanned.column(tag);
    const std::optional<std::size_t> there = whole.column(tag);
    ASSERT_EQ(here.has_value(), there.has_value()) << tag;
    if (!here) continue;
    ASSERT_EQ(scanned.rows(), whole.rows());
    ASSERT_EQ(scanned.line(), whole.line());
    const std::size_t step = 1 + whole.rows() / 5;
    for (std::size_t row = 0; row < whole.rows(); ++row) {
      ASSERT_EQ(scanned.raw(row, *here), whole.raw(row, *there)) << tag << row;
      ASSERT_EQ(scanned.text(row, *here), whole.text(row, *there)) << tag << row;
      if (row % step == 0) {
        ASSERT_EQ(scanned.line_of_row(text, row), whole.line_of_row(text, row)) << tag << row;
      }
    }
  }
}

void expect_same(const CifBlock& scanned, const CifBlock& whole, const std::string& text) {
  const std::vector<std::string> wanted(kWanted.begin(), kWanted.end());
  expect_same(scanned.atom_site, whole.atom_site, wanted, text);
  expect_same(scanned.entity, whole.entity, {"id", "type"}, text);
  expect_same(scanned.struct_asym, whole.struct_asym, {"id", "entity_id"}, text);
  expect_same(scanned.cell, whole.cell, {"length_a", "angle_gamma"}, text);
  expect_same(scanned.qa_metric, whole.qa_metric, {"mode", "type"}, text);
  expect_same(scanned.struct_conn, whole.struct_conn, {"conn_type_id", "ptnr1_auth_seq_id"}, text);
}

// True where the scanner gives an answer; it must be right then.
bool scans(const std::string& text) {
  const std::optional<CifBlock> scanned = scan_cif(text, kWanted);
  if (!scanned) return false;
  try {
    expect_same(*scanned, read_cif_document(text, "text"), text);
  } catch (const korvex::Error& error) {
    ADD_FAILURE() << error.what() << " in\n" << text;
  }
  return true;
}

const char* const kSmall = R"(data_small
_entry.id small
#
loop_
_entity.id
_entity.type
1 polymer
2 'non-polymer'
_cell.length_a   12.5(3)
_cell.angle_gamma 90
loop_
_atom_site.group_PDB
_atom_site.label_atom_id
_atom_site.Cartn_x
_atom_site.Cartn_y
_atom_site.Cartn_z
_atom_site.label_comp_id
_atom_site.label_seq_id
ATOM CA    1.0 2.0 3.0 GLY 1
ATOM "O3'" 1.5 2.5 3.5 GLY 1 # a comment
ATOM CA
  -1.0 .5 +3 ALA
  2
HETATM ? . 0 0
;a text
field;
;
.
)";

TEST(CifScan, ReadsEveryKindOfValue) { EXPECT_TRUE(scans(kSmall)); }

TEST(CifScan, ReadsTheShippedStructures) {
  EXPECT_TRUE(scans(support::content("proteins/1crn.cif")));
  EXPECT_TRUE(scans(support::content("proteins/4yvi.cif")));
}

TEST(CifScan, TakesTheFirstBlockWithAtoms) {
  const std::string small = kSmall;
  EXPECT_TRUE(scans("data_first\n_entity.id 7\n" + small));
  EXPECT_TRUE(scans(small + "data_more\n_entity.id 7\n" + "data_again" + small.substr(10)));
}

TEST(CifScan, TakesSingleValuesForARow) {
  EXPECT_TRUE(scans("data_x\n_atom_site.Cartn_x 1\n_atom_site.CARTN_Y\n2\n_entity.id 'a b'\n"));
  EXPECT_TRUE(
      scans("data_x\n_entity.name 1\nloop_\n_entity.type\n_entity.id\na b c d\n"
            "_atom_site.Cartn_x 1\n_entity.details x\n"));
}

TEST(CifScan, FindsWordsAcrossTheBordersOfItsBlocks) {
  for (std::size_t length = 0; length < 140; ++length) {
    const std::string filling = "_filling.text '" + std::string(length, 'x') + "'\n";
    std::string text = kSmall;
    text.insert(text.find('\n') + 1, filling);
    ASSERT_TRUE(scans(text)) << length;
    ASSERT_TRUE(scans(text + "# " + std::string(4000 + length, '\'') + "\n_last.value 'x\ty'"));
  }
}

TEST(CifScan, GivesWhatIsNotClearToTheGrammar) {
  const std::string small = kSmall;
  for (const char* end :
       {"_entity.id 3\n", "_x.y", "_x.y\n", "loop_\n_x.y\n_x.z\n1 2 3\n", "data_small\n", "'open\n",
        "_x.y 'open\n", "_x.y \n;open\n", "_x.y $a\n", "_x.y a\x01\n", "stray\n", "save_a\nsave_\n",
        "loop_x\n_x.y\n1\n", "_x.y 'a'#b'\n", "_x.y\n;a\n;b\n", "_ 1\n", "global_\n"}) {
    EXPECT_FALSE(scan_cif(small + end, kWanted)) << end;
  }
  for (const char* whole : {"", "\n", "# only\n", "data_x\n", "_x.y 1\n", ";a\n;\n"}) {
    EXPECT_FALSE(scan_cif(whole, kWanted)) << whole;
  }
}

TEST(CifScan, AgreesWithTheGrammarAtEveryCut) {
  const std::string text = kSmall;
  int answers = 0;
  for (std::size_t length = 0; length < text.size(); ++length) {
    answers += scans(text.substr(0, length)) ? 1 : 0;
  }
  EXPECT_GT(answers, 5);
}

TEST(CifScan, AgreesWithTheGrammarWhateverIsChanged) {
  std::mt19937 random(7);
  const std::string crambin = support::content("proteins/1crn.cif");
  const std::size_t atoms = crambin.rfind("loop_", crambin.find("_atom_site.group_PDB"));
  const std::string part = "data_1CRN\n" + support::head(crambin.substr(atoms), 4000);
  int answers = 0;
  for (int trial = 0; trial < 3000; ++trial) {
    answers += scans(support::damaged(trial % 2 == 0 ? kSmall : part, random)) ? 1 : 0;
  }
  EXPECT_GT(answers, 300);
}

TEST(CifScan, AgreesWithTheGrammarWhateverWordsAreMoved) {
  const std::vector<std::string> words = {"data_a",
                                          "data_b",
                                          "loop_",
                                          "_entity.id",
                                          "_entity.type",
                                          "_atom_site.Cartn_x",
                                          "_x.y",
                                          "1",
                                          "'a b'",
                                          "\"q\"",
                                          "?",
                                          "#c\n",
                                          "\n;t\n;\n",
                                          "_cell.length_a",
                                          "x_y",
                                          "LOOP_",
                                          "'it's'",
                                          "_X.Y",
                                          ".",
                                          "a'b",
                                          "stop_",
                                          "data_"};
  std::mt19937 random(3);
  std::uniform_int_distribution<std::size_t> which(0, words.size() - 1);
  int answers = 0;
  for (int trial = 0; trial < 20000; ++trial) {
    std::string text = "data_0 _atom_site.Cartn_x 1 ";
    for (std::size_t count = which(random) / 2; count > 0; --count) {
      text += words[which(random)] + (random() % 3 == 0 ? "\n" : " ");
    }
    answers += scans(text) ? 1 : 0;
  }
  EXPECT_GT(answers, 1000);
}

TEST(CifScan, IsTheSameForEveryInstructionSet) {
  const std::string text = support::content("proteins/1crn.cif");
  for (const std::int64_t target : support::simd_targets()) {
    const support::ForcedTarget forced(target);
    EXPECT_TRUE(scans(text));
  }
}

TEST(CifTable, NumbersMayHaveAnUncertainty) {
  const std::string text =
      "data_x loop_ _atom_site.Cartn_x 1.5(3) -2 +7.25 1e3 1(2 1.5x ? . 'a' 1e999 -0.0 (1) ) nan\n";
  const std::optional<CifBlock> block = scan_cif(text, {"cartn_x"});
  ASSERT_TRUE(block);
  const auto number = [&](std::size_t row) { return block->atom_site.number(row, 0); };
  EXPECT_EQ(number(0), 1.5);
  EXPECT_EQ(number(1), -2);
  EXPECT_EQ(number(2), 7.25);
  EXPECT_EQ(number(3), 1000);
  for (std::size_t row = 4; row < 10; ++row) EXPECT_TRUE(std::isnan(number(row))) << row;
  EXPECT_TRUE(std::signbit(number(10)));
  for (std::size_t row = 11; row < 14; ++row) EXPECT_TRUE(std::isnan(number(row))) << row;
}

}  // namespace
