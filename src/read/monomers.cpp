#include <algorithm>
#include <gemmi/resinfo.hpp>

#include "read/atom_site.hpp"

namespace korvex::read {

ChosenAtoms::ChosenAtoms(const std::vector<std::string>& names)
    : names_(names), all_(std::find(names.begin(), names.end(), "all") != names.end()) {}

bool ChosenAtoms::has(std::string_view name) const {
  return all_ || std::find(names_.begin(), names_.end(), name) != names_.end();
}

std::string_view ChosenAtoms::only() const {
  return all_ || names_.size() != 1 ? std::string_view{} : std::string_view(names_.front());
}

bool matters_for_trace(std::string_view atom_name, const ChosenAtoms& chosen) {
  switch (atom_name.size()) {
    case 1:
      if (atom_name[0] == 'N' || atom_name[0] == 'C' || atom_name[0] == 'P') return true;
      break;
    case 2:
      if (atom_name[0] == 'C' && atom_name[1] == 'A') return true;
      break;
    case 3:
      if (atom_name == "O3'" || atom_name == "O3*") return true;
      break;
    default:
      break;
  }
  return !chosen.empty() && chosen.has(atom_name);
}

Monomer monomer_of(const std::string& residue_name) {
  const gemmi::ResidueInfo info = gemmi::find_tabulated_residue(residue_name);
  if (info.is_amino_acid()) return Monomer::kAminoAcid;
  if (info.is_nucleic_acid()) return Monomer::kNucleotide;
  return Monomer::kUnknown;
}

}  // namespace korvex::read
