#include "korvex/knot_name.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <unordered_set>
#include <vector>

#include "korvex/alexander.hpp"
#include "korvex/catalogue.hpp"
#include "korvex/error.hpp"

namespace korvex {
namespace {

KnotName named(const std::string& text) {
  const auto name = KnotName::parse(text);
  EXPECT_TRUE(name) << text;
  return name.value_or(KnotName{});
}

std::vector<std::string> texts(const std::vector<KnotName>& names) {
  std::vector<std::string> all;
  for (const KnotName& name : names) all.push_back(name.text());
  return all;
}

class RandomNames {
 public:
  explicit RandomNames(unsigned seed) : random_(seed) {}

  // Sums of primes, choices and unknown knots, the unknot included.
  KnotName name() {
    std::vector<KnotName> factors;
    for (unsigned left = below(4); left > 0; --left)
      factors.push_back(below(4) == 0 ? choice() : known_or_not());
    return KnotName::sum(factors);
  }

 private:
  unsigned below(unsigned end) { return static_cast<unsigned>(random_() % end); }

  KnotName prime() {
    static const std::vector<std::string> kPlaces{"3_1",     "4_1",    "8_16",     "10_156",
                                                  "11a_367", "11n_34", "12a_1288", "12n_888"};
    static const std::vector<std::string> kHands{"", "+", "-"};
    return named(kHands[below(3)] + kPlaces[below(8)]);
  }

  KnotName unknown() {
    if (below(2) == 0) return KnotName::unknown(random_() >> below(64));
    const std::string middle = below(2) == 0 ? "7" : "-" + std::to_string(1 + below(1000));
    return KnotName::unknown(1, std::vector<std::string>{"1", "-5", "0", middle, "0", "-5", "1"});
  }

  KnotName known_or_not() { return below(8) == 0 ? unknown() : prime(); }

  KnotName choice() {
    std::vector<KnotName> names;
    for (unsigned left = 1 + below(3); left > 0; --left) {
      const std::vector<KnotName> pair{known_or_not(), known_or_not()};
      names.push_back(KnotName::sum(std::span(pair).first(below(3))));
    }
    return KnotName::one_of(names);
  }

