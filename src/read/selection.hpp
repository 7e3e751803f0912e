// What becomes of a chain between its parser and the user: selection, closing, gaps.
#pragma once

#include <vector>

#include "korvex/chain.hpp"
#include "korvex/read.hpp"

namespace korvex::read {

bool selects_model(const ModelRange& models, std::int64_t number);
bool selects_chain(const ReadOptions& options, const Chain& chain);

// Keeps the selected residues.
void select_residues(Chain& chain, const ResidueRange& range);

// Marks the chain closed if that is wanted, or if its last point repeats its first; the repeat is
// taken off.
void settle_ends(Chain& chain, bool closed);

// Finds the gaps and follows the policy: one chain, or the pieces of it.
std::vector<Chain> settle_gaps(Chain&& chain, GapPolicy policy);

}  // namespace korvex::read
