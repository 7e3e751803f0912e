// Options of the subcommands that run the engine, spelt the same everywhere.
#pragma once

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "command.hpp"
#include "korvex/closure.hpp"
#include "korvex/fingerprint.hpp"
#include "korvex/read.hpp"
#include "korvex/run.hpp"
#include "progress.hpp"

namespace korvex::cli {

// Which chains of a file, and what to do about their gaps: --model, --chain, --residues, --atom,
// --numbering, --gaps.
void add_chain_options(CLI::App& command, ReadOptions& read);

// --threads and --seed.
void add_run_options(CLI::App& command, Run& run);

// --closure (rays or two-points), --directions, --step, --sampling.
void add_fingerprint_options(CLI::App& command, FingerprintOptions& options);

// Throws Error for a closed chain.
void require_open(const Chain& chain);

// A check that refuses all but numbers above 0 and at most 1.
CLI::Validator share();

// --sampling.
void add_sampling(CLI::App& command, Sampling& sampling);

// A file, or standard input for "-".
Source source_named(const std::string& name);

// "FILE", with model and chain where the file has them.
std::string title_of(const Chain& chain);

// Runs `work` on every chain of `files` that `read` selects. An input that cannot be read or worked
// on costs one line on standard error, and the rest goes on. Warnings go there, too.
Exit for_each_chain(const std::vector<std::string>& files, const ReadOptions& read,
                    const std::function<void(const Chain&)>& work);

}  // namespace korvex::cli
