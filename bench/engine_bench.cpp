// The engine's votes and fingerprints beside the plain pipeline: close, reduce, project, take the
// determinant, look up, once for every closure of every sub-chain.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <ctime>
#include <string>
#include <vector>

#include "comparison.hpp"
#include "engine/closures/votes.hpp"
#include "engine/fingerprint/fingerprint_data.hpp"
#include "engine/invariants/of_codes.hpp"
#include "engine/named_diagrams.hpp"
#include "korvex/fingerprint.hpp"
#include "korvex/votes.hpp"
#include "reference/preprocess.hpp"
#include "reference/reference.hpp"
#include "support/chains.hpp"

namespace {

using support::Chain;

std::vector<korvex::Point> points_of(const Chain& chain) {
  std::vector<korvex::Point> points;
  for (const ChainAtom& atom : chain) points.push_back({atom.x, atom.y, atom.z});
  return points;
}

Chain coil(int atoms, std::uint64_t seed) {
  support::Random random(seed);
  Chain chain;
  ChainAtom atom{0, 0, 0, 0};
  for (int i = 0; i < atoms; ++i) {
    atom.id = i + 1;
    chain.push_back(atom);
    atom.x += random.normal();
    atom.y += random.normal();
    atom.z += random.normal();
  }
  return chain;
}

std::string named_by_key(const korvex::GaussCode& closed) {
  const std::uint64_t key = korvex::alexander_key(closed);
  return key == 1 ? "0_1" : std::to_string(key);
}

// Processor seconds of the process: what others run on the machine does not count.
double cpu_now() {
  timespec time{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

// One closure, plainly: closed, reduced and decided along the first direction that can be.
int plain_answer(Chain chain, korvex::Closure closure) {
  constexpr double kRadius = 1.25;
  constexpr int kUnusable = 40;
  constexpr int kDirections = 30;
  if (closure == korvex::Closure::kRays) {
    CloseChain_1direction(chain);
  } else {
    while (CloseChain_2points(chain, kRadius) == -1) {
    }
  }
  reference::ChainReduce(chain, true);
  int answer = kUnusable;
  for (int d = 0; d < kDirections && answer == kUnusable; ++d)
    answer = reference::FindTheKnotInParticularDirection(chain, d);
  return answer;
}

// Seconds of the plain pipeline for one closure.
double plain_seconds(const Chain& chain, korvex::Closure closure, int trials) {
  const double start = cpu_now();
  for (int k = 0; k < trials; ++k) benchmark::DoNotOptimize(plain_answer(chain, closure));
  return (cpu_now() - start) / trials;
}

void report(benchmark::State& state, double fast, double plain) {
  state.SetIterationTime(fast);
  state.counters["fast_us"] = 1e6 * fast;
  state.counters["plain_us"] = 1e6 * plain;
  state.counters["ratio"] = plain / fast;
}

// 100 closures of one chain.
void vote(benchmark::State& state, Chain (*draw)(int, std::uint64_t), int atoms,
          korvex::Closure closure) {
  constexpr int kTrials = 100;
  constexpr int kPlainTrials = 5;
  for (auto _ : state) {
    double fast = 0;
    double plain = 0;
    for (int round = 0; round < 3; ++round) {
      const Chain chain = draw(atoms, bench::next_seed());
      const auto points = points_of(chain);
      const double start = cpu_now();
      korvex::vote_with(korvex::NamedDiagrams(named_by_key), points,
                        {.closure = closure, .trials = kTrials}, {});
      fast += cpu_now() - start;
      plain += kTrials * plain_seconds(chain, closure, kPlainTrials);
    }
    report(state, fast / 3, plain / 3);
  }
}

// Seconds of the plain pipeline for every sub-chain, from a sample of them.
double plain_fingerprint_seconds(const Chain& chain, korvex::Closure closure, int directions,
                                 std::uint64_t seed) {
  constexpr int kSample = 60;
  support::Random random(seed);
  const int n = static_cast<int>(chain.size());
  double seconds = 0;
  for (int k = 0; k < kSample; ++k) {
    int begin = 0;
    int end = 0;
    while (begin >= end) {
      begin = random.below(n);
      end = random.below(n);
    }
    seconds += plain_seconds({chain.begin() + begin, chain.begin() + end + 1}, closure, 1);
  }
  return seconds / kSample * (n * (n - 1.0) / 2) * directions;
}

void fingerprint(benchmark::State& state, int atoms, korvex::Closure closure) {
  constexpr std::size_t kDirections = 100;
  for (auto _ : state) {
    const std::uint64_t seed = bench::next_seed();
    const Chain chain = support::protein_like_walk(atoms, seed);
    const auto points = points_of(chain);
    const double start = cpu_now();
    korvex::fingerprint_with(korvex::NamedDiagrams(named_by_key), points,
                             {.closure = closure, .directions = kDirections}, {});
    const double fast = cpu_now() - start;
    report(state, fast, plain_fingerprint_seconds(chain, closure, kDirections, seed));
  }
}

// `work` on two threads and, as the plain form, on one: the best of several tries, since two
// threads need both processors to themselves.
template <typename Work>
void two_threads(benchmark::State& state, Work work) {
  for (auto _ : state) {
    const auto points = points_of(support::protein_like_walk(331, bench::next_seed()));
    double seconds[2] = {1e9, 1e9};
    for (int attempt = 0; attempt < 5; ++attempt) {
      for (const unsigned threads : {1u, 2u}) {
        const double start = bench::wall_now();
        work(points, korvex::Run{.threads = threads});
        seconds[threads - 1] = std::min(seconds[threads - 1], bench::wall_now() - start);
      }
    }
    report(state, seconds[1], seconds[0]);
  }
}

const bool kRegistered = [] {
  using korvex::Closure;
  for (const Closure closure : {Closure::kRays, Closure::kTwoPoints}) {
    const std::string name(korvex::name_of(closure));
    bench::add_benchmark("Vote/" + name + "/protein/331", [=](auto& state) {
      vote(state, support::protein_like_walk, 331, closure);
    });
    bench::add_benchmark("Vote/" + name + "/coil/1024",
                         [=](auto& state) { vote(state, coil, 1024, closure); });
    bench::add_benchmark("Fingerprint/" + name + "/protein/331",
                         [=](auto& state) { fingerprint(state, 331, closure); });
  }
  bench::add_benchmark("Fingerprint/two_threads/331", [](auto& state) {
    two_threads(state, [](const auto& points, const korvex::Run& run) {
      korvex::fingerprint_with(korvex::NamedDiagrams(named_by_key), points, {}, run);
    });
  });
  bench::add_benchmark("Vote/two_threads/331", [](auto& state) {
    two_threads(state, [](const auto& points, const korvex::Run& run) {
      korvex::vote_with(korvex::NamedDiagrams(named_by_key), points, {.trials = 2000}, run);
    });
  });
  return true;
}();

}  // namespace
