// The map of closures beside as many votes as it has regions, and its parts.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <string>
#include <vector>

#include "comparison.hpp"
#include "engine/closures/whole_chain.hpp"
#include "engine/sphere/arrangement.hpp"
#include "korvex/closure_map.hpp"
#include "korvex/identity_cache.hpp"
#include "korvex/read.hpp"
#include "korvex/votes.hpp"
#include "random_rings.hpp"
#include "support/chains.hpp"
#include "support/data_file.hpp"

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

double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

template <typename Work>
double seconds_of(const Work& work) {
  const double start = bench::now();
  work();
  return bench::now() - start;
}

// Seconds that `work` takes with a memory of types of its own, empty at first.
template <typename Work>
double seconds_from_scratch(const Work& work) {
  korvex::IdentityCache identities;
  korvex::Run run;
  run.identities = &identities;
  return seconds_of([&] { work(run); });
}

// As many votes as regions, on the same chain, are the plain form. Both begin with no type known.
void beside_votes(benchmark::State& state, const std::string& file) {
  korvex::ReadOptions chain_a;
  chain_a.chains = {"A"};
  const auto chain = korvex::read_chains(support::data_file("proteins/" + file), chain_a).at(0);
  const std::size_t regions = korvex::closure_map(chain.points)->regions.size();
  constexpr int kRounds = 15;
  for (auto _ : state) {
    std::vector<double> maps;
    std::vector<double> votes;
    for (int round = 0; round < kRounds; ++round) {
      maps.push_back(seconds_from_scratch(
          [&](const korvex::Run& run) { korvex::closure_map(chain.points, {}, run); }));
      votes.push_back(seconds_from_scratch([&](korvex::Run run) {
        run.seed = bench::next_seed();
        korvex::vote(chain.points, {.trials = regions}, run);
      }));
    }
    report(state, median(maps), median(votes));
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

double seconds_of_coil(int steps) {
  std::vector<double> seconds;
  for (int round = 0; round < 3; ++round) {
    const auto chain = coil(steps, bench::next_seed());
    seconds.push_back(seconds_of([&] { korvex::closure_map(chain); }));
  }
  return median(seconds);
}

void of_coil(benchmark::State& state, int steps) {
  for (auto _ : state) {
    const double seconds = seconds_of_coil(steps);
    state.SetIterationTime(seconds);
    state.counters["fast_us"] = 1e6 * seconds;
  }
}

// The exponent of time against steps.
void growth(benchmark::State& state) {
  for (auto _ : state) {
    std::vector<double> lengths;
    std::vector<double> seconds;
    for (const int steps : {256, 512, 1024, 2048}) {
      lengths.push_back(steps);
      seconds.push_back(seconds_of_coil(steps));
    }
    const double all = std::accumulate(seconds.begin(), seconds.end(), 0.0);
    state.SetIterationTime(all);
    state.counters["fast_us"] = 1e6 * all;
    state.counters["exponent"] = bench::fitted_exponent(lengths, seconds);
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
  for (const std::string file : {"1xd3_A_bound.pdb", "1ca2.pdb", "1ztu.pdb"})
    bench::add_benchmark("ClosureMap/beside_votes/" + file.substr(0, 4),
                         [file](auto& state) { beside_votes(state, file); });
  bench::add_benchmark("ClosureMap/arrangement/331", arrangement);
  bench::add_benchmark("ClosureMap/two_threads/331", two_threads);
  for (const int steps : {1024, 3000})
    bench::add_benchmark("ClosureMap/coil/" + std::to_string(steps),
                         [steps](auto& state) { of_coil(state, steps); });
  bench::add_benchmark("ClosureMap/growth", growth);
  return true;
}();

}  // namespace
