// Knot types by number, in the order of their being found.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace korvex {

class TypeNumbers {
 public:
  static constexpr std::int32_t kUnknot = 0;

  // That of a name, a new one where it has none.
  std::int32_t of(const std::string& name) {
    const auto next = static_cast<std::int32_t>(names_.size());
    const auto [known, is_new] = numbers_.try_emplace(name, next);
    if (is_new) names_.push_back(name);
    return known->second;
  }

  // By number.
  const std::vector<std::string>& names() const { return names_; }

 private:
  std::vector<std::string> names_{"0_1"};
  std::unordered_map<std::string, std::int32_t> numbers_{{"0_1", kUnknot}};
};

}  // namespace korvex
