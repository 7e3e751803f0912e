// The knot fingerprint: the knot types of all sub-chains of an open chain.
//
// Sources: N. P. King, E. O. Yeates and T. O. Yeates, J. Mol. Biol. 373, 153 (2007), and J. I.
// Sulkowska, E. J. Rawdon, K. C. Millett, J. N. Onuchic and A. Stasiak, PNAS 109, E1715 (2012), for
// the matrix of sub-chains; M. L. Mansfield, Nat. Struct. Biol. 1, 213 (1994), for votes over
// directions of closing. For shares without votes: closure_map.hpp.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "korvex/closure.hpp"
#include "korvex/export.hpp"
#include "korvex/geometry.hpp"
#include "korvex/run.hpp"

namespace korvex {

struct FingerprintOptions {
  // Shares of all directions, as closure_map() finds them, not votes: for kRays alone. Sampling,
  // directions and the seed of a run count for nothing then.
  bool exact = false;
  Closure closure = Closure::kRays;        // kRays or kTwoPoints
  Sampling sampling = Sampling::kLattice;  // of the directions
  std::size_t directions = 100;            // votes for each sub-chain, 1 to a million
  std::size_t step = 1;                    // residues from station to station, at least 1
  // Bytes that the votes may take; a chain that needs more is refused with an Error
  // (kInvalidArgument) that says so, before it does. A larger step needs less.
  std::size_t most_memory = std::size_t{4} << 30;
};

struct FingerprintData;

// The votes, or the exact shares, of all sub-chains that begin and end at stations: residues 0,
// step, 2 step, ... and the last one. A sub-chain is named by the numbers of its stations, begin <
// end. A value: copies share what they hold and may be read from many threads.
class KORVEX_API Fingerprint {
 public:
  // Residue of each station: an index into the chain, 0-based, rising.
  const std::vector<std::int32_t>& stations() const;
  // Whether shares are exact. There are no votes then.
  bool exact() const { return options().exact; }
  // Votes cast for each sub-chain; 0 where shares are exact.
  std::size_t trials() const;
  // The largest part of a sub-chain's directions whose type is in doubt, as ClosureMap::doubt
  // tells; 0 where there are votes.
  double doubt() const;
  // Names of the types that were found; the first is the unknot's, the others follow from the most
  // to the least frequent.
  const std::vector<std::string>& types() const;
  const FingerprintOptions& options() const;

  // Votes for the type with number `type` of the sub-chain from station `begin` to station `end`.
  // Throws Error(kInvalidArgument) where shares are exact.
  //
  // This and the next two throw Error(kInvalidArgument) where there is no such type, or no such
  // sub-chain: 0 <= begin < end < stations().size().
  std::uint32_t count(std::size_t type, std::size_t begin, std::size_t end) const;
  // The same as a share of all votes, or the exact share.
  double share(std::size_t type, std::size_t begin, std::size_t end) const;

  struct Dominant {
    std::size_t type;
    double share;
  };
  // The type with the largest share; of several, that which comes first in types().
  Dominant dominant(std::size_t begin, std::size_t end) const;

 private:
  friend struct FingerprintData;
  explicit Fingerprint(std::shared_ptr<const FingerprintData> data) : data_(std::move(data)) {}

  std::shared_ptr<const FingerprintData> data_;
};

// Fingerprint of `chain`, points in order along the backbone. Throws Error(kInvalidArgument) for
// coordinates that are no numbers, for options out of range and for votes that need more than
// most_memory, Error(kCancelled) when stopped. The answer depends on chain, options and run.seed
// alone. For n stations a direction takes about n^2 steps on compact chains. For each type memory
// grows with the sub-chains so knotted, up to 4 bytes for each in each thread: of proteins it takes
// a few MiB, of phantom chains of thousands of points, which form thousands of types, it takes GiB.
//
// An exact fingerprint is the closure map of every sub-chain; it throws Error(kInvalidArgument) for
// two points. Shares are those of closure_map() to within 1e-9.
KORVEX_API Fingerprint fingerprint(std::span<const Point> chain,
                                   const FingerprintOptions& options = {}, const Run& run = {});

}  // namespace korvex
