#include "engine/fingerprint/ray_sweep.hpp"

#include <gtest/gtest.h>

#include <span>
#include <vector>

#include "engine/random_chains.hpp"
#include "korvex/diagram.hpp"
#include "korvex/directions.hpp"
#include "korvex/identify.hpp"

namespace korvex {
namespace {

std::string type_of(std::span<const Point> chain, const Point& ray) {
  return identify(Diagram::of_open_chain(chain, ray)).name;
}

std::vector<Point> small(std::vector<Point> chain) {
  for (Point& p : chain) p = 0.1 * p;
  return chain;
}

TEST(RaySweep, IsFreeOnlyWhereTheLongerSubChainHasTheSameType) {
  std::size_t free = 0;
  std::size_t met = 0;
  std::size_t changed = 0;
  for (unsigned seed = 0; seed < 6; ++seed) {
    const auto chain = small(compact_walk(seed, 40));
    const std::size_t last = chain.size() - 1;
    RaySweep sweep(chain);
    for (std::uint64_t k = 0; k < 40; ++k) {
      const Point ray = random_direction(seed, k);
      const std::string whole = type_of(chain, ray);
      const bool at_end = sweep.is_free(ray, {last - 1, last}, 0, last - 1);
      const bool at_begin = sweep.is_free(ray, {1, 0}, 1, last);
      const std::string without_last = type_of(std::span(chain).first(last), ray);
      const std::string without_first = type_of(std::span(chain).subspan(1), ray);
      EXPECT_TRUE(!at_end || whole == without_last);
      EXPECT_TRUE(!at_begin || whole == without_first);
      for (const bool is_free : {at_end, at_begin}) ++(is_free ? free : met);
      if (whole != without_last) ++changed;
    }
  }
  EXPECT_GT(free, 100u);
  EXPECT_GT(met, 100u);
  EXPECT_GT(changed, 5u);
}

// A chain in the plane z = 0 that is to grow by a bond over, or under, which its first one passes.
std::vector<Point> with_first_bond_at(double height) {
  return {{-1, 0.5, height}, {1, 0.5, height}, {1, 2, 0}, {0, 2, 0}, {0, 0, 0}, {0.3, 1, 0}};
}

TEST(RaySweep, MeetsWhatIsAboveTheNewBondAndNotWhatIsBelow) {
  const auto above = with_first_bond_at(0.5);
  const auto below = with_first_bond_at(-0.5);
  EXPECT_FALSE(RaySweep(above).is_free({0, 0, 1}, {4, 5}, 0, 4));
  EXPECT_TRUE(RaySweep(below).is_free({0, 0, 1}, {4, 5}, 0, 4));
  EXPECT_TRUE(RaySweep(above).is_free({0, 0, -1}, {4, 5}, 0, 4));
  EXPECT_FALSE(RaySweep(below).is_free({0, 0, -1}, {4, 5}, 0, 4));
}

TEST(RaySweep, DecidesNothingWhereTheStripHasNoWidth) {
  const std::vector<Point> chain{{1, 0, 0}, {0, 1, 0}, {0, 0, 0}, {0, 0, 1}};
  EXPECT_FALSE(RaySweep(chain).is_free({0, 0, 1}, {2, 3}, 0, 2));
  EXPECT_FALSE(RaySweep(chain).is_free({0, 0, -1}, {2, 3}, 0, 2));
}

TEST(RaySweep, DecidesNothingWhereTheOtherRayLiesInTheStrip) {
  const std::vector<Point> chain{{0.5, 0, -1}, {3, 0.3, -1}, {0, 1, 0}, {0, 0, 0}, {1, 0, 0}};
  EXPECT_FALSE(RaySweep(chain).is_free({0, 0, 1}, {3, 4}, 0, 3));
  EXPECT_TRUE(RaySweep(chain).is_free({0, 0, -1}, {3, 4}, 1, 3));
}

}  // namespace
}  // namespace korvex
