// The chains that the engine's subcommands work on, from file to answer.
#pragma once

#include <string>

#include "korvex/read.hpp"

namespace korvex::cli {

// A file, or standard input for "-".
Source source_named(const std::string& name);

// The one chain of a file that `read` selects. Throws Failure where there are several.
Chain only_chain(const std::string& file, const ReadOptions& read);

// Throws Error for a closed chain.
void require_open(const Chain& chain);

}  // namespace korvex::cli
