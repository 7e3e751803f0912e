// Options of reading chains from files.
#pragma once

#include <string>

namespace korvex {

enum class Numbering {
  kAuthor,  // the depositors' chain names and residue numbers, as papers use them
  kLabel,   // the archive's own: label_asym_id and label_seq_id
};

struct ReadOptions {
  std::string atom;                          // trace atom; empty: CA, or P for nucleic acids
  Numbering numbering = Numbering::kAuthor;  // of mmCIF files
};

}  // namespace korvex
