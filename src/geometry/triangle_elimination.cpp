#include "geometry/triangle_elimination.hpp"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <numeric>

#include "geometry/box_tree.hpp"
#include "geometry/unit_scale.hpp"

namespace korvex {
namespace {

using SegmentTree = BoxTree<3>;
using SegmentBox = SegmentTree::Box;

void include(SegmentBox& box, const Point& p) {
  const std::array coordinates{p.x, p.y, p.z};
  for (std::size_t d = 0; d < 3; ++d) {
    box.low[d] = std::min(box.low[d], coordinates[d]);
    box.high[d] = std::max(box.high[d], coordinates[d]);
  }
}

SegmentBox box_of(std::initializer_list<Point> points) {
  SegmentBox box = SegmentBox::empty();
  for (const Point& p : points) include(box, p);
  return box;
}

class TriangleElimination {
 public:
  TriangleElimination(std::span<const Point> points, std::span<const Line> obstacles, bool ring,
                      const BeforeEach& before_each)
      : ring_(ring), before_each_(before_each), kept_(points.size()) {
    std::iota(kept_.begin(), kept_.end(), 0);
    const double scale = unit_scale(points);
    SegmentBox all = SegmentBox::empty();
    points_.reserve(points.size());
    for (const Point& p : points) {
      points_.push_back(scale * p);
      include(all, points_.back());
    }
    obstacles_.reserve(obstacles.size());
    for (const Line& line : obstacles) {
      obstacles_.push_back({scale * line.from, scale * line.to});
      include(all, obstacles_.back().from);
      include(all, obstacles_.back().to);
    }
    lay(obstacle_tree_, obstacles_);
    if (points.empty()) return;
    extent_ = norm({all.high[0] - all.low[0], all.high[1] - all.low[1], all.high[2] - all.low[2]});
  }

  std::vector<std::int32_t> run() {
    // A last pass that gains next to nothing costs as much as all that follows would save.
    constexpr std::size_t kWorthAPass = 32;
    while (true) {
      const std::size_t before = kept_.size();
      pass();
      if (before - kept_.size() <= before / kWorthAPass) return kept_;
    }
  }

 private:
  static void lay(SegmentTree& tree, const std::vector<Line>& lines) {
    tree.assign(lines.size(), [&](std::size_t k) { return box_of({lines[k].from, lines[k].to}); });
  }

  const Point& point(std::size_t place) const {
    return points_[static_cast<std::size_t>(kept_[place])];
  }

  // Segment k of a pass runs from place k to the next place that is left.
  void lay_segments() {
    const std::size_t count = kept_.size() - (ring_ ? 0 : 1);
    segments_.clear();
    for (std::size_t k = 0; k < count; ++k)
      segments_.push_back({point(k), point(k + 1 < kept_.size() ? k + 1 : 0)});
    lay(tree_, segments_);
  }

  void pass() {
    const std::size_t fewest = ring_ ? 3 : 2;
    if (kept_.size() <= fewest) return;
    lay_segments();
    std::vector<std::int32_t> left{kept_[0]};
    std::size_t count = kept_.size();
    std::size_t before = 0;  // segment that comes in to the point looked at
    const std::size_t end = ring_ ? kept_.size() : kept_.size() - 1;
    for (std::size_t k = 1; k < end; ++k) {
      if (before_each_) before_each_();
      if (count > fewest && is_free(before, k)) {
        join(before, k);
        --count;
      } else {
        left.push_back(kept_[k]);
        before = k;
      }
    }
    if (!ring_) left.push_back(kept_.back());
    kept_ = std::move(left);
  }

  // Lets segment `before` go straight to where segment `after` leads.
  void join(std::size_t before, std::size_t after) {
    segments_[before].to = segments_[after].to;
    tree_.set(before, box_of({segments_[before].from, segments_[before].to}));
    tree_.clear(after);
  }

  bool is_free(std::size_t before, std::size_t after) {
    const Point& p = segments_[before].from;
    const Point& q = segments_[before].to;
    const Point& r = segments_[after].to;
    const SegmentBox box = box_of({p, q, r});
    const PiercedTriangle triangle(p, q, r, extent_);
    // What lies close by along the chain is most likely in the way.
    constexpr std::size_t kClose = 32;
    const std::size_t close_begin = before - std::min(before, kClose);
    const std::size_t close_end = std::min(after + kClose, segments_.size());
    const auto is_pierced = [&](std::size_t begin, std::size_t end) {
      found_.clear();
      tree_.find(box, begin, end, found_);
      return std::any_of(found_.begin(), found_.end(), [&](std::int32_t number) {
        const auto k = static_cast<std::size_t>(number);
        return k != before && k != after && triangle.may_be_by(segments_[k]);
      });
    };
    if (is_pierced(close_begin, close_end) || is_pierced(0, close_begin) ||
        is_pierced(close_end, segments_.size()))
      return false;
    found_.clear();
    obstacle_tree_.find(box, 0, obstacles_.size(), found_);
    return std::none_of(found_.begin(), found_.end(), [&](std::int32_t number) {
      return triangle.may_be_by(obstacles_[static_cast<std::size_t>(number)]);
    });
  }

  std::vector<Point> points_;  // scaled
  const bool ring_;
  const BeforeEach& before_each_;
  std::vector<std::int32_t> kept_;
  std::vector<Line> obstacles_;  // scaled, too
  SegmentTree obstacle_tree_;    // of their boxes
  double extent_ = 0;
  std::vector<Line> segments_;
  SegmentTree tree_;  // of the boxes of segments
  std::vector<std::int32_t> found_;
};

}  // namespace

std::vector<std::int32_t> eliminate_open(std::span<const Point> chain,
                                         std::span<const Line> obstacles,
                                         const BeforeEach& before_each) {
  return TriangleElimination(chain, obstacles, false, before_each).run();
}

std::vector<std::int32_t> eliminate_ring(std::span<const Point> ring,
                                         const BeforeEach& before_each) {
  return TriangleElimination(ring, {}, true, before_each).run();
}

}  // namespace korvex
