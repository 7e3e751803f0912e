#include "engine/identify/identification.hpp"

#include "korvex/identify.hpp"

namespace korvex {

std::string identified_name(const GaussCode& closed) { return identify(Diagram(closed)).name; }

}  // namespace korvex
