#include "korvex/fingerprint.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <string>

#include "engine/fingerprint/fingerprint_data.hpp"
#include "engine/named_diagrams.hpp"
#include "engine/random_chains.hpp"
#include "korvex/error.hpp"

namespace korvex {
namespace {

constexpr std::uint64_t kPrime = 2147483647;

std::uint64_t times(std::uint64_t a, std::uint64_t b) { return a * b % kPrime; }

std::uint64_t power(std::uint64_t base, std::uint64_t exponent) {
  std::uint64_t result = 1;
  for (; exponent > 0; exponent >>= 1, base = times(base, base))
    if (exponent & 1) result = times(result, base);
  return result;
}

// Alexander polynomial at t modulo the prime, up to units, by plain elimination of the matrix of
// Wirtinger relations: at a positive crossing (1-t) over + t in - out, else (1-t) over + t out -
// in.
std::uint64_t alexander_at(const GaussCode& code, std::uint64_t t) {
  const std::size_t arcs = code.size() / 2;
  std::vector<std::size_t> arc(code.size());
  std::size_t current = 0;
  for (std::size_t k = 0; k < code.size(); ++k) {
    arc[k] = current;
    if (!code[k].over) current = (current + 1) % arcs;
  }
  std::vector<std::vector<std::uint64_t>> matrix;
  for (std::size_t k = 0; k < code.size(); ++k) {
    if (code[k].over) continue;
    std::vector<std::uint64_t> row(arcs, 0);
    const auto add = [&](std::size_t column, std::uint64_t value) {
      row[column] = (row[column] + value) % kPrime;
    };
    const std::size_t in = arc[k];
    const std::size_t out = (arc[k] + 1) % arcs;
    add(arc[static_cast<std::size_t>(code[k].mate)], kPrime + 1 - t);
    add(code[k].positive ? in : out, t);
    add(code[k].positive ? out : in, kPrime - 1);
    matrix.push_back(std::move(row));
  }
  std::uint64_t determinant = 1;
  const std::size_t size = arcs - 1;
  for (std::size_t k = 0; k < size; ++k) {
    std::size_t pivot = k;
    while (pivot < size && matrix[pivot][k] == 0) ++pivot;
    if (pivot == size) return 0;
    std::swap(matrix[k], matrix[pivot]);
    determinant = times(determinant, matrix[k][k]);
    const std::uint64_t inverse = power(matrix[k][k], kPrime - 2);
    for (std::size_t row = k + 1; row < size; ++row) {
      const std::uint64_t factor = times(matrix[row][k], inverse);
      if (factor == 0) continue;
      for (std::size_t column = k; column < size; ++column)
        matrix[row][column] =
            (matrix[row][column] + kPrime - times(factor, matrix[k][column])) % kPrime;
    }
  }
  return determinant;
}

// A name that is the same for diagrams of one knot and hardly ever for those of two.
std::string alexander_name(const GaussCode& closed) {
  constexpr std::uint64_t kPoint = 1234567890;
  const std::uint64_t value =
      times(alexander_at(closed, kPoint), alexander_at(closed, power(kPoint, kPrime - 2)));
  return value == 1 ? "0_1" : std::to_string(value);
}

Fingerprint computed(std::span<const Point> chain, const FingerprintOptions& options,
                     const korvex::Run& run = {}, SubChains sub_chains = SubChains::kInClasses) {
  return fingerprint_with(NamedDiagrams(alexander_name), chain, options, run, sub_chains);
}

void expect_same(const Fingerprint& a, const Fingerprint& b) {
  ASSERT_EQ(a.stations(), b.stations());
  ASSERT_EQ(a.types(), b.types());
  for (std::size_t begin = 0; begin < a.stations().size(); ++begin)
    for (std::size_t end = begin + 1; end < a.stations().size(); ++end)
      for (std::size_t type = 0; type < a.types().size(); ++type)
        ASSERT_EQ(a.count(type, begin, end), b.count(type, begin, end))
            << a.types()[type] << " of " << begin << "-" << end;
}

class BothClosures : public testing::TestWithParam<Closure> {};
INSTANTIATE_TEST_SUITE_P(Fingerprint, BothClosures,
                         testing::Values(Closure::kRays, Closure::kTwoPoints),
                         [](const auto& closure) {
                           return closure.param == Closure::kRays ? "Rays" : "TwoPoints";
                         });

TEST_P(BothClosures, EqualTheWayOneByOneInEverySubChain) {
  std::size_t knotted_types = 0;
  for (unsigned seed = 0; seed < 6; ++seed) {
    const auto chain = compact_walk(seed, 30 + 4 * static_cast<int>(seed));
    const FingerprintOptions options{.closure = GetParam(), .directions = 6};
    const Fingerprint fast = computed(chain, options, {.seed = seed});
    expect_same(fast, computed(chain, options, {.seed = seed}, SubChains::kOneByOne));
    knotted_types += fast.types().size() - 1;
  }
  EXPECT_GT(knotted_types, 10u);
}

TEST_P(BothClosures, DoNotDependOnThreads) {
  const auto chain = compact_walk(3, 80);
  const FingerprintOptions options{.closure = GetParam(), .directions = 10};
  const Fingerprint one = computed(chain, options, {.threads = 1});
  for (const unsigned threads : {2u, 5u})
    expect_same(one, computed(chain, options, {.threads = threads}));
}

TEST_P(BothClosures, WithAStepAreThoseOfTheirStations) {
  const auto chain = compact_walk(5, 70);
  FingerprintOptions options{.closure = GetParam(), .directions = 8};
  const Fingerprint fine = computed(chain, options);
  options.step = 7;
  const Fingerprint coarse = computed(chain, options);
  ASSERT_EQ(coarse.stations().back(), 70);
  for (std::size_t a = 0; a < coarse.stations().size(); ++a) {
    for (std::size_t b = a + 1; b < coarse.stations().size(); ++b) {
      const auto begin = static_cast<std::size_t>(coarse.stations()[a]);
      const auto end = static_cast<std::size_t>(coarse.stations()[b]);
      const auto vote = coarse.dominant(a, b);
      const auto fine_vote = fine.dominant(begin, end);
      EXPECT_EQ(vote.share, fine_vote.share);
    }
  }
}

TEST_P(BothClosures, OfTinyAndDegenerateChainsAreUnknotted) {
  for (const std::size_t size : {0u, 1u, 2u, 3u, 4u, 5u}) {
    std::vector<Point> line;
    for (std::size_t i = 0; i < size; ++i) line.push_back({static_cast<double>(i), 0, 0});
    for (const auto& chain : {line, std::vector<Point>(size, Point{1, 2, 3})}) {
      const Fingerprint found = computed(chain, {.closure = GetParam(), .directions = 3});
      EXPECT_EQ(found.stations().size(), size);
      EXPECT_EQ(found.types(), std::vector<std::string>{"0_1"});
    }
  }
}

TEST_P(BothClosures, StopWhenAsked) {
  std::stop_source source;
  korvex::Run run;
  run.stop = source.get_token();
  run.progress = [&](double) { source.request_stop(); };
  try {
    computed(compact_walk(1, 60), {.closure = GetParam()}, run);
    FAIL() << "nothing was thrown";
  } catch (const Error& error) {
    EXPECT_EQ(error.code(), ErrorCode::kCancelled);
  }
}

TEST_P(BothClosures, HandAnExceptionOfAWorkerToTheCaller) {
  const auto fail = [](const GaussCode&) -> std::string {
    throw std::runtime_error("from a worker");
  };
  for (const unsigned threads : {1u, 3u}) {
    try {
      fingerprint_with(NamedDiagrams(fail), compact_walk(3, 60), {.closure = GetParam()},
                       {.threads = threads});
      FAIL() << "nothing was thrown";
    } catch (const std::runtime_error& error) {
      EXPECT_STREQ(error.what(), "from a worker");
    }
  }
}

TEST_P(BothClosures, ReportProgressThatRisesToOne) {
  for (const unsigned threads : {1u, 3u}) {
    std::vector<double> seen;
    korvex::Run run{.threads = threads};
    run.progress = [&](double fraction) { seen.push_back(fraction); };
    computed(compact_walk(3, 40), {.closure = GetParam(), .directions = 20}, run);
    ASSERT_FALSE(seen.empty());
    EXPECT_GE(seen.front(), 0);
    EXPECT_TRUE(std::is_sorted(seen.begin(), seen.end()));
    EXPECT_EQ(seen.back(), 1);
  }
}

TEST(Fingerprint, CountsAddUpToTheTrials) {
  const Fingerprint found = computed(compact_walk(9, 90), {.directions = 12});
  const std::size_t last = found.stations().size() - 1;
  for (std::size_t begin = 0; begin < last; ++begin) {
    std::uint32_t votes = 0;
    for (std::size_t type = 0; type < found.types().size(); ++type)
      votes += found.count(type, begin, last);
    EXPECT_EQ(votes, found.trials());
  }
}

TEST(Fingerprint, OfTheReversedChainIsReversed) {
  const auto chain = compact_walk(2, 60);
  std::vector<Point> reversed(chain.rbegin(), chain.rend());
  const Fingerprint forth = computed(chain, {.directions = 5});
  const Fingerprint back = computed(reversed, {.directions = 5});
  ASSERT_EQ(forth.types(), back.types());
  const std::size_t last = chain.size() - 1;
  for (std::size_t begin = 0; begin < last; ++begin)
    for (std::size_t end = begin + 1; end <= last; ++end)
      for (std::size_t type = 0; type < forth.types().size(); ++type)
        ASSERT_EQ(forth.count(type, begin, end), back.count(type, last - end, last - begin));
}

TEST(Fingerprint, RefusesAChainWhoseVotesNeedTooMuchMemory) {
  const auto chain = compact_walk(3, 80);
  for (const unsigned threads : {1u, 2u}) {
    try {
      computed(chain, {.most_memory = 100'000}, {.threads = threads});
      FAIL() << "nothing was thrown";
    } catch (const Error& error) {
      EXPECT_EQ(error.code(), ErrorCode::kInvalidArgument);
      EXPECT_NE(std::string(error.what()).find("choose a larger step"), std::string::npos);
    }
  }
  EXPECT_GT(computed(chain, {.most_memory = 100'000'000}).types().size(), 1u);
}

TEST(TypeCounts, KnowTheirMemoryAndTheirSums) {
  TypeCounts counts(200);
  EXPECT_EQ(counts.bytes(), 0u);
  counts.add(2, {0, 70}, {100, 199});
  counts.add(1, {5, 5}, {150, 150});
  EXPECT_GT(counts.bytes(), 4 * sizeof(std::uint32_t) * 64 * 64);
  counts.sum_up();
  EXPECT_EQ(counts.count(0, 5, 150), 2u);
  EXPECT_EQ(counts.count(0, 70, 199), 1u);
  EXPECT_EQ(counts.count(0, 71, 199), 0u);
}

TEST(Fingerprint, RefusesTypesAndSubChainsThatItHasNot) {
  const Fingerprint found = computed(compact_walk(3, 40), {.directions = 4});
  const std::size_t n = found.stations().size();
  const std::size_t types = found.types().size();
  const auto code_of = [](const auto& ask) {
    try {
      ask();
    } catch (const Error& error) {
      return error.code();
    }
    return ErrorCode::kCancelled;  // nothing was thrown
  };
  EXPECT_EQ(code_of([&] { (void)found.count(types, 0, 1); }), ErrorCode::kInvalidArgument);
  EXPECT_EQ(code_of([&] { (void)found.share(types, 0, 1); }), ErrorCode::kInvalidArgument);
  for (const auto& [begin, end] : std::vector<std::pair<std::size_t, std::size_t>>{
           {0, n}, {n, n + 1}, {3, 3}, {4, 3}, {0, std::size_t(-1)}}) {
    for (const std::size_t type : {std::size_t{0}, types - 1}) {
      EXPECT_EQ(code_of([&] { (void)found.count(type, begin, end); }), ErrorCode::kInvalidArgument);
      EXPECT_EQ(code_of([&] { (void)found.share(type, begin, end); }), ErrorCode::kInvalidArgument);
    }
    EXPECT_EQ(code_of([&] { (void)found.dominant(begin, end); }), ErrorCode::kInvalidArgument);
  }
  EXPECT_EQ(found.count(0, n - 2, n - 1), 4u);
  const Fingerprint empty = computed({}, {.directions = 4});
  EXPECT_EQ(code_of([&] { (void)empty.dominant(0, 0); }), ErrorCode::kInvalidArgument);
}

TEST(Fingerprint, RefusesOptionsOutOfRange) {
  const auto chain = random_walk(1, 10);
  EXPECT_THROW(computed(chain, {.directions = 0}), Error);
  EXPECT_THROW(computed(chain, {.directions = 1'000'001}), Error);
  EXPECT_THROW(computed(chain, {.step = 0}), Error);
  EXPECT_THROW(computed(chain, {.closure = Closure::kDirect}), Error);
}

}  // namespace
}  // namespace korvex
