// Places of knots, as all reports write them.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "korvex/chain.hpp"
#include "korvex/locate.hpp"

namespace korvex {

// The label of a residue, and of both ends of a stretch, for people and for a cell.
std::string residue_text(const Chain& chain, std::int32_t residue);
std::string stretch_text(const Chain& chain, const Stretch& stretch);

nlohmann::ordered_json place_json(const Chain& chain, const KnotPlace& place);

}  // namespace korvex
