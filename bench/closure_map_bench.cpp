// The map of closures beside as many votes as it has regions, and its parts.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "comparison.hpp"
#include "engine/closures/whole_chain.hpp"
#include "engine/sphere/arrangement.hpp"
#include "korvex/closure_map.hpp"
#include "korvex/votes.hpp"
#include "support/chains.hpp"

namespace {

using korvex::Point;

std::vector<Point> protein(int residues, std::uint64_t seed) {
  std::vector<Point> points;
  for (const ChainAtom& atom : support::protein_like_walk(residues, seed))
    points.push_back({atom.x, atom.y, atom.z});
  return points;
}

std::vector<Point> coil(int steps, std::uint64_t seed) {
  support::Random random(seed);
  std::vector<Point> points{{0, 0, 0}};
  for (int i = 0; i < steps; ++i) {
    const double x = random.normal();
    const double y = random.normal();
    const double z = random.normal();
    points.push_back(points.back() + Point{x, y, z});
  }
  return points;
}

void report(benchmark::State& state, double fast, double plain) {
  state.SetIterationTime(fast);
  state.counters["fast_us"] = 1e6 * fast;
  state.counters["plain_us"] = 1e6 * plain;
  state.counters["ratio"] = plain / fast;
}

template <typename Work>
double seconds_of(const Work& work) {
  const double start = bench::now();
  work();
  return bench::now() - start;
}

// As many votes as regions are the plain form: each way on chains the other has not seen.
void beside_votes(benchmark::State& state) {
  constexpr int kChains = 8;
  for (auto _ : state) {
    double maps = 0;
    double votes = 0;
    for (int k = 0; k < kChains; ++k) {
      std::size_t regions = 0;
      const auto mapped = protein(331, bench::next_seed());
      maps += seconds_of([&] { regions = korvex::closure_map(mapped)->regions.size(); });
      const auto voted = protein(331, bench::next_seed());
      votes += static_cast<double>(regions) / 300 *
               seconds_of([&] { korvex::vote(voted, {.trials = 300}); });
    }
    report(state, maps / kChains, votes / kChains);
  }
}

// The arrangement alone beside the whole map.
void arrangement(benchmark::State& state) {
  for (auto _ : state) {
    const auto chain = protein(331, bench::next_seed());
    const double map = seconds_of([&] { korvex::closure_map(chain); });
    const double alone = seconds_of([&] {
      const auto whole = korvex::whole_chain(chain);
      const auto first = korvex::path_seen_from_first(whole);
      const auto last = korvex::path_seen_from_last(whole);
      benchmark::DoNotOptimize(korvex::Arrangement(*first, *last, 100'000).faces());
    });
    report(state, alone, map);
  }
}

void of_coil(benchmark::State& state, int steps) {
  for (auto _ : state) {
    const auto chain = coil(steps, bench::next_seed());
    const double seconds = seconds_of([&] { korvex::closure_map(chain); });
    report(state, seconds, seconds);
  }
}

// The best of several tries, since two threads need both processors to themselves.
void two_threads(benchmark::State& state) {
  for (auto _ : state) {
    const auto chain = protein(331, bench::next_seed());
    double seconds[2] = {1e9, 1e9};
    for (int attempt = 0; attempt < 5; ++attempt) {
      for (const unsigned threads : {1u, 2u}) {
        const double start = bench::wall_now();
        korvex::closure_map(chain, {}, {.threads = threads});
        seconds[threads - 1] = std::min(seconds[threads - 1], bench::wall_now() - start);
      }
    }
    report(state, seconds[1], seconds[0]);
  }
}

const bool kRegistered = [] {
  bench::add_benchmark("ClosureMap/beside_votes/331", beside_votes);
  bench::add_benchmark("ClosureMap/arrangement/331", arrangement);
  bench::add_benchmark("ClosureMap/two_threads/331", two_threads);
  for (const int steps : {1024, 3000})
    bench::add_benchmark("ClosureMap/coil/" + std::to_string(steps),
                         [steps](auto& state) { of_coil(state, steps); });
  return true;
}();

}  // namespace
