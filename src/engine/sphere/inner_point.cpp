#include "engine/sphere/inner_point.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <optional>

namespace korvex {
namespace {

// A chord shorter than this may leave its face by rounding.
constexpr double kShortestChord = 1e-13;

// So many of the longest sides are tried first; all of them where those find little room.
constexpr std::size_t kTried = 2;
constexpr double kLittleRoom = 1e-7;

Point unit(const Point& p) { return (1 / norm(p)) * p; }

class FaceProbe {
 public:
  FaceProbe(const Arrangement& arrangement, std::size_t face)
      : arrangement_(arrangement), sides_(arrangement.sides(face)) {}

  std::vector<InnerPoint> points() {
    std::vector<std::int32_t> longest(sides_.begin(), sides_.end());
    const auto first = std::min(kTried, longest.size());
    const auto length = [this](std::int32_t side) {
      const Point along = arrangement_.end_of(side) - arrangement_.begin_of(side);
      return dot(along, along);
    };
    std::partial_sort(longest.begin(), longest.begin() + static_cast<std::ptrdiff_t>(first),
                      longest.end(),
                      [&](std::int32_t a, std::int32_t b) { return length(a) > length(b); });
    for (std::size_t k = 0; k < longest.size(); ++k) {
      if (k == first && best_ > kLittleRoom) break;
      try_side(longest[k]);
    }
    std::stable_sort(found_.begin(), found_.end(), [](const InnerPoint& a, const InnerPoint& b) {
      return a.weighted > b.weighted;
    });
    return std::move(found_);
  }

 private:
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  void try_side(std::int32_t side) {
    const Point& from = arrangement_.begin_of(side);
    const Point& to = arrangement_.end_of(side);
    const std::size_t piece = Arrangement::piece_of(side);
    const Arc& arc = arrangement_.arc_of(piece);
    const Point middle = unit(from + to);
    const Point inwards = Arrangement::is_left(side) ? arc.normal : -arc.normal;
    const double chord = free_way(middle, inwards, piece);
    if (!(chord > kShortestChord)) return;
    const Point inner = led(middle, inwards, chord / 2);
    add(inner);
    const Point sideways = cross(inner, led(inwards, -middle, chord / 2));
    const double ahead = free_way(inner, sideways, kNone);
    const double behind = free_way(inner, -sideways, kNone);
    if (!(ahead + behind > kShortestChord) || ahead + behind > 2 * std::numbers::pi) return;
    add(led(inner, sideways, (ahead - behind) / 2));
  }

  // The point at the given distance from `from` in the direction that leaves it.
  static Point led(const Point& from, const Point& direction, double distance) {
    return unit(std::cos(distance) * from + std::sin(distance) * direction);
  }

  // How far one may go before a piece of the boundary other than `own` is met; once round where
  // there is none. What is met by rounding alone shortens the way and does no harm; what is met
  // just behind leaves none.
  double free_way(const Point& from, const Point& direction, std::size_t own) const {
    constexpr double kSlack = 4e-15;
    const Point pole = cross(from, direction);
    double way = 2 * std::numbers::pi;
    for (const std::int32_t side : sides_) {
      const std::size_t piece = Arrangement::piece_of(side);
      if (piece == own) continue;
      const Point& a = arrangement_.begin_of_piece(piece);
      const Point& b = arrangement_.end_of_piece(piece);
      const double a_side = dot(pole, a);
      const double b_side = dot(pole, b);
      if ((a_side > kSlack && b_side > kSlack) || (a_side < -kSlack && b_side < -kSlack)) continue;
      const double whole = std::abs(a_side) + std::abs(b_side);
      const double part = whole > 0 ? std::abs(a_side) / whole : 0.5;
      const Point hit = (1 - part) * a + part * b;
      double angle = std::atan2(dot(hit, direction), dot(hit, from));
      if (angle < -kShortestChord) angle += 2 * std::numbers::pi;
      way = std::min(way, angle);
    }
    return way;
  }

  void add(const Point& at) {
    InnerPoint point{at, std::numeric_limits<double>::infinity(),
                     std::numeric_limits<double>::infinity()};
    for (const std::int32_t side : sides_) {
      const std::size_t piece = Arrangement::piece_of(side);
      const double distance = distance_to_piece(arrangement_, at, piece);
      point.clearance = std::min(point.clearance, distance);
      point.weighted = std::min(point.weighted, distance * arrangement_.weight_of(piece));
    }
    best_ = std::max(best_, point.weighted);
    found_.push_back(point);
  }

  const Arrangement& arrangement_;
  const std::span<const std::int32_t> sides_;
  std::vector<InnerPoint> found_;
  double best_ = 0;
};

}  // namespace

double distance_to_piece(const Arrangement& arrangement, const Point& p, std::size_t piece) {
  const Point& a = arrangement.begin_of_piece(piece);
  const Point& b = arrangement.end_of_piece(piece);
  const Point& normal = arrangement.arc_of(piece).normal;
  const Point towards = cross(p, normal);
  if (dot(towards, a) >= 0 && dot(towards, b) <= 0)
    return std::asin(std::min(1.0, std::abs(dot(p, normal))));
  const Point to_a = p - a;
  const Point to_b = p - b;
  return std::sqrt(std::min(dot(to_a, to_a), dot(to_b, to_b)));
}

std::vector<InnerPoint> inner_points(const Arrangement& arrangement, std::size_t face) {
  return FaceProbe(arrangement, face).points();
}

}  // namespace korvex
