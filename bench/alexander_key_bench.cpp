// The Alexander key of random knots: closed random walks, reduced by triangle elimination,
// projected and simplified until no move is left.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "comparison.hpp"
#include "engine/invariants/of_codes.hpp"
#include "geometry/triangle_elimination.hpp"
#include "korvex/diagram.hpp"
#include "korvex/directions.hpp"
#include "random_rings.hpp"

namespace {

korvex::GaussCode random_knot(std::size_t steps, std::uint64_t seed) {
  const auto ring = bench::random_ring(steps, seed);
  std::vector<korvex::Point> left;
  for (const std::int32_t index : korvex::eliminate_ring(ring))
    left.push_back(ring[static_cast<std::size_t>(index)]);
  return korvex::Diagram::of_polygon(left, korvex::random_direction(seed, 0)).simplified().code();
}

// Knots of that many crossings, or within a twentieth of it. The length of the walks follows the
// crossings that they turn out to have.
std::vector<korvex::GaussCode> knots_of(std::size_t crossings, std::size_t count) {
  std::vector<korvex::GaussCode> knots;
  for (double steps = 60.0 * static_cast<double>(crossings); knots.size() < count;) {
    auto code = random_knot(static_cast<std::size_t>(steps), bench::next_seed());
    const std::size_t found = code.size() / 2;
    steps *= found < crossings ? 1.03 : 0.97;
    const std::size_t apart = found < crossings ? crossings - found : found - crossings;
    if (apart <= crossings / 20) knots.push_back(std::move(code));
  }
  return knots;
}

// Median over random knots of the seconds that one key takes.
double key_seconds(std::size_t crossings) {
  const std::size_t knots = crossings < 150 ? 41 : 15;
  const int times = static_cast<int>(20'000 / crossings);
  std::vector<double> seconds;
  for (const korvex::GaussCode& code : knots_of(crossings, knots)) {
    std::uint64_t key = korvex::alexander_key(code);
    const double start = bench::now();
    for (int k = 0; k < times; ++k) benchmark::DoNotOptimize(key = korvex::alexander_key(code));
    seconds.push_back((bench::now() - start) / times);
  }
  const auto middle = seconds.begin() + static_cast<std::ptrdiff_t>(seconds.size() / 2);
  std::nth_element(seconds.begin(), middle, seconds.end());
  return *middle;
}

void key(benchmark::State& state, std::size_t crossings) {
  for (auto _ : state) {
    const double seconds = key_seconds(crossings);
    state.SetIterationTime(seconds);
    state.counters["fast_us"] = 1e6 * seconds;
  }
}

// The exponent of time against crossings, fitted from 16 to 400.
void growth(benchmark::State& state) {
  for (auto _ : state) {
    std::vector<double> sizes;
    std::vector<double> seconds;
    for (const std::size_t crossings : {16U, 36U, 80U, 180U, 400U}) {
      sizes.push_back(static_cast<double>(crossings));
      seconds.push_back(key_seconds(crossings));
    }
    state.SetIterationTime(seconds.back());
    state.counters["exponent"] = bench::fitted_exponent(sizes, seconds);
  }
}

const bool kRegistered = [] {
  for (const std::size_t crossings : {16U, 50U, 100U, 200U, 400U})
    bench::add_benchmark("AlexanderKey/" + std::to_string(crossings),
                         [=](benchmark::State& state) { key(state, crossings); });
  bench::add_benchmark("AlexanderKey/growth", growth);
  return true;
}();

}  // namespace
