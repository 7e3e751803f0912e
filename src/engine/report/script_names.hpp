// Names from outside in scripts of molecule viewers, which run what they are given: a name is
// written where no reading of it can be a command, and refused elsewhere.
#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>

namespace korvex {

// Throw Error(kInvalidArgument) saying what is wrong and what to do, where the text is none that a
// script for `viewer` can hold.
//
// The path of a file between double quotes. The viewers run files of other kinds than molecules, so
// the name has to end as that of a PDB, mmCIF, GRO or XYZ file does, perhaps gzipped.
std::string script_path(std::string_view path, std::string_view viewer);
// The name of a chain, of letters, digits, `_` and whatever `others` has; not empty.
std::string script_chain(std::string_view name, std::string_view others, std::string_view viewer);
// The label of a residue without its sign, or all of it.
void require_script_label(std::string_view label, std::string_view viewer);

// For a comment: everything but letters, digits and some marks is a `?`.
std::string script_comment(std::string_view text);

// The names that one script has given.
class ScriptNames {
 public:
  // The name of the object for the molecules of a file: its path without the ending, in letters,
  // digits and underscores. `is_new` where the script has not loaded it.
  std::string object_of(const std::string& path, bool& is_new);
  // The parts with underscores between them, letters, digits and underscores alone, and a number
  // behind where that name was given before.
  std::string selection(std::string_view part, std::string_view object, std::string_view chain,
                        std::string_view type);

 private:
  std::string unique(const std::string& name);

  std::map<std::string, std::string> objects_;
  std::set<std::string> given_;
};

}  // namespace korvex
