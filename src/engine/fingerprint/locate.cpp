#include "korvex/locate.hpp"

#include <algorithm>
#include <limits>

#include "korvex/error.hpp"
#include "korvex/knot_name.hpp"

namespace korvex {
namespace {

// Of each type; of those whose names do not tell, as many as could be.
std::vector<std::int64_t> crossings_of(const std::vector<std::string>& types) {
  std::vector<std::int64_t> crossings;
  for (const std::string& type : types) {
    const auto name = KnotName::parse(type);
    const auto told = name ? name->crossings() : std::nullopt;
    crossings.push_back(told.value_or(std::numeric_limits<std::int64_t>::max()));
  }
  return crossings;
}

std::vector<std::string> factors_of(const std::string& type) {
  std::vector<std::string> factors;
  if (const auto name = KnotName::parse(type))
    for (const KnotName& factor : name->factors()) factors.push_back(factor.text());
  return factors;
}

// A sub-chain by its stations.
struct Cell {
  std::size_t begin;
  std::size_t end;
};

class Search {
 public:
  Search(const Fingerprint& fingerprint, double threshold)
      : fingerprint_(fingerprint),
        stations_(fingerprint.stations()),
        last_(stations_.size() - 1),
        threshold_(threshold),
        crossings_(crossings_of(fingerprint.types())) {}

  std::optional<KnotPlace> place_of(std::size_t type) const {
    KnotPlace place;
    std::optional<Cell> core;
    std::optional<Cell> longest;
    for (std::size_t begin = 0; begin < last_; ++begin) {
      for (std::size_t end = begin + 1; end <= last_; ++end) {
        const Cell cell{begin, end};
        if (!reached(type, cell)) continue;
        ++place.sub_chains;
        if (!core || better_core(type, cell, *core)) core = cell;
        if (!longest || length(cell) > length(*longest)) longest = cell;
      }
    }
    if (!core) return std::nullopt;
    place.type = fingerprint_.types()[type];
    place.core = stretch(*core);
    place.core_share = fingerprint_.share(type, core->begin, core->end);
    place.whole_share = fingerprint_.share(type, 0, last_);
    place.longest = stretch(*longest);
    place.tail_before = place.core.first - stations_.front();
    place.tail_after = stations_.back() - place.core.last;
    place.undone_before = undone_before(type, *core);
    place.undone_after = undone_after(type, *core);
    return place;
  }

 private:
  bool reached(std::size_t type, const Cell& cell) const {
    return fingerprint_.share(type, cell.begin, cell.end) >= threshold_;
  }

  std::int32_t length(const Cell& cell) const { return stretch(cell).length(); }

  Stretch stretch(const Cell& cell) const { return {stations_[cell.begin], stations_[cell.end]}; }

  bool better_core(std::size_t type, const Cell& cell, const Cell& than) const {
    if (length(cell) != length(than)) return length(cell) < length(than);
    return fingerprint_.count(type, cell.begin, cell.end) >
           fingerprint_.count(type, than.begin, than.end);
  }

  // Below half the threshold: a share that merely wavers about the threshold is not undone.
  bool less_knotted(const Cell& cell, std::size_t type) const {
    if (fingerprint_.share(type, cell.begin, cell.end) >= threshold_ / 2) return false;
    const std::size_t other = fingerprint_.dominant(cell.begin, cell.end).type;
    return crossings_[other] < crossings_[type];
  }

  std::optional<Threading> undone_after(std::size_t type, const Cell& core) const {
    for (std::size_t end = core.end + 1; end <= last_; ++end) {
      if (!less_knotted({core.begin, end}, type)) continue;
      return Threading{stations_[end],
                       {stations_[core.end] + 1, stations_[end]},
                       {stations_[end], stations_[last_]},
                       name_of_dominant({core.begin, end})};
    }
    return std::nullopt;
  }

  std::optional<Threading> undone_before(std::size_t type, const Cell& core) const {
    for (std::size_t begin = core.begin; begin-- > 0;) {
      if (!less_knotted({begin, core.end}, type)) continue;
      return Threading{stations_[begin],
                       {stations_[begin], stations_[core.begin] - 1},
                       {stations_[0], stations_[begin]},
                       name_of_dominant({begin, core.end})};
    }
    return std::nullopt;
  }

  std::string name_of_dominant(const Cell& cell) const {
    return fingerprint_.types()[fingerprint_.dominant(cell.begin, cell.end).type];
  }

  const Fingerprint& fingerprint_;
  const std::vector<std::int32_t>& stations_;
  const std::size_t last_;
  const double threshold_;
  const std::vector<std::int64_t> crossings_;  // by type
};

}  // namespace

Location locate(const Fingerprint& fingerprint, const LocateOptions& options) {
  if (!(options.threshold > 0 && options.threshold <= 1))
    throw Error(ErrorCode::kInvalidArgument,
                "the threshold of a knot core must be a share above 0 and at most 1");
  if (fingerprint.stations().size() < 2) return {"0_1", 1, {}, {}};
  const std::size_t last = fingerprint.stations().size() - 1;
  const auto dominant = fingerprint.dominant(0, last);
  Location location;
  location.type = fingerprint.types()[dominant.type];
  location.share = fingerprint.share(dominant.type, 0, last);
  location.factors = factors_of(location.type);
  const Search search(fingerprint, options.threshold);
  for (std::size_t type = 1; type < fingerprint.types().size(); ++type)
    if (auto place = search.place_of(type)) location.knots.push_back(*std::move(place));
  std::stable_sort(
      location.knots.begin(), location.knots.end(),
      [](const KnotPlace& a, const KnotPlace& b) { return a.core.length() > b.core.length(); });
  return location;
}

}  // namespace korvex
