#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <queue>
#include <tuple>
#include <utility>

#include "preprocess/contact.hpp"
#include "preprocess/edge_boxes.hpp"

namespace preprocess {
namespace {

using Index = std::uint32_t;
constexpr Index kNone = std::numeric_limits<Index>::max();

// The power of two that brings all coordinates to 1 at most.
double scale_of(const std::vector<ChainAtom>& chain) {
  double largest = 0;
  for (const ChainAtom& atom : chain) {
    largest = std::max({largest, std::fabs(atom.x), std::fabs(atom.y), std::fabs(atom.z)});
  }
  int exponent = 0;
  std::frexp(largest, &exponent);
  return std::ldexp(1.0, -std::max(exponent, -1000));
}

// What the removal of a point sweeps: its triangle, or the tip of a spike as a triangle without
// area. The chain's edges next to the triangle touch it where it reaches their end.
struct Sweep {
  Triangle triangle;
  bool reaches_before;
  bool reaches_after;
};

// Of a chain that turns back on its own line only the part beyond the nearer neighbour is swept.
Sweep spike_sweep(const Triangle& t) {
  const bool both = t.before == t.after;
  if (both || lies_between(t.tip, t.after, t.before))
    return {{t.after, t.tip, t.after}, both, true};
  return {{t.before, t.tip, t.before}, true, false};
}

// Removes points one at a time, of those that can go always the one whose removal makes the
// shortest edge. A triangle that cannot go remembers one edge in its way, its witness, and waits
// until that edge is replaced; nothing else can set it free.
class Reducer {
 public:
  Reducer(const std::vector<ChainAtom>& chain, bool closed)
      : points_(chain.size()), closed_(closed), left_(chain.size()) {
    const double scale = scale_of(chain);
    const auto count = static_cast<Index>(chain.size());
    for (Index k = 0; k < count; ++k) {
      Point& point = points_[k];
      point.at = scale * position(chain[k]);
      point.before = k > 0 ? k - 1 : (closed ? count - 1 : kNone);
      point.after = k + 1 < count ? k + 1 : (closed ? 0 : kNone);
    }
    parked_.reserve(chain.size());
  }

  void run() {
    rebuild_boxes();
    std::vector<Candidate> all;
    all.reserve(2 * points_.size());
    for (Index k = 0; k < points_.size(); ++k) {
      if (!is_end(k)) all.push_back(candidate(k));
    }
    queue_ = Queue(Later{points_.data()}, std::move(all));
    while (!queue_.empty()) {
      const Candidate next = queue_.top();
      queue_.pop();
      if (next.version != points_[next.point].version) continue;
      const Index witness = obstacle(next.point);
      if (witness == next.point) continue;
      if (witness != kNone) {
        park(next, witness);
        continue;
      }
      remove(next.point);
      if (left_ == rebuild_at_) rebuild_boxes();
    }
  }

  bool is_left(std::size_t k) const { return points_[k].is_left; }

 private:
  struct Point {
    Vec3 at{};
    Index before = kNone;
    Index after = kNone;
    Index version = 0;          // grows whenever the point's triangle changes
    Index place = kNone;        // of the edge from this point on, among the boxes
    Index last_parked = kNone;  // of those that wait for that edge
    bool is_left = true;
  };

  struct Candidate {
    double length2;  // of the edge that takes the place of two, squared
    Index point;
    Index version;
  };

  struct Parked {
    Candidate candidate;
    Index next;  // of those that wait for the same edge
  };

  // Equal lengths are ordered by the point's place in space, so that the choice does not depend on
  // where the chain begins or which way it runs.
  struct Later {
    const Point* points;

    bool operator()(const Candidate& a, const Candidate& b) const {
      if (a.length2 != b.length2) return a.length2 > b.length2;
      const Vec3 &p = points[a.point].at, &q = points[b.point].at;
      return std::tie(p.x, p.y, p.z, a.point) > std::tie(q.x, q.y, q.z, b.point);
    }
  };
  using Queue = std::priority_queue<Candidate, std::vector<Candidate>, Later>;

  const Vec3& at(Index k) const { return points_[k].at; }

  bool is_end(Index k) const { return points_[k].before == kNone || points_[k].after == kNone; }

  Triangle triangle(Index k) const { return {at(points_[k].before), at(k), at(points_[k].after)}; }

  Candidate candidate(Index k) const {
    const Vec3 base = at(points_[k].after) - at(points_[k].before);
    return {dot(base, base), k, points_[k].version};
  }

