#include <gtest/gtest.h>

#include <iomanip>
#include <iostream>
#include <sstream>
#include <string>

#include "korvex.h"
#include "support/captured_stream.hpp"
#include "support/chains.hpp"
#include "support/national_locale.hpp"
#include "support/temporary_file.hpp"

namespace {

std::string as_text(const support::Chain& chain) {
  std::ostringstream text;
  text << std::setprecision(17);
  for (const ChainAtom& atom : chain) {
    text << atom.id << " " << atom.x << " " << atom.y << " " << atom.z << "\n";
  }
  return text.str();
}

support::Chain trefoil() {
  support::Chain chain = support::torus_knot(2, 3, 40);
  for (std::size_t k = 0; k < chain.size(); ++k) chain[k].id = static_cast<int>(k) + 1;
  return chain;
}

struct Answer {
  int result;
  std::string out;
  std::string errors;
  std::string log;
  std::string file;
  int out_flushes = 0;
  int log_flushes = 0;
};

Answer find(const std::string& content, int type, int check, int closure = 0, int step = 40,
            int threshold = 100) {
  support::TemporaryFile chain(content);
  support::TemporaryFile output("left from before");
  const support::CapturedStream out(std::cout);
  const support::CapturedStream errors(std::cerr);
  const support::CapturedStream log(std::clog);
  Answer answer;
  answer.result =
      FindKnots(type, chain.name(), output.name(), check, step, threshold, closure, 2, 0);
  answer.out = out.text();
  answer.errors = errors.text();
  answer.log = log.text();
  answer.out_flushes = out.flushes();
  answer.log_flushes = log.flushes();
  answer.file = output.content();
  const std::string path = output.path();
  if (const auto at = answer.log.find(path); at != std::string::npos) {
    answer.log.replace(at, path.size(), "OUTPUT");
  }
  return answer;
}

TEST(FindKnots, WholeChainPrintsTheRankedListAndEmptiesTheFile) {
  const Answer answer = find(as_text(trefoil()), 0, 0);
  EXPECT_EQ(answer.result, 0);
  EXPECT_EQ(answer.out, "3_1(100%) \n");
  EXPECT_EQ(answer.out_flushes, 1);
  EXPECT_EQ(answer.errors, "");
  EXPECT_EQ(answer.log, "");
  EXPECT_EQ(answer.file, "");
}

TEST(FindKnots, FingerprintGoesToTheFile) {
  const Answer answer = find(as_text(trefoil()), 2, 0);
  EXPECT_EQ(answer.result, 0);
  EXPECT_EQ(answer.out, "");
  EXPECT_EQ(answer.file.substr(0, 12), "# 1 40 >90 >");
  EXPECT_NE(answer.file.find("\n1 40 3_1 0 "), std::string::npos);
  EXPECT_EQ(answer.log,
            "Choosen 1 points on the net of matrix.\n"
            "created 2 jobs of total size 84\n"
            "There is 0 more points on the net of matrix.\n"
            "created 0 jobs of total size 0\n"
            "The full matrix is written to the file OUTPUT.\n");
  EXPECT_EQ(answer.log_flushes, 2);  // of the two batches alone
}

TEST(FindKnots, DoesNotGroupDigitsInAnyLocale) {
  support::Chain chain = trefoil();
  for (ChainAtom& atom : chain) atom.id += 1000;
  const std::string content = as_text(chain);
  const support::NationalLocale locale;
  EXPECT_EQ(find(content, 2, 0).file.substr(0, 11), "# 1001 1040");
}

TEST(FindKnots, OtherTypesAreRejected) {
  for (const int type : {1, 3, -1}) {
    const Answer answer = find(as_text(trefoil()), type, 0);
    EXPECT_EQ(answer.result, 0);
    EXPECT_EQ(answer.errors, "\nUnpossible error with type (korvex.FindKnots()).\n");
    EXPECT_EQ(answer.out, "");
    EXPECT_EQ(answer.file, "");
  }
}

TEST(FindKnots, UnreadableChainStillTruncatesTheFile) {
  for (const std::string& content : {std::string(""), std::string("no chain at all\n")}) {
    const Answer answer = find(content, 0, 1);
    EXPECT_EQ(answer.result, -1);
    EXPECT_EQ(answer.errors, "Unable to open file or empty file (or wrong data)!\n");
    EXPECT_EQ(answer.out, "");
    EXPECT_EQ(answer.file, "");
  }
}

TEST(FindKnots, MissingChainFile) {
  support::TemporaryFile output("left from before");
  std::string missing = "/nonexistent-directory/chain.pdb";
  const support::CapturedStream errors(std::cerr);
  EXPECT_EQ(FindKnots(0, missing.data(), output.name(), 0, 1, 1, 0, 1, 0), -1);
  EXPECT_EQ(errors.text(), "Unable to open file or empty file (or wrong data)!\n");
  EXPECT_EQ(output.content(), "");
}

TEST(FindKnots, DistanceVerdictGoesToTheFileAndTheLog) {
  support::Chain chain = trefoil();
  chain.push_back({1000, 0, 0, 41});
  const std::string verdict = CheckDistancesBetweenAtoms(chain);
  ASSERT_NE(verdict, "OK");
  const Answer checked = find(as_text(chain), 1, 1);
  EXPECT_EQ(checked.file, verdict + "\n");
  EXPECT_EQ(checked.log, verdict + "\n\n");
  EXPECT_EQ(checked.log_flushes, 2);
  const Answer unchecked = find(as_text(chain), 1, 0);
  EXPECT_EQ(unchecked.file, "");
  EXPECT_EQ(unchecked.log, "");
  EXPECT_EQ(find(as_text(trefoil()), 1, 1).file, "");
}

TEST(FindKnots, UnwritableOutputIsPassedOver) {
  support::TemporaryFile chain(as_text(trefoil()));
  std::string nowhere = "/nonexistent-directory/out";
  const support::CapturedStream out(std::cout);
  EXPECT_EQ(FindKnots(0, chain.name(), nowhere.data(), 0, 1, 1, 0, 1, 0), 0);
  EXPECT_EQ(out.text(), "3_1(100%) \n");
}

TEST(MainFindKnots, TakesClosureAndTrialsBeforeTheFingerprintsSettings) {
  support::TemporaryFile chain(as_text(trefoil()));
  support::TemporaryFile output;
  const support::CapturedStream out(std::cout);
  const support::CapturedStream log(std::clog);
  // Read in the driver's order, closure 40 would be no closure and the step 0 would never end.
  EXPECT_EQ(MainFindKnots(chain.name(), output.name(), 2, 0, 0, 2, 40, 100, 0), 0);
  EXPECT_NE(output.content().find("\n1 40 3_1 0 "), std::string::npos);
  EXPECT_EQ(MainFindKnots(chain.name(), output.name(), 0, 0, 0, 10, 0, 0, 0), 0);
  EXPECT_EQ(out.text(), "3_1(100%) \n");
}

}  // namespace
