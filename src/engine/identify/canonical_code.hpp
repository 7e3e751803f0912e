// Gauss codes as bytes, and those that do not depend on where the curve begins and which way it
// runs.
#pragma once

#include <string>

#include "korvex/gauss_code.hpp"

namespace korvex {

// What is remembered of a code. The numbers keep the keys of equal codes apart.
enum class KeyOf : char { kOpenCode, kHandOfClosed, kTypeOfClosed };

// `key` becomes equal for equal codes, asked the same. O(length).
void write_key(const GaussCode& code, KeyOf what, std::string& key);

// Equal for codes that differ by their beginning or their sense alone. Two bytes a passage below
// 8192 passages, else four. O(length^2) at worst, O(length) for most.
std::string canonical_code(const GaussCode& closed);

// One and the same of all codes that have this canonical code.
GaussCode canonical_diagram(const GaussCode& closed);

}  // namespace korvex
