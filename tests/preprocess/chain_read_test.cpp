#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdio>
#include <string>
#include <vector>

#include "preprocess.h"
#include "support/data_file.hpp"
#include "support/temporary_directory.hpp"

namespace {

struct Reading {
  std::vector<ChainAtom> atoms;
  bool error = false;
};

Reading read(std::string path) {
  Reading reading;
  reading.error = true;
  reading.atoms = ChainRead(path.data(), reading.error);
  return reading;
}

Reading read_text(std::string_view content) {
  const TemporaryDirectory directory;
  return read(directory.write("chain", content));
}

void expect_refused(std::string_view content) {
  const Reading reading = read_text(content);
  EXPECT_TRUE(reading.error) << content;
  EXPECT_TRUE(reading.atoms.empty()) << content;
}

struct Protein {
  const char* file;
  std::size_t residues;
  int first;
  int last;
};

class FirstChain : public testing::TestWithParam<Protein> {};

TEST_P(FirstChain, HasOneAlphaCarbonAResidue) {
  const Reading reading = read(support::data_file("proteins/") + GetParam().file);
  ASSERT_FALSE(reading.error);
  ASSERT_EQ(reading.atoms.size(), GetParam().residues);
  EXPECT_EQ(reading.atoms.front().id, GetParam().first);
  EXPECT_EQ(reading.atoms.back().id, GetParam().last);
}

INSTANTIATE_TEST_SUITE_P(
    Proteins, FirstChain,
    testing::Values(Protein{"1ca2.pdb", 256, 4, 260}, Protein{"4yvi.cif", 239, 0, 246},
                    Protein{"1ztu.pdb", 313, 5, 325}, Protein{"1xd3_A_bound.pdb", 229, 2, 230},
                    Protein{"2efv_CA.pdb", 82, 6, 87}, Protein{"1ubq.pdb", 76, 1, 76},
                    Protein{"1crn.pdb", 46, 1, 46}, Protein{"1crn.cif", 46, 1, 46},
                    Protein{"4hhb.pdb", 141, 1, 141}, Protein{"1tim.pdb.gz", 247, 1, 248},
                    Protein{"1l2y.pdb", 20, 1, 20},
                    Protein{"4g6m_fab_merged_gap.pdb", 432, 1, 712}));

TEST(ChainRead, TheSameEntryInTwoFormatsIsTheSameChain) {
  const Reading pdb = read(support::data_file("proteins/1crn.pdb"));
  const Reading cif = read(support::data_file("proteins/1crn.cif"));
  ASSERT_EQ(pdb.atoms.size(), cif.atoms.size());
  for (std::size_t i = 0; i < pdb.atoms.size(); ++i) {
    EXPECT_EQ(pdb.atoms[i].x, cif.atoms[i].x);
    EXPECT_EQ(pdb.atoms[i].y, cif.atoms[i].y);
    EXPECT_EQ(pdb.atoms[i].z, cif.atoms[i].z);
    EXPECT_EQ(pdb.atoms[i].id, cif.atoms[i].id);
  }
}

TEST(ChainRead, PlainTextIsNumberedFromOne) {
  const Reading reading = read_text("# a bent line\n\n0 0 0\n  1.5 +2 -3e0  # inline\n\n1e1 0 0");
  ASSERT_FALSE(reading.error);
  ASSERT_EQ(reading.atoms.size(), 3U);
  EXPECT_EQ(reading.atoms[1].id, 2);
  EXPECT_EQ(reading.atoms[1].x, 1.5);
  EXPECT_EQ(reading.atoms[1].y, 2);
  EXPECT_EQ(reading.atoms[1].z, -3);
  EXPECT_EQ(reading.atoms[2].x, 10);
}

TEST(ChainRead, PlainTextMayGiveTheNumbers) {
  const Reading reading = read_text("7 0 0 0\r\n-3 1 0 0\r\n");
  ASSERT_FALSE(reading.error);
  ASSERT_EQ(reading.atoms.size(), 2U);
  EXPECT_EQ(reading.atoms[0].id, 7);
  EXPECT_EQ(reading.atoms[1].id, -3);
}

TEST(ChainRead, OneAtomIsAChain) {
  const Reading reading = read_text("1 2 3");
  EXPECT_FALSE(reading.error);
  EXPECT_EQ(reading.atoms.size(), 1U);
}

TEST(ChainRead, LinesMayEndAsOnAnySystem) {
  for (const std::string end : {"\n", "\r\n", "\r"}) {
    const Reading reading = read_text("0 0 0" + end + "1 0 0" + end + "2 0 0");
    EXPECT_FALSE(reading.error);
    EXPECT_EQ(reading.atoms.size(), 3U);
  }
}

TEST(ChainRead, XyzGivesItsFirstFrame) {
  const Reading reading = read_text("2\ncomment\nC 0 0 0\nC 1 0 0 extra\n2\n\nC 5 0 0\nC 6 0 0\n");
  ASSERT_FALSE(reading.error);
  ASSERT_EQ(reading.atoms.size(), 2U);
  EXPECT_EQ(reading.atoms[1].x, 1);
  EXPECT_EQ(reading.atoms[1].id, 2);
}

// The engine's reader is stricter; what ChainRead answers stays.
std::string atom(int number, const char* name, const char* residue) {
  char line[96];
  std::snprintf(line, sizeof line, "ATOM  %5d %s %s  %4d    %8.3f%8.3f%8.3f  1.00  0.00\n", number,
                name, residue, number, 44.0 * number, 0.0, 0.0);
  return line;
}

TEST(ChainRead, GoesOnBehindATerRecordWhereTheNumbersDo) {
  const Reading reading = read_text(atom(1, " CA ", "ALA") + atom(2, " CA ", "ALA") + "TER\n" +
                                    atom(3, " CA ", "ALA") + "TER\nEND\n");
  ASSERT_FALSE(reading.error);
  ASSERT_EQ(reading.atoms.size(), 3U);
  EXPECT_EQ(reading.atoms[2].id, 3);
}

TEST(ChainRead, TracesThePhosphorusOfAnyResidue) {
  const Reading reading = read_text(atom(1, " P  ", "POP") + atom(2, " P  ", "POP"));
  ASSERT_FALSE(reading.error);
  EXPECT_EQ(reading.atoms.size(), 2U);
}

TEST(ChainRead, LeavesFoldedChainsFoldedButThoseOfLammpsDumps) {
  const std::string lattice = "Lattice=\"10 0 0 0 10 0 0 0 10\"";
  const Reading xyz = read_text("4\n" + lattice + "\nC 7 0 0\nC 8 0 0\nC 9 0 0\nC 0 0 0\n");
  ASSERT_EQ(xyz.atoms.size(), 4U);
  EXPECT_EQ(xyz.atoms[3].x, 0);
  const Reading dump = read_text(
      "ITEM: TIMESTEP\n0\nITEM: NUMBER OF ATOMS\n2\nITEM: BOX BOUNDS pp pp pp\n0 10\n0 10\n0 10\n"
      "ITEM: ATOMS id x y z\n1 9 0 0\n2 0 0 0\n");
  ASSERT_EQ(dump.atoms.size(), 2U);
  EXPECT_EQ(dump.atoms[1].x, 10);
}

TEST(ChainRead, MalformedPlainTextIsRefused) {
  expect_refused("0 0 0\n1 0\n");
  expect_refused("0 0 0\n1 0 0 0\n");
  expect_refused("1 0 0 0 0\n");
  expect_refused("1.5 0 0 0\n");
  expect_refused("3000000000 0 0 0\n");
  expect_refused("0 0 zero\n");
  expect_refused("0 0 0x10\n");
  expect_refused("0,0,0\n1,0,0\n");
  expect_refused("hello\n");
}

TEST(ChainRead, NumbersThatAreNotFiniteAreRefused) {
  for (const std::string number : {"nan", "inf", "-inf", "Infinity", "1e999", "-1e999", "NAN"}) {
    expect_refused("0 0 0\n0 0 " + number + "\n");
    expect_refused("1\n\nC 0 0 " + number + "\n");
  }
}

TEST(ChainRead, MalformedXyzIsRefused) {
  expect_refused("3\n\nC 0 0 0\nC 1 0 0\n");
  expect_refused("2\n\nC 0 0 0\nC 1 0\n");
  expect_refused("-1\n\n");
  expect_refused("0\n\n");
  expect_refused("99999999999999999999\n\nC 0 0 0\n");
  expect_refused("1\n\nC 0 0 0\nC 1 0 0\n");
}

TEST(ChainRead, EmptyFilesAreRefused) {
  expect_refused("");
  expect_refused("\n");
  expect_refused(" \t\r\n\n");
  expect_refused("# nothing\n");
}

TEST(ChainRead, WhatIsNoFileIsRefused) {
  const TemporaryDirectory directory;
  EXPECT_TRUE(read(directory.path("missing")).error);
  EXPECT_TRUE(read(directory.path("")).error);
  EXPECT_TRUE(read("").error);
  EXPECT_TRUE(read("/dev/zero").error);
  EXPECT_TRUE(read("/dev/null").error);
  bool error = false;
  EXPECT_TRUE(ChainRead(nullptr, error).empty());
  EXPECT_TRUE(error);
}

}  // namespace
