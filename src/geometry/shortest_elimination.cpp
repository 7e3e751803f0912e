#include "geometry/shortest_elimination.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <numeric>
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

// Edges are searched for by boxes on a grid of 2^16 cells along the longest side of the chain's
// box: many fit into a register. A chain of which one point is thousands of times as far away as
// the others are long finds more edges than are near.
using Coordinate = std::int16_t;
using Cell = std::array<Coordinate, 3>;
using Tree = BoxTree<3, Coordinate>;
using Box = Tree::Box;

void include(Box& box, const Cell& cell) {
  for (std::size_t d = 0; d < 3; ++d) {
    box.low[d] = std::min(box.low[d], cell[d]);
    box.high[d] = std::max(box.high[d], cell[d]);
  }
}

// The grid's outermost cells stay out of use, as the tree's boxes ask for.
std::vector<Cell> cells_of(const std::vector<Point>& points) {
  Point low = points[0], high = points[0];
  for (const Point& p : points) {
    low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
    high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
  }
  constexpr double kLast = std::numeric_limits<Coordinate>::max() - 1;
  constexpr double kFirst = -kLast;
  constexpr double kLargest = std::numeric_limits<double>::max();
  const Point side = high - low;
  const double scale = std::min((kLast - kFirst) / std::max({side.x, side.y, side.z}), kLargest);
  const auto cell = [&](double from_low) {
    return static_cast<Coordinate>(static_cast<int>(scale * from_low + kFirst));
  };
  std::vector<Cell> cells;
  cells.reserve(points.size());
  for (const Point& p : points)
    cells.push_back({cell(p.x - low.x), cell(p.y - low.y), cell(p.z - low.z)});
  return cells;
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

// The points that are left have numbers in the order of the chain, anew whenever two thirds have
// gone. An edge has the number of the point that it begins at. A point that cannot go waits for one
// edge in its way, its witness, to be replaced: nothing else can set it free.
class Elimination {
 public:
  Elimination(std::vector<Point> points, bool closed)
      : closed_(closed),
        left_(points.size()),
        points_(std::move(points)),
        index_(points_.size()),
        nodes_(points_.size()),
        cells_(cells_of(points_)),
        queue_(Earlier{&points_}) {
    std::iota(index_.begin(), index_.end(), 0);
  }

  std::vector<Index> run() {
    number();
    while (!queue_.is_over()) {
      const Index k = queue_.winner();
      const Index witness = obstacle(k);
      if (witness == kNone) {
        remove(k);
        if (left_ == number_at_) {
          drop_removed();
          number();
        }
        continue;
      }
      queue_.set(k, queue_.kOut);
      if (witness != k) wait(k, witness);
    }
    std::vector<Index> left;
    for (Index k = 0; k < nodes_.size(); ++k)
      if (nodes_[k].is_left) left.push_back(index_[k]);
    return left;
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

  // The ends of a chain stay.
  double key_of(Index k) const {
    if (is_end(k)) return queue_.kOut;
    const Point base = points_[nodes_[k].after] - points_[nodes_[k].before];
    return dot(base, base);
  }

  Box box_of(Index a, Index b) const {
    Box box{cells_[a], cells_[a]};
    include(box, cells_[b]);
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
      cells_[count] = cells_[k];
      index_[count++] = index_[k];
    }
    nodes_.resize(count);
    points_.resize(count);
    cells_.resize(count);
    index_.resize(count);
    for (Node& node : nodes_) node.witness = node.witness == kNone ? kNone : now[node.witness];
  }

  // Lays out links, boxes and keys for the points in place.
  void number() {
    const auto count = static_cast<Index>(nodes_.size());
    waiting_.clear();
    for (Index k = 0; k < count; ++k) {
      nodes_[k].before = k - 1;
      nodes_[k].after = k + 1;
      nodes_[k].last_waiting = kNone;
    }
    nodes_.front().before = closed_ ? count - 1 : kNone;
    nodes_.back().after = closed_ ? 0 : kNone;
    tree_.assign(count, [&](std::size_t place) {
      const auto k = static_cast<Index>(place);
      return nodes_[k].after == kNone ? Box::empty() : box_of(k, nodes_[k].after);
    });
    queue_.assign(count, [&](Index k) { return nodes_[k].waits ? queue_.kOut : key_of(k); });
    for (Index k = 0; k < count; ++k)
      if (nodes_[k].waits) wait(k, nodes_[k].witness);
    number_at_ = left_ > kFewPoints ? left_ / 3 : 0;
  }

  // The edge that keeps point k from being removed; kNone if none does; k itself if the chain is
  // too short to lose it.
  Index obstacle(Index k) {
    const Triangle t{points_[nodes_[k].before], points_[k], points_[nodes_[k].after]};
    const TrianglePlane plane(t);
    if (!plane.is_clear() && (t.tip == t.before || t.tip == t.after)) return left_ > 1 ? kNone : k;
    if (left_ <= (closed_ ? 3U : 2U)) return k;
    const Bend bend = plane.is_clear() ? Bend::kProper : bend_at(t);
    if (bend == Bend::kProper) return edge_in_the_way_of_triangle(k, t, plane);
    return bend == Bend::kStraight ? kNone : edge_in_the_way(k, spike_sweep(t));
  }

  // The edges next to those of the triangle mostly leave its plane.
  Index edge_in_the_way_of_triangle(Index k, const Triangle& t, const TrianglePlane& plane) {
    const Node& node = nodes_[k];
    const Index onward = nodes_[node.after].after;
    if (onward != kNone && !plane.clearly_off(t.after, points_[onward]) &&
        !certainly_leaves(t.after, t.tip, t.before, points_[onward]))
      return node.after;
    const Index from = nodes_[node.before].before;
    if (from != kNone && !plane.clearly_off(t.before, points_[from]) &&
        !certainly_leaves(t.before, t.tip, t.after, points_[from]))
      return from;
    const std::array touching{k, node.before, from == kNone ? k : from,
                              onward == kNone ? k : node.after};
    const Sweep sweep{t, true, true};
    return edge_beyond(k, touching, [&](Index edge) {
      return plane.clearly_beside(points_[edge], points_[nodes_[edge].after]) ||
             is_clear(k, sweep, edge);
    });
  }

  Index edge_in_the_way(Index k, const Sweep& sweep) {
    const Index before = nodes_[k].before;
    for (const Index from : {nodes_[k].after, nodes_[before].before}) {
      const bool is_edge = from != kNone && nodes_[from].after != kNone;
      if (is_edge && !is_clear(k, sweep, from)) return from;
    }
    return edge_beyond(k, std::array{k, before},
                       [&](Index edge) { return is_clear(k, sweep, edge); });
  }

  // Of the edges but those that touch the triangle one that is not clear.
  template <std::size_t kCount, class IsClear>
  Index edge_beyond(Index k, const std::array<Index, kCount>& touching, const IsClear& is_clear) {
    const auto blocks = [&](Index edge) {
      return std::find(touching.begin(), touching.end(), edge) == touching.end() && !is_clear(edge);
    };
    const Index hint = nodes_[k].witness;
    if (hint != kNone && nodes_[hint].is_left && blocks(hint)) return hint;
    Box box = box_of(nodes_[k].before, nodes_[k].after);
    include(box, cells_[k]);
    found_.clear();
    tree_.find(box, 0, tree_.size(), found_);
    for (const std::int32_t edge : found_)
      if (blocks(static_cast<Index>(edge))) return static_cast<Index>(edge);
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
    }
    queue_.set(std::array{before, after, k},
               std::array{key_of(before), key_of(after), queue_.kOut});
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
      queue_.set(waiting_[w].point, key_of(waiting_[w].point));
    }
  }

  const bool closed_;
  std::size_t left_;
  std::size_t number_at_ = 0;  // points left when they are numbered anew
  std::vector<Point> points_;
  std::vector<Index> index_;  // of the given points
  std::vector<Node> nodes_;
  std::vector<Cell> cells_;
  Tree tree_;                     // of the edges' boxes
  Tournament<Earlier> queue_;     // of points by the length of the edge they leave
  std::vector<Waiting> waiting_;  // lists linked by `next`
  std::vector<std::int32_t> found_;
};

}  // namespace

std::vector<std::uint32_t> eliminate_shortest_first(std::vector<Point> points, bool closed) {
  if (points.empty()) return {};
  return Elimination(std::move(points), closed).run();
}

}  // namespace korvex
