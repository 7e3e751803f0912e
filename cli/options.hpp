// Options that several subcommands take, spelt the same everywhere.
#pragma once

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>
#include <optional>
#include <string>

#include "choice.hpp"

namespace korvex::cli {

// An option whose values are names. The help text lists them; any other is refused.
template <typename Value>
CLI::Option* add_choice(CLI::App& command, const std::string& option, Value& value,
                        const Choices<Value>& choices, const std::string& description) {
  std::string names;
  for (const auto& [name, unused] : choices) names += (names.empty() ? "" : "|") + name;
  const auto find = [&choices](const std::string& text) {
    return std::find_if(choices.begin(), choices.end(),
                        [&text](const auto& choice) { return choice.first == text; });
  };
  const auto assign = [&value, find](const std::string& text) { value = find(text)->second; };
  const auto refuse = [&choices, names, find](const std::string& text) {
    return find(text) != choices.end() ? std::string() : "'" + text + "' is not one of " + names;
  };
  return command.add_option_function<std::string>(option, assign, description)
      ->check(refuse, "")
      ->type_name(names)
      ->default_str(name_of(value, choices));
}

// A check that refuses whole numbers outside `least` to `most`.
CLI::Validator within(long long least, long long most);

// Bytes: a whole number of them, or of the powers of 1024 that the suffixes K, M and G stand for.
std::optional<unsigned long long> parsed_size(const std::string& text);

// --memory, an amount of it.
template <typename Bytes>
CLI::Option* add_memory(CLI::App& command, Bytes& bytes, const std::string& description,
                        const std::string& shown_default) {
  const auto assign = [&bytes](const std::string& text) { bytes = *parsed_size(text); };
  const auto refuse = [](const std::string& text) {
    return parsed_size(text) ? std::string()
                             : "'" + text + "' is not a size such as 500000000, 500M or 2G";
  };
  return command.add_option_function<std::string>("--memory", assign, description)
      ->check(refuse, "")
      ->type_name("SIZE")
      ->default_str(shown_default);
}

CLI::Option* add_trials(CLI::App& command, int& trials, const std::string& description);
CLI::Option* add_seed(CLI::App& command, std::optional<unsigned>& seed);
// The flag that chooses the exported interface; main() acts on it before anything is parsed.
CLI::Option* add_classic_flag(CLI::App& command);
CLI::Option* add_verbose(CLI::App& command, bool& verbose);

inline constexpr const char* kFormatsRead =
    "PDB, mmCIF, GRO, XYZ, LAMMPS text dump, or lines\n'x y z' or 'id x y z', also gzipped; - is "
    "standard\ninput";

}  // namespace korvex::cli
