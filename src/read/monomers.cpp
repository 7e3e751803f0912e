#include <gemmi/resinfo.hpp>

#include "read/atom_site.hpp"

namespace korvex::read {

bool matters_for_trace(std::string_view atom_name, std::string_view chosen) {
  return atom_name == "CA" || atom_name == "P" || atom_name == "N" || atom_name == "C" ||
         atom_name == "O3'" || atom_name == "O3*" || (!chosen.empty() && atom_name == chosen);
}

Monomer monomer_of(const std::string& residue_name) {
  const gemmi::ResidueInfo info = gemmi::find_tabulated_residue(residue_name);
  if (info.is_amino_acid()) return Monomer::kAminoAcid;
  if (info.is_nucleic_acid()) return Monomer::kNucleotide;
  return Monomer::kUnknown;
}

}  // namespace korvex::read
