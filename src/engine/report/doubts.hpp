// What is doubtful about the chain of an answer, as every answer carries it.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "korvex/chain.hpp"
#include "korvex/locate.hpp"

namespace korvex {

// Columns, and their cells of one chain: bridged gaps and the longest, bonds mended by the periodic
// box, what is known of the ends, and the part of a chain that was split.
inline constexpr std::string_view kDoubtColumns = "gaps\tlongest_gap\tmended\tends\tpart";
std::string doubt_cells(const Chain& chain);

// Adds the same to an object.
void add_doubts(nlohmann::ordered_json& json, const Chain& chain);

// ", 2 gaps bridged, the longest 13.18"; empty where nothing was bridged or mended.
std::string doubt_text(const Chain& chain);

// How many bridged gaps lie within residues of a chain.
std::size_t gaps_within(const Chain& chain, const Stretch& stretch);

}  // namespace korvex
