// Reading chains from files, pipes, streams and buffers.
//
// Formats, told by the content alone, each also compressed with gzip:
// - PDB, mmCIF and BinaryCIF: every polymer chain of every model, by one atom a residue: CA, or P
// for nucleic
//   acids. Modified residues are kept; ligands, lipids, waters and ions are not. Of alternative
//   locations the one of highest occupancy, the first among equals. A TER record ends a chain, and
//   CONECT records between the ends of a chain close it. Ångström.
// - GRO: as PDB; lengths are turned from nanometres into ångström. The format has no chain names: a
//   chain begins where the residue numbers fall.
// - XYZ (`count`, comment, `El x y z`), one chain a frame, with the column layout of extended XYZ.
// - LAMMPS text dump: one chain a molecule (column `mol`) and frame, atoms in the order of their
//   `id`. Positions from the first of: xu yu zu; xsu ysu zsu; x y z or xs ys zs with ix iy iz; x y
//   z or xs ys zs alone.
// - XTC, TRR and DCD trajectories: all atoms as one chain, or the chains of ReadOptions::topology.
//   Lengths of XTC and TRR are turned from nanometres into ångström.
// - Plain text: `id x y z` or `x y z` in each line, `#` comments, blank lines.
// Periodic boxes are read from the box of GRO files and LAMMPS dumps, from CRYST1 (PDB), _cell
// (mmCIF) and Lattice= (extended XYZ): see ReadOptions::unwrap. Other lengths stay in the unit of
// the input. A last point that repeats the first exactly is taken off and makes the chain closed.
//
// Predicted models tell their confidence (pLDDT) in place of B factors: mmCIF files by
// _ma_qa_metric, PDB files of the AlphaFold database by their title and remarks, others by a remark
// that names it. The time or step of a frame is that of TIMESTEP and TIME (LAMMPS), `t=` and
// `step=` (GRO titles, PDB titles), `Time=` or `t=` and `Step=` (XYZ comments), and of XTC and TRR;
// DCD has steps alone.
//
// Errors: Error with code kCannotRead (no such file, a directory, longer than may be, ...),
// kBadInput (a text that breaks its format's rules anywhere, a number that is not finite, a gap
// that GapPolicy::kReject forbids) or kInvalidArgument (a selection that nothing meets, or a chain
// that no selected model has: thrown at the end, when all others have been visited). The message
// names file and line and says what to do.
//
// Complexity: time linear in the input, up to sorting. Memory: inputs of up to 1 MiB, as they are
// stored, and mmCIF and BinaryCIF files, of up to 4 GiB, are held whole, with the values of all
// rows and the atoms of all models; of others, however long, a window of the text and one frame. A
// frame behind the last that is selected is not looked at, but in PDB, mmCIF and BinaryCIF files,
// whose models have numbers. PDB files longer than 1 MiB are read twice, for the bonds at their
// end; where that cannot be, as in pipes, CONECT records behind a model throw Error. Thread
// contract: safe from any number of threads on sources of their own.
#pragma once

#include <cstdint>
#include <functional>
#include <iosfwd>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "korvex/chain.hpp"
#include "korvex/export.hpp"

namespace korvex {

// Where the bytes come from.
class KORVEX_API Source {
 public:
  // The file or named pipe at `path`.
  Source(std::string path) : name_(std::move(path)) {}
  Source(const char* path) : name_(path) {}

  // The rest of `stream`, which must outlive the source; it is read once. `name` stands for it in
  // messages.
  static Source stream(std::istream& stream, std::string name);
  // These bytes.
  static Source memory(std::string bytes, std::string name);

  const std::string& name() const { return name_; }
  // All bytes, as they are stored. Throws Error (kCannotRead).
  std::string load() const;

 private:
  friend struct SourceBytes;

