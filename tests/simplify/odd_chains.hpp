// Chains that make triangle elimination's decisions close, degenerate or undefined.
#pragma once

#include <limits>

#include "support/point_chains.hpp"

namespace odd_chains {

using support::PointChain;
using support::uniform;
using Random = std::mt19937_64;

inline int below(Random& random, int bound) {
  return static_cast<int>(random() % static_cast<std::uint64_t>(bound));
}

// Points of a cubic lattice of the given width, repeated ones included: exact zeros, collinear and
// coplanar points abound.
inline PointChain lattice(std::size_t points, Random& random) {
  const int width = 2 + below(random, 6);
  PointChain chain;
  for (std::size_t i = 0; i < points; ++i) {
    chain.push_back({static_cast<float>(below(random, width)),
                     static_cast<float>(below(random, width)),
                     static_cast<float>(below(random, width))});
  }
  return chain;
}

// Unit steps along the axes, free to turn back.
inline PointChain lattice_walk(std::size_t points, Random& random) {
  PointChain chain;
  fPointR3 at{0, 0, 0};
  for (std::size_t i = 0; i < points; ++i) {
    chain.push_back(at);
    float* const coordinates[] = {&at.x, &at.y, &at.z};
    *coordinates[below(random, 3)] += below(random, 2) == 0 ? -1.0F : 1.0F;
  }
  return chain;
}

// Steps of a few hundred-thousandths to a few units about lattice points.
inline PointChain jittered_lattice(std::size_t points, Random& random) {
  PointChain chain = lattice_walk(points, random);
  for (fPointR3& p : chain) {
    for (float* c : {&p.x, &p.y, &p.z}) {
      *c += static_cast<float>(below(random, 7) - 3) * (below(random, 2) == 0 ? 5e-6F : 1e-5F);
    }
  }
  return chain;
}

// A point of the plane of the triangle at `i`, on or next to its border, its corners included, and
// off the plane by about the tolerance.
inline fPointR3 near_triangle(const PointChain& chain, std::size_t i, Random& random) {
  const auto near = [&](double bound) {
    constexpr double kOff[] = {0, 0, 0, 9e-6, -9e-6, 1e-5, -1e-5, 1.1e-5, -1.1e-5, 1e-3, -1e-3};
    return bound + kOff[below(random, 11)];
  };
  const fPointR3& a = chain[i];
  const fPointR3& b = chain[i + 1];
  const fPointR3& c = chain[i + 2];
  double u = below(random, 3) == 0 ? uniform(random) : near(below(random, 2));
  double v = below(random, 3) == 0 ? uniform(random) : near(below(random, 2));
  if (below(random, 3) == 0) v = near(1) - u;
  if (below(random, 8) == 0) u = 3 * uniform(random) - 1;
  const double off = near(0);
  const double e1[] = {double{b.x} - a.x, double{b.y} - a.y, double{b.z} - a.z};
  const double e2[] = {double{c.x} - a.x, double{c.y} - a.y, double{c.z} - a.z};
  const double normal[] = {e1[1] * e2[2] - e1[2] * e2[1], e1[2] * e2[0] - e1[0] * e2[2],
                           e1[0] * e2[1] - e1[1] * e2[0]};
  return {static_cast<float>(a.x + u * e1[0] + v * e2[0] + off * normal[0]),
          static_cast<float>(a.y + u * e1[1] + v * e2[1] + off * normal[1]),
          static_cast<float>(a.z + u * e1[2] + v * e2[2] + off * normal[2])};
}

// A coil many of whose points lie on or next to triangles of others.
inline PointChain near_degenerate(std::size_t points, Random& random) {
  PointChain chain = support::coil(points, random);
  if (points < 4) return chain;
  for (std::size_t moved = 0; moved < points / 2 + 1; ++moved) {
    const auto i = static_cast<std::size_t>(below(random, static_cast<int>(points) - 2));
    const auto j = static_cast<std::size_t>(below(random, static_cast<int>(points)));
    chain[j] = near_triangle(chain, i, random);
  }
  return chain;
}

inline PointChain planar(std::size_t points, Random& random) {
  PointChain chain = support::compact(points, random);
  const bool collinear = below(random, 3) == 0;
  for (fPointR3& p : chain) {
    p.z = 0;
    if (collinear) p.y = 2 * p.x;
  }
  return chain;
}

inline PointChain with_repeats(std::size_t points, Random& random) {
  PointChain chain = support::compact(points, random);
  for (std::size_t i = 1; i < chain.size(); ++i) {
    if (below(random, 4) == 0) chain[i] = chain[random() % i];
  }
  return chain;
}

// A chain whose ends run to far points, as closures make it.
inline PointChain far_ended(std::size_t points, Random& random) {
  PointChain chain = support::compact(points, random);
  const double distance = std::pow(10.0, 1 + 3 * uniform(random));
  for (fPointR3* end : {&chain.front(), &chain.back()}) {
    const fPointR3 direction = support::random_unit_vector(random);
    *end = {static_cast<float>(distance * direction.x), static_cast<float>(distance * direction.y),
            static_cast<float>(distance * direction.z)};
  }
  return chain;
}

// Scaled by a power of ten between 1e-22 and 1e22, so that products underflow or overflow, and now
// and then moved far from the origin.
inline PointChain scaled(PointChain chain, Random& random) {
  const double scale = std::pow(10.0, 44 * uniform(random) - 22);
  const double shift = below(random, 2) == 0 ? 0.0 : scale * std::pow(10.0, 7 * uniform(random));
  for (fPointR3& p : chain) {
    p = {static_cast<float>(scale * p.x + shift), static_cast<float>(scale * p.y - shift),
         static_cast<float>(scale * p.z + 0.7 * shift)};
  }
  return chain;
}

// With infinities, NaN, zeros of both signs and the extremes of the type.
inline PointChain undefined(PointChain chain, Random& random) {
  using Limits = std::numeric_limits<float>;
  constexpr float kOdd[] = {Limits::infinity(),
                            -Limits::infinity(),
                            Limits::quiet_NaN(),
                            Limits::max(),
                            Limits::min(),
                            Limits::denorm_min(),
                            -0.0F,
                            0.0F};
  const int changes = 1 + below(random, 4);
  for (int change = 0; change < changes && !chain.empty(); ++change) {
    fPointR3& p = chain[random() % chain.size()];
    float* const coordinates[] = {&p.x, &p.y, &p.z};
    *coordinates[below(random, 3)] = kOdd[below(random, 8)];
  }
  return chain;
}

constexpr int kKinds = 11;

inline PointChain of_kind(int kind, std::size_t points, Random& random) {
  switch (kind) {
    case 0:
      return support::compact(points, random);
    case 1:
      return support::coil(points, random);
    case 2:
      return lattice(points, random);
    case 3:
      return lattice_walk(points, random);
    case 4:
      return jittered_lattice(points, random);
    case 5:
      return near_degenerate(points, random);
    case 6:
      return planar(points, random);
    case 7:
      return with_repeats(points, random);
    case 8:
      return points < 2 ? support::coil(points, random) : far_ended(points, random);
    case 9:
      return scaled(of_kind(below(random, 9), points, random), random);
    default:
      return undefined(of_kind(below(random, 9), points, random), random);
  }
}

// Mostly short, so that a case is cheap and its ends matter, now and then of hundreds of points.
inline PointChain any(Random& random) {
  const int length = below(random, 40);
  const int points = length == 0  ? 150 + below(random, 150)
                     : length < 8 ? 30 + below(random, 60)
                                  : below(random, 32);
  return of_kind(below(random, kKinds), static_cast<std::size_t>(points), random);
}

}  // namespace odd_chains
