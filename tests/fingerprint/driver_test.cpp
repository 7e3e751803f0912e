#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <string>
#include <utility>

#include "korvex.h"
#include "support/captured_stream.hpp"
#include "support/chains.hpp"
#include "support/national_locale.hpp"
#include "support/temporary_file.hpp"

namespace {

constexpr unsigned long long kAmple = 768000000;
constexpr const char* kThresholds =
    " >90 >87 >84 >81 >78 >75 >72 >69 >66 >63 >60 >57 >54 >51 >48 >45 >42 >39 >36 >33 >30 >27 >24 "
    ">21 >18 >15 >12 >9 >6 >3 >0 IN 1 ";

struct Settings {
  int step = 4;
  int threshold = 30;
  int closure = 0;
  int trials = 2;
  int mode = 1;
  int poly_option = 16;
  bool poly_flag = false;
  unsigned long long memory = kAmple;
};

// A bow without any crossing, its ids from 21 on.
support::Chain bow(int atoms = 12) {
  support::Chain chain;
  for (int k = 0; k < atoms; ++k)
    chain.push_back({k * 1.0, k * (atoms - k) * 0.3, 0.01 * k, 21 + k});
  return chain;
}

// A ring of 36 atoms read as an open chain: the edge that closes it is the closing edge of closure
// 0.
support::Chain open_trefoil() {
  support::Chain chain = support::torus_knot(2, 3, 36);
  for (std::size_t k = 0; k < chain.size(); ++k) chain[k].id = static_cast<int>(k) - 3;
  return chain;
}

std::string to_file(const support::Chain& chain, const Settings& s) {
  const support::CapturedStream log(std::clog);
  const support::CapturedStream errors(std::cerr);
  support::TemporaryFile file;
  EXPECT_EQ(FindKnotFingerprint(chain, file.name(), s.step, s.threshold, s.closure, s.trials,
                                s.mode, s.poly_option, s.poly_flag, s.memory),
            1);
  return file.content();
}

std::string to_text(const support::Chain& chain, const Settings& s) {
  const support::CapturedStream log(std::clog);
  const support::CapturedStream errors(std::cerr);
  return FindKnotFingerprint_string(chain, s.step, s.threshold, s.closure, s.trials, s.mode,
                                    s.poly_option, s.poly_flag, s.memory);
}

std::string header(const std::string& ids, int atoms) {
  return "# " + ids + kThresholds + std::to_string(atoms) + "\n";
}

TEST(FindAllKnots, UnknottedChainInMatrixMode) {
  const std::string head = header("21 32", 12);
  EXPECT_EQ(to_file(bow(), {}), head + "UNKNOT\n");
  EXPECT_EQ(to_text(bow(), {}), head + head + head + "UNKNOT\n");
}

TEST(FindAllKnots, DoesNotGroupDigitsInAnyLocale) {
  support::Chain chain = bow();
  for (ChainAtom& atom : chain) atom.id += 1000;
  const support::NationalLocale locale;
  EXPECT_EQ(to_file(chain, {}).substr(0, 11), "# 1021 1032");
  EXPECT_EQ(to_text(chain, {}).substr(0, 11), "# 1021 1032");
}

TEST(FindAllKnots, UnknottedChainInDictionaryMode) {
  Settings settings;
  settings.mode = 0;
  EXPECT_EQ(to_file(bow(), settings), "{}");
  EXPECT_EQ(to_text(bow(), settings), "{}{}{}");
}

TEST(FindAllKnots, KnottedChainInMatrixMode) {
  Settings settings;
  settings.step = 36;
  settings.threshold = 100;
  std::string bands = "3_1";
  for (int band = 0; band < 31; ++band) bands += " 0";
  const std::string head = header("-3 32", 36);
  const std::string row = "-3 32 " + bands + " 1 36\n";
  EXPECT_EQ(to_file(open_trefoil(), settings), head + row);
  EXPECT_EQ(to_text(open_trefoil(), settings), head + head + row);
}

TEST(FindAllKnots, KnottedChainInDictionaryMode) {
  Settings settings;
  settings.mode = 0;
  settings.step = 36;
  settings.threshold = 100;
  EXPECT_EQ(to_file(open_trefoil(), settings), "{(-3, 32): {'1 -1 1': 1}}");
  EXPECT_EQ(to_text(open_trefoil(), settings), "{(-3, 32): {'1 -1 1': 1}}");
}

TEST(FindAllKnots, SingleTrialsGiveTheShortFormAndKeepTheUnknot) {
  Settings settings;
  settings.mode = 0;
  settings.trials = 1;
  settings.step = 36;
  settings.threshold = 100;
  EXPECT_EQ(to_file(open_trefoil(), settings), "{(-3, 32): '1 -1 1'}");
  // The short form of the unknot is no longer told from a knot.
  settings.step = 12;
  EXPECT_EQ(to_file(bow(), settings), "{(21, 32): '1'}");
}

TEST(FindAllKnots, NumericTextsInDictionaryMode) {
  Settings settings;
  settings.mode = 0;
  settings.poly_flag = true;
  settings.step = 36;
  settings.threshold = 100;
  EXPECT_EQ(to_file(open_trefoil(), settings), "{(-3, 32): {'133': 1}}");
}

TEST(FindAllKnots, TallyRunsOnFromCandidateToCandidate) {
  // Two candidates, (1, 36) first and (1, 6) after it: the second one's dictionary holds both.
  Settings settings;
  settings.mode = 0;
  settings.step = 30;
  settings.threshold = 100;
  const std::string text = to_file(open_trefoil(), settings);
  EXPECT_EQ(text,
            "{(-3, 32): {'1 -1 1': 1}, (-3, 2): {'1': 0.5, '1 -1 1': 0.5}, "
            "(27, 32): {'1': 0.667, '1 -1 1': 0.333}}");
}

TEST(FindAllKnots, RefinementAddsTheNeighboursOfStrongRowsOnce) {
  Settings settings;
  settings.step = 36;
  settings.threshold = 50;
  const support::Chain chain = open_trefoil();
  const std::string text = to_file(chain, settings);
  EXPECT_NE(text.find(" 1 36\n"), std::string::npos);
  // The square of half-width 35 around (1, 36) is every sub-chain.
  Settings every = settings;
  every.step = 1;
  every.threshold = 100;
  EXPECT_EQ(text, to_file(chain, every));
}

TEST(FindAllKnots, WithoutTrialsThereAreNoRows) {
  for (const int trials : {0, -1}) {
    Settings settings;
    settings.trials = trials;
    EXPECT_EQ(to_file(open_trefoil(), settings), header("-3 32", 36) + "UNKNOT\n");
  }
}

TEST(FindAllKnots, BudgetTooSmallStillWritesTheOutput) {
  Settings settings;
  settings.memory = 1000;
  const support::CapturedStream errors(std::cerr);
  EXPECT_EQ(to_file(open_trefoil(), settings), header("-3 32", 36) + "UNKNOT\n");
}

TEST(FindAllKnots, BatchesDoNotChangeTheAnswer) {
  Settings settings;
  settings.step = 6;
  const std::string whole = to_file(open_trefoil(), settings);
  settings.memory = 6000;
  EXPECT_EQ(to_file(open_trefoil(), settings), whole);
}

TEST(FindAllKnots, OneSeedGivesOneFingerprint) {
  Settings settings;
  settings.closure = 2;
  settings.trials = 5;
  const support::Chain chain = support::confined_walk(40, 2, 9);
  std::srand(4);
  const std::string first = to_file(chain, settings);
  std::srand(4);
  EXPECT_EQ(to_file(chain, settings), first);
}

TEST(FindAllKnots, ReportsItsProgressOnTheLog) {
  const support::CapturedStream log(std::clog);
  Settings s;
  s.step = 12;
  FindKnotFingerprint_string(bow(), s.step, s.threshold, s.closure, s.trials, s.mode, s.poly_option,
                             s.poly_flag, s.memory);
  EXPECT_EQ(log.text(),
            "Choosen 1 points on the net of matrix.\n"
            "created 2 jobs of total size 28\n"
            "There is 0 more points on the net of matrix.\n"
            "created 0 jobs of total size 0\n");
}

TEST(FindKnotFingerprint, UnwritableFileIsPassedOver) {
  const support::CapturedStream log(std::clog);
  std::string path = "/nonexistent-directory/file";
  EXPECT_EQ(FindKnotFingerprint(bow(), path.data(), 12, 30, 0, 1, 1, 15, false, kAmple), 1);
}

// The header and every row are flushed, the marker and a dictionary are not.
TEST(FindAllKnots, FlushesEveryLine) {
  const auto flushes = [](const support::Chain& chain, int mode) {
    const support::CapturedStream log(std::clog);
    std::fstream file;
    const support::CapturedStream captured(file);
    FindAllKnots(chain, file, 40, 100, 0, 2, mode, 16, false, kAmple);
    return std::pair(captured.text(), captured.flushes());
  };
  const auto [knotted, knotted_flushes] = flushes(open_trefoil(), 1);
  EXPECT_NE(knotted.find("\n-3 32 3_1 0 "), std::string::npos);
  EXPECT_EQ(knotted_flushes, 2);
  const auto [unknotted, unknotted_flushes] = flushes(bow(), 1);
  EXPECT_NE(unknotted.find("\nUNKNOT\n"), std::string::npos);
  EXPECT_EQ(unknotted_flushes, 1);
  EXPECT_EQ(flushes(open_trefoil(), 0).second, 0);
}

}  // namespace
