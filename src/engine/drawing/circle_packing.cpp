#include "engine/drawing/circle_packing.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>

#include "engine/run/parallel.hpp"

namespace korvex {
namespace {

using Complex = std::complex<double>;

constexpr double kPi = std::numbers::pi;

// The hyperbolic radius r of a circle is kept as exp(-2 r): from 1 for a point down to 0 for a
// circle that touches the rim.
double half_of(double label) { return -0.25 * std::log(label); }  // r / 2

// The angle at the centre of one of three circles that touch one another, by the half-angle formula
// of the hyperbolic triangle of their centres.
double angle(double label, double b, double c) {
  const double square = label * (1 - b) * (1 - c) / ((1 - label * b) * (1 - label * c));
  return 2 * std::asin(std::sqrt(std::clamp(square, 0.0, 1.0)));
}

class Radii {
 public:
  explicit Radii(std::span<const Flower> flowers) : flowers_(flowers) {
    for (const Flower& flower : flowers) labels_.push_back(flower.on_rim ? 0 : 0.5);
  }

  // Each radius in turn is set as if all its neighbours were alike, until all angles sum up to full
  // turns.
  std::vector<double> found(const Run& run) {
    constexpr double kTolerance = 1e-10;
    constexpr int kMost = 100'000;
    for (int sweep = 0; sweep < kMost; ++sweep) {
      throw_if_cancelled(run);
      double worst = 0;
      for (std::size_t k = 0; k < flowers_.size(); ++k)
        if (!flowers_[k].on_rim) worst = std::max(worst, improve(k));
      if (worst < kTolerance) break;
    }
    return std::move(labels_);
  }

 private:
  // By how much the angle sum was wrong.
  double improve(std::size_t vertex) {
    const std::vector<std::size_t>& petals = flowers_[vertex].petals;
    const auto count = static_cast<double>(petals.size());
    double& label = labels_[vertex];
    double sum = 0;
    for (std::size_t k = 0; k < petals.size(); ++k)
      sum += angle(label, labels_[petals[k]], labels_[petals[(k + 1) % petals.size()]]);
    const double now = std::sin(sum / (2 * count));
    const double wanted = std::sin(kPi / count);
    const double root = std::sqrt(label);
    const double alike = std::clamp((now - root) / (now * label - root), 0.0, 1.0);
    const double gap = 1 - alike;
    const double next = 2 * wanted / (gap + std::sqrt(gap * gap + 4 * wanted * wanted * alike));
    label = next * next;
    return std::abs(sum - 2 * kPi);
  }

  std::span<const Flower> flowers_;
  std::vector<double> labels_;
};

// The motion of the disc that takes `origin` to its centre, and the one back.
Complex moved_to_centre(const Complex& z, const Complex& origin) {
  return (z - origin) / (1.0 - std::conj(origin) * z);
}
Complex moved_back(const Complex& z, const Complex& origin) {
  return (z + origin) / (1.0 + std::conj(origin) * z);
}

// Puts one circle after another beside those that are there.
class Layout {
 public:
  Layout(std::span<const Flower> flowers, const std::vector<double>& labels)
      : flowers_(flowers), labels_(labels), is_placed_(flowers.size()), spots_(flowers.size()) {}

  std::vector<PackedCircle> laid_out(std::span<const std::size_t> balanced) {
    std::vector<std::size_t> queue{innermost()};
    spots_[queue.front()] = 0;
    is_placed_[queue.front()] = true;
    for (std::size_t head = 0; head < queue.size(); ++head)
      if (!flowers_[queue[head]].on_rim) place_petals(queue[head], queue);
    balance(balanced);
    return circles();
  }

 private:
  // A vertex to which the way from the rim is the longest.
  std::size_t innermost() const {
    std::vector<bool> seen(flowers_.size());
    std::vector<std::size_t> queue;
    const auto enter = [&](std::size_t vertex) {
      if (!seen[vertex]) queue.push_back(vertex);
      seen[vertex] = true;
    };
    for (std::size_t k = 0; k < flowers_.size(); ++k)
      if (flowers_[k].on_rim) enter(k);
    for (std::size_t head = 0; head < queue.size(); ++head)
      for (const std::size_t petal : flowers_[queue[head]].petals) enter(petal);
    return queue.back();
  }

