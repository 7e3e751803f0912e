#include "classic/knot_report.hpp"

#include <fmt/format.h>

#include <nlohmann/json.hpp>
#include <utility>

#include "korvex/quoting.hpp"

namespace korvex::cli::classic {
KnotReport::KnotReport(std::ostream& out, ReportFormat format, KnotSettings settings)
    : out_(out), format_(format), settings_(std::move(settings)) {
  if (format_ == ReportFormat::kText) {
    out_ << fmt::format("# closure {}, {} {}, seed {}\n", settings_.closure, settings_.trials,
                        settings_.trials == 1 ? "trial" : "trials", settings_.seed);
  } else if (format_ == ReportFormat::kTsv) {
    out_ << "file\tatoms\tclosure\ttrials\tseed\tknot\tvotes\tshare\n";
  } else {
    out_ << "[";
  }
  out_ << std::flush;
}

void KnotReport::add(const KnotResult& result) {
  if (format_ == ReportFormat::kText)
    out_ << fmt::format("{}: {}\n", quoted_for_terminal(result.file), result.answer.text);
  else if (format_ == ReportFormat::kTsv)
    add_tsv(result);
  else
    add_json(result);
  out_ << std::flush;
  first_ = false;
}

void KnotReport::finish() {
  if (format_ == ReportFormat::kJson) out_ << (first_ ? "]\n" : "\n]\n");
}

void KnotReport::add_tsv(const KnotResult& result) {
  for (const RankedKnot& vote : result.answer.ranking) {
    out_ << fmt::format("{}\t{}\t{}\t{}\t{}\t{}\t{}\t{:.6g}\n", quoted_for_tsv(result.file),
                        result.atoms, settings_.closure, settings_.trials, settings_.seed,
                        vote.name, vote.votes, vote.share);
  }
}

void KnotReport::add_json(const KnotResult& result) {
  nlohmann::ordered_json record = {{"file", result.file},
                                   {"atoms", result.atoms},
                                   {"closure", settings_.closure},
                                   {"trials", settings_.trials},
                                   {"seed", settings_.seed}};
  if (result.distances) record["distances"] = *result.distances;
  record["text"] = result.answer.text;
  record["knots"] = nlohmann::ordered_json::array();
  for (const RankedKnot& vote : result.answer.ranking) {
    record["knots"].push_back({{"knot", vote.name},
                               {"ordinal", vote.ordinal},
                               {"votes", vote.votes},
                               {"share", vote.share}});
  }
  constexpr auto kReplaceBadUtf8 = nlohmann::ordered_json::error_handler_t::replace;
  out_ << (first_ ? "\n" : ",\n") << record.dump(-1, ' ', false, kReplaceBadUtf8);
}

}  // namespace korvex::cli::classic
