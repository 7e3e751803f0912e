#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/data_file.hpp"
#include "support/reading.hpp"

namespace {

using korvex::Chain;
using korvex::Point;
using reading::chain;
using reading::chains;
using reading::complaint;
using reading::contains;
using reading::numbers;

using Numbers = std::vector<std::int32_t>;

void expect_near(const Point& point, const Point& wanted) {
  EXPECT_NEAR(point.x, wanted.x, 1e-9);
  EXPECT_NEAR(point.y, wanted.y, 1e-9);
  EXPECT_NEAR(point.z, wanted.z, 1e-9);
}

TEST(ReadXyz, EveryFrameIsAChain) {
  const std::vector<Chain> read = chains("2\nfirst\nC 0 0 0\nC 1 0 0\n\n2\n\nC 5 0 0\nN 6 0 0\n\n");
  ASSERT_EQ(read.size(), 2U);
  EXPECT_EQ(read[1].model, 2);
  EXPECT_EQ(read[1].points[1].x, 6);
  EXPECT_EQ(read[1].residues[1].name, "N");
  EXPECT_EQ(numbers(read[1]), Numbers({1, 2}));
}

TEST(ReadXyz, AtomsMayBeChosenByElement) {
  EXPECT_EQ(numbers(chain("3\n\nC 0 0 0\nO 1 0 0\nC 2 0 0\n", {.atoms = {"C"}})), Numbers({1, 3}));
}

TEST(ReadXyz, ExtendedFilesSayWhereThePositionsAre) {
  const Chain read = chain(
      "1\nLattice=\"1 0 0 0 1 0 0 0 1\" Properties=id:I:1:species:S:1:pos:R:3 t=0\n7 Xe 1 2 3\n");
  expect_near(read.points[0], {1, 2, 3});
  EXPECT_EQ(read.residues[0].name, "Xe");
  EXPECT_TRUE(contains(complaint("1\nProperties=species:S:1\nC 0 0 0\n"), "text:2: Properties="));
  EXPECT_TRUE(contains(complaint("1\nProperties=a:R:x:pos:R:3\nC 0 0 0\n"), "Properties="));
}

TEST(ReadXyz, ShortFramesAreNamed) {
  EXPECT_TRUE(contains(complaint("1\n\nC 0 0 0\n3\n\nC 0 0 0\n"),
                       "text:6: the file ends after 1 of the 3 atoms that line 4 announces"));
  EXPECT_TRUE(contains(complaint("2\n\nC 0 0 0\nC 1 0\n"), "text:4: expected `El x y z`"));
}

std::string dump(const std::string& columns, const std::string& rows, int count,
                 const std::string& box = "pp pp pp\n0 10\n0 20\n0 40\n") {
  return "ITEM: TIMESTEP\n0\nITEM: NUMBER OF ATOMS\n" + std::to_string(count) +
         "\nITEM: BOX BOUNDS " + box + "ITEM: ATOMS " + columns + "\n" + rows;
}

TEST(ReadLammps, AtomsAreSortedByTheirIds) {
  const Chain read = chain(dump("id type x y z", "3 1 3 0 0\n1 1 1 0 0\n2 2 2 0 0\n", 3));
  EXPECT_EQ(numbers(read), Numbers({1, 2, 3}));
  EXPECT_EQ(read.points[2].x, 3);
  EXPECT_EQ(read.residues[1].name, "2");
}

TEST(ReadLammps, MoleculesAreChains) {
  const std::vector<Chain> read =
      chains(dump("id mol x y z", "1 10 1 0 0\n2 2 2 0 0\n3 10 1 1 0\n4 2 2 1 0\n", 4));
  ASSERT_EQ(read.size(), 2U);
  EXPECT_EQ(read[0].name, "2");
  EXPECT_EQ(numbers(read[0]), Numbers({2, 4}));
  EXPECT_EQ(read[1].name, "10");
}

TEST(ReadLammps, AtomsMayBeChosenByType) {
  EXPECT_EQ(numbers(chain(dump("id type x y z", "1 1 1 0 0\n2 2 2 0 0\n3 1 3 0 0\n", 3),
                          {.atoms = {"1"}})),
            Numbers({1, 3}));
}

TEST(ReadLammps, UnwrappedPositionsArePreferred) {
  const Chain read = chain(dump("id x y z xu yu zu", "1 9 0 0 9 0 0\n2 1 0 0 11 0 0\n", 2));
  EXPECT_EQ(read.points[1].x, 11);
  EXPECT_EQ(read.mended, 0U);
}

TEST(ReadLammps, ImagesUnwrapPositions) {
  const Chain read =
      chain(dump("id x y z ix iy iz", "1 9 1 0 0 0 0\n2 1 1 0 1 -1 2\n", 2), {.closed = true});
  expect_near(read.points[1], {11, -19, 80});
}

TEST(ReadLammps, ScaledPositionsFillTheBox) {
  const std::string box = "pp pp pp\n-5 5\n0 20\n10 50\n";
  expect_near(chain(dump("id xs ys zs", "1 0.5 0.25 1\n", 1, box)).points[0], {0, 5, 50});
  expect_near(chain(dump("id xsu ysu zsu", "1 1.5 0.25 -1\n", 1, box)).points[0], {10, 5, -30});
}

TEST(ReadLammps, TiltedBoxesAreTakenFromTheirBounds) {
  // Edges (10, 0, 0), (2, 10, 0), (-1, 3, 10) at the origin.
  const std::string box = "xy xz yz pp pp pp\n-1 12 2\n0 13 -1\n0 10 3\n";
  expect_near(chain(dump("id xs ys zs", "1 1 1 1\n", 1, box)).points[0], {11, 13, 10});
  expect_near(chain(dump("id x y z ix iy iz", "1 0 0 0 0 1 1\n", 1, box)).points[0], {1, 13, 10});
}

TEST(ReadLammps, WrappedChainsAreMadeWhole) {
  const Chain read = chain(dump("id x y z", "1 9 19 0\n2 0 19.5 39\n3 1 0.5 38\n", 3));
  expect_near(read.points[0], {9, 19, 0});
  expect_near(read.points[1], {10, 19.5, -1});
  expect_near(read.points[2], {11, 20.5, -2});
  EXPECT_EQ(read.mended, 2U);
  const Chain left = chain(dump("id x y z", "1 9 19 0\n2 0 19.5 39\n", 2), {.unwrap = false});
  expect_near(left.points[1], {0, 19.5, 39});
  EXPECT_EQ(left.mended, 0U);
}

TEST(ReadLammps, ChainsStayBrokenWhereTheBoxHasWalls) {
  const Chain read =
      chain(dump("id x y z", "1 9 0 0\n2 0 0 0\n", 2, "ff pp pp\n0 10\n0 20\n0 40\n"));
  expect_near(read.points[1], {0, 0, 0});
}

TEST(ReadLammps, NoFrameIsOpenBeforeTheFirst) {
  const std::string what = complaint("ITEM: UNITS\nlj\n");
  EXPECT_FALSE(contains(what, "ends within a frame")) << what;
}

TEST(ReadLammps, MalformedDumpsAreNamed) {
  EXPECT_TRUE(
      contains(complaint(dump("id x y z", "1 0 0 0\n", 2)), "text:10: the file ends where"));
  EXPECT_TRUE(contains(complaint(dump("type x y z", "1 0 0 0\n", 1)), "no column `id`"));
  EXPECT_TRUE(contains(complaint(dump("id vx vy vz", "1 0 0 0\n", 1)), "no columns xu yu zu"));
  EXPECT_TRUE(contains(complaint(dump("id x y z", "1 0 0\n", 1)), "expected 4 columns"));
  EXPECT_TRUE(contains(complaint(dump("id x y z", "1 0 0 inf\n", 1)), "text:10: the z coord"));
  EXPECT_TRUE(contains(complaint(dump("id x y z", "1.5 0 0 0\n", 1)), "where the id belongs"));
  EXPECT_TRUE(contains(complaint(dump("id x y z", "1 0 0 0\n1 1 0 0\n", 2)), "id 1 occurs twice"));
  EXPECT_TRUE(contains(complaint(dump("id x y z", "", 0)), "holds no atoms"));
  EXPECT_TRUE(contains(complaint(dump("id x y z", "1 0 0 0\n", 1) + "ITEM: TIMESTEP\n1\n"),
                       "ends within a frame"));
  EXPECT_TRUE(
      contains(complaint(dump("id xs ys zs", "1 1e300 0 0\n", 1, "pp pp pp\n0 1e300\n0 1\n0 1\n")),
               "too large"));
  EXPECT_TRUE(contains(complaint("ITEM: NUMBER OF ENTRIES\n3\n"), "'NUMBER OF ENTRIES'"));
}

const char* const kGro = R"(A protein, t= 0.0
    4
    1ALA      N    1   0.100   0.200   0.300
    1ALA     CA    2   0.126   1.624   1.679  0.1227 -0.0580  0.0434
    2GLY     CA    3   0.190   1.661   1.747
    1GLY     CA    4   1.190   1.661   1.747
   1.82060   1.82060   1.82060
)";

