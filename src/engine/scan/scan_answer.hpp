// What a scan finds out about one chain.
#pragma once

#include "engine/report/scan_report.hpp"
#include "korvex/scan.hpp"

namespace korvex {

// A failure stands in the answer, with as much as was found out before it. Throws
// Error(kCancelled) when stopped.
ScanAnswer scan_answer(const Chain& chain, const ScanOptions& options, const Run& run);

// The seed of a chain: of the user's and of which chain it is.
std::uint64_t seed_of(const Member& member, const Chain& chain, std::uint64_t seed);

}  // namespace korvex
