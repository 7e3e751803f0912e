// Options that several subcommands take, spelt the same everywhere.
#pragma once

#include <algorithm>
#include <charconv>
#include <functional>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include "choice.hpp"
#include "command_line.hpp"

namespace korvex::cli {

// An option whose values are names. The help text lists them; any other is refused.
template <typename Target, typename Value>
Option choice(const std::string& names, Target& value, const Choices<Value>& choices,
              const std::string& help) {
  std::string listed;
  for (const auto& [name, unused] : choices) listed += (listed.empty() ? "" : "|") + name;
  const auto find = [&choices](const std::string& text) {
    return std::find_if(choices.begin(), choices.end(),
                        [&text](const auto& choice) { return choice.first == text; });
  };
  const auto refuse = [&choices, listed, find](const std::string& text) {
    return find(text) != choices.end() ? std::string() : "'" + text + "' is not one of " + listed;
  };
  return {names,
          help,
          [&value, find](const std::string& text) { value = find(text)->second; },
          listed,
          name_of(value, choices),
          refuse};
}

// As the help shows a number that is a default.
std::string shown(double number);

// An option that is a number. `refuse` takes none but decimal texts of what `number` holds.
template <typename Number>
Option number(const std::string& names, Number& number, const std::string& value,
              const std::string& help, Check refuse) {
  std::string shown_default;
  if constexpr (std::is_integral_v<Number>)
    shown_default = std::to_string(number);
  else
    shown_default = shown(number);
  const auto take = [&number](const std::string& text) {
    std::from_chars(text.data(), text.data() + text.size(), number);
  };
  return {names, help, take, value, shown_default, std::move(refuse)};
}

// A check that refuses whole numbers outside `least` to `most`.
Check within(long long least, long long most);

// Bytes: a whole number of them, or of the powers of 1024 that the suffixes K, M and G stand for.
std::optional<unsigned long long> parsed_size(const std::string& text);

// --memory, an amount of it.
template <typename Bytes>
Option memory(Bytes& bytes, const std::string& help, const std::string& shown_default) {
  const auto refuse = [](const std::string& text) {
    return parsed_size(text) ? std::string()
                             : "'" + text + "' is not a size such as 500000000, 500M or 2G";
  };
  return {
      "--memory", help,          [&bytes](const std::string& text) { bytes = *parsed_size(text); },
      "SIZE",     shown_default, refuse};
}

// An option with a value that does something more where it is given.
Option noting(Option option, const std::function<void()>& note);

// The files that a subcommand reads; the same, and folders, archives and lists; or the one.
Option files(std::vector<std::string>& names);
Option sources(std::vector<std::string>& names);
Option file(std::string& name);

// -o, --output, for what is told of.
Option output(std::string& name, const std::string& what);

// The flag that chooses the exported interface; main() acts on it before anything is parsed.
Option classic_flag();

}  // namespace korvex::cli
