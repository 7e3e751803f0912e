#include "engine/fingerprint/type_names.hpp"

#include <gtest/gtest.h>

namespace korvex {
namespace {

TEST(TypeNames, TellTheirFactors) {
  EXPECT_TRUE(factors_of("0_1").empty());
  EXPECT_EQ(factors_of("+3_1"), std::vector<std::string>{"+3_1"});
  EXPECT_EQ(factors_of("+3_1#4_1#-3_1"), (std::vector<std::string>{"+3_1", "4_1", "-3_1"}));
}

TEST(TypeNames, TellTheirCrossings) {
  EXPECT_EQ(crossings_of("0_1"), 0);
  EXPECT_EQ(crossings_of("3_1"), 3);
  EXPECT_EQ(crossings_of("-10_132"), 10);
  EXPECT_EQ(crossings_of("+3_1#4_1"), 7);
  EXPECT_EQ(crossings_of("5_1|10_132"), 5);
  EXPECT_EQ(crossings_of("8_20|3_1#3_1"), 6);
}

TEST(TypeNames, TellNoCrossingsOfWhatIsUnknown) {
  for (const char* name : {"", "unknown", "?", "#", "3", "3_1#", "_1"})
    EXPECT_EQ(crossings_of(name), std::nullopt) << name;
}

}  // namespace
}  // namespace korvex
