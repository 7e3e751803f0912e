#include "korvex/fingerprint.hpp"

#include <algorithm>
#include <atomic>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "engine/diagram/code_closure.hpp"
#include "engine/fingerprint/exact.hpp"
#include "engine/fingerprint/fingerprint_data.hpp"
#include "engine/fingerprint/stations.hpp"
#include "engine/identify/diagram_types.hpp"
#include "engine/identify/type_numbers.hpp"
#include "engine/projection/projection.hpp"
#include "engine/run/parallel.hpp"
#include "korvex/error.hpp"

namespace korvex {
namespace {

constexpr std::size_t kMostDirections = 1'000'000;

// The memory that the votes of all workers take together.
class Budget {
 public:
  explicit Budget(std::size_t most) : most_(most) {}

  void take(std::size_t bytes) {
    if (taken_.fetch_add(bytes, std::memory_order_relaxed) + bytes > most_) refuse();
  }

 private:
  [[noreturn]] void refuse() const {
    const std::string amount =
        most_ >> 20 > 0 ? std::to_string(most_ >> 20) + " MiB" : std::to_string(most_) + " bytes";
    throw Error(ErrorCode::kInvalidArgument,
                "the votes of the sub-chains need more than " + amount +
                    " of memory: choose a larger step, fewer directions, or allow more memory");
  }

  const std::size_t most_;
  std::atomic<std::size_t> taken_ = 0;
};

// One worker's share of the votes.
struct Worker {
  Worker(std::span<const std::int32_t> stations, const Identification& identify, Budget& of_all,
         std::stop_token stop)
      : classes(stations, std::move(stop)),
        types(identify),
        counts(stations.size()),
        budget(of_all) {}

  void count(Stations begins, Stations ends, const DiagramType& diagram) {
    const std::int32_t type = numbers.of(diagram.name);
    if (type == TypeNumbers::kUnknot) return;
    const std::size_t before = counts.bytes();
    counts.add(type, begins, ends);
    if (counts.bytes() != before) budget.take(counts.bytes() - before);
  }

  SubChainClasses classes;
  DiagramTypes types;
  TypeNumbers numbers;
  TypeCounts counts;
  Budget& budget;
};

class Computation {
 public:
  Computation(const Identification& identify, std::span<const Point> chain,
              const FingerprintOptions& options, const Run& run, SubChains sub_chains)
      : identify_(identify), chain_(chain), options_(options), run_(run), sub_chains_(sub_chains) {
    check();
    stations_ = stations_along(chain_.size(), options_.step);
    ends_ = sampled_ends(options.closure, options.sampling, options.directions, run.seed);
  }

  Fingerprint compute() {
    Budget budget(options_.most_memory);
    std::vector<Worker> workers;
    const unsigned count = worker_count(run_, ends_.size());
    workers.reserve(count);
    for (unsigned k = 0; k < count; ++k)
      workers.emplace_back(stations_, identify_, budget, run_.stop);
    for_each_piece(run_, ends_.size(), [&](std::size_t trial, unsigned worker) {
      vote(ends_[trial], workers[worker]);
    });
    return collected(workers);
  }

 private:
  void check() const {
    const auto refuse = [](const char* what) { throw Error(ErrorCode::kInvalidArgument, what); };
    if (!is_sampled(options_.closure))
      refuse("a fingerprint closes its sub-chains by rays or by two points: choose one of them");
    if (options_.directions == 0) refuse("a fingerprint needs at least 1 direction");
    if (options_.directions > kMostDirections)
      refuse("a fingerprint takes at most 1000000 directions");
    require_usable(chain_);
  }

  void vote(const Ends& ends, Worker& worker) const {
    const GeneralView view = general_view(chain_, ends.first, Curve::kOpen, run_);
    if (sub_chains_ == SubChains::kOneByOne) {
      vote_one_by_one(view, ends, worker);
    } else if (options_.closure == Closure::kRays) {
      const auto count = [&](Stations begins, Stations last, const GaussCode& code) {
        worker.count(begins, last, worker.types.of_open(code, run_));
      };
      worker.classes.visit_triangle(view.projection.chain_code(), count);
    } else {
      vote_by_columns(view, ends, worker);
    }
  }

  void vote_by_columns(const GeneralView& view, const Ends& ends, Worker& worker) const {
    const auto count = [&](Stations begins, Stations last, const GaussCode& code) {
      worker.count(begins, last, worker.types.of_open(code, run_));
    };
    for (std::size_t end = 1; end < stations_.size(); ++end)
      worker.classes.visit_column(led_away(chain_, view, stations_[end], ends.last, run_),
                                  static_cast<std::int32_t>(end), count);
  }

  void vote_one_by_one(const GeneralView& view, const Ends& ends, Worker& worker) const {
    for (std::int32_t end = 1; end < station_count(); ++end) {
      // What closes the sub-chains is the same for all that have this end.
      std::optional<LedAway> away;
      if (options_.closure != Closure::kRays)
        away = led_away(chain_, view, residue(end), ends.last, run_);
      const std::span<const Point> chain = (away && away->view ? *away->view : view).chain(chain_);
      for (std::int32_t begin = 0; begin < end; ++begin) {
        throw_if_cancelled(run_);
        const std::int32_t from = residue(begin);
        const std::int32_t length = residue(end) - from;
        const std::span<const Point> part =
            chain.subspan(static_cast<std::size_t>(from), static_cast<std::size_t>(length) + 1);
        const GeneralView own{view.direction, Projection(part, view.direction), {}};
        const GaussCode code =
            away ? led_away(part, own, length, away->onward).code : own.projection.code();
        worker.count({begin, begin}, {end, end}, worker.types.of_closed(closed_over(code), run_));
      }
    }
  }

