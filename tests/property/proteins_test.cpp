// Proteins whose knots are known, from file to name.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <iostream>
#include <string>

#include "korvex.h"
#include "support/captured_stream.hpp"
#include "support/data_file.hpp"
#include "support/temporary_file.hpp"

namespace {

struct Protein {
  const char* file;
  int ordinal;
};

class Proteins : public testing::TestWithParam<Protein> {};

std::array<int, 42> votes(const char* file, int closure, int trials) {
  std::string path = support::data_file("proteins/") + file;
  bool error = true;
  const std::vector<ChainAtom> chain = ChainRead(path.data(), error);
  EXPECT_FALSE(error);
  std::array<int, 42> counts{};
  std::srand(20);
  FindMajorKnot(chain, counts.data(), closure, trials);
  return counts;
}

TEST_P(Proteins, HaveTheirKnotByOutwardClosure) {
  EXPECT_EQ(votes(GetParam().file, 1, 1)[static_cast<std::size_t>(GetParam().ordinal)], 1);
}

TEST_P(Proteins, HaveTheirKnotByAClearMajorityOfDirections) {
  const auto counts = votes(GetParam().file, 4, 60);
  EXPECT_GT(counts[static_cast<std::size_t>(GetParam().ordinal)], 36);
}

TEST_P(Proteins, HaveTheirKnotAsTheLeaderOfTwoPointClosures) {
  const auto counts = votes(GetParam().file, 2, 100);
  EXPECT_EQ(std::max_element(counts.begin(), counts.end()) - counts.begin(), GetParam().ordinal);
}

TEST_P(Proteins, AreNamedFirstByTheChainFileDriver) {
  std::string path = support::data_file("proteins/") + GetParam().file;
  support::TemporaryFile output;
  const support::CapturedStream out(std::cout);
  const support::CapturedStream log(std::clog);
  std::srand(20);
  EXPECT_EQ(FindKnots(0, path.data(), output.name(), 0, 10, 30, 4, 40, 0), 0);
  const std::string name = knotsArray[GetParam().ordinal].name;
  EXPECT_EQ(out.text().substr(0, name.size() + 1), name + "(");
  EXPECT_EQ(out.text().back(), '\n');
}

INSTANTIATE_TEST_SUITE_P(, Proteins,
                         testing::Values(Protein{"1ca2.pdb", 1}, Protein{"4yvi.cif", 1},
                                         Protein{"1ztu.pdb", 2}, Protein{"1xd3_A_bound.pdb", 4},
                                         Protein{"2efv_CA.pdb", 1}, Protein{"1ubq.pdb", 0},
                                         Protein{"1crn.pdb", 0}, Protein{"1crn.cif", 0},
                                         Protein{"4hhb.pdb", 0}, Protein{"1tim.pdb.gz", 0},
                                         Protein{"1l2y.pdb", 0}),
                         [](const testing::TestParamInfo<Protein>& protein) {
                           std::string name = protein.param.file;
                           std::replace(name.begin(), name.end(), '.', '_');
                           return name;
                         });

}  // namespace
