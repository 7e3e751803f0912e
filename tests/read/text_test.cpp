#include "read/text.hpp"

#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <cstdint>
#include <random>
#include <string>

namespace {

using korvex::read::short_decimal;
using korvex::read::to_number;

TEST(ShortDecimal, IsTheFullConversionBitForBit) {
  std::mt19937_64 random(5);
  int taken = 0;
  for (int trial = 0; trial < 200000; ++trial) {
    std::string text = std::to_string(random() >> (random() % 64));
    if (random() % 8 != 0) text.insert(random() % (text.size() + 1), 1, '.');
    if (random() % 2 == 0) text.insert(0, 1, '-');
    double quick = 0;
    if (!short_decimal(text, quick)) continue;
    ++taken;
    double whole = 0;
    const auto [end, status] = std::from_chars(text.data(), text.data() + text.size(), whole);
    ASSERT_EQ(status, std::errc()) << text;
    ASSERT_EQ(end, text.data() + text.size()) << text;
    ASSERT_EQ(std::bit_cast<std::uint64_t>(quick), std::bit_cast<std::uint64_t>(whole)) << text;
  }
  EXPECT_GT(taken, 100000);
}

TEST(ShortDecimal, LeavesWhatIsWrittenOtherwise) {
  double value = 0;
  for (const char* text : {"", "-", ".", "-.", "+1", "1e2", "1.2.3", "--1", "1-", " 1", "1 ", "x",
                           "nan", "inf", "1234567890123456"}) {
    EXPECT_FALSE(short_decimal(text, value)) << text;
  }
  EXPECT_EQ(to_number("+1"), 1);
  EXPECT_EQ(to_number("1e2"), 100);
  EXPECT_EQ(to_number("."), std::nullopt);
  EXPECT_EQ(to_number("5."), 5);
  EXPECT_EQ(to_number("-.5"), -0.5);
}

}  // namespace