TEST(ReadGro, LengthsBecomeAngstrom) {
  const std::vector<Chain> read = chains(kGro);
  ASSERT_EQ(read.size(), 2U);
  expect_near(read[0].points[0], {1.26, 16.24, 16.79});
  EXPECT_EQ(numbers(read[0]), Numbers({1, 2}));
}

TEST(ReadGro, FallingResidueNumbersBeginAChain) {
  EXPECT_EQ(numbers(chains(kGro)[1]), Numbers({1}));
}

TEST(ReadGro, ColumnsAreAsWideAsTheirPrecision) {
  const Chain read = chain(
      "title\n1\n    1ALA     CA    2   0.12611   1.62411   1.67911\n   1.82060   1.82060   "
      "1.82060\n");
  expect_near(read.points[0], {1.2611, 16.2411, 16.7911});
}

TEST(ReadGro, EveryFrameIsAModel) {
  const std::vector<Chain> read = chains(std::string(kGro) + kGro + "\n");
  ASSERT_EQ(read.size(), 4U);
  EXPECT_EQ(read[3].model, 2);
}

TEST(ReadGro, BoxesMayBeWrittenWithoutBlanks) {
  const std::string atoms = "title\n1\n    1ALA     CA    2   0.100   0.200   0.300\n";
  EXPECT_EQ(chain(atoms + "1234.567891234.567891234.56789\n").points.size(), 1U);
  EXPECT_EQ(chain(atoms + " 123.45678 123.45678 123.45678   0.00000   0.00000-100.00000   0.00000"
                          "-100.00000-100.00000\n")
                .points.size(),
            1U);
  EXPECT_TRUE(contains(complaint(atoms + "1234.567891234.56789\n"), "text:4: expected the 3 or 9"));
  EXPECT_TRUE(contains(complaint(atoms + "1 2 x\n"), "text:4: expected the 3 or 9"));
}