  std::mt19937_64 random_;
};

std::vector<KnotName> random_names(unsigned seed, std::size_t count) {
  RandomNames random(seed);
  std::vector<KnotName> names;
  while (names.size() < count) names.push_back(random.name());
  return names;
}

TEST(KnotName, IsTheUnknotsWithoutFactors) {
  EXPECT_EQ(KnotName().text(), "0_1");
  EXPECT_EQ(named("0_1"), KnotName());
  EXPECT_EQ(KnotName::sum({}), KnotName());
  EXPECT_TRUE(KnotName().is_unknot());
  EXPECT_FALSE(KnotName().is_prime());
  EXPECT_TRUE(KnotName().factors().empty());
  EXPECT_EQ(KnotName().crossings(), 0);
  EXPECT_EQ(named("0_1#+3_1").text(), "+3_1");
}

TEST(KnotName, IsWrittenAsItWasRead) {
  for (const std::string text : {"0_1",
                                 "+3_1",
                                 "4_1",
                                 "-10_132",
                                 "12n_888",
                                 "+11a_367",
                                 "+3_1#-3_1",
                                 "+3_1#?1-5+7-5+1",
                                 "5_1|10_132",
                                 "3_1#3_1|8_20",
                                 "0_1|+11n_34|+11n_42",
                                 "-3_1#+12n_34",
                                 "+3_1#(+11n_34|+11n_42)",
                                 "+3_1#(+8_16|+10_156)",
                                 "(0_1|11n_34)#3_1",
                                 "?1",
                                 "?1-1+0+1+0-1+1",
                                 "?key:1f00ba5",
                                 "?key:0",
                                 "(4_1|?1)#?key:ffffffffffffffff"})
    EXPECT_EQ(named(text).text(), text);
}

TEST(KnotName, PutsFactorsAndChoicesInOrder) {
  EXPECT_EQ(named("4_1#-3_1#+3_1").text(), "+3_1#-3_1#4_1");
  EXPECT_EQ(named("+12n_34#-3_1").text(), "-3_1#+12n_34");
  EXPECT_EQ(named("(+11n_42|+11n_34)#+3_1").text(), "+3_1#(+11n_34|+11n_42)");
  EXPECT_EQ(named("10_132|5_1|5_1").text(), "5_1|10_132");
  EXPECT_EQ(named("?1#12n_1").text(), "12n_1#?1");
}

TEST(KnotName, TakesWhatIsNoChoiceOutOfItsBrackets) {
  EXPECT_EQ(named("(+3_1#4_1)#(5_1|5_1)").text(), "+3_1#4_1#5_1");
  EXPECT_EQ(named("(5_1|10_132)").text(), "5_1|10_132");
  EXPECT_EQ(named("(0_1)").text(), "0_1");
}

TEST(KnotName, IsReadFromNothingElse) {
  for (const char* text : {"",
                           " ",
                           "unknown",
                           "?",
                           "#",
                           "|",
                           "()",
                           "3",
                           "3_",
                           "3_1#",
                           "#3_1",
                           "_1",
                           "03_1",
                           "3_01",
                           "3_0",
                           "0_2",
                           "+0_1",
                           "2_1",
                           "++3_1",
                           "3_1 ",
                           "3_1|",
                           "|3_1",
                           "3_1||4_1",
                           "3b_1",
                           "11an_1",
                           "3_1#4_1|(5_1|6_1)",
                           "(3_1",
                           "3_1)",
                           "((3_1|4_1))#5_1",
                           "(3_1|4_1)5_1",
                           "5_1(3_1|4_1)",
                           "(3_1|4_1)#",
                           "3_1234567890",
                           "1234567890_1",
                           "?key:",
                           "?key:01",
                           "?key:1F",
                           "?key:g",
                           "?key:10000000000000000",
                           "?-1+3-1",
                           "?+1",
                           "?1-",
                           "?1--1",
                           "?1+01",
                           "?1-0+1",
                           "?0",
                           "?x",
                           "+?1"})
    EXPECT_EQ(KnotName::parse(text), std::nullopt) << text;
}

TEST(KnotName, IsOneOfSeveral) {
  const std::vector<KnotName> names{named("+10_156"), named("+8_16"), named("+8_16")};
  EXPECT_EQ(KnotName::one_of(names).text(), "+8_16|+10_156");
  EXPECT_EQ(KnotName::one_of(std::span(names).last(2)), names[1]);
  const std::vector<KnotName> nested{named("3_1#3_1|8_20"), named("4_1#4_1")};
  EXPECT_EQ(KnotName::one_of(nested).text(), "3_1#3_1|8_20|4_1#4_1");
  EXPECT_THROW(KnotName::one_of({}), Error);
  const std::vector<KnotName> undecided{named("3_1#(4_1|5_1)"), named("7_1")};
  EXPECT_THROW(KnotName::one_of(undecided), Error);
}

TEST(KnotName, OfAnUnknownKnotIsItsPolynomialOrTheKeyOfALongOne) {
  using Coefficients = std::vector<std::string>;
  EXPECT_EQ(KnotName::unknown(7, Coefficients{"1", "-5", "7", "-5", "1"}).text(), "?1-5+7-5+1");
  EXPECT_EQ(KnotName::unknown(7, Coefficients{"1"}).text(), "?1");
  EXPECT_EQ(KnotName::unknown(0x1f00ba5).text(), "?key:1f00ba5");
  const std::string longest(19, '9');
  EXPECT_EQ(KnotName::unknown(7, Coefficients{longest, "0", longest + "9"}).text(), "?key:7");
  EXPECT_EQ(KnotName::unknown(7, Coefficients{longest, "0", longest.substr(1)}).text(),
            "?" + longest + "+0+" + longest.substr(1));
}

TEST(KnotName, TellsItsFactors) {
  using Texts = std::vector<std::string>;
  EXPECT_EQ(texts(named("+3_1").factors()), Texts{"+3_1"});
  EXPECT_EQ(texts(named("+3_1#4_1#-3_1").factors()), (Texts{"+3_1", "-3_1", "4_1"}));
  EXPECT_EQ(texts(named("8_20|3_1#3_1").factors()), Texts{"3_1#3_1|8_20"});
  EXPECT_EQ(texts(named("+3_1#(+8_16|+10_156)").factors()), (Texts{"+3_1", "+8_16|+10_156"}));
  EXPECT_EQ(texts(named("8_20|3_1#3_1").choices()), (Texts{"3_1#3_1", "8_20"}));
  EXPECT_EQ(texts(named("3_1#4_1").choices()), Texts{"3_1#4_1"});
}

TEST(KnotName, TellsItsCrossings) {
  for (const auto& [text, crossings] :
       std::vector<std::pair<std::string, int>>{{"0_1", 0},
                                                {"3_1", 3},
                                                {"-10_132", 10},
                                                {"12n_888", 12},
                                                {"+3_1#4_1", 7},
                                                {"5_1|10_132", 5},
                                                {"8_20|3_1#3_1", 6},
                                                {"(+8_16|+10_156)#+3_1", 11},
                                                {"(0_1|11n_34)#3_1", 3}})
    EXPECT_EQ(named(text).crossings(), crossings) << text;
  for (const char* text : {"?1", "+3_1#?1", "3_1|?1", "?key:7"})
    EXPECT_EQ(named(text).crossings(), std::nullopt) << text;
}

TEST(KnotName, TellsWhatItIs) {
  EXPECT_TRUE(named("-11n_34").is_prime());
  EXPECT_EQ(named("-11n_34").hand(), Hand::kLeft);
  EXPECT_EQ(named("+3_1").hand(), Hand::kRight);
  for (const char* text : {"3_1#3_1", "5_1|10_132", "?1", "0_1"}) {
    EXPECT_FALSE(named(text).is_prime()) << text;
    EXPECT_EQ(named(text).hand(), Hand::kNone) << text;
  }
  EXPECT_TRUE(named("3_1#(5_1|10_132)").is_choice());
  EXPECT_FALSE(named("3_1#5_1").is_choice());
  EXPECT_TRUE(named("3_1#(5_1|10_132)").is_known());
  EXPECT_FALSE(named("3_1#?1").is_known());
}

TEST(KnotName, LosesItsHands) {
  EXPECT_EQ(named("+3_1#-3_1#?1").plain().text(), "3_1#3_1#?1");
  EXPECT_EQ(named("+3_1|-3_1").plain().text(), "3_1");
  EXPECT_EQ(named("4_1#(+8_16|-8_16)").plain().text(), "4_1#8_16");
}

TEST(KnotName, ChangesHandsInTheMirror) {
  EXPECT_EQ(named("+3_1#+5_2#-3_1#4_1").mirror().text(), "+3_1#-3_1#4_1#-5_2");
  EXPECT_EQ(named("+3_1#(+8_16|-10_156)").mirror().text(), "-3_1#(-8_16|+10_156)");
  EXPECT_EQ(named("?1-5+7-5+1").mirror().text(), "?1-5+7-5+1");
}

TEST(KnotName, CoversNamesWithMoreHands) {
  const KnotName square = named("+3_1#-3_1");
  for (const char* text : {"3_1#3_1", "+3_1#3_1", "3_1#-3_1", "+3_1#-3_1"})
    EXPECT_TRUE(named(text).covers(square)) << text;
  for (const char* text : {"+3_1#+3_1", "-3_1#-3_1", "3_1", "3_1#3_1#3_1", "4_1#3_1", "0_1"})
    EXPECT_FALSE(named(text).covers(square)) << text;
  EXPECT_FALSE(square.covers(named("3_1#3_1")));
  EXPECT_FALSE(named("+4_1").covers(named("4_1")));
  EXPECT_TRUE(named("5_1|10_132").covers(named("10_132|5_1")));
  EXPECT_FALSE(named("5_1|10_132").covers(named("5_1")));
}

TEST(KnotName, OfEveryTypeOfTheCatalogueIsItsText) {
  for (const KnotType& type : catalogue()) {
    const KnotName name = named(type.name);
    EXPECT_EQ(name.text(), type.name);
    EXPECT_EQ(name.plain().text(), type.plain);
    EXPECT_EQ(name.crossings(), type.crossings);
    EXPECT_EQ(name.is_prime(), type.is_prime());
    EXPECT_EQ(name.mirror() == name, type.chirality == Chirality::kAmphichiral) << type.name;
    EXPECT_TRUE(name.plain().covers(name));
  }
}

TEST(KnotName, HasTheOrderOfTheCatalogue) {
  const auto types = catalogue();
  for (std::size_t k = 1; k < types.size(); ++k)
    EXPECT_LT(named(types[k - 1].name), named(types[k].name))
        << types[k - 1].name << ' ' << types[k].name;
  EXPECT_LT(named("10_165"), named("11a_1"));
  EXPECT_LT(named("11a_367"), named("11n_1"));
  EXPECT_LT(named("12n_888#12n_888"), named("?1"));
  EXPECT_LT(named("5_1"), named("5_1|10_132"));
}

TEST(KnotName, IsReadAsItWasWritten) {
  for (const KnotName& name : random_names(1, 5000)) {
    EXPECT_EQ(named(name.text()), name) << name.text();
    EXPECT_EQ(named(name.text()).text(), name.text());
  }
}

TEST(KnotName, IsTheSumOfItsFactorsAndOneOfItsChoices) {
  for (KnotName& name : random_names(2, 2000)) {
    std::vector<KnotName> factors = name.factors();
    EXPECT_EQ(KnotName::sum(factors), name) << name.text();
    std::reverse(factors.begin(), factors.end());
    EXPECT_EQ(KnotName::sum(factors), name) << name.text();
    for (const KnotName& factor : factors)
      EXPECT_EQ(KnotName::one_of(factor.choices()), factor) << name.text();
  }
}

TEST(KnotName, HasItsOwnNameAsTheMirrorImageOfItsMirrorImage) {
  for (const KnotName& name : random_names(3, 2000)) {
    EXPECT_EQ(name.mirror().mirror(), name) << name.text();
    EXPECT_EQ(name.mirror().plain(), name.plain()) << name.text();
    EXPECT_EQ(name.mirror().crossings(), name.crossings()) << name.text();
    EXPECT_EQ(name.plain().mirror(), name.plain()) << name.text();
  }
}

TEST(KnotName, HasOneOrderForAll) {
  std::vector<KnotName> names = random_names(4, 300);
  for (const KnotName& a : names) {
    for (const KnotName& b : names) {
      EXPECT_EQ(a == b, a.text() == b.text());
      EXPECT_EQ(a <=> b == 0, a == b) << a.text() << ' ' << b.text();
      EXPECT_EQ(a<b, b> a) << a.text() << ' ' << b.text();
    }
  }
  std::sort(names.begin(), names.end());
  for (std::size_t i = 0; i < names.size(); ++i)
    for (std::size_t k = i + 1; k < names.size(); ++k) EXPECT_LE(names[i], names[k]);
  const std::unordered_set<KnotName> distinct(names.begin(), names.end());
  names.erase(std::unique(names.begin(), names.end()), names.end());
  EXPECT_EQ(distinct.size(), names.size());
}

}  // namespace
}  // namespace korvex
