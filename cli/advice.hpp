// What a line about a wrong command line advises.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "command_line.hpp"

namespace korvex::cli {

// That of `words` which `word` is probably meant to be: the first of the nearest, where it takes
// few letters to be changed, left out, put in or swapped with their neighbours.
std::optional<std::string> nearest(const std::string& word, std::span<const std::string> words);

// What is wrong with a word that stands where a subcommand belongs, and what to write instead.
std::string about_no_subcommand(const std::string& word, const std::vector<Command>& commands);

// The same of arguments that nothing takes, in the order of the command line. `command` is the
// subcommand that was named, if one was.
std::string about_unexpected(const std::vector<std::string>& arguments,
                             const std::vector<Command>& commands, const Command* command);

}  // namespace korvex::cli
