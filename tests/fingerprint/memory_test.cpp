// How much memory and stack the fingerprint takes: each measured in a process of its own.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <cmath>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include "korvex.h"
#include "support/captured_stream.hpp"
#include "support/chains.hpp"

namespace {

// A sanitizer's own memory is many times the program's.
#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define SANITIZED
#endif
#elif defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define SANITIZED
#endif
#if defined(SANITIZED)
constexpr bool kIsSanitized = true;
#else
constexpr bool kIsSanitized = false;
#endif

constexpr unsigned long long kMebibyte = 1 << 20;
constexpr unsigned long long kBudget = 2 * kMebibyte;
constexpr unsigned long long kBesides = 16 * kMebibyte;

unsigned long long peak_memory() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<unsigned long long>(usage.ru_maxrss) * 1024;
}

// Ends the process: with status 0 when `run` made its peak grow by less than the budget and 16 MiB.
template <class Run>
[[noreturn]] void exit_after(Run run) {
  const unsigned long long before = peak_memory();
  run();
  const unsigned long long growth = peak_memory() - before;
  std::cerr << "grew by " << growth / kMebibyte << " MiB\n";
  std::_Exit(growth < kBudget + kBesides ? 0 : 1);
}

// Points on a helix, which reduces to next to nothing.
support::Chain helix(int atoms) {
  support::Chain chain;
  for (int k = 0; k < atoms; ++k) {
    chain.push_back({5 * std::cos(0.1 * k), 5 * std::sin(0.1 * k), 0.3 * k, k + 1});
  }
  return chain;
}

// All pieces together are 100 MB of points.
void pool_every_batch() {
  const support::Chain chain = helix(3000);
  const support::CapturedStream log(std::clog);
  std::vector<Job> candidates;
  PrepareJobsFromNet(chain, candidates, 150);
  std::vector<fPointR3> pool;
  std::vector<Job> jobs;
  std::size_t points = 0;
  unsigned next = 0;
  int done = 0;
  while (done == 0) {
    done = PrepareAllInfixesFuleren(chain, pool, jobs, candidates, next, 40, 2, kBudget);
    points += pool.size();
  }
  if (points * sizeof(fPointR3) < 100'000'000) std::_Exit(2);
}

TEST(FingerprintMemory, BatchesStayWithinTheBudget) {
  if (kIsSanitized) GTEST_SKIP() << "the sanitizer's memory counts too";
  EXPECT_EXIT(exit_after(pool_every_batch), testing::ExitedWithCode(0), "grew by");
}

// All pieces together are 25 MB of points.
void fingerprint_in_batches() {
  const support::CapturedStream log(std::clog);
  FindAllKnots_string(helix(1000), 50, 30, 2, 30, 1, 15, false, kBudget);
}

TEST(FingerprintMemory, WholeFingerprintStaysWithinTheBudget) {
  if (kIsSanitized) GTEST_SKIP() << "the sanitizer's memory counts too";
  EXPECT_EXIT(exit_after(fingerprint_in_batches), testing::ExitedWithCode(0), "grew by");
}

// A coil of 20,000 atoms in both modes of work: one whole sub-chain, and the refinement about it.
void examine_a_long_chain() {
  const rlimit limit{kMebibyte, kMebibyte};
  if (setrlimit(RLIMIT_STACK, &limit) != 0) std::_Exit(2);
  const support::CapturedStream log(std::clog);
  const support::Chain chain = helix(20000);
  const std::string text = FindAllKnots_string(chain, 20000, 30, 2, 1, 1, 15, false, kBudget);
  std::vector<Job> candidates;
  PrepareJobsAroundNet(chain, candidates, {{1, 20000, 90, ""}}, 100, 30);
  int counts[42] = {};
  FindOneKnot(chain, counts, 2, 1);
  std::_Exit(candidates.size() == 9999 && counts[0] == 1 && !text.empty() ? 0 : 1);
}

TEST(FingerprintMemory, TwentyThousandAtomsNeedAMebibyteOfStack) {
  EXPECT_EXIT(examine_a_long_chain(), testing::ExitedWithCode(0), "");
}

}  // namespace
