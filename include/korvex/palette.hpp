// The colours of knot types, the same in every drawing.
#pragma once

#include <string>
#include <string_view>

#include "korvex/export.hpp"

namespace korvex {

// "#rrggbb": light grey for the unknot; a colour of its own for every type to 8 crossings, hands
// apart, the simplest knots the farthest from one another; one of 35 more, which the name fixes,
// for any other. All differ to eyes without red or green receptors as well. Any thread.
KORVEX_API std::string colour_of_type(std::string_view type);

}  // namespace korvex
