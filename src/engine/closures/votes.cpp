#include "korvex/votes.hpp"

#include <algorithm>
#include <memory>
#include <string>
#include <utility>

#include "engine/closures/gathering.hpp"
#include "engine/closures/reduced_chain.hpp"
#include "engine/closures/tally.hpp"
#include "engine/closures/votes.hpp"
#include "engine/diagram/code_reduction.hpp"
#include "engine/identify/diagram_types.hpp"
#include "engine/projection/projection.hpp"
#include "engine/run/parallel.hpp"
#include "geometry/unit_scale.hpp"
#include "korvex/error.hpp"

namespace korvex {
namespace {

// Votes of one lattice when their number is found on the way.
constexpr std::size_t kLattice = 100;
// The part of a ring's progress that is done before its type is asked for.
constexpr double kExamined = 0.9;

class Voting {
 public:
  Voting(const Identification& identify, std::span<const Point> chain, const VoteOptions& options,
         const Run& run, const Sharing& sharing)
      : identify_(identify), chain_(chain), options_(options), run_(run), sharing_(sharing) {
    check();
  }

  Votes cast() {
    if (!is_sampled(options_.closure))
      cast_one();
    else if (options_.trials > 0)
      cast_block(options_.trials, 0, run_);
    else
      cast_until_settled();
    return result();
  }

 private:
  struct Worker {
    explicit Worker(const Identification& identify) : types(identify) {}

    DiagramTypes types;
    CodeReduction reduction;
    Tally<std::size_t> tally;  // of votes that are not in that of all yet
  };

  void check() const {
    const auto refuse = [](const std::string& what) {
      throw Error(ErrorCode::kInvalidArgument, what);
    };
    if (!(options_.tolerance > 0)) refuse("the tolerance of the votes must be above 0");
    if (options_.most_trials < kLattice) refuse("the most trials must be at least 100");
    if (std::max(options_.trials, options_.most_trials) > kMostVotes)
      refuse("more than " + std::to_string(kMostVotes) + " votes are not cast at once");
    if (chain_.empty()) refuse("a chain without points has no knot to vote on: give at least one");
    require_usable(chain_);
  }

  Worker& worker(unsigned number) {
    while (workers_.size() <= number) workers_.push_back(std::make_unique<Worker>(identify_));
    return *workers_[number];
  }

  void cast_one() {
    if (options_.closure == Closure::kOut) {
      tally_.add(type_of(ends_away_from_centre(), chain_, worker(0), run_), 1);
    } else {
      ring_ = examine_ring(chain_, part_of(run_, 0, kExamined));
      tally_.add(worker(0).types.of_closed(ring_->simplified.code(), run_), 1);
    }
    if (run_.progress) run_.progress(1);
  }

  Ends ends_away_from_centre() const {
    if (chain_.empty()) return {{0, 0, 1}, {0, 0, 1}};
    Point centre;
    const double part = 1 / static_cast<double>(chain_.size());
    for (const Point& p : chain_) centre = centre + part * p;
    const double scale = unit_scale(chain_);
    const auto away = [&](const Point& p) {
      const Point from_centre = scale * (p - centre);
      const double distance = norm(from_centre);
      return distance > 0 ? (1 / distance) * from_centre : Point{0, 0, 1};
    };
    return {away(chain_.front()), away(chain_.back())};
  }

  void cast_until_settled() {
    for (std::size_t block = 0; !settled(); ++block) {
      const auto part = [&](std::size_t votes) {
        return static_cast<double>(votes) / static_cast<double>(options_.most_trials);
      };
      cast_block(
          kLattice, block,
          part_of(run_, part(tally_.total()), std::min(part(tally_.total() + kLattice), 1.0)));
    }
    if (run_.progress) run_.progress(1);
  }

