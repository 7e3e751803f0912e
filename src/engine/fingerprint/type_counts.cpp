#include "engine/fingerprint/type_counts.hpp"

#include <algorithm>
#include <numeric>

namespace korvex {

TypeCounts::Tiles& TypeCounts::tiles_of(std::size_t type) {
  while (tiles_.size() <= type) {
    tiles_.emplace_back(side_ * side_);
    bytes_ += sizeof(Tiles) + side_ * side_ * sizeof(Tiles::value_type);
  }
  return tiles_[type];
}

TypeCounts::Tile& TypeCounts::existing(std::unique_ptr<Tile>& tile) {
  if (!tile) {
    tile = std::make_unique<Tile>();
    bytes_ += sizeof(Tile);
  }
  return *tile;
}

void TypeCounts::add(std::int32_t type, Stations begins, Stations ends) {
  Tiles& tiles = tiles_of(static_cast<std::size_t>(type));
  const auto last_begin = static_cast<std::size_t>(begins.last);
  const auto last_end = static_cast<std::size_t>(ends.last);
  for (auto begin = static_cast<std::size_t>(begins.first); begin <= last_begin; ++begin) {
    for (auto end = static_cast<std::size_t>(ends.first); end <= last_end;) {
      Tile& tile = existing(tiles[begin / kTile * side_ + end / kTile]);
      const std::size_t stop = std::min(last_end + 1, (end / kTile + 1) * kTile);
      std::uint32_t* row = tile.data() + begin % kTile * kTile;
      for (; end < stop; ++end) ++row[end % kTile];
    }
  }
}

void TypeCounts::add(const TypeCounts& other, const std::vector<std::int32_t>& renamed) {
  for (std::size_t type = 0; type < other.tiles_.size(); ++type) {
    Tiles& tiles = tiles_of(static_cast<std::size_t>(renamed[type]));
    for (std::size_t k = 0; k < tiles.size(); ++k) {
      const auto& theirs = other.tiles_[type][k];
      if (!theirs) continue;
      Tile& ours = existing(tiles[k]);
      for (std::size_t cell = 0; cell < theirs->size(); ++cell) ours[cell] += (*theirs)[cell];
    }
  }
}

void TypeCounts::sum_up() {
  tiles_of(0) = Tiles(side_ * side_);
  for (std::size_t type = 1; type < tiles_.size(); ++type) {
    for (std::size_t k = 0; k < tiles_[type].size(); ++k) {
      if (!tiles_[type][k]) continue;
      Tile& sums = existing(tiles_[0][k]);
      for (std::size_t cell = 0; cell < sums.size(); ++cell) sums[cell] += (*tiles_[type][k])[cell];
    }
  }
}

std::uint64_t TypeCounts::total(std::size_t type) const {
  std::uint64_t sum = 0;
  if (type >= tiles_.size()) return sum;
  for (const auto& tile : tiles_[type])
    if (tile) sum = std::accumulate(tile->begin(), tile->end(), sum);
  return sum;
}

}  // namespace korvex
