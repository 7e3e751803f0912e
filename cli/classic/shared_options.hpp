// Options of the subcommands that run the exported interface.
#pragma once

#include <optional>
#include <string>

#include "command_line.hpp"

namespace korvex::cli::classic {

Option trials_option(int& trials, const std::string& help);
Option seed_option(std::optional<unsigned>& seed);
Option verbose_flag(bool& verbose);

}  // namespace korvex::cli::classic
