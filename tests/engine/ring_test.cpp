#include "korvex/ring.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stop_token>
#include <vector>

#include "engine/projection/projection.hpp"
#include "engine/random_chains.hpp"
#include "korvex/alexander.hpp"
#include "korvex/catalogue.hpp"
#include "korvex/directions.hpp"
#include "korvex/error.hpp"
#include "korvex/votes.hpp"
#include "support/embedding.hpp"

namespace korvex {
namespace {

// A random walk whose ends are drawn together.
std::vector<Point> random_ring(unsigned seed, int steps) {
  auto ring = random_walk(seed, steps);
  const Point end = ring.back();
  ring.pop_back();
  for (std::size_t k = 0; k < ring.size(); ++k)
    ring[k] = ring[k] - (static_cast<double>(k) / static_cast<double>(ring.size())) * end;
  return ring;
}

TEST(RingReport, OfATrefoilCountsItsCrossings) {
  const RingReport report = examine_ring(trefoil_ring(100));
  EXPECT_GE(report.projected.crossings, 3u);
  EXPECT_EQ(report.simplified_size(), (DiagramSize{3, -3}));
  EXPECT_LT(report.points_left, 20u);
  EXPECT_EQ(report.alexander_key, alexander_key_of(std::vector<std::int64_t>{1, -1, 1}));
}

TEST(RingReport, OfALongWalkHasTheSameKeyFromEverySideAndInTheMirror) {
  auto ring = random_ring(3, 20'000);
  const RingReport report = examine_ring(ring);
  EXPECT_NE(report.alexander_key, 1u);
  EXPECT_GT(report.projected.crossings, 20'000u);
  EXPECT_LT(report.points_left, 2'000u);
  EXPECT_LT(report.simplified.crossings(), 1'000u);
  const RingReport from_elsewhere = examine_ring(ring, {.seed = 77});
  EXPECT_NE(from_elsewhere.projected, report.projected);
  EXPECT_EQ(from_elsewhere.alexander_key, report.alexander_key);
  for (Point& p : ring) p.z = -p.z;
  EXPECT_EQ(examine_ring(ring).alexander_key, report.alexander_key);
}

TEST(RingReport, HasTheKeyOfTheWholeDiagramThatNothingWasTakenFrom) {
  const auto ring = random_ring(5, 10'000);
  const RingReport report = examine_ring(ring);
  const Diagram whole = Diagram::of_polygon(ring, random_direction(1, 0));
  EXPECT_EQ(report.projected, (DiagramSize{whole.crossings(), whole.writhe()}));
  EXPECT_EQ(report.alexander_key, alexander_key(whole));
}

// Powers of two, so that nothing is rounded: products of three coordinates would be subnormal or
// infinite for most of them, and the coordinates themselves are subnormal for the first.
TEST(RingReport, DoesNotDependOnTheUnitOfLength) {
  for (unsigned seed = 1; seed <= 40; ++seed) {
    auto ring = random_ring(seed, 60);
    for (Point& p : ring)
      p = {std::round(1024 * p.x), std::round(1024 * p.y), std::round(1024 * p.z)};
    const RingReport report = examine_ring(ring);
    for (const int exponent : {-1074, -1040, -700, -368, -367, -366, -340, 320, 330, 500, 970}) {
      std::vector<Point> scaled;
      for (const Point& p : ring)
        scaled.push_back(
            {std::scalbn(p.x, exponent), std::scalbn(p.y, exponent), std::scalbn(p.z, exponent)});
      const RingReport of_scaled = examine_ring(scaled);
      EXPECT_EQ(of_scaled.projected, report.projected) << seed << " 2^" << exponent;
      EXPECT_EQ(of_scaled.points_left, report.points_left) << seed << " 2^" << exponent;
      EXPECT_EQ(of_scaled.simplified, report.simplified) << seed << " 2^" << exponent;
    }
  }
}

// Every third strand runs half its way twice.
TEST(RingReport, KeepsTheKnotOfARingThatRunsBackOnItself) {
  for (const char* name : {"+10_107", "+9_40", "-9_32"}) {
    const auto code = find_knot_type(name)->gauss_code;
    const auto ring = support::embedded(Diagram::of_gauss_code(code));
    std::vector<Point> spiked;
    for (std::size_t k = 0; k < ring.size(); ++k) {
      spiked.push_back(ring[k]);
      if (k % 3 != 0) continue;
      spiked.push_back(0.5 * (ring[k] + ring[(k + 1) % ring.size()]));
      spiked.push_back(ring[k]);
    }
    const std::uint64_t key = alexander_key(Diagram::of_gauss_code(code));
    for (std::uint64_t seed = 1; seed <= 400; ++seed)
      EXPECT_EQ(examine_ring(spiked, {.seed = seed}).alexander_key, key) << name << " " << seed;
  }
}

TEST(RingReport, TakesPointsInAnyPosition) {
  for (const std::size_t size : {0u, 1u, 2u, 3u, 4u, 9u}) {
    for (const bool straight : {false, true}) {
      std::vector<Point> ring(size, Point{1, 2, 3});
      for (std::size_t k = 0; straight && k < size; ++k) ring[k].x = static_cast<double>(k);
      const RingReport report = examine_ring(ring);
      EXPECT_EQ(report.simplified.crossings(), 0u) << size;
      EXPECT_EQ(report.alexander_key, 1u) << size;
    }
  }
  std::vector<Point> ring = trefoil_ring();
  ring[7].y = std::numeric_limits<double>::quiet_NaN();
  EXPECT_THROW(examine_ring(ring), Error);
}

TEST(RingReport, ComesWithTheVoteOfARing) {
  const auto ring = random_ring(8, 300);
  for (const Closure closure : {Closure::kRing, Closure::kDirect}) {
    const Votes votes = vote(ring, {.closure = closure});
    ASSERT_TRUE(votes.ring);
    EXPECT_EQ(votes.ring->projected, examine_ring(ring).projected);
    EXPECT_EQ(votes.crossings.begin()->first, votes.ring->simplified.crossings());
  }
  EXPECT_FALSE(vote(ring, {.trials = 2}).ring);
}

TEST(LongLoops, StopWhenAsked) {
  std::stop_source source;
  source.request_stop();
  const korvex::Run stopped{.stop = source.get_token()};
  const auto ring = random_ring(1, 200);
  EXPECT_THROW(examine_ring(ring, stopped), Error);
  EXPECT_THROW(general_view(ring, {0, 0, 1}, Curve::kClosed, stopped), Error);
  try {
    examine_ring(ring, stopped);
  } catch (const Error& error) {
    EXPECT_EQ(error.code(), ErrorCode::kCancelled);
  }
}

TEST(LongLoops, StopAtAnyStageOfARingsReport) {
  const auto ring = random_ring(1, 200);
  for (const double stage : {0.1, 0.3}) {
    std::stop_source source;
    korvex::Run run{.stop = source.get_token()};
    run.progress = [&](double done) {
      if (done >= stage) source.request_stop();
    };
    EXPECT_THROW(examine_ring(ring, run), Error) << stage;
  }
}

}  // namespace
}  // namespace korvex
