#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "engine/closures/closure_mapping.hpp"
#include "engine/random_chains.hpp"
#include "korvex/catalogue.hpp"
#include "korvex/error.hpp"
#include "korvex/palette.hpp"
#include "korvex/quoting.hpp"
#include "korvex/report.hpp"

namespace korvex {
namespace {

Chain chain_of(std::vector<Point> points) {
  Chain chain;
  chain.source = "a<b>.pdb";
  chain.points = std::move(points);
  return chain;
}

std::string written(const Chain& chain, const ClosureMap& map, ReportFormat format) {
  std::ostringstream out;
  write_closure_map(chain, map, format, out);
  return out.str();
}

using Polygon = std::vector<std::pair<double, double>>;

struct Drawn {
  std::string colour;
  std::vector<Polygon> polygons;

  // By the rule of even and odd.
  bool holds(double x, double y) const {
    bool inside = false;
    for (const Polygon& polygon : polygons) {
      for (std::size_t k = 0; k < polygon.size(); ++k) {
        const auto [ax, ay] = polygon[k];
        const auto [bx, by] = polygon[(k + 1) % polygon.size()];
        if ((ay > y) != (by > y) && x < ax + (y - ay) / (by - ay) * (bx - ax)) inside = !inside;
      }
    }
    return inside;
  }
};

Drawn parsed(const std::string& path, const std::string& colour) {
  Drawn drawn{colour, {}};
  std::string rest = path;
  const std::string everywhere = "M-400-400H400V400H-400Z";
  if (rest.starts_with(everywhere)) {
    drawn.polygons.push_back({{-400, -400}, {400, -400}, {400, 400}, {-400, 400}});
    rest = rest.substr(everywhere.size());
  }
  for (char& c : rest)
    if (c == 'L') c = ' ';
  std::istringstream polygons(rest);
  std::string polygon;
  while (std::getline(polygons, polygon, 'Z')) {
    std::istringstream numbers(polygon.substr(1));
    auto& points = drawn.polygons.emplace_back();
    for (double x = 0, y = 0; numbers >> x >> y;) points.push_back({x, y});
  }
  return drawn;
}

std::vector<std::vector<Drawn>> discs_of(const std::string& svg) {
  std::vector<std::vector<Drawn>> discs;
  std::istringstream lines(svg);
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("<g clip-path")) discs.emplace_back();
    if (!line.starts_with("<path d=\"")) continue;
    const std::size_t end = line.find('"', 9);
    const std::size_t fill = line.find("fill=\"") + 6;
    discs.back().push_back(parsed(line.substr(9, end - 9), line.substr(fill, 7)));
  }
  return discs;
}

TEST(MapDrawing, HasEachDirectionInOneRegionAndColoursInProportionToTheShares) {
  for (unsigned seed = 3; seed <= 5; ++seed) {
    const auto chain = chain_of(compact_walk(seed, 30));
    const ClosureMap map = closure_map(chain.points).value();
    const auto discs = discs_of(written(chain, map, ReportFormat::kSvg));
    ASSERT_EQ(discs.size(), 2u);
    std::mt19937 generator(seed);
    std::uniform_real_distribution<double> anywhere(-200, 200);
    std::map<std::string, double> found;
    constexpr int kDrawn = 4000;
    int all = 0;
    int not_once = 0;
    for (int k = 0; k < kDrawn; ++k) {
      const double x = anywhere(generator);
      const double y = anywhere(generator);
      if (std::hypot(x, y) > 199) continue;
      for (const auto& disc : discs) {
        ++all;
        int times = 0;
        for (const Drawn& region : disc) {
          if (!region.holds(x, y)) continue;
          ++times;
          ++found[region.colour];
        }
        if (times != 1) ++not_once;
      }
    }
    EXPECT_LT(not_once, all / 200) << "more than the rounded edges of regions";
    std::map<std::string, double> expected;
    for (const TypeShare& type : map.types) expected[colour_of_type(type.type)] += type.share;
    for (const auto& [colour, share] : expected)
      EXPECT_NEAR(found[colour] / all, share, 0.03) << seed << " " << colour;
  }
}

TEST(MapDrawing, QuotesNamesForXml) {
  EXPECT_EQ(quoted_for_xml("a<b>&\"'\n"), "a&lt;b&gt;&amp;&quot;&#39;\\n");
  const auto chain = chain_of(random_walk(1, 5));
  const std::string svg = written(chain, closure_map(chain.points).value(), ReportFormat::kSvg);
  EXPECT_NE(svg.find("a&lt;b&gt;.pdb"), std::string::npos);
  EXPECT_EQ(svg.find("a<b>"), std::string::npos);
}

TEST(MapReport, HoldsAllRegionsInJson) {
  const auto chain = chain_of(compact_walk(4, 25));
  const ClosureMap map = closure_map(chain.points).value();
  const auto json = nlohmann::json::parse(written(chain, map, ReportFormat::kJson));
  ASSERT_EQ(json["regions"].size(), map.regions.size());
  for (std::size_t k = 0; k < map.regions.size(); ++k) {
    EXPECT_EQ(json["regions"][k]["share"], map.regions[k].share);
    EXPECT_EQ(json["regions"][k]["type"], map.types[map.regions[k].type].type);
    EXPECT_EQ(json["regions"][k]["boundaries"].size(), map.regions[k].boundaries.size());
  }
}

