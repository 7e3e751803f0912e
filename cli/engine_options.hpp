// Options of the subcommands that run the engine, spelt the same everywhere.
#pragma once

#include "command_line.hpp"
#include "korvex/fingerprint.hpp"
#include "korvex/read.hpp"
#include "korvex/run.hpp"

namespace korvex::cli {

// Which chains of a file, and what to do about their gaps: --model, --chain, --residues, --atom,
// --numbering, --gaps, --max-gap, --unwrap.
void add_chain_options(Command& command, ReadOptions& read);

// --threads and --seed.
void add_run_options(Command& command, Run& run);

// --closure (rays or two-points), --directions, --step, --sampling, --memory.
void add_fingerprint_options(Command& command, FingerprintOptions& options);

// A check that refuses all but numbers above 0 and at most 1.
Check share();

// --sampling.
Option sampling_option(Sampling& sampling);

}  // namespace korvex::cli
