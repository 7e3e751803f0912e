// Alexander polynomials by independent methods.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <stop_token>
#include <string>
#include <vector>

#include "engine/invariants/modular.hpp"
#include "korvex/alexander.hpp"
#include "korvex/error.hpp"
#include "korvex/homfly.hpp"
#include "support/chains.hpp"
#include "support/diagrams.hpp"
#include "support/knot_rows.hpp"

namespace korvex {
namespace {

using modular::MersenneField;

constexpr MersenneField kField;

// The determinant of a minor of the full matrix of Wirtinger relations at one t: plain Gaussian
// elimination, without any of the library's colouring.
std::uint64_t dense_determinant(const GaussCode& code, std::uint64_t t) {
  const std::size_t n = code.size() / 2;
  std::vector<std::size_t> arc(code.size());
  std::size_t under = 0;
  for (std::size_t k = 0; k < code.size(); ++k) {
    arc[k] = under % n;
    if (!code[k].over) ++under;
  }
  std::vector<std::uint64_t> full(n * n, 0);
  for (std::size_t k = 0; k < code.size(); ++k) {
    if (code[k].over) continue;
    std::uint64_t* const row = &full[arc[k] * n];
    const auto add = [&](std::size_t column, std::uint64_t value) {
      row[column] = kField.add(row[column], value);
    };
    const std::size_t in = code[k].positive ? arc[k] : (arc[k] + 1) % n;
    const std::size_t out = code[k].positive ? (arc[k] + 1) % n : arc[k];
    add(arc[static_cast<std::size_t>(code[k].mate)], kField.subtract(1, t));
    add(in, t);
    add(out, kField.subtract(0, 1));
  }
  std::vector<std::uint64_t> minor;
  for (std::size_t row = 0; row + 1 < n; ++row)
    minor.insert(minor.end(), &full[row * n], &full[row * n] + n - 1);
  return modular::determinant(kField, minor, n - 1);
}

std::uint64_t residue_of_decimal(const std::string& text) {
  std::uint64_t value = 0;
  for (const char c : text)
    if (c != '-')
      value = kField.add(kField.multiply(value, 10), static_cast<std::uint64_t>(c - '0'));
  return text[0] == '-' ? kField.subtract(0, value) : value;
}

std::uint64_t value_at(const AlexanderPolynomial& polynomial, std::uint64_t t) {
  std::uint64_t value = 0;
  for (std::size_t k = polynomial.coefficients.size(); k-- > 0;)
    value = kField.add(kField.multiply(value, t), residue_of_decimal(polynomial.coefficients[k]));
  return value;
}

void expect_agreement(const Diagram& diagram) {
  const AlexanderPolynomial polynomial = alexander_polynomial(diagram);
  for (const std::uint64_t t : {2ULL, 12345ULL, 0xabcdef0123456ULL}) {
    const std::uint64_t inverse = modular::inverse(kField, t);
    const auto norm = [&](std::uint64_t a, std::uint64_t b) { return kField.multiply(a, b); };
    EXPECT_EQ(
        norm(value_at(polynomial, t), value_at(polynomial, inverse)),
        norm(dense_determinant(diagram.code(), t), dense_determinant(diagram.code(), inverse)));
  }
  const std::vector<std::string>& c = polynomial.coefficients;
  for (std::size_t k = 0; k < c.size(); ++k) EXPECT_EQ(c[k], c[c.size() - 1 - k]);
  const std::uint64_t at_one = value_at(polynomial, 1);
  EXPECT_TRUE(at_one == 1 || at_one == kField.subtract(0, 1));
}

// At a = 1 the HOMFLY-PT polynomial is Conway's, whose z^2 is t - 2 + 1/t.
std::vector<std::int64_t> from_homfly(const HomflyPolynomial& homfly) {
  std::map<int, std::int64_t> conway;
  for (const HomflyTerm& term : homfly) conway[term.z] += term.coefficient;
  std::map<int, std::int64_t> sum;
  for (const auto& [z, coefficient] : conway) {
    std::map<int, std::int64_t> power = {{0, coefficient}};
    for (int k = 0; k < z; k += 2) {
      std::map<int, std::int64_t> next;
      for (const auto& [e, c] : power) {
        next[e - 1] += c;
        next[e] -= 2 * c;
        next[e + 1] += c;
      }
      power = next;
    }
    for (const auto& [e, c] : power) sum[e] += c;
  }
  std::erase_if(sum, [](const auto& term) { return term.second == 0; });
  std::vector<std::int64_t> coefficients;
  const std::int64_t sign = sum.begin()->second < 0 ? -1 : 1;
  for (int e = sum.begin()->first; e <= sum.rbegin()->first; ++e)
    coefficients.push_back(sign * sum[e]);
  return coefficients;
}

Diagram random_diagram(int vertices, std::uint64_t seed) {
  support::Random random(seed);
  std::vector<Point> ring;
  for (int k = 0; k < vertices; ++k)
    ring.push_back({random.normal(), random.normal(), random.normal()});
  return Diagram::of_polygon(ring, {0, 0, 1});
}

TEST(AlexanderPolynomial, IsThatOfEveryPrimeKnotToTenCrossings) {
  for (const support::KnotRow& row : support::knot_rows()) {
    const Diagram diagram = Diagram::of_pd(row.pd);
    const AlexanderPolynomial polynomial = alexander_polynomial(diagram);
    EXPECT_EQ(polynomial.small_coefficients(), row.alexander) << row.name;
    EXPECT_EQ(polynomial.determinant(), std::to_string(row.determinant)) << row.name;
    EXPECT_EQ(alexander_polynomial(diagram.mirror()), polynomial) << row.name;
    EXPECT_EQ(from_homfly(*homfly(diagram)), row.alexander) << row.name;
  }
}

TEST(AlexanderPolynomial, IsOneForTheUnknot) {
  for (const char* code : {"", "O1+U1+", "U1-O1-U2+O2+"})
    EXPECT_EQ(alexander_polynomial(Diagram::of_gauss_code(code)).coefficients,
              std::vector<std::string>{"1"});
}

// (t^pq - 1)(t - 1) / ((t^p - 1)(t^q - 1)) has the coefficients of a numerical semigroup.
void expect_torus_knot(int p, int q) {
  const int degree = (p - 1) * (q - 1);
  std::vector<bool> in_semigroup(static_cast<std::size_t>(degree + 1), false);
  for (int a = 0; a <= degree; a += p)
    for (int b = a; b <= degree; b += q) in_semigroup[static_cast<std::size_t>(b)] = true;
  std::vector<std::int64_t> expected;
  for (int k = 0; k <= degree; ++k) {
    const bool here = in_semigroup[static_cast<std::size_t>(k)];
    const bool before = k > 0 && in_semigroup[static_cast<std::size_t>(k - 1)];
    expected.push_back(here - before);
  }
  const Diagram diagram = Diagram::of_gauss_code(support::torus_knot_code(p, q));
  EXPECT_EQ(alexander_polynomial(diagram).small_coefficients(), expected) << p << ' ' << q;
}

TEST(AlexanderPolynomial, OfTorusKnotsHasTheKnownForm) {
  for (const auto& [p, q] : {std::pair(2, 15), {3, 10}, {4, 7}, {5, 6}, {5, 12}})
    expect_torus_knot(p, q);
}

TEST(AlexanderPolynomial, OfTorusKnotsOfThousandsOfCrossingsHasTheKnownForm) {
  for (const auto& [p, q] : {std::pair(2, 3001), {3, 502}}) expect_torus_knot(p, q);
}

TEST(AlexanderPolynomial, OfPretzelKnotsOfThousandsOfCrossingsHasTheKnownForm) {
  for (const auto& [p, q, r] : {std::array{1001, 1001, 1001}, {1001, 801, -555}, {3, 5, -2001}}) {
    const std::int64_t form = std::int64_t{p} * q + std::int64_t{q} * r + std::int64_t{r} * p;
    const std::int64_t sign = form < 0 ? -1 : 1;
    const std::vector<std::int64_t> expected{sign * (form + 1) / 4, sign * (1 - form) / 2,
                                             sign * (form + 1) / 4};
    const auto polynomial =
        alexander_polynomial(Diagram::of_gauss_code(support::odd_pretzel(p, q, r)));
    EXPECT_EQ(polynomial.small_coefficients(), expected) << p << ' ' << q << ' ' << r;
    EXPECT_EQ(polynomial.determinant(), std::to_string(std::abs(form)));
  }
}

TEST(AlexanderPolynomial, OfAConnectedSumOfThousandsOfCrossingsIsTheProduct) {
  const Diagram figure_eight = Diagram::of_gauss_code(support::odd_pretzel(1, 1, -3));
  Diagram sum;
  for (int k = 0; k < 400; ++k) sum = sum.connected_sum(figure_eight);
  const AlexanderPolynomial polynomial = alexander_polynomial(sum);
  for (const std::uint64_t t : {2ULL, 0xabcdef0123456ULL}) {
    // 1 - 3t + t^2
    const std::uint64_t one =
        kField.add(kField.subtract(1, kField.multiply(3, t)), kField.multiply(t, t));
    EXPECT_EQ(value_at(polynomial, t), modular::power(kField, one, 400));
  }
}

TEST(AlexanderPolynomial, OfARandomDiagramOfManyCrossingsAgreesWithADenseDeterminant) {
  const bool thoroughly = std::getenv("KORVEX_LONG_TESTS") != nullptr;
  const Diagram diagram = random_diagram(thoroughly ? 190 : 130, 1).simplified();
  EXPECT_GE(diagram.crossings(), thoroughly ? 1000U : 500U);
  const AlexanderPolynomial polynomial = alexander_polynomial(diagram);
  const std::uint64_t t = 0xabcdef0123456ULL;
  const std::uint64_t value = value_at(polynomial, t);
  const std::uint64_t dense = dense_determinant(diagram.code(), t);
  // They agree up to a unit, sign t^k.
  std::uint64_t quotient = kField.multiply(dense, modular::inverse(kField, value));
  const std::uint64_t inverse_t = modular::inverse(kField, t);
  int power = 0;
  while (power < 3000 && quotient != 1 && quotient != kField.subtract(0, 1)) {
    quotient = kField.multiply(quotient, inverse_t);
    ++power;
  }
  EXPECT_LT(power, 3000);
}

TEST(AlexanderPolynomial, OfRandomDiagramsAgreesWithDenseDeterminants) {
  for (const int vertices : {6, 9, 12, 16, 20, 30})
    for (std::uint64_t seed = 0; seed < 4; ++seed) {
      const Diagram diagram = random_diagram(vertices, seed);
      if (diagram.crossings() == 0) continue;
      expect_agreement(diagram);
      EXPECT_EQ(alexander_polynomial(diagram.simplified()), alexander_polynomial(diagram));
      EXPECT_EQ(alexander_key(diagram.simplified()), alexander_key(diagram));
    }
}

TEST(AlexanderPolynomial, OfALargeDiagramHasCoefficientsBeyondSixtyFourBits) {
  const Diagram figure_eight = Diagram::of_gauss_code(support::odd_pretzel(1, 1, -3));
  Diagram sum;
  for (int k = 0; k < 40; ++k) sum = sum.connected_sum(figure_eight);
  expect_agreement(sum);
  EXPECT_FALSE(alexander_polynomial(sum).small_coefficients());
  EXPECT_EQ(alexander_polynomial(sum).determinant(), "9094947017729282379150390625");  // 5^40
}

TEST(AlexanderPolynomial, OfALargeRandomDiagramAgreesWithDenseDeterminants) {
  expect_agreement(random_diagram(60, 1).simplified());
}

TEST(AlexanderPolynomial, DoesNotDependOnTheNumberOfThreadsAndStopsWhenAsked) {
  const Diagram diagram = random_diagram(60, 2);
  EXPECT_EQ(alexander_polynomial(diagram, {.threads = 3}), alexander_polynomial(diagram));
  std::stop_source source;
  source.request_stop();
  EXPECT_THROW(alexander_polynomial(diagram, {.stop = source.get_token()}), Error);
}

TEST(AlexanderPolynomial, AgreesWithHomflyOnRandomDiagrams) {
  for (std::uint64_t seed = 0; seed < 40; ++seed) {
    const Diagram diagram = random_diagram(24, seed).simplified();
    const auto polynomial = homfly(diagram);
    if (!polynomial) continue;
    EXPECT_EQ(alexander_polynomial(diagram).small_coefficients(), from_homfly(*polynomial));
  }
}

}  // namespace
}  // namespace korvex
