// Options of the subcommands that run the engine, spelt the same everywhere.
#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "command_line.hpp"
#include "korvex/chain.hpp"
#include "korvex/fingerprint.hpp"
#include "korvex/read.hpp"
#include "korvex/run.hpp"

namespace korvex::cli {

// Which chains of a file, and what to do about their gaps: --model, --chain, --residues, --atom,
// --numbering, --gaps, --max-gap, --unwrap.
void add_chain_options(Command& command, ReadOptions& read);

// --threads.
void add_threads_option(Command& command, Run& run);

// --threads and --seed.
void add_run_options(Command& command, Run& run);

// How fingerprints are to be found, as far as the options say so.
struct FingerprintChoice {
  FingerprintOptions options;
  bool sampled = false;  // as --directions, --sampling or another closure than rays ask
};

// --exact, --closure (rays or two-points), --directions, --step, --sampling, --memory.
void add_fingerprint_options(Command& command, FingerprintChoice& choice,
                             const std::string& about_exact);

// Shows how much of some work is done, `total` of which in `unit` make all of it.
using ShowFraction = std::function<void(double fraction, double total, const char* unit)>;

// Of the chain: exact where the options say so, or where they leave it open and the chain has no
// more than `most_exact` stations. `show` is told how far it is. Throws Failure where the
// options contradict one another.
Fingerprint fingerprint_of(const Chain& chain, const FingerprintChoice& choice, Run run,
                           std::size_t most_exact, const ShowFraction& show);

// A check that refuses all but numbers above 0 and at most 1.
Check share();

// --sampling.
Option sampling_option(Sampling& sampling);

}  // namespace korvex::cli
