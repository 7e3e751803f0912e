// Votes with any identification.
#pragma once

#include <span>

#include "engine/identify/code_types.hpp"
#include "korvex/votes.hpp"

namespace korvex {

// As the public function, with another identification of reduced diagrams.
Votes vote_with(const Identification& identify, std::span<const Point> chain,
                const VoteOptions& options, const Run& run);

}  // namespace korvex
