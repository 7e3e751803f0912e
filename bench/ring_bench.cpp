// Closed random walks of any length: their projection, reduction, writhe and Alexander key.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdlib>
#include <string>
#include <vector>

#include "comparison.hpp"
#include "korvex/ring.hpp"
#include "random_rings.hpp"

namespace {

struct Cost {
  double seconds = 0;
  korvex::RingReport report;
};

Cost examined(std::size_t steps) {
  const auto ring = bench::random_ring(steps, bench::next_seed());
  const double start = bench::now();
  korvex::RingReport report = korvex::examine_ring(ring);
  return {bench::now() - start, std::move(report)};
}

void ring(benchmark::State& state, std::size_t steps) {
  for (auto _ : state) {
    const Cost cost = examined(steps);
    state.SetIterationTime(cost.seconds);
    state.counters["fast_us"] = 1e6 * cost.seconds;
    state.counters["crossings"] = static_cast<double>(cost.report.projected.crossings);
    state.counters["simplified"] = static_cast<double>(cost.report.simplified.crossings());
  }
}

// The exponent of time against length, fitted from 1,000 to 100,000 steps.
void growth(benchmark::State& state) {
  for (auto _ : state) {
    std::vector<double> lengths;
    std::vector<double> seconds;
    for (const std::size_t steps : {1'000U, 3'000U, 10'000U, 30'000U, 100'000U}) {
      const int times = steps <= 10'000 ? 10 : 3;
      double total = 0;
      for (int k = 0; k < times; ++k) total += examined(steps).seconds;
      lengths.push_back(static_cast<double>(steps));
      seconds.push_back(total / times);
    }
    state.SetIterationTime(seconds.back());
    state.counters["exponent"] = bench::fitted_exponent(lengths, seconds);
  }
}

const bool kRegistered = [] {
  std::vector<std::size_t> lengths{1'000, 3'000, 10'000, 30'000, 100'000};
  if (std::getenv("KORVEX_LONG_BENCH") != nullptr)
    lengths.insert(lengths.end(), {300'000, 1'000'000});
  for (const std::size_t steps : lengths)
    bench::add_benchmark("ExamineRing/" + std::to_string(steps),
                         [=](benchmark::State& state) { ring(state, steps); });
  bench::add_benchmark("ExamineRing/growth", growth);
  return true;
}();

}  // namespace
