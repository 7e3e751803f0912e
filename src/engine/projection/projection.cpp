#include "engine/projection/projection.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

#include "engine/diagram/place.hpp"
#include "engine/run/parallel.hpp"
#include "geometry/predicates.hpp"
#include "geometry/unit_scale.hpp"

namespace korvex {
namespace {

constexpr double kEpsilon = std::numeric_limits<double>::epsilon();

// How far, in units of the projection's extent, a strand is led to leave everything behind.
constexpr double kAway = 4;

// A right-handed frame about `up` (T. Duff et al., J. Comput. Graph. Tech. 6, 1 (2017)).
std::array<Point, 2> frame_about(const Point& up) {
  const double sign = std::copysign(1.0, up.z);
  const double a = -1 / (sign + up.z);
  const double b = up.x * up.y * a;
  return {Point{1 + sign * up.x * up.x * a, sign * b, -sign * up.x},
          Point{b, sign + up.y * up.y * a, -up.y}};
}

}  // namespace

Projection::Projection(std::span<const Point> chain, const Point& direction, Curve curve,
                       const Run& run) {
  look_at(chain, direction, curve);
  bound_segments();
  for (std::size_t second = 2; second < segments() && !degenerate_; ++second) {
    throw_if_cancelled(run);
    const bool meets_first = curve == Curve::kClosed && second + 1 == segments();
    degenerate_ = !find_meetings(second, {meets_first ? 1u : 0u, second - 1});
  }
  degenerate_ = degenerate_ || !sort_passages();
}

void Projection::look_at(std::span<const Point> chain, const Point& direction, Curve curve) {
  const auto [right, up] = frame_about(direction);
  frame_ = {right, up, direction};
  const double scale = unit_scale(chain);
  vertices_.reserve(chain.size() + 1);
  kept_.reserve(chain.size());
  original_.reserve(chain.size());
  const auto add = [&, right = right, up = up](const Point& point) {
    const Point p = scale * (point - chain[0]);
    const Vertex vertex{dot(right, p), dot(up, p), dot(direction, p)};
    reach_ = std::max({reach_, std::abs(vertex.x), std::abs(vertex.y)});
    vertices_.push_back(vertex);
  };
  for (std::size_t i = 0; i < chain.size(); ++i) {
    if (i == 0 || chain[i] != chain[i - 1]) {
      if (i > 0) original_.push_back(static_cast<std::int32_t>(i - 1));
      add(chain[i]);
    }
    kept_.push_back(static_cast<std::int32_t>(vertices_.size()) - 1);
  }
  if (curve == Curve::kClosed && !chain.empty() && chain.back() != chain.front()) {
    original_.push_back(static_cast<std::int32_t>(chain.size()) - 1);
    add(chain.front());
  }
}

BoundingBox<2> Projection::box_of(const Segment& segment) {
  const auto [left, right] = std::minmax(segment.from.x, segment.to.x);
  const auto [bottom, top] = std::minmax(segment.from.y, segment.to.y);
  return {{left, bottom}, {right, top}};
}

void Projection::bound_segments() {
  boxes_ = BoxTree<2>(segments());
  for (std::size_t s = 0; s < segments(); ++s) boxes_.set(s, box_of(segment(s)));
}

// Appends the meetings of a segment of the chain with others of it; false when one is degenerate.
bool Projection::find_meetings(std::size_t second, Range others) {
  return find_meetings(segment(second), second, others, meetings_);
}

bool Projection::find_meetings(const Segment& with, std::size_t second, Range others,
                               std::vector<Meeting>& meetings) const {
  static thread_local std::vector<std::int32_t> near;
  near.clear();
  boxes_.find(box_of(with), others.begin, others.end, near);
  Meeting meeting;
  meeting.second = static_cast<std::int32_t>(second);
  for (const std::int32_t first : near) {
    const Pair pair = test(segment(at(first)), with, meeting);
    if (pair == Pair::kDegenerate) return false;
    if (pair == Pair::kApart) continue;
    meeting.first = first;
    meetings.push_back(meeting);
  }
  return true;
}

Projection::Pair Projection::test(const Segment& a, const Segment& b, Meeting& meeting) {
  const Turn a_begin = turn(b.from, b.to, a.from);
  const Turn a_end = turn(b.from, b.to, a.to);
  if (clearly_same_side(a_begin, a_end)) return Pair::kApart;
  const Turn b_begin = turn(a.from, a.to, b.from);
  const Turn b_end = turn(a.from, a.to, b.to);
  if (clearly_same_side(b_begin, b_end)) return Pair::kApart;
  if (!(a_begin.clear() && a_end.clear() && b_begin.clear() && b_end.clear()))
    return Pair::kDegenerate;
  const double whole_turn = a_begin.value - a_end.value;  // of a onto b
  meeting.at_first = a_begin.value / whole_turn;
  meeting.at_second = b_begin.value / (b_begin.value - b_end.value);
  const double error = a_begin.error + a_end.error + b_begin.error + b_end.error;
  meeting.error = 2 * error / std::abs(whole_turn) + 4 * kEpsilon;
  const double a_rise = a.to.height - a.from.height;
  const double b_rise = b.to.height - b.from.height;
  const double a_height = a.from.height + meeting.at_first * a_rise;
  const double b_height = b.from.height + meeting.at_second * b_rise;
  const double doubt = 2 * kEpsilon * (std::abs(a.from.height) + std::abs(b.from.height)) +
                       (meeting.error + 2 * kEpsilon) * (std::abs(a_rise) + std::abs(b_rise));
  if (!(std::abs(a_height - b_height) > doubt)) return Pair::kDegenerate;
  meeting.first_over = a_height > b_height;
  meeting.positive = meeting.first_over == (whole_turn > 0);
  return Pair::kCross;
}

// False when two passages of a segment cannot be told apart.
bool Projection::sort_passages() {
  std::vector<std::int32_t> begin(segments() + 1, 0);
  for (const Meeting& meeting : meetings_) {
    ++begin[at(meeting.first) + 1];
    ++begin[at(meeting.second) + 1];
  }
  for (std::size_t s = 0; s < segments(); ++s) begin[s + 1] += begin[s];
  placed_.resize(2 * meetings_.size());
  std::vector<std::int32_t> next(begin.begin(), begin.end() - 1);
  for (std::size_t m = 0; m < meetings_.size(); ++m) {
    const Meeting& meeting = meetings_[m];
    const auto number = static_cast<std::int32_t>(m);
    placed_[at(next[at(meeting.first)]++)] = {meeting.first, number, meeting.at_first,
                                              meeting.error, true};
    placed_[at(next[at(meeting.second)]++)] = {meeting.second, number, meeting.at_second,
                                               meeting.error, false};
  }
  for (std::size_t s = 0; s < segments(); ++s)
    std::sort(placed_.begin() + begin[s], placed_.begin() + begin[s + 1],
              [](const Placed& a, const Placed& b) { return a.at < b.at; });
  return well_apart(placed_);
}

bool Projection::well_apart(const std::vector<Placed>& placed) {
  const auto next_in_doubt = [](const Placed& a, const Placed& b) {
    return a.segment == b.segment && !(b.at - a.at > a.error + b.error);
  };
  return std::adjacent_find(placed.begin(), placed.end(), next_in_doubt) == placed.end();
}

ChainCode Projection::coded(const std::vector<Placed>& placed, const std::vector<Meeting>& more,
                            std::int32_t last_segment) const {
  std::vector<std::int32_t> seen(meetings_.size() + more.size(), -1);
  ChainCode chain;
  GaussCode& code = chain.code;
  code.resize(placed.size());
  chain.segments.resize(placed.size());
  for (std::size_t k = 0; k < code.size(); ++k) {
    const Placed& p = placed[k];
    const std::size_t number = at(p.meeting);
    const bool of_chain = number < meetings_.size();
    const Meeting& meeting = of_chain ? meetings_[number] : more[number - meetings_.size()];
    std::int32_t& mate = seen[number];
    const bool kept = at(p.segment) < segments();
    chain.segments[k] = kept ? original_[at(p.segment)] : last_segment;
    code[k] = {mate, meeting.first_over == p.is_first, meeting.positive};
    if (mate >= 0) code[at(mate)].mate = static_cast<std::int32_t>(k);
    mate = static_cast<std::int32_t>(k);
  }
  return chain;
}

ChainCode Projection::chain_code() const { return coded(placed_, {}, 0); }

std::optional<ChainCode> Projection::code_led_away(std::int32_t vertex, const Point& onward) const {
  const Vertex sense{dot(frame_[0], onward), dot(frame_[1], onward), dot(frame_[2], onward)};
  const double in_plane = std::hypot(sense.x, sense.y);
  if (!(in_plane > 1e-6)) return std::nullopt;
  const std::int32_t end = kept_[at(vertex)];
  const Vertex& from = vertices_[at(end)];
  const double length = kAway * reach_ / in_plane;
  const Segment strand{
      from,
      {from.x + length * sense.x, from.y + length * sense.y, from.height + length * sense.height}};
  const auto strand_number = static_cast<std::int32_t>(segments());

  std::vector<Meeting> meetings;
  if (end > 0 && !find_meetings(strand, at(strand_number), {0, at(end) - 1}, meetings))
    return std::nullopt;
  std::vector<Placed> on_chain;
  std::vector<Placed> on_strand;
  for (std::size_t m = 0; m < meetings.size(); ++m) {
    const Meeting& meeting = meetings[m];
    const auto number = static_cast<std::int32_t>(meetings_.size() + m);
    on_chain.push_back({meeting.first, number, meeting.at_first, meeting.error, true});
    on_strand.push_back({strand_number, number, meeting.at_second, meeting.error, false});
  }
  const auto earlier = [](const Placed& a, const Placed& b) {
    return a.segment != b.segment ? a.segment < b.segment : a.at < b.at;
  };
  std::sort(on_chain.begin(), on_chain.end(), earlier);
  std::sort(on_strand.begin(), on_strand.end(), earlier);
  std::vector<Placed> placed;
  placed.reserve(placed_.size() + 2 * on_chain.size());
  auto next = on_chain.begin();
  for (const Placed& p : placed_) {
    if (p.segment >= end) break;
    if (meetings_[at(p.meeting)].second >= end) continue;
    while (next != on_chain.end() && earlier(*next, p)) placed.push_back(*next++);
    placed.push_back(p);
  }
  placed.insert(placed.end(), next, on_chain.end());
  placed.insert(placed.end(), on_strand.begin(), on_strand.end());
  if (!well_apart(placed)) return std::nullopt;
  return coded(placed, meetings, vertex);
}

}  // namespace korvex
