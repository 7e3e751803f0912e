// Whatever may take long stops when it is asked to.
#include <gtest/gtest.h>

#include <functional>
#include <stop_token>
#include <string>
#include <utility>
#include <vector>

#include "korvex/alexander.hpp"
#include "korvex/colourings.hpp"
#include "korvex/error.hpp"
#include "korvex/homfly.hpp"
#include "korvex/identify.hpp"
#include "korvex/jones.hpp"
#include "korvex/signature.hpp"
#include "support/diagrams.hpp"

namespace korvex {
namespace {

TEST(Stopping, EndsEveryInvariantAndSimplification) {
  const Diagram knot = Diagram::of_gauss_code(support::torus_knot_code(5, 7));
  std::stop_source source;
  const korvex::Run run{.stop = source.get_token()};
  const std::vector<std::pair<std::string, std::function<void()>>> computations{
      {"alexander_key", [&] { alexander_key(knot, run); }},
      {"alexander_polynomial", [&] { alexander_polynomial(knot, run); }},
      {"homfly", [&] { homfly(knot, run); }},
      {"jones", [&] { jones(knot, run); }},
      {"signature", [&] { signature(knot, run); }},
      {"parabolic_colourings", [&] { parabolic_colourings(knot, 3, run); }},
      {"simplified", [&] { knot.simplified(run); }},
      {"identify", [&] { identify(knot, Detail::kHand, run); }},
  };
  for (const auto& [name, compute] : computations) EXPECT_NO_THROW(compute()) << name;
  source.request_stop();
  for (const auto& [name, compute] : computations) {
    try {
      compute();
      ADD_FAILURE() << name << " went on";
    } catch (const Error& error) {
      EXPECT_EQ(error.code(), ErrorCode::kCancelled) << name;
    }
  }
}

}  // namespace
}  // namespace korvex
