#include "korvex/quoting.hpp"

#include <array>
#include <cstddef>
#include <cstdint>

namespace korvex {
namespace {

struct Character {
  std::size_t bytes = 0;  // 0 for what is no UTF-8
  std::uint32_t code = 0;
};

bool continues(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; }

// The character that `text`, which is not empty, begins with (RFC 3629).
Character first_character(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text.front());
  if (lead < 0x80) return {1, lead};
  const std::size_t bytes = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || text.size() < bytes) return {};
  std::uint32_t code = lead & (0x7FU >> bytes);
  for (std::size_t k = 1; k < bytes; ++k) {
    if (!continues(text[k])) return {};
    code = code << 6 | (static_cast<unsigned char>(text[k]) & 0x3FU);
  }
  constexpr std::array<std::uint32_t, 5> kLeast{0, 0, 0x80, 0x800, 0x10000};
  const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
  if (code < kLeast[bytes] || code > 0x10FFFF || surrogate) return {};
  return {bytes, code};
}

// Controls (C0, DEL, C1), separators of lines and paragraphs, and marks, embeddings, overrides and
// isolates of the direction of writing.
bool is_harmful(std::uint32_t code) {
  return code < 0x20 || (code >= 0x7F && code < 0xA0) || code == 0x61C || code == 0x200E ||
         code == 0x200F || (code >= 0x2028 && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
}

void append_escaped(std::string& result, char byte) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  const auto value = static_cast<unsigned char>(byte);
  switch (byte) {
    case '\t':
      result += "\\t";
      break;
    case '\n':
      result += "\\n";
      break;
    case '\r':
      result += "\\r";
      break;
    default:
      result += "\\x";
      result += kDigits[value >> 4U];
      result += kDigits[value & 0xFU];
  }
}

}  // namespace

std::string quoted_for_terminal(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  while (!text.empty()) {
    const Character next = first_character(text);
    if (next.bytes > 0 && !is_harmful(next.code)) {
      result += text.substr(0, next.bytes);
      text.remove_prefix(next.bytes);
      continue;
    }
    for (std::size_t k = next.bytes > 0 ? next.bytes : 1; k > 0; --k) {
      append_escaped(result, text.front());
      text.remove_prefix(1);
    }
  }
  return result;
}

std::string quoted_for_tsv(std::string_view text) {
  constexpr std::string_view kStartsOfFormulas = "=+-@";
  std::string doubled;
  doubled.reserve(text.size() + 1);
  if (!text.empty() && kStartsOfFormulas.find(text.front()) != std::string_view::npos)
    doubled += '\\';
  for (const char byte : text) {
    if (byte == '\\') doubled += '\\';
    doubled += byte;
  }
  return quoted_for_terminal(doubled);
}

std::string quoted_for_xml(std::string_view text) {
  std::string result;
  for (const char byte : quoted_for_terminal(text)) {
    switch (byte) {
      case '&':
        result += "&amp;";
        break;
      case '<':
        result += "&lt;";
        break;
      case '>':
        result += "&gt;";
        break;
      case '"':
        result += "&quot;";
        break;
      case '\'':
        result += "&#39;";
        break;
      default:
        result += byte;
    }
  }
  return result;
}

}  // namespace korvex