  // Types in the order of their counts, so that it does not matter which worker found which first.
  static TypeNumbers ranked(const std::vector<Worker>& workers) {
    std::map<std::string, std::uint64_t> totals;
    for (const Worker& worker : workers)
      for (std::size_t type = 1; type < worker.numbers.names().size(); ++type)
        totals[worker.numbers.names()[type]] += worker.counts.total(type);
    std::vector<std::pair<std::string, std::uint64_t>> order(totals.begin(), totals.end());
    std::stable_sort(order.begin(), order.end(),
                     [](const auto& a, const auto& b) { return a.second > b.second; });
    TypeNumbers ranks;
    for (const auto& [name, total] : order) ranks.of(name);
    return ranks;
  }

  Fingerprint collected(std::vector<Worker>& workers) {
    TypeNumbers ranks = ranked(workers);
    const std::size_t stations = stations_.size();
    FingerprintData data{options_, std::move(stations_), ranks.names(), TypeCounts(stations)};
    for (Worker& worker : workers) {
      std::vector<std::int32_t> renamed;
      for (const std::string& name : worker.numbers.names()) renamed.push_back(ranks.of(name));
      data.counts.add(worker.counts, renamed);
      worker.counts = TypeCounts(0);
    }
    data.counts.sum_up();
    return FingerprintData::shared(std::move(data));
  }

  std::int32_t station_count() const { return static_cast<std::int32_t>(stations_.size()); }
  std::int32_t residue(std::int32_t station) const {
    return stations_[static_cast<std::size_t>(station)];
  }

  const Identification& identify_;
  const std::span<const Point> chain_;
  const FingerprintOptions options_;
  const Run& run_;
  const SubChains sub_chains_;
  std::vector<std::int32_t> stations_;
  std::vector<Ends> ends_;
};

[[noreturn]] void refuse_sub_chain(std::size_t begin, std::size_t end, std::size_t stations) {
  throw Error(ErrorCode::kInvalidArgument,
              "there is no sub-chain from station " + std::to_string(begin) + " to station " +
                  std::to_string(end) + " of a fingerprint with " + std::to_string(stations) +
                  " stations: number them from 0, begin below end");
}

void require_cell(const Fingerprint& fingerprint, std::size_t begin, std::size_t end) {
  const std::size_t stations = fingerprint.stations().size();
  if (begin >= end || end >= stations) refuse_sub_chain(begin, end, stations);
}

[[noreturn]] void refuse_type(std::size_t type, std::size_t types) {
  throw Error(ErrorCode::kInvalidArgument, "there is no type " + std::to_string(type) +
                                               " in a fingerprint with " + std::to_string(types) +
                                               " types: number them from 0");
}

}  // namespace

const std::vector<std::int32_t>& Fingerprint::stations() const { return data_->stations; }
std::size_t Fingerprint::trials() const { return exact() ? 0 : data_->options.directions; }
double Fingerprint::doubt() const { return data_->doubt; }
const std::vector<std::string>& Fingerprint::types() const { return data_->types; }
const FingerprintOptions& Fingerprint::options() const { return data_->options; }

std::uint32_t Fingerprint::count(std::size_t type, std::size_t begin, std::size_t end) const {
  require_cell(*this, begin, end);
  if (type >= types().size()) refuse_type(type, types().size());
  if (exact())
    throw Error(ErrorCode::kInvalidArgument,
                "an exact fingerprint has no votes to count: ask for shares");
  if (type != 0) return data_->counts.count(type, begin, end);
  return static_cast<std::uint32_t>(trials()) - data_->counts.count(0, begin, end);
}

double Fingerprint::share(std::size_t type, std::size_t begin, std::size_t end) const {
  if (!exact()) return static_cast<double>(count(type, begin, end)) / static_cast<double>(trials());
  require_cell(*this, begin, end);
  if (type >= types().size()) refuse_type(type, types().size());
  return data_->shares.share(type, begin, end);
}

Fingerprint::Dominant Fingerprint::dominant(std::size_t begin, std::size_t end) const {
  Dominant best{0, share(0, begin, end)};
  if (exact()) {
    for (const ShareOfType& some : data_->shares.of(begin, end)) {
      const auto type = static_cast<std::size_t>(some.type);
      if (some.share > best.share || (some.share == best.share && type < best.type))
        best = {type, some.share};
    }
    return best;
  }
  // The types behind share what the ones before have left.
  std::size_t most = count(0, begin, end);
  std::size_t left = trials() - most;
  for (std::size_t type = 1; left > most; ++type) {
    const std::size_t votes = data_->counts.count(type, begin, end);
    left -= votes;
    if (votes <= most) continue;
    most = votes;
    best = {type, share(type, begin, end)};
  }
  return best;
}

Fingerprint fingerprint_with(const Identification& identify, std::span<const Point> chain,
                             const FingerprintOptions& options, const Run& run,
                             SubChains sub_chains) {
  if (options.exact) return exact_fingerprint(identify, chain, options, run, sub_chains);
  return Computation(identify, chain, options, run, sub_chains).compute();
}

Fingerprint fingerprint(std::span<const Point> chain, const FingerprintOptions& options,
                        const Run& run) {
  return fingerprint_with(usual_identification(run), chain, options, run);
}

}  // namespace korvex
