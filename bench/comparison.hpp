// A fast form measured beside the plain one, in one run and on the same fresh inputs.
#pragma once

#include <benchmark/benchmark.h>
#include <time.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace bench {

// Seeds never repeat within a process, so that no input is measured twice.
inline std::uint64_t next_seed() {
  static std::uint64_t seed = 0;
  return ++seed;
}

// Seconds of processor time of this thread, which other programs on the machine do not lengthen.
inline double now() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

// Seconds by the clock on the wall, for what several threads do together.
inline double wall_now() {
  using std::chrono::duration;
  return duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

// Seconds that `run` takes for all of `inputs`.
template <class Input, class Run>
double time_all(std::vector<Input>& inputs, Run& run) {
  const double start = now();
  for (Input& input : inputs) run(input);
  benchmark::ClobberMemory();
  return now() - start;
}

// One repetition: rounds of fresh inputs until `budget` seconds are measured, each round running
// both forms, in alternating order, on copies of the same inputs. A batch of inputs is timed as a
// whole where one is too short for the clock.
template <class Make, class Fast, class Plain, class Same>
void measure(benchmark::State& state, Make& make, Fast& fast, Plain& plain, Same& same) {
  constexpr double kBudget = 0.08;
  constexpr double kReadable = 100e-6;
  constexpr std::size_t kLargestBatch = 512;
  double fast_seconds = 0;
  double plain_seconds = 0;
  std::size_t runs = 0;
  std::size_t batch = 1;
  for (int round = 0; round < 2 || fast_seconds + plain_seconds < kBudget; ++round) {
    using Input = decltype(make(next_seed()));
    std::vector<Input> for_fast;
    for (std::size_t i = 0; i < batch; ++i) for_fast.push_back(make(next_seed()));
    std::vector<Input> for_plain = for_fast;
    double taken = 0;
    if (round % 2 == 0) taken = time_all(for_fast, fast);
    const double plain_taken = time_all(for_plain, plain);
    if (round % 2 != 0) taken = time_all(for_fast, fast);
    if (!std::equal(for_fast.begin(), for_fast.end(), for_plain.begin(), same)) {
      state.SkipWithError("the fast form and the plain one differ");
      return;
    }
    if (taken < kReadable && batch < kLargestBatch) {  // too short to count: a larger batch
      batch *= 2;
      continue;
    }
    fast_seconds += taken;
    plain_seconds += plain_taken;
    runs += batch;
  }
  const auto count = static_cast<double>(std::max<std::size_t>(runs, 1));
  state.SetIterationTime(fast_seconds / count);
  state.counters["plain_us"] = 1e6 * plain_seconds / count;
  state.counters["fast_us"] = 1e6 * fast_seconds / count;
  state.counters["ratio"] = plain_seconds / fast_seconds;
}

// Registers `body` under `name`, to run once a repetition and to report the time itself.
template <class Body>
void add_benchmark(const std::string& name, Body body) {
  benchmark::RegisterBenchmark(name.c_str(), body)
      ->Iterations(1)
      ->UseManualTime()
      ->Unit(benchmark::kMicrosecond);
}

// Registers the comparison `name`. `make(seed)` gives a fresh input; `fast(input)` and
// `plain(input)` work on it and leave their results in it; `same(a, b)` compares what they left.
template <class Make, class Fast, class Plain, class Same>
void add_comparison(const std::string& name, Make make, Fast fast, Plain plain, Same same) {
  add_benchmark(name, [=](benchmark::State& state) mutable {
    for (auto _ : state) measure(state, make, fast, plain, same);
  });
}

}  // namespace bench