TEST(ReadGro, CoordinatesOutsideTheirColumnsAreRefusedWithTheLine) {
  const auto what = [](const std::string& coordinates) {
    return complaint("title\n1\n    1ALA     CA    2" + coordinates + "\n   1.0   1.0   1.0\n");
  };
  EXPECT_TRUE(contains(what("    0.100   0.200   0.300"), "text:3: "));
  EXPECT_TRUE(contains(what("   0.100   0.200    0.300"), "text:3: "));
  EXPECT_TRUE(contains(what("   0.1 0.2 0.3"), "text:3: "));
}

TEST(ReadGro, CutFilesAreNamed) {
  std::string text = kGro;
  text.resize(text.rfind("   1.82060   1.82060   1.82060"));
  EXPECT_TRUE(contains(complaint(text), "before the box"));
  text.resize(text.rfind("    1GLY"));
  EXPECT_TRUE(contains(complaint(text), "after 3 of 4 atoms"));
  EXPECT_TRUE(contains(complaint(std::string(kGro) + "another\n"), "after a title"));
}

TEST(ReadGro, MalformedAtomsAreNamed) {
  std::string text = kGro;
  text.replace(text.find("1.661"), 5, "1.6x1");
  EXPECT_TRUE(contains(complaint(text), "text:5: '1.6x1' stands where the y coordinate belongs"));
}

struct Trajectory {
  const char* file;
  std::size_t frames;
  std::size_t beads;
  double bond;
};

class Trajectories : public testing::TestWithParam<Trajectory> {};

TEST_P(Trajectories, HoldUnbrokenChains) {
  const auto [file, frames, beads, bond] = GetParam();
  const std::vector<Chain> read = korvex::read_chains(support::data_file("trajectories/") + file);
  ASSERT_EQ(read.size(), frames);
  for (const Chain& frame : read) {
    ASSERT_EQ(frame.points.size(), beads);
    EXPECT_TRUE(frame.gaps.empty());
    for (std::size_t i = 1; i < beads; ++i) {
      EXPECT_NEAR(norm(frame.points[i] - frame.points[i - 1]), bond, bond / 4);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Files, Trajectories,
                         testing::Values(Trajectory{"ring_3_1.lammpstrj", 50, 120, 0.97},
                                         Trajectory{"ring_0_1.lammpstrj", 50, 100, 0.97},
                                         Trajectory{"open_3_1.lammpstrj", 60, 120, 0.97},
                                         Trajectory{"ring_3_1.gro", 1, 120, 3.8},
                                         Trajectory{"open_3_1.gro", 1, 120, 3.8},
                                         Trajectory{"ring_3_1.models.pdb", 10, 120, 3.8}));

}  // namespace
