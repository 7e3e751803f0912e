// Fingerprints of chains as long as proteins are, and places of knots in many of them.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "comparison.hpp"
#include "korvex/fingerprint.hpp"
#include "korvex/identity_cache.hpp"
#include "korvex/locate.hpp"
#include "korvex/read.hpp"
#include "protein_chains.hpp"
#include "random_rings.hpp"
#include "support/chains.hpp"
#include "support/data_file.hpp"

namespace {

// Of chains that no cache has seen.
double seconds_of_fingerprints(std::size_t residues, int chains) {
  double seconds = 0;
  for (int k = 0; k < chains; ++k) {
    const bench::Points chain = bench::multi_domain_chain(residues, bench::next_seed());
    korvex::IdentityCache cache;
    const double start = bench::now();
    korvex::fingerprint(chain, {}, {.threads = 1, .identities = &cache});
    seconds += bench::now() - start;
  }
  return seconds / chains;
}

void domains(benchmark::State& state, std::size_t residues) {
  for (auto _ : state) {
    const double seconds = seconds_of_fingerprints(residues, 5);
    state.SetIterationTime(seconds);
    state.counters["fast_us"] = 1e6 * seconds;
  }
}

// The exponent of time against length.
void growth(benchmark::State& state) {
  for (auto _ : state) {
    std::vector<double> lengths;
    std::vector<double> seconds;
    for (const std::size_t residues : {150U, 240U, 390U, 630U, 1'000U}) {
      lengths.push_back(static_cast<double>(residues));
      seconds.push_back(seconds_of_fingerprints(residues, 5));
    }
    state.SetIterationTime(seconds.back());
    state.counters["exponent"] = bench::fitted_exponent(lengths, seconds);
  }
}

// Models of 60 to 326 residues, 193 on average, with one cache for all.
void locate_models(benchmark::State& state) {
  constexpr std::size_t kChains = 20;
  for (auto _ : state) {
    korvex::IdentityCache cache;
    double seconds = 0;
    for (std::size_t k = 0; k < kChains; ++k) {
      const bench::Points chain = bench::model_chain(60 + 14 * k, bench::next_seed());
      const double start = bench::now();
      benchmark::DoNotOptimize(
          korvex::locate(korvex::fingerprint(chain, {}, {.threads = 1, .identities = &cache})));
      seconds += bench::now() - start;
    }
    state.SetIterationTime(seconds / kChains);
    state.counters["fast_us"] = 1e6 * seconds / kChains;
    state.counters["per_second"] = kChains / seconds;
  }
}

bench::Points shipped(const std::string& file) {
  korvex::ReadOptions chain_a;
  chain_a.chains = {"A"};
  return korvex::read_chains(support::data_file("proteins/" + file), chain_a).at(0).points;
}

bench::Points protein_like(int residues) {
  bench::Points points;
  for (const ChainAtom& atom : support::protein_like_walk(residues, bench::next_seed()))
    points.push_back({atom.x, atom.y, atom.z});
  return points;
}

void exact(benchmark::State& state, const bench::Points& chain) {
  for (auto _ : state) {
    korvex::IdentityCache cache;
    const double start = bench::now();
    korvex::fingerprint(chain, {.exact = true}, {.threads = 1, .identities = &cache});
    const double seconds = bench::now() - start;
    state.SetIterationTime(seconds);
    state.counters["fast_us"] = 1e6 * seconds;
  }
}

// Seconds of one thread over those of two, by the clock on the wall: the best of some tries, since
// two threads need both processors to themselves.
void exact_on_two_threads(benchmark::State& state) {
  const bench::Points chain = shipped("2efv_CA.pdb");
  for (auto _ : state) {
    double seconds[2] = {1e9, 1e9};
    for (int attempt = 0; attempt < 9; ++attempt) {
      for (const unsigned threads : {1U, 2U}) {
        korvex::IdentityCache cache;
        const double start = bench::wall_now();
        korvex::fingerprint(chain, {.exact = true}, {.threads = threads, .identities = &cache});
        seconds[threads - 1] = std::min(seconds[threads - 1], bench::wall_now() - start);
      }
    }
    state.SetIterationTime(seconds[1]);
    state.counters["fast_us"] = 1e6 * seconds[1];
    state.counters["plain_us"] = 1e6 * seconds[0];
    state.counters["ratio"] = seconds[0] / seconds[1];
  }
}

const bool kRegistered = [] {
  for (const std::size_t residues : {331U, 637U})
    bench::add_benchmark("FingerprintOfDomains/" + std::to_string(residues),
                         [=](benchmark::State& state) { domains(state, residues); });
  bench::add_benchmark("FingerprintOfDomains/growth", growth);
  bench::add_benchmark("ExactFingerprint/2efv",
                       [](benchmark::State& state) { exact(state, shipped("2efv_CA.pdb")); });
  bench::add_benchmark("ExactFingerprint/331",
                       [](benchmark::State& state) { exact(state, protein_like(331)); });
  bench::add_benchmark("ExactFingerprint/two_threads/2efv", exact_on_two_threads);
  bench::add_benchmark("Locate/models", locate_models);
  return true;
}();

}  // namespace
