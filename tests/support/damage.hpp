// Files that come with the project, and what may happen to them.
#pragma once

#include <algorithm>
#include <cstddef>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <string_view>

#include "support/data_file.hpp"

namespace support {

// The bytes of a file, whose name is relative to data/.
inline std::string content(const std::string& file) {
  std::ifstream stream(data_file(file), std::ios::binary);
  std::ostringstream text;
  text << stream.rdbuf();
  return text.str();
}

// The first lines of a text, at most `size` bytes.
inline std::string head(const std::string& text, std::size_t size) {
  return text.size() <= size ? text : text.substr(0, text.rfind('\n', size) + 1);
}

// Changes one to four places: other bytes, digits and signs, removed and repeated stretches.
inline std::string damaged(std::string text, std::mt19937& random) {
  const auto below = [&random](std::size_t bound) {
    return std::uniform_int_distribution<std::size_t>(0, bound - 1)(random);
  };
  constexpr std::string_view kLikely = "0123456789+-.eEinfa \t\n\r#'\";_?*";
  for (std::size_t change = below(4) + 1; change > 0 && !text.empty(); --change) {
    const std::size_t place = below(text.size());
    const std::size_t length = std::min(below(90) + 1, text.size() - place);
    switch (below(5)) {
      case 0:
        text[place] = static_cast<char>(below(256));
        break;
      case 1:
        text[place] = kLikely[below(kLikely.size())];
        break;
      case 2:
        text.erase(place, length);
        break;
      case 3:
        text.insert(place, text.substr(place, length));
        break;
      default:
        text.insert(place, 1, kLikely[below(kLikely.size())]);
    }
  }
  return text;
}

}  // namespace support
