#include "korvex/closure_map.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <numeric>
#include <stdexcept>
#include <string>

#include "engine/closures/closure_mapping.hpp"
#include "engine/closures/region_types.hpp"
#include "engine/closures/whole_chain.hpp"
#include "engine/diagram/code_reduction.hpp"
#include "engine/identify/diagram_types.hpp"
#include "engine/identify/type_numbers.hpp"
#include "engine/projection/projection.hpp"
#include "engine/run/parallel.hpp"
#include "engine/sphere/arrangement.hpp"
#include "engine/sphere/face_areas.hpp"
#include "engine/sphere/inner_point.hpp"
#include "geometry/unit_scale.hpp"
#include "korvex/directions.hpp"
#include "korvex/error.hpp"

namespace korvex {
namespace {

constexpr double kSphere = 4 * std::numbers::pi;

// By how much the points of a chain in special position are moved, in parts of its extent.
constexpr std::array kShifts{0.0, 1e-12, 1e-9, 1e-9, 1e-8, 1e-7, 1e-6, 1e-5};

// An end nearer to a bond than this is told from one on the bond by a larger shift alone.
constexpr double kTouching = 1e-10;
constexpr double kTouchingShift = 1e-9;

// The part of the progress that is done when the regions are known.
constexpr double kArranged = 0.05;
constexpr std::size_t kFacesOfAPiece = 64;

std::vector<Point> shifted(std::span<const Point> chain, double part, unsigned attempt) {
  std::vector<Point> moved(chain.begin(), chain.end());
  if (part == 0) return moved;
  const double extent = reach_of(chain);
  for (std::size_t i = 0; i < moved.size(); ++i)
    moved[i] = moved[i] + part * extent * random_direction(attempt, i);
  return moved;
}

bool touches(const SpherePath& path) {
  return std::any_of(path.weights.begin(), path.weights.end(),
                     [](double weight) { return weight < kTouching; });
}

class Mapping {
 public:
  Mapping(const Identification& identify, std::span<const Point> chain,
          const ClosureMapOptions& options, const Run& run)
      : identify_(identify), chain_(chain), options_(options), run_(run) {
    const auto refuse = [](const std::string& what) {
      throw Error(ErrorCode::kInvalidArgument, what);
    };
    if (options.most_regions == 0 || options.most_regions > kMostRegions)
      refuse("the most regions of a map must be from 1 to " + std::to_string(kMostRegions));
    if (chain.empty()) refuse("a chain without points has no map of closures: give at least one");
    require_usable(chain);
  }

  std::optional<ClosureMap> draw() {
    const std::vector<Point> whole = whole_chain(chain_);
    if (whole.front() == whole.back()) return map_of_ring(whole);
    for (unsigned attempt = 0; attempt < kShifts.size(); ++attempt) {
      switch (draw_shifted(attempt)) {
        case Arrangement::State::kGeneral:
          return std::move(map_);
        case Arrangement::State::kTooMany:
          return std::nullopt;
        case Arrangement::State::kDegenerate:
          break;
      }
    }
    if (uncovered_)
      throw std::logic_error("the regions of a map of closures do not cover the sphere");
    throw Error(ErrorCode::kInvalidArgument,
                "the closures of the chain cannot be mapped: its coordinates differ too much in "
                "size");
  }

 private:
  // With its ends in one place both rays are one: every direction has the type of the ring.
  ClosureMap map_of_ring(const std::vector<Point>& ring) {
    const GeneralView view = general_view(ring, {0, 0, 1}, Curve::kOpen, run_);
    GaussCode code = view.projection.code();
    CodeReduction().reduce(code);
    const DiagramType type = DiagramTypes(identify_).of_open(code, run_);
    fill({{type, view.direction, false}}, std::array{kSphere}, nullptr, {});
    if (run_.progress) run_.progress(1);
    return std::move(map_);
  }

  Arrangement::State draw_shifted(unsigned attempt) {
    const double shift = kShifts[attempt];
    const std::vector<Point> chain = whole_chain(shifted(chain_, shift, attempt));
    const auto first = path_seen_from_first(chain);
    const auto last = path_seen_from_last(chain);
    if (!first || !last) return Arrangement::State::kDegenerate;
    if (shift < kTouchingShift && (touches(*first) || touches(*last)))
      return Arrangement::State::kDegenerate;
    const Arrangement arrangement(*first, *last, options_.most_regions, run_);
    if (arrangement.state() != Arrangement::State::kGeneral) return arrangement.state();
    if (arrangement.faces() > options_.most_regions) return Arrangement::State::kTooMany;
    const auto inner = inner_points_of_all(arrangement);
    const std::vector<double> areas = face_areas(arrangement, inner);
    if (!cover_sphere(areas)) {
      uncovered_ = true;
      return Arrangement::State::kDegenerate;
    }
    const auto regions =
        region_types(chain, arrangement, inner, identify_, part_of(run_, kArranged, 1));
    if (!regions) return Arrangement::State::kDegenerate;
    fill(*regions, areas, &arrangement, inner);
    return Arrangement::State::kGeneral;
  }

