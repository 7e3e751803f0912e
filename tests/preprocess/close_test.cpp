#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>

#include "preprocess.h"
#include "support/chains.hpp"
#include "support/knot_key.hpp"

namespace {

using support::Chain;

struct Closure {
  std::string name;
  int (*close)(Chain& chain, double factor);
};

void PrintTo(const Closure& closure, std::ostream* out) { *out << closure.name; }

const std::vector<Closure> kClosures{
    {"Out", CloseChain_OUT},
    {"TwoPoints", CloseChain_2points},
    {"OnePoint", CloseChain_1point},
    {"OneDirection", [](Chain& chain, double) { return CloseChain_1direction(chain); }}};

ChainAtom centroid(const Chain& chain) {
  ChainAtom c{0, 0, 0, 0};
  for (const ChainAtom& a : chain) c = {c.x + a.x, c.y + a.y, c.z + a.z, 0};
  const auto n = static_cast<double>(chain.size());
  return {c.x / n, c.y / n, c.z / n, 0};
}

double distance(const ChainAtom& a, const ChainAtom& b) {
  return std::hypot(a.x - b.x, a.y - b.y, a.z - b.z);
}

double radius(const Chain& chain) {
  double r = 0;
  for (const ChainAtom& a : chain) r = std::max(r, distance(a, centroid(chain)));
  return r;
}

double distance_to_segment(const ChainAtom& p, const ChainAtom& a, const ChainAtom& b) {
  const double length2 = distance(a, b) * distance(a, b);
  const double t =
      ((p.x - a.x) * (b.x - a.x) + (p.y - a.y) * (b.y - a.y) + (p.z - a.z) * (b.z - a.z)) / length2;
  const double s = std::min(1.0, std::max(0.0, t));
  return distance(p, {a.x + s * (b.x - a.x), a.y + s * (b.y - a.y), a.z + s * (b.z - a.z), 0});
}

// The atoms that a closure appended; checks that the old ones are untouched.
Chain added(const Chain& before, const Chain& after) {
  EXPECT_GE(after.size(), before.size());
  const auto end = after.begin() + static_cast<std::ptrdiff_t>(before.size());
  EXPECT_TRUE(support::same_atoms(Chain(after.begin(), end), before));
  return Chain(end, after.end());
}

bool finite(const Chain& chain) {
  for (const ChainAtom& a : chain) {
    if (!std::isfinite(a.x) || !std::isfinite(a.y) || !std::isfinite(a.z)) return false;
  }
  return true;
}

class EveryClosure : public testing::TestWithParam<Closure> {
 protected:
  // As callers do, but not for ever.
  static int close_with_patience(Chain& chain, double factor) {
    for (int attempt = 0; attempt < 100; ++attempt) {
      const int answer = GetParam().close(chain, factor);
      if (answer != -1) return answer;
    }
    ADD_FAILURE() << "100 attempts failed";
    return -1;
  }
};

INSTANTIATE_TEST_SUITE_P(Closures, EveryClosure, testing::ValuesIn(kClosures),
                         [](const auto& test) { return test.param.name; });

TEST_P(EveryClosure, AppendsAtomsWithoutNumberAndLeavesTheOthers) {
  for (std::uint64_t seed = 1; seed <= 50; ++seed) {
    std::srand(static_cast<unsigned>(seed));
    const Chain chain = support::confined_walk(2 + static_cast<int>(seed), 4, seed);
    Chain closed = chain;
    ASSERT_EQ(GetParam().close(closed, 1.25), 0);
    const Chain points = added(chain, closed);
    ASSERT_FALSE(points.empty());
    EXPECT_TRUE(finite(points));
    for (const ChainAtom& a : points) EXPECT_EQ(a.id, 0);
  }
}

TEST_P(EveryClosure, PutsItsPointsOutsideTheChain) {
  for (std::uint64_t seed = 1; seed <= 50; ++seed) {
    std::srand(static_cast<unsigned>(seed));
    const Chain chain = support::confined_walk(60, 4, seed);
    Chain closed = chain;
    ASSERT_EQ(GetParam().close(closed, 1.25), 0);
    const Chain points = added(chain, closed);
    for (std::size_t k = 0; k < points.size(); ++k) {
      EXPECT_GT(distance(points[k], centroid(chain)), 1.2499 * radius(chain));
      if (k > 0) {
        EXPECT_GT(distance_to_segment(centroid(chain), points[k - 1], points[k]),
                  1.1249 * radius(chain));
      }
    }
  }
}

TEST_P(EveryClosure, IsReproducedBySrand) {
  const Chain chain = support::confined_walk(60, 4, 5);
  Chain first = chain, second = chain;
  std::srand(77);
  ASSERT_EQ(GetParam().close(first, 1.25), 0);
  std::srand(77);
  ASSERT_EQ(GetParam().close(second, 1.25), 0);
  EXPECT_TRUE(support::same_atoms(first, second));
}

TEST_P(EveryClosure, ReturnsChainsWithNothingToCloseUnchanged) {
  const ChainAtom a{1, 2, 3, 7}, b{2, 2, 3, 8};
  for (const Chain& chain : {Chain{}, Chain{a}, Chain{a, a}, Chain{a, b, a}, Chain(5, a)}) {
    Chain closed = chain;
    EXPECT_EQ(GetParam().close(closed, 1.25), 0);
    EXPECT_TRUE(support::same_atoms(closed, chain));
  }
}

TEST_P(EveryClosure, RefusesWhatNoAttemptCanClose) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double infinity = std::numeric_limits<double>::infinity();
  for (const double bad : {nan, infinity, -infinity, 1.7e308}) {
    const Chain chain{{-1e308, 0, 0, 1}, {bad, 1, 0, 2}, {0, 0, 1, 3}};
    Chain closed = chain;
    EXPECT_EQ(GetParam().close(closed, 1.25), -2) << bad;
    EXPECT_EQ(closed.size(), chain.size());
  }
}

