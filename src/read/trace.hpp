// From atoms to traces: which atoms of a model make its polymer chains.
#pragma once

#include <string>
#include <vector>

#include "read/atom_site.hpp"
#include "read/raw_chain.hpp"

namespace korvex::read {

// How strictly chains are told apart.
enum class Tracing {
  kStrict,
  // As ChainRead always has: after a TER record only a residue whose label has occurred begins
  // another chain, and any residues with P or CA make a trace.
  kLoose,
};

// The traces of the polymer chains of a model, in the order in which they begin in the file; chains
// without a trace are left out.
//
// A trace has one atom a residue: CA for proteins and P for nucleic acids (the more numerous in the
// chain), or the chosen atoms. Where a residue has several (alternative locations, several
// residues at one place) it is the one of highest occupancy, the first among equals.
//
// A residue belongs to the polymer when
// - the file says so (mmCIF entities), or
// - it is an amino acid or a nucleotide in ATOM records, or
// - it is bonded to a neighbour in its chain (C-N within 2 Angstrom, O3'-P within 2.5; where these
//   atoms are missing, trace atoms within 5 (CA) or 8 Angstrom), or
// - it stands within the polymer: before the chain's first TER record or between two amino acids or
//   nucleotides in ATOM records, or
// - it is in ATOM records of a chain that has no amino acid or nucleotide in ATOM records.
// So modified residues are kept, and ligands, waters and calcium ions are not.
//
// A trace through CA needs an amino acid in ATOM records, a polymer that the file tells of, or
// neighbours that are bonded; one through P needs a nucleotide or such a polymer, since lipids have
// P atoms as well. A trace through chosen atoms needs none of them; of several names it goes
// through all such atoms of a residue, in the order of the file.
//
// Residues of equal label are one residue, unless an atom without alternative location occurs twice
// (numbers that wrap in large files). ATOM records after a TER record begin another chain.
std::vector<RawChain> traces_of(const Model& model, const ChosenAtoms& chosen, Tracing tracing);

}  // namespace korvex::read
