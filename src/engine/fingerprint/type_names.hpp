// What the name of a knot type tells.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvex {

// The factors of a composite knot, "3_1#4_1" giving "3_1" and "4_1"; the name itself of a prime
// one; none of the unknot "0_1".
std::vector<std::string> factors_of(std::string_view type);

// Crossings that a diagram of the type needs: those of its factors together, as the names tell, the
// least where a name leaves the choice between several. Nothing where it does not tell.
std::optional<int> crossings_of(std::string_view type);

}  // namespace korvex
