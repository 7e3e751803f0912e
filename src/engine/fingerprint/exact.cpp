#include "engine/fingerprint/exact.hpp"

#include <algorithm>
#include <atomic>
#include <memory>
#include <numeric>
#include <string>
#include <utility>

#include "engine/closures/closure_mapping.hpp"
#include "engine/closures/whole_chain.hpp"
#include "engine/fingerprint/exact_cell.hpp"
#include "engine/fingerprint/shared_types.hpp"
#include "engine/fingerprint/stations.hpp"
#include "engine/projection/projection.hpp"
#include "engine/run/parallel.hpp"
#include "korvex/error.hpp"

namespace korvex {
namespace {

class ExactFingerprint {
 public:
  ExactFingerprint(const Identification& identify, std::span<const Point> chain,
                   const FingerprintOptions& options, const Run& run)
      : identify_(identify), chain_(chain), options_(options), run_(run), quiet_(quiet(run)) {
    if (options.closure != Closure::kRays)
      throw Error(ErrorCode::kInvalidArgument,
                  "exact shares are those of closing by rays: choose it, or votes");
    require_usable(chain);
    stations_ = stations_along(chain.size(), options.step);
    shares_ = TypeShares(std::max<std::size_t>(stations_.size(), 1));
    doubts_.assign(shares_.cells().size(), 0);
  }

  Fingerprint one_by_one() {
    for_each_piece(run_, stations_.size(), [&](std::size_t piece, unsigned) {
      const std::size_t end = stations_.size() - 1 - piece;  // the longest columns first
      for (std::size_t begin = 0; begin < end; ++begin) map_alone(begin, end);
    });
    return collected();
  }

  // Diagonal by diagonal: the sub-chains of one length in stations take over what those with one
  // station less have found.
  Fingerprint by_length() {
    const std::vector<Point> whole = whole_chain(chain_);
    if (whole.size() != chain_.size()) return one_by_one();  // points repeat
    std::vector<Point> scaled;
    for (const Point& p : whole) scaled.push_back(kGridStep * p);
    std::vector<CellMapper> mappers;
    for (unsigned k = 0; k < worker_count(run_, stations_.size()); ++k)
      mappers.emplace_back(identify_, whole, scaled, types_, quiet_);
    std::vector<TypedCell> shorter(stations_.size());
    for (std::size_t length = 1; length < stations_.size(); ++length) {
      std::vector<TypedCell> cells(stations_.size() - length);
      const std::size_t pieces = (cells.size() + kCellsOfAPiece - 1) / kCellsOfAPiece;
      for_each_piece(part_of(run_, part_done(length), part_done(length + 1)), pieces,
                     [&](std::size_t piece, unsigned worker) {
                       const std::size_t begin = piece * kCellsOfAPiece;
                       const std::size_t end = std::min(begin + kCellsOfAPiece, cells.size());
                       for (std::size_t k = begin; k < end; ++k)
                         map_next_to(shorter[k], shorter[k + 1], k, k + length, mappers[worker],
                                     cells[k]);
                     });
      shorter = std::move(cells);
    }
    return collected();
  }

 private:
  // Of one piece of work on one thread.
  static Run quiet(Run run) {
    run.threads = 1;
    run.progress = nullptr;
    return run;
  }

  // The part of the work that sub-chains of fewer stations make: the cost of each is about its
  // length.
  double part_done(std::size_t length) const {
    const auto done = static_cast<double>(length - 1);
    const auto all = static_cast<double>(stations_.size() - 1);
    return std::min(1.0, done * done * (3 * all - 2 * done) / (all * all * all));
  }

  void map_next_to(const TypedCell& without_last, const TypedCell& without_first, std::size_t begin,
                   std::size_t end, CellMapper& mapper, TypedCell& cell) {
    cell.first = static_cast<std::size_t>(stations_[begin]);
    cell.last = static_cast<std::size_t>(stations_[end]);
    std::vector<ShareOfType> shares;
    if (mapper.map(without_last, without_first, cell, shares))
      keep(shares, begin, end);
    else
      map_alone(begin, end);
  }

