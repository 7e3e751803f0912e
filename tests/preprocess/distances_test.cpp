#include <gtest/gtest.h>

#include <clocale>
#include <limits>
#include <vector>

#include "preprocess.h"

namespace {

// Atoms on a line, numbered from 11, at these distances from each other.
std::vector<ChainAtom> line(const std::vector<double>& lengths) {
  std::vector<ChainAtom> chain{{0, 0, 0, 11}};
  for (const double length : lengths) {
    chain.push_back({chain.back().x + length, 0, 0, chain.back().id + 1});
  }
  return chain;
}

TEST(CheckDistancesBetweenAtoms, ChainsWithoutPairsAreOk) {
  EXPECT_EQ(CheckDistancesBetweenAtoms({}), "OK");
  EXPECT_EQ(CheckDistancesBetweenAtoms(line({})), "OK");
}

TEST(CheckDistancesBetweenAtoms, EqualDistancesAreOk) {
  EXPECT_EQ(CheckDistancesBetweenAtoms(line({2, 2, 2, 2})), "OK");
}

TEST(CheckDistancesBetweenAtoms, TheLimitsThemselvesAreOk) {
  EXPECT_EQ(CheckDistancesBetweenAtoms(line({2, 2, 1, 2, 3, 2})), "OK");
}

TEST(CheckDistancesBetweenAtoms, AGapIsNamedByItsAtomsAndDistance) {
  EXPECT_EQ(CheckDistancesBetweenAtoms(line({2, 2, 3.5, 2, 2})),
            "Distance 3.5 between atoms 13 and 14 is out of range (median 2); 1 such pair of "
            "consecutive atoms in the chain.");
}

TEST(CheckDistancesBetweenAtoms, ATooShortBondIsReported) {
  EXPECT_EQ(CheckDistancesBetweenAtoms(line({2, 0.75, 2, 2})),
            "Distance 0.75 between atoms 12 and 13 is out of range (median 2); 1 such pair of "
            "consecutive atoms in the chain.");
}

TEST(CheckDistancesBetweenAtoms, CoincidingAtomsAreReportedAndCounted) {
  EXPECT_EQ(CheckDistancesBetweenAtoms(line({2, 0, 2, 0, 2, 9, 2})),
            "Distance 0 between atoms 12 and 13 is out of range (median 2); 3 such pairs of "
            "consecutive atoms in the chain.");
}

TEST(CheckDistancesBetweenAtoms, AChainOfOnePlaceOffendsThroughout) {
  EXPECT_EQ(CheckDistancesBetweenAtoms(line({0, 0})),
            "Distance 0 between atoms 11 and 12 is out of range (median 0); 2 such pairs of "
            "consecutive atoms in the chain.");
}

TEST(CheckDistancesBetweenAtoms, TheMedianOfAnEvenNumberIsTheMeanOfTheMiddleTwo) {
  // Median 3: 4.5 is not beyond 1.5 times that, 4.75 is.
  EXPECT_EQ(CheckDistancesBetweenAtoms(line({2, 2, 4, 4.5})), "OK");
  EXPECT_EQ(CheckDistancesBetweenAtoms(line({2, 2, 4, 4.75})),
            "Distance 4.75 between atoms 14 and 15 is out of range (median 3); 1 such pair of "
            "consecutive atoms in the chain.");
}

TEST(CheckDistancesBetweenAtoms, PositionsThatAreNoNumbersOffend) {
  std::vector<ChainAtom> chain = line({2, 2, 2, 2, 2});
  chain[1].y = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(CheckDistancesBetweenAtoms(chain),
            "Distance nan between atoms 11 and 12 is out of range (median 2); 2 such pairs of "
            "consecutive atoms in the chain.");
  for (ChainAtom& atom : chain) atom.x = std::numeric_limits<double>::infinity();
  EXPECT_NE(CheckDistancesBetweenAtoms(chain), "OK");
}

TEST(CheckDistancesBetweenAtoms, HugeDistancesDoNotOverflow) {
  EXPECT_EQ(CheckDistancesBetweenAtoms({{0, 0, 0, 1}, {1e300, 1e300, 0, 2}, {0, 0, 0, 3}}), "OK");
}

}  // namespace
