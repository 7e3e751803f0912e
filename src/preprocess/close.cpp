#include <algorithm>
#include <cstdlib>
#include <numbers>
#include <optional>

#include "preprocess/points.hpp"

namespace preprocess {
namespace {

constexpr int kClosed = 0;
constexpr int kTryAgain = -1;
constexpr int kImpossible = -2;

// Below this factor the arcs would need so many chords that the caller hardly means it.
constexpr double kSmallestFactor = 1.001;
// Distances to this many times the sphere's radius are formed on the way.
constexpr double kRoom = 8;
// The plane on which parallel rays are joined lies this many radii from the centre.
constexpr double kRayReach = 1.25;
// Directions nearer to each other than this angle, in radians, count as one, and directions that
// near to opposite as opposite; points further apart stay distinct in single precision as well.
constexpr double kSameDirection = 1e-3;
// The angle, in radians, between the ways out of two ends that lie on one ray from the centre.
constexpr double kFork = 1e-2;
// A ball smaller than this, as a part of its centre's largest coordinate, is hardly more than one
// point in double precision: every random point of its sphere may round to the same.
constexpr double kResolution = 1e-13;
// Sine of the angle below which three points count as collinear.
constexpr double kCollinear = 1e-9;

Point unit(Point a) {
  const double size = length(a);
  return {a.x / size, a.y / size, a.z / size};
}

// A direction without any relation to the axes of a lattice.
Point generic_direction() { return unit({std::sqrt(2.0), -std::sqrt(3.0), std::sqrt(5.0)}); }

// A unit vector at a right angle to the unit vector a.
Point perpendicular(Point a) {
  const Point other = generic_direction();
  const Point normal = cross(a, other);
  return unit(length(normal) > 0.1 ? normal : cross(a, {other.y, other.z, other.x}));
}

// The unit vector at a right angle to the unit vector a on the side of the unit vector b.
Point side_towards(Point a, Point b) {
  const Point side = b - dot(a, b) * a;
  return length(side) > 1e-12 ? unit(side) : perpendicular(a);
}

// Uniform in (0, 1), one draw.
double uniform() { return (std::rand() + 0.5) / (RAND_MAX + 1.0); }

// Uniform on the unit sphere, two draws: by Archimedes, the height is uniform.
Point uniform_direction() {
  const double height = 2 * uniform() - 1;
  const double angle = 2 * std::numbers::pi * uniform();
  const double radius = std::sqrt(1 - height * height);
  return {radius * std::cos(angle), radius * std::sin(angle), height};
}

double angle_between(Point a, Point b) { return std::atan2(length(cross(a, b)), dot(a, b)); }

// The chain's centroid and the greatest distance of an atom from it.
struct Ball {
  Point centre;
  double radius;
};

Ball ball_of(const std::vector<ChainAtom>& chain) {
  const Point origin = position(chain.front());
  Point sum{0, 0, 0};
  for (const ChainAtom& atom : chain) sum = sum + (position(atom) - origin);
  Ball ball{origin + (1 / static_cast<double>(chain.size())) * sum, 0};
  for (const ChainAtom& atom : chain)
    ball.radius = std::max(ball.radius, length(position(atom) - ball.centre));
  return ball;
}

// Adds points after the chain's last atom. Leaves the chain alone when one of them is beyond the
// range of the numbers.
int append(std::vector<ChainAtom>& chain, const std::vector<Point>& points) {
  if (!std::all_of(points.begin(), points.end(), is_finite)) return kImpossible;
  for (const Point& point : points) chain.push_back({point.x, point.y, point.z, 0});
  return kClosed;
}

// The answer that needs no attempt: the chain is closed already or too short to be, or has numbers
// that no attempt can work with. Otherwise none, and the chain's ball in `ball`.
std::optional<int> settle(const std::vector<ChainAtom>& chain, double factor, Ball& ball) {
  if (chain.size() < 2) return kClosed;
  if (!all_finite(chain)) return kImpossible;
  if (position(chain.front()) == position(chain.back())) return kClosed;
  if (!(factor >= kSmallestFactor) || !std::isfinite(factor)) return kImpossible;
  ball = ball_of(chain);
  const double room = kRoom * factor * ball.radius;
  const bool in_range = std::isnormal(ball.radius) && std::isfinite(room);
  if (!is_finite(ball.centre) || !in_range) return kImpossible;
  const Point& c = ball.centre;
  const double offset = std::max({std::fabs(c.x), std::fabs(c.y), std::fabs(c.z)});
  if (ball.radius < kResolution * offset) return kImpossible;
  return std::nullopt;
}

// Points of the great-circle arc from `from` to `to`, unit vectors, both included; which of the
// great circles, where they are opposite, is fixed. The chords of the arc at radius `factor` stay
// outside the sphere halfway between that one and the unit sphere.
std::vector<Point> arc(Point from, Point to, double factor) {
  const double angle = angle_between(from, to);
  const double longest_step = 2 * std::acos((1 + 1 / factor) / 2);
  const Point side = side_towards(from, to);
  std::vector<Point> points{from};
  const double steps = std::ceil(angle / longest_step);
  for (double k = 1; k < steps; ++k) {
    const double turned = angle * k / steps;
    points.push_back(std::cos(turned) * from + std::sin(turned) * side);
  }
  points.push_back(to);
  return points;
}

std::vector<Point> on_sphere(const Ball& ball, double factor, std::vector<Point> directions) {
  const double reach = factor * ball.radius;
  for (Point& point : directions) point = ball.centre + reach * point;
  return directions;
}

// The way out of the ball through a point of it; a fixed one from the centre.
Point way_out(const Ball& ball, Point from) {
  const Point offset = from - ball.centre;
  return length(offset) > 0 ? unit(offset) : generic_direction();
}

}  // namespace
}  // namespace preprocess

