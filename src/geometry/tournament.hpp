// The smallest of many numbers that change a few at a time.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

namespace korvex {

// A knockout of players 0 to n - 1, fewer than 2^32, whose every match is written down: the one
// with the smallest key wins, of equals the one that `Earlier` puts first. Keys are at least +0 and
// at most the largest number in single precision; players with the key kOut take no part. A change
// costs O(log n).
template <class Earlier>
class Tournament {
 public:
  using Player = std::uint32_t;
  static constexpr double kOut = std::numeric_limits<double>::infinity();

  explicit Tournament(Earlier earlier) : earlier_(std::move(earlier)) {}

  // Begins anew with `count` players, key_of(k) that of player k. O(n).
  template <class KeyOf>
  void assign(std::size_t count, KeyOf key_of) {
    first_leaf_ = std::bit_ceil(std::max<std::size_t>(count, 1));
    levels_ = std::countr_zero(first_leaf_);
    levels_of_block_ = std::min(levels_, kLevelsOfBlock);
    keys_.assign(first_leaf_, kOut);
    matches_.resize(2 * first_leaf_);
    for (std::size_t k = 0; k < count; ++k) keys_[k] = key_of(static_cast<Player>(k));
    for (std::size_t k = 0; k < first_leaf_; ++k)
      matches_[first_leaf_ + k] = entry(static_cast<Player>(k));
    for (std::size_t match = first_leaf_ - 1; match > 0; --match) play(match);
  }

  bool is_over() const { return matches_[1] >= kNobody; }
  Player winner() const { return player_of(matches_[1]); }

  // Gives players other keys; of one that is named twice the last key counts. Several that stand
  // near the last one cost little more than it alone.
  template <std::size_t kCount>
  void set(const std::array<Player, kCount>& players, const std::array<double, kCount>& keys) {
    constexpr std::size_t kLast = kCount - 1;
    const std::size_t last_block = (first_leaf_ + players[kLast]) >> levels_of_block_;
    for (std::size_t i = 0; i < kLast; ++i) {
      const std::size_t block = write(players[i], keys[i], levels_of_block_);
      if (block != last_block) replay(block, levels_ - levels_of_block_);
    }
    write(players[kLast], keys[kLast], levels_);
  }

  void set(Player player, double key) { set(std::array{player}, std::array{key}); }

 private:
  // A player's key in single precision, which keeps the order of what it does not make equal, above
  // the player's number: the smaller entry wins. The bits of numbers from +0 up have their order.
  using Entry = std::uint64_t;

  static constexpr Entry kNobody =
      Entry{std::bit_cast<std::uint32_t>(std::numeric_limits<float>::infinity())} << 32;

  // Changes that meet within so many matches are played to the end together. To look for the match
  // where they meet takes longer than to play on to the block's last.
  static constexpr int kLevelsOfBlock = 4;

  Entry entry(Player player) const {
    return Entry{std::bit_cast<std::uint32_t>(static_cast<float>(keys_[player]))} << 32 | player;
  }

  static Player player_of(Entry entry) { return static_cast<Player>(entry); }

  void play(std::size_t match) {
    matches_[match] = winner_of(matches_[2 * match], matches_[2 * match + 1]);
  }

  // These two play `levels` matches on the way up and give the place of the last.
  std::size_t write(Player player, double key, int levels) {
    keys_[player] = key;
    const std::size_t place = first_leaf_ + player;
    matches_[place] = entry(player);
    return replay(place, levels);
  }

  std::size_t replay(std::size_t place, int levels) {
    Entry* const matches = matches_.data();
    Entry winner = matches[place];
    for (; levels > 0; --levels) {
      winner = winner_of(winner, matches[place ^ 1]);
      matches[place /= 2] = winner;
    }
    return place;
  }

  Entry winner_of(Entry a, Entry b) const {
    const Entry smaller = std::min(a, b);
    if ((a ^ b) >> 32 != 0 || smaller >= kNobody) [[likely]]
      return smaller;
    return precedes(player_of(b), player_of(a)) ? b : a;
  }

  bool precedes(Player a, Player b) const {
    return keys_[a] != keys_[b] ? keys_[a] < keys_[b] : earlier_(a, b);
  }

  Earlier earlier_;
  std::size_t first_leaf_ = 1;
  int levels_ = 0;  // matches to win
  int levels_of_block_ = 0;
  std::vector<double> keys_;
  std::vector<Entry> matches_;  // 1 the last one; those of m are the winners of 2 m and 2 m + 1
};

}  // namespace korvex
