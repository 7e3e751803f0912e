// The refinement's candidates against those of the plain mark grid.
#include <gtest/gtest.h>

#include <cstdint>
#include <iostream>
#include <string>
#include <vector>

#include "korvex.h"
#include "reference/reference.hpp"
#include "support/captured_stream.hpp"
#include "support/chains.hpp"
#include "support/effort.hpp"

namespace {

std::vector<ChainAtom> numbered(int atoms) {
  std::vector<ChainAtom> chain;
  for (int k = 0; k < atoms; ++k) chain.push_back({0, 0, 0, 100 + 3 * k});
  return chain;
}

bool same_job(const Job& a, const Job& b) {
  return a.start == b.start && a.length == b.length && a.firstId == b.firstId &&
         a.lastId == b.lastId && a.begin == b.begin && a.end == b.end;
}

bool same_jobs(const std::vector<Job>& a, const std::vector<Job>& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), same_job);
}

template <class Prepare>
std::string messages_of(Prepare prepare) {
  const support::CapturedStream log(std::clog);
  prepare();
  return log.text();
}

TEST(PrepareJobsAroundNet, EqualsThePlainForm) {
  std::size_t found = 0;
  for (int seed = 0; seed < support::input_count(); ++seed) {
    support::Random random(static_cast<std::uint64_t>(seed));
    const int atoms = random.below(40);
    const int step = random.below(9) - 1;
    const auto chain = numbered(atoms);
    std::vector<RowFile> rows;
    for (int k = random.below(12); k > 0; --k) {
      const auto position = [&] { return random.below(atoms + 6) - 2; };
      const int begin = position();
      rows.push_back({begin, position(), random.below(100), ""});
      if (random.below(4) == 0)
        rows.push_back(rows[static_cast<std::size_t>(random.below(static_cast<int>(rows.size())))]);
    }
    std::vector<Job> fast{{1, 2, 3, 4, 5, 6}};
    std::vector<Job> plain = fast;
    const std::string fast_text =
        messages_of([&] { PrepareJobsAroundNet(chain, fast, rows, step, 30); });
    const std::string plain_text =
        messages_of([&] { reference::PrepareJobsAroundNet(chain, plain, rows, step, 30); });
    ASSERT_TRUE(same_jobs(fast, plain)) << "seed " << seed;
    ASSERT_EQ(fast_text, plain_text);
    found += plain.size() - 1;
  }
  EXPECT_GT(found, 1000U);
}

TEST(PrepareJobsAroundNet, CopesWithTwentyThousandAtoms) {
  const auto chain = numbered(20000);
  const std::vector<RowFile> rows{{1, 20000, 90, ""}, {8001, 12000, 60, ""}, {8010, 12001, 50, ""}};
  std::vector<Job> jobs;
  messages_of([&] { PrepareJobsAroundNet(chain, jobs, rows, 50, 30); });
  // A quarter of a square in the corner without its centre; two squares of side 99 that share 90
  // rows and 98 columns, the first one's centre marked by the second, whose own is not.
  EXPECT_EQ(jobs.size(), 50U * 50U - 1 + 2U * 99U * 99U - 90U * 98U - 1);
}

}  // namespace
