#include <algorithm>
#include <cmath>

#include "engine/report/doubts.hpp"
#include "engine/report/frame.hpp"
#include "engine/report/number_text.hpp"
#include "korvex/knot_name.hpp"
#include "korvex/quoting.hpp"

namespace korvex {
namespace {

constexpr Report::Frame kVotesTable{
    "source\tmodel\tchain\tresidues\tclosure\ttrials\ttype\tvotes\tshare\tlow\thigh\tgaps\tlongest_"
    "gap\tmended\tends\tpart\ttime\tstep\tplddt\n",
    {},
    {},
    {}};

std::string counted(std::size_t count, const char* thing) {
  return std::to_string(count) + ' ' + thing + (count == 1 ? "" : "s");
}

// As many as one vote more or less shows in.
int decimals_for(std::size_t trials) {
  constexpr std::size_t kTenths = 1000;
  constexpr std::size_t kHundredths = 10'000;
  return trials < kTenths ? 0 : trials < kHundredths ? 1 : 2;
}

std::string hexadecimal(std::uint64_t number) {
  std::array<char, 16> text{};
  const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), number, 16);
  return {text.data(), end};
}

// What is known of a closed curve whose knot has no name.
std::string ring_text(const RingReport& ring) {
  const auto size = [](const DiagramSize& diagram) {
    return std::to_string(diagram.crossings) + ", writhe " + std::to_string(diagram.writhe);
  };
  const DiagramSize projected = ring.projected;
  return "; Alexander key " + hexadecimal(ring.alexander_key) + "; " +
         std::to_string(projected.crossings) + " crossings, writhe " +
         std::to_string(projected.writhe) + "; simplified " + size(ring.simplified_size());
}

// Whether a knot, or a summand of it, has no name.
bool is_unknown(const std::string& type) {
  const auto name = KnotName::parse(type);
  return !name || !name->is_known();
}

std::string text(const Chain& chain, const Votes& votes) {
  std::string line = title_of(chain) + ": ";
  const int decimals = decimals_for(votes.trials);
  const auto percent = [decimals](double share) { return fixed_text(100 * share, decimals); };
  const char* separator = "";
  for (const TypeVotes& type : votes.types) {
    line += separator + type.type;
    if (votes.trials > 1)
      line += ' ' + percent(type.share) + " % [" + percent(type.interval.low) + '-' +
              percent(type.interval.high) + ']';
    separator = ", ";
  }
  line += " (" + counted(chain.points.size(), "residue") + ", " + counted(votes.trials, "closure") +
          doubt_text(chain);
  if (votes.ring && is_unknown(votes.dominant().type)) line += ring_text(*votes.ring);
  return line + ")\n";
}

std::string text(const Chain& chain, const ClosureMap& map) {
  constexpr double kShown = 0.0001;
  std::string line = title_of(chain) + ": ";
  const char* separator = "";
  std::size_t small = 0;
  for (const TypeShare& type : map.types) {
    if (type.share < kShown) {
      ++small;
      continue;
    }
    line += separator + type.type + ' ' + fixed_text(100 * type.share, 2) + " %";
    separator = ", ";
  }
  if (small > 0) line += ", " + std::to_string(small) + " more below 0.01 %";
  return line + " (" + counted(chain.points.size(), "residue") +
         ", exact: " + counted(map.regions.size(), "region") +
         (map.doubt > 0 ? ", doubt " + number_text(map.doubt) : std::string()) + doubt_text(chain) +
         ")\n";
}

// The columns that all types of a chain have in common.
std::string begin_of_row(const Chain& chain, Closure closure, const std::string& trials) {
  return quoted_for_tsv(chain.source) + '\t' + std::to_string(chain.model) + '\t' +
         quoted_for_tsv(chain.name) + '\t' + std::to_string(chain.points.size()) + '\t' +
         std::string(name_of(closure)) + '\t' + trials + '\t';
}

