#include "classic/knot_report.hpp"

#include <fmt/format.h>

#include <nlohmann/json.hpp>
#include <utility>

namespace korvex::cli::classic {
namespace {

// A file's name as one field of a line.
std::string field(const std::string& text) {
  std::string result;
  for (const char character : text) {
    switch (character) {
      case '\t':
        result += "\\t";
        break;
      case '\n':
        result += "\\n";
        break;
      case '\\':
        result += "\\\\";
        break;
      default:
        result += character;
    }
  }
  return result;
}

}  // namespace

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
  if (format_ == ReportFormat::kText) {
    out_ << fmt::format("{}: {}\n", field(result.file), result.answer.text);
  } else if (format_ == ReportFormat::kTsv) {
    add_tsv(result);
  } else {
    add_json(result);
  }
  out_ << std::flush;
  first_ = false;
}

void KnotReport::finish() {
  if (format_ == ReportFormat::kJson) out_ << (first_ ? "]\n" : "\n]\n");
}

void KnotReport::add_tsv(const KnotResult& result) {
  for (const RankedKnot& vote : result.answer.ranking) {
    out_ << fmt::format("{}\t{}\t{}\t{}\t{}\t{}\t{}\t{:.6g}\n", field(result.file), result.atoms,
                        settings_.closure, settings_.trials, settings_.seed, vote.name, vote.votes,
                        vote.share);
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
