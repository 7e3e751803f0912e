// Several threads at once on what they share: constant objects, the catalogue, what identification
// remembers. Every thread has to get the answer that one alone gets; ThreadSanitizer looks on.
#include <gtest/gtest.h>

#include <functional>
#include <latch>
#include <string>
#include <thread>
#include <vector>

#include "engine/random_chains.hpp"
#include "korvex/alexander.hpp"
#include "korvex/catalogue.hpp"
#include "korvex/fingerprint.hpp"
#include "korvex/homfly.hpp"
#include "korvex/identify.hpp"
#include "korvex/jones.hpp"
#include "korvex/locate.hpp"
#include "korvex/read.hpp"
#include "korvex/signature.hpp"
#include "korvex/votes.hpp"
#include "support/data_file.hpp"

namespace korvex {
namespace {

constexpr std::size_t kThreads = 4;

// What each of several threads answers when all start at once.
std::vector<std::string> answers_at_once(const std::function<std::string()>& answer) {
  std::vector<std::string> answers(kThreads);
  std::latch start(kThreads);
  {
    std::vector<std::jthread> threads;
    for (std::string& own : answers)
      threads.emplace_back([&start, &answer, &own] {
        start.arrive_and_wait();
        own = answer();
      });
  }
  return answers;
}

void expect_one_answer(const std::function<std::string()>& answer) {
  const auto answers = answers_at_once(answer);
  const std::string alone = answer();
  EXPECT_FALSE(alone.empty());
  for (const std::string& own : answers) EXPECT_EQ(own, alone);
}

std::string written(const Votes& votes) {
  std::string text;
  for (const TypeVotes& type : votes.types)
    text += type.type + ' ' + std::to_string(type.count) + '\n';
  for (const auto& [crossings, diagrams] : votes.crossings)
    text += std::to_string(crossings) + ": " + std::to_string(diagrams) + '\n';
  return text;
}

std::string written(const Fingerprint& fingerprint) {
  std::string text;
  const std::size_t last = fingerprint.stations().size();
  for (std::size_t type = 0; type < fingerprint.types().size(); ++type) {
    text += fingerprint.types()[type] + ':';
    for (std::size_t begin = 0; begin < last; ++begin)
      for (std::size_t end = begin + 1; end < last; ++end)
        text += ' ' + std::to_string(fingerprint.count(type, begin, end));
    text += '\n';
  }
  return text;
}

// The first of these tests meets the catalogue and the memories before anything has filled them.
TEST(AtOnce, TheFirstUseOfIdentificationIsShared) {
  const Diagram diagram = Diagram::of_polygon(compact_walk(11, 60), {0.3, 0.5, 0.7});
  expect_one_answer([&] { return identify(diagram).name; });
}

TEST(AtOnce, EveryTypeOfTheCatalogueIsIdentified) {
  expect_one_answer([] {
    std::string names;
    for (std::size_t k = 0; k < catalogue().size(); k += 7)
      names += identify(Diagram::of_gauss_code(catalogue()[k].gauss_code)).name + '\n';
    return names;
  });
}

TEST(AtOnce, InvariantsOfOneDiagram) {
  const KnotType* type = find_knot_type("+3_1#4_1");
  ASSERT_NE(type, nullptr);
  const Diagram diagram = Diagram::of_gauss_code(type->gauss_code);
  expect_one_answer([&] {
    return std::to_string(alexander_key(diagram)) + ' ' + std::to_string(signature(diagram)) + ' ' +
           text_of(homfly(diagram).value()) + ' ' + text_of(jones(diagram).value());
  });
}

TEST(AtOnce, VotesOfOneChainOnThreadsOfTheirOwn) {
  const auto chain = compact_walk(7, 120);
  for (const Closure closure : {Closure::kRays, Closure::kTwoPoints})
    expect_one_answer(
        [&] { return written(vote(chain, {.closure = closure, .trials = 60}, {.threads = 2})); });
}

TEST(AtOnce, FingerprintsOfOneChainOnThreadsOfTheirOwn) {
  const auto chain = compact_walk(3, 60);
  for (const Closure closure : {Closure::kRays, Closure::kTwoPoints})
    expect_one_answer([&] {
      return written(fingerprint(chain, {.closure = closure, .directions = 12}, {.threads = 2}));
    });
}

TEST(AtOnce, OneFingerprintIsReadAndLocated) {
  const Fingerprint found = fingerprint(compact_walk(3, 60), {.directions = 12}, {.threads = 2});
  expect_one_answer([&] {
    const Location location = locate(found, {.threshold = 0.2});
    return written(found) + location.type + ' ' + std::to_string(location.knots.size());
  });
}

TEST(AtOnce, OneSourceIsRead) {
  const Source source(support::data_file("proteins/1tim.pdb.gz"));
  expect_one_answer([&] {
    std::string names;
    for (const Chain& chain : read_chains(source))
      names += chain.name + ' ' + std::to_string(chain.points.size()) + '\n';
    return names;
  });
}

}  // namespace
}  // namespace korvex
