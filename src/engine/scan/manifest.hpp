// What a scan is asked for, as its directory tells it.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "korvex/scan.hpp"

namespace korvex {

// Version, options and seed: the head of the results.
nlohmann::ordered_json about_scan(const ScanOptions& options, std::uint64_t seed);

// The same and the sources: two scans with one manifest have the same pieces and answers.
std::string manifest_of(const ScanPlan& plan, const std::vector<Lot>& lots, std::uint64_t seed);

// A digest of a text, 16 hexadecimal digits.
std::string digest_of(std::string_view text);

// The format and the head of the results, from a manifest. Throws Error(kBadInput) where it is
// none; `path` stands for it in messages.
struct ManifestContent {
  ReportFormat format = ReportFormat::kTsv;
  nlohmann::ordered_json about;
};
ManifestContent parsed_manifest(const std::string& text, const std::string& path);

}  // namespace korvex
