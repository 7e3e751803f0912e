// Damaged input of every format: each reading ends in chains of finite numbers or in korvex::Error.
#include "support/damage.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "korvex/error.hpp"
#include "korvex/read.hpp"

namespace {

using support::content;
using support::damaged;
using support::head;

struct Sample {
  const char* name;
  std::string text;
};

std::vector<Sample> samples() {
  const std::string cif = content("proteins/1crn.cif");
  const std::size_t atoms = cif.rfind("loop_", cif.find("_atom_site.group_PDB"));
  return {{"pdb", head(content("proteins/1ztu.pdb").substr(80 * 540), 6000)},
          {"cif", "data_1CRN\n" + head(cif.substr(atoms), 4000)},
          {"gz", content("proteins/1tim.pdb.gz").substr(0, 4000)},
          {"gro", content("trajectories/ring_3_1.gro")},
          {"lammps", head(content("trajectories/ring_3_1.lammpstrj"), 4500)},
          {"xyz", "3\ncomment\nC 0 0 0\nC 1 0 0\nC 1 1 0\n2\n\nC 0 0 0\nC 1 0 0\n"},
          {"plain", "# comment\n1 0 0 0\n2 1 0 0\n\n3 1 1 0\n"}};
}

void expect_an_answer(const std::string& text) {
  try {
    for (const korvex::Chain& chain : read_chains(korvex::Source::memory(text, "damaged"))) {
      ASSERT_FALSE(chain.points.empty());
      ASSERT_EQ(chain.points.size(), chain.residues.size());
      for (const korvex::Point& point : chain.points) {
        ASSERT_TRUE(std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z));
      }
    }
  } catch (const korvex::Error& error) {
    ASSERT_TRUE(std::string(error.what()).starts_with("damaged")) << error.what();
  }
}

TEST(DamagedInput, IsReadOrRefusedAtEveryCut) {
  for (const Sample& sample : samples()) {
    SCOPED_TRACE(sample.name);
    for (std::size_t length = 0; length < sample.text.size(); length += 1 + length / 40) {
      expect_an_answer(sample.text.substr(0, length));
    }
  }
}

TEST(DamagedInput, IsReadOrRefusedWhateverIsChanged) {
  std::mt19937 random(20);
  for (const Sample& sample : samples()) {
    SCOPED_TRACE(sample.name);
    for (int trial = 0; trial < 400; ++trial) expect_an_answer(damaged(sample.text, random));
  }
}

}  // namespace
