// Fingerprints and locations as files for other programs.
//
// Residues go by the labels of their chain: number, then insertion code. Where no residues are
// given they are counted from 1. Every function writes text (or bytes) to the stream and leaves its
// state to the caller; none throws but what the stream throws, and write_npz
// Error(kInvalidArgument) where the archive would be larger than 4 GiB.
#pragma once

#include <iosfwd>
#include <span>
#include <string>

#include "korvex/chain.hpp"
#include "korvex/export.hpp"
#include "korvex/fingerprint.hpp"
#include "korvex/locate.hpp"

namespace korvex {

// The label of residue `index`: "24", "52A", or index + 1 without residues.
KORVEX_API std::string residue_label(std::span<const Residue> residues, std::size_t index);

// A NumPy .npz archive, deflated, of these arrays, n being the stations and m the knotted
// (sub-chain, type) pairs with votes:
// - stations: int32 (n), index of each station's residue in the chain, 0-based
// - labels: unicode (n), label of each station's residue
// - types: unicode, names of the knot types; the first is the unknot's
// - trials: int64 (), votes cast for each sub-chain
// - dominant: int32 (n, n), number of the type with most votes, [begin, end]; -1 where begin >= end
// - share: float32 (n, n), share of the votes for that type; 0 where begin >= end
// - begin, end, type: int32 (m), numbers of the stations of a sub-chain and of a type but the
//   unknot's
// - count: uint32 (m), votes for it; all other votes of a sub-chain are the unknot's
//
// The same fingerprint gives the same bytes.
KORVEX_API void write_npz(const Fingerprint& fingerprint, std::span<const Residue> residues,
                          std::ostream& out);

// A line for every knot type with votes in a sub-chain where not all are for the unknot: labels of
// the ends, type, votes, share, and the 95 % interval of the share, below a head of names.
KORVEX_API void write_tsv(const Fingerprint& fingerprint, std::span<const Residue> residues,
                          std::ostream& out);

// One JSON object: stations, labels, types, trials, and sub_chains with votes that are not all for
// the unknot, each [begin, end, [[type, count], ...]] by numbers of stations and types.
KORVEX_API void write_json(const Fingerprint& fingerprint, std::span<const Residue> residues,
                           std::ostream& out);

// The matrix text of the exported interface: a head, then a line for every sub-chain with at least
// 1 % of the votes for a knot, by rising begin and falling end: labels of its ends, for each
// threshold from 90 % down to 0 % in steps of 3 % the types whose whole percentage is above it (and
// not above the one before; 0 for none), 0, and 1-based positions of its ends. "UNKNOT" below the
// head where there is none.
KORVEX_API void write_matrix(const Fingerprint& fingerprint, std::span<const Residue> residues,
                             std::ostream& out);

// How a location is written, for people and for programs that draw molecules.
enum class LocationFormat { kText, kTsv, kJson, kPymol, kChimerax };

// What comes before the first location: the names of the columns in kTsv, else nothing.
KORVEX_API void write_location_head(LocationFormat format, std::ostream& out);

// `chain` gives source, model, chain name and labels. In kTsv a line for each knot, or one with the
// type alone where there is none; in kJson one object, without a line end.
KORVEX_API void write_location(const Location& location, const Chain& chain, LocationFormat format,
                               std::ostream& out);

}  // namespace korvex
