// The chains that the engine's subcommands work on, from file to answer.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "command.hpp"
#include "korvex/read.hpp"

namespace korvex::cli {

// A file, or standard input for "-".
Source source_named(const std::string& name);

// The one chain of a file that `read` selects. Throws Failure where there are several.
Chain only_chain(const std::string& file, const ReadOptions& read);

// Throws Error for a closed chain.
void require_open(const Chain& chain);

// Runs `work` on every chain of `files` that `read` selects. An input that cannot be read or worked
// on costs one line on standard error, and the rest goes on. What ReadNotes tells goes there, too;
// `as_rings`: the user has said that the chains are rings.
Exit for_each_chain(const std::vector<std::string>& files, const ReadOptions& read,
                    const std::function<void(const Chain&)>& work, bool as_rings = false);

}  // namespace korvex::cli
