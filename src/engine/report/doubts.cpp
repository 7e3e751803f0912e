#include "engine/report/doubts.hpp"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "engine/report/number_text.hpp"

namespace korvex {
namespace {

double longest_gap(const Chain& chain) {
  double longest = 0;
  for (const Gap& gap : chain.gaps) longest = std::max(longest, gap.length);
  return longest;
}

const char* name_of(ChainEnds ends) {
  switch (ends) {
    case ChainEnds::kApart:
      return "apart";
    case ChainEnds::kNear:
      return "near";
    case ChainEnds::kAsked:
      return "asked";
    case ChainEnds::kRepeated:
      return "repeated";
    case ChainEnds::kBonded:
      return "bonded";
  }
  return "";
}

}  // namespace

std::string doubt_cells(const Chain& chain) {
  return std::to_string(chain.gaps.size()) + '\t' + number_text(longest_gap(chain)) + '\t' +
         std::to_string(chain.mended) + '\t' + name_of(chain.ends) + '\t' +
         std::to_string(chain.part) + '\t' + (chain.time ? time_text(*chain.time) : "") + '\t' +
         (chain.step ? std::to_string(*chain.step) : "");
}

double mean_plddt(const Chain& chain, const Stretch& stretch) {
  const auto first = chain.plddt.begin() + stretch.first;
  const double sum = std::accumulate(first, first + stretch.length(), 0.0);
  return std::round(100 * sum / stretch.length()) / 100;
}

double mean_plddt(const Chain& chain) {
  return mean_plddt(chain, {0, static_cast<std::int32_t>(chain.plddt.size()) - 1});
}

std::string plddt_cell(const Chain& chain) {
  return chain.plddt.empty() ? std::string() : fixed_text(mean_plddt(chain), 2);
}

std::string plddt_cell(const Chain& chain, const Stretch& stretch) {
  return chain.plddt.empty() ? std::string() : fixed_text(mean_plddt(chain, stretch), 2);
}

void add_frame(nlohmann::ordered_json& json, const Chain& chain) {
  if (chain.time) json["time"] = *chain.time;
  if (chain.step) json["step"] = *chain.step;
  if (!chain.plddt.empty()) json["plddt"] = mean_plddt(chain);
}

void add_doubts(nlohmann::ordered_json& json, const Chain& chain) {
  json["gaps"] = chain.gaps.size();
  json["longest_gap"] = longest_gap(chain);
  json["mended"] = chain.mended;
  json["ends"] = name_of(chain.ends);
  json["part"] = chain.part;
  add_frame(json, chain);
}

std::string doubt_text(const Chain& chain) {
  std::string text;
  if (!chain.gaps.empty()) {
    text += ", " + std::to_string(chain.gaps.size()) +
            (chain.gaps.size() == 1 ? " gap bridged of " : " gaps bridged, the longest ") +
            fixed_text(longest_gap(chain), 2);
  }
  if (chain.mended != 0) text += ", " + std::to_string(chain.mended) + " bonds mended";
  if (!chain.plddt.empty()) text += ", mean pLDDT " + plddt_cell(chain);
  return text;
}

std::size_t gaps_within(const Chain& chain, const Stretch& stretch) {
  const auto within = [&](const Gap& gap) {
    return gap.after >= static_cast<std::size_t>(stretch.first) &&
           gap.after < static_cast<std::size_t>(stretch.last);
  };
  return static_cast<std::size_t>(std::count_if(chain.gaps.begin(), chain.gaps.end(), within));
}

}  // namespace korvex
