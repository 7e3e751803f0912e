// Batches of sub-chains and whole fingerprints against the plain driver: results, messages, draws.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "korvex.h"
#include "reference/reference.hpp"
#include "support/effort.hpp"
#include "support/small_chains.hpp"
#include "support/trace.hpp"

namespace {

using support::Trace;
using support::trace;

std::string bytes_of(const std::vector<fPointR3>& pool) {
  std::string bytes(pool.size() * sizeof(fPointR3), '\0');
  if (!pool.empty()) std::memcpy(bytes.data(), pool.data(), bytes.size());
  return bytes;
}

std::string text_of(const std::vector<Job>& jobs) {
  std::ostringstream text;
  for (const Job& job : jobs) {
    text << job.start << " " << job.length << " " << job.firstId << " " << job.lastId << " "
         << job.begin << " " << job.end << "\n";
  }
  return text.str();
}

TEST(PrepareAllInfixesFuleren, EqualsThePlainForm) {
  const support::CapturedStream log(std::clog);
  for (int seed = 0; seed < support::input_count(); ++seed) {
    support::Random random(static_cast<std::uint64_t>(seed));
    const support::Chain chain = support::small_chain(static_cast<std::uint64_t>(seed));
    std::vector<Job> candidates;
    PrepareJobsFromNet(chain, candidates, 5 + random.below(30));
    if (random.below(5) == 0 && !candidates.empty())
      candidates[0].length = random.below(2000) - 500;
    const int closure = random.below(6) - 1;
    const int trials = random.below(6) - 1;
    const unsigned long long limit =
        random.below(4) == 0 ? ~0ULL : 1300ULL * static_cast<unsigned>(random.below(40));
    const auto run = [&](auto prepare, auto copy) {
      return trace(seed, [&] {
        std::string result;
        std::vector<fPointR3> pool{{1, 2, 3}};
        std::vector<Job> jobs(2);
        std::vector<ChainAtom> atoms(3);
        unsigned next = seed % 7 == 0 ? 1000 : 0;
        for (int batch = 0; batch < 4; ++batch) {
          const int done = prepare(chain, pool, jobs, candidates, next, trials, closure, limit);
          result +=
              std::to_string(done) + " " + std::to_string(next) + bytes_of(pool) + text_of(jobs);
          if (!jobs.empty()) copy(pool, atoms, jobs.back());
          for (const ChainAtom& atom : atoms) {
            result += std::to_string(atom.x) + std::to_string(atom.y) + std::to_string(atom.id);
          }
        }
        return result;
      });
    };
    ASSERT_EQ(run(PrepareAllInfixesFuleren, CopyJobToChainAtom),
              run(reference::PrepareAllInfixesFuleren, reference::CopyJobToChainAtom))
        << "seed " << seed;
  }
}

TEST(CopyJobToChainAtom, OfNoPointsIsEmpty) {
  std::vector<ChainAtom> atoms(3);
  CopyJobToChainAtom({}, atoms, {5, 0, 0, 0, 0, 0});
  EXPECT_TRUE(atoms.empty());
  atoms.resize(2);
  CopyJobToChainAtom({}, atoms, {5, -4, 0, 0, 0, 0});
  EXPECT_TRUE(atoms.empty());
}

// Mostly short, so that a case is cheap, now and then long enough for a knot.
support::Chain some_chain(int seed, support::Random& random) {
  support::Chain chain = support::small_chain(static_cast<std::uint64_t>(seed));
  const auto shorter = static_cast<std::size_t>(1 + random.below(14));
  if (seed % 100 != 0 && chain.size() > shorter) chain.resize(shorter);
  if (chain.empty()) chain.push_back({1, 2, 3, -4});
  return chain;
}

TEST(FindAllKnotsString, EqualsThePlainDriver) {
  int rows = 0;
  for (int seed = 0; seed < support::input_count(); ++seed) {
    support::Random random(static_cast<std::uint64_t>(seed));
    const support::Chain chain = some_chain(seed, random);
    const int step = static_cast<int>(chain.size() / 8) + 1 + random.below(20);
    const int threshold = random.below(60);
    const int closure = random.below(5);
    const int trials = random.below(5);
    const int mode = random.below(2);
    const bool numeric = random.below(4) == 0;
    const unsigned long long limit = random.below(3) == 0 ? 9000 : 1 << 20;
    const auto run = [&](auto find) {
      return trace(seed, [&] {
        return find(chain, step, threshold, closure, trials, mode, 8, numeric, limit);
      });
    };
    const Trace fast = run(FindAllKnots_string);
    ASSERT_EQ(fast, run(reference::FindAllKnots_string)) << "seed " << seed;
    rows += fast.result.find("3_1") != std::string::npos ? 1 : 0;
  }
  EXPECT_GT(rows, 0);
}

TEST(FindAllKnots, WritesThePlainDriversFile) {
  const auto path = std::filesystem::path(testing::TempDir()) / "korvex_fingerprint_equivalence";
  for (int seed = 0; seed < 12; ++seed) {
    support::Random random(static_cast<std::uint64_t>(seed));
    const support::Chain chain = some_chain(100 * seed, random);
    const auto run = [&](auto find) {
      return trace(seed, [&] {
        std::fstream out(path, std::ios::out);
        std::string text =
            std::to_string(find(chain, out, 9, 20, 2, 3, seed % 2, 8, false, 1 << 20));
        out.close();
        std::ostringstream content;
        content << std::ifstream(path).rdbuf();
        return text + content.str();
      });
    };
    ASSERT_EQ(run(FindAllKnots), run(reference::FindAllKnots)) << "seed " << seed;
  }
  std::filesystem::remove(path);
}

}  // namespace