  bool settled() const {
    const std::size_t total = tally_.total();
    if (total == 0) return false;
    if (total + kLattice > options_.most_trials) return true;
    bool narrow = true;
    for (const auto& [type, votes] : tally_.types()) {
      const Interval interval = wilson_interval(votes.all, total);
      if (options_.majority_settles && interval.low > 0.5) return true;
      narrow = narrow && interval.high - interval.low <= 2 * options_.tolerance;
    }
    return narrow;
  }

  void cast_block(std::size_t trials, std::size_t block, const Run& run) {
    auto ends = sampled_ends(options_.closure, options_.sampling, trials, run.seed, block);
    if (sharing_.closest > 0) gather(std::span(ends), sharing_.batch, first_of);
    const bool worth =
        trials <= sharing_.most_directions && chain_.size() >= sharing_.fewest_points;
    const std::vector<Point> shared =
        worth ? reduced_for(ends, chain_, run) : std::vector<Point>(chain_.begin(), chain_.end());
    const std::size_t pieces = (trials + sharing_.batch - 1) / sharing_.batch;
    for (unsigned k = 0; k < worker_count(run, pieces); ++k) worker(k);
    for_each_piece(run, pieces, [&](std::size_t piece, unsigned number) {
      const std::size_t from = piece * sharing_.batch;
      const auto own = std::span(ends).subspan(from, std::min(sharing_.batch, trials - from));
      const std::vector<Point> reduced = reduced_for(own, shared, run);
      if (sharing_.closest == 0) return cast_each(own, reduced, *workers_[number], run);
      gather(own, sharing_.closest, first_of);
      for (std::size_t begin = 0; begin < own.size(); begin += sharing_.closest) {
        const auto closest = own.subspan(begin, std::min(sharing_.closest, own.size() - begin));
        cast_each(closest, reduced_for(closest, reduced, run), *workers_[number], run);
      }
    });
    for (const auto& worker : workers_) tally_.add(std::exchange(worker->tally, {}));
  }

  static const Point& first_of(const Ends& directions) { return directions.first; }

  static void cast_each(std::span<const Ends> ends, std::span<const Point> chain, Worker& worker,
                        const Run& run) {
    for (const Ends& directions : ends) {
      throw_if_cancelled(run);
      worker.tally.add(type_of(directions, chain, worker, run), 1);
    }
  }

  static DiagramType type_of(const Ends& ends, std::span<const Point> chain, Worker& worker,
                             const Run& run) {
    if (chain.empty()) return {};
    const GeneralView view = general_view(chain, ends.first, Curve::kOpen, run);
    const auto last = static_cast<std::int32_t>(chain.size()) - 1;
    GaussCode code = ends.first == ends.last ? view.projection.code()
                                             : led_away(chain, view, last, ends.last, run).code;
    worker.reduction.reduce(code);
    return worker.types.of_open(code, run);
  }

  Votes result() const {
    Votes votes;
    votes.trials = tally_.total();
    votes.crossings = tally_.crossings();
    votes.ring = ring_;
    for (auto& [type, count] : tally_.ranked())
      votes.types.push_back({type, count.all,
                             static_cast<double>(count.all) / static_cast<double>(votes.trials),
                             wilson_interval(count.all, votes.trials), count.proven});
    return votes;
  }

  const Identification& identify_;
  const std::span<const Point> chain_;
  const VoteOptions options_;
  const Run& run_;
  const Sharing sharing_;
  std::vector<std::unique_ptr<Worker>> workers_;
  Tally<std::size_t> tally_;
  std::optional<RingReport> ring_;
};

}  // namespace

Votes vote_with(const Identification& identify, std::span<const Point> chain,
                const VoteOptions& options, const Run& run, const Sharing& sharing) {
  return Voting(identify, chain, options, run, sharing).cast();
}

Votes vote(std::span<const Point> chain, const VoteOptions& options, const Run& run) {
  return vote_with(usual_identification(run), chain, options, run);
}

Votes vote_closely(std::span<const Point> chain, const VoteOptions& options, const Run& run) {
  return vote_with(usual_identification(run), chain, options, run, kCloseSharing);
}

}  // namespace korvex
