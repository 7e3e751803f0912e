// What makes one text of several answers, format by format.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "korvex/report.hpp"

namespace korvex {

using Json = nlohmann::ordered_json;

struct Report::Frame {
  std::string_view head;
  std::string_view separator;
  std::string_view end;
  std::string_view nothing;  // in place of head and end, where there is no answer
  bool held = false;         // until finish()
};

// Answers as they are, none before or behind them.
inline constexpr Report::Frame kBare{};

// An array of objects, each on lines of its own; they are to be indented by one step.
inline constexpr Report::Frame kJsonArray{"[\n  ", ",\n  ", "\n]\n", "[]\n", true};

// Throws Error(kInvalidArgument): `what` has no such format.
[[noreturn]] void refuse_format(ReportFormat format, std::string_view what,
                                std::span<const ReportFormat> known);

// What stands around answers of one kind in `format`: nothing in texts and scripts. Throws as
// refuse_format() does where `known` has no such format.
const Report::Frame& frame_for(ReportFormat format, std::string_view what,
                               std::span<const ReportFormat> known, const Report::Frame& table,
                               const Report::Frame& array = kJsonArray);

// As part of kJsonArray. Bytes that are no UTF-8 become U+FFFD.
std::string in_array(const Json& object);

}  // namespace korvex
