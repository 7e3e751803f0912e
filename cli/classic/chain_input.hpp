// Chains as the user names them: by a file's path, or "-" for standard input.
#pragma once

#include <string>
#include <vector>

#include "preprocess.h"

namespace korvex::cli::classic {

// Reads the chain called `name`. Throws Failure when there is none to read, with its name and the
// reason.
std::vector<ChainAtom> read_chain(const std::string& name);

}  // namespace korvex::cli::classic
