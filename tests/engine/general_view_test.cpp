#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "engine/projection/projection.hpp"
#include "korvex/closure_map.hpp"
#include "korvex/diagram.hpp"
#include "korvex/directions.hpp"
#include "korvex/error.hpp"
#include "korvex/fingerprint.hpp"
#include "korvex/ring.hpp"
#include "korvex/votes.hpp"

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

// Unit steps on a lattice, touching itself, with one point `off` away.
std::vector<Point> touching_chain(double off) {
  return {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 0},   {0, 0, 1},
          {1, 0, 1}, {1, 0, 0}, {2, 0, 0}, {2, 1, 1}, {off, 1, 1}, {2, 2, 1}};
}

TEST(GeneralView, MovesPointsByFarLessThanTheirBondsHoweverFarOneLies) {
  for (const double off : {3.0, 1e3, 1e5, 5e6}) {
    const std::vector<Point> chain = touching_chain(off);
    const GeneralView view = general_view(chain, kUp);
    ASSERT_EQ(view.moved.size(), chain.size());
    for (std::size_t i = 0; i < chain.size(); ++i)
      EXPECT_LT(norm(view.moved[i] - chain[i]), 0.011) << off << ", point " << i;
  }
}

TEST(ChainsThatCannotBeSeen, NameThePointThatLiesTooFarOff) {
  for (const double off : {1e8, 1e9, 1e12, 1e200}) {
    const std::vector<Point> chain = touching_chain(off);
    const auto expect_named = [](const auto& look) {
      try {
        look();
        ADD_FAILURE() << "not refused";
      } catch (const Error& error) {
        EXPECT_NE(std::string(error.what()).find("points 10 and 11 lie so far apart"),
                  std::string::npos)
            << error.what();
      }
    };
    expect_named([&] { vote(chain); });
    expect_named([&] { closure_map(chain); });
    expect_named([&] { fingerprint(chain); });
    expect_named([&] { examine_ring(chain); });
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
