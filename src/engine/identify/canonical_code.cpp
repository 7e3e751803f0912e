#include "engine/identify/canonical_code.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace korvex {
namespace {

using Words = std::vector<std::uint32_t>;

// How far on the other passage is, which side passes over, and the sign.
std::uint32_t word_of(const GaussCode& code, std::size_t place) {
  const Passage& passage = code[place];
  const auto mate = static_cast<std::size_t>(passage.mate);
  const std::size_t ahead = mate > place ? mate - place : mate + code.size() - place;
  return static_cast<std::uint32_t>(ahead) << 2 | static_cast<std::uint32_t>(passage.over) << 1 |
         static_cast<std::uint32_t>(passage.positive);
}

Words words_of(const GaussCode& code) {
  Words words;
  words.reserve(code.size());
  for (std::size_t k = 0; k < code.size(); ++k) words.push_back(word_of(code, k));
  return words;
}

// Appends `size` words, word_at(0), word_at(1), ..., from the lowest byte up.
template <int kBytes, typename WordAt>
void append_bytes(std::size_t size, const WordAt& word_at, std::string& text) {
  const std::size_t begin = text.size();
  text.resize(begin + size * kBytes);
  char* to = text.data() + begin;
  for (std::size_t k = 0; k < size; ++k) {
    const std::uint32_t word = word_at(k);
    for (int byte = 0; byte < kBytes; ++byte) *to++ = static_cast<char>(word >> (8 * byte) & 0xff);
  }
}

template <typename WordAt>
void append_words(std::size_t size, const WordAt& word_at, std::string& text) {
  constexpr std::size_t kTooLongForTwo = 0x2000;
  size < kTooLongForTwo ? append_bytes<2>(size, word_at, text)
                        : append_bytes<4>(size, word_at, text);
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

void write_key(const GaussCode& code, KeyOf what, std::string& key) {
  key.assign(1, static_cast<char>(what));
  append_words(
      code.size(), [&](std::size_t k) { return word_of(code, k); }, key);
}

std::string canonical_code(const GaussCode& closed) {
  const Words words = canonical_words(closed);
  std::string code;
  append_words(
      words.size(), [&](std::size_t k) { return words[k]; }, code);
  return code;
}

GaussCode canonical_diagram(const GaussCode& closed) {
  const Words words = canonical_words(closed);
  GaussCode code;
  code.reserve(words.size());
  for (const std::uint32_t word : words) {
    const std::size_t mate = (code.size() + (word >> 2)) % words.size();
    code.push_back({static_cast<std::int32_t>(mate), (word & 2) != 0, (word & 1) != 0});
  }
  return code;
}

}  // namespace korvex
