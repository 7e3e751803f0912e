#include <gtest/gtest.h>

#include <vector>

#include "engine/projection/projection.hpp"
#include "korvex/diagram.hpp"
#include "korvex/directions.hpp"
#include "korvex/error.hpp"
#include "korvex/fingerprint.hpp"
#include "korvex/ring.hpp"

namespace korvex {
namespace {

const Point kUp{0, 0, 1};

TEST(NudgedDirection, IsNearButNotTheSame) {
  for (unsigned attempt = 0; attempt < 8; ++attempt) {
    const double moved = norm(nudged(kUp, attempt) - kUp);
    EXPECT_GT(moved, 1e-8);
    EXPECT_LT(moved, 2e-5);
    EXPECT_NE(nudged(kUp, attempt), nudged(kUp, attempt + 1));
  }
}

TEST(GeneralView, OfAChainInGeneralPositionIsThatOfTheGivenPoints) {
  const std::vector<Point> chain{{0, 0, 0}, {4, 1, 1}, {3, 4, 0}, {2, -2, 3}, {0, 3, 1}};
  const GeneralView view = general_view(chain, kUp);
  EXPECT_EQ(view.direction, kUp);
  EXPECT_TRUE(view.moved.empty());
  EXPECT_EQ(view.chain(chain).data(), chain.data());
}

TEST(GeneralView, OfAChainSeenEndOnIsThatOfTheGivenPointsFromAside) {
  const std::vector<Point> chain{{0, 0, 0}, {0, 0, 1}, {1, 0, 1}, {1, 0, 0}, {2, 1, 0}, {1, 0, 2}};
  const GeneralView view = general_view(chain, kUp);
  EXPECT_NE(view.direction, kUp);
  EXPECT_EQ(view.chain(chain).data(), chain.data());
}

TEST(GeneralView, OfAChainThatTouchesItselfIsThatOfPointsMovedALittle) {
  const std::vector<Point> chain{{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {1, 0, 0}, {1, -2, 0}};
  const GeneralView view = general_view(chain, kUp);
  ASSERT_EQ(view.moved.size(), chain.size());
  for (std::size_t i = 0; i < chain.size(); ++i) {
    EXPECT_LT(norm(view.moved[i] - chain[i]), 1e-3);
    EXPECT_EQ(view.chain(chain)[i], view.moved[i]);
  }
}

TEST(GeneralView, OfFewPointsIsThatOfTheGivenPoints) {
  for (std::size_t count = 0; count <= 4; ++count) {
    const std::vector<Point> chain(count, Point{1, 2, 3});
    EXPECT_TRUE(general_view(chain, kUp).moved.empty()) << count;
  }
}

TEST(ChainsThatCannotBeSeen, AreRefusedByAllThatLook) {
  std::vector<Point> chain{{0, 0, 0}, {4, 1, 1}, {3, 4, 0}, {2, -2, 3}, {0, 3, 1}};
  chain[2].y = 1e301;
  EXPECT_THROW(require_usable(chain), Error);
  EXPECT_THROW(Diagram::of_polygon(chain, kUp), Error);
  EXPECT_THROW(Diagram::of_open_chain(chain, kUp), Error);
  EXPECT_THROW(examine_ring(chain), Error);
  EXPECT_THROW(fingerprint(chain), Error);
}

}  // namespace
}  // namespace korvex
