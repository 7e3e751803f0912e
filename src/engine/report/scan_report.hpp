// The table of a scan: one line for every chain, or for what kept it from being answered.
#pragma once

#include <cstddef>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "korvex/chain.hpp"
#include "korvex/locate.hpp"
#include "korvex/report.hpp"

namespace korvex {

// What was found out about one chain.
struct ScanAnswer {
  std::vector<std::pair<std::string, double>> types;  // with their shares, the largest first
  double low = 0;                                     // between what the first share lies
  double high = 1;
  std::size_t trials = 0;  // 0 where shares are exact
  std::optional<Location> location;
  std::string failure;  // what could not be found out, and why

  bool knotted() const { return !types.empty() && types.front().first != "0_1"; }
  bool slipknot() const;
};

// What stands before the lines: `about`, an object on one line, and in tables, where it is a
// comment, the names of the columns. Throws Error(kInvalidArgument) for other formats than kTsv and
// kJson.
std::string scan_head(ReportFormat format, const nlohmann::ordered_json& about);

// The line of a chain. Its core is that of its own type, or where that has none, of the first
// slipknot.
std::string scan_line(ReportFormat format, std::string_view source, std::string_view member,
                      const Chain& chain, const ScanAnswer& answer);

// The line of a member that could not be read, or not to its end.
std::string scan_failure_line(ReportFormat format, std::string_view source, std::string_view member,
                              const std::string& failure);

}  // namespace korvex
