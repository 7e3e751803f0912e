// The colours of knot types, the same in every drawing.
#pragma once

#include <string>
#include <string_view>

namespace korvex {

// "#rrggbb": light grey for the unknot; else a hue that the name without hands fixes, darker for
// the left hand.
std::string colour_of_type(std::string_view type);

}  // namespace korvex
