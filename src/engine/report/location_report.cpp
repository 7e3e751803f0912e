#include "engine/report/location_report.hpp"

#include "engine/report/doubts.hpp"
#include "engine/report/frame.hpp"
#include "engine/report/location_scripts.hpp"
#include "engine/report/number_text.hpp"
#include "korvex/quoting.hpp"

namespace korvex {
namespace {

constexpr Report::Frame kLocationsTable{
    "source\tmodel\tchain\ttype\tcore_begin\tcore_end\tcore_share\twhole_share\ttail_before\t"
    "tail_after\tsub_chains\tlongest_begin\tlongest_end\tundone_before\tundone_after\ttrials\t"
    "core_gaps\tgaps\tlongest_gap\tmended\tends\tpart\ttime\tstep\tplddt\tcore_plddt\n",
    {},
    {},
    {}};

constexpr Report::Frame kArray{"[", ", ", "]\n", "[]\n", true};

std::string label_of(const Chain& chain, std::int32_t residue) {
  return residue_label(chain.residues, static_cast<std::size_t>(residue));
}

std::string share_text(double share) { return fixed_text(share, 2); }

std::string undone_text(const Chain& chain, const KnotPlace& place, const Threading& undone) {
  return "    slipknot: with residue " + residue_text(chain, undone.residue) + ' ' + place.type +
         " becomes " + undone.becomes + "; loop " + stretch_text(chain, undone.loop) + ", tail " +
         stretch_text(chain, undone.tail) + '\n';
}

std::string dip_text(const Chain& chain, const KnotPlace& place, const Dip& dip) {
  return "    dip: with residue " + residue_text(chain, dip.residue) + ' ' + place.type +
         " becomes " + dip.becomes + ", share " + share_text(dip.share) +
         " at the least; with residue " + residue_text(chain, dip.back) + " it is back\n";
}

std::string core_gaps_text(std::size_t gaps) {
  if (gaps == 0) return {};
  return ", " + std::to_string(gaps) + " bridged gap" + (gaps == 1 ? "" : "s") + " in it";
}

std::string core_plddt_text(const Chain& chain, const Stretch& core) {
  return chain.plddt.empty() ? std::string() : ", mean pLDDT " + plddt_cell(chain, core);
}

std::string place_text(const Chain& chain, const KnotPlace& place) {
  std::string text =
      "  " + place.type + ": core " + stretch_text(chain, place.core) + " (" +
      std::to_string(place.core.length()) + " residues, share " + share_text(place.core_share) +
      core_gaps_text(gaps_within(chain, place.core)) + core_plddt_text(chain, place.core) +
      "), tails " + std::to_string(place.tail_before) + " and " + std::to_string(place.tail_after) +
      " residues, in " + std::to_string(place.sub_chains) + " sub-chains, the longest " +
      stretch_text(chain, place.longest) + '\n';
  for (const auto& undone : {place.undone_before, place.undone_after})
    if (undone) text += undone_text(chain, place, *undone);
  for (const auto* dips : {&place.dips_before, &place.dips_after})
    for (const Dip& dip : *dips) text += dip_text(chain, place, dip);
  return text;
}

std::string text(const Chain& chain, const Location& location) {
  std::string lines = title_of(chain) + ": " + location.type + ", share " +
                      share_text(location.share) + (location.exact ? ", exact" : "") +
                      doubt_text(chain);
  if (location.factors.size() > 1) {
    const char* separator = ", composite of ";
    for (const std::string& factor : location.factors) {
      lines += separator + factor;
      separator = " and ";
    }
  }
  lines += '\n';
  for (const KnotPlace& place : location.knots) lines += place_text(chain, place);
  return lines;
}

std::string exact_or_not(const Location& location, double share) {
  return location.exact ? nine_digits_text(share) : number_text(share);
}

std::string rows(const Chain& chain, const Location& location) {
  const std::string of_chain = quoted_for_tsv(chain.source) + '\t' + std::to_string(chain.model) +
                               '\t' + quoted_for_tsv(chain.name) + '\t';
  const std::string doubts = doubt_cells(chain) + '\t' + plddt_cell(chain) + '\t';
  const std::string trials = location.exact ? "exact" : std::to_string(location.trials);
  if (location.knots.empty())
    return of_chain + location.type + "\t\t\t\t" + exact_or_not(location, location.share) +
           "\t\t\t\t\t\t\t\t" + trials + "\t\t" + doubts + '\n';
  const auto share = [&](double of_place) { return exact_or_not(location, of_place); };
  const auto gone = [&](const std::optional<Threading>& undone) {
    return undone ? residue_text(chain, undone->residue) : std::string();
  };
  std::string lines;
  for (const KnotPlace& place : location.knots)
    lines += of_chain + place.type + '\t' + residue_text(chain, place.core.first) + '\t' +
             residue_text(chain, place.core.last) + '\t' + share(place.core_share) + '\t' +
             share(place.whole_share) + '\t' + std::to_string(place.tail_before) + '\t' +
             std::to_string(place.tail_after) + '\t' + std::to_string(place.sub_chains) + '\t' +
             residue_text(chain, place.longest.first) + '\t' +
             residue_text(chain, place.longest.last) + '\t' + gone(place.undone_before) + '\t' +
             gone(place.undone_after) + '\t' + trials + '\t' +
             std::to_string(gaps_within(chain, place.core)) + '\t' + doubts +
             plddt_cell(chain, place.core) + '\n';
  return lines;
}

Json json_of(const Chain& chain, const Stretch& stretch) {
  return {{"begin", label_of(chain, stretch.first)},
          {"end", label_of(chain, stretch.last)},
          {"begin_index", stretch.first},
          {"end_index", stretch.last}};
}

Json json_of(const Chain& chain, const Location& location) {
  Json json;
  json["source"] = chain.source;
  json["model"] = chain.model;
  json["chain"] = chain.name;
  json["residues"] = chain.points.size();
  add_doubts(json, chain);
  json["type"] = location.type;
  json["share"] = location.share;
  json["exact"] = location.exact;
  if (!location.exact) json["trials"] = location.trials;
  json["factors"] = location.factors;
  json["knots"] = Json::array();
  for (const KnotPlace& place : location.knots) json["knots"].push_back(place_json(chain, place));
  return json;
}

}  // namespace

// A label begins with its number, whose minus sign makes no formula.
std::string residue_text(const Chain& chain, std::int32_t residue) {
  return quoted_for_terminal(label_of(chain, residue));
}

std::string stretch_text(const Chain& chain, const Stretch& stretch) {
  const std::string first = residue_text(chain, stretch.first);
  const std::string last = residue_text(chain, stretch.last);
  return first + (first.front() == '-' || last.front() == '-' ? " to " : "-") + last;
}

Json place_json(const Chain& chain, const KnotPlace& place) {
  Json json;
  json["type"] = place.type;
  json["core"] = json_of(chain, place.core);
  json["core_gaps"] = gaps_within(chain, place.core);
  json["core_share"] = place.core_share;
  if (!chain.plddt.empty()) json["core_plddt"] = mean_plddt(chain, place.core);
  json["whole_share"] = place.whole_share;
  json["tail_before"] = place.tail_before;
  json["tail_after"] = place.tail_after;
  json["sub_chains"] = place.sub_chains;
  json["longest"] = json_of(chain, place.longest);
  json["slipknot"] = place.slipknot();
  for (const auto& [name, undone] : {std::pair{"undone_before", place.undone_before},
                                     std::pair{"undone_after", place.undone_after}})
    if (undone)
      json[name] = {{"residue", label_of(chain, undone->residue)},
                    {"residue_index", undone->residue},
                    {"becomes", undone->becomes},
                    {"loop", json_of(chain, undone->loop)},
                    {"tail", json_of(chain, undone->tail)}};
  for (const auto& [name, dips] :
       {std::pair{"dips_before", &place.dips_before}, std::pair{"dips_after", &place.dips_after}})
    for (const Dip& dip : *dips)
      json[name].push_back({{"residue", label_of(chain, dip.residue)},
                            {"residue_index", dip.residue},
                            {"back", label_of(chain, dip.back)},
                            {"back_index", dip.back},
                            {"share", dip.share},
                            {"becomes", dip.becomes}});
  return json;
}

LocationReport::LocationReport(ReportFormat format, std::ostream& out)
    : Report(format, frame_for(format, "a location", location_formats(), kLocationsTable, kArray),
             out),
      names_(std::make_unique<ScriptNames>()) {}

LocationReport::~LocationReport() = default;

void LocationReport::add(const Chain& chain, const Location& location) {
  switch (format()) {
    case ReportFormat::kText:
      return put(text(chain, location));
    case ReportFormat::kTsv:
      return put(rows(chain, location));
    case ReportFormat::kPymol:
      return put(pymol_commands(chain, location, *names_));
    case ReportFormat::kChimerax:
      return put(chimerax_commands(chain, location, *names_));
    default:
      return put(json_of(chain, location).dump(2, ' ', false, Json::error_handler_t::replace));
  }
}

}  // namespace korvex
