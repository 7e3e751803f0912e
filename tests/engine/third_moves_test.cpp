#include "engine/diagram/third_moves.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

#include "engine/diagram/plane_diagram.hpp"
#include "engine/diagram/trusted_diagram.hpp"
#include "engine/identify/canonical_code.hpp"
#include "engine/invariants/of_codes.hpp"
#include "korvex/homfly.hpp"
#include "korvex/signature.hpp"
#include "support/diagrams.hpp"

namespace korvex {
namespace {

// A braid that is no table knot's shortest one, with many triangles.
GaussCode braid() {
  const std::vector<int> word{1, 2, 1, -3, 2, 1, 2, -3, 2, 3, -1, 2, -1, 2, 2};
  return Diagram::of_gauss_code(support::closed_braid(4, word)).code();
}

std::size_t faces(const GaussCode& code) {
  PlaneDiagram diagram;
  diagram.draw(code, Curve::kClosed);
  return diagram.faces();
}

TEST(ThirdMoves, KeepTheKnotTheCrossingsAndTheWrithe) {
  const GaussCode code = braid();
  const auto moved = third_moves(code);
  ASSERT_GE(moved.size(), 2U);
  for (const GaussCode& other : moved) {
    EXPECT_EQ(faces(other), other.size() / 2 + 2);
    EXPECT_EQ(TrustedDiagram::of(other).writhe(), TrustedDiagram::of(code).writhe());
    EXPECT_EQ(homfly(other), homfly(code));
    EXPECT_EQ(signature(other), signature(code));
    EXPECT_NE(canonical_code(other), canonical_code(code));
  }
}

TEST(ThirdMoves, CanBeTakenBack) {
  const GaussCode code = braid();
  const std::string canonical = canonical_code(code);
  for (const GaussCode& moved : third_moves(code)) {
    const auto back = third_moves(moved);
    EXPECT_TRUE(std::any_of(back.begin(), back.end(), [&](const GaussCode& again) {
      return canonical_code(again) == canonical;
    }));
  }
}

TEST(ThirdMoves, OfAlternatingAndSmallDiagramsAreNone) {
  EXPECT_TRUE(third_moves({}).empty());
  for (const int turns : {1, 3, 5})
    EXPECT_TRUE(
        third_moves(Diagram::of_gauss_code(support::torus_knot_code(2, turns)).code()).empty());
  const Diagram alternating = Diagram::of_gauss_code(support::closed_braid(3, {1, -2, 1, -2}));
  EXPECT_TRUE(third_moves(alternating.code()).empty());
}

}  // namespace
}  // namespace korvex
