#include "engine/geometry/triangle_elimination.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace korvex {
namespace {

constexpr double kEpsilon = std::numeric_limits<double>::epsilon();

struct Box {
  Point low{HUGE_VAL, HUGE_VAL, HUGE_VAL};
  Point high{-HUGE_VAL, -HUGE_VAL, -HUGE_VAL};

  void include(const Point& p) {
    low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
    high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
  }
  void include(const Box& other) {
    include(other.low);
    include(other.high);
  }
  bool meets(const Box& other) const {
    return (low.x <= other.high.x) & (other.low.x <= high.x) & (low.y <= other.high.y) &
           (other.low.y <= high.y) & (low.z <= other.high.z) & (other.low.z <= high.z);
  }
};

Box box_of(const Line& line) {
  Box box;
  box.include(line.from);
  box.include(line.to);
  return box;
}

// Six times the volume of the tetrahedron (a, b, c, d).
double volume(const Point& a, const Point& b, const Point& c, const Point& d) {
  return dot(cross(b - a, c - a), d - a);
}

// Whether a line from corner p to `far` may run on within the triangle.
bool may_run_inside(const Point& p, const Point& q, const Point& r, const Point& far,
                    double extent) {
  const double cube = extent * extent * extent;
  const Point normal = cross(q - p, r - p);
  if (std::abs(dot(normal, far - p)) > 32 * kEpsilon * cube) return false;
  const double error = 128 * kEpsilon * cube * extent;
  const bool beyond_pq = dot(normal, cross(q - p, far - p)) < -error;
  const bool beyond_pr = dot(normal, cross(far - p, r - p)) < -error;
  return !(beyond_pq || beyond_pr);
}

class Elimination {
 public:
  Elimination(std::span<const Point> points, std::span<const Line> obstacles, bool ring)
      : points_(points), ring_(ring), kept_(points.size()) {
    std::iota(kept_.begin(), kept_.end(), 0);
    Box all;
    for (const Point& p : points) all.include(p);
    for (const Line& line : obstacles) {
      all.include(box_of(line));
      obstacles_.push_back({line, box_of(line)});
    }
    extent_ = points.empty() ? 0 : norm(all.high - all.low);
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
  static constexpr std::size_t kBlock = 8;

  struct Obstacle {
    Line line;
    Box box;
  };

  const Point& point(std::size_t place) const {
    return points_[static_cast<std::size_t>(kept_[place])];
  }

  // Segment k of a pass runs from place k to the next place that is left.
  void lay_segments() {
    const std::size_t count = kept_.size() - (ring_ ? 0 : 1);
    segments_.clear();
    boxes_.clear();
    blocks_.clear();
    for (std::size_t k = 0; k < count; ++k) {
      segments_.push_back({point(k), point(k + 1 < kept_.size() ? k + 1 : 0)});
      boxes_.push_back(box_of(segments_.back()));
      if (k % kBlock == 0) blocks_.emplace_back();
      blocks_.back().include(boxes_.back());
    }
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
    boxes_[before] = box_of(segments_[before]);
    blocks_[before / kBlock].include(boxes_[before]);
    boxes_[after] = Box{};
  }

  bool is_free(std::size_t before, std::size_t after) const {
    const Point& p = segments_[before].from;
    const Point& q = segments_[before].to;
    const Point& r = segments_[after].to;
    Box box;
    box.include(p);
    box.include(q);
    box.include(r);
    for (std::size_t block = 0; block < blocks_.size(); ++block) {
      if (!blocks_[block].meets(box)) continue;
      const std::size_t end = std::min(segments_.size(), (block + 1) * kBlock);
      for (std::size_t k = block * kBlock; k < end; ++k) {
        if (!boxes_[k].meets(box) || k == before || k == after) continue;
        if (may_pierce(segments_[k], p, q, r, extent_)) return false;
      }
    }
    return std::none_of(obstacles_.begin(), obstacles_.end(), [&](const Obstacle& obstacle) {
      return obstacle.box.meets(box) && may_pierce(obstacle.line, p, q, r, extent_);
    });
  }

  const std::span<const Point> points_;
  const bool ring_;
  std::vector<std::int32_t> kept_;
  std::vector<Obstacle> obstacles_;
  double extent_ = 0;
  std::vector<Line> segments_;
  std::vector<Box> boxes_;
  std::vector<Box> blocks_;
};

}  // namespace

bool may_pierce(const Line& line, const Point& p, const Point& q, const Point& r, double extent) {
  if (line.from == p || line.to == p)
    return may_run_inside(p, q, r, line.from == p ? line.to : line.from, extent);
  if (line.from == r || line.to == r)
    return may_run_inside(r, p, q, line.from == r ? line.to : line.from, extent);
  const double error = 32 * kEpsilon * extent * extent * extent;
  const double begin = volume(p, q, r, line.from);
  const double end = volume(p, q, r, line.to);
  if ((begin > error && end > error) || (begin < -error && end < -error)) return false;
  const double about_pq = volume(line.from, line.to, p, q);
  const double about_qr = volume(line.from, line.to, q, r);
  const double about_rp = volume(line.from, line.to, r, p);
  const bool some_positive = about_pq > error || about_qr > error || about_rp > error;
  const bool some_negative = about_pq < -error || about_qr < -error || about_rp < -error;
  return !(some_positive && some_negative);
}

std::vector<std::int32_t> eliminate_open(std::span<const Point> chain,
                                         std::span<const Line> obstacles) {
  return Elimination(chain, obstacles, false).run();
}

std::vector<std::int32_t> eliminate_ring(std::span<const Point> ring) {
  return Elimination(ring, {}, true).run();
}

}  // namespace korvex
