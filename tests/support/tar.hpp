// Archives that a test spells out.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace support {

using TarFiles = std::vector<std::pair<std::string, std::string>>;

inline constexpr std::size_t kTarBlock = 512;

// A block of the form ustar (POSIX.1-1988). `kind`: '0' a file, '2' a symbolic link to `target`.
inline std::string tar_head(std::string_view name, std::size_t size, char kind = '0',
                            std::string_view target = {}) {
  std::string block(kTarBlock, '\0');
  const auto put = [&block](std::size_t at, std::string_view text) {
    block.replace(at, text.size(), text);
  };
  const auto octal = [](std::size_t number, int digits) {
    char text[24];
    std::snprintf(text, sizeof text, "%0*zo", digits, number);
    return std::string(text);
  };
  put(0, name.substr(0, 99));
  put(100, "0000644");
  put(108, "0000000");
  put(116, "0000000");
  put(124, octal(size, 11));
  put(136, "00000000000");
  put(148, "        ");
  block[156] = kind;
  put(157, target);
  put(257, std::string_view("ustar\00000", 8));
  std::size_t sum = 0;
  for (const char c : block) sum += static_cast<unsigned char>(c);
  put(148, octal(sum, 6) + '\0');
  return block;
}

inline std::string tar_of(const TarFiles& files) {
  std::string archive;
  for (const auto& [name, content] : files) {
    archive += tar_head(name, content.size()) + content;
    archive.resize((archive.size() + kTarBlock - 1) / kTarBlock * kTarBlock);
  }
  return archive + std::string(2 * kTarBlock, '\0');
}

}  // namespace support
