#include "korvex/report.hpp"

#include <algorithm>
#include <array>
#include <ostream>

#include "engine/report/frame.hpp"
#include "engine/report/number_text.hpp"
#include "korvex/error.hpp"
#include "korvex/quoting.hpp"

namespace korvex {
namespace {

using enum ReportFormat;
constexpr std::array kOfVotes{kText, kTsv, kJson};
constexpr std::array kOfCatalogue{kText, kTsv, kJson};
constexpr std::array kOfFingerprints{kNpz, kTsv, kJson, kMatrix};
constexpr std::array kOfLocations{kText, kTsv, kJson, kPymol, kChimerax};
constexpr std::array kOfMaps{kSvg, kJson, kNpz};
constexpr std::array kOfScans{kTsv, kJson};

void write(std::ostream& out, std::string_view text) {
  out.write(text.data(), static_cast<std::streamsize>(text.size()));
}

}  // namespace

std::string_view name_of(ReportFormat format) {
  switch (format) {
    case kText:
      return "text";
    case kTsv:
      return "tsv";
    case kJson:
      return "json";
    case kNpz:
      return "npz";
    case kMatrix:
      return "matrix";
    case kPymol:
      return "pymol";
    case kChimerax:
      return "chimerax";
    case kSvg:
      return "svg";
  }
  return {};
}

std::span<const ReportFormat> vote_formats() { return kOfVotes; }
std::span<const ReportFormat> catalogue_formats() { return kOfCatalogue; }
std::span<const ReportFormat> fingerprint_formats() { return kOfFingerprints; }
std::span<const ReportFormat> location_formats() { return kOfLocations; }
std::span<const ReportFormat> map_formats() { return kOfMaps; }
std::span<const ReportFormat> scan_formats() { return kOfScans; }

std::string residue_label(std::span<const Residue> residues, std::size_t index) {
  if (index >= residues.size()) return std::to_string(index + 1);
  const Residue& residue = residues[index];
  std::string label = std::to_string(residue.number);
  if (residue.insertion_code != ' ') label += residue.insertion_code;
  return label;
}

std::string title_of(const Chain& chain) {
  std::string title = chain.source.empty() ? "chain" : chain.source;
  if (chain.model != 1) title += " model " + std::to_string(chain.model);
  if (chain.time)
    title += " time " + time_text(*chain.time);
  else if (chain.step)
    title += " step " + std::to_string(*chain.step);
  if (!chain.name.empty()) title += " chain " + chain.name;
  if (chain.part != 0) title += " part #" + std::to_string(chain.part);
  return quoted_for_terminal(title);
}

void refuse_format(ReportFormat format, std::string_view what,
                   std::span<const ReportFormat> known) {
  std::string names;
  for (const ReportFormat one : known) names.append(names.empty() ? "" : ", ").append(name_of(one));
  throw Error(ErrorCode::kInvalidArgument, std::string(what) + " cannot be written as '" +
                                               std::string(name_of(format)) + "': choose one of " +
                                               names);
}

const Report::Frame& frame_for(ReportFormat format, std::string_view what,
                               std::span<const ReportFormat> known, const Report::Frame& table,
                               const Report::Frame& array) {
  if (std::find(known.begin(), known.end(), format) == known.end())
    refuse_format(format, what, known);
  if (format == kTsv) return table;
  return format == kJson ? array : kBare;
}

std::string in_array(const Json& object) {
  const std::string text = object.dump(2, ' ', false, Json::error_handler_t::replace);
  std::string indented;
  indented.reserve(text.size());
  for (const char c : text) {
    indented += c;
    if (c == '\n') indented += "  ";
  }
  return indented;
}

Report::Report(ReportFormat format, const Frame& frame, std::ostream& out)
    : format_(format), frame_(frame), out_(out) {
  if (!frame_.held) write(out_, frame_.head);
}

void Report::put(const std::string& entry) {
  if (frame_.held) {
    std::string more(any_ ? frame_.separator : frame_.head);
    held_ += more.append(entry);
  } else {
    write(out_, any_ ? std::string(frame_.separator) + entry : entry);
  }
  any_ = true;
}

void Report::finish() {
  write(out_, held_);
  held_.clear();
  write(out_, any_ ? frame_.end : frame_.nothing);
}

}  // namespace korvex
