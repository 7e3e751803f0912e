#include "engine/scan/manifest.hpp"

#include "engine/run/random.hpp"
#include "engine/scan/version.hpp"
#include "korvex/error.hpp"

namespace korvex {
namespace {

using Json = nlohmann::ordered_json;

Json json_of(const ReadOptions& read) {
  const auto residue = [](std::int32_t number, char code) {
    return std::to_string(number) + (code == ' ' ? std::string() : std::string(1, code));
  };
  return {{"models", {read.models.first, read.models.last, read.models.step}},
          {"chains", read.chains},
          {"atoms", read.atoms},
          {"residues",
           {residue(read.residues.first, read.residues.first_code),
            residue(read.residues.last, read.residues.last_code)}},
          {"numbering", read.numbering == Numbering::kAuthor ? "author" : "label"},
          {"closed", read.closed},
          {"chain_length", read.chain_length},
          {"topology", read.topology},
          {"gaps", static_cast<int>(read.gaps)},
          {"max_gap", read.max_gap},
          {"unwrap", read.unwrap}};
}

// What differs from what is usual.
Json unusual(const ReadOptions& read) {
  const Json usual = json_of(ReadOptions{});
  Json json = Json::object();
  const Json all = json_of(read);
  for (const auto& [name, value] : all.items())
    if (usual[name] != value) json[name] = value;
  return json;
}

Json json_of(const ScanOptions& options) {
  return {{"trials", options.trials},
          {"most_regions", options.most_regions},
          {"locate_above", options.locate_above},
          {"slipknots", options.slipknots},
          {"threshold", options.threshold},
          {"directions", options.directions},
          {"step", options.step},
          {"knotted_only", options.knotted_only},
          {"read", unusual(options.read)}};
}

// An archive and a trajectory by path and size; files by their number and a digest of their names.
Json json_of(const Lot& lot) {
  if (lot.by_frames) return {{"trajectory", lot.files.front().title()}, {"bytes", lot.bytes}};
  if (!lot.archive.empty()) return {{"archive", lot.archive}, {"bytes", lot.bytes}};
  std::string names;
  for (const Member& file : lot.files) names += file.title() + '\n';
  return {{"files", lot.files.size()}, {"names", digest_of(names)}};
}

std::string text_of(const Json& json) {
  return json.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

}  // namespace

std::string digest_of(std::string_view text) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::uint64_t bits = text.size();
  for (const char c : text) bits = scatter_bits(bits ^ static_cast<unsigned char>(c)) + 1;
  std::string digest;
  for (int shift = 60; shift >= 0; shift -= 4) digest += kDigits[(bits >> shift) & 15U];
  return digest;
}

Json about_scan(const ScanOptions& options, std::uint64_t seed) {
  return {{"korvex", version()}, {"seed", seed}, {"options", json_of(options)}};
}

std::string manifest_of(const ScanPlan& plan, const std::vector<Lot>& lots, std::uint64_t seed) {
  Json json{{"about", about_scan(plan.options, seed)},
            {"format", name_of(plan.options.format)},
            {"piece", plan.options.piece},
            {"sources", Json::array()}};
  for (const Lot& lot : lots) json["sources"].push_back(json_of(lot));
  return text_of(json);
}

ManifestContent parsed_manifest(const std::string& text, const std::string& path) {
  const Json json = Json::parse(text, nullptr, false);
  if (!json.is_object() || !json.contains("about") || !json.contains("format"))
    throw Error(ErrorCode::kBadInput, path + ": is not the plan of a scan", path);
  return {json["format"] == "json" ? ReportFormat::kJson : ReportFormat::kTsv, json["about"]};
}

}  // namespace korvex
