// Directions and intervals: unit vectors that the seed fixes, and shares inside their intervals.
#include <cmath>

#include "engine/projection/projection.hpp"
#include "korvex/closure.hpp"
#include "korvex/directions.hpp"
#include "korvex/interval.hpp"
#include "points.hpp"

namespace {

using fuzz::require;
using korvex::Point;

void require_unit(const Point& p) { require(std::abs(norm(p) - 1) < 1e-12); }

void check_ends(korvex::Closure closure, korvex::Sampling sampling, std::size_t count,
                std::uint64_t seed, std::uint64_t block) {
  const auto ends = sampled_ends(closure, sampling, count, seed, block);
  const auto again = sampled_ends(closure, sampling, count, seed, block);
  require(ends.size() == count);
  for (std::size_t k = 0; k < count; ++k) {
    require_unit(ends[k].first);
    require_unit(ends[k].last);
    require(ends[k].first == again[k].first && ends[k].last == again[k].last);
    if (closure == korvex::Closure::kRays) require(ends[k].first == ends[k].last);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Bytes bytes(data, size);
  const std::size_t count = bytes.take<std::uint8_t>();
  const auto seed = bytes.take<std::uint64_t>();
  const auto block = bytes.take<std::uint64_t>();
  for (const auto closure : {korvex::Closure::kRays, korvex::Closure::kTwoPoints})
    for (const auto sampling : {korvex::Sampling::kLattice, korvex::Sampling::kIndependent})
      check_ends(closure, sampling, count, seed, block);
  // Every half of the sphere about an axis of the lattice holds about half of its points.
  const auto lattice = korvex::lattice_directions(count, seed, block);
  Point sum;
  for (const Point& p : lattice) sum = sum + p;
  require(lattice.size() == count && norm(sum) < 2 + 0.1 * static_cast<double>(count));
  const Point direction = korvex::random_direction(seed, block);
  require_unit(direction);
  for (unsigned attempt = 0; attempt < 4; ++attempt) {
    const Point near = nudged(direction, attempt);
    require_unit(near);
    require(norm(near - direction) > 0 && norm(near - direction) < 1e-3);
  }
  const std::size_t trials = bytes.take<std::uint32_t>();
  const std::size_t hits = trials == 0 ? 0 : bytes.take<std::uint32_t>() % (trials + 1);
  const korvex::Interval interval = korvex::wilson_interval(hits, trials);
  require(0 <= interval.low && interval.low <= interval.high && interval.high <= 1);
  if (trials == 0) return 0;
  const double share = static_cast<double>(hits) / static_cast<double>(trials);
  require(interval.low <= share && share <= interval.high);
  const korvex::Interval other = korvex::wilson_interval(trials - hits, trials);
  require(std::abs(interval.low + other.high - 1) < 1e-9);
  return 0;
}