int CloseChain_OUT(std::vector<ChainAtom>& chain, double factor) {
  using namespace preprocess;
  Ball ball{};
  if (const auto answer = settle(chain, factor, ball)) return *answer;
  const Point first = way_out(ball, position(chain.front()));
  Point last = way_out(ball, position(chain.back()));
  if (angle_between(first, last) < kSameDirection)
    last = std::cos(kFork) * first + std::sin(kFork) * side_towards(first, last);
  return append(chain, on_sphere(ball, factor, arc(last, first, factor)));
}

int CloseChain_2points(std::vector<ChainAtom>& chain, double factor) {
  using namespace preprocess;
  Ball ball{};
  if (const auto answer = settle(chain, factor, ball)) return *answer;
  const Point last = uniform_direction();
  const Point first = uniform_direction();
  const double angle = angle_between(last, first);
  if (angle < kSameDirection || angle > std::numbers::pi - kSameDirection) return kTryAgain;
  return append(chain, on_sphere(ball, factor, arc(last, first, factor)));
}

int CloseChain_1point(std::vector<ChainAtom>& chain, double factor) {
  using namespace preprocess;
  Ball ball{};
  if (const auto answer = settle(chain, factor, ball)) return *answer;
  const Point point = ball.centre + factor * ball.radius * uniform_direction();
  const Point between_ends = position(chain.front()) - position(chain.back());
  const double angle = angle_between(unit(between_ends), unit(point - position(chain.back())));
  if (!(std::sin(angle) > kCollinear)) return kTryAgain;
  return append(chain, {point});
}

int CloseChain_1direction(std::vector<ChainAtom>& chain) {
  using namespace preprocess;
  Ball ball{};
  if (const auto answer = settle(chain, kRayReach, ball)) return *answer;
  const Point direction = uniform_direction();
  const Point first = position(chain.front());
  const Point last = position(chain.back());
  const double angle = angle_between(unit(first - last), direction);
  if (!(std::sin(angle) > kCollinear)) return kTryAgain;
  const double height = kRayReach * ball.radius;
  const auto carried = [&](Point end) {
    return end + (height - dot(end - ball.centre, direction)) * direction;
  };
  return append(chain, {carried(last), carried(first)});
}
