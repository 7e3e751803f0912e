// What is known, and what is doubtful, about the chain of an answer, as every answer carries it.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "korvex/chain.hpp"
#include "korvex/locate.hpp"

namespace korvex {

// Columns, and their cells of one chain: bridged gaps and the longest, bonds mended by the periodic
// box, what is known of the ends, the part of a chain that was split, and time and step of its
// frame, empty where the file has none.
inline constexpr std::string_view kDoubtColumns =
    "gaps\tlongest_gap\tmended\tends\tpart\ttime\tstep";
std::string doubt_cells(const Chain& chain);

// The mean confidence of a chain, or of residues of it, as a cell; empty where there is none.
std::string plddt_cell(const Chain& chain);
std::string plddt_cell(const Chain& chain, const Stretch& stretch);
// The same for an object, rounded as in the cell.
double mean_plddt(const Chain& chain);
double mean_plddt(const Chain& chain, const Stretch& stretch);

// Adds time, step and confidence, where there are any, to an object.
void add_frame(nlohmann::ordered_json& json, const Chain& chain);
// Adds doubts and these.
void add_doubts(nlohmann::ordered_json& json, const Chain& chain);

// ", 2 gaps bridged, the longest 13.18, mean pLDDT 91.2"; empty where nothing was bridged or mended
// and there is no confidence.
std::string doubt_text(const Chain& chain);

// How many bridged gaps lie within residues of a chain.
std::size_t gaps_within(const Chain& chain, const Stretch& stretch);

}  // namespace korvex
