#include "engine/sphere/arrangement.hpp"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "engine/run/parallel.hpp"
#include "geometry/box_tree.hpp"

namespace korvex {
namespace {

constexpr std::size_t kArcsOfAPiece = 256;

// An arc keeps within its sagitta of its chord.
BoundingBox<3> box_of(const Arc& arc) {
  constexpr double kSlack = 1e-14;
  const Point& a = arc.from.unit;
  const Point& b = arc.to.unit;
  const double margin = 1 - norm(a + b) / 2 + kSlack;
  return {{std::min(a.x, b.x) - margin, std::min(a.y, b.y) - margin, std::min(a.z, b.z) - margin},
          {std::max(a.x, b.x) + margin, std::max(a.y, b.y) + margin, std::max(a.z, b.z) + margin}};
}

}  // namespace

Arrangement::Arrangement(const SpherePath& first, const SpherePath& second,
                         std::size_t most_crossings, const Run& run) {
  if (!add_path(first) || !add_path(second)) {
    state_ = State::kDegenerate;
    return;
  }
  state_ = find_crossings(most_crossings, run);
  if (state_ != State::kGeneral) return;
  if (!place_stops() || !make_faces(trace_boundaries())) state_ = State::kDegenerate;
}

bool Arrangement::add_path(const SpherePath& path) {
  const std::size_t begin = arcs_.size();
  const SpherePoint* last = nullptr;
  for (std::size_t k = 0; k < path.points.size(); ++k) {
    const SpherePoint& point = path.points[k];
    if (last != nullptr) {
      const Alignment aligned = alignment(*last, point);
      if (aligned == Alignment::kOpposite) return false;
      if (aligned == Alignment::kSame) continue;
      arcs_.push_back(arc_between(*last, point));
      weights_.push_back(path.weights[k - 1]);
    }
    last = &point;
  }
  paths_.push_back({begin, arcs_.size()});
  return true;
}

// One after the other on one path, a before b.
bool Arrangement::neighbours(std::size_t a, std::size_t b) const {
  return a + 1 == b && (b < paths_[1].begin || a >= paths_[1].begin);
}

Arrangement::State Arrangement::find_crossings(std::size_t most_crossings, const Run& run) {
  const std::size_t pieces = (arcs_.size() + kArcsOfAPiece - 1) / kArcsOfAPiece;
  if (pieces == 0) return State::kGeneral;
  Run quiet = run;
  quiet.progress = nullptr;
  std::vector<std::vector<Crossing>> found(pieces);
  std::vector<State> states(pieces, State::kGeneral);
  BoxTree<3> boxes(arcs_.size());
  for (std::size_t k = 0; k < arcs_.size(); ++k) boxes.set(k, box_of(arcs_[k]));
  for_each_piece(quiet, pieces, [&](std::size_t piece, unsigned) {
    const std::size_t begin = piece * kArcsOfAPiece;
    const std::size_t end = std::min(begin + kArcsOfAPiece, arcs_.size());
    states[piece] = find_crossings_of(boxes, {begin, end}, most_crossings, found[piece]);
  });
  for (const State state : states)
    if (state != State::kGeneral) return state;
  for (const auto& some : found) crossings_.insert(crossings_.end(), some.begin(), some.end());
  return crossings_.size() > most_crossings ? State::kTooMany : State::kGeneral;
}

// The crossings of arcs with those before them.
Arrangement::State Arrangement::find_crossings_of(const BoxTree<3>& boxes, PathArcs some,
                                                  std::size_t most_crossings,
                                                  std::vector<Crossing>& found) const {
  std::vector<std::int32_t> near;
  Crossing crossing;
  for (std::size_t second = some.begin; second < some.end; ++second) {
    near.clear();
    boxes.find(boxes.box(second), 0, second, near);
    for (const std::int32_t first : near) {
      if (neighbours(at(first), second)) {
        if (overlap_at_end(reversed(arcs_[at(first)]), arcs_[second])) return State::kDegenerate;
        continue;
      }
      const ArcPair pair = meet(arcs_[at(first)], arcs_[second], crossing);
      if (pair == ArcPair::kDegenerate) return State::kDegenerate;
      if (pair == ArcPair::kApart) continue;
      crossing.first = first;
      crossing.second = static_cast<std::int32_t>(second);
      found.push_back(crossing);
      if (found.size() > most_crossings) return State::kTooMany;
    }
  }
  return State::kGeneral;
}

ArcPassage Arrangement::passage(std::int32_t crossing, std::size_t along) const {
  const Crossing& c = crossings_[at(crossing)];
  if (at(c.first) == along)
    return {c.at_first, c.error_first, &arcs_[at(c.second)], c.second_to_left};
  return {c.at_second, c.error_second, &arcs_[at(c.first)], !c.second_to_left};
}

// False where two passages of an arc are in one point.
bool Arrangement::sort_passages(std::size_t arc, std::span<std::int32_t> passages) const {
  bool apart = true;
  std::sort(passages.begin(), passages.end(), [&](std::int32_t a, std::int32_t b) {
    if (a == b) return false;
    const int order = order_along(arcs_[arc], passage(a, arc), passage(b, arc));
    apart = apart && order != 0;
    return order > 0;
  });
  return apart;
}

// Numbers the points and passages of both paths in their order.
bool Arrangement::place_stops() {
  std::vector<std::size_t> begin(arcs_.size() + 1, 0);
  for (const Crossing& crossing : crossings_) {
    ++begin[at(crossing.first) + 1];
    ++begin[at(crossing.second) + 1];
  }
  for (std::size_t k = 0; k < arcs_.size(); ++k) begin[k + 1] += begin[k];
  std::vector<std::int32_t> passages(begin.back());
  std::vector<std::size_t> next(begin.begin(), begin.end() - 1);
  for (std::size_t c = 0; c < crossings_.size(); ++c) {
    passages[next[at(crossings_[c].first)]++] = static_cast<std::int32_t>(c);
    passages[next[at(crossings_[c].second)]++] = static_cast<std::int32_t>(c);
  }

  std::vector<std::int32_t> seen(crossings_.size(), -1);
  for (PathArcs& path : paths_) {
    path.first_stop = stops_.size();
    for (std::size_t k = path.begin; k < path.end; ++k) {
      const auto number = static_cast<std::int32_t>(k);
      stops_.push_back({arcs_[k].from.unit, number, -1, -1, false, k == path.begin, false});
      const auto own = std::span(passages).subspan(begin[k], begin[k + 1] - begin[k]);
      if (!sort_passages(k, own)) return false;
      for (const std::int32_t c : own) {
        const ArcPassage here = passage(c, k);
        const auto stop = static_cast<std::int32_t>(stops_.size());
        // One point for both passages, so that the faces about it leave nothing between them.
        const std::int32_t mate = seen[at(c)];
        const Point point = mate >= 0 ? stops_[at(mate)].at : point_at(arcs_[k], here.at);
        stops_.push_back({point, number, c, mate, here.to_left, false, false});
        if (mate >= 0) stops_[at(mate)].mate = stop;
        seen[at(c)] = stop;
      }
    }
    if (path.empty()) continue;
    path.last_stop = stops_.size();
    const auto last = static_cast<std::int32_t>(path.end - 1);
    stops_.push_back({arcs_[path.end - 1].to.unit, last, -1, -1, false, false, true});
  }
  return true;
}

// The side that comes next when the face is kept to the left: at a crossing the way turns left.
std::int32_t Arrangement::next_side(std::int32_t side) const {
  const bool forward = is_left(side);
  const auto stop = static_cast<std::int32_t>(piece_of(side)) + (forward ? 1 : 0);
  const Stop& here = stops_[at(stop)];
  if (here.begins || here.ends) return other_side(side);
  if (here.mate < 0) return forward ? 2 * stop : 2 * (stop - 1) + 1;
  return here.other_to_left == forward ? 2 * here.mate : 2 * (here.mate - 1) + 1;
}

// Numbers the closed boundaries and gives how many there are.
std::size_t Arrangement::trace_boundaries() {
  boundary_of_side_.assign(2 * stops_.size(), -1);
  std::int32_t count = 0;
  for (std::size_t start = 0; start < boundary_of_side_.size(); ++start) {
    if (stops_[start / 2].ends || boundary_of_side_[start] >= 0) continue;
    auto side = static_cast<std::int32_t>(start);
    do {
      boundary_of_side_[at(side)] = count;
      sides_.push_back(side);
      side = next_side(side);
    } while (side != static_cast<std::int32_t>(start));
    ++count;
  }
  return static_cast<std::size_t>(count);
}

bool Arrangement::crosses_between_paths() const {
  const std::size_t second = paths_[1].begin;
  return std::any_of(crossings_.begin(), crossings_.end(), [second](const Crossing& crossing) {
    return at(crossing.first) < second && at(crossing.second) >= second;
  });
}

// The side of a path that lies open to the given end of the bridge; false where that is degenerate.
bool Arrangement::bridge_side(const Arc& bridge, const PathArcs& path, bool path_at_start,
                              std::int32_t& side) const {
  const std::size_t own_end = path_at_start ? path.begin : path.end - 1;
  side = static_cast<std::int32_t>(2 * (path_at_start ? path.first_stop : path.last_stop - 1));
  bool found = false;
  ArcPassage nearest{};
  for (std::size_t k = path.begin; k < path.end; ++k) {
    if (k == own_end) {
      const bool overlap = path_at_start ? overlap_at_end(bridge, arcs_[k])
                                         : overlap_at_end(reversed(bridge), reversed(arcs_[k]));
      if (overlap) return false;
      continue;
    }
    ArcCrossing crossing;
    const ArcPair pair = meet(bridge, arcs_[k], crossing);
    if (pair == ArcPair::kDegenerate) return false;
    if (pair == ArcPair::kApart) continue;
    const ArcPassage here{crossing.at_first, crossing.error_first, &arcs_[k],
                          crossing.second_to_left};
    if (found) {
      const int order = order_along(bridge, nearest, here);
      if (order == 0) return false;
      if ((order > 0) != path_at_start) continue;
    }
    found = true;
    nearest = here;
    // The other path lies on the bridge's far side of the arc.
    const ArcPassage on_arc{crossing.at_second, crossing.error_second, &bridge,
                            !crossing.second_to_left};
    if (!side_at(k, path, on_arc, crossing.second_to_left != path_at_start, side)) return false;
  }
  return true;
}

// The side of an arc at a place where another arc crosses it; false where a third does, too.
bool Arrangement::side_at(std::size_t arc, const PathArcs& path, const ArcPassage& place, bool left,
                          std::int32_t& side) const {
  std::size_t stop = path.first_stop;
  while (at(stops_[stop].arc) != arc) ++stop;
  for (; at(stops_[stop + 1].arc) == arc && stops_[stop + 1].crossing >= 0; ++stop) {
    const int order = order_along(arcs_[arc], passage(stops_[stop + 1].crossing, arc), place);
    if (order == 0) return false;
    if (order < 0) break;
  }
  side = static_cast<std::int32_t>(2 * stop + (left ? 0 : 1));
  return true;
}

// Two paths that do not cross leave one face with a boundary on either: an arc from the start of
// the first to the end of the second tells which two boundaries face each other.
bool Arrangement::make_faces(std::size_t boundaries) {
  const bool apart = !paths_[0].empty() && !paths_[1].empty() && !crosses_between_paths();
  const std::size_t paths = (paths_[0].empty() ? 0u : 1u) + (paths_[1].empty() ? 0u : 1u);
  const std::size_t components = apart ? 2 : std::min<std::size_t>(paths, 1);
  if (boundaries + paths != crossings_.size() + 2 * components)
    throw std::logic_error("the faces of an arrangement on the sphere break Euler's formula");
  if (paths == 0) return true;

  std::vector<std::int32_t> face_of(boundaries);
  for (std::size_t b = 0; b < boundaries; ++b) face_of[b] = static_cast<std::int32_t>(b);
  if (apart && !join_paths(face_of)) return false;
  gather_sides(face_of);
  return true;
}

bool Arrangement::join_paths(std::vector<std::int32_t>& face_of) const {
  std::int32_t first_side = 0;
  std::int32_t second_side = static_cast<std::int32_t>(2 * paths_[1].first_stop);
  const auto inner = std::count_if(crossings_.begin(), crossings_.end(), [&](const Crossing& c) {
    return at(c.second) < paths_[1].begin;
  });
  const bool first_alone = inner == 0;
  const bool second_alone = static_cast<std::size_t>(inner) == crossings_.size();
  if (!first_alone || !second_alone) {
    const SpherePoint& from = arcs_[paths_[0].begin].from;
    const SpherePoint& to = arcs_[paths_[1].end - 1].to;
    if (alignment(from, to) != Alignment::kNone) return false;
    const Arc bridge = arc_between(from, to);
    if (!first_alone && !bridge_side(bridge, paths_[0], true, first_side)) return false;
    if (!second_alone && !bridge_side(bridge, paths_[1], false, second_side)) return false;
  }
  const std::int32_t kept = boundary_of_side_[at(first_side)];
  const std::int32_t joined = boundary_of_side_[at(second_side)];
  for (std::int32_t& face : face_of) face = face == joined ? kept : face - (face > joined ? 1 : 0);
  return true;
}

// Puts the sides of each face together; the sides of its boundaries stay in their order.
void Arrangement::gather_sides(const std::vector<std::int32_t>& face_of) {
  face_of_side_.assign(boundary_of_side_.size(), -1);
  const std::size_t faces =
      static_cast<std::size_t>(*std::max_element(face_of.begin(), face_of.end())) + 1;
  side_begin_.assign(faces + 1, 0);
  for (const std::int32_t side : sides_) {
    const std::int32_t face = face_of[at(boundary_of_side_[at(side)])];
    face_of_side_[at(side)] = face;
    ++side_begin_[at(face) + 1];
  }
  for (std::size_t face = 0; face < faces; ++face) side_begin_[face + 1] += side_begin_[face];
  std::vector<std::size_t> next(side_begin_.begin(), side_begin_.end() - 1);
  std::vector<std::int32_t> gathered(sides_.size());
  for (const std::int32_t side : sides_) gathered[next[at(face_of_side_[at(side)])]++] = side;
  sides_ = std::move(gathered);
}

std::vector<std::size_t> Arrangement::boundaries(std::size_t face) const {
  std::vector<std::size_t> lengths;
  std::int32_t current = -1;
  for (const std::int32_t side : sides(face)) {
    if (boundary_of_side_[at(side)] != current) lengths.push_back(0);
    current = boundary_of_side_[at(side)];
    ++lengths.back();
  }
  return lengths;
}

}  // namespace korvex
