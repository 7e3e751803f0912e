// Values that the user chooses by name.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace korvex::cli {

template <typename Value>
using Choices = std::vector<std::pair<std::string, Value>>;

// The name of a value, empty when it has none.
template <typename Value>
std::string name_of(Value value, const Choices<Value>& choices) {
  for (const auto& [name, candidate] : choices) {
    if (candidate == value) return name;
  }
  return {};
}

}  // namespace korvex::cli
