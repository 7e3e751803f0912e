// Chains folded into their periodic boxes, in every format that tells a box.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "read/cell.hpp"
#include "support/reading.hpp"

namespace {

using korvex::Chain;
using korvex::Point;
using korvex::read::Cell;
using korvex::read::Lattice;
using reading::chain;

// A chain of beads 3.8 apart that turns at random.
std::vector<Point> walk(std::size_t size) {
  std::mt19937_64 random(7);
  std::normal_distribution<double> step;
  std::vector<Point> points(1);
  while (points.size() < size) {
    const Point way{step(random), step(random), step(random)};
    points.push_back(points.back() + (3.8 / norm(way)) * way);
  }
  return points;
}

// The image of a point whose place in the box is between 0 and 1 along each edge of a box in lower
// triangular form.
Point folded(Point point, const std::vector<Point>& edges) {
  point = point - std::floor(point.z / edges[2].z) * edges[2];
  point = point - std::floor(point.y / edges[1].y) * edges[1];
  return point - std::floor(point.x / edges[0].x) * edges[0];
}

const std::vector<Point> kUpright = {{20, 0, 0}, {0, 25, 0}, {0, 0, 30}};
const std::vector<Point> kTilted = {{20, 0, 0}, {8, 25, 0}, {-9, 11, 30}};

std::string line(const char* form, std::size_t number, const Point& point) {
  char text[120];
  std::snprintf(text, sizeof text, form, static_cast<int>(number), point.x, point.y, point.z);
  return text;
}

std::string as_xyz(const std::vector<Point>& points, const std::vector<Point>& edges,
                   const std::string& more = "") {
  std::string text = std::to_string(points.size()) + "\nLattice=\"";
  for (const Point& edge : edges) {
    for (const double value : {edge.x, edge.y, edge.z}) text += std::to_string(value) + " ";
  }
  text += "\" " + more + "\n";
  for (const Point& point : points) text += line("C%d %.6f %.6f %.6f\n", 0, point);
  return text;
}

std::string as_gro(const std::vector<Point>& points, const std::vector<Point>& edges) {
  std::string text = "title\n" + std::to_string(points.size()) + "\n";
  for (std::size_t i = 0; i < points.size(); ++i) {
    char atom[120];
    std::snprintf(atom, sizeof atom, "%5zuALA     CA%5zu%11.6f%11.6f%11.6f\n", i + 1, i + 1,
                  points[i].x / 10, points[i].y / 10, points[i].z / 10);
    text += atom;
  }
  const auto& [a, b, c] = std::tie(edges[0], edges[1], edges[2]);
  for (const double value : {a.x, b.y, c.z, a.y, a.z, b.x, b.z, c.x, c.y}) {
    text += std::to_string(value / 10) + " ";
  }
  return text + "\n";
}

double angle(const Point& a, const Point& b) {
  return std::acos(dot(a, b) / norm(a) / norm(b)) * 180 / std::acos(-1.0);
}

std::string as_pdb(const std::vector<Point>& points, const std::vector<Point>& edges) {
  const auto& [a, b, c] = std::tie(edges[0], edges[1], edges[2]);
  char box[100];
  std::snprintf(box, sizeof box, "CRYST1%9.3f%9.3f%9.3f%7.2f%7.2f%7.2f P 1           1\n", norm(a),
                norm(b), norm(c), angle(b, c), angle(a, c), angle(a, b));
  std::string text = box;
  for (std::size_t i = 0; i < points.size(); ++i) {
    text += line("ATOM      1  CA  ALA A%4d    %8.3f%8.3f%8.3f  1.00  0.00\n", i + 1, points[i]);
  }
  return text;
}

std::string as_mmcif(const std::vector<Point>& points, const std::vector<Point>& edges) {
  const auto& [a, b, c] = std::tie(edges[0], edges[1], edges[2]);
  std::string text = "data_x\n";
  const auto item = [&text](const char* name, double value) {
    text += std::string("_cell.") + name + " " + std::to_string(value) + "\n";
  };
  item("length_a", norm(a));
  item("length_b", norm(b));
  item("length_c", norm(c));
  item("angle_alpha", angle(b, c));
  item("angle_beta", angle(a, c));
  item("angle_gamma", angle(a, b));
  text +=
      "loop_\n_atom_site.group_PDB\n_atom_site.label_atom_id\n_atom_site.label_comp_id\n"
      "_atom_site.label_asym_id\n_atom_site.label_seq_id\n_atom_site.Cartn_x\n"
      "_atom_site.Cartn_y\n_atom_site.Cartn_z\n";
  for (std::size_t i = 0; i < points.size(); ++i) {
    text += line("ATOM CA ALA A %d %.6f %.6f %.6f\n", i + 1, points[i]);
  }
  return text;
}

using Writer = std::string (*)(const std::vector<Point>&, const std::vector<Point>&);

std::string as_plain_xyz(const std::vector<Point>& points, const std::vector<Point>& edges) {
  return as_xyz(points, edges);
}

class Formats : public testing::TestWithParam<Writer> {};

TEST_P(Formats, ChainsFoldedIntoTheirBoxAreMadeWhole) {
  const std::vector<Point> whole = walk(120);
  for (const std::vector<Point>& edges : {kUpright, kTilted}) {
    std::vector<Point> inside;
    std::size_t broken = 0;
    for (const Point& point : whole) {
      inside.push_back(folded(point, edges));
      if (inside.size() > 1 && norm(inside.back() - inside[inside.size() - 2]) > 5) ++broken;
    }
    ASSERT_GT(broken, 10U);
    const std::string text = GetParam()(inside, edges);
    const Chain read = chain(text);
    ASSERT_EQ(read.points.size(), whole.size());
    EXPECT_EQ(read.mended, broken);
    EXPECT_TRUE(read.gaps.empty());
    const Point shift = read.points[0] - whole[0];
    for (std::size_t i = 0; i < whole.size(); ++i) {
      EXPECT_NEAR(norm(read.points[i] - whole[i] - shift), 0, 0.1) << i;
    }
    const std::vector<Chain> left =
        reading::chains(text, {.gaps = korvex::GapPolicy::kBridge, .unwrap = false});
    ASSERT_EQ(left.size(), 1U);
    EXPECT_EQ(left[0].mended, 0U);
    EXPECT_EQ(left[0].gaps.size(), broken);
  }
}

INSTANTIATE_TEST_SUITE_P(All, Formats, testing::Values(&as_plain_xyz, &as_gro, &as_pdb, &as_mmcif));

TEST(PeriodicBoxes, MendNoBondAcrossTheirWalls) {
  const std::vector<Point> points = {{17, 1, 1}, {19, 1, 1}, {1, 1, 1}, {3, 1, 1}, {5, 1, 1}};
  EXPECT_EQ(chain(as_xyz(points, kUpright)).mended, 1U);
  const Chain walled = chain(as_xyz(points, kUpright, "pbc=\"F T T\""));
  EXPECT_EQ(walled.mended, 0U);
  EXPECT_EQ(walled.gaps.size(), 1U);
}

TEST(PeriodicBoxes, LeaveBondsThatNoVectorMakesOrdinary) {
  const std::vector<Point> points = {{1, 1, 1}, {4.8, 1, 1}, {14, 1, 1}, {17.8, 1, 1}};
  const Chain read = chain(as_pdb(points, kUpright));
  EXPECT_EQ(read.mended, 0U);
  EXPECT_EQ(read.gaps.size(), 1U);
}

TEST(PeriodicBoxes, LeaveBondsBetweenWhichResiduesAreMissing) {
  std::vector<Point> points = {{11, 1, 1}, {14.8, 1, 1}, {18.6, 1, 1}, {2.4, 1, 1}, {6.2, 1, 1}};
  std::string text = as_pdb(points, kUpright);
  EXPECT_EQ(chain(text).mended, 1U);
  text.replace(text.find("A   4"), 5, "A   8");
  text.replace(text.find("A   5"), 5, "A   9");
  EXPECT_EQ(chain(text).mended, 0U);
}

TEST(PeriodicBoxes, TooSmallToTellImagesApartMendNothing) {
  const std::vector<Point> points = {{0, 0, 0}, {3.8, 0, 0}, {13.8, 0, 0}, {17.6, 0, 0}};
  EXPECT_EQ(chain(as_pdb(points, {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}})).mended, 0U);
}