TEST_P(EveryClosure, RefusesChainsBelowTheResolutionOfTheirPlace) {
  const Chain chain{{2.75, -7.9e288, 3.3e-294, 1}, {2.75, -7.9e288, 0, 2}};
  Chain closed = chain;
  EXPECT_EQ(GetParam().close(closed, 1.25), -2);
  EXPECT_TRUE(support::same_atoms(closed, chain));
}

TEST_P(EveryClosure, ClosesDegenerateChains) {
  const std::vector<Chain> chains{
      {{0, 0, 0, 1}, {1, 0, 0, 2}},                              // opposite ends
      {{0, 0, 0, 1}, {1, 0, 0, 2}, {2, 0, 0, 3}, {3, 0, 0, 4}},  // a straight line
      {{0, 0, 0, 1}, {4, 0, 0, 2}, {-4, 0, 0, 3}, {0, 3, 0, 4}, {0, -3, 0, 5}, {1e-9, 0, 0, 6}},
      {{0, 0, 0, 1}, {3, 0, 0, 2}, {-4, 0, 0, 3}, {1, 0, 0, 4}},   // first end at the centre
      {{1, 0, 0, 1}, {-3, 1, 0, 2}, {0, -1, 0, 3}, {2, 0, 0, 4}},  // both on one ray
      {{1e-300, 0, 0, 1}, {0, 1e-300, 0, 2}, {0, 0, 1e-300, 3}},
      {{1e150, 0, 0, 1}, {0, 1e150, 0, 2}, {0, 0, 1e150, 3}},
      {{1e9, 1e9, 1e9, 1}, {1e9 + 1, 1e9, 1e9, 2}, {1e9, 1e9 + 1, 1e9, 3}}};
  for (const Chain& chain : chains) {
    std::srand(3);
    Chain closed = chain;
    EXPECT_EQ(close_with_patience(closed, 1.25), 0);
    const Chain points = added(chain, closed);
    EXPECT_TRUE(finite(points));
    ASSERT_FALSE(points.empty());
    for (std::size_t k = chain.size(); k <= closed.size(); ++k) {
      const ChainAtom &p = closed[k - 1], &q = closed[k % closed.size()];
      EXPECT_GT(distance(p, q), 0) << "edge " << k;
    }
  }
}

TEST_P(EveryClosure, KeepsTheKnotOfAChainWithItsEndsFarOutside) {
  // A trefoil with long straight tails has one knot, whichever way the tails are joined outside.
  Chain chain = support::torus_knot(2, 3, 80);
  chain.insert(chain.begin(), {30, 2, 1, 0});
  chain.push_back({30, -2, -1, 0});
  for (unsigned seed = 1; seed <= 40; ++seed) {
    std::srand(seed);
    Chain closed = chain;
    ASSERT_EQ(close_with_patience(closed, 1.25), 0);
    EXPECT_EQ(support::knot_key(closed, 5), support::key_of_polynomial({1, -1, 1})) << seed;
  }
}

TEST(CloseChain, RefusesFactorsThatDoNotLeaveTheChain) {
  const Chain chain = support::confined_walk(20, 3, 1);
  for (const double factor : {1.0, 0.5, 0.0, -2.0, std::numeric_limits<double>::quiet_NaN(),
                              std::numeric_limits<double>::infinity()}) {
    for (const auto close : {CloseChain_OUT, CloseChain_2points, CloseChain_1point}) {
      Chain closed = chain;
      EXPECT_EQ(close(closed, factor), -2) << factor;
      EXPECT_TRUE(support::same_atoms(closed, chain));
    }
  }
}

