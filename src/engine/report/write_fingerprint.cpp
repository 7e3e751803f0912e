#include <algorithm>
#include <nlohmann/json.hpp>
#include <ostream>
#include <utility>

#include "korvex/interval.hpp"
#include "korvex/save.hpp"

namespace korvex {
namespace {

// Calls `row` for every sub-chain that has votes for a knot.
template <typename Row>
void for_each_knotted(const Fingerprint& fingerprint, const Row& row) {
  const std::size_t n = fingerprint.stations().size();
  for (std::size_t begin = 0; begin < n; ++begin)
    for (std::size_t end = begin + 1; end < n; ++end)
      if (fingerprint.count(0, begin, end) < fingerprint.trials()) row(begin, end);
}

std::string label_of(const Fingerprint& fingerprint, std::span<const Residue> residues,
                     std::size_t station) {
  return residue_label(residues, static_cast<std::size_t>(fingerprint.stations()[station]));
}

// The knotted types with at least one percent of the votes, the most frequent first.
std::vector<std::pair<std::size_t, std::string>> percentages(const Fingerprint& fingerprint,
                                                             std::size_t begin, std::size_t end) {
  std::vector<std::pair<std::size_t, std::string>> list;
  for (std::size_t type = 1; type < fingerprint.types().size(); ++type)
    if (const std::size_t percent =
            100 * std::size_t{fingerprint.count(type, begin, end)} / fingerprint.trials();
        percent > 0)
      list.emplace_back(percent, fingerprint.types()[type]);
  std::stable_sort(list.begin(), list.end(),
                   [](const auto& a, const auto& b) { return a.first > b.first; });
  return list;
}

}  // namespace

std::string residue_label(std::span<const Residue> residues, std::size_t index) {
  if (index >= residues.size()) return std::to_string(index + 1);
  const Residue& residue = residues[index];
  std::string label = std::to_string(residue.number);
  if (residue.insertion_code != ' ') label += residue.insertion_code;
  return label;
}

void write_tsv(const Fingerprint& fingerprint, std::span<const Residue> residues,
               std::ostream& out) {
  out << "begin\tend\ttype\tvotes\ttrials\tshare\tlow\thigh\n";
  for_each_knotted(fingerprint, [&](std::size_t begin, std::size_t end) {
    for (std::size_t type = 0; type < fingerprint.types().size(); ++type) {
      const std::uint32_t count = fingerprint.count(type, begin, end);
      if (count == 0) continue;
      const Interval interval = wilson_interval(count, fingerprint.trials());
      out << label_of(fingerprint, residues, begin) << '\t' << label_of(fingerprint, residues, end)
          << '\t' << fingerprint.types()[type] << '\t' << count << '\t' << fingerprint.trials()
          << '\t' << fingerprint.share(type, begin, end) << '\t' << interval.low << '\t'
          << interval.high << '\n';
    }
  });
}

void write_json(const Fingerprint& fingerprint, std::span<const Residue> residues,
                std::ostream& out) {
  using Json = nlohmann::ordered_json;
  Json labels = Json::array();
  for (std::size_t k = 0; k < fingerprint.stations().size(); ++k)
    labels.push_back(label_of(fingerprint, residues, k));
  out << "{\"stations\":" << Json(fingerprint.stations()) << ",\"labels\":" << labels
      << ",\"types\":" << Json(fingerprint.types()) << ",\"trials\":" << fingerprint.trials()
      << ",\"sub_chains\":[";
  // Row by row: there may be millions.
  const char* comma = "";
  for_each_knotted(fingerprint, [&](std::size_t begin, std::size_t end) {
    Json votes = Json::array();
    for (std::size_t type = 0; type < fingerprint.types().size(); ++type)
      if (const std::uint32_t count = fingerprint.count(type, begin, end); count > 0)
        votes.push_back({type, count});
    out << comma << '[' << begin << ',' << end << ',' << votes << ']';
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
  out << "# " << label_of(fingerprint, residues, 0) << ' ' << label_of(fingerprint, residues, last);
  for (int threshold = kHighest; threshold >= 0; threshold -= kStep) out << " >" << threshold;
  out << " IN 1 " << fingerprint.stations().back() + 1 << '\n';
  bool any = false;
  for (std::size_t begin = 0; begin < last; ++begin) {
    for (std::size_t end = last; end > begin; --end) {
      const auto list = percentages(fingerprint, begin, end);
      if (list.empty()) continue;
      any = true;
      out << label_of(fingerprint, residues, begin) << ' ' << label_of(fingerprint, residues, end)
          << ' ';
      auto next = list.begin();
      for (int threshold = kHighest; threshold >= 0; threshold -= kStep) {
        const char* separator = "";
        for (; next != list.end() && next->first > static_cast<std::size_t>(threshold); ++next) {
          out << separator << next->second;
          separator = ",";
        }
        out << (*separator == '\0' ? "0 " : " ");
      }
      out << "0 " << fingerprint.stations()[begin] + 1 << ' ' << fingerprint.stations()[end] + 1
          << '\n';
    }
  }
  if (!any) out << "UNKNOT\n";
}

}  // namespace korvex
