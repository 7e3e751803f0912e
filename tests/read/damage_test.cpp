// Damaged input of every format: each reading ends in chains of finite numbers or in korvex::Error.
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "korvex/error.hpp"
#include "korvex/read.hpp"
#include "support/data_file.hpp"

namespace {

std::string content(const std::string& file) {
  std::ifstream stream(support::data_file(file), std::ios::binary);
  std::ostringstream text;
  text << stream.rdbuf();
  return text.str();
}

// The first lines of a text, at most `size` bytes.
std::string head(const std::string& text, std::size_t size) {
  return text.size() <= size ? text : text.substr(0, text.rfind('\n', size) + 1);
}

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

// Changes one to four places: other bytes, digits and signs, removed and repeated stretches.
std::string damaged(std::string text, std::mt19937& random) {
  const auto below = [&random](std::size_t bound) {
    return std::uniform_int_distribution<std::size_t>(0, bound - 1)(random);
  };
  constexpr std::string_view kLikely = "0123456789+-.eEinfa \t\n\r#'\";_?*";
  for (std::size_t change = below(4) + 1; change > 0 && !text.empty(); --change) {
    const std::size_t place = below(text.size());
    const std::size_t length = std::min(below(90) + 1, text.size() - place);
    switch (below(5)) {
      case 0:
        text[place] = static_cast<char>(below(256));
        break;
      case 1:
        text[place] = kLikely[below(kLikely.size())];
        break;
      case 2:
        text.erase(place, length);
        break;
      case 3:
        text.insert(place, text.substr(place, length));
        break;
      default:
        text.insert(place, 1, kLikely[below(kLikely.size())]);
    }
  }
  return text;
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
