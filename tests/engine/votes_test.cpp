#include "korvex/votes.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <stdexcept>
#include <string>

#include "engine/closures/votes.hpp"
#include "engine/invariants/of_codes.hpp"
#include "engine/named_diagrams.hpp"
#include "engine/random_chains.hpp"
#include "korvex/diagram.hpp"
#include "korvex/error.hpp"

namespace korvex {
namespace {

std::string key_name(const GaussCode& closed) {
  const std::uint64_t key = alexander_key(closed);
  return key == 1 ? "0_1" : std::to_string(key);
}

Votes votes_of(std::span<const Point> chain, const VoteOptions& options = {},
               const korvex::Run& run = {}) {
  return vote_with(NamedDiagrams(key_name), chain, options, run);
}

std::string trefoil_name() {
  const std::vector<std::int64_t> trefoil{1, -1, 1};
  return std::to_string(alexander_key_of(trefoil));
}

void expect_same(const Votes& a, const Votes& b) {
  EXPECT_EQ(a.trials, b.trials);
  EXPECT_EQ(a.crossings, b.crossings);
  ASSERT_EQ(a.types.size(), b.types.size());
  for (std::size_t k = 0; k < a.types.size(); ++k) {
    EXPECT_EQ(a.types[k].type, b.types[k].type);
    EXPECT_EQ(a.types[k].count, b.types[k].count);
  }
}

// A trefoil with ends far outside of it, so that every closure finds it.
std::vector<Point> trefoil_on_a_string() {
  auto chain = trefoil_ring(42);
  std::rotate(chain.begin(), chain.begin() + 7, chain.end());
  const Point first = chain.front();
  const Point last = chain.back();
  chain.insert(chain.begin(), 40.0 * first);
  chain.push_back(40.0 * last);
  return chain;
}

TEST(Vote, DoesNotDependOnTheUnitOfLength) {
  auto chain = compact_walk(11, 60);
  chain.push_back(0.5 * (chain[4] + chain[5]));
  for (const Closure closure : {Closure::kRays, Closure::kTwoPoints, Closure::kOut}) {
    const VoteOptions options{.closure = closure, .trials = 20};
    const Votes votes = votes_of(chain, options);
    for (const int exponent : {-1000, -700, -370, -356, -200, 330, 500, 900}) {
      std::vector<Point> scaled;
      for (const Point& p : chain)
        scaled.push_back(
            {std::scalbn(p.x, exponent), std::scalbn(p.y, exponent), std::scalbn(p.z, exponent)});
      expect_same(votes_of(scaled, options), votes);
    }
  }
}

// Its last point lies on a segment before it, or its end is many times the same point.
TEST(Vote, LeadsEndsAwayFromWhereTheChainPassesThroughThem) {
  auto chain = compact_walk(3, 12);
  chain.push_back(0.5 * (chain[4] + chain[5]));
  auto repeated = compact_walk(4, 15);
  repeated.insert(repeated.end(), 19, Point{0.2, 0.2, 0.2});
  repeated.push_back({0.2, 0.2, 0.1});
  repeated.insert(repeated.end(), 3, Point{0.2, 0.2, 0.2});
  for (const auto& points : {chain, repeated}) {
    for (const Closure closure : {Closure::kTwoPoints, Closure::kOut}) {
      const VoteOptions options{.closure = closure};
      EXPECT_EQ(votes_of(points, options).trials, is_sampled(closure) ? 100U : 1U);
    }
  }
}

TEST(Vote, CountsTheVotesThatAreProven) {
  const auto chain = trefoil_on_a_string();
  for (const TypeVotes& type : vote(chain).types) EXPECT_EQ(type.proven, type.count) << type.type;
  const NamedDiagrams doubt([](const GaussCode&) { return "+3_1"; }, false);
  for (const TypeVotes& type : vote_with(doubt, chain, {}, {}).types)
    EXPECT_EQ(type.proven, type.type == "0_1" ? type.count : 0) << type.type;
}

TEST(Vote, FindsATrefoilByEveryClosure) {
  const auto chain = trefoil_on_a_string();
  for (const Closure closure : {Closure::kRays, Closure::kTwoPoints, Closure::kOut}) {
    const Votes votes = votes_of(chain, {.closure = closure});
    EXPECT_EQ(votes.trials, is_sampled(closure) ? 100u : 1u);
    EXPECT_EQ(votes.dominant().type, trefoil_name()) << name_of(closure);
    EXPECT_GT(votes.dominant().share, 0.9);
  }
  for (const Closure closure : {Closure::kDirect, Closure::kRing}) {
    const Votes votes = votes_of(trefoil_ring(), {.closure = closure});
    EXPECT_EQ(votes.trials, 1u);
    EXPECT_EQ(votes.dominant().type, trefoil_name()) << name_of(closure);
    EXPECT_EQ(votes.crossings, (std::map<std::size_t, std::size_t>{{3, 1}}));
  }
}

TEST(Vote, OfARingMayRepeatItsFirstPoint) {
  auto ring = trefoil_ring();
  ring.push_back(ring.front());
  EXPECT_EQ(votes_of(ring, {.closure = Closure::kRing}).dominant().type, trefoil_name());
}

TEST(Vote, DoesNotDependOnThreads) {
  const auto chain = compact_walk(7, 150);
  for (const std::size_t trials : {1u, 30u, 500u}) {
    const Votes one = votes_of(chain, {.trials = trials}, {.threads = 1});
    EXPECT_EQ(one.trials, trials);
    for (const unsigned threads : {2u, 5u})
      expect_same(one, votes_of(chain, {.trials = trials}, {.threads = threads}));
  }
}

TEST(Vote, UntilItSettlesDoesNotDependOnThreads) {
  const VoteOptions options{.trials = 0, .tolerance = 0.05, .most_trials = 1000};
  for (const unsigned seed : {2u, 3u}) {
    const auto chain = compact_walk(seed, 90);
    const Votes one = votes_of(chain, options, {.threads = 1, .seed = 5});
    for (const unsigned threads : {2u, 3u})
      expect_same(one, votes_of(chain, options, {.threads = threads, .seed = 5}));
  }
}

TEST(Vote, DoesNotDependOnHowDirectionsShareTheReduction) {
  const auto chain = compact_walk(4, 100);
  for (const Closure closure : {Closure::kRays, Closure::kTwoPoints}) {
    for (const std::size_t trials : {40u, 0u}) {
      const VoteOptions options{
          .closure = closure, .trials = trials, .tolerance = 0.1, .most_trials = 300};
      const Votes usual = votes_of(chain, options);
      for (const Sharing& sharing :
           {Sharing{.batch = 1}, Sharing{.batch = 7, .fewest_points = 0}, Sharing{.batch = 1000},
            Sharing{.batch = 7, .closest = 3}, kCloseSharing}) {
        const Votes votes = vote_with(NamedDiagrams(key_name), chain, options, {}, sharing);
        ASSERT_EQ(votes.trials, usual.trials);
        ASSERT_EQ(votes.types.size(), usual.types.size());
        for (std::size_t k = 0; k < votes.types.size(); ++k) {
          EXPECT_EQ(votes.types[k].type, usual.types[k].type);
          EXPECT_EQ(votes.types[k].count, usual.types[k].count);
        }
      }
    }
  }
}

TEST(Vote, HandsAnExceptionOfAWorkerToTheCaller) {
  const auto chain = compact_walk(7, 100);
  const auto fail = [](const GaussCode&) -> std::string {
    throw std::runtime_error("from a worker");
  };
  for (const unsigned threads : {1u, 3u}) {
    try {
      vote_with(NamedDiagrams(fail), chain, {}, {.threads = threads});
      FAIL() << "nothing was thrown";
    } catch (const std::runtime_error& error) {
      EXPECT_STREQ(error.what(), "from a worker");
    }
  }
}

TEST(Vote, StopsWhenAsked) {
  for (const std::size_t trials : {0u, 1000u}) {
    std::stop_source source;
    korvex::Run run{.threads = 2};
    run.stop = source.get_token();
    run.progress = [&](double) { source.request_stop(); };
    try {
      votes_of(compact_walk(1, 60), {.trials = trials, .tolerance = 0.001}, run);
      FAIL() << "nothing was thrown";
    } catch (const Error& error) {
      EXPECT_EQ(error.code(), ErrorCode::kCancelled);
    }
  }
}

TEST(Vote, DependsOnTheSeed) {
  const auto chain = compact_walk(7, 150);
  const Votes first = votes_of(chain, {}, {.seed = 1});
  const Votes second = votes_of(chain, {}, {.seed = 2});
  bool differ = first.types.size() != second.types.size();
  for (std::size_t k = 0; !differ && k < first.types.size(); ++k)
    differ = first.types[k].count != second.types[k].count;
  EXPECT_TRUE(differ);
}

TEST(Vote, SharesAddUpAndLieInTheirIntervals) {
  const Votes votes = votes_of(compact_walk(3, 150), {.closure = Closure::kTwoPoints});
  std::size_t count = 0;
  std::size_t diagrams = 0;
  for (const TypeVotes& type : votes.types) {
    count += type.count;
    EXPECT_DOUBLE_EQ(type.share, static_cast<double>(type.count) / 100);
    EXPECT_LE(type.interval.low, type.share);
    EXPECT_GE(type.interval.high, type.share);
  }
  for (const auto& [crossings, how_many] : votes.crossings) diagrams += how_many;
  EXPECT_EQ(count, votes.trials);
  EXPECT_EQ(diagrams, votes.trials);
  EXPECT_GT(votes.types.size(), 1u);
}

// The closed polygon with vertices far out on the rays, seen from somewhere else.
TEST(Vote, ByRaysAndByTwoPointsIsThatOfExplicitFarPoints) {
  for (unsigned seed = 0; seed < 12; ++seed) {
    const auto chain = compact_walk(seed, 80);
    for (const Closure closure : {Closure::kRays, Closure::kTwoPoints}) {
      const auto ends = sampled_ends(closure, Sampling::kIndependent, 10, seed);
      std::map<std::string, std::size_t> expected;
      for (const Ends& directions : ends) {
        auto polygon = chain;
        polygon.push_back(chain.back() + 1e4 * directions.last);
        // Far outside, on the way from one far point to the other.
        polygon.push_back(1e5 * (directions.last + directions.first));
        polygon.push_back(chain.front() + 1e4 * directions.first);
        ++expected[key_name(Diagram::of_polygon(polygon, {0.3, 0.5, 0.7}).code())];
      }
      const Votes votes =
          votes_of(chain, {.closure = closure, .sampling = Sampling::kIndependent, .trials = 10},
                   {.seed = seed});
      std::map<std::string, std::size_t> found;
      for (const TypeVotes& type : votes.types) found[type.type] = type.count;
      EXPECT_EQ(found, expected) << seed << " " << name_of(closure);
    }
  }
}

TEST(Vote, StopsByItselfOnceOneTypeHasMoreThanHalf) {
  const Votes votes = votes_of(trefoil_on_a_string(), {.trials = 0});
  EXPECT_EQ(votes.trials, 100u);
  EXPECT_GT(votes.dominant().interval.low, 0.5);
}

TEST(Vote, StopsByItselfOnceAllIntervalsAreNarrow) {
  for (unsigned seed = 0; seed < 20; ++seed) {
    const auto chain = compact_walk(seed, 120);
    const VoteOptions options{.trials = 0, .tolerance = 0.03, .most_trials = 3000};
    const Votes votes = votes_of(chain, options, {.seed = seed});
    if (votes.dominant().interval.low > 0.5) continue;
    if (votes.trials + 100 <= options.most_trials) {
      for (const TypeVotes& type : votes.types)
        EXPECT_LE(type.interval.high - type.interval.low, 0.06);
      return;
    }
  }
  FAIL() << "no chain had types that compete";
}

TEST(Vote, OfFewPointsIsTheUnknot) {
  for (const std::size_t size : {1u, 2u, 3u, 4u})
    for (const Closure closure :
         {Closure::kRays, Closure::kTwoPoints, Closure::kOut, Closure::kDirect, Closure::kRing})
      for (const auto& chain :
           {std::vector<Point>(size, Point{1, 1, 1}), trefoil_ring(static_cast<int>(size))})
        EXPECT_EQ(votes_of(chain, {.closure = closure, .trials = 5}).dominant().type, "0_1");
}

TEST(Vote, OfNoPointsIsRefused) {
  for (const Closure closure :
       {Closure::kRays, Closure::kTwoPoints, Closure::kOut, Closure::kDirect, Closure::kRing}) {
    try {
      votes_of({}, {.closure = closure, .trials = 5});
      FAIL() << "nothing was thrown";
    } catch (const Error& error) {
      EXPECT_EQ(error.code(), ErrorCode::kInvalidArgument);
    }
  }
}

TEST(Vote, OfLatticeChainsIsAnswered) {
  std::mt19937 generator(5);
  std::vector<Point> chain{{0, 0, 0}};
  for (int i = 0; i < 200; ++i) {
    const std::vector<Point> steps{{1, 0, 0},  {-1, 0, 0}, {0, 1, 0},
                                   {0, -1, 0}, {0, 0, 1},  {0, 0, -1}};
    chain.push_back(chain.back() + steps[generator() % steps.size()]);
  }
  const Votes votes = votes_of(chain, {.trials = 20});
  EXPECT_EQ(votes.trials, 20u);
}

TEST(Vote, ReportsProgressThatRisesToOne) {
  for (int closure = 0; closure < 5; ++closure) {
    for (const std::size_t trials : {0u, 100u}) {
      std::vector<double> seen;
      korvex::Run run;
      run.progress = [&](double fraction) { seen.push_back(fraction); };
      const VoteOptions options{.closure = static_cast<Closure>(closure), .trials = trials};
      votes_of(compact_walk(1, 100), options, run);
      ASSERT_FALSE(seen.empty()) << closure;
      EXPECT_TRUE(std::is_sorted(seen.begin(), seen.end())) << closure;
      EXPECT_EQ(seen.back(), 1) << closure;
    }
  }
}

TEST(Vote, RefusesOptionsAndChainsOutOfRange) {
  const auto chain = random_walk(1, 10);
  EXPECT_THROW(votes_of(chain, {.tolerance = 0}), Error);
  EXPECT_THROW(votes_of(chain, {.most_trials = 99}), Error);
  EXPECT_THROW(votes_of(chain, {.trials = 10'000'001}), Error);
  auto broken = chain;
  broken[3].x = std::nan("");
  for (const Closure closure : {Closure::kRays, Closure::kOut, Closure::kRing})
    EXPECT_THROW(votes_of(broken, {.closure = closure}), Error);
}

// One type has far more than half of the votes, and the shares of the rest are not known yet.
TEST(Vote, GoesOnBeyondAMajorityWhereTheSharesAreWanted) {
  const auto chain = compact_walk(4, 25);
  VoteOptions options{.trials = 0, .tolerance = 0.02};
  const Votes majority = votes_of(chain, options);
  options.majority_settles = false;
  const Votes shares = votes_of(chain, options);
  EXPECT_GT(majority.dominant().interval.low, 0.5);
  EXPECT_GT(shares.trials, majority.trials);
  for (const TypeVotes& type : shares.types)
    EXPECT_LE(type.interval.high - type.interval.low, 2 * options.tolerance);
}

}  // namespace
}  // namespace korvex
