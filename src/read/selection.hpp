// What becomes of a chain between its parser and the user: selection and closing.
#pragma once

#include <cstddef>
#include <vector>

#include "korvex/read.hpp"
#include "read/raw_chain.hpp"

namespace korvex::read {

// Throws Error (kInvalidArgument) for options out of range.
void check(const ReadOptions& options);

bool selects_model(const ModelRange& models, std::int64_t number);
bool selects_chain(const ReadOptions& options, const Chain& chain);

// Cuts a chain into chains of `length` points. Throws Error (kBadInput) where points are left over.
std::vector<RawChain> cut(RawChain&& raw, std::size_t length);

// Keeps the selected residues.
void select_residues(RawChain& raw, const ResidueRange& range);

// Cuts points of a confidence below `min_plddt` off both ends. Throws Error (kInvalidArgument)
// where the chain has no confidences.
void trim_tails(RawChain& raw, double min_plddt);

// Marks the chain closed if its last point repeats its first, if the file has a bond between its
// ends, or if that is wanted; a repeat is taken off.
void settle_ends(RawChain& raw, bool closed);

}  // namespace korvex::read
