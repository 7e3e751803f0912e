#include "engine/report/scan_report.hpp"

#include <algorithm>

#include "engine/report/doubts.hpp"
#include "engine/report/frame.hpp"
#include "engine/report/location_report.hpp"
#include "engine/report/number_text.hpp"
#include "korvex/quoting.hpp"

namespace korvex {
namespace {

constexpr std::string_view kScanColumns =
    "source\tmember\tmodel\tchain\tresidues\tplddt\ttype\tshare\tlow\thigh\ttrials\tcore_begin\t"
    "core_end\tcore_share\tcore_plddt\tslipknot\t";

const KnotPlace* core_of(const ScanAnswer& answer) {
  if (!answer.location) return nullptr;
  const auto& knots = answer.location->knots;
  const auto own = std::find_if(knots.begin(), knots.end(), [&](const KnotPlace& place) {
    return place.type == answer.types.front().first;
  });
  if (own != knots.end()) return &*own;
  const auto slipknot = std::find_if(knots.begin(), knots.end(),
                                     [](const KnotPlace& place) { return place.slipknot(); });
  return slipknot == knots.end() ? nullptr : &*slipknot;
}

// "-3_1 12-80", several of them with "; " between.
std::string slipknots_text(const Chain& chain, const ScanAnswer& answer) {
  std::string text;
  if (!answer.location) return text;
  for (const KnotPlace& place : answer.location->knots)
    if (place.slipknot())
      text += (text.empty() ? "" : "; ") + place.type + ' ' + stretch_text(chain, place.core);
  return text;
}

std::string share_cell(const ScanAnswer& answer, double share) {
  return answer.trials == 0 ? nine_digits_text(share) : number_text(share);
}

std::string type_cells(const ScanAnswer& answer) {
  if (answer.types.empty()) return "\t\t\t\t";
  return answer.types.front().first + '\t' + share_cell(answer, answer.types.front().second) +
         '\t' + share_cell(answer, answer.low) + '\t' + share_cell(answer, answer.high) + '\t' +
         (answer.trials == 0 ? "exact" : std::to_string(answer.trials));
}

std::string core_cells(const Chain& chain, const ScanAnswer& answer) {
  const KnotPlace* const core = core_of(answer);
  if (core == nullptr) return "\t\t\t";
  return residue_text(chain, core->core.first) + '\t' + residue_text(chain, core->core.last) +
         '\t' + number_text(core->core_share) + '\t' + plddt_cell(chain, core->core);
}

std::string row(std::string_view source, std::string_view member, const Chain& chain,
                const ScanAnswer& answer) {
  return quoted_for_tsv(source) + '\t' + quoted_for_tsv(member) + '\t' +
         std::to_string(chain.model) + '\t' + quoted_for_tsv(chain.name) + '\t' +
         std::to_string(chain.points.size()) + '\t' + plddt_cell(chain) + '\t' +
         type_cells(answer) + '\t' + core_cells(chain, answer) + '\t' +
         slipknots_text(chain, answer) + '\t' + doubt_cells(chain) + '\t' +
         quoted_for_tsv(answer.failure) + '\n';
}

std::string line_of(const Json& json) {
  return json.dump(-1, ' ', false, Json::error_handler_t::replace) + '\n';
}

double rounded(const ScanAnswer& answer, double share) {
  return answer.trials == 0 ? nine_digits(share) : share;
}

Json json_of(std::string_view source, std::string_view member, const Chain& chain,
             const ScanAnswer& answer) {
  Json json{{"source", source},
            {"member", member},
            {"model", chain.model},
            {"chain", chain.name},
            {"residues", chain.points.size()}};
  add_doubts(json, chain);
  if (!answer.types.empty()) {
    json["exact"] = answer.trials == 0;
    if (answer.trials != 0) json["trials"] = answer.trials;
    json["type"] = answer.types.front().first;
    json["share"] = rounded(answer, answer.types.front().second);
    json["low"] = rounded(answer, answer.low);
    json["high"] = rounded(answer, answer.high);
    json["types"] = Json::array();
    for (const auto& [type, share] : answer.types)
      json["types"].push_back({{"type", type}, {"share", rounded(answer, share)}});
  }
  if (answer.location) {
    json["slipknot"] = answer.slipknot();
    json["knots"] = Json::array();
    for (const KnotPlace& place : answer.location->knots)
      json["knots"].push_back(place_json(chain, place));
  }
  if (!answer.failure.empty()) json["error"] = answer.failure;
  return json;
}

}  // namespace

bool ScanAnswer::slipknot() const {
  return location && std::any_of(location->knots.begin(), location->knots.end(),
                                 [](const KnotPlace& place) { return place.slipknot(); });
}

std::string scan_head(ReportFormat format, const Json& about) {
  switch (format) {
    case ReportFormat::kTsv:
      return "# " + line_of(about) + std::string(kScanColumns) + std::string(kDoubtColumns) +
             "\terror\n";
    case ReportFormat::kJson:
      return line_of(about);
    default:
      refuse_format(format, "a scan", scan_formats());
  }
}

std::string scan_line(ReportFormat format, std::string_view source, std::string_view member,
                      const Chain& chain, const ScanAnswer& answer) {
  if (format == ReportFormat::kTsv) return row(source, member, chain, answer);
  return line_of(json_of(source, member, chain, answer));
}

std::string scan_failure_line(ReportFormat format, std::string_view source, std::string_view member,
                              const std::string& failure) {
  if (format == ReportFormat::kJson)
    return line_of({{"source", source}, {"member", member}, {"error", failure}});
  const auto columns = std::count(kScanColumns.begin(), kScanColumns.end(), '\t') +
                       std::count(kDoubtColumns.begin(), kDoubtColumns.end(), '\t');
  return quoted_for_tsv(source) + '\t' + quoted_for_tsv(member) +
         std::string(static_cast<std::size_t>(columns), '\t') + quoted_for_tsv(failure) + '\n';
}

}  // namespace korvex
