#include "engine/report/fingerprint_report.hpp"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <ostream>
#include <utility>

#include "engine/report/frame.hpp"
#include "engine/report/number_text.hpp"
#include "korvex/interval.hpp"
#include "korvex/quoting.hpp"
#include "korvex/report.hpp"

namespace korvex {
namespace {

// Calls `row` for every sub-chain that is knotted in some direction.
template <typename Row>
void for_each_knotted(const Fingerprint& fingerprint, const Row& row) {
  const std::size_t n = fingerprint.stations().size();
  for (std::size_t begin = 0; begin < n; ++begin)
    for (std::size_t end = begin + 1; end < n; ++end)
      if (fingerprint.share(0, begin, end) < 1) row(begin, end);
}

std::string label_of(const Fingerprint& fingerprint, std::span<const Residue> residues,
                     std::size_t station) {
  return residue_label(residues, static_cast<std::size_t>(fingerprint.stations()[station]));
}

// The percentage of a type in whole numbers, rounded down.
std::size_t percentage(const Fingerprint& fingerprint, std::size_t type, std::size_t begin,
                       std::size_t end) {
  if (fingerprint.exact())
    return static_cast<std::size_t>(100 * fingerprint.share(type, begin, end));
  return 100 * std::size_t{fingerprint.count(type, begin, end)} / fingerprint.trials();
}

// The knotted types with at least one percent, the most frequent first.
std::vector<std::pair<std::size_t, std::string>> percentages(const Fingerprint& fingerprint,
                                                             std::size_t begin, std::size_t end) {
  std::vector<std::pair<std::size_t, std::string>> list;
  for (std::size_t type = 1; type < fingerprint.types().size(); ++type)
    if (const std::size_t percent = percentage(fingerprint, type, begin, end); percent > 0)
      list.emplace_back(percent, fingerprint.types()[type]);
  std::stable_sort(list.begin(), list.end(),
                   [](const auto& a, const auto& b) { return a.first > b.first; });
  return list;
}

// In one cell: a label begins with its number, and its minus sign makes no formula.
std::string cell_of(const Fingerprint& fingerprint, std::span<const Residue> residues,
                    std::size_t station) {
  return quoted_for_terminal(label_of(fingerprint, residues, station));
}

// The bridged gaps in a sub-chain, and the longest of them.
std::string gap_cells(const Fingerprint& fingerprint, std::span<const Gap> gaps, std::size_t begin,
                      std::size_t end) {
  std::size_t count = 0;
  double longest = 0;
  for (const Gap& gap : gaps) {
    if (gap.after < static_cast<std::size_t>(fingerprint.stations()[begin]) ||
        gap.after >= static_cast<std::size_t>(fingerprint.stations()[end]))
      continue;
    ++count;
    longest = std::max(longest, gap.length);
  }
  return std::to_string(count) + '\t' + number_text(longest);
}

// Votes, trials, share and the interval of the share, of a type that a sub-chain has.
std::string share_cells(const Fingerprint& fingerprint, std::size_t type, std::size_t begin,
                        std::size_t end) {
  const double share = fingerprint.share(type, begin, end);
  if (fingerprint.exact())
    return "\texact\t" + nine_digits_text(share) + '\t' +
           nine_digits_text(std::max(share - fingerprint.doubt(), 0.0)) + '\t' +
           nine_digits_text(std::min(share + fingerprint.doubt(), 1.0));
  const std::uint32_t count = fingerprint.count(type, begin, end);
  const Interval interval = wilson_interval(count, fingerprint.trials());
  return std::to_string(count) + '\t' + std::to_string(fingerprint.trials()) + '\t' +
         number_text(share) + '\t' + number_text(interval.low) + '\t' + number_text(interval.high);
}

void write_tsv(const Fingerprint& fingerprint, std::span<const Residue> residues,
               std::span<const Gap> gaps, std::ostream& out) {
  out << "begin\tend\ttype\tvotes\ttrials\tshare\tlow\thigh\tgaps\tlongest_gap\n";
  std::string line;
  for_each_knotted(fingerprint, [&](std::size_t begin, std::size_t end) {
    for (std::size_t type = 0; type < fingerprint.types().size(); ++type) {
      if (!(fingerprint.share(type, begin, end) > 0)) continue;
      line = cell_of(fingerprint, residues, begin) + '\t' + cell_of(fingerprint, residues, end) +
             '\t' + fingerprint.types()[type] + '\t' + share_cells(fingerprint, type, begin, end) +
             '\t' + gap_cells(fingerprint, gaps, begin, end) + '\n';
      out << line;
    }
  });
}

void write_json(const Fingerprint& fingerprint, std::span<const Residue> residues,
                std::span<const Gap> gaps, std::ostream& out) {
  Json labels = Json::array();
  for (std::size_t k = 0; k < fingerprint.stations().size(); ++k)
    labels.push_back(label_of(fingerprint, residues, k));
  Json bridged = Json::array();
  for (const Gap& gap : gaps) bridged.push_back({gap.after, gap.length});
  const auto text = [](const Json& json) {
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
  };
  out << "{\"stations\":" + text(fingerprint.stations()) + ",\"labels\":" + text(labels) +
             ",\"gaps\":" + text(bridged) + ",\"types\":" + text(fingerprint.types()) +
             (fingerprint.exact() ? ",\"exact\":true,\"doubt\":" + text(fingerprint.doubt())
                                  : ",\"trials\":" + std::to_string(fingerprint.trials())) +
             ",\"sub_chains\":[";
  // Row by row: there may be millions.
  const char* comma = "";
  for_each_knotted(fingerprint, [&](std::size_t begin, std::size_t end) {
    Json votes = Json::array();
    for (std::size_t type = 0; type < fingerprint.types().size(); ++type) {
      const double share = fingerprint.share(type, begin, end);
      if (!(share > 0)) continue;
      if (fingerprint.exact())
        votes.push_back({type, nine_digits(share)});
      else
        votes.push_back({type, fingerprint.count(type, begin, end)});
    }
    out << comma << text({begin, end, votes});
    comma = ",";
  });
  out << "]}\n";
}

void write_matrix(const Fingerprint& fingerprint, std::span<const Residue> residues,
                  std::ostream& out) {
  constexpr int kHighest = 90;
  constexpr int kStep = 3;
  if (fingerprint.stations().empty()) {
    out << "UNKNOT\n";
    return;
  }
  const std::size_t last = fingerprint.stations().size() - 1;
  const auto position = [&](std::size_t station) {
    return std::to_string(fingerprint.stations()[station] + 1);
  };
  std::string line =
      "# " + cell_of(fingerprint, residues, 0) + ' ' + cell_of(fingerprint, residues, last);
  for (int threshold = kHighest; threshold >= 0; threshold -= kStep)
    line.append(" >").append(std::to_string(threshold));
  out << line + " IN 1 " + position(last) + '\n';
  bool any = false;
  for (std::size_t begin = 0; begin < last; ++begin) {
    for (std::size_t end = last; end > begin; --end) {
      const auto list = percentages(fingerprint, begin, end);
      if (list.empty()) continue;
      any = true;
      line =
          cell_of(fingerprint, residues, begin) + ' ' + cell_of(fingerprint, residues, end) + ' ';
      auto next = list.begin();
      for (int threshold = kHighest; threshold >= 0; threshold -= kStep) {
        const char* separator = "";
        for (; next != list.end() && next->first > static_cast<std::size_t>(threshold); ++next) {
          line += separator + next->second;
          separator = ",";
        }
        line += *separator == '\0' ? "0 " : " ";
      }
      out << line + "0 " + position(begin) + ' ' + position(end) + '\n';
    }
  }
  if (!any) out << "UNKNOT\n";
}

}  // namespace

void write_fingerprint(const Fingerprint& fingerprint, std::span<const Residue> residues,
                       ReportFormat format, std::ostream& out, std::span<const Gap> gaps) {
  switch (format) {
    case ReportFormat::kTsv:
      return write_tsv(fingerprint, residues, gaps, out);
    case ReportFormat::kJson:
      return write_json(fingerprint, residues, gaps, out);
    case ReportFormat::kMatrix:
      return write_matrix(fingerprint, residues, out);
    case ReportFormat::kNpz:
      return write_npz(fingerprint, residues, out);
    default:
      refuse_format(format, "a fingerprint", fingerprint_formats());
  }
}

}  // namespace korvex
