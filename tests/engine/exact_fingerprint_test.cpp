#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <sstream>
#include <string>

#include "engine/closures/closure_mapping.hpp"
#include "engine/fingerprint/fingerprint_data.hpp"
#include "engine/invariants/of_codes.hpp"
#include "engine/named_diagrams.hpp"
#include "engine/random_chains.hpp"
#include "korvex/error.hpp"
#include "korvex/locate.hpp"
#include "korvex/read.hpp"
#include "korvex/report.hpp"
#include "support/data_file.hpp"

namespace korvex {
namespace {

using Shares = std::map<std::string, double>;

// Knots by their Alexander keys: as good as types to compare shares by, and faster.
std::string type_by_key(const GaussCode& closed) {
  const std::uint64_t key = alexander_key(closed);
  return key == 1 ? "0_1" : std::to_string(key);
}

Fingerprint exact(std::span<const Point> chain, std::size_t step = 1, const korvex::Run& run = {},
                  SubChains sub_chains = SubChains::kInClasses) {
  return fingerprint_with(NamedDiagrams(type_by_key), chain, {.exact = true, .step = step}, run,
                          sub_chains);
}

Shares shares_of(const Fingerprint& fingerprint, std::size_t begin, std::size_t end) {
  Shares shares;
  for (std::size_t type = 0; type < fingerprint.types().size(); ++type)
    if (const double share = fingerprint.share(type, begin, end); share > 0)
      shares[fingerprint.types()[type]] = share;
  return shares;
}

Shares shares_in(const ClosureMap& map) {
  Shares shares;
  for (const TypeShare& type : map.types) shares[type.type] = type.share;
  return shares;
}

void expect_near(const Shares& a, const Shares& b, const std::string& where) {
  constexpr double kTolerance = 1e-9;
  for (const auto* shares : {&a, &b}) {
    for (const auto& [type, unused] : *shares) {
      const double of_a = a.contains(type) ? a.at(type) : 0;
      const double of_b = b.contains(type) ? b.at(type) : 0;
      ASSERT_NEAR(of_a, of_b, kTolerance) << type << " of " << where;
    }
  }
}

std::string cell_text(std::size_t begin, std::size_t end) {
  return std::to_string(begin) + "-" + std::to_string(end);
}

// Every `stride`-th sub-chain against the map of its closures.
void expect_maps_of_sub_chains(const Fingerprint& fingerprint, std::span<const Point> chain,
                               std::size_t stride = 1) {
  const auto& stations = fingerprint.stations();
  std::size_t cell = 0;
  for (std::size_t begin = 0; begin < stations.size(); ++begin) {
    for (std::size_t end = begin + 1; end < stations.size(); ++end) {
      if (cell++ % stride != 0) continue;
      const auto from = static_cast<std::size_t>(stations[begin]);
      const auto to = static_cast<std::size_t>(stations[end]);
      const auto map = closure_map_with(NamedDiagrams(type_by_key),
                                        chain.subspan(from, to - from + 1), {.boundaries = false});
      expect_near(shares_of(fingerprint, begin, end), shares_in(*map), cell_text(begin, end));
    }
  }
}

void expect_equal_shares(const Fingerprint& a, const Fingerprint& b) {
  ASSERT_EQ(a.stations(), b.stations());
  ASSERT_EQ(a.types(), b.types());
  for (std::size_t begin = 0; begin < a.stations().size(); ++begin)
    for (std::size_t end = begin + 1; end < a.stations().size(); ++end)
      for (std::size_t type = 0; type < a.types().size(); ++type)
        ASSERT_EQ(a.share(type, begin, end), b.share(type, begin, end)) << cell_text(begin, end);
}

std::vector<Point> chain_a_of(const std::string& file) {
  ReadOptions options;
  options.chains = {"A"};
  return read_chains(support::data_file("proteins/" + file), options).at(0).points;
}

ErrorCode refused(const FingerprintOptions& options, std::span<const Point> chain) {
  try {
    fingerprint(chain, options);
  } catch (const Error& error) {
    return error.code();
  }
  ADD_FAILURE() << "not refused";
  return ErrorCode::kCancelled;
}

TEST(ExactFingerprint, EqualsTheMapOfEverySubChain) {
  for (unsigned seed = 0; seed < 2; ++seed) {
    const auto chain = compact_walk(seed, 28 + 3 * static_cast<int>(seed));
    const Fingerprint found = exact(chain);
    EXPECT_GT(found.types().size(), 2u);
    EXPECT_EQ(found.doubt(), 0);
    expect_maps_of_sub_chains(found, chain);
  }
}

TEST(ExactFingerprint, EqualsTheMapsOfSubChainsOfProteins) {
  const auto chain = chain_a_of("2efv_CA.pdb");
  const Fingerprint found = exact(chain);
  EXPECT_EQ(found.doubt(), 0);
  expect_maps_of_sub_chains(found, chain, 13);
}

TEST(ExactFingerprint, WithAStepEqualsTheMapsOfSubChainsOfLongerProteins) {
  std::vector<const char*> files{"1ztu.pdb", "1xd3_A_bound.pdb"};
  if (std::getenv("KORVEX_LONG_TESTS") != nullptr)
    files.insert(files.end(), {"1ca2.pdb", "1crn.cif", "1l2y.pdb", "1tim.pdb.gz", "1ubq.pdb",
                               "4g6m_fab_merged_gap.pdb", "4hhb.pdb", "4yvi.cif"});
  for (const char* file : files) {
    const auto chain = chain_a_of(file);
    const Fingerprint found = exact(chain, 17);
    EXPECT_EQ(found.doubt(), 0) << file;
    expect_maps_of_sub_chains(found, chain, 7);
  }
}

TEST(ExactFingerprint, EqualsTheWayOneByOneOnLatticesAndInPlanes) {
  std::vector<Point> planar;
  for (const Point& p : compact_walk(5, 24)) planar.push_back({p.x, p.y, 0});
  std::vector<Point> lattice;
  for (const Point& p : compact_walk(6, 24)) {
    const Point corner{std::round(p.x), std::round(p.y), std::round(p.z)};
    lattice.push_back(corner);
  }
  std::vector<Point> straight;
  for (int k = 0; k < 12; ++k) straight.push_back({1.0 * k, 2.0 * k, -1.0 * k});
  auto ring = compact_walk(7, 20);
  ring.push_back(ring[4]);
  for (const auto& chain : {planar, lattice, straight, ring}) {
    const Fingerprint found = exact(chain);
    const Fingerprint plain = exact(chain, 1, {}, SubChains::kOneByOne);
    for (std::size_t begin = 0; begin + 1 < found.stations().size(); ++begin)
      for (std::size_t end = begin + 1; end < found.stations().size(); ++end)
        expect_near(shares_of(found, begin, end), shares_of(plain, begin, end),
                    cell_text(begin, end));
  }
}

TEST(ExactFingerprint, DoesNotDependOnThreadsOrSeed) {
  const auto chain = compact_walk(3, 36);
  const Fingerprint one = exact(chain);
  expect_equal_shares(one, exact(chain, 1, {.threads = 2}));
  expect_equal_shares(one, exact(chain, 1, {.threads = 5, .seed = 77}));
}

TEST(ExactFingerprint, WithAStepIsThatOfItsStations) {
  const auto chain = compact_walk(5, 45);
  const Fingerprint coarse = exact(chain, 7);
  ASSERT_EQ(coarse.stations().back(), 45);
  EXPECT_EQ(coarse.stations().size(), 8u);
  expect_maps_of_sub_chains(coarse, chain);
}

TEST(ExactFingerprint, OfTinyChainsIsUnknotted) {
  for (const std::size_t size : {0u, 1u, 2u, 3u, 4u, 5u}) {
    const auto walk = compact_walk(1, 10);
    const std::vector<Point> chain(walk.begin(), walk.begin() + static_cast<std::ptrdiff_t>(size));
    const Fingerprint found = exact(chain);
    EXPECT_EQ(found.stations().size(), size);
    EXPECT_EQ(found.types(), std::vector<std::string>{"0_1"});
    for (std::size_t end = 1; end < size; ++end) EXPECT_EQ(found.share(0, 0, end), 1);
    EXPECT_EQ(locate(found).type, "0_1");
  }
}

TEST(ExactFingerprint, OfOnePointRepeatedIsUnknotted) {
  const std::vector<Point> chain(9, Point{1, 2, 3});
  const Fingerprint found = exact(chain);
  EXPECT_EQ(found.types(), std::vector<std::string>{"0_1"});
  EXPECT_EQ(found.share(0, 0, 8), 1);
}

TEST(ExactFingerprint, RefusesWhatItHasNot) {
  const auto chain = compact_walk(1, 30);
  EXPECT_EQ(refused({.exact = true, .closure = Closure::kTwoPoints}, chain),
            ErrorCode::kInvalidArgument);
  EXPECT_EQ(refused({.exact = true, .step = 0}, chain), ErrorCode::kInvalidArgument);
  EXPECT_EQ(refused({.exact = true, .most_memory = 8}, compact_walk(1, 60)),
            ErrorCode::kInvalidArgument);
  const Fingerprint found = exact(chain);
  EXPECT_TRUE(found.exact());
  EXPECT_EQ(found.trials(), 0u);
  EXPECT_THROW((void)found.count(0, 0, 1), Error);
  EXPECT_THROW((void)found.share(found.types().size(), 0, 1), Error);
  EXPECT_THROW((void)found.share(0, 1, 1), Error);
  EXPECT_THROW((void)found.dominant(0, 31), Error);
}

TEST(ExactFingerprint, HasADominantTypeOfTheLargestShare) {
  const Fingerprint found = exact(compact_walk(2, 32));
  for (std::size_t begin = 0; begin < 32; ++begin) {
    for (std::size_t end = begin + 1; end <= 32; ++end) {
      const auto dominant = found.dominant(begin, end);
      double sum = 0;
      for (std::size_t type = 0; type < found.types().size(); ++type) {
        const double share = found.share(type, begin, end);
        EXPECT_TRUE(share < dominant.share || (share == dominant.share && type >= dominant.type));
        sum += share;
      }
      EXPECT_EQ(dominant.share, found.share(dominant.type, begin, end));
      EXPECT_NEAR(sum, 1, 1e-9);
    }
  }
}

TEST(ExactFingerprint, WritesSharesInPlaceOfVotes) {
  const auto chain = chain_a_of("2efv_CA.pdb");
  const Fingerprint found = fingerprint(chain, {.exact = true, .step = 20});
  const auto written = [&](ReportFormat format) {
    std::ostringstream out;
    write_fingerprint(found, {}, format, out);
    return out.str();
  };
  EXPECT_NE(written(ReportFormat::kTsv).find("1\t82\t-3_1\t\texact\t0.774115326\t"),
            std::string::npos);
  EXPECT_NE(written(ReportFormat::kJson).find(R"("exact":true,"doubt":0.0,"sub_chains":[)"),
            std::string::npos);
  EXPECT_NE(written(ReportFormat::kNpz).find("exact_share.npy"), std::string::npos);
  EXPECT_EQ(written(ReportFormat::kNpz).find("count.npy"), std::string::npos);
  EXPECT_NE(written(ReportFormat::kMatrix).find("-3_1"), std::string::npos);
  const Location location = locate(found);
  EXPECT_TRUE(location.exact);
  EXPECT_NEAR(location.share, 0.774115, 5e-7);
}

}  // namespace
}  // namespace korvex
