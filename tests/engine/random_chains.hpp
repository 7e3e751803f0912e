// Chains that tests draw by a seed.
#pragma once

#include <cmath>
#include <cstddef>
#include <numbers>
#include <random>
#include <vector>

#include "korvex/geometry.hpp"

namespace korvex {

// Steps of normally distributed coordinates.
inline std::vector<Point> random_walk(unsigned seed, int steps) {
  std::mt19937 generator(seed);
  std::normal_distribution<double> normal;
  std::vector<Point> chain{{0, 0, 0}};
  for (int i = 0; i < steps; ++i) {
    const Point step{normal(generator), normal(generator), normal(generator)};
    chain.push_back(chain.back() + step);
  }
  return chain;
}

// A walk that is drawn back to the origin and so stays compact and is often knotted.
inline std::vector<Point> compact_walk(unsigned seed, int steps) {
  const auto free = random_walk(seed, steps);
  std::vector<Point> chain{{0, 0, 0}};
  for (std::size_t i = 1; i < free.size(); ++i)
    chain.push_back(0.7 * chain.back() + (free[i] - free[i - 1]));
  return chain;
}

// A left-handed trefoil ring.
inline std::vector<Point> trefoil_ring(int points = 40) {
  std::vector<Point> ring;
  for (int i = 0; i < points; ++i) {
    const double t = 2 * std::numbers::pi * (i + 0.35) / points;
    ring.push_back(
        {std::sin(t) + 2 * std::sin(2 * t), std::cos(t) - 2 * std::cos(2 * t), -std::sin(3 * t)});
  }
  return ring;
}

}  // namespace korvex
