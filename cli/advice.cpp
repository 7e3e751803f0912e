#include "advice.hpp"

#include <algorithm>
#include <filesystem>
#include <numeric>
#include <utility>

namespace korvex::cli {
namespace {

// Letters changed, left out, put in or swapped with their neighbours, at the least, between two
// words (optimal string alignment).
std::size_t edits_between(const std::string& a, const std::string& b) {
  const std::size_t width = b.size() + 1;
  std::vector<std::size_t> edits((a.size() + 1) * width);
  std::iota(edits.begin(), edits.begin() + static_cast<std::ptrdiff_t>(width), std::size_t{0});
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::size_t* const row = &edits[i * width];
    row[0] = i;
    for (std::size_t j = 1; j < width; ++j) {
      const std::size_t* const above = row - width;
      const std::size_t changed = above[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
      row[j] = std::min({above[j] + 1, row[j - 1] + 1, changed});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
        row[j] = std::min(row[j], (above - width)[j - 2] + 1);
    }
  }
  return edits.back();
}

// The options of a subcommand as they are typed.
std::vector<std::string> spellings(const Command& command) {
  std::vector<std::string> all;
  for (const Option& option : command.options) {
    for (std::size_t begin = 0; begin < option.names.size();) {
      const std::size_t end = std::min(option.names.find(',', begin), option.names.size());
      if (option.names[begin] == '-') all.push_back(option.names.substr(begin, end - begin));
      begin = end + 1;
    }
  }
  return all;
}

bool has(const std::vector<std::string>& words, const std::string& word) {
  return std::find(words.begin(), words.end(), word) != words.end();
}

// What other programs call options that there are here.
std::string usual_name(const std::string& option) {
  if (option.starts_with("-j")) return "--threads";
  if (option == "-f") return "--format";
  return option;
}

std::string about_unknown_option(const std::string& argument, const Command& command) {
  const std::string option = argument.substr(0, argument.find('='));
  const auto meant = nearest(usual_name(option), spellings(command));
  return "there is no option " + option + (meant ? "; did you mean " + *meant + "?" : "");
}

std::string list_of(const std::vector<Command>& commands) {
  std::string list;
  for (const Command& command : commands) list += (list.empty() ? "" : ", ") + command.name;
  return list;
}

}  // namespace

std::optional<std::string> nearest(const std::string& word, std::span<const std::string> words) {
  const std::size_t most = word.size() < 6 ? 2 : 3;
  std::optional<std::string> found;
  std::size_t least = std::min(most + 1, word.size());
  for (const std::string& candidate : words) {
    const std::size_t edits = edits_between(word, candidate);
    const bool abbreviates = word.size() > 2 && candidate.starts_with(word);
    if (edits >= least && !(abbreviates && !found)) continue;
    found = candidate;
    least = std::min(least, edits);
  }
  return found;
}

std::string about_no_subcommand(const std::string& word, const std::vector<Command>& commands) {
  std::error_code unknown;
  if (std::filesystem::is_regular_file(word, unknown))
    return "'" + word + "' stands where a subcommand belongs; korvex knot " + word +
           " names the knots in it";
  std::vector<std::string> names;
  for (const Command& command : commands) names.push_back(command.name);
  const auto meant = nearest(word, names);
  return "there is no subcommand '" + word + "'; " +
         (meant ? "did you mean " + *meant + "?" : "there are " + list_of(commands));
}

std::string about_unexpected(const std::vector<std::string>& arguments,
                             const std::vector<Command>& commands, const Command* command) {
  const auto is_option = [](const std::string& argument) {
    return argument.size() > 1 && argument[0] == '-';
  };
  const auto option = std::find_if(arguments.begin(), arguments.end(), is_option);
  if (option == arguments.end())
    return "nothing takes the argument '" + (arguments.empty() ? "" : arguments.front()) + "'";
  if (command == nullptr) {
    const bool known = std::any_of(commands.begin(), commands.end(), [&](const Command& other) {
      return has(spellings(other), *option);
    });
    return known ? "no subcommand given that takes " + *option
                 : "there is no option " + *option + " before a subcommand";
  }
  if (has(spellings(*command), *option))
    return "the option " + *option + " belongs behind the subcommand " + command->name;
  return about_unknown_option(*option, *command);
}

}  // namespace korvex::cli
