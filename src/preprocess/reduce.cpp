#include <cstddef>
#include <cstdint>
#include <limits>
#include <queue>
#include <tuple>
#include <utility>

#include "preprocess/contact.hpp"

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

// Removes points one at a time, always the one with the smallest triangle of those that can go. A
// triangle that cannot go remembers one edge in its way, its witness, and waits until that edge is
// replaced; nothing else can set it free.
class Reducer {
 public:
  Reducer(const std::vector<ChainAtom>& chain, bool closed)
      : points_(scaled_positions(chain)), closed_(closed), left_(points_.size()) {
    const std::size_t count = points_.size();
    before_.resize(count);
    after_.resize(count);
    version_.resize(count);
    waiting_.resize(count);
    for (std::size_t k = 0; k < count; ++k) {
      before_[k] = k > 0 ? k - 1 : (closed ? count - 1 : kNone);
      after_[k] = k + 1 < count ? k + 1 : (closed ? 0 : kNone);
    }
  }

  // Whether each point is left.
  std::vector<bool> run() {
    std::vector<bool> kept(points_.size(), true);
    for (std::size_t k = 0; k < points_.size(); ++k) enqueue(k);
    while (!queue_.empty()) {
      const Candidate candidate = queue_.top();
      queue_.pop();
      const std::size_t k = candidate.point;
      if (!kept[k] || candidate.version != version_[k] || is_end(k)) continue;
      const std::size_t witness = obstacle(k);
      if (witness == k) continue;
      if (witness != kNone) {
        waiting_[witness].push_back({k, version_[k]});
        continue;
      }
      kept[k] = false;
      remove(k);
    }
    return kept;
  }

 private:
  struct Candidate {
    double area;  // twice the triangle's area, squared
    Vec3 tip;
    std::size_t point;
    std::uint32_t version;

    // The largest comes last in the queue. Equal triangles are ordered by place in space, so that
    // the choice does not depend on where the chain begins or which way it runs.
    friend bool operator<(const Candidate& a, const Candidate& b) {
      return std::tie(a.area, a.tip.x, a.tip.y, a.tip.z, a.point) >
             std::tie(b.area, b.tip.x, b.tip.y, b.tip.z, b.point);
    }
  };

  struct Waiting {
    std::size_t point;
    std::uint32_t version;
  };

  bool is_end(std::size_t k) const { return before_[k] == kNone || after_[k] == kNone; }

  Triangle triangle(std::size_t k) const {
    return {points_[before_[k]], points_[k], points_[after_[k]]};
  }

  void enqueue(std::size_t k) {
    if (is_end(k)) return;
    const Triangle t = triangle(k);
    const Vec3 normal = cross(t.before - t.tip, t.after - t.tip);
    queue_.push({dot(normal, normal), t.tip, k, version_[k]});
  }

  // The edge, named by its first point, that keeps point k from being removed; kNone if none does;
  // k itself if the chain is too short to lose it.
  std::size_t obstacle(std::size_t k) const {
    const Triangle t = triangle(k);
    const Bend bend = bend_at(t);
    if (t.tip == t.before || t.tip == t.after) return left_ > 1 ? kNone : k;
    if (left_ <= (closed_ ? 3U : 2U)) return k;
    if (bend == Bend::kStraight) return kNone;
    const Sweep sweep = bend == Bend::kSpike ? spike_sweep(t) : Sweep{t, true, true};
    return edge_in_the_way(k, sweep);
  }

  std::size_t edge_in_the_way(std::size_t k, const Sweep& sweep) const {
    const std::size_t before = before_[k], after = after_[k];
    for (std::size_t from = after; from != before && after_[from] != kNone; from = after_[from]) {
      if (!clear_of_edge(sweep, from, from == after, after_[from] == before)) return from;
    }
    if (closed_) return kNone;
    for (std::size_t to = before; before_[to] != kNone; to = before_[to]) {
      if (!clear_of_edge(sweep, before_[to], false, to == before)) return before_[to];
    }
    return kNone;
  }

  // Whether the sweep is certainly clear of the edge from point `from` on. `leaves_after`: the edge
  // begins at the triangle's third corner; `enters_before`: it ends at the first.
  bool clear_of_edge(const Sweep& sweep, std::size_t from, bool leaves_after,
                     bool enters_before) const {
    const Triangle& t = sweep.triangle;
    const Vec3 start = points_[from], end = points_[after_[from]];
    const bool point_swept = t.before == t.after;
    if (leaves_after && sweep.reaches_after) {
      return certainly_leaves(t.after, t.tip, point_swept ? t.tip : t.before, end);
    }
    if (enters_before && sweep.reaches_before) {
      return certainly_leaves(t.before, t.tip, point_swept ? t.tip : t.after, start);
    }
    return certainly_apart(t, start, end);
  }

  void remove(std::size_t k) {
    const std::size_t before = before_[k], after = after_[k];
    --left_;
    if (before != kNone) after_[before] = after;
    if (after != kNone) before_[after] = before;
    ++version_[before];
    ++version_[after];
    enqueue(before);
    if (after != before) enqueue(after);
    release(before);
    release(k);
  }

  // Takes up again what waited for the edge that began at point k.
  void release(std::size_t k) {
    for (const Waiting& waiting : std::exchange(waiting_[k], {})) {
      if (waiting.version == version_[waiting.point]) enqueue(waiting.point);
    }
  }

  std::vector<Vec3> points_;
  bool closed_;
  std::size_t left_;
  std::vector<std::size_t> before_;
  std::vector<std::size_t> after_;
  std::vector<std::uint32_t> version_;         // of a point's triangle
  std::vector<std::vector<Waiting>> waiting_;  // by the first point of the witness
  std::priority_queue<Candidate> queue_;
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
