#include "engine/report/location_scripts.hpp"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <string_view>

namespace korvex {
namespace {

std::string joined(std::initializer_list<std::string_view> parts) {
  std::string text;
  for (const std::string_view part : parts) text += part;
  return text;
}

const char* colour(std::size_t k) {
  constexpr std::array kColours{"red", "blue", "orange", "green", "purple", "cyan"};
  return kColours[k % kColours.size()];
}

// The residues of a chain by what a script calls them.
class Labels {
 public:
  Labels(const Chain& chain, const char* viewer) : chain_(chain), viewer_(viewer) {}

  std::string operator()(std::int32_t residue) const {
    std::string label = residue_label(chain_.residues, static_cast<std::size_t>(residue));
    require_script_label(label, viewer_);
    return label;
  }
  std::int32_t count() const { return static_cast<std::int32_t>(chain_.points.size()); }
  std::int64_t number(std::int32_t residue) const {
    const auto index = static_cast<std::size_t>(residue);
    return index < chain_.residues.size() ? chain_.residues[index].number : residue + 1;
  }
  bool numbers_rise() const {
    return std::is_sorted(chain_.residues.begin(), chain_.residues.end(),
                          [](const Residue& a, const Residue& b) { return a.number < b.number; });
  }

 private:
  const Chain& chain_;
  const char* viewer_;
};

class Pymol {
 public:
  Pymol(const Chain& chain, ScriptNames& names)
      : chain_(chain),
        labels_(chain, kName),
        path_(script_path(chain.source, kName)),
        chain_name_(chain.name.empty() ? "\"\"" : script_chain(chain.name, "-.", kName)),
        names_(names) {}

  std::string commands(const Location& location) const {
    // Before any name is given: what throws gives none.
    for (const KnotPlace& place : location.knots)
      for (const Stretch& stretch : drawn(place)) (void)residues(stretch);
    bool is_new = false;
    const std::string object = names_.object_of(chain_.source, is_new);
    std::string text = joined({"# ", script_comment(title_of(chain_)), "\n"});
    if (is_new) text += joined({"load ", path_, ", ", object, "\n"});
    const std::string whole = object + " and chain " + chain_name_;
    text += joined({"color grey80, ", whole, "\n"});
    for (std::size_t k = 0; k < location.knots.size(); ++k) {
      const KnotPlace& place = location.knots[k];
      const char* part = "core";
      const char* drawn_in = colour(k);
      for (const Stretch& stretch : drawn(place)) {
        const std::string name = names_.selection(part, object, chain_.name, place.type);
        text += joined({"select ", name, ", ", whole, " and ", residues(stretch), "\ncolor ",
                        drawn_in, ", ", name, "\n"});
        part = "loop";
        drawn_in = "yellow";
      }
    }
    return text + "deselect\n";
  }

 private:
  static constexpr const char* kName = "PyMOL";

  // The core, then loops.
  static std::vector<Stretch> drawn(const KnotPlace& place) {
    std::vector<Stretch> stretches{place.core};
    for (const auto& undone : {place.undone_before, place.undone_after})
      if (undone) stretches.push_back(undone->loop);
    return stretches;
  }

  // A minus sign belongs to a number behind a backslash alone.
  static std::string escaped(const std::string& label) {
    return label.front() == '-' ? joined({"\\", label}) : label;
  }

  // A range takes in all insertion codes of the numbers at its ends: those before and behind the
  // stretch are taken out again. Where numbers do not rise every residue is named.
  std::string residues(const Stretch& stretch) const {
    std::string list;
    const auto add = [&](std::int32_t k) {
      list.append(list.empty() ? "" : "+").append(escaped(labels_(k)));
    };
    if (!labels_.numbers_rise()) {
      for (std::int32_t k = stretch.first; k <= stretch.last; ++k) add(k);
      return joined({"resi ", list});
    }
    const std::int64_t low = labels_.number(stretch.first);
    const std::int64_t high = labels_.number(stretch.last);
    std::int32_t from = stretch.first;
    while (from > 0 && labels_.number(from - 1) == low) --from;
    for (; from < stretch.first; ++from) add(from);
    for (std::int32_t k = stretch.last + 1; k < labels_.count() && labels_.number(k) == high; ++k)
      add(k);
    const std::string range =
        joined({"resi ", escaped(std::to_string(low)), "-", escaped(std::to_string(high))});
    return list.empty() ? range : joined({range, " and not resi ", list});
  }

  const Chain& chain_;
  const Labels labels_;
  const std::string path_;
  const std::string chain_name_;
  ScriptNames& names_;
};

}  // namespace

std::string pymol_commands(const Chain& chain, const Location& location, ScriptNames& names) {
  return Pymol(chain, names).commands(location);
}

std::string chimerax_commands(const Chain& chain, const Location& location, ScriptNames& names) {
  constexpr const char* kName = "ChimeraX";
  const Labels labels(chain, kName);
  const std::string path = script_path(chain.source, kName);
  const std::string in_chain =
      chain.name.empty() ? "" : joined({"/", script_chain(chain.name, "", kName)});
  const auto range = [&](const Stretch& stretch) {
    return joined({":", labels(stretch.first), "-", labels(stretch.last)});
  };
  // What throws does so before a name is given.
  std::vector<std::string> lines{" lightgray"};
  for (std::size_t k = 0; k < location.knots.size(); ++k) {
    const KnotPlace& place = location.knots[k];
    lines.push_back(joined({range(place.core), " ", colour(k)}));
    for (const auto& undone : {place.undone_before, place.undone_after})
      if (undone) lines.push_back(joined({range(undone->loop), " yellow"}));
  }
  bool is_new = false;
  const std::string object = names.object_of(chain.source, is_new);
  std::string text = joined({"# ", script_comment(title_of(chain)), "\n"});
  if (is_new) text += joined({"open ", path, " name ", object, "\n"});
  for (const std::string& line : lines)
    text += joined({"color ##name=\"", object, "\"", in_chain, line, "\n"});
  return text;
}

}  // namespace korvex
