#include "engine/scan/scan_answer.hpp"

#include <new>
#include <string_view>

#include "engine/closures/votes.hpp"
#include "engine/run/random.hpp"
#include "korvex/closure_map.hpp"
#include "korvex/error.hpp"

namespace korvex {
namespace {

constexpr std::size_t kUsualVotes = 100;
// Up to so many stations exact shares of all sub-chains take no longer than votes.
constexpr std::size_t kMostExactStations = 100;

void take(ScanAnswer& answer, const ClosureMap& map) {
  for (const TypeShare& type : map.types) answer.types.emplace_back(type.type, type.share);
  answer.low = std::max(map.dominant().share - map.doubt, 0.0);
  answer.high = std::min(map.dominant().share + map.doubt, 1.0);
}

void take(ScanAnswer& answer, const Votes& votes) {
  answer.trials = votes.trials;
  for (const TypeVotes& type : votes.types) answer.types.emplace_back(type.type, type.share);
  answer.low = votes.dominant().interval.low;
  answer.high = votes.dominant().interval.high;
}

void find_type(ScanAnswer& answer, const Chain& chain, const ScanOptions& options, const Run& run) {
  if (!chain.closed && options.trials == 0) {
    const ClosureMapOptions map_options{.most_regions = options.most_regions, .boundaries = false};
    if (const auto map = closure_map(chain.points, map_options, run)) return take(answer, *map);
  }
  VoteOptions votes;
  votes.closure = chain.closed ? Closure::kRing : Closure::kRays;
  votes.trials = options.trials == 0 ? kUsualVotes : options.trials;
  // Of a line's answer the types alone are told, not what is left of the diagrams.
  take(answer, vote_closely(chain.points, votes, run));
}

double share_of_knots(const ScanAnswer& answer) {
  double share = 0;
  for (const auto& [type, of_type] : answer.types)
    if (type != "0_1") share += of_type;
  return share;
}

void find_places(ScanAnswer& answer, const Chain& chain, const ScanOptions& options,
                 const Run& run) {
  FingerprintOptions asked;
  asked.step = options.step;
  asked.exact = options.directions == 0 && chain.points.size() <= kMostExactStations * options.step;
  asked.directions = options.directions == 0 ? kUsualVotes : options.directions;
  const LocateOptions locate_options{.threshold = options.threshold};
  answer.location = locate(fingerprint(chain.points, asked, run), locate_options, run);
}

}  // namespace

ScanAnswer scan_answer(const Chain& chain, const ScanOptions& options, const Run& run) {
  ScanAnswer answer;
  try {
    find_type(answer, chain, options, run);
    const bool located = options.slipknots || share_of_knots(answer) > options.locate_above;
    if (located && !chain.closed) find_places(answer, chain, options, run);
  } catch (const Error& error) {
    if (error.code() == ErrorCode::kCancelled) throw;
    answer.failure = error.what();
  } catch (const std::bad_alloc&) {
    answer.failure = "there is not enough memory for this chain";
  } catch (const std::exception& error) {
    answer.failure = std::string("internal error: ") + error.what();
  }
  return answer;
}

std::uint64_t seed_of(const Member& member, const Chain& chain, std::uint64_t seed) {
  const auto mix = [&seed](std::uint64_t more) { seed = TrialRandom(seed, more).bits(); };
  const auto mix_text = [&mix](std::string_view text) {
    for (const char c : text) mix(static_cast<unsigned char>(c));
    mix(text.size());
  };
  mix_text(member.identity());
  mix(static_cast<std::uint64_t>(chain.model));
  mix_text(chain.name);
  mix(static_cast<std::uint64_t>(chain.part));
  return seed;
}

}  // namespace korvex
