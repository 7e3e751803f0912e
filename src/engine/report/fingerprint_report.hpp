// Fingerprints in each format.
#pragma once

#include <iosfwd>
#include <span>

#include "korvex/chain.hpp"
#include "korvex/fingerprint.hpp"

namespace korvex {

// As ReportFormat::kNpz promises.
void write_npz(const Fingerprint& fingerprint, std::span<const Residue> residues,
               std::ostream& out);

}  // namespace korvex
