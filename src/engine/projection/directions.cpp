#include "korvex/directions.hpp"

#include <array>
#include <cmath>
#include <numbers>

#include "engine/run/random.hpp"

namespace korvex {
namespace {

using Rotation = std::array<Point, 3>;

constexpr double kTurn = 2 * std::numbers::pi;

// Streams of random numbers that must not overlap for one seed.
constexpr std::uint64_t kRotationStream = 0x526f7461746520aau;
constexpr std::uint64_t kDirectionStream = 0x446972656374aa20u;

Point on_sphere(double height, double angle) {
  const double radius = std::sqrt(1 - height * height);
  return {radius * std::cos(angle), radius * std::sin(angle), height};
}

// Rows of the matrix of a uniform random unit quaternion.
Rotation random_rotation(std::uint64_t seed, std::uint64_t block) {
  TrialRandom random(seed ^ kRotationStream, block);
  const double split = random.unit();
  const double first = kTurn * random.unit();
  const double second = kTurn * random.unit();
  const double x = std::sqrt(1 - split) * std::sin(first);
  const double y = std::sqrt(1 - split) * std::cos(first);
  const double z = std::sqrt(split) * std::sin(second);
  const double w = std::sqrt(split) * std::cos(second);
  return {Point{1 - 2 * (y * y + z * z), 2 * (x * y - z * w), 2 * (x * z + y * w)},
          Point{2 * (x * y + z * w), 1 - 2 * (x * x + z * z), 2 * (y * z - x * w)},
          Point{2 * (x * z - y * w), 2 * (y * z + x * w), 1 - 2 * (x * x + y * y)}};
}

Point unit(const Point& vector) { return (1 / norm(vector)) * vector; }

}  // namespace

std::vector<Point> lattice_directions(std::size_t count, std::uint64_t seed, std::uint64_t block) {
  const Rotation rotation = random_rotation(seed, block);
  const double golden = kTurn * (2 - std::numbers::phi);
  std::vector<Point> directions;
  directions.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    const double height = 1 - (2 * static_cast<double>(i) + 1) / static_cast<double>(count);
    const Point p = on_sphere(height, std::fmod(golden * static_cast<double>(i), kTurn));
    directions.push_back(unit({dot(rotation[0], p), dot(rotation[1], p), dot(rotation[2], p)}));
  }
  return directions;
}

Point random_direction(std::uint64_t seed, std::uint64_t trial) {
  TrialRandom random(seed ^ kDirectionStream, trial);
  const double height = 2 * random.unit() - 1;
  return unit(on_sphere(height, kTurn * random.unit()));
}

}  // namespace korvex
