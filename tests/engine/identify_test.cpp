#include "korvex/identify.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <set>
#include <string>
#include <vector>

#include "engine/catalogue/hand_rule.hpp"
#include "engine/diagram/prime_parts.hpp"
#include "engine/diagram/trusted_diagram.hpp"
#include "engine/identify/canonical_code.hpp"
#include "korvex/signature.hpp"
#include "support/diagrams.hpp"
#include "support/knot_rows.hpp"

namespace korvex {
namespace {

std::string opposite(std::string name) {
  for (char& c : name) c = c == '+' ? '-' : c == '-' ? '+' : c;
  return name;
}

TEST(Catalogue, HoldsEveryPrimeToTenCrossingsWithItsInvariants) {
  for (const support::KnotRow& row : support::knot_rows()) {
    const KnotType* const type = find_knot_type(row.name);
    ASSERT_NE(type, nullptr) << row.name;
    EXPECT_TRUE(type->is_prime());
    EXPECT_EQ(type->crossings, row.crossings);
    EXPECT_EQ(type->determinant, row.determinant) << row.name;
    EXPECT_EQ(type->alexander, row.alexander) << row.name;
    const JonesPolynomial jones = jones_of_text(row.jones);
    const HomflyPolynomial homfly = homfly_of_text(row.homfly);
    EXPECT_TRUE(type->jones == jones || mirror(type->jones) == jones) << row.name;
    EXPECT_TRUE(type->homfly == homfly || mirror(type->homfly) == homfly) << row.name;
  }
}

TEST(Catalogue, CountsTheKnotsToTenCrossings) {
  std::set<std::string> primes;
  std::set<std::string> composites;
  std::set<std::string> amphichiral;
  std::set<std::string> names;
  for (const KnotType& type : catalogue()) {
    EXPECT_TRUE(names.insert(type.name).second) << type.name;
    if (type.plain != "0_1") (type.is_prime() ? primes : composites).insert(type.plain);
    if (type.is_prime() && type.chirality == Chirality::kAmphichiral) amphichiral.insert(type.name);
  }
  EXPECT_EQ(primes.size(), 249U);
  EXPECT_EQ(composites.size(), 25U);
  EXPECT_EQ(amphichiral.size(), 20U);  // 1, 1, 5 and 13 with 4, 6, 8 and 10 crossings
}

TEST(Catalogue, HoldsTheMirrorImageOfEveryType) {
  for (const KnotType& type : catalogue()) {
    const bool has_mirror = type.chirality == Chirality::kChiral;
    const auto image =
        std::find_if(catalogue().begin(), catalogue().end(), [&](const KnotType& other) {
          return other.plain == type.plain && other.homfly == mirror(type.homfly) &&
                 other.signature == -type.signature && (&other != &type) == has_mirror;
        });
    EXPECT_NE(image, catalogue().end()) << type.name;
  }
}

TEST(Catalogue, DiagramsHaveTheInvariantsOfTheirRows) {
  for (const KnotType& type : catalogue()) {
    const Diagram diagram = Diagram::of_gauss_code(type.gauss_code);
    EXPECT_EQ(alexander_polynomial(diagram).small_coefficients(), type.alexander) << type.name;
    EXPECT_EQ(homfly(diagram), type.homfly) << type.name;
    EXPECT_EQ(jones(diagram), type.jones) << type.name;
    EXPECT_EQ(signature(diagram), type.signature) << type.name;
  }
}

TEST(Catalogue, GivesThePlusHandToPrimesByItsRule) {
  for (const KnotType& type : catalogue()) {
    if (!type.is_prime()) continue;
    const int expected = type.name[0] == '+' ? 1 : type.name[0] == '-' ? -1 : 0;
    EXPECT_EQ(hand(Diagram::of_gauss_code(type.gauss_code)), expected) << type.name;
  }
  EXPECT_EQ(find_knot_type("+3_1")->signature, -2);
  for (const char* name : {"+10_48", "-10_71", "+10_91", "-10_104"})
    EXPECT_NE(find_knot_type(name), nullptr) << name;
}

// A knot of 11 crossings with the Jones polynomial of an amphichiral one. In its HOMFLY-PT the
// powers of a on one side have no counterparts on the other.
TEST(HandRule, CountsATermWithoutCounterpartForItsSide) {
  const Diagram diagram = Diagram::of_pd(
      "[[2,10,3,9],[4,19,5,20],[6,2,7,1],[7,15,8,14],[10,4,11,3],[11,20,12,21],[13,1,14,22],"
      "[15,9,16,8],[17,12,18,13],[18,5,19,6],[21,17,22,16]]");
  EXPECT_EQ(jones(diagram), jones(diagram.mirror()));
  EXPECT_EQ(hand(diagram), 1);
  EXPECT_EQ(hand(diagram.mirror()), -1);
}

std::vector<std::string> names_of_types(std::string_view name) {
  std::vector<std::string> names;
  for (const KnotType* type : knot_types_named(name)) names.push_back(type->name);
  return names;
}

TEST(Catalogue, FindsEveryTypeByItsName) {
  for (const KnotType& type : catalogue()) {
    EXPECT_EQ(find_knot_type(type.name), &type);
    const auto plain = knot_types_named(type.plain);
    EXPECT_EQ(std::count(plain.begin(), plain.end(), &type), 1) << type.name;
    for (const KnotType* other : plain) EXPECT_EQ(other->plain, type.plain);
    EXPECT_EQ(find_knot_type(type.plain), plain.front());
  }
}

TEST(Catalogue, TakesAFactorWithoutAHandForEither) {
  using Names = std::vector<std::string>;
  EXPECT_EQ(names_of_types("3_1"), (Names{"+3_1", "-3_1"}));
  EXPECT_EQ(names_of_types("-3_1"), Names{"-3_1"});
  EXPECT_EQ(names_of_types("3_1#3_1"), (Names{"+3_1#+3_1", "-3_1#-3_1", "+3_1#-3_1"}));
  EXPECT_EQ(names_of_types("3_1#-3_1"), (Names{"-3_1#-3_1", "+3_1#-3_1"}));
  EXPECT_EQ(names_of_types("4_1#+3_1"), Names{"+3_1#4_1"});
  EXPECT_EQ(names_of_types("0_1"), Names{"0_1"});
}

TEST(Catalogue, FindsNoTypeByAnotherName) {
  for (const char* name : {"", "trefoil", "3_2", "+4_1", "11a_1", "5_1|10_132", "?1", "3_1#8_1"}) {
    EXPECT_TRUE(knot_types_named(name).empty()) << name;
    EXPECT_EQ(find_knot_type(name), nullptr) << name;
  }
}

TEST(Identify, NamesEveryTypeOfTheCatalogue) {
  for (const KnotType& type : catalogue()) {
    const Diagram diagram = Diagram::of_gauss_code(type.gauss_code);
    const KnotIdentity identity = identify(diagram);
    EXPECT_EQ(identify(diagram.reversed()).name, identity.name);
    const KnotIdentity image = identify(diagram.mirror());
    const std::string plain = identify(diagram, Detail::kType).name;
    EXPECT_EQ(identity.name, type.name);
    EXPECT_EQ(plain, type.plain);
    EXPECT_EQ(image.candidates.size(), 1U);
    if (type.is_prime()) {
      EXPECT_EQ(image.name, opposite(type.name));
    }
    ASSERT_EQ(identity.candidates.size(), 1U);
    EXPECT_EQ(identity.candidates[0], &type);
    EXPECT_EQ(identity.proven, identity.crossings <= 10) << type.name;
  }
}

TEST(Identify, NamesSumsBeyondTheCatalogueByTheirSummands) {
  const Diagram a = Diagram::of_gauss_code(find_knot_type("-7_4")->gauss_code);
  const Diagram b = Diagram::of_gauss_code(find_knot_type("+5_2")->gauss_code);
  const Diagram pretzel = Diagram::of_gauss_code(support::odd_pretzel(-3, 5, 7));
  const KnotIdentity identity = identify(a.connected_sum(b).connected_sum(a.mirror()));
  EXPECT_EQ(identity.name, "+5_2#+7_4#-7_4");
  EXPECT_EQ(identity.summands.size(), 3U);
  EXPECT_TRUE(identity.candidates.empty());
  EXPECT_TRUE(identity.proven);
  EXPECT_EQ(identity.crossings, 19U);
  EXPECT_EQ(identify(pretzel.connected_sum(b)).name, "+5_2#?1");
}

// In one of the two diagrams one factor shows and the other two do not come apart.
TEST(Identify, NamesASumTheSameWhetherOrNotItsDiagramShowsIt) {
  const std::vector<int> word{-4, -2, -2, 1, 4, 2, -1, -1, -4, -4, -4, -4, 3, 2, -1, -2, 1, 4};
  const Diagram diagram = Diagram::of_gauss_code(support::closed_braid(5, word));
  for (const Diagram& same : {diagram, diagram.reversed()}) {
    const KnotIdentity identity = identify(same);
    EXPECT_EQ(identity.name, "+3_1#-3_1#-5_1");
    EXPECT_EQ(identity.summands.size(), 3U);
    EXPECT_EQ(identity.crossings, same.simplified().crossings());
    EXPECT_EQ(identify(same, Detail::kType).name, "3_1#3_1#5_1");
  }
}

struct DrawnCode {
  const char* name;  // of the type whose HOMFLY-PT polynomial the diagram's knot has
  const char* code;
};

struct Braid {
  const char* name;
  int strands;
  std::vector<int> word;
};

// Pass moves end with a diagram of 13 crossings that neither shows the sum nor has fewer.
TEST(Identify, FindsTheSummandsOfADiagramThatDoesNotShowThem) {
  for (const Braid& braid :
       {Braid{"4_1#+7_1", 5, {-3, 2, 2, 2, 2, 1, -4, 3, 2, 3, 3, -4, 3, 2}},
        Braid{"+3_1#-8_2", 4, {-2, 3, 1, -2, -1, 2, -1, 2, 1, -2, 1, -1, -2, -2, 3}},
        Braid{"-3_1#+8_21", 4, {2, 1, -3, -1, 2, 3, -2, -1, 2, 2, -3, 2, 3, -2, 1, -2, -3}}}) {
    const auto code = support::closed_braid(braid.strands, braid.word);
    const Diagram diagram = Diagram::of_gauss_code(code).simplified();
    EXPECT_EQ(diagram.crossings(), 13U) << braid.name;
    EXPECT_EQ(prime_parts(diagram.code()).size(), 1U) << braid.name;
    for (const Diagram& same : {diagram, diagram.reversed()}) {
      const KnotIdentity identity = identify(same);
      EXPECT_EQ(identity.name, braid.name);
      EXPECT_TRUE(identity.proven) << braid.name;
    }
  }
}

// Diagrams of 11 to 15 crossings that pass moves do not shorten.
TEST(Identify, ProvesANameByADiagramThatMovesOfTheThirdKindLeadTo) {
  for (const DrawnCode& known :
       {DrawnCode{"-10_106",
                  "O1+U2-O3-U4-U5-O6-U7+O8+O2-U9+O10+U11-U6-O12-U13-O5-O14-U10+O15+U1+O9+"
                  "U3-U12-O13-O4-U14-O11-O7+U8+U15+"},
        DrawnCode{"-8_10",
                  "U1-O2+U3-U4+O5-O6+U7-O3-O8-O9-U10-U5-O11+O7-U2+U8-O4+U11+U6+O1-U9-O10-"},
        DrawnCode{"+10_62",
                  "O1+O2-U3+O4+O5+U6+O7+U8+O9+U1+O10-O3+U11-U5+O6+U7+O8+U9+O12-U10-U2-O11-"
                  "U4+U12-"}}) {
    const Diagram diagram = Diagram::of_gauss_code(known.code);
    EXPECT_EQ(diagram.simplified(), diagram) << known.name;
    const KnotIdentity identity = identify(diagram);
    EXPECT_EQ(identity.name, known.name);
    EXPECT_TRUE(identity.proven) << known.name;
    EXPECT_LE(identity.crossings, 10U) << known.name;
  }
}

TEST(Identify, TellsPrimeFromCompositeWhereHomflyDoesNot) {
  const KnotType& prime = *find_knot_type("+9_12");
  const KnotType& composite = *find_knot_type("4_1#+5_2");
  ASSERT_EQ(prime.homfly, composite.homfly);
  EXPECT_EQ(identify(Diagram::of_gauss_code(prime.gauss_code)).name, prime.name);
  EXPECT_EQ(identify(Diagram::of_gauss_code(composite.gauss_code)).name, composite.name);
}

// Diagrams of 11 and 12 crossings whose knots the catalogue lacks.
constexpr DrawnCode kDoubles[] = {
    {"+7_1", "O1+U2-O3-U4+O5+U6-U7+O8+O2-U9+O4+O10+U11+U5+O12+O7+U8+U1+O9+U3-U10+O11+O6-U12+"},
    {"+8_2", "U1+O2+U3-O4-U5-U6+O7+O8-U2+O9+U4-O5-U10+O1+U11+O12+U8-O3-U9+O10+O6+U7+U12+O11+"},
    {"4_1#4_1", "U1-O2+U3+O4-O5+U6+U7-O1-O8+U9+O6+U5+U10-O11-U12-O3+U2+U8+O9+O12-U11-O10-U4-O7-"},
    {"+10_155", "O1+U2-O3-U4+O5+U6+O7-O8+U9-U3-O10-U1+U8+O11+O4+U5+O6+U10-O2-O9-U11+U7-"},
    {"-10_155", "O1-O2+U3+O4+U5-O6+U7+O8-U9-O5-O10-U1-U11-O7+U6+O11-U2+O3+U8-O9-U4+U10-"},
    {"+10_92", "O1+O2+U3+O4+U5+O6-O7+U8+O9+U7+U10-O5+U11+O12+U4+O3+U2+O10-U6-O11+U12+U1+O8+U9+"},
};

// Some differ in their signature, the others in their parabolic colourings.
TEST(Identify, DoesNotNameAKnotForItsHomflyPolynomialAlone) {
  std::set<Evidence> evidence;
  for (const DrawnCode& known : kDoubles) {
    const Diagram diagram = Diagram::of_gauss_code(known.code);
    ASSERT_EQ(homfly(diagram), find_knot_type(known.name)->homfly) << known.name;
    ASSERT_EQ(diagram.simplified().crossings(), diagram.crossings()) << known.name;
    for (const Diagram& hand : {diagram, diagram.mirror(), diagram.reversed()}) {
      const KnotIdentity identity = identify(hand);
      EXPECT_TRUE(identity.candidates.empty()) << known.name;
      EXPECT_EQ(identity.name[0], '?') << identity.name;
      EXPECT_FALSE(identity.proven) << known.name;
      EXPECT_TRUE(identify(hand, Detail::kType).candidates.empty()) << known.name;
      evidence.insert(identity.evidence);
    }
  }
  EXPECT_EQ(evidence, (std::set{Evidence::kSignature, Evidence::kColourings}));
}

TEST(Identify, TellsGrannyFromSquare) {
  const Diagram right = Diagram::of_gauss_code("O1+U2+O3+U1+O2+U3+");
  EXPECT_EQ(identify(right).name, "+3_1");
  EXPECT_EQ(identify(right.connected_sum(right)).name, "+3_1#+3_1");
  EXPECT_EQ(identify(right.mirror().connected_sum(right)).name, "+3_1#-3_1");
  EXPECT_EQ(identify(right.mirror().connected_sum(right.mirror())).name, "-3_1#-3_1");
}

TEST(Identify, CallsTheUnknotByName) {
  const KnotIdentity circle = identify(Diagram());
  EXPECT_EQ(circle.name, "0_1");
  EXPECT_TRUE(circle.proven);
  EXPECT_EQ(circle.evidence, Evidence::kDiagram);
}

TEST(Identify, TakesNoAlexanderPolynomialOneForTheUnknot) {
  const Diagram pretzel = Diagram::of_gauss_code(support::odd_pretzel(-3, 5, 7));
  EXPECT_EQ(alexander_key(pretzel), 1U);
  const KnotIdentity identity = identify(pretzel);
  EXPECT_TRUE(identity.candidates.empty());
  EXPECT_FALSE(identity.proven);
  EXPECT_EQ(identity.name, "?1");
}

// The Whitehead double of the torus knot T(8, 9) whose two strands do not link: a knot with
// Alexander polynomial 1 that is not the unknot. A band along the knot, given as many turns against
// those of the torus as it needs, ends in two hooks that hold each other.
std::vector<Point> whitehead_double() {
  constexpr int kTurnsOfTorus = 8 * 9;
  constexpr int kPoints = 6000;
  constexpr double kWidth = 0.01;
  constexpr double kGap = 0.01;
  const auto on_torus = [](double t) {
    const double r = 3 + std::cos(9 * t);
    return Point{r * std::cos(8 * t), r * std::sin(8 * t), std::sin(9 * t)};
  };
  const auto normal = [](double t) {
    return Point{std::cos(9 * t) * std::cos(8 * t), std::cos(9 * t) * std::sin(8 * t),
                 std::sin(9 * t)};
  };
  std::vector<Point> there;
  std::vector<Point> back;
  Point along, across, up;
  for (int k = 0; k <= kPoints; ++k) {
    const double t = kGap + (2 * std::numbers::pi - 2 * kGap) * k / kPoints;
    const Point ahead = on_torus(t + 1e-6) - on_torus(t - 1e-6);
    along = (1 / norm(ahead)) * ahead;
    const Point out = normal(t);
    const double turn = kTurnsOfTorus * 2 * std::numbers::pi * k / kPoints;
    across = std::cos(turn) * out + std::sin(turn) * cross(along, out);
    there.push_back(on_torus(t) + kWidth * across);
    back.push_back(on_torus(t) - kWidth * across);
  }
  up = cross(along, across);
  const Point middle = on_torus(0);
  const double h = 0.02;
  const auto at = [&](double x, double y, double z) {
    return middle + h * x * along + kWidth * y * across + kWidth * z * up;
  };
  std::vector<Point> ring = there;
  for (const Point& p : {at(1, 1, 0), at(1, -1, 0)}) ring.push_back(p);
  ring.insert(ring.end(), back.rbegin(), back.rend());
  for (const Point& p : {at(2, 0, -1), at(-1, 0, -1), at(-1, 0, 1), at(2, 0, 1)}) ring.push_back(p);
  return ring;
}

TEST(Identify, DoesNotProveWhatSeemsToBeTheUnknot) {
  const Diagram diagram = Diagram::of_polygon(whitehead_double(), {0.01, 0.02, 1}).simplified();
  EXPECT_EQ(alexander_key(diagram), 1U);
  EXPECT_FALSE(homfly(diagram));
  EXPECT_FALSE(jones(diagram));
  const KnotIdentity identity = identify(diagram);
  EXPECT_EQ(identity.name, "0_1");
  EXPECT_FALSE(identity.proven);
  EXPECT_EQ(identity.evidence, Evidence::kAlexander);
  EXPECT_EQ(identity.crossings, diagram.crossings());
  const Diagram trefoil = Diagram::of_gauss_code("O1+U2+O3+U1+O2+U3+");
  const KnotIdentity sum = identify(diagram.connected_sum(trefoil));
  EXPECT_EQ(sum.name, "+3_1");
  EXPECT_FALSE(sum.proven);
}

TEST(Identify, GivesUnknownTypesTheirPolynomial) {
  const KnotIdentity identity = identify(Diagram::of_gauss_code(support::torus_knot_code(2, 11)));
  EXPECT_TRUE(identity.candidates.empty());
  EXPECT_EQ(identity.crossings, 11U);
  EXPECT_EQ(identity.name, "?1-1+1-1+1-1+1-1+1-1+1");
  const KnotIdentity longer = identify(Diagram::of_gauss_code(support::torus_knot_code(4, 9)));
  EXPECT_EQ(longer.name.substr(0, 5), "?key:");
}

TEST(Identify, NamesTorusAndTwistKnots) {
  const auto name = [](const std::string& code) {
    return identify(Diagram::of_gauss_code(code)).name;
  };
  EXPECT_EQ(name(support::torus_knot_code(2, 3)), "+3_1");
  EXPECT_EQ(name(support::torus_knot_code(3, 2)), "+3_1");
  EXPECT_EQ(name(support::torus_knot_code(2, 5)), "+5_1");
  EXPECT_EQ(name(support::torus_knot_code(2, 7)), "+7_1");
  EXPECT_EQ(name(support::torus_knot_code(2, 9)), "+9_1");
  EXPECT_EQ(name(support::torus_knot_code(3, 4)), "+8_19");
  EXPECT_EQ(name(support::torus_knot_code(4, 3)), "+8_19");
  EXPECT_EQ(name(support::torus_knot_code(3, 5)), "+10_124");
  EXPECT_EQ(name(support::torus_knot_code(5, 3)), "+10_124");
  EXPECT_EQ(name(support::odd_pretzel(1, 1, 1)), "+3_1");
  EXPECT_EQ(name(support::odd_pretzel(-1, -1, -1)), "-3_1");
  EXPECT_EQ(name(support::odd_pretzel(1, 1, -3)), "4_1");
  EXPECT_EQ(name(support::odd_pretzel(1, 1, 3)), "+5_2");
  EXPECT_EQ(name(support::odd_pretzel(1, 1, 5)), "+7_2");
  EXPECT_EQ(name(support::odd_pretzel(1, 1, 7)), "+9_2");
  EXPECT_EQ(name(support::odd_pretzel(1, 3, 3)), "+7_4");
  EXPECT_EQ(name(support::odd_pretzel(3, 3, 3)), "+9_35");
}

TEST(CanonicalCode, DependsOnTheDiagramAlone) {
  for (const KnotType& type : catalogue()) {
    const GaussCode code = Diagram::of_gauss_code(type.gauss_code).code();
    const std::string canonical = canonical_code(code);
    GaussCode turned = code;
    const std::size_t size = code.size();
    for (std::size_t k = 0; k < size; ++k) {
      turned[k] = code[(k + 3) % size];
      turned[k].mate = static_cast<std::int32_t>(
          (static_cast<std::size_t>(turned[k].mate) + size - 3 % size) % size);
    }
    EXPECT_EQ(canonical_code(turned), canonical);
    EXPECT_EQ(canonical_code(TrustedDiagram::of(code).reversed().code()), canonical);
    EXPECT_EQ(canonical_code(canonical_diagram(code)), canonical);
    EXPECT_EQ(canonical_diagram(turned), canonical_diagram(code));
    if (type.chirality == Chirality::kChiral) {
      EXPECT_NE(canonical_code(TrustedDiagram::of(code).mirror().code()), canonical) << type.name;
    }
  }
}

}  // namespace
}  // namespace korvex