  std::string name_;
  std::string bytes_;
  std::istream* stream_ = nullptr;
  bool in_memory_ = false;
};

// Which chain names and residue numbers of an mmCIF file to go by.
enum class Numbering {
  kAuthor,  // the depositors', as papers use them (auth_asym_id, auth_seq_id)
  kLabel,   // the archive's own (label_asym_id, label_seq_id)
};

// What to do with gaps. Between neighbours in a chain there is one where
// - they lie farther apart than 1.5 times the chain's median bond, or
// - an mmCIF file counts residues of the sequence between them (label_seq_id), or
// - the residue numbers of another file jump and they lie farther apart than 1.2 median bonds.
// Beads whose bonds vary by nature (a quarter of them is longer than 1.2 times the median) have
// gaps only where neighbours lie farther apart than ReadOptions::max_gap.
enum class GapPolicy {
  kAuto,    // bridge those of up to ReadOptions::max_gap median bonds, split at the longer ones
  kBridge,  // join the neighbours by a straight line, and list the gap in Chain::gaps
  kSplit,   // end the chain there and begin another, open and of the same name: see Chain::part
  kReject,  // throw Error (kBadInput)
};

// Models, or frames of a trajectory: first, first + step, ... up to last.
struct ModelRange {
  std::int64_t first = std::numeric_limits<std::int64_t>::min();
  std::int64_t last = std::numeric_limits<std::int64_t>::max();
  std::int64_t step = 1;  // at least 1; counted from `first`, or from 1 when that is not given
};

// Residues by their labels, number and insertion code, both ends included, in the order 51, 52,
// 52A, 52B, 53. A bound without a code is the residue that has none: a range that ends at 52 leaves
// 52A out, one that ends at 52Z takes in all residues of that number, and one that begins at 52 has
// them as well. Labels are read and written so everywhere.
struct ResidueRange {
  std::int32_t first = std::numeric_limits<std::int32_t>::min();
  std::int32_t last = std::numeric_limits<std::int32_t>::max();
  char first_code = ' ';
  char last_code = ' ';
};

struct ReadOptions {
  ModelRange models = {};                // default: all
  std::vector<std::string> chains = {};  // names; empty: all
  // Names of the atoms that make the chain, in the order of the file; elements or types in XYZ and
  // LAMMPS files; "all" is every atom. Empty: CA of amino acids or P of nucleotides in PDB, mmCIF
  // and GRO files, every atom elsewhere.
  std::vector<std::string> atoms = {};
  ResidueRange residues = {};  // default: all
  Numbering numbering = Numbering::kAuthor;
  // Cuts residues of a confidence below this off both ends of chains of predicted models; those in
  // the middle stay. 0 cuts nothing; else a chain without confidences throws Error
  // (kInvalidArgument).
  double min_plddt = 0;
  bool closed = false;  // the last point is joined to the first
  // Cuts what the input has as one chain into chains of so many points, named by their numbers from
  // 1 (behind the chain's name and a dot where it has one); 0 cuts nothing.
  std::size_t chain_length = 0;
  // A file with the chains of a trajectory that has positions alone (XTC, TRR, DCD): PDB, GRO,
  // mmCIF, of which the first model counts, or LAMMPS data. LAMMPS data also tell the molecules and
  // bonds of a LAMMPS dump: a chain is then what bonds join, in their order, and closed where they
  // close it; without bonds, a molecule. Empty: none.
  std::string topology = {};
  GapPolicy gaps = GapPolicy::kAuto;
  double max_gap = 10;  // in median bonds, at least 1.5
  // Make chains whole that a periodic box folds: a bond longer than 1.5 medians that a vector of
  // the box turns into one that is not is mended by it; no other is touched. In LAMMPS dumps of
  // wrapped positions every atom goes to the image nearest the atom before it.
  bool unwrap = true;
};

// Every chain that the options select, in the order of models and of chains in the file. At least
// one.
KORVEX_API std::vector<Chain> read_chains(const Source& source, const ReadOptions& options = {});

// Hands the chains that read_chains would give to `visit` one after another, so that of a long
// trajectory only the chains of one frame are in memory (mmCIF: see above); reading stops when
// `visit` returns false.
KORVEX_API void visit_chains(const Source& source, const ReadOptions& options,
                             const std::function<bool(Chain&&)>& visit);

}  // namespace korvex
