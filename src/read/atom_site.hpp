// One atom of a molecular structure, as PDB, mmCIF and GRO files list them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "korvex/geometry.hpp"
#include "read/cell.hpp"

namespace korvex::read {

struct AtomSite {
  std::string chain;                     // key: atoms of one chain have the same
  std::string chain_name;                // what the user calls it
  std::string residue_name;              // such as "GLY"
  std::int32_t number = 0;               // of the residue
  char insertion_code = ' ';             // ' ' for none
  std::string name;                      // of the atom, trimmed
  std::string element;                   // upper case; empty where unknown
  char altloc = ' ';                     // ' ' for none
  double occupancy = 1;                  // of this location
  bool het = false;                      // HETATM
  bool in_polymer = false;               // the file says that it belongs to a polymer
  bool before_end = false;               // a TER record ends its chain behind it
  bool before_first_end = false;         // and none precedes
  std::int32_t serial = 0;               // of the atom, for bonds; 0 for none
  bool padded_name = true;               // its name is written as those of one-letter elements are
  std::size_t place = 0;                 // among all atoms of its model
  std::size_t run = 0;                   // TER records before it in its model
  std::optional<std::int32_t> sequence;  // place of its residue in the polymer's sequence
  Point position;                        // ångström
  std::optional<float> plddt = {};       // confidence of a predicted model
};

// Pairs of atoms by their serial numbers, the lower first.
using Bonds = std::set<std::pair<std::int32_t, std::int32_t>>;

// What a file calls an atom where it does not number it.
struct AtomName {
  std::string chain;  // as AtomSite::chain_name
  std::int32_t number = 0;
  char insertion_code = ' ';
  std::string name;

  bool is_of(const AtomSite& site) const {
    return number == site.number && insertion_code == site.insertion_code && name == site.name &&
           chain == site.chain_name;
  }
};

// Covalent bonds besides those along a polymer, such as the one that closes a cyclic peptide.
using Links = std::vector<std::pair<AtomName, AtomName>>;

// All atoms of one model or frame that matter for a trace, in file order.
struct Model {
  std::int64_t number = 1;
  std::vector<AtomSite> atoms;
  std::size_t size = 0;  // number of all atoms
  Cell cell;
  const Bonds* bonds = nullptr;  // between serial numbers; null for none
  const Links* links = nullptr;  // null for none
  std::optional<double> time = {};
  std::optional<std::int64_t> step = {};
};

// The names that the user chose, none for the usual trace.
class ChosenAtoms {
 public:
  ChosenAtoms() = default;
  explicit ChosenAtoms(const std::vector<std::string>& names);

  bool empty() const { return names_.empty() && !all_; }
  bool all() const { return all_; }
  bool has(std::string_view name) const;
  // The one name that is chosen; empty where there are none or several.
  std::string_view only() const;

 private:
  std::vector<std::string> names_;
  bool all_ = false;
};

// True for the atoms that decide which residues make a trace: the trace atoms, the atoms that bond
// residues to each other, and the chosen ones. The others need not be kept.
bool matters_for_trace(std::string_view atom_name, const ChosenAtoms& chosen);

enum class Monomer { kUnknown, kAminoAcid, kNucleotide };

// What the residues of this name are; covers the standard ones and the common modified ones.
Monomer monomer_of(const std::string& residue_name);

}  // namespace korvex::read
