// Maps of closures with any identification.
#pragma once

#include <optional>
#include <span>

#include "engine/identify/identify.hpp"
#include "korvex/closure_map.hpp"

namespace korvex {

// As the public function, with another identification of reduced diagrams.
std::optional<ClosureMap> closure_map_with(const Identification& identify,
                                           std::span<const Point> chain,
                                           const ClosureMapOptions& options = {},
                                           const Run& run = {});

}  // namespace korvex