TEST(MapReport, TellsTimeStepAndConfidenceWhereThereAreAny) {
  auto chain = chain_of(compact_walk(4, 25));
  const ClosureMap map = closure_map(chain.points).value();
  const auto bare = nlohmann::json::parse(written(chain, map, ReportFormat::kJson));
  for (const char* key : {"time", "step", "plddt"}) EXPECT_FALSE(bare.contains(key)) << key;
  chain.time = 12.5;
  chain.step = 4000;
  chain.plddt.assign(chain.points.size(), 71.25F);
  const auto json = nlohmann::json::parse(written(chain, map, ReportFormat::kJson));
  EXPECT_EQ(json["time"], 12.5);
  EXPECT_EQ(json["step"], 4000);
  EXPECT_EQ(json["plddt"], 71.25);
}

TEST(MapReport, IsTheSameBytesEachTimeAndRefusesOtherFormats) {
  const auto chain = chain_of(compact_walk(4, 25));
  const ClosureMap map = closure_map(chain.points).value();
  const std::string archive = written(chain, map, ReportFormat::kNpz);
  EXPECT_EQ(archive, written(chain, map, ReportFormat::kNpz));
  EXPECT_TRUE(archive.starts_with("PK"));
  EXPECT_NE(archive.find("polygon_points.npy"), std::string::npos);
  EXPECT_THROW(written(chain, map, ReportFormat::kTsv), Error);
}

TEST(MapReport, IsReadByNumPy) {
  const auto chain = chain_of(compact_walk(4, 25));
  const ClosureMap map = closure_map(chain.points).value();
  const auto path = std::filesystem::path(testing::TempDir()) / "korvex_map_report_test.npz";
  std::ofstream(path, std::ios::binary) << written(chain, map, ReportFormat::kNpz);
  const std::string command =
      "/usr/bin/python3 -c \""
      "import numpy as n; f = n.load('" +
      path.string() +
      "'); t = f['region_type']; s = f['region_share']; p = f['polygon_points'];"
      " b = f['polygon_begin'];"
      " assert len(t) == len(s) == len(f['region_proven']) == len(f['region_in_doubt']) == " +
      std::to_string(map.regions.size()) +
      ";"
      " assert f['region_direction'].shape == (len(t), 3) and p.shape == (b[-1], 3);"
      " assert n.allclose(n.linalg.norm(p, axis=1), 1, atol=1e-12);"
      " assert n.allclose(n.bincount(t, s), f['type_share'], atol=1e-12);"
      " assert len(f['polygon_region']) == len(b) - 1 and abs(s.sum() - 1) < 1e-9;"
      " assert f['types'][0] == '" +
      map.dominant().type + "'\"";
  EXPECT_EQ(std::system(command.c_str()), 0);
  std::filesystem::remove(path);
}

using Rgb = std::array<double, 3>;

Rgb linear(const std::string& colour) {
  Rgb light{};
  for (std::size_t k = 0; k < 3; ++k) {
    const double level = std::stoi(colour.substr(1 + 2 * k, 2), nullptr, 16) / 255.0;
    light[k] = level <= 0.04045 ? level / 12.92 : std::pow((level + 0.055) / 1.055, 2.4);
  }
  return light;
}

// Luminance, and what is left of it to an eye without red or green receptors, where reds and greens
// of one luminance look alike: blue against it.
double distance_without_red_and_green(const std::string& a, const std::string& b) {
  const auto seen = [](const std::string& colour) {
    const auto [red, green, blue] = linear(colour);
    const double bright = std::cbrt(0.2126 * red + 0.7152 * green + 0.0722 * blue);
    return std::array{bright, std::cbrt(blue) - bright};
  };
  const auto [bright_a, blue_a] = seen(a);
  const auto [bright_b, blue_b] = seen(b);
  return std::hypot(bright_a - bright_b, blue_a - blue_b);
}

std::vector<std::string> types_to(int crossings) {
  std::vector<std::string> types;
  for (const KnotType& type : catalogue())
    if (type.crossings <= crossings) types.push_back(type.name);
  return types;
}

TEST(Palette, HasAColourOfItsOwnForEveryTypeToEightCrossings) {
  std::set<std::string> colours;
  for (const std::string& type : types_to(8)) {
    const std::string colour = colour_of_type(type);
    EXPECT_EQ(colour.size(), 7u);
    EXPECT_TRUE(colours.insert(colour).second) << type;
  }
  for (const char* other : {"+9_1", "-10_125", "+3_1#+3_1#+3_1", "unknown[1,-1,1,-1,1]"})
    EXPECT_TRUE(colours.insert(colour_of_type(other)).second) << other;
  EXPECT_EQ(colour_of_type("0_1"), "#e4e4e4");
}

TEST(Palette, TellsSimpleKnotsApartWithoutRedAndGreen) {
  const auto types = types_to(6);
  for (std::size_t a = 0; a < types.size(); ++a) {
    for (std::size_t b = 0; b < a; ++b) {
      EXPECT_GT(distance_without_red_and_green(colour_of_type(types[a]), colour_of_type(types[b])),
                0.04)
          << types[a] << " " << types[b];
    }
  }
}

}  // namespace
}  // namespace korvex
