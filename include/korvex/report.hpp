// Every answer, written: votes, the catalogue, fingerprints and locations, as text for people, as
// tables and records for programs, and as scripts that draw molecules.
//
// Residues go by the labels of their chain: number, then insertion code; where a chain has none
// they are counted from 1. Names from outside are quoted for their target (korvex/quoting.hpp) or,
// where a target has no way to hold them, refused with Error(kInvalidArgument). Numbers are written
// alike in every locale. Each answer but a fingerprint is put together first and then written at
// once: nothing of one is written when it throws. Whether a stream took what was written is its
// owner's to ask. One thread a stream.
#pragma once

#include <iosfwd>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "korvex/catalogue.hpp"
#include "korvex/chain.hpp"
#include "korvex/closure.hpp"
#include "korvex/closure_map.hpp"
#include "korvex/drawing.hpp"
#include "korvex/export.hpp"
#include "korvex/fingerprint.hpp"
#include "korvex/locate.hpp"
#include "korvex/votes.hpp"

namespace korvex {

enum class ReportFormat {
  kText,      // for people
  kTsv,       // tab-separated values below a line with the names of the columns
  kJson,      // an array of objects; of a fingerprint one object
  kNpz,       // a NumPy archive
  kMatrix,    // the matrix text of the exported interface
  kPymol,     // commands that load a file and colour its knots in PyMOL
  kChimerax,  // the same in ChimeraX
  kSvg,       // a drawing
};

// What the formats are called: "text", "tsv", "json", "npz", "matrix", "pymol", "chimerax", "svg".
KORVEX_API std::string_view name_of(ReportFormat format);

// The formats that each kind of answer can be written in. All else throws Error(kInvalidArgument).
KORVEX_API std::span<const ReportFormat> vote_formats();
KORVEX_API std::span<const ReportFormat> catalogue_formats();
KORVEX_API std::span<const ReportFormat> fingerprint_formats();
KORVEX_API std::span<const ReportFormat> location_formats();
KORVEX_API std::span<const ReportFormat> map_formats();
KORVEX_API std::span<const ReportFormat> scan_formats();

// The label of residue `index`, 0-based: "24", "52A", or index + 1 without residues. Not quoted.
KORVEX_API std::string residue_label(std::span<const Residue> residues, std::size_t index);

// "FILE model 2 time 12.5 chain A part #1" for people: the model where it is not the first, the
// time of its frame where it has one, or else the step, the chain where it has a name, the part
// where the chain was split.
KORVEX_API std::string title_of(const Chain& chain);

// Answers of one kind, one after another. What stands before the first is written when the report
// is made; JSON is held back until finish(), so that it is written whole or not at all. The stream
// must outlive the report.
class KORVEX_API Report {
 public:
  struct Frame;  // what stands before, between and behind the answers

  Report(const Report&) = delete;
  Report& operator=(const Report&) = delete;

  ReportFormat format() const { return format_; }
  // Writes what stands behind the last answer; to be called once, at the end.
  void finish();

 protected:
  Report(ReportFormat format, const Frame& frame, std::ostream& out);
  ~Report() = default;
  void put(const std::string& entry);

 private:
  ReportFormat format_;
  const Frame& frame_;
  std::ostream& out_;
  std::string held_;
  bool any_ = false;
};

// kText: a line a chain. kTsv: a line a type: source, model, chain, residues, closure, trials,
// type, votes, share, the 95 % interval of the share, and what is doubtful about the chain: gaps
// that are bridged, the longest of them, bonds mended by the periodic box, ends (apart, near,
// asked, repeated or bonded, as ChainEnds has them), part (0 for a whole chain), and where they are
// known the time and step of the frame and the mean confidence (pLDDT). kJson: the
// same, `proven`, the crossings left in diagrams, and what is known of a closed curve.
//
// Shares that are exact have no trials and no votes: `exact` stands for the trials in kTsv, where
// votes are left empty and the interval is what the doubt leaves open. kJson has "exact": true, the
// numbers of regions and the doubt. Shares have nine digits behind the point. In kText types below
// 0.01 % are counted, not named.
class KORVEX_API VotesReport : public Report {
 public:
  VotesReport(ReportFormat format, std::ostream& out);
  void add(const Chain& chain, Closure closure, const Votes& votes);
  // Of closing by rays.
  void add(const Chain& chain, const ClosureMap& map);
};

// kText: a paragraph a type. kTsv, kJson: a line or an object, with all that KnotType holds.
class KORVEX_API CatalogueReport : public Report {
 public:
  CatalogueReport(ReportFormat format, std::ostream& out);
  void add(const KnotType& type);
};

// kText: a line a chain and below it one or more for each place of a knot. kTsv: a line for each
// place, with the bridged gaps in its core and, as all answers, what is doubtful about the chain,
// or one with the type alone where there is none, the mean confidences of chain and core last;
// `exact` stands for the trials where shares are exact, and shares have nine digits then. kJson: an
// object a chain. kPymol, kChimerax: commands; Error(kInvalidArgument) where chain.source is no
// file that the viewer loads, or a name could be taken for a command.
class KORVEX_API LocationReport : public Report {
 public:
  LocationReport(ReportFormat format, std::ostream& out);
  ~LocationReport();
  void add(const Chain& chain, const Location& location);

