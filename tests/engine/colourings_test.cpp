#include "korvex/colourings.hpp"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "korvex/catalogue.hpp"
#include "korvex/error.hpp"
#include "support/diagrams.hpp"

namespace korvex {
namespace {

using Counts = std::vector<std::int64_t>;

Diagram diagram_of(const char* name) {
  return Diagram::of_gauss_code(find_knot_type(name)->gauss_code);
}

Counts counts(const Diagram& diagram, int p) {
  return parabolic_colourings(diagram, p).value_or(Counts{});
}

// Element -k in place of element k.
Counts mirrored(const Counts& numbers) {
  Counts result(numbers.size());
  for (std::size_t k = 0; k < numbers.size(); ++k)
    result[(numbers.size() - k) % numbers.size()] = numbers[k];
  return result;
}

Counts of_sum(const Counts& a, const Counts& b) {
  Counts result(a.size());
  for (std::size_t i = 0; i < a.size(); ++i)
    for (std::size_t j = 0; j < b.size(); ++j) result[(i + j) % a.size()] += a[i] * b[j];
  return result;
}

TEST(ParabolicColourings, OfTheTrefoilTellItsHand) {
  EXPECT_EQ(counts(diagram_of("+3_1"), 5), (Counts{1, 0, 0, 0, 5}));
  EXPECT_EQ(counts(diagram_of("-3_1"), 5), (Counts{1, 5, 0, 0, 0}));
}

TEST(ParabolicColourings, OfTheUnknotAreTheTrivialOne) {
  for (const char* code : {"", "O1+U1+", "U1-O1-U2+O2+"})
    EXPECT_EQ(counts(Diagram::of_gauss_code(code), 5), (Counts{1, 0, 0, 0, 0})) << code;
  // Alexander polynomial 1, and yet not the unknot.
  const Diagram pretzel = Diagram::of_gauss_code(support::odd_pretzel(-3, 5, 7));
  EXPECT_NE(counts(pretzel, 5), (Counts{1, 0, 0, 0, 0}));
}

TEST(ParabolicColourings, DoNotDependOnTheDiagram) {
  for (const int p : {3, 5, 7}) {
    EXPECT_EQ(counts(Diagram::of_gauss_code(support::torus_knot_code(3, 5)), p),
              counts(Diagram::of_gauss_code(support::torus_knot_code(5, 3)), p));
    EXPECT_EQ(counts(Diagram::of_gauss_code(support::torus_knot_code(2, 3)), p),
              counts(Diagram::of_gauss_code(support::torus_knot_code(3, 2)), p));
    // One more crossing on an arc shifts the writhe and not the longitude.
    const Diagram kink = Diagram::of_gauss_code("O1+U1+");
    EXPECT_EQ(counts(diagram_of("+5_2").connected_sum(kink), p), counts(diagram_of("+5_2"), p));
    EXPECT_EQ(counts(kink.mirror().connected_sum(diagram_of("+5_2")), p),
              counts(diagram_of("+5_2"), p));
  }
}

TEST(ParabolicColourings, OfMirrorImagesAndReversesAndSums) {
  for (const KnotType& type : catalogue()) {
    if (type.crossings > 8) break;
    const Diagram diagram = Diagram::of_gauss_code(type.gauss_code);
    for (const int p : {3, 5, 7}) {
      const Counts own = counts(diagram, p);
      EXPECT_EQ(counts(diagram.mirror(), p), mirrored(own)) << type.name;
      EXPECT_EQ(counts(diagram.reversed(), p), own) << type.name;
      EXPECT_EQ(counts(diagram.connected_sum(diagram_of("-3_1")), p),
                of_sum(own, counts(diagram_of("-3_1"), p)))
          << type.name;
    }
  }
}

TEST(ParabolicColourings, TellTypesApartThatShareTheirHomflyPolynomialAndSignature) {
  for (const KnotType& a : catalogue()) {
    for (const KnotType& b : catalogue()) {
      if (&a >= &b || a.signature != b.signature || a.homfly != b.homfly) continue;
      const Diagram first = Diagram::of_gauss_code(a.gauss_code);
      const Diagram second = Diagram::of_gauss_code(b.gauss_code);
      EXPECT_TRUE(counts(first, 5) != counts(second, 5) || counts(first, 7) != counts(second, 7) ||
                  counts(first, 11) != counts(second, 11))
          << a.name << " " << b.name;
    }
  }
}

TEST(ParabolicColourings, GiveUpOnDiagramsThatAreTooLarge) {
  EXPECT_FALSE(parabolic_colourings(Diagram::of_gauss_code(support::torus_knot_code(9, 10)), 31));
}

// Each trefoil is coloured in 6 ways on its own, whatever the others' colours.
TEST(ParabolicColourings, GiveUpOnSumsOfManyTrefoils) {
  std::string code;
  for (int trefoil = 0; trefoil < 1000; ++trefoil)
    for (const auto& [side, number, sign] : {std::tuple{'O', 1, '+'},
                                             {'U', 2, '+'},
                                             {'O', 3, '+'},
                                             {'U', 1, '+'},
                                             {'O', 2, '+'},
                                             {'U', 3, '+'}})
      code += side + std::to_string(3 * trefoil + number) + sign;
  EXPECT_FALSE(parabolic_colourings(Diagram::of_gauss_code(code), 5));
}

TEST(ParabolicColourings, OfAFewTrefoilsAreThoseOfEachAlone) {
  const Diagram trefoil = diagram_of("+3_1");
  Diagram sum = trefoil;
  Counts expected = counts(trefoil, 5);
  for (int more = 0; more < 5; ++more) {
    sum = sum.connected_sum(trefoil);
    expected = of_sum(expected, counts(trefoil, 5));
  }
  EXPECT_EQ(counts(sum, 5), expected);
}

TEST(ParabolicColourings, RefuseWhatIsNoOddPrimeTo31) {
  for (const int p : {-5, 0, 1, 2, 4, 9, 15, 25, 33, 37})
    EXPECT_THROW(parabolic_colourings(Diagram(), p), Error) << p;
  for (const int p : {3, 5, 7, 11, 13, 17, 19, 23, 29, 31})
    EXPECT_EQ(counts(diagram_of("+3_1"), p).size(), static_cast<std::size_t>(p));
}

}  // namespace
}  // namespace korvex
