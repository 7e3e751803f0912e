#include "engine/fingerprint/exact_cell.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>
#include <optional>

#include "engine/closures/reduced_chain.hpp"
#include "engine/closures/whole_chain.hpp"
#include "engine/projection/projection.hpp"
#include "engine/sphere/face_areas.hpp"
#include "engine/sphere/inner_point.hpp"

namespace korvex {
namespace {

constexpr std::size_t kMostCrossings = 100'000;
constexpr std::int32_t kUnknown = -1;

// Shorter chains have at most one crossing.
constexpr std::size_t kFewestKnottedBonds = 4;

// An end nearer to a bond than this, in parts of the extent, may be on it.
constexpr double kTouching = 1e-10;

// An end that passes a bond at less than this is not known to pass on the right side.
constexpr double kThin = 1e-14;

// So many directions share one reduction of the chain, from so many on that it saves time.
constexpr std::size_t kBatch = 25;
constexpr std::size_t kWorthReducing = 12;

// What two pieces of an arc have in common must be longer than this: then its middle is far from
// their ends, however these are rounded.
constexpr double kShortest = 1e-9;

// Triangles about an apex are accurate where the boundaries keep so far from the point opposite.
constexpr double kRoomForApex = 1e-3;

// Of shares that sum up areas of the whole sphere.
constexpr double kTolerance = 1e-9;

bool touches(const SpherePath& path) {
  return std::any_of(path.weights.begin(), path.weights.end(),
                     [](double weight) { return weight < kTouching; });
}

Point unit(const Point& p) { return (1 / norm(p)) * p; }

}  // namespace

bool CellMapper::map(const TypedCell& without_last, const TypedCell& without_first, TypedCell& cell,
                     std::vector<ShareOfType>& shares) {
  const auto chain = whole_.subspan(cell.first, cell.last - cell.first + 1);
  const auto first = path_seen_from_first(chain);
  const auto last = path_seen_from_last(chain);
  if (!first || !last || touches(*first) || touches(*last)) return false;
  const Arrangement arrangement(*first, *last, kMostCrossings);
  if (arrangement.state() != Arrangement::State::kGeneral) return false;
  const std::size_t arcs = chain.size() - 2;
  if (arrangement.arcs(0) != arcs || arrangement.arcs(1) != arcs) return false;

  const bool unknotted = chain.size() <= kFewestKnottedBonds;
  type_of_face_.assign(arrangement.faces(), unknotted ? TypeNumbers::kUnknot : kUnknown);
  if (!unknotted) {
    take_over(arrangement, 0, without_last, cell);
    take_over(arrangement, 1, without_first, cell);
    if (!type_the_rest(arrangement, cell)) return false;
  }
  if (!sum_up(arrangement, shares)) return false;
  cell.seen_from_first = typed(arrangement, 0);
  cell.seen_from_last = typed(arrangement, 1);
  return true;
}

// Both cells have the arcs that one end sees of the shorter: where these are the boundary of a
// region there and of one here, and nothing meets the ray that moves, both are of one type.
void CellMapper::take_over(const Arrangement& arrangement, std::size_t path, const TypedCell& from,
                           const TypedCell& cell) {
  const TypedPath& theirs = path == 0 ? from.seen_from_first : from.seen_from_last;
  const std::size_t arcs_before = path == 0 ? 0 : from.first - cell.first;
  std::size_t piece = arrangement.first_piece(path);
  for (; piece < arrangement.end_of_pieces(path); ++piece) {
    const std::size_t arc = arrangement.arc_number(piece) - arrangement.first_arc(path);
    if (arc < arcs_before || arc - arcs_before >= theirs.arcs()) continue;
    const std::size_t left = arrangement.face_of(static_cast<std::int32_t>(2 * piece));
    const std::size_t right = arrangement.face_of(static_cast<std::int32_t>(2 * piece + 1));
    if (type_of_face_[left] != kUnknown && type_of_face_[right] != kUnknown) continue;
    const auto source =
        piece_to_take_over(arrangement, piece, theirs, arc - arcs_before, from, cell);
    if (!source) continue;
    type_of_face_[left] = theirs.on_left[*source];
    type_of_face_[right] = theirs.on_right[*source];
  }
}

// The number of a piece of the shorter cell's arc that has the same types on both sides.
std::optional<std::size_t> CellMapper::piece_to_take_over(const Arrangement& arrangement,
                                                          std::size_t piece,
                                                          const TypedPath& theirs, std::size_t arc,
                                                          const TypedCell& from,
                                                          const TypedCell& cell) {
  const Point& start = arrangement.arc_of(piece).from.unit;
  const Point& own_begin = arrangement.begin_of_piece(piece);
  const Point& own_end = arrangement.end_of_piece(piece);
  // Chords from the arc's start rise along it.
  const double own_low = norm(own_begin - start);
  const double own_high = norm(own_end - start);
  if (own_high - own_low < kShortest) return std::nullopt;
  const auto stop = static_cast<std::size_t>(theirs.begin[arc + 1]);
  for (auto k = static_cast<std::size_t>(theirs.begin[arc]); k < stop; ++k) {
    const double low = norm(theirs.points[k] - start);
    const double high = norm(theirs.points[k + 1] - start);
    if (low >= own_high) break;
    if (std::min(high, own_high) - std::max(low, own_low) < kShortest) continue;
    const Point& begin = low > own_low ? theirs.points[k] : own_begin;
    const Point& end = high < own_high ? theirs.points[k + 1] : own_end;
    if (is_free(unit(begin + end), from, cell)) return k;
  }
  return std::nullopt;
}

// Moves the end bond by bond, each time past the sub-chain that is there already.
bool CellMapper::is_free(const Point& ray, const TypedCell& from, const TypedCell& cell) {
  for (std::size_t end = from.last; end < cell.last; ++end)
    if (!sweep_.is_free(ray, {end, end + 1}, cell.first, end)) return false;
  for (std::size_t end = from.first; end > cell.first; --end)
    if (!sweep_.is_free(ray, {end, end - 1}, end, cell.last)) return false;
  return true;
}

bool CellMapper::type_the_rest(const Arrangement& arrangement, const TypedCell& cell) {
  unknown_.clear();
  for (std::size_t face = 0; face < type_of_face_.size(); ++face) {
    if (type_of_face_[face] != kUnknown) continue;
    auto points = inner_points(arrangement, face);
    if (arrangement.faces() == 1) points = {{{0, 0, 1}, std::numbers::pi, std::numbers::pi}};
    if (points.empty() || points.front().weighted < kThin) return false;
    unknown_.push_back({face, std::move(points)});
  }
  const auto chain = whole_.subspan(cell.first, cell.last - cell.first + 1);
  std::vector<Point> reduced;
  std::vector<Ends> rays;
  for (std::size_t k = 0; k < unknown_.size(); ++k) {
    if (k % kBatch == 0) {
      rays.clear();
      for (std::size_t r = k; r < std::min(k + kBatch, unknown_.size()); ++r)
        rays.push_back({unknown_[r].points.front().at, unknown_[r].points.front().at});
      reduced = rays.size() < kWorthReducing ? std::vector<Point>(chain.begin(), chain.end())
                                             : reduced_for(rays, chain, run_);
    }
    const auto& [face, points] = unknown_[k];
    bool seen = decide(face, points.front().at, reduced);
    for (std::size_t other = 1; !seen && other < points.size(); ++other)
      seen = points[other].weighted >= kThin && decide(face, points[other].at, chain);
    if (!seen) return false;
  }
  return true;
}

bool CellMapper::decide(std::size_t face, const Point& direction, std::span<const Point> chain) {
  const Projection view(chain, direction, Curve::kOpen, run_);
  if (view.degenerate()) return false;
  GaussCode code = view.code();
  reduction_.reduce(code);
  const DiagramType& type = diagrams_.of_open(code, run_);
  if (type.name != name_) {
    name_ = type.name;
    number_ = types_.of(name_);
  }
  type_of_face_[face] = number_;
  return true;
}

// Every piece adds the triangle to its left to the type there and takes it from that on its right:
// pieces with one type on both sides are not needed.
bool CellMapper::sum_up(const Arrangement& arrangement, std::vector<ShareOfType>& shares) const {
  constexpr double kSphere = 4 * std::numbers::pi;
  const std::int32_t any = type_of_face_.front();
  shares.assign(1, {any, 1});
  if (std::all_of(type_of_face_.begin(), type_of_face_.end(),
                  [any](std::int32_t type) { return type == any; }))
    return true;
  const auto room = roomy_place(arrangement);
  if (!room) return false;
  shares.assign(1, {type_of_face_[room->face], 1});
  const auto share_of = [&shares](std::int32_t type) -> double& {
    for (ShareOfType& some : shares)
      if (some.type == type) return some.share;
    return shares.emplace_back(ShareOfType{type, 0}).share;
  };
  for (const std::size_t path : {0u, 1u}) {
    for (std::size_t piece = arrangement.first_piece(path); piece < arrangement.end_of_pieces(path);
         ++piece) {
      const auto side = static_cast<std::int32_t>(2 * piece);
      const std::int32_t left = type_of_face_[arrangement.face_of(side)];
      const std::int32_t right = type_of_face_[arrangement.face_of(side + 1)];
      if (left == right) continue;
      const double share = signed_triangle(-room->at, arrangement.begin_of_piece(piece),
                                           arrangement.end_of_piece(piece)) /
                           kSphere;
      share_of(left) += share;
      share_of(right) -= share;
    }
  }
  for (ShareOfType& some : shares) {
    if (!(some.share >= -kTolerance && some.share <= 1 + kTolerance)) return false;
    some.share = std::clamp(some.share, 0.0, 1.0);
  }
  return true;
}

// A point far from the boundary of its face, which is one of those with the longest boundaries.
std::optional<CellMapper::Place> CellMapper::roomy_place(const Arrangement& arrangement) {
  std::vector<double> lengths(arrangement.faces(), 0);
  for (std::size_t face = 0; face < lengths.size(); ++face)
    for (const std::int32_t side : arrangement.sides(face))
      lengths[face] += norm(arrangement.end_of(side) - arrangement.begin_of(side));
  for (std::size_t tries = 0; tries < lengths.size(); ++tries) {
    const auto longest = std::max_element(lengths.begin(), lengths.end());
    const auto face = static_cast<std::size_t>(longest - lengths.begin());
    const auto points = inner_points(arrangement, face);
    if (!points.empty() && points.front().clearance > kRoomForApex)
      return Place{points.front().at, face};
    *longest = -1;
  }
  return std::nullopt;
}

TypedPath CellMapper::typed(const Arrangement& arrangement, std::size_t path) const {
  TypedPath typed;
  const std::size_t first = arrangement.first_piece(path);
  const std::size_t end = arrangement.end_of_pieces(path);
  for (std::size_t piece = first; piece < end; ++piece) {
    while (typed.begin.size() <= arrangement.arc_number(piece) - arrangement.first_arc(path))
      typed.begin.push_back(static_cast<std::int32_t>(piece - first));
    typed.points.push_back(arrangement.begin_of_piece(piece));
    const auto side = static_cast<std::int32_t>(2 * piece);
    typed.on_left.push_back(type_of_face_[arrangement.face_of(side)]);
    typed.on_right.push_back(type_of_face_[arrangement.face_of(side + 1)]);
  }
  typed.begin.push_back(static_cast<std::int32_t>(end - first));
  if (first < end) typed.points.push_back(arrangement.end_of_piece(end - 1));
  return typed;
}

}  // namespace korvex
