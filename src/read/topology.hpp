// What tells the chains of a trajectory that has none: the molecules and bonds of a LAMMPS data
// file, or the chains of another file.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "korvex/read.hpp"
#include "read/raw_chain.hpp"

namespace korvex::read {

struct Topology {
  std::map<std::int32_t, std::string> kinds;      // types of all atoms; empty where not known
  std::map<std::int32_t, std::string> molecules;  // of atoms; empty where the file has none
  std::vector<std::pair<std::int32_t, std::int32_t>> bonds;
};

// Reads the file at `path`, gzipped or not. Throws Error, naming the line, where it is none.
Topology read_topology(const std::string& path);

// The chains that a trajectory of positions alone has, each with the places of its atoms.
struct TopologyChains {
  std::vector<RawChain> chains;
  std::size_t atoms = 0;  // number of all atoms
};

// Reads ReadOptions::topology, a PDB, GRO, mmCIF or LAMMPS data file, of which the first model
// counts. Throws Error where it is none or holds no chain.
TopologyChains chains_in_topology(const ReadOptions& options);

// Atoms in the order of a chain.
struct Backbone {
  std::string name;  // of its molecule; empty where the file has none
  std::vector<std::int32_t> atoms;
  bool ring = false;
};

// What the bonds between these atoms join, each from an end on, rings from their lowest atom
// towards its lower neighbour; without bonds, the molecules in the order of their atoms. By lowest
// atom. Throws Error (kBadInput), in the name of `file`, where a chain branches.
std::vector<Backbone> backbones_of(const Topology& topology, const std::vector<std::int32_t>& atoms,
                                   const std::string& file);

}  // namespace korvex::read
