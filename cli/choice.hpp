// Values that the user chooses by name.
#pragma once

#include <span>
#include <string>
#include <utility>
#include <vector>

namespace korvex::cli {

template <typename Value>
using Choices = std::vector<std::pair<std::string, Value>>;

// Values by the names that the library has for them.
template <typename Value>
Choices<Value> choices_of(std::span<const Value> values) {
  Choices<Value> choices;
  for (const Value value : values) choices.emplace_back(name_of(value), value);
  return choices;
}

// The name of a value, empty when it has none or is not set.
template <typename Target, typename Value>
std::string name_of(const Target& value, const Choices<Value>& choices) {
  for (const auto& [name, candidate] : choices)
    if (candidate == value) return name;
  return {};
}

}  // namespace korvex::cli
