// The covalent bonds besides those along polymers that mmCIF files list.
#pragma once

#include <array>
#include <string_view>

#include "korvex/read.hpp"
#include "read/atom_site.hpp"
#include "read/cif_table.hpp"

namespace korvex::read {

// The tags of _struct_conn that tell of them.
inline constexpr std::array<std::string_view, 15> kLinkTags = {
    "conn_type_id",        "ptnr1_auth_asym_id",      "ptnr1_auth_seq_id",
    "ptnr1_label_asym_id", "ptnr1_label_atom_id",     "ptnr1_label_seq_id",
    "ptnr1_symmetry",      "ptnr2_auth_asym_id",      "ptnr2_auth_seq_id",
    "ptnr2_label_asym_id", "ptnr2_label_atom_id",     "ptnr2_label_seq_id",
    "ptnr2_symmetry",      "pdbx_ptnr1_pdb_ins_code", "pdbx_ptnr2_pdb_ins_code"};

// Those of the table _struct_conn, their atoms named in this numbering. Rows that do not name two
// atoms, bonds to an atom's image by symmetry, disulfides, metals and hydrogen bonds are left out.
Links links_in(const CifTable& table, Numbering numbering);

}  // namespace korvex::read
