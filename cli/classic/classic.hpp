// The work of the subcommands, done through the exported interface.
#pragma once

#include <array>
#include <fstream>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "classic/closure.hpp"
#include "korvex.h"

namespace korvex::cli::classic {

using Counts = std::array<int, 42>;  // votes, indexed by knot ordinal

// One knot type of a ranking.
struct RankedKnot {
  int ordinal;       // knot ordinal
  std::string name;  // name in the knot table
  int votes;         // at least 1
  double share;      // of all votes, 0 to 1
};

// The chain's votes over its closures.
struct Answer {
  std::vector<RankedKnot> ranking;  // most votes first
  std::string text;                 // the interface's own ranked list, percentages truncated
};

struct FingerprintSettings {
  ClosureCode closure;
  int trials;
  int step;                   // spacing of the net, in atoms
  int threshold;              // percent
  bool matrix;                // knot names, or a dictionary of polynomials
  unsigned long long memory;  // bytes of one batch of closed pieces
};

using OnTrial = std::function<void(int done, int total)>;

// The seed to use: the one given, or one chosen at random.
unsigned choose_seed(std::optional<unsigned> given);

// The determinations made for so many trials: random closures differ, the others are made once.
int determinations(ClosureCode closure, int trials);

// Votes over the closures of `chain`, which messages call `name`. Starts from `srand(seed)`, so
// that the answer depends on nothing that ran before. Throws Failure for a chain that has no
// answer: fewer than 3 atoms, impossible to close, or without a usable projection.
Answer determine(const std::string& name, const std::vector<ChainAtom>& chain, ClosureCode closure,
                 int trials, unsigned seed, const OnTrial& on_trial);

// Writes the fingerprint of `chain`, which messages call `name`, to `out`, from `srand(seed)` on.
// Throws Failure for a chain of fewer than 3 atoms, and where the memory given is too small for one
// sub-chain.
void write_fingerprint(const std::string& name, const std::vector<ChainAtom>& chain,
                       std::fstream& out, const FingerprintSettings& settings, unsigned seed);

}  // namespace korvex::cli::classic