  void map_alone(std::size_t begin, std::size_t end) {
    const auto from = static_cast<std::size_t>(stations_[begin]);
    const auto to = static_cast<std::size_t>(stations_[end]);
    const auto map = closure_map_with(identify_, chain_.subspan(from, to - from + 1),
                                      {.most_regions = kMostRegions, .boundaries = false}, quiet_);
    if (!map)
      throw Error(ErrorCode::kInvalidArgument, "the closures of a sub-chain fall into more than " +
                                                   std::to_string(kMostRegions) +
                                                   " regions: take votes, which need none");
    doubts_[TypeShares::cell(begin, end)] = map->doubt;
    std::vector<ShareOfType> shares;
    for (const TypeShare& type : map->types) shares.push_back({types_.of(type.type), type.share});
    keep(shares, begin, end);
  }

  // Nothing is kept of unknotted sub-chains.
  void keep(std::vector<ShareOfType>& shares, std::size_t begin, std::size_t end) {
    if (std::all_of(shares.begin(), shares.end(),
                    [](const ShareOfType& some) { return some.type == TypeNumbers::kUnknot; }))
      return;
    const std::size_t bytes = shares.size() * sizeof(ShareOfType);
    if (bytes_.fetch_add(bytes, std::memory_order_relaxed) + bytes > options_.most_memory)
      throw Error(ErrorCode::kInvalidArgument,
                  "the shares of the sub-chains need more than " +
                      std::to_string(options_.most_memory) +
                      " bytes of memory: choose a larger step, or allow more memory");
    shares_.of(begin, end) = shares;
  }

  // Types by their shares of all sub-chains, so that it does not matter which was found first.
  Fingerprint collected() {
    const std::vector<std::string>& names = types_.names();
    std::vector<double> totals(names.size(), 0);
    for (const auto& cell : shares_.cells())
      for (const ShareOfType& some : cell)
        totals[static_cast<std::size_t>(some.type)] += some.share;
    std::vector<std::size_t> order(names.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::erase_if(order, [&](std::size_t type) { return type > 0 && !(totals[type] > 0); });
    std::sort(order.begin() + 1, order.end(), [&](std::size_t a, std::size_t b) {
      return totals[a] != totals[b] ? totals[a] > totals[b] : names[a] < names[b];
    });
    std::vector<std::int32_t> renamed(names.size(), -1);
    FingerprintData data{options_, std::move(stations_), {}, TypeCounts(0)};
    for (const std::size_t type : order) {
      renamed[type] = static_cast<std::int32_t>(data.types.size());
      data.types.push_back(names[type]);
    }
    for (auto& cell : shares_.cells()) {
      for (ShareOfType& some : cell) some.type = renamed[static_cast<std::size_t>(some.type)];
      std::erase_if(cell, [](const ShareOfType& some) { return some.type < 0; });
    }
    data.shares = std::move(shares_);
    data.doubt = doubts_.empty() ? 0 : *std::max_element(doubts_.begin(), doubts_.end());
    return FingerprintData::shared(std::move(data));
  }

  static constexpr std::size_t kMostRegions = 100'000;
  static constexpr std::size_t kCellsOfAPiece = 4;
  static constexpr double kGridStep = 0x1p-49;  // leaves coordinates of whole chains below 2

  const Identification& identify_;
  const std::span<const Point> chain_;
  const FingerprintOptions options_;
  const Run& run_;
  const Run quiet_;
  std::vector<std::int32_t> stations_;
  SharedTypes types_;
  TypeShares shares_;
  std::vector<double> doubts_;
  std::atomic<std::size_t> bytes_ = 0;
};

}  // namespace

Fingerprint exact_fingerprint(const Identification& identify, std::span<const Point> chain,
                              const FingerprintOptions& options, const Run& run,
                              SubChains sub_chains) {
  ExactFingerprint exact(identify, chain, options, run);
  return sub_chains == SubChains::kOneByOne ? exact.one_by_one() : exact.by_length();
}

}  // namespace korvex
