// Votes on small chains: the same on any number of threads and for the chain run through backwards,
// all counted; and chains that are no numbers are refused.
#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "korvex/votes.hpp"
#include "points.hpp"

namespace {

using fuzz::require;
using korvex::Closure;
using korvex::Votes;

void check_sums(const Votes& votes) {
  std::size_t count = 0;
  double share = 0;
  for (std::size_t k = 0; k < votes.types.size(); ++k) {
    const korvex::TypeVotes& type = votes.types[k];
    require(type.count > 0 && type.proven <= type.count);
    require(type.interval.low <= type.share && type.share <= type.interval.high);
    require(k == 0 || type.count <= votes.types[k - 1].count);
    count += type.count;
    share += type.share;
  }
  require(count == votes.trials && std::abs(share - 1) < 1e-9);
  count = 0;
  for (const auto& [crossings, diagrams] : votes.crossings) count += diagrams;
  require(count == votes.trials);
}

bool same(const Votes& a, const Votes& b) {
  return a.trials == b.trials && a.crossings == b.crossings &&
         std::equal(a.types.begin(), a.types.end(), b.types.begin(), b.types.end(),
                    [](const auto& x, const auto& y) {
                      return x.type == y.type && x.count == y.count && x.proven == y.proven;
                    });
}

std::map<std::string, std::size_t> by_type(const Votes& votes) {
  std::map<std::string, std::size_t> counts;
  for (const korvex::TypeVotes& type : votes.types) counts[type.type] = type.count;
  return counts;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Bytes bytes(data, size);
  const unsigned kind = bytes.take<std::uint8_t>();
  const unsigned choice = bytes.take<std::uint8_t>();
  korvex::VoteOptions options;
  options.closure = static_cast<Closure>(choice % 5);
  options.sampling =
      choice / 5 % 2 == 0 ? korvex::Sampling::kLattice : korvex::Sampling::kIndependent;
  options.trials = 1 + choice / 10 % 8;
  korvex::Run run;
  run.seed = bytes.take<std::uint8_t>();
  std::vector<korvex::Point> chain = fuzz::points(bytes, kind, 30);
  Votes votes;
  const bool refused = fuzz::is_refused([&] { votes = vote(chain, options, run); });
  require(refused ? chain.empty() || fuzz::may_be_refused(chain)
                  : !chain.empty() && fuzz::usable(chain));
  if (refused) return 0;
  check_sums(votes);
  run.threads = 2;
  require(same(vote(chain, options, run), votes));
  if (options.closure == Closure::kTwoPoints || chain.size() < 2) return 0;
  const bool closed = !korvex::is_sampled(options.closure) && options.closure != Closure::kOut;
  if (!fuzz::is_embedded(chain, closed, 1e-4 * fuzz::extent(chain))) return 0;
  const bool proven = std::all_of(votes.types.begin(), votes.types.end(),
                                  [](const auto& type) { return type.proven == type.count; });
  std::reverse(chain.begin(), chain.end());
  const Votes reversed = vote(chain, options, run);
  check_sums(reversed);
  // A ray or an edge from end to end may still touch the chain: then a vote may differ.
  if (!proven || options.closure != Closure::kRays || kind % 8 != 3) return 0;
  require(by_type(reversed) == by_type(votes));
  return 0;
}
