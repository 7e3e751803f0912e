// Text from outside (names of files, chains and residues), made fit for what it is written to.
//
// Text for people and tab-separated values keep all that is harmless, so that most names come out
// as they are. JSON and scripts for molecule viewers are quoted where reports are written.
#pragma once

#include <string>
#include <string_view>

#include "korvex/export.hpp"

namespace korvex {

// One line for a terminal or a log. Control characters, among them tab, line breaks and the escape
// that begins a terminal's commands, characters that break lines or turn the direction of writing,
// and bytes that are no UTF-8 become \t, \n, \r or \xNN, a byte each. Quoting twice changes nothing
// more. O(size).
KORVEX_API std::string quoted_for_terminal(std::string_view text);

// A cell of tab-separated values. As for a terminal, with \\ for a backslash; and a backslash in
// front of a leading =, +, - or @, which spreadsheets would take for the start of a formula. So
// every cell can be read back: \t, \n, \r and \xNN are what they say, a backslash before any other
// character is to be left out. O(size).
KORVEX_API std::string quoted_for_tsv(std::string_view text);

// Text or an attribute's value in XML. As for a terminal, with entities for & < > and both quotes.
// O(size).
KORVEX_API std::string quoted_for_xml(std::string_view text);

}  // namespace korvex
