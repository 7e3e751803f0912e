// Where along a chain its knots sit, read off a fingerprint.
//
// Sources: N. P. King, E. O. Yeates and T. O. Yeates, J. Mol. Biol. 373, 153 (2007), for slipknots;
// J. I. Sulkowska et al., PNAS 109, E1715 (2012), for cores and tails; M. Jamroz et al., Nucleic
// Acids Res. 43, D306 (2015), for the names of a slipknot's parts.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "korvex/export.hpp"
#include "korvex/fingerprint.hpp"

namespace korvex {

// Residues first..last of a chain, 0-based indices, both included.
struct Stretch {
  std::int32_t first = 0;
  std::int32_t last = 0;

  std::int32_t length() const { return last - first + 1; }
  friend bool operator==(const Stretch&, const Stretch&) = default;
};

// How a knot comes undone when its core grows at one end: its share falls below half the threshold
// and the dominant type needs fewer crossings.
struct Threading {
  std::int32_t residue = 0;  // the first residue with which the knot is gone: there the chain
                             // threads back through its own loop
  Stretch loop;              // from the core to that residue: the slipknot loop
  Stretch tail;              // from that residue to the end of the chain: the slipknot tail
  std::string becomes;       // the dominant type with that residue
  friend bool operator==(const Threading&, const Threading&) = default;
};

// The place of one knot type.
struct KnotPlace {
  std::string type;
  Stretch core;  // the shortest sub-chain whose share of the type reaches the threshold; of
                 // equally long ones that with the greatest share, then the first
  double core_share = 0;         // share of the type's votes there
  double whole_share = 0;        // share of the type's votes in the whole chain
  Stretch longest;               // the longest sub-chain whose share reaches the threshold
  std::size_t sub_chains = 0;    // how many sub-chains reach it: the type's domain
  std::int32_t tail_before = 0;  // residues before the core
  std::int32_t tail_after = 0;   // residues after it
  // Set where a longer sub-chain is less knotted: the knot is a slipknot.
  std::optional<Threading> undone_before;  // when the core grows at its beginning
  std::optional<Threading> undone_after;   // when the core grows at its end

  bool slipknot() const { return undone_before || undone_after; }
};

struct Location {
  std::string type;  // dominant type of the whole chain
  double share = 0;
  // Factors of that type, as often as they occur; one for a prime knot, none for the unknot.
  std::vector<std::string> factors;
  std::vector<KnotPlace> knots;  // types whose share reaches the threshold somewhere, by the length
                                 // of their cores, the longest first
};

struct LocateOptions {
  double threshold = 0.5;  // share of a sub-chain's votes at which it counts as so knotted; (0, 1]
};

// Reads cores, tails, domains, slipknots and factors off a fingerprint. O(types n^2) for n
// stations; positions are exact to the fingerprint's step. Throws Error(kInvalidArgument) for a
// threshold out of range.
KORVEX_API Location locate(const Fingerprint& fingerprint, const LocateOptions& options = {});

}  // namespace korvex
