// FindAllCrossings and the crossing test against their plain forms, bit for bit.
#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <iostream>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "korvex.h"
#include "reference/reference.hpp"
#include "support/bits.hpp"
#include "support/captured_stream.hpp"
#include "support/effort.hpp"
#include "support/projections.hpp"
#include "support/simd_targets.hpp"

namespace {

struct Outcome {
  int result;
  std::string messages;
  std::vector<Crossing> crossings;
  std::vector<Edge> edges;
};

template <class Find, class Fill>
Outcome enumerate(std::vector<Edge> edges, bool closed, Find find, Fill fill) {
  Outcome outcome;
  support::CapturedStream log(std::clog);
  outcome.edges = std::move(edges);
  outcome.result = find(outcome.edges, outcome.crossings, closed);
  if (outcome.result == 0 && !outcome.crossings.empty()) fill(outcome.edges, outcome.crossings);
  outcome.messages = log.text();
  return outcome;
}

using support::same_bits;

bool same_crossing(const Crossing& a, const Crossing& b) {
  return a.overEdge == b.overEdge && a.underEdge == b.underEdge && a.overArc == b.overArc &&
         a.underArcIn == b.underArcIn && a.underArcOut == b.underArcOut && a.type == b.type;
}

bool same_list(const std::vector<CrossingShort>& a, const std::vector<CrossingShort>& b) {
  if (a.size() != b.size()) return false;
  for (std::size_t k = 0; k < a.size(); ++k) {
    if (a[k].crossingIndex != b[k].crossingIndex) return false;
    if (!same_bits(a[k].position, b[k].position)) return false;
  }
  return true;
}

std::string difference(const Outcome& a, const Outcome& b) {
  if (a.result != b.result) return "result";
  if (a.messages != b.messages) return "messages";
  if (a.crossings.size() != b.crossings.size()) return "number of crossings";
  for (std::size_t k = 0; k < a.crossings.size(); ++k) {
    if (!same_crossing(a.crossings[k], b.crossings[k])) return "crossing " + std::to_string(k);
  }
  for (std::size_t k = 0; k < a.edges.size(); ++k) {
    if (!same_list(a.edges[k].crossings, b.edges[k].crossings)) {
      return "list of edge " + std::to_string(k);
    }
  }
  return "";
}

TEST(FindAllCrossings, EqualsThePlainFormOnEveryInstructionSet) {
  int problems = 0;
  std::size_t crossings = 0;
  for (int seed = 0; seed < support::input_count(); ++seed) {
    const std::vector<Edge> edges = support::random_projection(static_cast<std::uint64_t>(seed));
    const bool closed = seed % 5 != 0;
    const Outcome plain =
        enumerate(edges, closed, reference::FindAllCrossings, reference::FillCrossings);
    for (const std::int64_t target : support::simd_targets()) {
      const support::ForcedTarget forced(target);
      const Outcome fast = enumerate(edges, closed, FindAllCrossings, FillCrossings);
      ASSERT_EQ(difference(fast, plain), "")
          << support::simd_target_name(target) << ", seed " << seed;
    }
    problems += plain.result;
    crossings += plain.crossings.size();
  }
  EXPECT_GT(problems, 100);
  EXPECT_GT(crossings, 1000U);
}

TEST(FindAllCrossings, KeepsWhatTheListsHeld) {
  std::vector<Edge> edges = support::random_projection(12);
  std::vector<Crossing> crossings{{7, 8, 1, 2, 3, 1}};
  edges[1].crossings.push_back({0, 0.5});
  std::vector<Edge> plain_edges = edges;
  std::vector<Crossing> plain_crossings = crossings;
  EXPECT_EQ(FindAllCrossings(edges, crossings, true),
            reference::FindAllCrossings(plain_edges, plain_crossings, true));
  EXPECT_EQ(difference({0, "", crossings, edges}, {0, "", plain_crossings, plain_edges}), "");
  EXPECT_TRUE(same_crossing(crossings[0], {7, 8, 1, 2, 3, 1}));
}

// Any sign and any exponent, zeros, infinities and NaN.
double any_number(std::mt19937_64& random) {
  using Limits = std::numeric_limits<double>;
  switch (random() % 16) {
    case 0:
      return random() % 2 == 0 ? 0.0 : -0.0;
    case 1:
      return random() % 2 == 0 ? Limits::infinity() : -Limits::infinity();
    case 2:
      return Limits::quiet_NaN();
    case 3:
    case 4:
      return static_cast<double>(random() % 3) - 1;
    default:
      return std::bit_cast<double>(random());
  }
}

TEST(TypeOfCrossing, EqualsThePlainFormAtEveryMagnitude) {
  std::mt19937_64 random(1);
  for (int k = 0; k < 20 * support::input_count(); ++k) {
    Edge a{};
    Edge b{};
    for (double* c : {&a.x1, &a.y1, &a.x2, &a.y2, &b.x1, &b.y1, &b.x2, &b.y2}) {
      *c = random() % 2 == 0 ? any_number(random) : 0.0;
    }
    ASSERT_EQ(TypeOfCrossing(a, b), reference::TypeOfCrossing(a, b)) << k;
  }
}

TEST(TwoEdgesCrossed, EqualsThePlainFormAtEveryMagnitude) {
  std::mt19937_64 random(2);
  support::CapturedStream log(std::clog);
  for (int k = 0; k < 20 * support::input_count(); ++k) {
    Edge a{};
    Edge b{};
    for (double* c : {&a.x1, &a.y1, &a.x2, &a.y2, &b.x1, &b.y1, &b.x2, &b.y2}) {
      *c = any_number(random);
    }
    int fast_status = 7;
    int plain_status = 8;
    const auto fast = TwoEdgesCrossed(a, b, fast_status);
    const auto plain = reference::TwoEdgesCrossed(a, b, plain_status);
    ASSERT_EQ(fast_status, plain_status) << k;
    ASSERT_TRUE(same_bits(fast.first, plain.first)) << k;
    ASSERT_TRUE(same_bits(fast.second, plain.second)) << k;
  }
}

}  // namespace
