// A chain as its file has it, with what decides about its bonds.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "korvex/chain.hpp"
#include "read/cell.hpp"

namespace korvex::read {

struct RawChain {
  Chain chain;
  Cell cell;
  bool beads = true;  // not the residues of a known polymer, whose bonds are of one length
  std::vector<std::size_t>
      atoms;                 // places of the points' atoms in their model, where that is known
  bool ends_bonded = false;  // the file has a bond between the first and the last
  std::vector<bool> mended;  // of each point: whether the box broke its bond to the one before;
                             // empty where it broke none
  // Places of the residues in the polymer's sequence, nothing where one has none; empty where the
  // file does not tell them.
  std::vector<std::optional<std::int32_t>> sequence;
};

}  // namespace korvex::read
