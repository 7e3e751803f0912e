#include "engine/fingerprint/type_names.hpp"

#include <algorithm>
#include <charconv>

namespace korvex {
namespace {

std::vector<std::string_view> split(std::string_view text, char separator) {
  std::vector<std::string_view> parts;
  while (true) {
    const std::size_t end = text.find(separator);
    parts.push_back(text.substr(0, end));
    if (end == std::string_view::npos) return parts;
    text.remove_prefix(end + 1);
  }
}

std::optional<int> crossings_of_prime(std::string_view name) {
  if (!name.empty() && (name.front() == '+' || name.front() == '-')) name.remove_prefix(1);
  int crossings = 0;
  const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), crossings);
  if (error != std::errc() || end == name.data() + name.size()) return std::nullopt;
  if (*end != '_' && *end != 'a' && *end != 'n') return std::nullopt;
  return crossings;
}

}  // namespace

std::vector<std::string> factors_of(std::string_view type) {
  if (type == "0_1") return {};
  const auto parts = split(type, '#');
  return {parts.begin(), parts.end()};
}

std::optional<int> crossings_of(std::string_view type) {
  std::optional<int> fewest;
  for (const std::string_view choice : split(type, '|')) {
    int crossings = 0;
    for (const std::string_view factor : split(choice, '#')) {
      const auto own = crossings_of_prime(factor);
      if (!own) return std::nullopt;
      crossings += *own;
    }
    fewest = std::min(fewest.value_or(crossings), crossings);
  }
  return fewest;
}

}  // namespace korvex
