#include "engine/report/script_names.hpp"

#include <algorithm>
#include <array>

#include "korvex/error.hpp"
#include "korvex/quoting.hpp"

namespace korvex {
namespace {

bool is_letter_or_digit(char c) {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

[[noreturn]] void refuse(std::string_view what, std::string_view text, std::string_view why,
                         std::string_view viewer, std::string_view advice) {
  throw Error(ErrorCode::kInvalidArgument, std::string(what) + " '" + quoted_for_terminal(text) +
                                               "' " + std::string(why) + ", which a script for " +
                                               std::string(viewer) +
                                               " cannot hold: " + std::string(advice));
}

bool ends_with(std::string_view text, std::string_view ending) {
  if (text.size() <= ending.size()) return false;
  text.remove_prefix(text.size() - ending.size());
  return std::equal(text.begin(), text.end(), ending.begin(), [](char c, char wanted) {
    return (c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c) == wanted;
  });
}

// The path without the ending of a molecule's file, which it has to have.
std::string_view without_ending(std::string_view path) {
  constexpr std::array<std::string_view, 6> kEndings{".pdb",   ".ent", ".cif",
                                                     ".mmcif", ".gro", ".xyz"};
  if (ends_with(path, ".gz")) path.remove_suffix(3);
  for (const std::string_view ending : kEndings)
    if (ends_with(path, ending)) return path.substr(0, path.size() - ending.size());
  return {};
}

// Letters, digits and underscores alone; hands told apart.
std::string plain_name(std::string_view text, bool signs) {
  std::string name;
  for (const char c : text)
    name += signs && c == '+' ? 'p' : signs && c == '-' ? 'm' : is_letter_or_digit(c) ? c : '_';
  return name;
}

}  // namespace

std::string script_path(std::string_view path, std::string_view viewer) {
  if (without_ending(path).empty())
    throw Error(ErrorCode::kInvalidArgument,
                "a script for " + std::string(viewer) + " loads the file of its chains, and '" +
                    quoted_for_terminal(path) +
                    "' is no name of one that it can load: it has to end in .pdb, .ent, .cif, "
                    ".mmcif, .gro or .xyz, and .gz where it is gzipped; or choose text, tsv or "
                    "json");
  // Ends of a quoted text, what is expanded within one, brackets, which are counted there, and what
  // is no visible character.
  const bool held = path.find_first_of("\"\\$`()[]{}~") == std::string_view::npos &&
                    quoted_for_terminal(path) == path;
  if (!held)
    refuse("the file name", path, "has control characters, quotes, brackets or one of \\ $ ` ~",
           viewer, "rename the file, or choose text, tsv or json");
  return '"' + std::string(path) + '"';
}

std::string script_chain(std::string_view name, std::string_view others, std::string_view viewer) {
  const bool held = !name.empty() && std::all_of(name.begin(), name.end(), [&](char c) {
    return is_letter_or_digit(c) || c == '_' || others.find(c) != std::string_view::npos;
  });
  if (!held)
    refuse("the chain name", name, "is not of letters and digits", viewer,
           "rename the chain, choose others by --chain, or choose text, tsv or json");
  return std::string(name);
}

void require_script_label(std::string_view label, std::string_view viewer) {
  std::string_view rest = label;
  if (!rest.empty() && rest.front() == '-') rest.remove_prefix(1);
  if (rest.empty() || !std::all_of(rest.begin(), rest.end(), is_letter_or_digit))
    refuse("the residue label", label, "is not of letters and digits", viewer,
           "renumber the residues, or choose text, tsv or json");
}

std::string script_comment(std::string_view text) {
  constexpr std::string_view kMarks = " ./_-+,:=";
  std::string comment;
  for (const char c : text)
    comment += is_letter_or_digit(c) || kMarks.find(c) != std::string_view::npos ? c : '?';
  return comment;
}

std::string ScriptNames::unique(const std::string& name) {
  std::string own = name;
  for (int number = 2; !given_.insert(own).second; ++number)
    own = name + "_" + std::to_string(number);
  return own;
}

std::string ScriptNames::object_of(const std::string& path, bool& is_new) {
  const auto known = objects_.find(path);
  is_new = known == objects_.end();
  if (!is_new) return known->second;
  std::string name = plain_name(without_ending(path), false);
  name.erase(0, name.find_first_not_of('_'));
  return objects_[path] = unique(name.empty() ? "molecule" : name);
}

std::string ScriptNames::selection(std::string_view part, std::string_view object,
                                   std::string_view chain, std::string_view type) {
  std::string name(part);
  for (const std::string& more :
       {std::string(object), plain_name(chain, false), plain_name(type, true)})
    if (!more.empty()) name += "_" + more;
  return unique(name);
}

}  // namespace korvex
