// Arrays as files of a NumPy archive.
#pragma once

#include <algorithm>
#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

namespace korvex::npz {

// The file format of one array (NumPy Enhancement Proposal 1, version 1.0).
inline std::string array_file(const std::string& type, const std::string& shape,
                              const std::string& content) {
  constexpr std::size_t kAlignment = 64;
  constexpr std::size_t kPreamble = 10;
  std::string head =
      "{'descr': '" + type + "', 'fortran_order': False, 'shape': (" + shape + "), }";
  while ((kPreamble + head.size() + 1) % kAlignment != 0) head += ' ';
  head += '\n';
  std::string file = "\x93NUMPY";
  file += '\1';
  file += '\0';
  file += static_cast<char>(head.size() & 0xff);
  file += static_cast<char>(head.size() >> 8 & 0xff);
  return file + head + content;
}

template <typename Number>
std::string type_code() {
  const char kind = std::is_floating_point_v<Number> ? 'f' : std::is_signed_v<Number> ? 'i' : 'u';
  std::string code = "<";
  code += kind;
  code += std::to_string(sizeof(Number));
  return code;
}

// Little-endian, as every platform is that the project builds on.
template <typename Number>
std::string numbers(const std::vector<Number>& values, const std::string& shape) {
  std::string content(values.size() * sizeof(Number), '\0');
  if (!values.empty()) std::memcpy(content.data(), values.data(), content.size());
  return array_file(type_code<Number>(), shape, content);
}

template <typename Number>
std::string numbers(const std::vector<Number>& values) {
  return numbers(values, std::to_string(values.size()) + ",");
}

// Four bytes a character; the texts are ASCII.
inline std::string texts(const std::vector<std::string>& values) {
  std::size_t width = 1;
  for (const std::string& text : values) width = std::max(width, text.size());
  std::string content(values.size() * width * 4, '\0');
  for (std::size_t row = 0; row < values.size(); ++row)
    for (std::size_t k = 0; k < values[row].size(); ++k)
      content[(row * width + k) * 4] = values[row][k];
  return array_file("<U" + std::to_string(width), std::to_string(values.size()) + ",", content);
}

}  // namespace korvex::npz
