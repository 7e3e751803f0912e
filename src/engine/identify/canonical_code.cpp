#include "engine/identify/canonical_code.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace korvex {
namespace {

using Words = std::vector<std::uint32_t>;

// How far on the other passage is, which side passes over, and the sign.
Words words_of(const GaussCode& code) {
  const auto size = static_cast<std::int32_t>(code.size());
  Words words;
  words.reserve(code.size());
  for (std::int32_t k = 0; k < size; ++k) {
    const Passage& passage = code[static_cast<std::size_t>(k)];
    const std::int32_t ahead = passage.mate > k ? passage.mate - k : passage.mate - k + size;
    words.push_back(static_cast<std::uint32_t>(ahead) << 2 |
                    static_cast<std::uint32_t>(passage.over) << 1 |
                    static_cast<std::uint32_t>(passage.positive));
  }
  return words;
}

// Against the sense of the curve the other passage is as far on as it was behind.
Words reversed(const Words& words) {
  const auto size = static_cast<std::uint32_t>(words.size());
  Words result(words.rbegin(), words.rend());
  for (std::uint32_t& word : result) word = (size - (word >> 2)) << 2 | (word & 3);
  return result;
}

void turn_to_least(Words& words) {
  const std::size_t size = words.size();
  std::size_t best = 0;
  for (std::size_t start = 1; start < size; ++start) {
    for (std::size_t k = 0; k < size; ++k) {
      const std::uint32_t a = words[(start + k) % size];
      const std::uint32_t b = words[(best + k) % size];
      if (a == b) continue;
      if (a < b) best = start;
      break;
    }
  }
  std::rotate(words.begin(), words.begin() + static_cast<std::ptrdiff_t>(best), words.end());
}

Words canonical_words(const GaussCode& closed) {
  Words along = words_of(closed);
  Words against = reversed(along);
  turn_to_least(along);
  turn_to_least(against);
  return std::min(along, against);
}

}  // namespace

std::string canonical_code(const GaussCode& closed) {
  const int bytes = closed.size() < 0x2000 ? 2 : 4;
  std::string code;
  for (const std::uint32_t word : canonical_words(closed))
    for (int k = 0; k < bytes; ++k) code += static_cast<char>(word >> (8 * k) & 0xff);
  return code;
}

GaussCode canonical_diagram(const GaussCode& closed) {
  const Words words = canonical_words(closed);
  GaussCode code;
  code.reserve(words.size());
  for (const std::uint32_t word : words) {
    const std::size_t mate = (code.size() + (word >> 2)) % words.size();
    code.push_back({0, static_cast<std::int32_t>(mate), (word & 2) != 0, (word & 1) != 0});
  }
  return code;
}

}  // namespace korvex
