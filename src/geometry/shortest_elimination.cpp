#include "geometry/shortest_elimination.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <tuple>
#include <utility>

#include "geometry/box_tree.hpp"
#include "geometry/predicates.hpp"
#include "geometry/tournament.hpp"

namespace korvex {
namespace {

using Index = std::uint32_t;
constexpr Index kNone = std::numeric_limits<Index>::max();

// So few points are not worth numbering anew.
constexpr std::size_t kFewPoints = 48;

using Tree = BoxTree<3, float>;
using Box = Tree::Box;

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

// The points that are left have numbers in the order of the chain, anew whenever two thirds have
// gone. An edge has the number of the point that it begins at. A point that cannot go waits for one
// edge in its way, its witness, to be replaced: nothing else can set it free.
class Elimination {
 public:
  Elimination(const std::vector<Point>& points, bool closed)
      : closed_(closed), points_(points), index_(points.size()), queue_(Earlier{&points_}) {
    nodes_.resize(points.size());
    left_ = points.size();
    rounded_.resize(points.size());
    for (Index k = 0; k < index_.size(); ++k) {
      index_[k] = k;
      const Point p = points[k] - points[0];
      rounded_[k] = {static_cast<float>(p.x), static_cast<float>(p.y), static_cast<float>(p.z)};
    }
  }

  std::vector<Index> run() {
    number();
    while (!queue_.is_over()) {
      const Index k = queue_.winner();
      const Index witness = obstacle(k);
      if (witness == kNone) {
        remove(k);
        if (left_ == number_at_) renumber();
        continue;
      }
      queue_.drop_winner();
      if (witness != k) wait(k, witness);
    }
    drop_removed();
    return index_;
  }

 private:
  struct Node {
    Index before = kNone;
    Index after = kNone;
    Index version = 0;           // grows whenever the point's triangle changes
    Index witness = kNone;       // the edge that was in the way when it was looked at
    Index last_waiting = kNone;  // of those that wait for the edge from here on
    bool waits = false;          // for its witness to go
    bool is_left = true;
  };

  struct Waiting {
    Index point;
    Index version;
    Index next;  // of those that wait for the same edge
  };

  // Equal lengths are ordered by the point's place in space, so that the choice does not depend on
  // where the chain begins or which way it runs.
  struct Earlier {
    const std::vector<Point>* points;

    bool operator()(Index a, Index b) const {
      const Point &p = (*points)[a], &q = (*points)[b];
      return std::tie(p.x, p.y, p.z, a) < std::tie(q.x, q.y, q.z, b);
    }
  };

  bool is_end(Index k) const { return nodes_[k].before == kNone || nodes_[k].after == kNone; }

  double length2(Index k) const {
    const Point base = points_[nodes_[k].after] - points_[nodes_[k].before];
    return dot(base, base);
  }

  static void include(Box& box, const std::array<float, 3>& p) {
    for (std::size_t d = 0; d < 3; ++d) {
      box.low[d] = std::min(box.low[d], p[d]);
      box.high[d] = std::max(box.high[d], p[d]);
    }
  }

  Box box_of(Index a, Index b) const {
    Box box{rounded_[a], rounded_[a]};
    include(box, rounded_[b]);
    return box;
  }

  void drop_removed() {
    std::vector<Index> now(nodes_.size(), kNone);
    Index count = 0;
    for (Index k = 0; k < nodes_.size(); ++k) {
      if (!nodes_[k].is_left) continue;
      now[k] = count;
      nodes_[count] = nodes_[k];
      points_[count] = points_[k];
      rounded_[count] = rounded_[k];
      index_[count++] = index_[k];
    }
    nodes_.resize(count);
    points_.resize(count);
    rounded_.resize(count);
    index_.resize(count);
    for (Node& node : nodes_) node.witness = node.witness == kNone ? kNone : now[node.witness];
  }

  void renumber() {
    drop_removed();
    number();
  }

  // Lays out links, boxes and keys for the points in place.
  void number() {
    const auto count = static_cast<Index>(nodes_.size());
    waiting_.clear();
    for (Index k = 0; k < count; ++k) {
      nodes_[k].before = k > 0 ? k - 1 : (closed_ ? count - 1 : kNone);
      nodes_[k].after = k + 1 < count ? k + 1 : (closed_ ? 0 : kNone);
      nodes_[k].last_waiting = kNone;
    }
    boxes_.assign(count, Box::empty());
    keys_.assign(count, queue_.kOut);
    for (Index k = 0; k < count; ++k) {
      if (nodes_[k].after != kNone) boxes_[k] = box_of(k, nodes_[k].after);
      if (is_end(k)) continue;
      if (nodes_[k].waits) {
        wait(k, nodes_[k].witness);
      } else {
        keys_[k] = length2(k);
      }
    }
    tree_.assign(boxes_);
    queue_.assign(keys_);
    number_at_ = left_ > kFewPoints ? left_ / 3 : 0;
  }

  // The edge that keeps point k from being removed; kNone if none does; k itself if the chain is
  // too short to lose it.
  Index obstacle(Index k) {
    const Triangle t{points_[nodes_[k].before], points_[k], points_[nodes_[k].after]};
    if (t.tip == t.before || t.tip == t.after) return left_ > 1 ? kNone : k;
    if (left_ <= (closed_ ? 3U : 2U)) return k;
    const Bend bend = bend_at(t);
    if (bend == Bend::kProper) return edge_in_the_way_of_triangle(k, t);
    return bend == Bend::kStraight ? kNone : edge_in_the_way(k, spike_sweep(t));
  }

