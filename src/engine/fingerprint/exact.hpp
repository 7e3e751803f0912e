// Fingerprints of exact shares: the closure maps of all sub-chains.
#pragma once

#include <span>

#include "engine/fingerprint/fingerprint_data.hpp"
#include "engine/identify/identify.hpp"
#include "korvex/fingerprint.hpp"

namespace korvex {

// As fingerprint_with() where options.exact is set.
Fingerprint exact_fingerprint(const Identification& identify, std::span<const Point> chain,
                              const FingerprintOptions& options, const Run& run,
                              SubChains sub_chains);

}  // namespace korvex
