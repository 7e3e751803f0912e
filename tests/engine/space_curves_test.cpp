// Knots known from their diagrams, turned into curves in space and named from any direction.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "korvex/identify.hpp"
#include "support/chains.hpp"
#include "support/diagrams.hpp"
#include "support/embedding.hpp"
#include "support/knot_rows.hpp"

namespace korvex {
namespace {

using Ring = std::vector<Point>;

Point random_direction(support::Random& random) {
  return {random.normal(), random.normal(), random.normal()};
}

std::string name_seen_from(const Ring& ring, const Point& direction) {
  return identify(Diagram::of_polygon(ring, direction)).name;
}

std::string opposite_hand(std::string name) {
  for (char& c : name) c = c == '+' ? '-' : c == '-' ? '+' : c;
  return name;
}

Ring mirror_image(Ring ring) {
  for (Point& p : ring) p.x = -p.x;
  return ring;
}

Ring subdivided(const Ring& ring, int parts) {
  Ring result;
  for (std::size_t k = 0; k < ring.size(); ++k) {
    const Point& a = ring[k];
    const Point& b = ring[(k + 1) % ring.size()];
    for (int part = 0; part < parts; ++part)
      result.push_back(a + (static_cast<double>(part) / parts) * (b - a));
  }
  return result;
}

// True when the segment from p to q comes near the triangle.
bool pierces(const Point& p, const Point& q, const Point& a, const Point& b, const Point& c) {
  const Point normal = cross(b - a, c - a);
  const double from = dot(normal, p - a);
  const double to = dot(normal, q - a);
  if (from * to > 0) return false;
  if (from == to) return true;
  const Point at = p + (from / (from - to)) * (q - p);
  constexpr double kMargin = -1e-6;
  const double size = dot(normal, normal);
  return dot(normal, cross(b - a, at - a)) > kMargin * size &&
         dot(normal, cross(c - b, at - b)) > kMargin * size &&
         dot(normal, cross(a - c, at - c)) > kMargin * size;
}

// Moves one vertex unless the two triangles it sweeps are pierced by the rest of the ring.
void try_move(Ring& ring, support::Random& random) {
  const auto size = static_cast<int>(ring.size());
  const int vertex = random.below(size);
  const auto at = [&](int k) { return ring[static_cast<std::size_t>((k % size + size) % size)]; };
  const Point moved = at(vertex) + 0.3 * random_direction(random);
  for (int k = 0; k < size; ++k) {
    if (k == vertex || (k + 1) % size == vertex) continue;
    for (const int side : {-1, 1}) {
      const int neighbour = ((vertex + side) % size + size) % size;
      // Edges that share the neighbour may only touch the triangle there.
      if (k == neighbour || (k + 1) % size == neighbour) {
        const Point end = k == neighbour ? at(k + 1) : at(k);
        if (pierces(end, at(neighbour) + 1e-3 * (end - at(neighbour)), at(neighbour), at(vertex),
                    moved))
          return;
        continue;
      }
      if (pierces(at(k), at(k + 1), at(neighbour), at(vertex), moved)) return;
    }
  }
  ring[static_cast<std::size_t>(vertex)] = moved;
}

TEST(SpaceCurves, OfAllPrimesToTenCrossingsAreNamedFromAnyDirection) {
  support::Random random(1);
  for (const support::KnotRow& row : support::knot_rows()) {
    const Diagram diagram = Diagram::of_pd(row.pd);
    const KnotIdentity known = identify(diagram);
    const Ring ring = support::embedded(diagram);
    const Diagram above = Diagram::of_polygon(ring, {1e-4, 2e-4, 1});
    EXPECT_EQ(identify(above).name, known.name) << row.name;
    for (int k = 0; k < 2; ++k) {
      const Point direction = random_direction(random);
      EXPECT_EQ(name_seen_from(ring, direction), known.name);
      EXPECT_EQ(name_seen_from(mirror_image(ring), direction), opposite_hand(known.name));
    }
  }
}

TEST(SpaceCurves, KeepTheirNameUnderReversalShiftAndSubdivision) {
  support::Random random(2);
  for (const KnotType& type : catalogue()) {
    if (type.crossings == 0) continue;
    const Ring ring = support::embedded(Diagram::of_gauss_code(type.gauss_code));
    Ring reversed(ring.rbegin(), ring.rend());
    EXPECT_EQ(name_seen_from(reversed, random_direction(random)), type.name);
    Ring shifted = ring;
    std::rotate(shifted.begin(), shifted.begin() + 7, shifted.end());
    EXPECT_EQ(name_seen_from(shifted, random_direction(random)), type.name);
    EXPECT_EQ(name_seen_from(subdivided(ring, 3), random_direction(random)), type.name);
    EXPECT_EQ(name_seen_from(subdivided(ring, 2), {0, 0, 1}), type.name);
  }
}

TEST(SpaceCurves, KeepTheirNameWhenVerticesMoveAndNothingIsCrossed) {
  support::Random random(3);
  for (const KnotType& type : catalogue()) {
    const Diagram diagram = Diagram::of_gauss_code(
        type.crossings == 0 ? support::odd_pretzel(1, -1, 3) : type.gauss_code);
    Ring ring = support::embedded(diagram);
    for (int k = 0; k < 600; ++k) try_move(ring, random);
    EXPECT_EQ(name_seen_from(ring, random_direction(random)), type.name);
  }
}

TEST(SpaceCurves, TorusKnotsWoundOnTheirTorus) {
  support::Random random(4);
  const auto named = [&](int p, int q) {
    Ring ring;
    for (const ChainAtom& atom : support::torus_knot(p, q, 24 * (p + q)))
      ring.push_back({atom.x, atom.y, atom.z});
    const std::string name = name_seen_from(ring, random_direction(random));
    return name[0] == '+' || name[0] == '-' ? name.substr(1) : name;
  };
  EXPECT_EQ(named(2, 3), "3_1");
  EXPECT_EQ(named(2, 5), "5_1");
  EXPECT_EQ(named(2, 7), "7_1");
  EXPECT_EQ(named(2, 9), "9_1");
  EXPECT_EQ(named(2, 11), "?1-1+1-1+1-1+1-1+1-1+1");
  EXPECT_EQ(named(2, 13), "?1-1+1-1+1-1+1-1+1-1+1-1+1");
  EXPECT_EQ(named(2, 15), "?1-1+1-1+1-1+1-1+1-1+1-1+1-1+1");
  EXPECT_EQ(named(3, 4), "8_19");
  EXPECT_EQ(named(3, 5), "10_124");
}

}  // namespace
}  // namespace korvex
