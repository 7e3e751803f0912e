// Votes with any identification.
#pragma once

#include <cstddef>
#include <span>

#include "engine/identify/identify.hpp"
#include "korvex/votes.hpp"

namespace korvex {

// How votes share the reduction of their chain: it costs or saves time and changes no vote, but may
// change how many crossings are left in a diagram that is not as small as it could be.
struct Sharing {
  // Directions that one reduction serves. Those of a batch are voted on in turn.
  std::size_t batch = 25;
  // Batches are of directions that lie close together, and so many of these, the closest, share a
  // further reduction; 0: batches are of those that follow one another.
  std::size_t closest = 0;
  // Up to so many directions a chain of so many points is reduced once for all of them before it is
  // for each batch: worth its time where that leaves the batches little to do.
  std::size_t most_directions = 400;
  std::size_t fewest_points = 600;
};

// Takes the least time where nobody asks what is left of the diagrams.
inline constexpr Sharing kCloseSharing{.closest = 5, .fewest_points = 50};

// As the public function, with another identification of diagrams.
Votes vote_with(const Identification& identify, std::span<const Point> chain,
                const VoteOptions& options, const Run& run, const Sharing& sharing = {});

// As the public function with kCloseSharing.
Votes vote_closely(std::span<const Point> chain, const VoteOptions& options, const Run& run);

}  // namespace korvex
