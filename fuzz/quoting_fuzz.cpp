// Names from outside: whatever the bytes, what is quoted cannot do harm where it is written, and
// cells and XML can be read back.
#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include "korvex/quoting.hpp"
#include "points.hpp"

namespace {

using fuzz::require;

bool is_control(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte < 0x20 || byte == 0x7f;
}

void require_one_harmless_line(const std::string& text) {
  require(std::none_of(text.begin(), text.end(), is_control));
}

// What a cell stands for, by the rules that the header tells.
std::string read_back(std::string_view cell) {
  std::string text;
  for (std::size_t k = 0; k < cell.size(); ++k) {
    if (cell[k] != '\\') {
      text += cell[k];
      continue;
    }
    require(++k < cell.size());
    const std::size_t escape = std::string_view("tnr").find(cell[k]);
    if (escape != std::string_view::npos) {
      text += "\t\n\r"[escape];
    } else if (cell[k] == 'x') {
      require(k + 2 < cell.size());
      text += static_cast<char>(std::stoi(std::string(cell.substr(k + 1, 2)), nullptr, 16));
      k += 2;
    } else {
      text += cell[k];
    }
  }
  return text;
}

std::string without_entities(std::string text) {
  for (const auto& [entity, character] : {std::pair<std::string_view, char>{"&lt;", '<'},
                                          {"&gt;", '>'},
                                          {"&quot;", '"'},
                                          {"&#39;", '\''},
                                          {"&apos;", '\''},
                                          {"&amp;", '&'}})
    for (std::size_t at = 0; (at = text.find(entity, at)) != std::string::npos; ++at)
      text.replace(at, entity.size(), 1, character);
  return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const std::string line = korvex::quoted_for_terminal(text);
  require_one_harmless_line(line);
  require(korvex::quoted_for_terminal(line) == line);
  const std::string cell = korvex::quoted_for_tsv(text);
  require_one_harmless_line(cell);
  require(cell.empty() || std::string_view("=+-@").find(cell.front()) == std::string_view::npos);
  require(read_back(cell) == text);
  const std::string xml = korvex::quoted_for_xml(text);
  require(xml.find_first_of("<>\"'") == std::string::npos);
  require(without_entities(xml) == line);
  return 0;
}
