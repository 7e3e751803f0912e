// The map of closures: the knot types of an open chain closed by rays, in all directions at once.
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "korvex/export.hpp"
#include "korvex/geometry.hpp"
#include "korvex/run.hpp"

namespace korvex {

// A part of the sphere of directions that is of one type. Nothing is said of two regions of the
// same type that touch.
struct ClosureRegion {
  std::size_t type = 0;       // index in ClosureMap::types
  double share = 0;           // area over that of the sphere
  Point direction;            // a unit vector well inside, for which the type was decided
  double clearance = 0;       // how far that is from the boundary, in radians
  bool proven = false;        // no other knot is possible there, as KnotIdentity::proven tells
  bool in_doubt = false;      // too thin for double precision: the type is that of a neighbour
  std::size_t crossings = 0;  // left in the simplified diagram
  // Closed polygons of unit vectors, the last joined to the first, whose edges are the shorter arcs
  // of great circles. The region lies to the left, seen from outside. None for the whole sphere.
  // An arc that ends inside the region is there forth and back.
  std::vector<std::vector<Point>> boundaries;
};

struct TypeShare {
  std::string type;
  double share = 0;         // of the sphere
  double proven = 0;        // share of its regions that are proven
  std::size_t regions = 0;  // with this type
};

struct ClosureMap {
  std::vector<ClosureRegion> regions;  // from the largest to the smallest
  std::vector<TypeShare> types;        // from the largest to the smallest share
  // Share of the regions in doubt: no share is wrong by more.
  double doubt = 0;
  // Shares by the crossings that are left in the simplified diagrams.
  std::map<std::size_t, double> crossings;

  const TypeShare& dominant() const { return types.front(); }
};

inline constexpr std::size_t kMostRegions = 10'000'000;  // that a map may be asked for

struct ClosureMapOptions {
  std::size_t most_regions = 100'000;  // at most kMostRegions
  bool boundaries = true;              // false leaves ClosureRegion::boundaries empty
};

// The map of `chain`, points in order along the backbone, in any unit, closed by rays from its ends
// to infinity in one direction u. As u moves, the type changes only where a ray meets the chain:
// where u lies on the path that the chain draws on the unit sphere, seen from its first or its last
// point. Those paths cut the sphere into regions, as many as the paths have crossings or one more.
//
// Nothing when there are more than options.most_regions. Chains in special position (lattices,
// planes, ends on the chain) are answered for a chain within 1e-12 of their extent, or as little
// more as helps; a chain whose last point is its first has one region. The answer depends on
// `chain` alone: run.seed is not used.
//
// Throws Error(kInvalidArgument) for no points, for coordinates that are no numbers below 1e300 and
// for options out of range, Error(kCancelled) when stopped, and std::logic_error where the regions
// do not cover the sphere to within 1e-9 of its area.
//
// About the cost of as many votes as there are regions, and O(n log n) more for n points. May be
// called from many threads at once.
KORVEX_API std::optional<ClosureMap> closure_map(std::span<const Point> chain,
                                                 const ClosureMapOptions& options = {},
                                                 const Run& run = {});

}  // namespace korvex
