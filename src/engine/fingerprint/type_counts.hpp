// How often each knot type was found in each sub-chain, in memory that grows with the sub-chains
// that are knotted.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "engine/fingerprint/classes.hpp"

namespace korvex {

// Counts by type, a number from 0, and sub-chain, a pair of stations. Those of a type are kept in
// square tiles, of which only the touched ones exist.
class TypeCounts {
 public:
  explicit TypeCounts(std::size_t stations) : side_((stations + kTile - 1) / kTile) {}

  // One more for every sub-chain that begins in `begins` and ends in `ends`.
  void add(std::int32_t type, Stations begins, Stations ends);
  // All that was added to the other, under other numbers: `renamed` holds a number for each of its.
  void add(const TypeCounts& other, const std::vector<std::int32_t>& renamed);

  std::uint32_t count(std::size_t type, std::size_t begin, std::size_t end) const {
    if (type >= tiles_.size()) return 0;
    const auto& tile = tiles_[type][begin / kTile * side_ + end / kTile];
    return tile ? (*tile)[begin % kTile * kTile + end % kTile] : 0;
  }

  // Puts the sums of types 1, 2, ... under type 0.
  void sum_up();

  // Of all sub-chains together.
  std::uint64_t total(std::size_t type) const;

  // Of memory that the counts take.
  std::size_t bytes() const { return bytes_; }

 private:
  static constexpr std::size_t kTile = 64;
  using Tile = std::array<std::uint32_t, kTile * kTile>;
  using Tiles = std::vector<std::unique_ptr<Tile>>;

  Tiles& tiles_of(std::size_t type);
  Tile& existing(std::unique_ptr<Tile>& tile);

  std::size_t side_;          // tiles along one side of the square of sub-chains
  std::vector<Tiles> tiles_;  // by type, then row by row
  std::size_t bytes_ = 0;
};

}  // namespace korvex
