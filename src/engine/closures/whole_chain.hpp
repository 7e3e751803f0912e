// Chains on a grid of whole numbers, and the paths that they draw on the sphere.
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "engine/sphere/arrangement.hpp"
#include "korvex/geometry.hpp"

namespace korvex {

// The chain scaled so that its coordinates are whole numbers below 2^50 in size, counted from the
// first point: differences of any two points are exact in doubles. Points that repeat the one
// before are left out. The grid is 2e-15 to 4e-15 of the extent wide.
std::vector<Point> whole_chain(std::span<const Point> chain);

// The path that the other points draw on the sphere about the first point of a whole chain, as the
// chain runs; nothing where it passes through that point again. A ray from the first point meets
// the bond that gave an arc where its direction lies on that arc. The weights of arcs are the
// distances of their bonds from the first point, as parts of the extent.
std::optional<SpherePath> path_seen_from_first(std::span<const Point> chain);

// The same as seen from the last point: again as the chain runs.
std::optional<SpherePath> path_seen_from_last(std::span<const Point> chain);

}  // namespace korvex
