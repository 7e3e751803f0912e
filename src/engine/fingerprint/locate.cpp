#include "korvex/locate.hpp"

#include <algorithm>
#include <limits>

#include "engine/run/parallel.hpp"
#include "korvex/error.hpp"
#include "korvex/knot_name.hpp"

namespace korvex {
namespace {

std::vector<std::string> factors_of(const std::string& type) {
  std::vector<std::string> factors;
  if (const auto name = KnotName::parse(type))
    for (const KnotName& factor : name->factors()) factors.push_back(factor.text());
  return factors;
}

// What the name of a type tells.
struct Told {
  // Those of a diagram; of a name that does not tell, as many as could be.
  std::int64_t crossings = std::numeric_limits<std::int64_t>::max();
  // In order; none where the name leaves open which they are.
  std::optional<std::vector<KnotName>> factors = std::nullopt;
};

std::vector<Told> told_by(const std::vector<std::string>& types) {
  std::vector<Told> told(types.size());
  for (std::size_t type = 0; type < types.size(); ++type) {
    const auto name = KnotName::parse(types[type]);
    if (!name) continue;
    told[type].crossings = name->crossings().value_or(told[type].crossings);
    if (name->is_known() && !name->is_choice()) told[type].factors = name->factors();
  }
  return told;
}

// By its stations.
struct SubChain {
  std::size_t begin;
  std::size_t end;
};

class PlaceSearch {
 public:
  PlaceSearch(const Fingerprint& fingerprint, double threshold, const Run& run)
      : fingerprint_(fingerprint),
        stations_(fingerprint.stations()),
        last_(stations_.size() - 1),
        threshold_(threshold),
        told_(told_by(fingerprint.types())),
        run_(run) {}

  // Those, in order, that have a place anywhere.
  std::vector<std::size_t> types_with_places() const {
    constexpr double kRounding = 1e-6;
    const std::size_t types = fingerprint_.types().size();
    std::vector<bool> has_place(types, false);
    for (std::size_t begin = 0; begin < last_; ++begin) {
      throw_if_cancelled(run_);
      for (std::size_t end = begin + 1; end <= last_; ++end) {
        double left = 1;
        for (std::size_t type = 0; type < types && left + kRounding >= threshold_; ++type) {
          const double share = fingerprint_.share(type, begin, end);
          if (share >= threshold_) has_place[type] = true;
          left -= share;
        }
      }
    }
    std::vector<std::size_t> found;
    for (std::size_t type = 1; type < types; ++type)
      if (has_place[type]) found.push_back(type);
    return found;
  }

  // All places of a type, those with the shortest cores first.
  std::vector<KnotPlace> places_of(std::size_t type) const {
    const std::vector<SubChain> cores = cores_of(type);
    std::vector<KnotPlace> places;
    for (const SubChain& core : cores) places.push_back(place_with(type, core));
    if (!places.empty()) count_sub_chains(type, places);
    return places;
  }

 private:
  bool reached(std::size_t type, const SubChain& cell) const {
    return fingerprint_.share(type, cell.begin, cell.end) >= threshold_;
  }

  std::int32_t length(const SubChain& cell) const { return stretch(cell).length(); }

  Stretch stretch(const SubChain& cell) const {
    return {stations_[cell.begin], stations_[cell.end]};
  }

  bool better_core(std::size_t type, const SubChain& cell, const SubChain& than) const {
    if (length(cell) != length(than)) return length(cell) < length(than);
    return fingerprint_.share(type, cell.begin, cell.end) >
           fingerprint_.share(type, than.begin, than.end);
  }

  // So knotted sub-chains in which no other such lies: as many as do not share a residue, the
  // shortest first.
  std::vector<SubChain> cores_of(std::size_t type) const {
    std::vector<SubChain> minimal;
    std::size_t first_end = last_ + 1;  // of all that begin further on
    for (std::size_t begin = last_; begin-- > 0;) {
      throw_if_cancelled(run_);
      for (std::size_t end = begin + 1; end < first_end; ++end) {
        if (!reached(type, {begin, end})) continue;
        minimal.push_back({begin, end});
        first_end = end;
      }
    }
    std::reverse(minimal.begin(), minimal.end());
    std::stable_sort(minimal.begin(), minimal.end(),
                     [&](const SubChain& a, const SubChain& b) { return better_core(type, a, b); });
    std::vector<SubChain> cores;
    for (const SubChain& cell : minimal)
      if (std::none_of(cores.begin(), cores.end(), [&](const SubChain& core) {
            return cell.begin <= core.end && core.begin <= cell.end;
          }))
        cores.push_back(cell);
    return cores;
  }

  KnotPlace place_with(std::size_t type, const SubChain& core) const {
    KnotPlace place;
    place.type = fingerprint_.types()[type];
    place.core = stretch(core);
    place.core_share = fingerprint_.share(type, core.begin, core.end);
    place.whole_share = fingerprint_.share(type, 0, last_);
    place.tail_before = place.core.first - stations_.front();
    place.tail_after = stations_.back() - place.core.last;
    const auto longer_before = [&](std::size_t k) { return SubChain{core.begin - k, core.end}; };
    const auto longer_after = [&](std::size_t k) { return SubChain{core.begin, core.end + k}; };
    const Growth before = growth(type, core.begin, longer_before);
    const Growth after = growth(type, last_ - core.end, longer_after);
    for (const Absence& dip : before.dips)
      place.dips_before.push_back({residue_before(core, dip.from), residue_before(core, dip.until),
                                   dip.least, dip.becomes});
    for (const Absence& dip : after.dips)
      place.dips_after.push_back(
          {residue_after(core, dip.from), residue_after(core, dip.until), dip.least, dip.becomes});
    if (before.undone) {
      const std::int32_t residue = residue_before(core, before.undone->from);
      place.undone_before = {residue,
                             {residue, stations_[core.begin] - 1},
                             {stations_[0], residue},
                             before.undone->becomes};
    }
    if (after.undone) {
      const std::int32_t residue = residue_after(core, after.undone->from);
      place.undone_after = {residue,
                            {stations_[core.end] + 1, residue},
                            {residue, stations_[last_]},
                            after.undone->becomes};
    }
    return place;
  }