std::string rows(const Chain& chain, const ClosureMap& map) {
  const std::string all = begin_of_row(chain, Closure::kRays, "exact");
  const std::string doubts = doubt_cells(chain) + '\t' + plddt_cell(chain);
  std::string lines;
  for (const TypeShare& type : map.types)
    lines += all + type.type + "\t\t" + nine_digits_text(type.share) + '\t' +
             nine_digits_text(std::max(type.share - map.doubt, 0.0)) + '\t' +
             nine_digits_text(std::min(type.share + map.doubt, 1.0)) + '\t' + doubts + '\n';
  return lines;
}

std::string rows(const Chain& chain, Closure closure, const Votes& votes) {
  const std::string all = begin_of_row(chain, closure, std::to_string(votes.trials));
  const std::string doubts = doubt_cells(chain) + '\t' + plddt_cell(chain);
  std::string lines;
  for (const TypeVotes& type : votes.types)
    lines += all + type.type + '\t' + std::to_string(type.count) + '\t' + number_text(type.share) +
             '\t' + number_text(type.interval.low) + '\t' + number_text(type.interval.high) + '\t' +
             doubts + '\n';
  return lines;
}

Json json_of(const RingReport& ring) {
  const auto size = [](const DiagramSize& diagram) {
    return Json{{"crossings", diagram.crossings}, {"writhe", diagram.writhe}};
  };
  return {{"projected", size(ring.projected)},
          {"points_left", ring.points_left},
          {"simplified", size(ring.simplified_size())},
          {"alexander_key", hexadecimal(ring.alexander_key)}};
}

Json json_of(const Chain& chain, const ClosureMap& map) {
  Json json{{"source", chain.source},
            {"model", chain.model},
            {"chain", chain.name},
            {"residues", chain.points.size()},
            {"closure", name_of(Closure::kRays)},
            {"exact", true},
            {"regions", map.regions.size()},
            {"doubt", map.doubt}};
  add_doubts(json, chain);
  json["types"] = Json::array();
  for (const TypeShare& type : map.types)
    json["types"].push_back({{"type", type.type},
                             {"regions", type.regions},
                             {"proven", nine_digits(type.proven)},
                             {"share", nine_digits(type.share)}});
  Json& crossings = json["crossings"] = Json::object();
  for (const auto& [count, share] : map.crossings)
    crossings[std::to_string(count)] = nine_digits(share);
  return json;
}

Json json_of(const Chain& chain, Closure closure, const Votes& votes) {
  Json json{{"source", chain.source},          {"model", chain.model},        {"chain", chain.name},
            {"residues", chain.points.size()}, {"closure", name_of(closure)}, {"exact", false},
            {"trials", votes.trials}};
  add_doubts(json, chain);
  json["types"] = Json::array();
  for (const TypeVotes& type : votes.types)
    json["types"].push_back({{"type", type.type},
                             {"votes", type.count},
                             {"proven", type.proven},
                             {"share", type.share},
                             {"low", type.interval.low},
                             {"high", type.interval.high}});
  Json& crossings = json["crossings"] = Json::object();
  for (const auto& [count, diagrams] : votes.crossings) crossings[std::to_string(count)] = diagrams;
  if (votes.ring) json["ring"] = json_of(*votes.ring);
  return json;
}

}  // namespace

VotesReport::VotesReport(ReportFormat format, std::ostream& out)
    : Report(format, frame_for(format, "votes", vote_formats(), kVotesTable), out) {}

void VotesReport::add(const Chain& chain, Closure closure, const Votes& votes) {
  switch (format()) {
    case ReportFormat::kText:
      return put(text(chain, votes));
    case ReportFormat::kTsv:
      return put(rows(chain, closure, votes));
    default:
      return put(in_array(json_of(chain, closure, votes)));
  }
}

void VotesReport::add(const Chain& chain, const ClosureMap& map) {
  switch (format()) {
    case ReportFormat::kText:
      return put(text(chain, map));
    case ReportFormat::kTsv:
      return put(rows(chain, map));
    default:
      return put(in_array(json_of(chain, map)));
  }
}

}  // namespace korvex