  std::vector<std::optional<InnerPoint>> inner_points_of_all(const Arrangement& arrangement) const {
    std::vector<std::optional<InnerPoint>> inner(arrangement.faces());
    const std::size_t pieces = (inner.size() + kFacesOfAPiece - 1) / kFacesOfAPiece;
    for_each_piece(part_of(run_, 0, kArranged), pieces, [&](std::size_t piece, unsigned) {
      const std::size_t begin = piece * kFacesOfAPiece;
      for (std::size_t f = begin; f < std::min(begin + kFacesOfAPiece, inner.size()); ++f) {
        const auto points = inner_points(arrangement, f);
        if (!points.empty()) inner[f] = points.front();
      }
    });
    if (arrangement.faces() == 1 && !inner[0])
      inner[0] = InnerPoint{{0, 0, 1}, std::numbers::pi, std::numbers::pi};
    return inner;
  }

  // Not where a region is thinner than rounding, as chains in special position leave them.
  static bool cover_sphere(std::span<const double> areas) {
    constexpr double kTolerance = 1e-9;
    const double sum = std::accumulate(areas.begin(), areas.end(), 0.0);
    return std::abs(sum - kSphere) <= kTolerance * kSphere;
  }

  void fill(const std::vector<RegionType>& regions, std::span<const double> areas,
            const Arrangement* arrangement, std::span<const std::optional<InnerPoint>> inner) {
    map_ = {};
    TypeNumbers numbers;
    std::vector<std::size_t> order(regions.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return areas[a] > areas[b]; });
    for (const std::size_t face : order) {
      const RegionType& typed = regions[face];
      ClosureRegion region;
      region.type = static_cast<std::size_t>(numbers.of(typed.type.name));
      region.share = areas[face] / kSphere;
      region.direction = typed.direction;
      region.clearance = arrangement == nullptr ? std::numbers::pi
                         : inner[face]          ? inner[face]->clearance
                                                : 0;
      region.proven = typed.type.proven && !typed.in_doubt;
      region.in_doubt = typed.in_doubt;
      region.crossings = static_cast<std::size_t>(typed.type.crossings);
      if (arrangement != nullptr && options_.boundaries)
        region.boundaries = boundaries_of(*arrangement, face);
      if (region.in_doubt) map_.doubt += region.share;
      map_.crossings[region.crossings] += region.share;
      map_.regions.push_back(std::move(region));
    }
    sum_up_types(numbers.names());
  }

  static std::vector<std::vector<Point>> boundaries_of(const Arrangement& arrangement,
                                                       std::size_t face) {
    std::vector<std::vector<Point>> polygons;
    auto side = arrangement.sides(face).begin();
    for (const std::size_t length : arrangement.boundaries(face)) {
      auto& polygon = polygons.emplace_back();
      for (std::size_t k = 0; k < length; ++k) polygon.push_back(arrangement.begin_of(*side++));
    }
    return polygons;
  }

  // Renumbers the types of the regions by their shares.
  void sum_up_types(const std::vector<std::string>& names) {
    std::vector<TypeShare> shares(names.size());
    for (std::size_t k = 0; k < names.size(); ++k) shares[k].type = names[k];
    for (const ClosureRegion& region : map_.regions) {
      TypeShare& share = shares[region.type];
      share.share += region.share;
      if (region.proven) share.proven += region.share;
      ++share.regions;
    }
    std::vector<std::size_t> order(names.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::erase_if(order, [&](std::size_t k) { return shares[k].regions == 0; });
    std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
      return shares[a].share != shares[b].share ? shares[a].share > shares[b].share
                                                : shares[a].type < shares[b].type;
    });
    std::vector<std::size_t> place(names.size(), 0);
    for (std::size_t k = 0; k < order.size(); ++k) {
      place[order[k]] = k;
      map_.types.push_back(shares[order[k]]);
    }
    for (ClosureRegion& region : map_.regions) region.type = place[region.type];
  }

  const Identification& identify_;
  const std::span<const Point> chain_;
  const ClosureMapOptions options_;
  const Run& run_;
  ClosureMap map_;
  bool uncovered_ = false;  // at some attempt
};

}  // namespace

std::optional<ClosureMap> closure_map_with(const Identification& identify,
                                           std::span<const Point> chain,
                                           const ClosureMapOptions& options, const Run& run) {
  return Mapping(identify, chain, options, run).draw();
}

std::optional<ClosureMap> closure_map(std::span<const Point> chain,
                                      const ClosureMapOptions& options, const Run& run) {
  return closure_map_with(usual_identification(run), chain, options, run);
}

}  // namespace korvex