TEST(PeriodicBoxes, ThatAreNoneAreLeftOut) {
  const std::vector<Point> points = {{0, 0, 0}, {3.8, 0, 0}, {7.6, 0, 0}};
  EXPECT_EQ(chain(as_gro(points, {{}, {}, {}})).points.size(), 3U);
  std::string text = as_pdb(points, kUpright);
  text.replace(6, 20, "   something else   ");
  EXPECT_EQ(chain(text).points.size(), 3U);
}

TEST(Lattices, GiveTheVectorNearestToAPlace) {
  std::mt19937_64 random(11);
  std::uniform_real_distribution<double> number(-1, 1);
  const auto point = [&] { return Point{number(random), number(random), number(random)}; };
  for (int trial = 0; trial < 200; ++trial) {
    const std::vector<Point> edges = {point(), point(), point()};
    const double volume = dot(edges[0], cross(edges[1], edges[2]));
    if (std::abs(volume) < 0.3) continue;
    const Lattice lattice({edges});
    const Point place = point();
    double best = norm(place);
    double shortest = 1e9;
    constexpr int kFar = 9;
    for (int i = -kFar; i <= kFar; ++i) {
      for (int j = -kFar; j <= kFar; ++j) {
        for (int k = -kFar; k <= kFar; ++k) {
          const Point vector = i * edges[0] + (j * edges[1] + k * edges[2]);
          best = std::min(best, norm(place - vector));
          if (i != 0 || j != 0 || k != 0) shortest = std::min(shortest, norm(vector));
        }
      }
    }
    const Point found = lattice.nearest(place);
    EXPECT_NEAR(norm(place - found), best, 1e-9) << trial;
    for (std::size_t i = 0; i < 3; ++i) {
      const double count = dot(found, cross(edges[(i + 1) % 3], edges[(i + 2) % 3])) / volume;
      EXPECT_NEAR(count, std::round(count), 1e-9) << trial;
    }
    EXPECT_NEAR(lattice.shortest(), shortest, 1e-9) << trial;
  }
}

TEST(Lattices, OfFlatOrMissingEdgesKeepTheOthers) {
  EXPECT_TRUE(Lattice(Cell{}).empty());
  EXPECT_TRUE(Lattice({{{}, {}, {}}}).empty());
  const Lattice flat({{{2, 0, 0}, {4, 0, 0}, {0, 3, 0}}});
  EXPECT_EQ(flat.shortest(), 2);
  EXPECT_EQ(flat.nearest({4.9, 3.1, 7}), (Point{4, 3, 0}));
}

}  // namespace
