// Every chain of whole archives: which knot, and where, in a table that is written piece by piece
// and can be taken up again.
//
// A scan fills a directory:
// - scan.json: what is asked of which sources; other work is refused there
// - parts/LOT/PIECE.tsv or .jsonl: the answers of one piece of the sources, so many members in a
//   row, or frames of a long trajectory, which appears whole or not at all
// - pieces.json: how many pieces there are, once a scan has come to the end of the sources
// - results.tsv or results.jsonl: all answers in order, from merge_scan()
// The bytes of the results depend on sources and options alone: not on threads, on shards, or on
// how often a scan was interrupted and resumed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "korvex/export.hpp"
#include "korvex/read.hpp"
#include "korvex/report.hpp"
#include "korvex/run.hpp"
#include "korvex/sources.hpp"

namespace korvex {

struct ScanOptions {
  ReadOptions read = {};
  // Votes by rays for the type of each chain. 0: exact shares of all directions, or of a chain
  // whose map would have more than most_regions, 100 votes.
  std::size_t trials = 0;
  std::size_t most_regions = 100'000;
  // Where the knot lies is found out for chains whose share of knots, of all types together, is
  // above this; with `slipknots` for all open chains.
  double locate_above = 0.1;
  bool slipknots = false;
  double threshold = 0.5;      // as LocateOptions have it
  std::size_t directions = 0;  // votes for every sub-chain; 0: exact up to 100 stations, else 100
  std::size_t step = 1;        // residues from station to station
  bool knotted_only = false;   // leaves out what is neither knotted, nor a slipknot, nor failed
  std::size_t piece = 200;     // members, or frames, that make a piece, at least 1
  ReportFormat format = ReportFormat::kTsv;  // or kJson: an object a line
};

// What a chain is: knotted when its most frequent type is not the unknot, a slipknot when some part
// of it is one.
struct ScanCounts {
  std::size_t members = 0;
  std::size_t chains = 0;
  std::size_t knotted = 0;
  std::size_t slipknots = 0;
  std::size_t failed = 0;  // chains, or members, without a whole answer

  KORVEX_API ScanCounts& operator+=(const ScanCounts& other);
  friend bool operator==(const ScanCounts&, const ScanCounts&) = default;
};

// "102 files, 118 chains: 6 knotted, 2 slipknots, 3 failed".
KORVEX_API std::string text_of(const ScanCounts& counts);

// A share of the work: the `number`th of `of`, from 1. Pieces go to shards in turn.
struct Shard {
  std::size_t number = 1;
  std::size_t of = 1;
};

struct ScanProgress {
  Advance advance;
  ScanCounts counts;  // of what this scan did
};

struct ScanPlan {
  std::vector<std::string> sources;  // as lots_of() takes them
  std::string directory;
  ScanOptions options = {};
  Shard shard = {};
  bool resume = false;  // goes on with what is in the directory; else there may be no scan in it
  std::function<void(const ScanProgress&)> progress = {};  // by one thread at a time
};

struct ScanOutcome {
  ScanCounts counts;       // of the pieces of this shard, those of earlier runs among them
  std::size_t pieces = 0;  // of this shard
  std::size_t kept = 0;    // of these, those that were whole already
};

// Scans the sources, or the pieces of one shard. A chain's random numbers derive from run.seed, the
// name of its member, its model and its name. Throws Error(kInvalidArgument) for options out of
// range and for a directory that holds a scan that was not to be resumed, or another one;
// (kCannotRead) where a source cannot be listed or the directory not be written, and
// (kCancelled) when stopped: what is whole by then stays. Several shards may work on one directory
// at a time, on one machine or on many.
KORVEX_API ScanOutcome scan(const ScanPlan& plan, const Run& run = {});

struct MergedScan {
  std::string path;  // of the results
  ScanCounts counts;
};

// Puts the pieces of all shards together. Throws Error(kBadInput) where some are missing.
KORVEX_API MergedScan merge_scan(const std::string& directory);

}  // namespace korvex