  Box box_of(std::initializer_list<Vec3> points) const {
    Box box = kEmptyBox;
    for (const Vec3& point : points) {
      const Vec3 p = point - at(0);
      const std::array<float, 3> q{static_cast<float>(p.x), static_cast<float>(p.y),
                                   static_cast<float>(p.z)};
      box = merged(box, {q, q});
    }
    return box;
  }

  // Numbers the edges that are left anew and makes the tree of their boxes.
  void rebuild_boxes() {
    std::vector<Box> boxes;
    boxes.reserve(left_);
    first_.clear();
    for (Index k = 0; k < points_.size(); ++k) {
      if (!is_left(k) || points_[k].after == kNone) continue;
      points_[k].place = static_cast<Index>(boxes.size());
      first_.push_back(k);
      boxes.push_back(box_of({at(k), at(points_[k].after)}));
    }
    boxes_.assign(boxes);
    rebuild_at_ = left_ / 2;
  }

  // The edge, named by its first point, that keeps point k from being removed; kNone if none does;
  // k itself if the chain is too short to lose it.
  Index obstacle(Index k) const {
    const Triangle t = triangle(k);
    if (t.tip == t.before || t.tip == t.after) return left_ > 1 ? kNone : k;
    if (left_ <= (closed_ ? 3U : 2U)) return k;
    const Bend bend = bend_at(t);
    if (bend == Bend::kStraight) return kNone;
    return edge_in_the_way(k, bend == Bend::kSpike ? spike_sweep(t) : Sweep{t, true, true});
  }

  Index edge_in_the_way(Index k, const Sweep& sweep) const {
    const Triangle& t = sweep.triangle;
    Index witness = kNone;
    boxes_.any_overlap(box_of({t.before, t.tip, t.after}), [&](std::size_t place) {
      const Index from = first_[place];
      if (from == k || from == points_[k].before || clear_of_edge(k, sweep, from)) return false;
      witness = from;
      return true;
    });
    return witness;
  }

  // Whether the sweep at point k is certainly clear of the edge from point `from` on.
  bool clear_of_edge(Index k, const Sweep& sweep, Index from) const {
    const Triangle& t = sweep.triangle;
    const Index to = points_[from].after;
    const bool spike = t.before == t.after;
    if (from == points_[k].after && sweep.reaches_after) {
      return certainly_leaves(t.after, t.tip, spike ? t.tip : t.before, at(to));
    }
    if (to == points_[k].before && sweep.reaches_before) {
      return certainly_leaves(t.before, t.tip, spike ? t.tip : t.after, at(from));
    }
    return certainly_apart(t, at(from), at(to));
  }

  void remove(Index k) {
    const Index before = points_[k].before, after = points_[k].after;
    --left_;
    points_[k].is_left = false;
    points_[before].after = after;
    points_[after].before = before;
    boxes_.erase(points_[k].place);
    boxes_.replace(points_[before].place, box_of({at(before), at(after)}));
    for (const Index changed : {before, k, after}) ++points_[changed].version;
    for (const Index corner : {before, after}) {
      if (!is_end(corner)) queue_.push(candidate(corner));
    }
    release(before);
    release(k);
  }

  // Makes a candidate wait for the edge that begins at point `witness`.
  void park(const Candidate& candidate, Index witness) {
    parked_.push_back({candidate, points_[witness].last_parked});
    points_[witness].last_parked = static_cast<Index>(parked_.size() - 1);
  }

  // Takes up again what waited for the edge that began at point k.
  void release(Index k) {
    for (Index p = std::exchange(points_[k].last_parked, kNone); p != kNone; p = parked_[p].next) {
      const Candidate& waiting = parked_[p].candidate;
      if (waiting.version == points_[waiting.point].version) queue_.push(waiting);
    }
  }

  std::vector<Point> points_;
  bool closed_;
  std::size_t left_;
  Queue queue_{Later{points_.data()}};
  std::vector<Parked> parked_;  // lists linked by `next`
  EdgeBoxes boxes_;
  std::vector<Index> first_;  // point of the edge at a place
  std::size_t rebuild_at_ = 0;
};

}  // namespace
}  // namespace preprocess

int ChainReduce(std::vector<ChainAtom>& chain, bool closed) {
  if (chain.size() > 1 && preprocess::all_finite(chain)) {
    preprocess::Reducer reducer(chain, closed);
    reducer.run();
    std::size_t next = 0;
    std::erase_if(chain, [&](const ChainAtom&) { return !reducer.is_left(next++); });
  }
  return static_cast<int>(chain.size());
}