TEST(CloseChain, KeepsItsChordsOutsideForEveryFactor) {
  const Chain chain = support::confined_walk(30, 3, 2);
  for (const double factor : {1.001, 1.01, 1.25, 2.0, 100.0, 1e12}) {
    for (const auto close : {CloseChain_OUT, CloseChain_2points}) {
      for (unsigned seed = 1; seed <= 20; ++seed) {
        std::srand(seed);
        Chain closed = chain;
        ASSERT_EQ(close(closed, factor), 0);
        const Chain points = added(chain, closed);
        EXPECT_LE(points.size(), 200U);
        for (std::size_t k = 1; k < points.size(); ++k) {
          EXPECT_GT(distance_to_segment(centroid(chain), points[k - 1], points[k]),
                    (0.4999 + 0.4999 * factor) * radius(chain));
        }
      }
    }
  }
}

TEST(CloseChainOut, GoesStraightOutwardsAndDrawsNothing) {
  const Chain chain = support::confined_walk(40, 3, 3);
  Chain closed = chain;
  std::srand(9);
  const int expected_draw = std::rand();
  std::srand(9);
  ASSERT_EQ(CloseChain_OUT(closed, 1.25), 0);
  EXPECT_EQ(std::rand(), expected_draw);
  const ChainAtom c = centroid(chain);
  for (const auto& [end, out] :
       {std::pair{chain.back(), closed[chain.size()]}, std::pair{chain.front(), closed.back()}}) {
    EXPECT_NEAR(distance(out, c), 1.25 * radius(chain), 1e-12);
    EXPECT_NEAR(distance(c, end) + distance(end, out), distance(c, out), 1e-12);
  }
}

TEST(CloseChain1Direction, CarriesBothEndsTheSameWay) {
  const Chain chain = support::confined_walk(40, 3, 3);
  Chain closed = chain;
  std::srand(4);
  ASSERT_EQ(CloseChain_1direction(closed), 0);
  ASSERT_EQ(closed.size(), chain.size() + 2);
  const ChainAtom &p = closed[chain.size()], &q = closed.back();
  const double l1 = distance(chain.back(), p), l2 = distance(chain.front(), q);
  EXPECT_NEAR((p.x - chain.back().x) / l1, (q.x - chain.front().x) / l2, 1e-12);
  EXPECT_NEAR((p.y - chain.back().y) / l1, (q.y - chain.front().y) / l2, 1e-12);
  EXPECT_NEAR((p.z - chain.back().z) / l1, (q.z - chain.front().z) / l2, 1e-12);
}

// Eight octants and two halves by height of 8,000 points: within 6 standard deviations.
TEST(CloseChain1Point, ChoosesUniformPointsOfTheSphere) {
  const Chain chain{{-1, 0, 0, 1}, {0, 0, 0, 2}, {1, 0, 0, 3}};
  std::srand(12345);
  const int count = 8000;
  std::array<int, 8> octants{};
  int outer = 0;
  for (int k = 0; k < count; ++k) {
    Chain closed = chain;
    ASSERT_EQ(CloseChain_1point(closed, 2), 0);
    ASSERT_EQ(closed.size(), 4U);
    const ChainAtom& p = closed.back();
    EXPECT_NEAR(distance(p, {0, 0, 0, 0}), 2, 1e-12);
    ++octants[static_cast<std::size_t>((p.x > 0) + 2 * (p.y > 0) + 4 * (p.z > 0))];
    outer += std::fabs(p.x) > 1 ? 1 : 0;  // half of the sphere's area
  }
  for (const int octant : octants)
    EXPECT_NEAR(octant, count / 8.0, 6 * std::sqrt(count * 7 / 64.0));
  EXPECT_NEAR(outer, count / 2.0, 6 * std::sqrt(count / 4.0));
}

TEST(CloseChain2Points, JoinsEachEndToItsOwnPoint) {
  const Chain chain{{-1, 0, 0, 1}, {0, 0, 0, 2}, {1, 0, 0, 3}};
  std::srand(99);
  double sum = 0;
  const int count = 4000;
  for (int k = 0; k < count; ++k) {
    Chain closed = chain;
    ASSERT_EQ(CloseChain_2points(closed, 2), 0);
    const ChainAtom &p = closed[3], &q = closed.back();
    sum += (p.x * q.x + p.y * q.y + p.z * q.z) / 4;
  }
  EXPECT_NEAR(sum / count, 0, 6 / std::sqrt(3.0 * count));  // independent: the cosine averages out
}

}  // namespace