 private:
  std::unique_ptr<class ScriptNames> names_;  // that the script has given so far
};

// kTsv: a line for every knot type with votes in a sub-chain where not all are for the unknot:
// labels of the ends, type, votes, trials, share, and the 95 % interval of the share.
//
// kJson: stations, labels, types, trials, and sub_chains with votes that are not all for the
// unknot, each [begin, end, [[type, count], ...]] by numbers of stations and types.
//
// Of exact shares, kTsv has no votes, `exact` for the trials, shares with nine digits behind the
// point, and as interval what the doubt leaves open; kJson has "exact": true and the doubt for the
// trials, and shares for votes.
//
// kMatrix: a head, then a line for every sub-chain with at least 1 % of the votes for a knot, by
// rising begin and falling end: labels of its ends, for each threshold from 90 % down to 0 % in
// steps of 3 % the types whose whole percentage is above it (and not above the one before; 0 for
// none), 0, and 1-based positions of its ends. "UNKNOT" below the head where there is none.
//
// kNpz: a deflated archive of these arrays, n being the stations and m the knotted (sub-chain,
// type) pairs with votes:
// - stations: int32 (n), index of each station's residue in the chain, 0-based
// - labels: unicode (n), label of each station's residue
// - types: unicode, names of the knot types; the first is the unknot's
// - trials: int64 (), votes cast for each sub-chain; 0 where shares are exact
// - dominant: int32 (n, n), number of the type with most votes, [begin, end]; -1 where begin >= end
// - share: float32 (n, n), share of the votes for that type; 0 where begin >= end
// - begin, end, type: int32 (m), numbers of the stations of a sub-chain and of a type but the
//   unknot's
// - count: uint32 (m), votes for it; all other votes of a sub-chain are the unknot's
// - exact_share: float64 (m), and doubt: float64 (), in place of count where shares are exact
// The same fingerprint gives the same bytes. Error(kInvalidArgument) where the archive would be
// larger than 4 GiB.
//
// Written row by row, since it may take gigabytes. O(types n^2).
//
// `gaps` are those of the chain that are bridged: kTsv tells of each sub-chain how many lie in it
// and the longest, kJson lists [index of the residue before, length].
KORVEX_API void write_fingerprint(const Fingerprint& fingerprint, std::span<const Residue> residues,
                                  ReportFormat format, std::ostream& out,
                                  std::span<const Gap> gaps = {});

// kSvg: both hemispheres seen from outside, from +z and from -z, in equal area (Lambert), a colour
// for each type, the same in every drawing, a legend with shares, and the directions of the five
// largest regions marked.
//
// kJson: one object: types, and regions with all that ClosureRegion holds; where they are known the
// time and step of the frame and the mean confidence of the chain.
//
// kNpz: a deflated archive of these arrays, t being the types, r the regions, p their boundaries:
// - types: unicode (t); type_share: float64 (t)
// - region_type: int32 (r), numbers of types; region_share: float64 (r)
// - region_direction: float64 (r, 3); region_proven, region_in_doubt: uint8 (r)
// - polygon_region: int32 (p), the region that each polygon bounds; polygon_begin: int64 (p + 1),
//   where its points begin among polygon_points: float64 (, 3)
// Regions are drawn where the map has their boundaries. O(points of boundaries).
KORVEX_API void write_closure_map(const Chain& chain, const ClosureMap& map, ReportFormat format,
                                  std::ostream& out);

// What draw() made of the diagram, as an SVG of 400 by 400 pixels with a line of text below: the
// curve in `colour` ("#rrggbb"), broken where it passes under. O(arcs).
KORVEX_API void write_drawing(const Diagram& diagram, const DiagramDrawing& drawing,
                              std::string_view caption, std::string_view colour, std::ostream& out);

}  // namespace korvex
