#include <gtest/gtest.h>

#include <iostream>
#include <vector>

#include "korvex.h"
#include "support/captured_stream.hpp"
#include "support/stored_coefficients.hpp"

namespace {

std::string shown(const std::vector<int>& coefficients) {
  const support::CapturedStream out(std::cout);
  ShowPoly(support::stored(coefficients));
  return out.text();
}

TEST(ShowPoly, RisingPowers) {
  EXPECT_EQ(shown({1, -1, 1}), "1 - t + t^2");
  EXPECT_EQ(shown({2, -3, 2}), "2 - 3*t + 2*t^2");
  EXPECT_EQ(shown({0, 0, 1}), "t^2");
  EXPECT_EQ(shown({0, 4, 0, -12}), "4*t - 12*t^3");
}

TEST(ShowPoly, LeadingMinusOfALaterTermKeepsItsBlanks) {
  EXPECT_EQ(shown({0, -1}), " - t");
  EXPECT_EQ(shown({-3}), "-3");
  EXPECT_EQ(shown({-1, 1}), "-1 + t");
}

TEST(ShowPoly, ZeroInEveryForm) {
  EXPECT_EQ(shown({}), "0");
  EXPECT_EQ(shown({0}), "0");
  EXPECT_EQ(shown({0, 0}), "0");
}

TEST(ShowMatrix, HeadingAndALineARow) {
  const support::CapturedStream out(std::cout);
  ShowMatrix(support::stored_matrix({{{1, -1}, {0}}, {{0, 1}, {-1}}}));
  EXPECT_EQ(out.text(), "Macierz:\n1 - t,   0,   \nt,   -1,   \n");
}

TEST(ShowMatrix, EmptyMatrixAndEmptyRow) {
  const support::CapturedStream out(std::cout);
  ShowMatrix({});
  ShowMatrix({{}});
  EXPECT_EQ(out.text(), "Macierz:\nMacierz:\n\n");
}

TEST(ShowMatrixDouble, DefaultFormatting) {
  const support::CapturedStream out(std::cout);
  ShowMatrix_double({{-11, 0.5, 1e9}, {}});
  EXPECT_EQ(out.text(), "Macierz:\n-11,   0.5,   1e+09,   \n\n");
}

TEST(PrintsPoly, IsShowPoly) {
  const support::CapturedStream out(std::cout);
  PrintsPoly(support::stored({1, -3, 1}));
  EXPECT_EQ(out.text(), "1 - 3*t + t^2");
}

}  // namespace
