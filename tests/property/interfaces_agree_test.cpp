// The exported interface and the engine give one curve one answer, wherever both have one.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <set>
#include <string>
#include <vector>

#include "korvex.h"
#include "korvex/alexander.hpp"
#include "korvex/identify.hpp"
#include "korvex/votes.hpp"
#include "support/chains.hpp"

namespace {

using korvex::Diagram;
using support::Chain;

std::vector<korvex::Point> points_of(const Chain& chain) {
  std::vector<korvex::Point> points;
  for (const ChainAtom& atom : chain) points.push_back({atom.x, atom.y, atom.z});
  return points;
}

Diagram diagram_of(const Chain& ring) {
  return Diagram::of_polygon(points_of(ring), {0.3, 0.5, 0.8});
}

// By the exported interface, in the first direction without a problem; empty if there is none.
std::vector<std::int64_t> exported_polynomial(Chain ring, int max_crossings) {
  ChainReduce(ring, true);
  for (int direction = 0; direction < 60; ++direction) {
    polynomial<int> poly;
    double value = 0;
    const int named =
        FindTheKnotInParticularDirection_poly(ring, poly, value, direction, max_crossings);
    if (named == 1 && poly.size() > 0) return {poly.data().begin(), poly.data().end()};
  }
  return {};
}

bool has_entry(const std::string& plain) {
  FillKnotsArray();
  for (int ordinal = 0; ordinal < 39; ++ordinal) {
    const std::string entry = "|" + knotsArray[ordinal].name + "|";
    if (entry.find("|" + plain + "|") != std::string::npos) return true;
  }
  return plain == "0_1";
}

// What the exported interface calls the knot.
std::string exported_name(const std::vector<std::int64_t>& coefficients) {
  polynomial<int> poly(std::vector<int>(coefficients.begin(), coefficients.end()));
  return WhichKnot(poly);
}

TEST(Interfaces, FindTheSameAlexanderPolynomialOfRandomRings) {
  int compared = 0;
  std::set<std::vector<std::int64_t>> different;
  for (std::uint64_t seed = 1; seed <= 600; ++seed) {
    const int atoms = 8 + static_cast<int>(seed % 60);
    const Chain ring =
        seed % 2 == 0 ? support::gaussian_ring(atoms, seed) : support::compact_ring(atoms, seed);
    const auto exported = exported_polynomial(ring, 16);
    if (exported.empty()) continue;  // more than 16 crossings in every direction
    const auto engine = korvex::alexander_polynomial(diagram_of(ring)).small_coefficients();
    ASSERT_TRUE(engine);
    EXPECT_EQ(*engine, exported) << "seed " << seed;
    ++compared;
    different.insert(exported);
  }
  EXPECT_GE(compared, 400);
  EXPECT_GE(different.size(), 10u);
}

TEST(Interfaces, NameRandomRingsAlike) {
  int knotted = 0;
  for (std::uint64_t seed = 1; seed <= 600; ++seed) {
    const Chain ring = support::compact_ring(20 + static_cast<int>(seed % 40), seed);
    const auto exported = exported_polynomial(ring, 16);
    if (exported.empty()) continue;
    const auto identity = korvex::identify(diagram_of(ring));
    if (!identity.proven || identity.candidates.size() != 1) continue;
    const std::string plain = identity.candidates.front()->plain;
    if (!has_entry(plain)) continue;
    const std::string name = exported_name(exported);
    if (plain == "0_1") {
      EXPECT_EQ(name, "01") << "seed " << seed;
    } else {
      EXPECT_NE(("|" + name + "|").find("|" + plain + "|"), std::string::npos)
          << "seed " << seed << ": " << name << " and " << identity.name;
      ++knotted;
    }
  }
  EXPECT_GE(knotted, 50);
}

TEST(Interfaces, LatticeRingsHaveOnePolynomial) {
  int compared = 0;
  for (std::uint64_t seed = 1; seed <= 60; ++seed) {
    const Chain ring = support::lattice_ring(seed % 2 == 0, 60, 4, seed);
    const auto exported = exported_polynomial(ring, 16);
    if (exported.empty()) continue;
    EXPECT_EQ(korvex::alexander_polynomial(diagram_of(ring)).small_coefficients(), exported);
    ++compared;
  }
  EXPECT_GE(compared, 40);
}

// The share of the unknot in votes of both. Ends led to infinity and ends led to points on a sphere
// around the chain differ by less than the scatter that is allowed for here.
void expect_equal_shares(const Chain& chain, korvex::Closure closure, int exported_closure) {
  constexpr int kTrials = 400;
  constexpr double kFiveDeviations = 5 * 0.5 * 1.4142135623730951;  // of a difference, times root n
  int counts[42] = {};
  std::srand(7);
  FindMajorKnot(chain, counts, exported_closure, kTrials);
  korvex::VoteOptions options;
  options.closure = closure;
  options.sampling = korvex::Sampling::kIndependent;
  options.trials = kTrials;
  double unknotted = 0;
  for (const auto& type : korvex::vote(points_of(chain), options).types)
    if (type.type == "0_1") unknotted = type.share;
  EXPECT_NEAR(unknotted, counts[0] / double{kTrials}, kFiveDeviations / std::sqrt(kTrials));
}

TEST(Interfaces, VoteAlikeOnOpenChains) {
  for (std::uint64_t seed = 1; seed <= 6; ++seed) {
    const Chain chain = support::confined_walk(60, 3, seed);
    SCOPED_TRACE(seed);
    expect_equal_shares(chain, korvex::Closure::kTwoPoints, 2);
    expect_equal_shares(chain, korvex::Closure::kRays, 3);
    expect_equal_shares(chain, korvex::Closure::kRays, 4);
  }
}

}  // namespace
