// Confidences of predicted models.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "support/reading.hpp"

namespace {

using korvex::Chain;
using reading::chain;
using reading::complaint;
using reading::contains;
using reading::numbers;

using Numbers = std::vector<std::int32_t>;

const std::vector<float> kConfidences = {30, 80, 40, 90, 95.5, 49.99F, 20};

std::string pdb(const std::string& head) {
  std::string text = head;
  for (std::size_t i = 0; i < kConfidences.size(); ++i) {
    char line[128];
    std::snprintf(
        line, sizeof line, "ATOM  %5zu  CA  ALA A%4zu    %8.3f%8.3f%8.3f  1.00%6.2f           C\n",
        i + 1, i + 1, 3.8 * static_cast<double>(i), 0.0, 0.0, static_cast<double>(kConfidences[i]));
    text += line;
  }
  return text;
}

std::string cif(const std::string& metric) {
  std::string text =
      "data_x\n" + metric +
      "loop_\n_atom_site.group_PDB\n_atom_site.label_atom_id\n_atom_site.label_comp_id\n"
      "_atom_site.label_asym_id\n_atom_site.label_seq_id\n_atom_site.Cartn_x\n"
      "_atom_site.Cartn_y\n_atom_site.Cartn_z\n_atom_site.B_iso_or_equiv\n";
  for (std::size_t i = 0; i < kConfidences.size(); ++i) {
    text += "ATOM CA ALA A " + std::to_string(i + 1) + " " +
            std::to_string(3.8 * static_cast<double>(i)) + " 0 0 " +
            std::to_string(kConfidences[i]) + "\n";
  }
  return text;
}

const char* const kTitle = "TITLE     ALPHAFOLD MONOMER V2.0 PREDICTION FOR A PROTEIN\n";
const char* const kMetric =
    "loop_\n_ma_qa_metric.id\n_ma_qa_metric.mode\n_ma_qa_metric.type\n1 global pLDDT\n2 local "
    "pLDDT\n";

TEST(Confidence, StandsWhereTheFileSaysSo) {
  EXPECT_EQ(chain(pdb(kTitle)).plddt, kConfidences);
  EXPECT_EQ(chain(pdb("REMARK   1 AlphaFold Data, copyright\n")).plddt, kConfidences);
  EXPECT_EQ(chain(pdb("REMARK 250 B-FACTOR COLUMN: pLDDT\n")).plddt, kConfidences);
  EXPECT_EQ(chain(cif(kMetric)).plddt, kConfidences);
}

TEST(Confidence, IsNoTemperatureFactor) {
  EXPECT_TRUE(chain(pdb("")).plddt.empty());
  EXPECT_TRUE(chain(pdb("REMARK 200 STARTING MODEL: ALPHAFOLD\n")).plddt.empty());
  EXPECT_TRUE(chain(pdb("TITLE     PREDICTION OF SOMETHING\n")).plddt.empty());
  EXPECT_TRUE(chain(cif("")).plddt.empty());
  EXPECT_TRUE(chain(cif("_ma_qa_metric.mode global\n_ma_qa_metric.type pLDDT\n")).plddt.empty());
}

TEST(Confidence, TrimsTailsAndNotTheMiddle) {
  for (const std::string& text : {pdb(kTitle), cif(kMetric)}) {
    const Chain read = chain(text, {.min_plddt = 50});
    EXPECT_EQ(numbers(read), Numbers({2, 3, 4, 5}));
    EXPECT_EQ(read.plddt, std::vector<float>({80, 40, 90, 95.5}));
    EXPECT_EQ(read.points.size(), 4U);
  }
  EXPECT_EQ(numbers(chain(pdb(kTitle), {.min_plddt = 20})).size(), 7U);
}

TEST(Confidence, GoesAlongWithItsResidues) {
  const Chain some = chain(pdb(kTitle), {.residues = {.first = 3, .last = 5}});
  EXPECT_EQ(some.plddt, std::vector<float>({40, 90, 95.5}));
  std::string broken = pdb(kTitle);
  broken.erase(broken.find("ATOM      4"), broken.find("ATOM      5") - broken.find("ATOM      4"));
  const std::vector<Chain> parts = reading::chains(broken, {.gaps = korvex::GapPolicy::kSplit});
  ASSERT_EQ(parts.size(), 2U);
  EXPECT_EQ(parts[1].plddt, std::vector<float>({95.5, 49.99F, 20}));
}

TEST(Confidence, IsMissedWhereItIsAskedForAndNotThere) {
  EXPECT_TRUE(contains(complaint(pdb(""), {.min_plddt = 50}), "tells of no confidence"));
  EXPECT_TRUE(contains(complaint(pdb(kTitle), {.min_plddt = 99}), "nothing there is selected"));
  EXPECT_TRUE(contains(complaint(pdb(kTitle), {.min_plddt = 101}), "must be from 0 to 100"));
}

}  // namespace
