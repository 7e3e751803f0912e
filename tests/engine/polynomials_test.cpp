// The HOMFLY-PT and the Jones polynomial.
#include <gtest/gtest.h>

#include <cstdint>
#include <map>

#include "korvex/error.hpp"
#include "korvex/homfly.hpp"
#include "korvex/jones.hpp"
#include "support/diagrams.hpp"
#include "support/knot_rows.hpp"

namespace korvex {
namespace {

// a = 1/t, z = t^1/2 - t^-1/2, z^2 = t - 2 + 1/t.
JonesPolynomial jones_from(const HomflyPolynomial& homfly) {
  std::map<int, std::int64_t> sum;
  for (const HomflyTerm& term : homfly) {
    JonesPolynomial part = {{-term.a, term.coefficient}};
    for (int k = 0; k < term.z; k += 2) part = product(part, {{-1, 1}, {0, -2}, {1, 1}});
    for (const JonesTerm& t : part) sum[t.exponent] += t.coefficient;
  }
  JonesPolynomial result;
  for (const auto& [exponent, coefficient] : sum)
    if (coefficient != 0) result.push_back({exponent, coefficient});
  return result;
}

TEST(Homfly, IsThatOfEveryPrimeKnotToTenCrossings) {
  for (const support::KnotRow& row : support::knot_rows()) {
    const Diagram diagram = Diagram::of_pd(row.pd);
    const auto polynomial = homfly(diagram);
    ASSERT_TRUE(polynomial) << row.name;
    EXPECT_EQ(text_of(*polynomial), row.homfly) << row.name;
    EXPECT_EQ(homfly(diagram.mirror()), mirror(*polynomial)) << row.name;
    EXPECT_EQ(homfly(diagram.reversed()), polynomial) << row.name;
    EXPECT_EQ(homfly_of_text(text_of(*polynomial)), *polynomial) << row.name;
  }
}

TEST(Jones, IsThatOfEveryPrimeKnotToTenCrossings) {
  for (const support::KnotRow& row : support::knot_rows()) {
    const Diagram diagram = Diagram::of_pd(row.pd);
    const auto polynomial = jones(diagram);
    ASSERT_TRUE(polynomial) << row.name;
    EXPECT_EQ(text_of(*polynomial), row.jones) << row.name;
    EXPECT_EQ(jones(diagram.mirror()), mirror(*polynomial)) << row.name;
    EXPECT_EQ(jones(diagram.reversed()), polynomial) << row.name;
    EXPECT_EQ(jones_of_text(text_of(*polynomial)), *polynomial) << row.name;
  }
}

TEST(Jones, IsAValueOfHomfly) {
  for (const support::KnotRow& row : support::knot_rows()) {
    const Diagram diagram = Diagram::of_pd(row.pd);
    EXPECT_EQ(jones_from(*homfly(diagram)), *jones(diagram)) << row.name;
  }
}

TEST(Homfly, OfAConnectedSumIsTheProduct) {
  for (std::size_t k = 0; k < support::knot_rows().size(); k += 12) {
    const Diagram a = Diagram::of_pd(support::knot_rows()[k].pd);
    const Diagram b = Diagram::of_pd(support::knot_rows()[(7 * k + 3) % 60].pd).mirror();
    const Diagram sum = a.connected_sum(b);
    EXPECT_EQ(*homfly(sum), product(*homfly(a), *homfly(b))) << support::knot_rows()[k].name;
    EXPECT_EQ(*jones(sum), product(*jones(a), *jones(b))) << support::knot_rows()[k].name;
  }
}

TEST(Homfly, AndJonesAreOneForTheUnknot) {
  for (const char* code : {"", "O1+U1+", "U1-O1-U2+O2+"}) {
    const Diagram diagram = Diagram::of_gauss_code(code);
    EXPECT_EQ(text_of(homfly(diagram).value_or(HomflyPolynomial{})), "(0,0):1") << code;
    EXPECT_EQ(text_of(jones(diagram).value_or(JonesPolynomial{})), "0:1") << code;
  }
}

// Two crossings clasped and `twists` half twists, an odd number. Changing a twist gives the knot
// with two twists less, smoothing it the same link for all.
HomflyPolynomial homfly_of_twist_knot(int twists) {
  HomflyPolynomial polynomial{{-twists - 3, 0, -1}, {-twists - 1, 0, 1}};
  for (int a = -twists - 1; a < -2; a += 2) polynomial.push_back({a, 2, 1});
  polynomial.push_back({-2, 0, 1});
  polynomial.push_back({-2, 2, 1});
  return polynomial;
}

TEST(Polynomials, OfTwistKnotsHaveExponentsOfAnySize) {
  for (const int twists : {3, 5, 21, 32'999}) {
    const Diagram diagram = Diagram::of_gauss_code(support::odd_pretzel(1, 1, twists));
    EXPECT_EQ(diagram.crossings(), static_cast<std::size_t>(twists) + 2);
    EXPECT_EQ(homfly(diagram), homfly_of_twist_knot(twists)) << twists;
  }
}

TEST(Polynomials, RefuseOtherText) {
  for (const char* text : {"1", "1:", "1:x", "a", "1:1,2:2"})
    EXPECT_THROW(jones_of_text(text), Error);
  for (const char* text : {"(1,2)", "(1):2", "1,2:3"}) EXPECT_THROW(homfly_of_text(text), Error);
}

}  // namespace
}  // namespace korvex
