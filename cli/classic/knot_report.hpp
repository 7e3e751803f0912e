// The answers of `korvex knot` as text, tab-separated values or JSON.
#pragma once

#include <cstddef>
#include <optional>
#include <ostream>
#include <string>

#include "classic/classic.hpp"
#include "korvex/report.hpp"

namespace korvex::cli::classic {

// What all answers of a run have in common.
struct KnotSettings {
  std::string closure;
  int trials;  // determinations made for each file
  unsigned seed;
};

struct KnotResult {
  std::string file;
  std::size_t atoms = 0;
  std::optional<std::string> distances;  // verdict of the distance check, when it was asked for
  Answer answer;
};

// Writes every answer as it comes. The output is well-formed once finish() was called.
class KnotReport {
 public:
  // Takes what vote_formats() lists.
  KnotReport(std::ostream& out, ReportFormat format, KnotSettings settings);
  void add(const KnotResult& result);
  void finish();

 private:
  void add_tsv(const KnotResult& result);
  void add_json(const KnotResult& result);

  std::ostream& out_;
  ReportFormat format_;
  KnotSettings settings_;
  bool first_ = true;
};

}  // namespace korvex::cli::classic
