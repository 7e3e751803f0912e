// The type of each region of a map of closures, decided in one direction inside it.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "engine/identify/identify.hpp"
#include "engine/identify/identity_table.hpp"
#include "engine/sphere/arrangement.hpp"
#include "engine/sphere/inner_point.hpp"
#include "korvex/geometry.hpp"
#include "korvex/run.hpp"

namespace korvex {

struct RegionType {
  DiagramType type;
  Point direction;
  bool in_doubt = false;  // too thin: type and direction are those of a neighbour
};

// The types of all faces of the arrangement that `chain` draws, `inner` being the best point inside
// of each. Nothing where a face that is not thin is seen degenerately from all its points: the
// chain touches itself.
std::optional<std::vector<RegionType>> region_types(
    std::span<const Point> chain, const Arrangement& arrangement,
    std::span<const std::optional<InnerPoint>> inner, const Identification& identify,
    const Run& run);

}  // namespace korvex
