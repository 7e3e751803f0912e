// Closed braids from the fuzzer's bytes: every knot is one (J. W. Alexander, 1923), and moves that
// A. A. Markov (1935) found lead from one of its braids to all others.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <numeric>
#include <utility>
#include <vector>

#include "bytes.hpp"
#include "korvex/diagram.hpp"
#include "support/diagrams.hpp"

namespace fuzz {

struct Braid {
  int strands = 1;
  std::vector<int> word;  // letter i > 0: a positive crossing of places i and i+1; -i its inverse

  korvex::Diagram closed() const {
    return word.empty() ? korvex::Diagram()
                        : korvex::Diagram::of_gauss_code(support::closed_braid(strands, word));
  }
};

// So many letters on so many strands at most, and then as many as it takes to make one curve.
inline Braid braid(Bytes& bytes, int most_strands, std::size_t most_letters) {
  Braid braid;
  braid.strands = 2 + bytes.take<std::uint8_t>() % (most_strands - 1);
  const std::size_t letters = bytes.take<std::uint8_t>() % (most_letters + 1);
  std::vector<int> place(static_cast<std::size_t>(braid.strands));
  std::iota(place.begin(), place.end(), 0);
  while (braid.word.size() < letters && bytes.left() > 0) {
    const int byte = bytes.take<std::uint8_t>();
    const int left = byte / 2 % (braid.strands - 1);
    braid.word.push_back(byte % 2 == 0 ? left + 1 : -left - 1);
    std::swap(place[static_cast<std::size_t>(left)], place[static_cast<std::size_t>(left) + 1]);
  }
  // A crossing of two curves makes them one.
  const auto on_one_curve = [&](std::size_t a, std::size_t b) {
    for (std::size_t k = static_cast<std::size_t>(place[a]); k != a;
         k = static_cast<std::size_t>(place[k]))
      if (k == b) return true;
    return false;
  };
  for (std::size_t left = 0; left + 1 < place.size(); ++left) {
    if (on_one_curve(left, left + 1)) continue;
    const int letter = static_cast<int>(left) + 1;
    braid.word.push_back(bytes.take<std::uint8_t>() % 2 == 0 ? letter : -letter);
    std::swap(place[left], place[left + 1]);
  }
  return braid;
}

// Another braid of the same knot, with at most two letters more.
inline Braid moved(Braid braid, Bytes& bytes) {
  const int byte = bytes.take<std::uint8_t>();
  const int letter = byte / 4 % 2 == 0 ? 1 : -1;
  switch (byte % 4) {
    case 0:  // a strand more
      braid.word.push_back(letter * braid.strands++);
      break;
    case 1: {  // conjugated
      const int left = 1 + byte / 8 % (braid.strands - 1);
      braid.word.insert(braid.word.begin(), letter * left);
      braid.word.push_back(-letter * left);
      break;
    }
    case 2:  // turned
      if (braid.word.size() > 1)
        std::rotate(braid.word.begin(), braid.word.begin() + 1, braid.word.end());
      break;
    default:  // a b a = b a b, wherever it stands
      for (std::size_t k = 0; k + 2 < braid.word.size(); ++k) {
        int* const w = braid.word.data() + k;
        if (w[0] != w[2] || w[0] * w[1] < 0 || std::abs(w[0] - w[1]) != 1) continue;
        std::swap(w[0], w[1]);
        w[2] = w[0];
      }
  }
  return braid;
}

}  // namespace fuzz
