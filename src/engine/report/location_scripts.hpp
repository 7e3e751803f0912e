// Locations as commands of molecule viewers: a file is loaded under a name of its own, its chain
// grey, each core in its colour, the loops of slipknots yellow.
#pragma once

#include <string>

#include "engine/report/script_names.hpp"
#include "korvex/report.hpp"

namespace korvex {

// Throw Error(kInvalidArgument) for names that the viewer could not be given.
std::string pymol_commands(const Chain& chain, const Location& location, ScriptNames& names);
std::string chimerax_commands(const Chain& chain, const Location& location, ScriptNames& names);

}  // namespace korvex
