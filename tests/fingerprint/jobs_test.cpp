#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <vector>

#include "korvex.h"
#include "support/captured_stream.hpp"

namespace {

constexpr unsigned long long kAmplePool = 768000000;

std::vector<ChainAtom> curve_of(int atoms) {
  std::vector<ChainAtom> chain;
  for (int k = 0; k < atoms; ++k) chain.push_back({k + 0.5, k * k * 0.25, k % 3 - 1.0, 101 + k});
  return chain;
}

struct Batch {
  int result = 0;
  std::vector<fPointR3> pool;
  std::vector<Job> jobs;
  std::string log;
  std::string errors;
  int flushes = 0;  // of the log stream
};

Batch prepare(const std::vector<ChainAtom>& chain, const std::vector<Job>& candidates,
              unsigned& next, int trials, int closure, unsigned long long limit) {
  const support::CapturedStream log(std::clog);
  const support::CapturedStream errors(std::cerr);
  Batch batch;
  batch.pool.push_back({9, 9, 9});
  batch.jobs.push_back({9, 9, 9, 9, 9, 9});
  batch.result = PrepareAllInfixesFuleren(chain, batch.pool, batch.jobs, candidates, next, trials,
                                          closure, limit);
  batch.log = log.text();
  batch.errors = errors.text();
  batch.flushes = log.flushes();
  return batch;
}

const std::vector<Job> kNet = {{0, 0, 101, 110, 1, 10}, {0, 0, 101, 107, 1, 7},
                               {0, 0, 101, 104, 1, 4},  {0, 0, 104, 110, 4, 10},
                               {0, 0, 104, 107, 4, 7},  {0, 0, 107, 110, 7, 10}};

TEST(PrepareAllInfixesFuleren, OpenPiecesWithTheirTwoTrailingCopies) {
  const auto chain = curve_of(10);
  for (const int closure : {0, 4, 17}) {
    unsigned next = 0;
    const Batch batch = prepare(chain, {kNet[2]}, next, 2, closure, kAmplePool);
    EXPECT_EQ(batch.result, 1);
    EXPECT_EQ(next, 1U);
    ASSERT_EQ(batch.pool.size(), 12U);
    for (const std::size_t last : {4U, 5U}) {
      EXPECT_EQ(batch.pool[last].x, 3.5F);
      EXPECT_EQ(batch.pool[last].y, 2.25F);
    }
    ASSERT_EQ(batch.jobs.size(), 2U);
    const Job& second = batch.jobs[1];
    EXPECT_EQ(second.start, 6);
    EXPECT_EQ(second.length, 4);
    EXPECT_EQ(second.firstId, 101);
    EXPECT_EQ(second.lastId, 104);
    EXPECT_EQ(second.begin, 1);
    EXPECT_EQ(second.end, 4);
    EXPECT_EQ(batch.log, "created 2 jobs of total size 12\n");
    EXPECT_EQ(batch.errors, "");
  }
}

TEST(PrepareAllInfixesFuleren, ClosedPiecesGrow) {
  for (const int closure : {1, 2, 3}) {
    unsigned next = 0;
    const Batch batch = prepare(curve_of(10), {kNet[0]}, next, 3, closure, kAmplePool);
    ASSERT_EQ(batch.jobs.size(), 3U);
    int start = 0;
    for (const Job& job : batch.jobs) {
      EXPECT_GT(job.length, 10);
      EXPECT_EQ(job.start, start);
      start += job.length + 2;
    }
    EXPECT_EQ(batch.pool.size(), static_cast<std::size_t>(start));
  }
}

TEST(PrepareAllInfixesFuleren, BudgetCutsTheListIntoBatches) {
  const auto chain = curve_of(10);
  unsigned next = 0;
  Batch batch = prepare(chain, kNet, next, 1, 0, 1456);
  EXPECT_EQ(batch.result, 0);
  EXPECT_EQ(next, 2U);
  EXPECT_EQ(batch.log, "created 2 jobs of total size 21The last: 101 104. Will continue.\n");
  batch = prepare(chain, kNet, next, 1, 0, 1456);
  EXPECT_EQ(batch.result, 0);
  EXPECT_EQ(next, 4U);
  batch = prepare(chain, kNet, next, 1, 0, 1456);
  EXPECT_EQ(batch.result, 1);
  EXPECT_EQ(next, 6U);
  EXPECT_EQ(batch.jobs.size(), 2U);
  EXPECT_EQ(batch.log, "created 2 jobs of total size 12\n");
}

TEST(PrepareAllInfixesFuleren, BudgetBelowTheFirstCandidateGivesUp) {
  unsigned next = 0;
  const Batch batch = prepare(curve_of(10), kNet, next, 1, 0, 1299);
  EXPECT_EQ(batch.result, 1);
  EXPECT_EQ(next, 0U);
  EXPECT_TRUE(batch.jobs.empty());
  EXPECT_TRUE(batch.pool.empty());
  EXPECT_EQ(batch.log, "created 0 jobs of total size 0The last: 101 110. Will continue.\n");
  EXPECT_EQ(batch.errors,
            "UUUPS. -------There is no memory? We quit here and do not check whole matrix. SORRY. "
            "\n");
}

TEST(PrepareAllInfixesFuleren, BudgetCountsTheLengthOfACandidate) {
  Job candidate = kNet[0];
  candidate.length = 50;
  unsigned next = 0;
  EXPECT_EQ(prepare(curve_of(10), {candidate}, next, 2, 0, 3899).jobs.size(), 0U);
  EXPECT_EQ(prepare(curve_of(10), {candidate}, next, 2, 0, 3900).jobs.size(), 2U);
}

TEST(PrepareAllInfixesFuleren, WithoutTrialsTheWholeListYieldsNothing) {
  unsigned next = 0;
  const Batch batch = prepare(curve_of(10), kNet, next, 0, 0, kAmplePool);
  EXPECT_EQ(batch.result, 1);
  EXPECT_EQ(next, 6U);
  EXPECT_TRUE(batch.jobs.empty());
  EXPECT_EQ(batch.log, "created 0 jobs of total size 0\n");
}

// In the unsigned arithmetic of the estimate they exceed every budget but the largest ones.
TEST(PrepareAllInfixesFuleren, NegativeTrialsYieldNothing) {
  unsigned next = 2;
  const Batch batch = prepare(curve_of(10), kNet, next, -1, 0, kAmplePool);
  EXPECT_EQ(batch.result, 1);
  EXPECT_EQ(next, 2U);
  EXPECT_TRUE(batch.jobs.empty());
  EXPECT_EQ(batch.log, "created 0 jobs of total size 0The last: 101 104. Will continue.\n");
  next = 0;
  const Batch unlimited = prepare(curve_of(10), kNet, next, -1, 0, ~0ULL);
  EXPECT_EQ(unlimited.result, 1);
  EXPECT_EQ(next, 6U);
  EXPECT_EQ(unlimited.log, "created 0 jobs of total size 0\n");
}

TEST(PrepareAllInfixesFuleren, FlushesTheLogOnce) {
  unsigned next = 0;
  EXPECT_EQ(prepare(curve_of(10), kNet, next, 1, 0, kAmplePool).flushes, 1);
  next = 0;
  EXPECT_EQ(prepare(curve_of(10), kNet, next, 1, 0, 2000).flushes, 1);
  next = 0;
  EXPECT_EQ(prepare(curve_of(10), kNet, next, 1, 0, 5).flushes, 1);
}

TEST(PrepareAllInfixesFuleren, ExhaustedCursorStartsAgain) {
  unsigned next = 6;
  EXPECT_EQ(prepare(curve_of(10), kNet, next, 1, 0, kAmplePool).jobs.size(), 6U);
  next = 3;
  EXPECT_EQ(prepare(curve_of(10), {}, next, 1, 0, kAmplePool).result, 1);
  EXPECT_EQ(next, 0U);
}

TEST(PrepareAllInfixesFuleren, DrawsTwoDifferentDirectionsACopy) {
  unsigned next = 0;
  std::srand(3);
  prepare(curve_of(10), kNet, next, 2, 0, kAmplePool);
  const int after = std::rand();
  std::srand(3);
  for (int copy = 0; copy < 12; ++copy) {
    const int a = std::rand() % 60;
    while (std::rand() % 60 == a) {
    }
  }
  EXPECT_EQ(after, std::rand());
}

TEST(PrepareAllInfixes, BadLengths) {
  const auto chain = curve_of(6);
  for (const unsigned bad : {0U, 3U, 7U}) {
    const support::CapturedStream errors(std::cerr);
    std::vector<fPointR3> pool(1);
    std::vector<Job> jobs(1);
    unsigned len = bad, start = 0;
    EXPECT_EQ(PrepareAllInfixes(chain, pool, jobs, len, start, kAmplePool), -1);
    EXPECT_TRUE(pool.empty());
    EXPECT_TRUE(jobs.empty());
    EXPECT_EQ(errors.text(),
              "Problem with 'len' in PrepareAllInfixes(), korvex. Tell it Velna. \n");
  }
}

TEST(PrepareAllInfixes, EveryLengthAndStart) {
  const auto chain = curve_of(6);
  const support::CapturedStream log(std::clog);
  std::vector<fPointR3> pool;
  std::vector<Job> jobs;
  unsigned len = 4, start = 0;
  EXPECT_EQ(PrepareAllInfixes(chain, pool, jobs, len, start, kAmplePool), 1);
  EXPECT_EQ(len, 7U);
  ASSERT_EQ(jobs.size(), 6U);  // 3 of 4 atoms, 2 of 5, 1 of 6
  EXPECT_EQ(jobs[1].start, 6);
  EXPECT_EQ(jobs[1].length, 4);
  EXPECT_EQ(jobs[1].firstId, 102);
  EXPECT_EQ(jobs[1].lastId, 105);
  EXPECT_EQ(jobs[1].begin, 2);
  EXPECT_EQ(jobs[1].end, 5);
  EXPECT_EQ(pool.size(), 3U * 6 + 2U * 7 + 8);
  EXPECT_EQ(log.text(), "created 6 jobs of total size 40. Zaczynamy od id 1, len 7\n");
  EXPECT_EQ(log.flushes(), 1);
}

TEST(PrepareAllInfixes, WholeChainOnly) {
  const support::CapturedStream log(std::clog);
  std::vector<fPointR3> pool;
  std::vector<Job> jobs;
  unsigned len = 6, start = 0;
  EXPECT_EQ(PrepareAllInfixes(curve_of(6), pool, jobs, len, start, kAmplePool), 1);
  EXPECT_EQ(jobs.size(), 1U);
  EXPECT_EQ(len, 7U);
}

TEST(PrepareAllInfixes, BudgetKeepsThePieceThatDidNotFit) {
  const auto chain = curve_of(6);
  const support::CapturedStream log(std::clog);
  std::vector<fPointR3> pool;
  std::vector<Job> jobs;
  unsigned len = 4, start = 0;
  const unsigned long long two_pieces = (4 + 6) * 26 + 52;
  EXPECT_EQ(PrepareAllInfixes(chain, pool, jobs, len, start, two_pieces), 0);
  EXPECT_EQ(jobs.size(), 2U);
  EXPECT_EQ(len, 4U);
  EXPECT_EQ(start, 2U);
  EXPECT_EQ(log.text(), "");
  EXPECT_EQ(PrepareAllInfixes(chain, pool, jobs, len, start, two_pieces), 0);
  EXPECT_EQ(jobs[0].begin, 3);
}

TEST(CopyJobToChainAtom, CopiesThePieceWithoutItsTrailingCopies) {
  const std::vector<fPointR3> pool{{1, 2, 3}, {4, 5, 6}, {0.1F, 8, 9}, {0.1F, 8, 9}, {0.1F, 8, 9}};
  std::vector<ChainAtom> atoms(4, {7, 7, 7, 7});
  CopyJobToChainAtom(pool, atoms, {1, 2, 50, 51, 1, 2});
  ASSERT_EQ(atoms.size(), 2U);
  EXPECT_EQ(atoms[0].x, 4);
  EXPECT_EQ(atoms[1].x, static_cast<double>(0.1F));
  EXPECT_EQ(atoms[1].id, 0);
}

TEST(CopyJobToChainAtom, EmptyJobClears) {
  std::vector<ChainAtom> atoms(4, {7, 7, 7, 7});
  CopyJobToChainAtom({}, atoms, {0, 0, 1, 1, 1, 1});
  EXPECT_TRUE(atoms.empty());
}

}  // namespace