  // The edges next to those of the triangle mostly leave its plane.
  Index edge_in_the_way_of_triangle(Index k, const Triangle& t) {
    const Node& node = nodes_[k];
    const TrianglePlane plane(t);
    const Index onward = nodes_[node.after].after;
    if (onward != kNone && !plane.clearly_off(t.after, points_[onward]) &&
        !certainly_leaves(t.after, t.tip, t.before, points_[onward]))
      return node.after;
    const Index from = nodes_[node.before].before;
    if (from != kNone && !plane.clearly_off(t.before, points_[from]) &&
        !certainly_leaves(t.before, t.tip, t.after, points_[from]))
      return from;
    const Index first = from == kNone ? node.before : from;
    const Index last = onward == kNone ? k : node.after;
    return edge_beyond(k, {t, true, true}, first, last);
  }

  Index edge_in_the_way(Index k, const Sweep& sweep) {
    const Index before = nodes_[k].before;
    for (const Index from : {nodes_[k].after, nodes_[before].before}) {
      const bool is_edge = from != kNone && nodes_[from].after != kNone;
      if (is_edge && !is_clear(k, sweep, from)) return from;
    }
    return edge_beyond(k, sweep, before, k);
  }

  // Of the edges but first to last, in the order of the ring.
  Index edge_beyond(Index k, const Sweep& sweep, Index first, Index last) {
    const auto is_beyond = [&](Index edge) {
      return first <= last ? edge < first || edge > last : edge < first && edge > last;
    };
    const auto blocks = [&](Index edge) { return is_beyond(edge) && !is_clear(k, sweep, edge); };
    const Index hint = nodes_[k].witness;
    if (hint != kNone && nodes_[hint].is_left && blocks(hint)) return hint;
    Box box = box_of(nodes_[k].before, nodes_[k].after);
    include(box, rounded_[k]);
    found_.clear();
    if (first <= last) {
      tree_.find_beyond(box, first, last, found_);
    } else {
      tree_.find(box, last + 1, first, found_);
    }
    for (const std::int32_t edge : found_) {
      if (blocks(static_cast<Index>(edge))) return static_cast<Index>(edge);
    }
    return kNone;
  }

  // Whether the sweep at point k is certainly clear of the edge from point `from` on.
  bool is_clear(Index k, const Sweep& sweep, Index from) const {
    const Triangle& t = sweep.triangle;
    const Index to = nodes_[from].after;
    const bool spike = t.before == t.after;
    if (from == nodes_[k].after && sweep.reaches_after)
      return certainly_leaves(t.after, t.tip, spike ? t.tip : t.before, points_[to]);
    if (to == nodes_[k].before && sweep.reaches_before)
      return certainly_leaves(t.before, t.tip, spike ? t.tip : t.after, points_[from]);
    return certainly_apart(t, points_[from], points_[to]);
  }

  void remove(Index k) {
    const Index before = nodes_[k].before, after = nodes_[k].after;
    --left_;
    nodes_[k].is_left = false;
    nodes_[before].after = after;
    nodes_[after].before = before;
    tree_.clear(k);
    tree_.set(before, box_of(before, after));
    for (const Index corner : {before, after}) {
      ++nodes_[corner].version;
      nodes_[corner].witness = kNone;
      nodes_[corner].waits = false;
      if (corner != k && !is_end(corner)) queue_.set_beside_winner(corner, length2(corner));
    }
    queue_.drop_winner();
    release(before, before);
    release(k, before);
  }

  void wait(Index k, Index witness) {
    nodes_[k].witness = witness;
    nodes_[k].waits = true;
    waiting_.push_back({k, nodes_[k].version, nodes_[witness].last_waiting});
    nodes_[witness].last_waiting = static_cast<Index>(waiting_.size() - 1);
  }

  // Takes up again what waited for the edge from point k on, whose place `edge` took: that is most
  // likely in the way, too.
  void release(Index k, Index edge) {
    for (Index w = std::exchange(nodes_[k].last_waiting, kNone); w != kNone; w = waiting_[w].next) {
      Node& node = nodes_[waiting_[w].point];
      if (waiting_[w].version != node.version || !node.is_left) continue;
      node.witness = edge;
      node.waits = false;
      queue_.set(waiting_[w].point, length2(waiting_[w].point));
    }
  }

  const bool closed_;
  std::size_t left_ = 0;
  std::size_t number_at_ = 0;  // points left when they are numbered anew
  std::vector<Point> points_;
  std::vector<Index> index_;  // of the given points
  std::vector<Node> nodes_;
  std::vector<std::array<float, 3>> rounded_;  // relative to the first point
  Tree tree_;                                  // of the edges' boxes
  Tournament<Earlier> queue_;                  // of points by the length of the edge they leave
  std::vector<Waiting> waiting_;               // lists linked by `next`
  std::vector<std::int32_t> found_;
  std::vector<Box> boxes_;  // these two only to number the points
  std::vector<double> keys_;
};

}  // namespace

std::vector<std::uint32_t> eliminate_shortest_first(const std::vector<Point>& points, bool closed) {
  if (points.empty()) return {};
  return Elimination(points, closed).run();
}

}  // namespace korvex