  void place_petals(std::size_t vertex, std::vector<std::size_t>& queue) {
    const std::vector<std::size_t>& petals = flowers_[vertex].petals;
    const auto known = std::find_if(petals.begin(), petals.end(),
                                    [&](std::size_t petal) { return is_placed_[petal]; });
    const auto first = static_cast<std::size_t>(known == petals.end() ? 0 : known - petals.begin());
    double direction =
        known == petals.end() ? 0 : std::arg(moved_to_centre(spots_[*known], spots_[vertex]));
    for (std::size_t k = 0; k < petals.size(); ++k) {
      const std::size_t petal = petals[(first + k) % petals.size()];
      const std::size_t next = petals[(first + k + 1) % petals.size()];
      if (!is_placed_[petal]) {
        place_beside(vertex, petal, direction);
        queue.push_back(petal);
      }
      direction += angle(labels_[vertex], labels_[petal], labels_[next]);
    }
  }

  void place_beside(std::size_t vertex, std::size_t petal, double direction) {
    const double distance =
        flowers_[petal].on_rim ? 1 : std::tanh(half_of(labels_[vertex]) + half_of(labels_[petal]));
    spots_[petal] = moved_back(std::polar(distance, direction), spots_[vertex]);
    is_placed_[petal] = true;
  }

  // Moves the disc until the mean of some spots is in the origin.
  void balance(std::span<const std::size_t> vertices) {
    constexpr int kSteps = 1000;
    constexpr double kBalanced = 1e-9;
    for (int step = 0; step < kSteps; ++step) {
      Complex mean = 0;
      for (const std::size_t vertex : vertices) mean += spots_[vertex];
      mean /= static_cast<double>(vertices.size());
      if (std::abs(mean) < kBalanced) break;
      for (Complex& spot : spots_) spot = moved_to_centre(spot, mean);
    }
  }

  std::vector<PackedCircle> circles() const {
    std::vector<PackedCircle> circles;
    for (std::size_t k = 0; k < flowers_.size(); ++k) circles.push_back(inner_circle(k));
    for (std::size_t k = 0; k < flowers_.size(); ++k) {
      if (!flowers_[k].on_rim) continue;
      const std::vector<std::size_t>& petals = flowers_[k].petals;
      const auto inside = std::find_if(petals.begin(), petals.end(),
                                       [&](std::size_t petal) { return !flowers_[petal].on_rim; });
      circles[k] = rim_circle(spots_[k] / std::abs(spots_[k]), circles[*inside]);
    }
    return circles;
  }

  PackedCircle inner_circle(std::size_t vertex) const {
    if (flowers_[vertex].on_rim) return {};
    const double distance = std::abs(spots_[vertex]);
    const double half = half_of(labels_[vertex]);
    const double inner = std::tanh(std::atanh(distance) - half);
    const double outer = std::tanh(std::atanh(distance) + half);
    const Complex direction = distance > 0 ? spots_[vertex] / distance : 1;
    return {0.5 * (inner + outer) * direction, 0.5 * (outer - inner)};
  }

  // The circle that touches the rim at `spot` and `other` from outside.
  static PackedCircle rim_circle(const Complex& spot, const PackedCircle& other) {
    const Complex way = spot - other.centre;
    const double along = (way * std::conj(spot)).real();
    const double radius =
        (std::norm(way) - other.radius * other.radius) / (2 * (other.radius + along));
    return {(1 - radius) * spot, radius};
  }

  std::span<const Flower> flowers_;
  const std::vector<double>& labels_;
  std::vector<bool> is_placed_;
  std::vector<Complex> spots_;  // hyperbolic centres, or where circles touch the rim
};

}  // namespace

std::vector<PackedCircle> packed_circles(std::span<const Flower> flowers,
                                         std::span<const std::size_t> balanced, const Run& run) {
  const std::vector<double> labels = Radii(flowers).found(run);
  return Layout(flowers, labels).laid_out(balanced);
}

}  // namespace korvex
