// The determination of one chain against the plain pipeline: results, messages and draws.
#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "alexander/alexander_polynomial.hpp"
#include "alexander/stored_polynomial.hpp"
#include "korvex.h"
#include "reference/reference.hpp"
#include "support/captured_stream.hpp"
#include "support/determination_ends.hpp"
#include "support/effort.hpp"
#include "support/projections.hpp"
#include "support/small_chains.hpp"
#include "support/trace.hpp"

namespace {

using support::trace;

std::string text(int result, const polynomial<int>& poly, double value) {
  std::ostringstream text;
  text << result << std::hexfloat << ", value " << value << ", poly";
  for (const int c : poly.data()) text << " " << c;
  return text.str();
}

TEST(OneDirection, EqualsThePlainPipeline) {
  for (int seed = 0; seed < support::input_count(); ++seed) {
    const support::Chain chain = support::small_chain(static_cast<std::uint64_t>(seed));
    // The plain polynomial path takes a time that grows exponentially with the crossings.
    const int direction = seed % 67 - 3;
    const int limit = seed % 4 == 0 ? -1 : 8;
    const auto run = [&](auto find) {
      return trace(seed, [&] {
        polynomial<int> poly = korvex::alexander::stored_polynomial({7, 7});
        double value = -5;
        const int result = find(chain, poly, value, direction, limit);
        return text(result, poly, value);
      });
    };
    ASSERT_EQ(run(FindTheKnotInParticularDirection_poly),
              run(reference::FindTheKnotInParticularDirection_poly))
        << "seed " << seed;
  }
}

TEST(OneDirection, GivesThePlainText) {
  for (int seed = 0; seed < support::input_count(); ++seed) {
    const support::Chain chain = support::small_chain(static_cast<std::uint64_t>(seed));
    const bool numeric = seed % 3 == 0;
    ASSERT_EQ(
        trace(seed,
              [&] { return FindTheKnotInParticularDirection_poly_string(chain, 8, numeric); }),
        trace(seed,
              [&] {
                return reference::FindTheKnotInParticularDirection_poly_string(chain, 8, numeric);
              }))
        << "seed " << seed;
  }
}

TEST(OneDirection, RefillsATableThatAHostWroteTo) {
  const support::Chain ring = support::torus_knot(2, 3, 40);
  FillKnotsArray();
  knotsArray[1].poly = {5, 5};
  knotsArray[0].name = "changed";
  knotsArray[38].valueAtMinus3 = 1;
  knotsArray[3].valueAtMinus2 = 9;
  EXPECT_EQ(FindTheKnotInParticularDirection(ring, 1), 1);
  EXPECT_EQ(knotsArray[0].name, "01");
  EXPECT_EQ(knotsArray[1].poly, (std::vector<int>{1, -1, 1}));
  EXPECT_EQ(knotsArray[38].valueAtMinus3, 377);
  EXPECT_EQ(knotsArray[3].valueAtMinus2, 31);
}

TEST(AlexanderPolynomial, EqualsTheNormalisedDeterminantOfTheMatrix) {
  const support::CapturedStream log(std::clog);
  int compared = 0;
  for (int seed = 0; seed < support::input_count(); ++seed) {
    std::vector<Edge> edges = support::random_projection(static_cast<std::uint64_t>(seed));
    if (edges.size() > 16) edges.resize(3 + edges.size() % 14);
    std::vector<Crossing> crossings;
    if (FindAllCrossings(edges, crossings, true) != 0 || crossings.size() > 9) continue;
    FillCrossings(edges, crossings);
    const auto matrix = reference::CreateFoxMatrix(crossings);
    const polynomial<int> plain = matrix.empty() ? korvex::alexander::stored_polynomial({1})
                                                 : NormalizePoly(reference::det_poly(matrix));
    ASSERT_EQ(korvex::alexander::alexander_polynomial(crossings).data(), plain.data())
        << "seed " << seed;
    ++compared;
  }
  EXPECT_GT(compared, support::input_count() / 10);
}

TEST(FindOneKnot, EqualsThePlainPipeline) {
  const support::CapturedStream log(std::clog);
  int votes = 0;
  int compared = 0;
  for (int seed = 0; seed < support::input_count(); ++seed) {
    const support::Chain chain = support::small_chain(static_cast<std::uint64_t>(seed));
    const int closure = seed % 6 - (seed % 30 == 5 ? 6 : 0);
    const int trials = seed % 5 - 1;
    if (!support::determination_ends(chain, closure)) continue;
    ++compared;
    const auto run = [&](auto find) {
      return trace(seed, [&] {
        int counts[42];
        std::fill_n(counts, 42, 77);
        std::ostringstream text;
        text << find(chain, counts, closure, trials);
        for (const int count : counts) text << " " << count;
        votes += counts[1];
        return text.str();
      });
    };
    ASSERT_EQ(run(FindOneKnot), run(reference::FindOneKnot)) << "seed " << seed;
  }
  EXPECT_GT(votes, 0);
  EXPECT_GT(compared, support::input_count() / 2);
}

}  // namespace
