// Broken bonds: those that the periodic box broke are mended, at others something is missing.
#pragma once

#include <vector>

#include "korvex/chain.hpp"
#include "korvex/read.hpp"
#include "read/raw_chain.hpp"

namespace korvex::read {

// True where bonds are of many lengths, as in phantom chains and rings drawn as polygons: a quarter
// of them is longer than 1.2 times their median. O(n).
bool bonds_vary(const std::vector<double>& lengths, double median);

// Follows ReadOptions::unwrap with the chain's cell. Where residues are missing nothing is mended.
void mend(RawChain& raw);

// Finds the gaps and follows the policy: one chain, or the parts of it.
std::vector<Chain> settle_gaps(RawChain&& raw, const ReadOptions& options);

}  // namespace korvex::read
