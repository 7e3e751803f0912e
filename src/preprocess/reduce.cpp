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

constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();

// The positions, divided by one power of two so that none is larger than 1.
std::vector<Vec3> scaled_positions(const std::vector<ChainAtom>& chain) {
  double largest = 0;
  for (const ChainAtom& atom : chain) {
    largest = std::max({largest, std::fabs(atom.x), std::fabs(atom.y), std::fabs(atom.z)});
  }
  int exponent = 0;
  std::frexp(largest, &exponent);
  std::vector<Vec3> points;
  points.reserve(chain.size());
  for (const ChainAtom& atom : chain) {
    points.push_back({std::ldexp(atom.x, -exponent), std::ldexp(atom.y, -exponent),
                      std::ldexp(atom.z, -exponent)});
  }
  return points;
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
      : points_(scaled_positions(chain)),
        closed_(closed),
        left_(points_.size()),
        before_(left_),
        after_(left_),
        version_(left_),
        waiting_(left_),
        place_(left_) {
    for (std::size_t k = 0; k < left_; ++k) {
      before_[k] = k > 0 ? k - 1 : (closed ? left_ - 1 : kNone);
      after_[k] = k + 1 < left_ ? k + 1 : (closed ? 0 : kNone);
    }
  }

  // Whether each point is left.
  std::vector<bool> run() {
    std::vector<bool> kept(points_.size(), true);
    rebuild_boxes(kept);
    std::vector<Candidate> all;
    for (std::size_t k = 0; k < points_.size(); ++k) {
      if (!is_end(k)) all.push_back(candidate(k));
    }
    queue_ = Queue(Later{points_.data()}, std::move(all));
    while (!queue_.empty()) {
      const Candidate next = queue_.top();
      queue_.pop();
      const std::size_t k = next.point;
      if (!kept[k] || next.version != version_[k]) continue;
      const std::size_t witness = obstacle(k);
      if (witness == k) continue;
      if (witness != kNone) {
        waiting_[witness].push_back(next);
        continue;
      }
      kept[k] = false;
      remove(k);
      if (left_ == rebuild_at_) rebuild_boxes(kept);
    }
    return kept;
  }

 private:
  struct Candidate {
    double length2;  // of the edge that takes the place of two, squared
    std::uint32_t point;
    std::uint32_t version;
  };

  // Equal lengths are ordered by the point's place in space, so that the choice does not depend on
  // where the chain begins or which way it runs.
  struct Later {
    const Vec3* points;

    bool operator()(const Candidate& a, const Candidate& b) const {
      if (a.length2 != b.length2) return a.length2 > b.length2;
      const Vec3 &p = points[a.point], &q = points[b.point];
      return std::tie(p.x, p.y, p.z, a.point) > std::tie(q.x, q.y, q.z, b.point);
    }
  };
  using Queue = std::priority_queue<Candidate, std::vector<Candidate>, Later>;

  bool is_end(std::size_t k) const { return before_[k] == kNone || after_[k] == kNone; }

  Triangle triangle(std::size_t k) const {
    return {points_[before_[k]], points_[k], points_[after_[k]]};
  }

  Candidate candidate(std::size_t k) const {
    const Vec3 base = points_[after_[k]] - points_[before_[k]];
    return {dot(base, base), static_cast<std::uint32_t>(k), version_[k]};
  }

  Box box_of(std::initializer_list<Vec3> points) const {
    Box box = kEmptyBox;
    for (const Vec3& point : points) {
      const Vec3 p = point - points_[0];
      const std::array<float, 3> q{static_cast<float>(p.x), static_cast<float>(p.y),
                                   static_cast<float>(p.z)};
      box = merged(box, {q, q});
    }
    return box;
  }

  // Numbers the edges that are left anew and makes the tree of their boxes.
  void rebuild_boxes(const std::vector<bool>& kept) {
    std::vector<Box> boxes;
    first_.clear();
    for (std::size_t k = 0; k < kept.size(); ++k) {
      if (!kept[k] || after_[k] == kNone) continue;
      place_[k] = boxes.size();
      first_.push_back(k);
      boxes.push_back(box_of({points_[k], points_[after_[k]]}));
    }
    boxes_.assign(boxes);
    rebuild_at_ = left_ / 2;
  }

  // The edge, named by its first point, that keeps point k from being removed; kNone if none does;
  // k itself if the chain is too short to lose it.
  std::size_t obstacle(std::size_t k) const {
    const Triangle t = triangle(k);
    const Bend bend = bend_at(t);
    if (t.tip == t.before || t.tip == t.after) return left_ > 1 ? kNone : k;
    if (left_ <= (closed_ ? 3U : 2U)) return k;
    if (bend == Bend::kStraight) return kNone;
    return edge_in_the_way(k, bend == Bend::kSpike ? spike_sweep(t) : Sweep{t, true, true});
  }

  std::size_t edge_in_the_way(std::size_t k, const Sweep& sweep) const {
    const Triangle& t = sweep.triangle;
    std::size_t witness = kNone;
    boxes_.any_overlap(box_of({t.before, t.tip, t.after}), [&](std::size_t place) {
      const std::size_t from = first_[place];
      if (from == k || from == before_[k] || clear_of_edge(k, sweep, from)) return false;
      witness = from;
      return true;
    });
    return witness;
  }

  // Whether the sweep at point k is certainly clear of the edge from point `from` on.
  bool clear_of_edge(std::size_t k, const Sweep& sweep, std::size_t from) const {
    const Triangle& t = sweep.triangle;
    const Vec3 start = points_[from], end = points_[after_[from]];
    const bool spike = t.before == t.after;
    if (from == after_[k] && sweep.reaches_after) {
      return certainly_leaves(t.after, t.tip, spike ? t.tip : t.before, end);
    }
    if (after_[from] == before_[k] && sweep.reaches_before) {
      return certainly_leaves(t.before, t.tip, spike ? t.tip : t.after, start);
    }
    return certainly_apart(t, start, end);
  }

  void remove(std::size_t k) {
    const std::size_t before = before_[k], after = after_[k];
    --left_;
    after_[before] = after;
    before_[after] = before;
    boxes_.erase(place_[k]);
    boxes_.replace(place_[before], box_of({points_[before], points_[after]}));
    for (const std::size_t corner : {before, after}) {
      ++version_[corner];
      if (!is_end(corner)) queue_.push(candidate(corner));
    }
    release(before);
    release(k);
  }

  // Takes up again what waited for the edge that began at point k.
  void release(std::size_t k) {
    for (const Candidate& waiting : waiting_[k]) {
      if (waiting.version == version_[waiting.point]) queue_.push(waiting);
    }
    waiting_[k].clear();
  }

  std::vector<Vec3> points_;
  bool closed_;
  std::size_t left_;
  std::vector<std::size_t> before_;
  std::vector<std::size_t> after_;
  std::vector<std::uint32_t> version_;           // of a point's triangle
  std::vector<std::vector<Candidate>> waiting_;  // by the first point of the witness
  Queue queue_{Later{points_.data()}};
  EdgeBoxes boxes_;
  std::vector<std::size_t> place_;  // of the edge that begins at a point
  std::vector<std::size_t> first_;  // point of the edge at a place
  std::size_t rebuild_at_ = 0;
};

}  // namespace
}  // namespace preprocess

int ChainReduce(std::vector<ChainAtom>& chain, bool closed) {
  if (chain.size() > 1 && preprocess::all_finite(chain)) {
    const std::vector<bool> kept = preprocess::Reducer(chain, closed).run();
    std::size_t next = 0;
    std::erase_if(chain, [&](const ChainAtom&) { return !kept[next++]; });
  }
  return static_cast<int>(chain.size());
}
