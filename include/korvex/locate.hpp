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
#include "korvex/run.hpp"

namespace korvex {

// Residues first..last of a chain, 0-based indices, both included.
struct Stretch {
  std::int32_t first = 0;
  std::int32_t last = 0;

  std::int32_t length() const { return last - first + 1; }
  friend bool operator==(const Stretch&, const Stretch&) = default;
};

// How a knot comes undone for good when its core grows at one end: its share falls below half the
// threshold, the dominant type needs fewer crossings, and no longer sub-chain, up to the end of the
// chain, has the knot again, be it by itself or as a factor of a composite one. Where the name of a
// dominant type does not tell its factors it may have.
struct Threading {
  std::int32_t residue = 0;  // the first residue with which the knot is gone: there the chain
                             // threads back through its own loop
  Stretch loop;              // from the core to that residue: the slipknot loop
  Stretch tail;              // from that residue to the end of the chain: the slipknot tail
  std::string becomes;       // the dominant type with that residue
  friend bool operator==(const Threading&, const Threading&) = default;
};

// How a knot comes undone in the same way and returns: no slipknot.
struct Dip {
  std::int32_t residue = 0;  // the first residue with which the knot is gone
  std::int32_t back = 0;     // the first residue with which it is there again
  double share = 0;          // the least share of its votes between the two
  std::string becomes;       // the dominant type with the first
  friend bool operator==(const Dip&, const Dip&) = default;
};

// One place of a knot type.
struct KnotPlace {
  std::string type;
  Stretch core;  // a sub-chain whose share of the type reaches the threshold, while that of no
                 // shorter one in it does
  double core_share = 0;         // share of the type's votes there
  double whole_share = 0;        // share of the type's votes in the whole chain
  Stretch longest;               // the longest sub-chain of its domain
  std::size_t sub_chains = 0;    // size of its domain: the sub-chains whose share reaches the
                                 // threshold, each at the core of which it holds most
  std::int32_t tail_before = 0;  // residues before the core
  std::int32_t tail_after = 0;   // residues after it
  // Set where longer sub-chains are less knotted: the knot is a slipknot.
  std::optional<Threading> undone_before;  // when the core grows at its beginning
  std::optional<Threading> undone_after;   // when the core grows at its end
  std::vector<Dip> dips_before;            // from the core outwards
  std::vector<Dip> dips_after;

  bool slipknot() const { return undone_before || undone_after; }
};

struct Location {
  std::string type;  // dominant type of the whole chain
  double share = 0;
  // Factors of that type, as often as they occur; one for a prime knot, none for the unknot.
  std::vector<std::string> factors;
  // Every place of every type whose share reaches the threshold somewhere, by the length of the
  // cores, the longest first. Cores of one type share no residue: the shortest is taken first, of
  // equally long ones that with the greatest share, then the first along the chain.
  std::vector<KnotPlace> knots;
  bool exact = false;      // shares are exact, not of votes
  std::size_t trials = 0;  // votes cast for each sub-chain; 0 where shares are exact
};

struct LocateOptions {
  double threshold = 0.5;  // share of a sub-chain's votes at which it counts as so knotted; (0, 1]
};

// Reads cores, tails, domains, slipknots and factors off a fingerprint. O(types n^2) for n
// stations, times the places of a type; positions are exact to the fingerprint's step. Throws
// Error(kInvalidArgument) for a threshold out of range. Of `run` it asks only whether to stop:
// Error(kCancelled).
KORVEX_API Location locate(const Fingerprint& fingerprint, const LocateOptions& options = {},
                           const Run& run = {});

}  // namespace korvex
