// The smallest of many numbers that change one at a time.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

namespace korvex {

// A knockout of players 0 to n - 1 whose every match is written down: the one with the smallest key
// wins, of equals the one that `Earlier` puts first. Keys are at least +0; players with the key
// kOut take no part. A change costs O(log n), and less where it changes few matches.
template <class Earlier>
class Tournament {
 public:
  using Player = std::uint32_t;
  static constexpr double kOut = std::numeric_limits<double>::infinity();

  explicit Tournament(Earlier earlier) : earlier_(std::move(earlier)) {}

  // Begins anew. O(n).
  void assign(const std::vector<double>& keys) {
    first_leaf_ = std::bit_ceil(keys.size() + (keys.empty() ? 1 : 0));
    matches_.assign(2 * first_leaf_, {bits_of(kOut), 0});
    for (std::size_t k = 0; k < keys.size(); ++k) matches_[first_leaf_ + k].key = bits_of(keys[k]);
    for (std::size_t k = 0; k < first_leaf_; ++k) matches_[first_leaf_ + k].player = k;
    for (std::size_t m = first_leaf_ - 1; m > 0; --m) play(m);
  }

  bool is_over() const { return matches_[1].key == bits_of(kOut); }
  Player winner() const { return static_cast<Player>(matches_[1].player); }

  // Gives a player another key.
  void set(Player player, double key) { replay(player, key, first_leaf_ + first_leaf_); }

  // Gives a player that is not the winner another key. The matches that the winner won wait for
  // drop_winner(), which must follow.
  void set_beside_winner(Player player, double key) { replay(player, key, matches_[1].player); }

  // Puts the winner out.
  void drop_winner() {
    std::size_t match = first_leaf_ + matches_[1].player;
    matches_[match].key = bits_of(kOut);
    for (match /= 2; match > 0; match /= 2) play(match);
  }

 private:
  // The bits of numbers from +0 up have the order of the numbers.
  struct Match {
    std::uint64_t key;
    std::uint64_t player;
  };

  static constexpr std::uint64_t bits_of(double key) { return std::bit_cast<std::uint64_t>(key); }

  void replay(Player player, double key, std::uint64_t until_won_by) {
    std::size_t match = first_leaf_ + player;
    matches_[match].key = bits_of(key);
    for (match /= 2; match > 0; match /= 2) {
      const std::uint64_t winner = matches_[match].player;
      if (winner == until_won_by) return;
      play(match);
      if (matches_[match].player == winner && winner != player) return;
    }
  }

  // Scalars, not whole records, so that what was just written is at hand at once.
  void play(std::size_t match) {
    const Match& a = matches_[2 * match];
    const Match& b = matches_[2 * match + 1];
    const std::uint64_t a_key = a.key, b_key = b.key;
    const std::uint64_t a_player = a.player, b_player = b.player;
    bool second = b_key < a_key;
    if (a_key == b_key && a_key != bits_of(kOut))
      second = earlier_(static_cast<Player>(b_player), static_cast<Player>(a_player));
    matches_[match].key = second ? b_key : a_key;
    matches_[match].player = second ? b_player : a_player;
  }

  Earlier earlier_;
  std::size_t first_leaf_ = 1;
  std::vector<Match> matches_;  // 1 the last one; those of m are the winners of 2 m and 2 m + 1
};

}  // namespace korvex
