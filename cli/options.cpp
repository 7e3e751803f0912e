#include "options.hpp"

#include <charconv>
#include <limits>

namespace korvex::cli {
std::optional<unsigned long long> parsed_size(const std::string& text) {
  unsigned long long value = 0;
  const char* end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, value);
  const std::string suffix(rest, end);
  const unsigned shift = suffix == "K" ? 10 : suffix == "M" ? 20 : suffix == "G" ? 30 : 0;
  const bool suffix_known = suffix.empty() || shift != 0;
  const bool fits = value <= std::numeric_limits<unsigned long long>::max() >> shift;
  if (error != std::errc() || !suffix_known || !fits) return std::nullopt;
  return value << shift;
}

CLI::Validator within(long long least, long long most) {
  return {[least, most](const std::string& text) {
            long long value = 0;
            const char* end = text.data() + text.size();
            const auto [rest, error] = std::from_chars(text.data(), end, value);
            if (error == std::errc() && rest == end && least <= value && value <= most) {
              return std::string();
            }
            return "'" + text + "' is not a whole number from " + std::to_string(least) + " to " +
                   std::to_string(most);
          },
          ""};
}

CLI::Option* add_trials(CLI::App& command, int& trials, const std::string& description) {
  return command.add_option("--trials", trials, description)
      ->check(within(1, std::numeric_limits<int>::max()))
      ->type_name("COUNT")
      ->capture_default_str();
}

CLI::Option* add_seed(CLI::App& command, std::optional<unsigned>& seed) {
  return command
      .add_option("--seed", seed,
                  "Start of the random numbers, shown with every\n"
                  "answer: the same seed gives the same answer")
      ->check(within(0, std::numeric_limits<unsigned>::max()))
      ->type_name("NUMBER")
      ->default_str("random");
}

CLI::Option* add_classic_flag(CLI::App& command) {
  return command.add_flag("--classic")
      ->description(
          "Use the exported interface, whose options and\nanswers differ: see --classic --help");
}

CLI::Option* add_verbose(CLI::App& command, bool& verbose) {
  return command.add_flag("--verbose", verbose, "Show what the libraries report meanwhile");
}

}  // namespace korvex::cli
