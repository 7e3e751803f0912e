// The crossings of a projection beside those that looking at all pairs of segments finds.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>
#include <span>
#include <tuple>
#include <vector>

#include "engine/projection/projection.hpp"
#include "engine/random_chains.hpp"
#include "korvex/directions.hpp"
#include "support/simd_targets.hpp"

namespace korvex {
namespace {

// Segments that cross, the over one first, and whether they cross positively.
using Crossing = std::tuple<std::int32_t, std::int32_t, bool>;

std::vector<Crossing> crossings_of(const ChainCode& chain) {
  std::vector<Crossing> crossings;
  for (std::size_t k = 0; k < chain.code.size(); ++k) {
    const Passage& passage = chain.code[k];
    if (passage.over)
      crossings.emplace_back(chain.segments[k],
                             chain.segments[static_cast<std::size_t>(passage.mate)],
                             passage.positive);
  }
  std::sort(crossings.begin(), crossings.end());
  return crossings;
}

// By triple products alone, without a frame of the viewer: two segments cross when each one's ends
// lie on two sides of the plane through the other and the direction of view.
std::vector<Crossing> crossings_of_all_pairs(std::span<const Point> chain, const Point& direction,
                                             Curve curve) {
  const auto count = chain.size() - (curve == Curve::kOpen ? 1 : 0);
  const auto from = [&](std::size_t k) { return chain[k]; };
  const auto to = [&](std::size_t k) { return chain[k + 1 < chain.size() ? k + 1 : 0]; };
  std::vector<Crossing> crossings;
  for (std::size_t a = 0; a < count; ++a) {
    for (std::size_t b = a + 2; b < count; ++b) {
      if (curve == Curve::kClosed && a == 0 && b + 1 == count) continue;
      const Point along_a = to(a) - from(a);
      const Point along_b = to(b) - from(b);
      const auto side_of_a = [&](const Point& p) {
        return dot(direction, cross(along_a, p - from(a)));
      };
      const auto side_of_b = [&](const Point& p) {
        return dot(direction, cross(along_b, p - from(b)));
      };
      if ((side_of_a(from(b)) > 0) == (side_of_a(to(b)) > 0)) continue;
      if ((side_of_b(from(a)) > 0) == (side_of_b(to(a)) > 0)) continue;
      const double turn = dot(direction, cross(along_a, along_b));
      const double height = dot(from(a) - from(b), cross(along_a, along_b));
      const bool a_over = (height > 0) == (turn > 0);
      const auto first = static_cast<std::int32_t>(a_over ? a : b);
      const auto second = static_cast<std::int32_t>(a_over ? b : a);
      crossings.emplace_back(first, second, a_over == (turn > 0));
    }
  }
  std::sort(crossings.begin(), crossings.end());
  return crossings;
}

std::vector<Point> lattice_ring(unsigned seed, int half) {
  std::mt19937 generator(seed);
  const std::array<Point, 3> axes{Point{1, 0, 0}, Point{0, 1, 0}, Point{0, 0, 1}};
  std::vector<Point> steps;
  for (int k = 0; k < half; ++k) {
    steps.push_back(axes[generator() % 3]);
    steps.push_back(-steps.back());
  }
  for (std::size_t k = steps.size(); k > 1; --k) std::swap(steps[generator() % k], steps[k - 1]);
  std::vector<Point> ring{{0, 0, 0}};
  for (const Point& step : steps) ring.push_back(ring.back() + step);
  ring.pop_back();
  return ring;
}

void expect_all_crossings(const std::vector<Point>& chain, const Point& direction, Curve curve) {
  const GeneralView view = general_view(chain, direction, curve);
  EXPECT_EQ(crossings_of(view.projection.chain_code()),
            crossings_of_all_pairs(view.chain(chain), view.direction, curve));
}

TEST(CrossingSearch, FindsTheCrossingsOfAllPairsOnEveryInstructionSet) {
  for (const std::int64_t target : support::simd_targets()) {
    const support::ForcedTarget forced(target);
    SCOPED_TRACE(support::simd_target_name(target));
    for (const Curve curve : {Curve::kOpen, Curve::kClosed}) {
      for (const int steps : {2, 3, 4, 15, 16, 17, 40, 255, 256, 300, 700}) {
        const auto seed = static_cast<unsigned>(steps);
        const Point direction = random_direction(seed, 0);
        expect_all_crossings(random_walk(seed, steps), direction, curve);
        expect_all_crossings(compact_walk(seed, steps), direction, curve);
      }
    }
  }
}

TEST(CrossingSearch, FindsTheCrossingsOfAllPairsOfChainsThatTouchThemselves) {
  for (unsigned seed = 0; seed < 6; ++seed) {
    const auto ring = lattice_ring(seed, 60);
    for (const Point& direction : {Point{0, 0, 1}, random_direction(seed, 0)}) {
      expect_all_crossings(ring, direction, Curve::kClosed);
      expect_all_crossings(ring, direction, Curve::kOpen);
    }
  }
}

}  // namespace
}  // namespace korvex