  std::int32_t residue_before(const SubChain& core, std::size_t k) const {
    return stations_[core.begin - k];
  }
  std::int32_t residue_after(const SubChain& core, std::size_t k) const {
    return stations_[core.end + k];
  }

  // A sub-chain that forms the knot holds one of the minimal ones, and so shares residues with the
  // core that was taken in its place: it counts for the core of which it holds most.
  void count_sub_chains(std::size_t type, std::vector<KnotPlace>& places) const {
    const auto shared = [](const Stretch& a, const Stretch& b) {
      return std::min(a.last, b.last) - std::max(a.first, b.first);
    };
    for (std::size_t begin = 0; begin < last_; ++begin) {
      throw_if_cancelled(run_);
      for (std::size_t end = begin + 1; end <= last_; ++end) {
        if (!reached(type, {begin, end})) continue;
        const Stretch own = stretch({begin, end});
        KnotPlace& place = *std::max_element(places.begin(), places.end(),
                                             [&](const KnotPlace& a, const KnotPlace& b) {
                                               return shared(a.core, own) < shared(b.core, own);
                                             });
        if (place.sub_chains++ == 0 || own.length() > place.longest.length()) place.longest = own;
      }
    }
  }

  // Below half the threshold: a share that merely wavers about the threshold is not undone.
  bool less_knotted(const SubChain& cell, std::size_t type) const {
    if (fingerprint_.share(type, cell.begin, cell.end) >= threshold_ / 2) return false;
    const std::size_t other = fingerprint_.dominant(cell.begin, cell.end).type;
    return told_[other].crossings < told_[type].crossings;
  }

  // Whether a sub-chain has the knot, by itself or as a factor, or may have it: the name of its
  // dominant type tells no factors.
  bool has_knot(const SubChain& cell, std::size_t type) const {
    if (reached(type, cell)) return true;
    const auto& factors = told_[fingerprint_.dominant(cell.begin, cell.end).type].factors;
    if (!factors) return true;
    const auto& wanted = told_[type].factors;
    return wanted &&
           std::includes(factors->begin(), factors->end(), wanted->begin(), wanted->end());
  }

  // Steps of a core's growth from one at which its knot is gone to one at which it is back.
  struct Absence {
    std::size_t from;
    std::size_t until;
    double least;  // share between them
    std::string becomes;
  };
  struct Growth {
    std::vector<Absence> dips;      // after which the knot came back
    std::optional<Absence> undone;  // for good
  };

  template <typename LongerBy>
  Growth growth(std::size_t type, std::size_t steps, const LongerBy& longer_by) const {
    Growth growth;
    std::optional<Absence>& gone = growth.undone;
    for (std::size_t k = 1; k <= steps; ++k) {
      const SubChain cell = longer_by(k);
      const double share = fingerprint_.share(type, cell.begin, cell.end);
      if (!gone) {
        if (less_knotted(cell, type)) gone = Absence{k, k, share, name_of_dominant(cell)};
      } else if (has_knot(cell, type)) {
        gone->until = k;
        growth.dips.push_back(*std::move(gone));
        gone.reset();
      } else {
        gone->least = std::min(gone->least, share);
      }
    }
    return growth;
  }

  std::string name_of_dominant(const SubChain& cell) const {
    return fingerprint_.types()[fingerprint_.dominant(cell.begin, cell.end).type];
  }

  const Fingerprint& fingerprint_;
  const std::vector<std::int32_t>& stations_;
  const std::size_t last_;
  const double threshold_;
  const std::vector<Told> told_;  // by type
  const Run& run_;
};

}  // namespace

Location locate(const Fingerprint& fingerprint, const LocateOptions& options, const Run& run) {
  if (!(options.threshold > 0 && options.threshold <= 1))
    throw Error(ErrorCode::kInvalidArgument,
                "the threshold of a knot core must be a share above 0 and at most 1");
  Location location{"0_1", 1, {}, {}, fingerprint.exact(), fingerprint.trials()};
  if (fingerprint.stations().size() < 2) return location;
  const std::size_t last = fingerprint.stations().size() - 1;
  const auto dominant = fingerprint.dominant(0, last);
  location.type = fingerprint.types()[dominant.type];
  location.share = dominant.share;
  location.factors = factors_of(location.type);
  const PlaceSearch search(fingerprint, options.threshold, run);
  for (const std::size_t type : search.types_with_places())
    for (KnotPlace& place : search.places_of(type)) location.knots.push_back(std::move(place));
  std::stable_sort(
      location.knots.begin(), location.knots.end(),
      [](const KnotPlace& a, const KnotPlace& b) { return a.core.length() > b.core.length(); });
  return location;
}

}  // namespace korvex
