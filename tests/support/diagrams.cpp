#include "support/diagrams.hpp"

#include <cstdlib>
#include <stdexcept>

namespace support {
namespace {

void pass(std::string& code, bool over, int crossing, bool positive) {
  code += over ? 'O' : 'U';
  code += std::to_string(crossing);
  code += positive ? '+' : '-';
}

}  // namespace

std::string odd_pretzel(int p, int q, int r) {
  const int twists[3] = {p, q, r};
  int first[3] = {1, 1 + std::abs(p), 1 + std::abs(p) + std::abs(q)};
  std::string code;
  // The curve runs down one column and up the next, twice round: each column once either way.
  for (int leg = 0; leg < 6; ++leg) {
    const int column = leg % 3;
    const bool down = leg % 2 == 0;
    const int count = std::abs(twists[column]);
    const bool positive = twists[column] > 0;
    for (int k = 0; k < count; ++k) {
      const int row = down ? k : count - 1 - k;
      // Where the falling diagonal passes over, a strand going down is on it in even rows, and one
      // going up in odd ones.
      const bool falling = down == (row % 2 == 0);
      pass(code, falling == positive, first[column] + row, positive);
    }
  }
  return code;
}

std::string closed_braid(int strands, const std::vector<int>& word) {
  std::string code;
  int place = 1;
  int rounds = 0;
  do {
    for (std::size_t k = 0; k < word.size(); ++k) {
      const int left = std::abs(word[k]);
      if (place != left && place != left + 1) continue;
      const bool rightwards = place == left;
      pass(code, rightwards == (word[k] > 0), static_cast<int>(k) + 1, word[k] > 0);
      place += rightwards ? 1 : -1;
    }
    ++rounds;
  } while (place != 1);
  if (rounds != strands) throw std::runtime_error("the braid closes to a link of several curves");
  return code;
}

std::string torus_knot_code(int p, int q) {
  std::vector<int> word;
  for (int turn = 0; turn < q; ++turn)
    for (int place = 1; place < p; ++place) word.push_back(place);
  return closed_braid(p, word);
}

}  // namespace support
