#include "support/chains.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <numbers>

namespace support {
namespace {

constexpr double kTau = 2 * std::numbers::pi;

double distance(const ChainAtom& a, const ChainAtom& b) {
  return std::hypot(a.x - b.x, a.y - b.y, a.z - b.z);
}

ChainAtom unit_step(Random& random) {
  const double x = random.normal(), y = random.normal(), z = random.normal();
  const double size = std::hypot(x, y, z);
  return {x / size, y / size, z / size, 0};
}

void number(Chain& chain) {
  for (std::size_t k = 0; k < chain.size(); ++k) chain[k].id = static_cast<std::int32_t>(k + 1);
}

using Site = std::array<int, 3>;

Site plus(const Site& a, const Site& b) { return {a[0] + b[0], a[1] + b[1], a[2] + b[2]}; }

std::vector<Site> rectangle() { return {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}; }

// The shortest trefoil of the cubic lattice: 24 steps.
std::vector<Site> lattice_trefoil() {
  const std::array<std::pair<Site, int>, 12> runs{{{{0, 1, 0}, 3},
                                                   {{0, 0, 1}, 2},
                                                   {{1, 0, 0}, 1},
                                                   {{0, -1, 0}, 2},
                                                   {{0, 0, -1}, 3},
                                                   {{-1, 0, 0}, 2},
                                                   {{0, 1, 0}, 1},
                                                   {{0, 0, 1}, 2},
                                                   {{1, 0, 0}, 3},
                                                   {{0, -1, 0}, 2},
                                                   {{0, 0, -1}, 1},
                                                   {{-1, 0, 0}, 2}}};
  std::vector<Site> sites;
  Site at{0, 0, 0};
  for (const auto& [step, count] : runs) {
    for (int k = 0; k < count; ++k) {
      sites.push_back(at);
      at = plus(at, step);
    }
  }
  return sites;
}

// Pushes the edge that starts at `place` by `sideways`, where the two sites are free.
bool push_edge(std::vector<Site>& sites, std::map<Site, int>& taken, std::size_t place,
               const Site& sideways, int half_width) {
  const Site a = sites[place], b = sites[(place + 1) % sites.size()];
  const Site step{b[0] - a[0], b[1] - a[1], b[2] - a[2]};
  if (step[0] * sideways[0] + step[1] * sideways[1] + step[2] * sideways[2] != 0) return false;
  const Site over_a = plus(a, sideways), over_b = plus(b, sideways);
  for (const Site& site : {over_a, over_b}) {
    const bool inside =
        std::all_of(site.begin(), site.end(), [&](int c) { return std::abs(c) <= half_width; });
    if (!inside || taken.count(site) != 0) return false;
  }
  sites.insert(sites.begin() + static_cast<std::ptrdiff_t>(place) + 1, {over_a, over_b});
  taken[over_a] = taken[over_b] = 1;
  return true;
}

}  // namespace

double Random::normal() {
  const double radius = std::sqrt(-2 * std::log(1 - uniform()));
  return radius * std::cos(kTau * uniform());
}

Turn::Turn(Random& random) {
  double q[4];
  double size = 0;
  for (double& c : q) {
    c = random.normal();
    size += c * c;
  }
  const double s = 2 / size, w = q[0], x = q[1], y = q[2], z = q[3];
  const double matrix[3][3] = {{1 - s * (y * y + z * z), s * (x * y - w * z), s * (x * z + w * y)},
                               {s * (x * y + w * z), 1 - s * (x * x + z * z), s * (y * z - w * x)},
                               {s * (x * z - w * y), s * (y * z + w * x), 1 - s * (x * x + y * y)}};
  std::copy(&matrix[0][0], &matrix[0][0] + 9, &rows[0][0]);
}

ChainAtom Turn::operator()(const ChainAtom& atom) const {
  const auto row = [&](int k) {
    return rows[k][0] * atom.x + rows[k][1] * atom.y + rows[k][2] * atom.z;
  };
  return {row(0), row(1), row(2), atom.id};
}

Chain torus_knot(int p, int q, int atoms) {
  Chain chain;
  for (int k = 0; k < atoms; ++k) {
    const double t = kTau * k / atoms;
    const double r = 2 + std::cos(q * t);
    chain.push_back({r * std::cos(p * t), r * std::sin(p * t), std::sin(q * t), k + 1});
  }
  return chain;
}

Chain figure_eight(int atoms) {
  Chain chain;
  for (int k = 0; k < atoms; ++k) {
    const double t = kTau * k / atoms;
    const double r = 2 + std::cos(2 * t);
    chain.push_back({r * std::cos(3 * t), r * std::sin(3 * t), std::sin(4 * t), k + 1});
  }
  return chain;
}

Chain confined_walk(int atoms, double radius, std::uint64_t seed) {
  Random random(seed);
  Chain chain{{0, 0, 0, 1}};
  while (static_cast<int>(chain.size()) < atoms) {
    const ChainAtom& last = chain.back();
    const ChainAtom step = unit_step(random);
    const ChainAtom next{last.x + step.x, last.y + step.y, last.z + step.z, 0};
    if (std::hypot(next.x, next.y, next.z) <= radius) chain.push_back(next);
  }
  number(chain);
  return chain;
}

Chain compact_ring(int atoms, std::uint64_t seed) {
  return confined_walk(atoms, 0.62 * std::cbrt(static_cast<double>(atoms)) + 0.5, seed);
}

Chain gaussian_ring(int atoms, std::uint64_t seed) {
  Random random(seed);
  Chain chain;
  ChainAtom at{0, 0, 0, 0};
  for (int k = 0; k < atoms; ++k) {
    at = {at.x + random.normal(), at.y + random.normal(), at.z + random.normal(), 0};
    chain.push_back(at);
  }
  for (int k = 0; k < atoms; ++k) {
    const double share = static_cast<double>(k + 1) / atoms;
    ChainAtom& atom = chain[static_cast<std::size_t>(k)];
    atom = {atom.x - share * at.x, atom.y - share * at.y, atom.z - share * at.z, k + 1};
  }
  return chain;
}

Chain protein_like_walk(int atoms, std::uint64_t seed) {
  Random random(seed);
  const double radius = 3.2 * std::cbrt(static_cast<double>(atoms)) + 4;
  Chain chain{{0, 0, 0, 1}};
  int refused = 0;
  while (static_cast<int>(chain.size()) < atoms) {
    const ChainAtom step = unit_step(random);
    const ChainAtom& last = chain.back();
    const ChainAtom next{last.x + 3.8 * step.x, last.y + 3.8 * step.y, last.z + 3.8 * step.z, 0};
    const std::size_t size = chain.size();
    const bool bent = size < 2 || (distance(next, chain[size - 2]) > 4.9 &&
                                   distance(next, chain[size - 2]) < 7.4);
    const bool apart = std::all_of(chain.begin(), chain.end() - 1, [&](const ChainAtom& other) {
      return distance(next, other) > 4;
    });
    if (bent && apart && distance(next, {0, 0, 0, 0}) < radius) {
      chain.push_back(next);
    } else if (++refused % 300 == 0) {
      chain.resize(chain.size() > 12 ? chain.size() - 10 : 1);
    }
  }
  number(chain);
  return chain;
}

Chain lattice_ring(bool trefoil, int atoms, int half_width, std::uint64_t seed) {
  Random random(seed);
  std::vector<Site> sites = trefoil ? lattice_trefoil() : rectangle();
  std::map<Site, int> taken;
  for (const Site& site : sites) taken[site] = 1;
  const std::array<Site, 6> steps{
      {{1, 0, 0}, {-1, 0, 0}, {0, 1, 0}, {0, -1, 0}, {0, 0, 1}, {0, 0, -1}}};
  for (int tries = 0; tries < 200 * atoms && static_cast<int>(sites.size()) < atoms; ++tries) {
    const auto place = static_cast<std::size_t>(random.below(static_cast<int>(sites.size())));
    push_edge(sites, taken, place, steps[static_cast<std::size_t>(random.below(6))], half_width);
  }
  Chain chain;
  for (const Site& s : sites) {
    chain.push_back({double(s[0]), double(s[1]), double(s[2]), 0});
  }
  number(chain);
  return chain;
}

Chain lattice_walk(int atoms, std::uint64_t seed) {
  Random random(seed);
  Chain chain;
  ChainAtom at{0, 0, 0, 0};
  for (int k = 0; k < atoms; ++k) {
    chain.push_back(at);
    const double sign = random.below(2) == 0 ? 1 : -1;
    const int axis = random.below(3);
    (axis == 0 ? at.x : axis == 1 ? at.y : at.z) += sign;
  }
  number(chain);
  return chain;
}

Chain scaled(Chain chain, double factor) {
  for (ChainAtom& a : chain) a = {factor * a.x, factor * a.y, factor * a.z, a.id};
  return chain;
}

Chain shifted(Chain chain, double dx, double dy, double dz) {
  for (ChainAtom& a : chain) a = {a.x + dx, a.y + dy, a.z + dz, a.id};
  return chain;
}

Chain rotated(Chain chain, std::uint64_t seed) {
  Random random(seed);
  const Turn turn(random);
  for (ChainAtom& a : chain) a = turn(a);
  return chain;
}

Chain mirrored(Chain chain) {
  for (ChainAtom& a : chain) a.z = -a.z;
  return chain;
}

Chain reversed(Chain chain) {
  std::reverse(chain.begin(), chain.end());
  return chain;
}

Chain cycled(Chain chain, std::size_t first) {
  std::rotate(chain.begin(), chain.begin() + static_cast<std::ptrdiff_t>(first), chain.end());
  return chain;
}

Chain subdivided(const Chain& ring, int parts) {
  Chain fine;
  for (std::size_t k = 0; k < ring.size(); ++k) {
    const ChainAtom &a = ring[k], &b = ring[(k + 1) % ring.size()];
    for (int part = 0; part < parts; ++part) {
      const double t = static_cast<double>(part) / parts;
      fine.push_back({a.x + t * (b.x - a.x), a.y + t * (b.y - a.y), a.z + t * (b.z - a.z), 0});
    }
  }
  number(fine);
  return fine;
}

bool same_atoms(const Chain& a, const Chain& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](const ChainAtom& p, const ChainAtom& q) {
                      return p.x == q.x && p.y == q.y && p.z == q.z && p.id == q.id;
                    });
}

}  // namespace support
