#include <gtest/gtest.h>

#include <iostream>
#include <utility>
#include <vector>

#include "korvex.h"
#include "support/captured_stream.hpp"

namespace {

using Pairs = std::vector<std::pair<int, int>>;

std::vector<ChainAtom> chain_of(int atoms) {
  std::vector<ChainAtom> chain;
  for (int k = 0; k < atoms; ++k) chain.push_back({0, 0, 0, 1000 - k});
  return chain;
}

Pairs positions(const std::vector<Job>& jobs) {
  Pairs pairs;
  for (const Job& job : jobs) {
    pairs.emplace_back(job.begin, job.end);
    EXPECT_EQ(job.firstId, 1001 - job.begin);
    EXPECT_EQ(job.lastId, 1001 - job.end);
    EXPECT_EQ(job.start, 0);
    EXPECT_EQ(job.length, 0);
  }
  return pairs;
}

struct Answer {
  int result;
  Pairs pairs;
  std::string log;
};

Answer net(int atoms, int step) {
  const support::CapturedStream log(std::clog);
  std::vector<Job> candidates;
  const int result = PrepareJobsFromNet(chain_of(atoms), candidates, step);
  return {result, positions(candidates), log.text()};
}

Answer around(int atoms, const std::vector<RowFile>& rows, int step, int threshold) {
  const support::CapturedStream log(std::clog);
  std::vector<Job> candidates;
  const int result = PrepareJobsAroundNet(chain_of(atoms), candidates, rows, step, threshold);
  return {result, positions(candidates), log.text()};
}

TEST(PrepareJobsFromNet, IsAnchoredAtBothEnds) {
  const Answer answer = net(10, 3);
  EXPECT_EQ(answer.result, 1);
  EXPECT_EQ(answer.pairs, (Pairs{{1, 10}, {1, 7}, {1, 4}, {4, 10}, {4, 7}, {7, 10}}));
  EXPECT_EQ(answer.log, "Choosen 6 points on the net of matrix.\n");
}

TEST(PrepareJobsFromNet, ShortChains) {
  EXPECT_EQ(net(1, 3).log, "Choosen 0 points on the net of matrix.\n");
  EXPECT_EQ(net(0, 3).log, "Choosen 0 points on the net of matrix.\n");
  EXPECT_EQ(net(2, 1).pairs, (Pairs{{1, 2}}));
}

TEST(PrepareJobsFromNet, StepOneIsEverySubChain) {
  EXPECT_EQ(net(4, 1).pairs, (Pairs{{1, 4}, {1, 3}, {1, 2}, {2, 4}, {2, 3}, {3, 4}}));
}

TEST(PrepareJobsFromNet, StepBeyondTheChainIsTheWholeChain) {
  EXPECT_EQ(net(5, 100).pairs, (Pairs{{1, 5}}));
}

TEST(PrepareJobsFromNet, Appends) {
  const support::CapturedStream log(std::clog);
  std::vector<Job> candidates(1);
  PrepareJobsFromNet(chain_of(2), candidates, 1);
  EXPECT_EQ(candidates.size(), 2U);
}

TEST(PrepareJobsAroundNet, SquareAroundAStrongRowWithoutItsCentre) {
  const Answer answer = around(10, {{1, 10, 80, ""}}, 3, 50);
  EXPECT_EQ(answer.result, 0);
  EXPECT_EQ(answer.pairs,
            (Pairs{{1, 8}, {1, 9}, {2, 8}, {2, 9}, {2, 10}, {3, 8}, {3, 9}, {3, 10}}));
  EXPECT_EQ(answer.log, "There is 8 more points on the net of matrix.\n");
}

TEST(PrepareJobsAroundNet, ThresholdIsStrict) {
  EXPECT_TRUE(around(10, {{1, 10, 50, ""}}, 3, 50).pairs.empty());
  EXPECT_EQ(around(10, {{1, 10, 50, ""}}, 3, 50).log,
            "There is 0 more points on the net of matrix.\n");
}

TEST(PrepareJobsAroundNet, OverlappingSquaresGiveAPairOnce) {
  const Answer answer = around(10, {{1, 10, 80, ""}, {1, 8, 80, ""}}, 2, 50);
  EXPECT_EQ(answer.pairs, (Pairs{{1, 7}, {1, 9}, {2, 7}, {2, 8}, {2, 9}, {2, 10}}));
}

TEST(PrepareJobsAroundNet, LaterSquareMarksAnEarlierCentreAgain) {
  const Answer answer = around(10, {{1, 9, 80, ""}, {1, 10, 80, ""}}, 2, 50);
  EXPECT_EQ(answer.pairs, (Pairs{{1, 8}, {1, 9}, {2, 8}, {2, 9}, {2, 10}}));
}

TEST(PrepareJobsAroundNet, NothingOnOrBelowTheDiagonal) {
  EXPECT_EQ(around(6, {{3, 4, 80, ""}}, 2, 0).pairs,
            (Pairs{{2, 3}, {2, 4}, {2, 5}, {3, 5}, {4, 5}}));
}

TEST(PrepareJobsAroundNet, StepBelowOneGivesEmptySquares) {
  EXPECT_TRUE(around(6, {{2, 5, 80, ""}}, 0, 0).pairs.empty());
}

TEST(PrepareJobsAroundNet, LongChainsNeedNoStack) {
  EXPECT_EQ(around(20000, {{1, 20000, 80, ""}}, 2, 0).pairs,
            (Pairs{{1, 19999}, {2, 19999}, {2, 20000}}));
}

}  // namespace
