#include "korvex/identity_cache.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <vector>

#include "engine/closures/votes.hpp"
#include "engine/fingerprint/fingerprint_data.hpp"
#include "engine/identify/identity_table.hpp"
#include "engine/invariants/of_codes.hpp"
#include "engine/random_chains.hpp"
#include "korvex/fingerprint.hpp"
#include "korvex/votes.hpp"

namespace korvex {
namespace {

std::string shown(const Votes& votes) {
  std::string text;
  for (const TypeVotes& type : votes.types)
    text += type.type + ' ' + std::to_string(type.count) + ' ' + std::to_string(type.proven) + '\n';
  for (const auto& [crossings, diagrams] : votes.crossings)
    text += std::to_string(crossings) + ": " + std::to_string(diagrams) + '\n';
  return text;
}

std::string shown(const Fingerprint& fingerprint) {
  std::string text;
  const std::size_t last = fingerprint.stations().size();
  for (std::size_t type = 0; type < fingerprint.types().size(); ++type) {
    text += fingerprint.types()[type] + ':';
    for (std::size_t begin = 0; begin < last; ++begin)
      for (std::size_t end = begin + 1; end < last; ++end)
        text += ' ' + std::to_string(fingerprint.count(type, begin, end));
  }
  return text;
}

// How often an identification was asked, with the cache that it has.
class Asked {
 public:
  explicit Asked(IdentityCache& cache)
      : identification_{[this](const GaussCode& closed) {
                          ++times_;
                          KnotIdentity identity;
                          identity.name = std::to_string(alexander_key(closed));
                          return identity;
                        },
                        cache} {}

  const Identification& identification() const { return identification_; }
  std::size_t times() const { return times_; }

 private:
  mutable std::atomic<std::size_t> times_ = 0;
  Identification identification_;
};

TEST(IdentityCache, ChangesNoAnswerWhateverItsSizeAndWhatItHolds) {
  const auto chain = compact_walk(11, 60);
  const auto answer = [&chain](IdentityCache& cache, unsigned threads) {
    const Asked asked(cache);
    const korvex::Run run{.threads = threads};
    const VoteOptions options{.closure = Closure::kTwoPoints, .trials = 60};
    return shown(vote_with(asked.identification(), chain, options, run)) +
           shown(fingerprint_with(asked.identification(), chain, {.directions = 6}, run));
  };
  IdentityCache fresh;
  const std::string first = answer(fresh, 1);
  IdentityCache used;
  for (unsigned seed = 0; seed < 4; ++seed)
    vote_with(Asked(used).identification(), compact_walk(seed, 60), {}, {});
  IdentityCache none(0);
  IdentityCache small(100'000);
  for (IdentityCache* cache : {&fresh, &used, &none, &small})
    for (const unsigned threads : {1u, 3u}) EXPECT_EQ(answer(*cache, threads), first);
}

TEST(IdentityCache, OfARunIsTheOneThatIsFilled) {
  const auto chain = compact_walk(2, 30);
  IdentityCache cache;
  const std::string votes = shown(vote(chain, {.trials = 20}, {.identities = &cache}));
  EXPECT_GT(cache.diagrams(), 0u);
  EXPECT_EQ(shown(vote(chain, {.trials = 20})), votes);
  const std::size_t diagrams = cache.diagrams();
  identify(Diagram::of_polygon(trefoil_ring(), {0.3, 0.5, 0.7}), Detail::kType,
           {.identities = &cache});
  EXPECT_EQ(cache.diagrams(), diagrams + 1);
}

TEST(IdentityCache, IdentifiesNoDiagramOfAChainTwice) {
  IdentityCache cache;
  const Asked asked(cache);
  const auto chain = compact_walk(5, 120);
  vote_with(asked.identification(), chain, {}, {});
  const std::size_t first = asked.times();
  EXPECT_GT(first, 0u);
  vote_with(asked.identification(), chain, {}, {.threads = 3});
  EXPECT_EQ(asked.times(), first);
}

TEST(IdentityCache, ServesTheNextChain) {
  IdentityCache cache;
  const auto diagrams_new_in = [&cache](unsigned seed) {
    const Asked asked(cache);
    fingerprint_with(asked.identification(), compact_walk(seed, 60), {.directions = 10}, {});
    return asked.times();
  };
  const std::size_t alone = [] {
    IdentityCache own;
    const Asked asked(own);
    fingerprint_with(asked.identification(), compact_walk(2, 60), {.directions = 10}, {});
    return asked.times();
  }();
  diagrams_new_in(1);
  EXPECT_LT(diagrams_new_in(2), alone);
}

TEST(IdentityCache, KeepsItsLimit) {
  const auto chain = compact_walk(3, 60);
  for (const std::size_t most : {0u, 20'000u, 100'000u}) {
    IdentityCache cache(most);
    EXPECT_EQ(cache.most_bytes(), most);
    fingerprint_with(Asked(cache).identification(), chain, {.directions = 5}, {});
    EXPECT_LE(cache.bytes(), most);
    EXPECT_EQ(cache.diagrams() == 0, most == 0);
  }
}

TEST(IdentityCache, ForgetsWhenAskedAndWhenItIsMadeSmaller) {
  const auto chain = compact_walk(3, 60);
  IdentityCache cache;
  const auto fill = [&] { vote_with(Asked(cache).identification(), chain, {}, {}); };
  fill();
  EXPECT_GT(cache.bytes(), 0u);
  EXPECT_GT(cache.diagrams(), 0u);
  cache.limit_to(2 * IdentityCache::kUsualBytes);
  EXPECT_GT(cache.diagrams(), 0u);
  cache.forget();
  EXPECT_EQ(cache.bytes(), 0u);
  EXPECT_EQ(cache.diagrams(), 0u);
  fill();
  cache.limit_to(0);
  EXPECT_EQ(cache.diagrams(), 0u);
  fill();
  EXPECT_EQ(cache.diagrams(), 0u);
}

TEST(IdentityCache, KeepsWhatCameFirst) {
  IdentityCache cache;
  DiagramType found;
  EXPECT_FALSE(cache.table().find("key", found));
  cache.table().keep("key", DiagramType{"+3_1", false, 11});
  const std::size_t bytes = cache.bytes();
  cache.table().keep("key", DiagramType{"4_1", true, 4});
  EXPECT_EQ(cache.bytes(), bytes);
  EXPECT_EQ(cache.diagrams(), 1u);
  ASSERT_TRUE(cache.table().find("key", found));
  EXPECT_EQ(found.name, "+3_1");
  EXPECT_FALSE(found.proven);
  EXPECT_EQ(found.crossings, 11);
}

TEST(IdentityCache, KeepsTheAnswersWithAndWithoutHandsApart) {
  const Diagram diagram = Diagram::of_polygon(trefoil_ring(), {0.3, 0.5, 0.7});
  for (int time = 0; time < 2; ++time) {
    EXPECT_EQ(identify(diagram, Detail::kHand).name.substr(1), "3_1");
    EXPECT_EQ(identify(diagram, Detail::kType).name, "3_1");
  }
}

}  // namespace
}  // namespace korvex
