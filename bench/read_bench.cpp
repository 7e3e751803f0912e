// Frames of a trajectory of 120 beads: read, and answered on one thread and on two.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <fstream>
#include <iterator>
#include <string>

#include "comparison.hpp"
#include "korvex/closure_map.hpp"
#include "korvex/read.hpp"
#include "korvex/sources.hpp"
#include "support/data_file.hpp"

namespace {

// The shipped run of 50 frames, `times` over.
std::string run_of_ring(int times) {
  std::ifstream file(support::data_file("trajectories/ring_3_1.xtc"), std::ios::binary);
  const std::string once{std::istreambuf_iterator<char>(file), {}};
  std::string bytes;
  for (int k = 0; k < times; ++k) bytes += once;
  return bytes;
}

void read_xtc(benchmark::State& state) {
  for (auto _ : state) {
    const auto source = korvex::Source::memory(run_of_ring(200), "ring.xtc");
    std::size_t frames = 0;
    const double start = bench::now();
    korvex::visit_chains(source, {}, [&](korvex::Chain&& chain) {
      benchmark::DoNotOptimize(chain.points.data());
      ++frames;
      return true;
    });
    const double seconds = bench::now() - start;
    state.SetIterationTime(seconds);
    state.counters["fast_us"] = 1e6 * seconds / static_cast<double>(frames);
    state.counters["per_second"] = static_cast<double>(frames) / seconds;
  }
}

// Exact shares of all frames, through the pipeline of scans.
double seconds_of_maps(unsigned threads) {
  const auto lots = korvex::lots_of({support::data_file("trajectories/ring_3_1.xtc")});
  korvex::ChainWork work;
  work.answer = [](const korvex::Member&, korvex::Chain&& chain, const korvex::Run& run) {
    benchmark::DoNotOptimize(closure_map(chain.points, {}, run));
    return [] {};
  };
  work.failed = [](const korvex::Member&, const std::string&) { throw; };
  const double start = bench::wall_now();
  korvex::for_each_chain(lots, {}, work, {.threads = threads});
  return bench::wall_now() - start;
}

// The best of several tries, since two threads need both processors to themselves.
void two_threads(benchmark::State& state) {
  for (auto _ : state) {
    double one = 1e9;
    double two = 1e9;
    for (int attempt = 0; attempt < 5; ++attempt) {
      one = std::min(one, seconds_of_maps(1));
      two = std::min(two, seconds_of_maps(2));
    }
    state.SetIterationTime(two);
    state.counters["plain_us"] = 1e6 * one;
    state.counters["fast_us"] = 1e6 * two;
    state.counters["ratio"] = one / two;
  }
}

const bool kRegistered = [] {
  bench::add_benchmark("Frames/read_xtc/120", read_xtc);
  bench::add_benchmark("Frames/two_threads/120", two_threads);
  return true;
}();

}  // namespace
