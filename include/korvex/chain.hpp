// korvex::Chain: a polymer's trace in space, with what a reader of its file would want to know.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "korvex/geometry.hpp"

namespace korvex {

// What the file calls one residue, bead or atom of a chain.
struct Residue {
  std::int32_t number = 0;    // as in the file; counted from 1 where the file has none
  char insertion_code = ' ';  // ' ' for none; tells residues of equal number apart
  std::string name;           // such as "GLY"; empty where the file has none

  friend bool operator==(const Residue&, const Residue&) = default;
};

// Two neighbours in a chain between which something is missing, or seems to be.
struct Gap {
  std::size_t after = 0;  // 0-based index of the point before the gap; the next point is after it
  double length = 0;      // distance of the two points, unit of the chain

  friend bool operator==(const Gap&, const Gap&) = default;
};

// What is known of the ends of a chain. The first two are those of open chains.
enum class ChainEnds {
  kApart,     // nothing joins them
  kNear,      // nothing joins them, but they lie within 1.5 median bonds: it may be a ring
  kAsked,     // ReadOptions::closed joins them
  kRepeated,  // the last point of the input repeated the first
  kBonded,    // the input, or its topology, has a bond between them
};

// An ordered list of points in space. A closed chain does not repeat its first point at its end.
struct Chain {
  std::vector<Point> points;      // ångström for PDB, mmCIF and GRO, else the unit of the input
  std::vector<Residue> residues;  // one for each point
  std::string name;               // chain or molecule identifier; empty where the file has none
  std::string source;             // the file, or the name that its bytes were given
  std::int64_t model = 1;         // model number of the file, or its frame counted from 1
  bool closed = false;            // the last point is joined to the first
  ChainEnds ends = ChainEnds::kApart;  // why it is closed or open
  std::vector<Gap> gaps;               // those that are bridged by straight lines, in chain order
  double bond = 0;                     // median distance of neighbours, unit of the chain
  std::size_t mended = 0;              // bonds that a vector of the periodic box made whole
  std::optional<double> time;          // of its frame, as the file has it (XTC, TRR and GRO: ps)
  std::optional<std::int64_t> step;    // of its frame
  // Confidence of a predicted model in each point, 0 to 100; empty where the file tells of none.
  std::vector<float> plddt;
  int part = 0;             // of a chain that was split at gaps: which part, from 1; else 0
  double split_length = 0;  // the gap between the part before and this one

  friend bool operator==(const Chain&, const Chain&) = default;
};

}  // namespace korvex
