// One atom of a molecular structure, as PDB, mmCIF and GRO files list them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "korvex/geometry.hpp"

namespace korvex::read {

struct AtomSite {
  std::string chain;          // key: atoms of one chain have the same
  std::string chain_name;     // what the user calls it
  std::string residue_name;   // such as "GLY"
  std::int32_t number = 0;    // of the residue
  char insertion_code = ' ';  // ' ' for none
  std::string name;           // of the atom, trimmed
  std::string element;        // upper case; empty where unknown
  char altloc = ' ';          // ' ' for none
  double occupancy = 1;       // of this location
  bool het = false;           // HETATM
  bool in_polymer = false;    // the file says that it belongs to a polymer
  bool before_end = false;    // a TER record of its chain follows, and none precedes
  bool padded_name = true;    // its name is written as those of one-letter elements are
  std::size_t run = 0;        // TER records before it in its model
  Point position;             // ångström
};

// All atoms of one model or frame that matter for a trace, in file order.
struct Model {
  std::int64_t number = 1;
  std::vector<AtomSite> atoms;
};

// True for the atoms that decide which residues make a trace: the trace atoms, the atoms that bond
// residues to each other, and `chosen` (empty for none). The others need not be kept.
bool matters_for_trace(std::string_view atom_name, std::string_view chosen);

enum class Monomer { kUnknown, kAminoAcid, kNucleotide };

// What the residues of this name are; covers the standard ones and the common modified ones.
Monomer monomer_of(const std::string& residue_name);

}  // namespace korvex::read
