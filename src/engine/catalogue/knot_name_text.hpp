// The text of knot names.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "korvex/knot_name.hpp"

namespace korvex {

// The factors as they stand in the text, in no order; nullopt where it is no name. A sum in a
// choice may come as one factor, the unknot as a factor of none.
std::optional<std::vector<KnotName::Choice>> read_knot_name(std::string_view text);

// The text of factors in order.
std::string knot_name_text(const std::vector<KnotName::Choice>& factors);

}  // namespace korvex
